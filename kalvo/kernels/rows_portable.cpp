// The row kernels in plain C++: what runs where no better set does, and finishes the rows of the others.

#include "kalvo/kernels/kernels.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace Zelkor::Kernels::RowsPortable {
namespace {

// In a word the first byte is the highest, so that shifting left moves towards the first bit.
std::uint64_t SwapFromBigEndian(std::uint64_t word) {
    if constexpr (std::endian::native == std::endian::little) return __builtin_bswap64(word);
    return word;
}

std::uint64_t LoadWord(const std::uint8_t* bytes) {
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return SwapFromBigEndian(word);
}

void StoreWord(std::uint8_t* bytes, std::uint64_t word) {
    word = SwapFromBigEndian(word);
    std::memcpy(bytes, &word, sizeof word);
}

void SwapRedBlue(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
    for (; pixels > 0; --pixels, source += 3, destination += 3) {
        const std::uint8_t first = source[0], second = source[1], third = source[2];
        destination[0] = third;
        destination[1] = second;
        destination[2] = first;
    }
}

// Eight pixels at once: every byte of the word keeps its own bit, then grows from that bit to 255.
std::uint64_t ExpandByte(std::uint8_t eight) {
    const std::uint64_t ownBits = eight * 0x0101010101010101u & 0x8040201008040201u;
    return ((ownBits + 0x7F7F7F7F7F7F7F7Fu) >> 7 & 0x0101010101010101u) * 255;
}

void ExpandBits(const std::uint8_t* bits, int firstBit, std::uint8_t* bytes, std::size_t pixels) {
    for (int bit = firstBit; pixels > 0; bit = 0, ++bits) {
        if (bit == 0 && pixels >= 8) {
            StoreWord(bytes, ExpandByte(*bits));
            bytes += 8;
            pixels -= 8;
        } else {
            for (; bit < 8 && pixels > 0; ++bit, --pixels) *bytes++ = (*bits << bit & 0x80) != 0 ? 255 : 0;
        }
    }
}

void ThresholdToBits(const std::uint8_t* bytes, std::uint8_t threshold, std::uint8_t* bits,
                     std::size_t pixels) {
    for (; pixels > 0; ++bits) {
        const std::size_t count = std::min<std::size_t>(pixels, 8);
        unsigned packed = 0;
        for (std::size_t i = 0; i < count; ++i) packed |= (bytes[i] >= threshold ? 0x80u : 0u) >> i;
        *bits = static_cast<std::uint8_t>(packed);
        bytes += count;
        pixels -= count;
    }
}

// Copies 1 to 8 bits that end up in one destination byte; they may come from two source bytes.
void CopyIntoByte(const std::uint8_t* source, int sourceBit, std::uint8_t* destination, int destinationBit,
                  int bits) {
    unsigned value = static_cast<unsigned>(source[0]) << sourceBit;
    if (sourceBit + bits > 8) value |= source[1] >> (8 - sourceBit);
    const unsigned mask = (0xFF00u >> bits & 0xFFu) >> destinationBit;
    *destination =
        static_cast<std::uint8_t>((*destination & ~mask) | ((value & 0xFFu) >> destinationBit & mask));
}

void CopyBits(const std::uint8_t* source, int sourceBit, std::uint8_t* destination, int destinationBit,
              std::size_t bits) {
    if (destinationBit > 0 && bits > 0) {
        const int head = static_cast<int>(std::min<std::size_t>(bits, 8 - destinationBit));
        CopyIntoByte(source, sourceBit, destination++, destinationBit, head);
        source += (sourceBit + head) / 8;
        sourceBit = (sourceBit + head) % 8;
        bits -= head;
    }
    std::size_t bytes = bits / 8;
    if (sourceBit == 0) {
        std::copy_n(source, bytes, destination);
        source += bytes;
        destination += bytes;
    } else {
        const int carry = 8 - sourceBit;
        for (; bytes >= 8; bytes -= 8, source += 8, destination += 8) {
            StoreWord(destination, LoadWord(source) << sourceBit | source[8] >> carry);
        }
        for (; bytes > 0; --bytes, ++source, ++destination) {
            *destination = static_cast<std::uint8_t>(source[0] << sourceBit | source[1] >> carry);
        }
    }
    if (const int tail = bits % 8; tail > 0) CopyIntoByte(source, sourceBit, destination, 0, tail);
}

std::size_t RunLength(const std::uint8_t* bytes, std::size_t count) {
    std::size_t length = 0;
    while (length < count && bytes[length] == bytes[0]) ++length;
    return length;
}

std::size_t LiteralLength(const std::uint8_t* bytes, std::size_t count) {
    for (std::size_t i = 0; i + 2 < count; ++i) {
        if (bytes[i] == bytes[i + 1] && bytes[i] == bytes[i + 2]) return i;
    }
    return count;
}

// Eight at a time: single bytes that are stored look to the processor as if they might change the table.
void LookUp(const std::uint8_t* table, const std::uint8_t* source, std::uint8_t* destination,
            std::size_t count) {
    constexpr std::size_t kGroup = 8;
    for (; count >= kGroup; count -= kGroup, source += kGroup, destination += kGroup) {
        std::uint8_t group[kGroup];
        for (std::size_t k = 0; k < kGroup; ++k) group[k] = table[source[k]];
        std::memcpy(destination, group, kGroup);
    }
    for (std::size_t i = 0; i < count; ++i) destination[i] = table[source[i]];
}

}  // namespace

void Install(Table& kernels) {
    kernels.lookUp = LookUp;
    kernels.swapRedBlue = SwapRedBlue;
    kernels.expandBits = ExpandBits;
    kernels.thresholdToBits = ThresholdToBits;
    kernels.copyBits = CopyBits;
    kernels.runLength = RunLength;
    kernels.literalLength = LiteralLength;
}

}  // namespace Zelkor::Kernels::RowsPortable
