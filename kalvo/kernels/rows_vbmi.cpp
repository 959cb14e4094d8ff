// What permutations of bytes across 64 are for.

#include "kalvo/kernels/kernels.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include "kalvo/kernels/target_region.h"

KX_TARGET_BEGIN("avx512f,avx512bw,avx512vbmi")

namespace Zelkor::Kernels::RowsVbmi {
namespace {

// A permutation looks at two registers, half the table; the highest bit of a byte chooses the half.
void LookUp(const std::uint8_t* table, const std::uint8_t* source, std::uint8_t* destination,
            std::size_t count) {
    const __m512i quarters[] = {_mm512_loadu_si512(table), _mm512_loadu_si512(table + 64),
                                _mm512_loadu_si512(table + 128), _mm512_loadu_si512(table + 192)};
    for (; count >= 64; count -= 64, source += 64, destination += 64) {
        const __m512i bytes = _mm512_loadu_si512(source);
        const __m512i low = _mm512_permutex2var_epi8(quarters[0], bytes, quarters[1]);
        const __m512i high = _mm512_permutex2var_epi8(quarters[2], bytes, quarters[3]);
        _mm512_storeu_si512(destination, _mm512_mask_blend_epi8(_mm512_movepi8_mask(bytes), low, high));
    }
    Available().front().lookUp(table, source, destination, count);
}

}  // namespace

void Install(Table& kernels) { kernels.lookUp = LookUp; }

}  // namespace Zelkor::Kernels::RowsVbmi

KX_TARGET_END

#endif
