// The row kernels for AVX2. Each does the middle of a row in steps of 32 bytes; what is left over at the ends
// goes to the portable twin.

#include "kalvo/kernels/kernels.h"

#if defined(__x86_64__)

#include "kalvo/kernels/avx2_vectors.h"

#include <algorithm>
#include <bit>
#include <cstring>

KX_TARGET_BEGIN("avx2")

namespace Zelkor::Kernels::RowsAvx2 {
namespace {

using Avx2::Load;
using Avx2::Portable;
using Avx2::Store;

std::uint32_t MaskOf(__m256i comparison) {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(comparison));
}

// How many bits are missing from `firstBit` to the next whole byte, at most `bits`.
std::size_t BitsToNextByte(int firstBit, std::size_t bits) {
    return std::min<std::size_t>(bits, -firstBit & 7);
}

// Shuffles do not cross the halves of a register, so each half takes five pixels and one byte more.
__m256i LoadTenPixels(const std::uint8_t* pixels) {
    return _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(pixels + 15),
                               reinterpret_cast<const __m128i*>(pixels));
}

void SwapRedBlue(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
    const __m256i swapped =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, 15));
    // The sixteenth byte of a half is written back as it was, and the next five pixels overwrite it. They are
    // loaded before that: in place, a load that overlaps the store before it waits for it (measured: 9 times
    // slower).
    if (pixels >= 21) {
        __m256i ten = LoadTenPixels(source);
        do {
            const __m256i next = LoadTenPixels(source + 30);
            _mm256_storeu2_m128i(reinterpret_cast<__m128i*>(destination + 15),
                                 reinterpret_cast<__m128i*>(destination), _mm256_shuffle_epi8(ten, swapped));
            ten = next;
            source += 30;
            destination += 30;
            pixels -= 10;
        } while (pixels >= 21);
    }
    Portable().swapRedBlue(source, destination, pixels);
}

void ExpandBits(const std::uint8_t* bits, int firstBit, std::uint8_t* bytes, std::size_t pixels) {
    if (const std::size_t head = BitsToNextByte(firstBit, pixels); head > 0) {
        Portable().expandBits(bits++, firstBit, bytes, head);
        bytes += head;
        pixels -= head;
    }
    const __m256i byteOfPixel =
        _mm256_setr_epi64x(0, 0x0101010101010101, 0x0202020202020202, 0x0303030303030303);
    const __m256i bitOfPixel = _mm256_set1_epi64x(0x0102040810204080);
    for (; pixels >= 32; pixels -= 32, bits += 4, bytes += 32) {
        std::int32_t word;
        std::memcpy(&word, bits, sizeof word);
        const __m256i spread = _mm256_shuffle_epi8(_mm256_set1_epi32(word), byteOfPixel);
        Store(bytes, _mm256_cmpeq_epi8(_mm256_and_si256(spread, bitOfPixel), bitOfPixel));
    }
    Portable().expandBits(bits, 0, bytes, pixels);
}

void ThresholdToBits(const std::uint8_t* bytes, std::uint8_t threshold, std::uint8_t* bits,
                     std::size_t pixels) {
    // The mask of a comparison has pixel 0 in its lowest bit, and we want it in the highest of each byte.
    const __m256i reversed =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8));
    const __m256i limit = _mm256_set1_epi8(static_cast<char>(threshold));
    for (; pixels >= 32; pixels -= 32, bytes += 32, bits += 4) {
        const __m256i values = _mm256_shuffle_epi8(Load(bytes), reversed);
        // There is no unsigned comparison; value >= limit where the maximum of both is the value.
        const std::uint32_t packed = MaskOf(_mm256_cmpeq_epi8(_mm256_max_epu8(values, limit), values));
        std::memcpy(bits, &packed, sizeof packed);
    }
    Portable().thresholdToBits(bytes, threshold, bits, pixels);
}

void CopyBits(const std::uint8_t* source, int sourceBit, std::uint8_t* destination, int destinationBit,
              std::size_t bits) {
    // Measured: in rows of less than 128 bytes the calls for both ends cost more than the middle saves.
    if (bits < 1024) return Portable().copyBits(source, sourceBit, destination, destinationBit, bits);
    if (const std::size_t head = BitsToNextByte(destinationBit, bits); head > 0) {
        Portable().copyBits(source, sourceBit, destination++, destinationBit, head);
        const int nextBit = sourceBit + static_cast<int>(head);
        source += nextBit / 8;
        sourceBit = nextBit % 8;
        bits -= head;
    }
    if (sourceBit > 0) {
        // There are no shifts of bytes. We shift words and mask away what came from the neighbour.
        const __m128i left = _mm_cvtsi32_si128(sourceBit), right = _mm_cvtsi32_si128(8 - sourceBit);
        const __m256i upper = _mm256_set1_epi8(static_cast<char>(0xFF << sourceBit));
        for (; bits >= 256; bits -= 256, source += 32, destination += 32) {
            const __m256i high = _mm256_sll_epi16(Load(source), left);
            const __m256i low = _mm256_srl_epi16(Load(source + 1), right);
            Store(destination,
                  _mm256_or_si256(_mm256_and_si256(upper, high), _mm256_andnot_si256(upper, low)));
        }
    }
    Portable().copyBits(source, sourceBit, destination, 0, bits);
}

std::size_t RunLength(const std::uint8_t* bytes, std::size_t count) {
    if (count == 0) return 0;
    const __m256i first = _mm256_set1_epi8(static_cast<char>(bytes[0]));
    std::size_t length = 0;
    for (; length + 32 <= count; length += 32) {
        const std::uint32_t equal = MaskOf(_mm256_cmpeq_epi8(Load(bytes + length), first));
        if (equal != 0xFFFFFFFF) return length + std::countr_one(equal);
    }
    while (length < count && bytes[length] == bytes[0]) ++length;
    return length;
}

std::size_t LiteralLength(const std::uint8_t* bytes, std::size_t count) {
    std::size_t length = 0;
    for (; length + 34 <= count; length += 32) {
        const __m256i middle = Load(bytes + length + 1);
        const __m256i equalsPrevious = _mm256_cmpeq_epi8(middle, Load(bytes + length));
        const __m256i equalsNext = _mm256_cmpeq_epi8(middle, Load(bytes + length + 2));
        const std::uint32_t triples = MaskOf(_mm256_and_si256(equalsPrevious, equalsNext));
        if (triples != 0) return length + std::countr_zero(triples);
    }
    return length + Portable().literalLength(bytes + length, count - length);
}

}  // namespace

void Install(Table& kernels) {
    kernels.swapRedBlue = SwapRedBlue;
    kernels.expandBits = ExpandBits;
    kernels.thresholdToBits = ThresholdToBits;
    kernels.copyBits = CopyBits;
    kernels.runLength = RunLength;
    kernels.literalLength = LiteralLength;
}

}  // namespace Zelkor::Kernels::RowsAvx2

KX_TARGET_END

#endif
