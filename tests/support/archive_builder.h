#pragma once
// Archives of images and regions byte by byte, right or wrong, joined from their parts.

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "kalvo/streams/byteorder.h"
#include "tests/support/temporary_folder.h"

namespace Zelkor::Kalvo::Testing {

inline Bytes Join(std::initializer_list<Bytes> parts) {
    Bytes bytes;
    for (const Bytes& part : parts) bytes.insert(bytes.end(), part.begin(), part.end());
    return bytes;
}

inline Bytes Text(std::string_view text) { return Bytes(text.begin(), text.end()); }

// 32-bit numbers, signed or not.
inline Bytes Numbers(std::initializer_list<std::int64_t> numbers) {
    Bytes bytes;
    for (const std::int64_t number : numbers) AppendLittleEndian(bytes, static_cast<std::uint32_t>(number));
    return bytes;
}

inline Bytes Header(int type, int version = 4) {
    const auto byte = [](int value) { return static_cast<std::uint8_t>(value); };
    return {0x4B, byte(type), byte(version), byte(0x4B ^ type ^ version)};
}

// An object up to its children: header, no texts, their number.
inline Bytes Begin(int type, std::int64_t children, int version = 4) {
    return Join({Header(type, version), Numbers({0, 0, 0, 0, 0, 0, 0, 0, children})});
}

// What stands after them: the placement, then no mask offsets and no cursor. That ends a region.
inline Bytes Place(std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height,
                   int colorSystem = 2) {
    return Numbers({x, y, width, height, colorSystem, 0, 0, 0});
}

inline Bytes Leaf(int type, std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height) {
    return Join({Begin(type, 0), Place(x, y, width, height)});
}

// A dimensional value: the value, what the version puts between, the magnitude of the unit, its name.
inline Bytes Dimension(float value, const Bytes& between, float magnitude, std::string_view unit) {
    Bytes name = Text(unit);
    name.resize(16);
    return Join({Numbers({std::bit_cast<std::int32_t>(value)}), between,
                 Numbers({std::bit_cast<std::int32_t>(magnitude)}), name});
}

// What ends an image: bits per pixel and row, the pixels, and how high and wide one is.
inline Bytes Pixels(std::int64_t bitsPerPixel, std::int64_t bitsPerRow, const Bytes& block) {
    const Bytes dimension = Dimension(1, Numbers({0}), 1, "");
    return Join({Numbers({bitsPerPixel, bitsPerRow}), block, dimension, dimension});
}

}  // namespace Zelkor::Kalvo::Testing
