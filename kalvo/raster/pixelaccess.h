#pragma once
// One small class per pixel layout that reads and stores a pixel of a row.

#include <cstring>
#include <utility>

#include "kalvo/raster/surface.h"

namespace Zelkor::Platform {

struct Bits1Access {
    static RawPixel Read(const std::uint8_t* row, int x) { return row[x >> 3] >> (7 - (x & 7)) & 1; }
    static void Store(std::uint8_t* row, int x, RawPixel pixel) {
        const unsigned bit = 0x80u >> (x & 7);
        row[x >> 3] = static_cast<std::uint8_t>(pixel ? row[x >> 3] | bit : row[x >> 3] & ~bit);
    }
};

struct Indexed8Access {
    static RawPixel Read(const std::uint8_t* row, int x) { return row[x]; }
    static void Store(std::uint8_t* row, int x, RawPixel pixel) { row[x] = static_cast<std::uint8_t>(pixel); }
};

struct Word16Access {
    static RawPixel Read(const std::uint8_t* row, int x) {
        std::uint16_t word;
        std::memcpy(&word, row + 2 * static_cast<std::ptrdiff_t>(x), 2);
        return word;
    }
    static void Store(std::uint8_t* row, int x, RawPixel pixel) {
        const auto word = static_cast<std::uint16_t>(pixel);
        std::memcpy(row + 2 * static_cast<std::ptrdiff_t>(x), &word, 2);
    }
};

struct Bgr24Access {
    static RawPixel Read(const std::uint8_t* row, int x) {
        const std::uint8_t* bytes = row + 3 * static_cast<std::ptrdiff_t>(x);
        return PackBgr(bytes[2], bytes[1], bytes[0]);
    }
    static void Store(std::uint8_t* row, int x, RawPixel pixel) {
        std::uint8_t* bytes = row + 3 * static_cast<std::ptrdiff_t>(x);
        bytes[0] = static_cast<std::uint8_t>(pixel);
        bytes[1] = static_cast<std::uint8_t>(pixel >> 8);
        bytes[2] = static_cast<std::uint8_t>(pixel >> 16);
    }
};

struct Bgrx32Access {
    static RawPixel Read(const std::uint8_t* row, int x) {
        RawPixel pixel;
        std::memcpy(&pixel, row + 4 * static_cast<std::ptrdiff_t>(x), 4);
        return pixel & 0xFFFFFF;
    }
    static void Store(std::uint8_t* row, int x, RawPixel pixel) {
        std::memcpy(row + 4 * static_cast<std::ptrdiff_t>(x), &pixel, 4);
    }
};

// Calls `operation` with the access object of a layout, so that a loop over pixels is compiled once for each.
template <class Operation>
void WithPixels(PixelLayout layout, Operation&& operation) {
    switch (layout) {
    case PixelLayout::Bits1:
        return operation(Bits1Access{});
    case PixelLayout::Indexed8:
        return operation(Indexed8Access{});
    case PixelLayout::Rgb555:
    case PixelLayout::Rgb565:
        return operation(Word16Access{});
    case PixelLayout::Bgr24:
        return operation(Bgr24Access{});
    case PixelLayout::Bgrx32:
        return operation(Bgrx32Access{});
    }
}

}  // namespace Zelkor::Platform
