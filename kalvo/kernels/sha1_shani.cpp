// The compression function of SHA-1 with the instructions made for it, four rounds at a time.

#include "kalvo/kernels/kernels.h"

#if defined(__x86_64__)

#include "kalvo/kernels/target_region.h"

#include <immintrin.h>

#include <utility>

KX_TARGET_BEGIN("sha,ssse3,sse4.1")

namespace Zelkor::Kernels::Sha1ShaNi {
namespace {

constexpr int kReversed =
    0x1B;  // the instructions want a, and the first word of a block, in the highest word

struct Digest {
    __m128i abcd;
    __m128i
        e;  // in the highest word: e itself before a block, then the a of four rounds ago, not yet rotated
};

// `words` holds the last sixteen words of the message schedule, which is all that the next four need.
template <int kGroup>
void FourRounds(Digest& digest, __m128i (&words)[4]) {
    __m128i& next = words[kGroup % 4];
    if constexpr (kGroup >= 4) {
        const __m128i older = _mm_sha1msg1_epu32(next, words[(kGroup + 1) % 4]);
        next = _mm_sha1msg2_epu32(_mm_xor_si128(older, words[(kGroup + 2) % 4]), words[(kGroup + 3) % 4]);
    }
    const __m128i input = kGroup == 0 ? _mm_add_epi32(digest.e, next) : _mm_sha1nexte_epu32(digest.e, next);
    digest.e = digest.abcd;
    digest.abcd = _mm_sha1rnds4_epu32(digest.abcd, input, kGroup / 5);
}

template <int... kGroups>
void EightyRounds(Digest& digest, __m128i (&words)[4], std::integer_sequence<int, kGroups...>) {
    (FourRounds<kGroups>(digest, words), ...);
}

void Sha1Blocks(std::uint32_t* state, const std::uint8_t* blocks, std::size_t count) {
    const __m128i bigEndianReversed = _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    auto* const stateWords = reinterpret_cast<__m128i*>(state);
    Digest digest{_mm_shuffle_epi32(_mm_loadu_si128(stateWords), kReversed),
                  _mm_set_epi32(static_cast<int>(state[4]), 0, 0, 0)};
    for (; count > 0; --count, blocks += 64) {
        __m128i words[4];
        for (int i = 0; i < 4; ++i)
            words[i] = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(blocks) + i),
                                        bigEndianReversed);
        const Digest before = digest;
        EightyRounds(digest, words, std::make_integer_sequence<int, 20>());
        digest.abcd = _mm_add_epi32(digest.abcd, before.abcd);
        digest.e = _mm_sha1nexte_epu32(digest.e, before.e);
    }
    _mm_storeu_si128(stateWords, _mm_shuffle_epi32(digest.abcd, kReversed));
    state[4] = static_cast<std::uint32_t>(_mm_extract_epi32(digest.e, 3));
}

}  // namespace

void Install(Table& kernels) { kernels.sha1Blocks = Sha1Blocks; }

}  // namespace Zelkor::Kernels::Sha1ShaNi

KX_TARGET_END

#endif
