#pragma once
// The pixel types as type lists for typed tests, and sample values of each.

#include <gtest/gtest.h>

#include <cstring>

#include "kalvo/pixels/kxpixellist.h"

namespace Zelkor::Kalvo::Testing {

template <class Tuple>
struct AsTypes;
template <class... Pixel>
struct AsTypes<std::tuple<Pixel...>> {
    using Types = testing::Types<Pixel...>;
};

// All fifteen.
using AllPixels = AsTypes<PixelTypes>::Types;

// Those that image files hold, in the order of their numbers.
using FilePixels = testing::Types<KxBW1, KxBW8, KxBW16, KxBW32, KxC15, KxC16, KxC24, KxC24A>;

// A pixel whose bytes are `seed`, `seed` + 1, ...
template <class Pixel>
Pixel SamplePixel(unsigned seed) {
    unsigned char bytes[sizeof(Pixel)];
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(seed++);
    Pixel pixel;
    std::memcpy(static_cast<void*>(&pixel), bytes, sizeof(Pixel));
    return pixel;
}

template <>
inline KxBW1 SamplePixel<KxBW1>(unsigned seed) {
    return KxBW1(static_cast<int>(seed % 2));
}

// Whether two pixels have the same bytes.
template <class Pixel>
bool SameBytes(const Pixel& a, const Pixel& b) {
    return std::memcmp(static_cast<const void*>(&a), static_cast<const void*>(&b), sizeof(Pixel)) == 0;
}

}  // namespace Zelkor::Kalvo::Testing
