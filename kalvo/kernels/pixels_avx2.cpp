// The kernels for pixels of 8-bit components for AVX2; the ends of rows go to the portable twin.

#include "kalvo/kernels/kernels.h"

#if defined(__x86_64__)

#include "kalvo/kernels/avx2_vectors.h"

KX_TARGET_BEGIN("avx2")

namespace Zelkor::Kernels::PixelsAvx2 {
namespace {

using Avx2::Load;
using Avx2::Portable;
using Avx2::Store;

// The C library leaves rows to a string instruction. Measured: where that stores a few bytes further on in
// the page than it loads, as in every row of pictures of one width, it is 9 times slower than this loop.
void CopyBytes(const std::uint8_t* source, std::uint8_t* destination, std::size_t bytes) {
    const std::uintptr_t ahead =
        reinterpret_cast<std::uintptr_t>(destination) - reinterpret_cast<std::uintptr_t>(source);
    if (ahead >= bytes) {  // else what is stored would be loaded again
        for (; bytes >= 64; bytes -= 64, source += 64, destination += 64) {
            const __m256i first = Load(source), second = Load(source + 32);
            Store(destination, first);
            Store(destination + 32, second);
        }
    }
    Portable().copyBytes(source, destination, bytes);
}

// Eight pixels of 24 bits fill 24 bytes of a register. Loads and stores touch 32, so they stop at 11 pixels.

void Widen24To32(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
    const __m256i fourPixelsToAHalf = _mm256_setr_epi32(0, 1, 2, 2, 3, 4, 5, 5);
    const __m256i threeBytesToAWord =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1));
    for (; pixels >= 11; pixels -= 8, source += 24, destination += 32) {
        const __m256i halves = _mm256_permutevar8x32_epi32(Load(source), fourPixelsToAHalf);
        Store(destination, _mm256_shuffle_epi8(halves, threeBytesToAWord));
    }
    Portable().widen24To32(source, destination, pixels);
}

void Narrow32To24(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
    const __m256i threeBytesOfAWord =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
    const __m256i joined = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
    for (; pixels >= 11; pixels -= 8, source += 32, destination += 24) {
        const __m256i halves = _mm256_shuffle_epi8(Load(source), threeBytesOfAWord);
        Store(destination, _mm256_permutevar8x32_epi32(halves, joined));
    }
    Portable().narrow32To24(source, destination, pixels);
}

void RepeatTo24(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
    const __m256i first = _mm256_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5, 5, 5, 6, 6, 6, 7,
                                           7, 7, 8, 8, 8, 9, 9, 9, 10, 10);
    const __m128i rest = _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15);
    for (; pixels >= 16; pixels -= 16, source += 16, destination += 48) {
        const __m128i sixteen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
        Store(destination, _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(sixteen), first));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(destination + 32), _mm_shuffle_epi8(sixteen, rest));
    }
    Portable().repeatTo24(source, destination, pixels);
}

void RepeatTo32(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
    const __m256i threeOfEachWord =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 0, 0, -1, 4, 4, 4, -1, 8, 8, 8, -1, 12, 12, 12, -1));
    for (; pixels >= 8; pixels -= 8, source += 8, destination += 32) {
        const __m128i eight = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(source));
        Store(destination, _mm256_shuffle_epi8(_mm256_cvtepu8_epi32(eight), threeOfEachWord));
    }
    Portable().repeatTo32(source, destination, pixels);
}

// 32 words at a time. Packing works in halves of registers, so quarters or words come back in another order.
void LastBytes(const std::uint8_t* words, int wordBytes, std::uint8_t* bytes, std::size_t count) {
    const __m256i eighths = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    for (; count >= 32; count -= 32, words += 32 * wordBytes, bytes += 32) {
        const auto pair = [&](int i) {
            const __m256i first = Load(words + 64 * i), second = Load(words + 64 * i + 32);
            return wordBytes == 2
                       ? _mm256_packus_epi16(_mm256_srli_epi16(first, 8), _mm256_srli_epi16(second, 8))
                       : _mm256_packus_epi32(_mm256_srli_epi32(first, 24), _mm256_srli_epi32(second, 24));
        };
        Store(bytes, wordBytes == 2
                         ? _mm256_permute4x64_epi64(pair(0), 0xD8)
                         : _mm256_permutevar8x32_epi32(_mm256_packus_epi16(pair(0), pair(1)), eighths));
    }
    Portable().lastBytes(words, wordBytes, bytes, count);
}

// 16 sums of the weighted components, divided by 255 as the portable twin does.
__m256i Mix(__m256i source, __m256i destination, __m256i alpha, __m256i rest) {
    const __m256i sum =
        _mm256_add_epi16(_mm256_add_epi16(_mm256_mullo_epi16(source, alpha), _mm256_set1_epi16(128)),
                         _mm256_mullo_epi16(destination, rest));
    return _mm256_srli_epi16(_mm256_add_epi16(sum, _mm256_srli_epi16(sum, 8)), 8);
}

void BlendConstant(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes,
                   std::uint8_t alpha) {
    const __m256i weight = _mm256_set1_epi16(alpha), rest = _mm256_set1_epi16(255 - alpha);
    const __m256i zero = _mm256_setzero_si256();
    for (; bytes >= 32; bytes -= 32, source += 32, destination += 32) {
        const __m256i from = Load(source), to = Load(destination);
        const __m256i low =
            Mix(_mm256_unpacklo_epi8(from, zero), _mm256_unpacklo_epi8(to, zero), weight, rest);
        const __m256i high =
            Mix(_mm256_unpackhi_epi8(from, zero), _mm256_unpackhi_epi8(to, zero), weight, rest);
        Store(destination, _mm256_packus_epi16(low, high));
    }
    Portable().blendConstant(destination, source, bytes, alpha);
}

}  // namespace

void Install(Table& kernels) {
    kernels.copyBytes = CopyBytes;
    kernels.widen24To32 = Widen24To32;
    kernels.narrow32To24 = Narrow32To24;
    kernels.repeatTo24 = RepeatTo24;
    kernels.repeatTo32 = RepeatTo32;
    kernels.lastBytes = LastBytes;
    kernels.blendConstant = BlendConstant;
}

}  // namespace Zelkor::Kernels::PixelsAvx2

KX_TARGET_END

#endif
