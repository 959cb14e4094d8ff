#pragma once
// Pixels of any type: patterns to fill regions with, and comparing.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "kalvo/image/kximage.h"

namespace Zelkor::Kalvo::Testing {

/// A pixel that depends on its place and on `seed`.
template <class Pixel>
Pixel PatternPixel(unsigned seed, int x, int y) {
    std::uint32_t bits = (static_cast<unsigned>(x) * 31 + static_cast<unsigned>(y) * 17 + seed) * 2654435761u;
    bits ^= bits >> 15;
    if constexpr (std::is_same_v<Pixel, KxBW1>) {
        return KxBW1(static_cast<int>(bits & 1));
    } else {
        Pixel pixel{};
        std::memcpy(static_cast<void*>(&pixel), &bits, std::min(sizeof pixel, sizeof bits));
        return pixel;
    }
}

template <class Pixel>
void FillPattern(KxROI<Pixel>& region, unsigned seed) {
    for (int y = 0; y < region.GetHeight(); ++y)
        for (int x = 0; x < region.GetWidth(); ++x) region.SetPixel(PatternPixel<Pixel>(seed, x, y), x, y);
}

template <class Pixel>
bool Same(const Pixel& a, const Pixel& b) {
    return std::memcmp(&a, &b, sizeof(Pixel)) == 0;
}

/// Same size and same pixels.
template <class Pixel>
bool SamePixels(const KxROI<Pixel>& a, const KxROI<Pixel>& b) {
    if (a.GetWidth() != b.GetWidth() || a.GetHeight() != b.GetHeight()) return false;
    for (int y = 0; y < a.GetHeight(); ++y)
        for (int x = 0; x < a.GetWidth(); ++x)
            if (!Same(a.GetPixel(x, y), b.GetPixel(x, y))) return false;
    return true;
}

}  // namespace Zelkor::Kalvo::Testing
