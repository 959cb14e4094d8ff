// The kernels for pixels of 8-bit components in plain C++; compilers make vector code of most of these loops.

#include "kalvo/kernels/kernels.h"

#include <cstring>

namespace Zelkor::Kernels::PixelsPortable {
namespace {

void CopyBytes(const std::uint8_t* source, std::uint8_t* destination, std::size_t bytes) {
    if (bytes > 0) std::memmove(destination, source, bytes);
}

void Widen24To32(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i) {
        std::memcpy(destination + 4 * i, source + 3 * i, 3);
        destination[4 * i + 3] = 0;
    }
}

void Narrow32To24(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i) std::memcpy(destination + 3 * i, source + 4 * i, 3);
}

void RepeatTo24(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint8_t bytes[3] = {source[i], source[i], source[i]};
        std::memcpy(destination + 3 * i, bytes, 3);
    }
}

void RepeatTo32(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint8_t bytes[4] = {source[i], source[i], source[i], 0};
        std::memcpy(destination + 4 * i, bytes, 4);
    }
}

template <std::size_t kWordBytes>
void LastBytesOf(const std::uint8_t* words, std::uint8_t* bytes, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) bytes[i] = words[kWordBytes * (i + 1) - 1];
}

void LastBytes(const std::uint8_t* words, int wordBytes, std::uint8_t* bytes, std::size_t count) {
    wordBytes == 2 ? LastBytesOf<2>(words, bytes, count) : LastBytesOf<4>(words, bytes, count);
}

// With v up to 255 x 255, (v + 128 + (v + 128) / 256) / 256 is v / 255 rounded, and all of it fits 16 bits.
void BlendConstant(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes,
                   std::uint8_t alpha) {
    const auto rest = static_cast<std::uint16_t>(255 - alpha);
    for (std::size_t i = 0; i < bytes; ++i) {
        const auto sum = static_cast<std::uint16_t>(source[i] * alpha + destination[i] * rest + 128);
        destination[i] = static_cast<std::uint8_t>(static_cast<std::uint16_t>(sum + (sum >> 8)) >> 8);
    }
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

}  // namespace Zelkor::Kernels::PixelsPortable
