#pragma once
// Parallel projection in 16.16 fixed point: what relief and colour histogram have in common.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "kalvo/image/regionrows.h"

namespace Zelkor::Kalvo {

// From where we look, by the sines and cosines of its two angles.
struct View {
    float ca, sa, cb, sb;

    View(float angle1Radians, float angle2Radians)
        : ca(std::cos(angle1Radians)),
          sa(std::sin(angle1Radians)),
          cb(std::cos(angle2Radians)),
          sb(std::sin(angle2Radians)) {}
};

// A number with 16 fractional bits. Wide, so that sensible scales never wrap; unsigned, so that absurd ones
// wrap around instead of overflowing, and one comparison tells whether a coordinate lies between 0 and a
// limit.
using Fixed = std::uint64_t;

inline Fixed ToFixed(float value) {
    constexpr double kLargest = 0x1p62;
    const double scaled = value * 65536.0;
    return std::isnan(scaled)
               ? 0
               : static_cast<Fixed>(static_cast<std::int64_t>(std::clamp(scaled, -kLargest, kLargest)));
}

// The first coordinate that is too large for `size` places.
inline Fixed LimitOf(int size) { return size > 0 ? Fixed{static_cast<unsigned>(size)} << 16 : 0; }

inline std::int64_t WholePart(Fixed coordinate) { return static_cast<std::int64_t>(coordinate >> 16); }

// Mid grey, in every component.
inline void FillBackground(const RegionRows& rows, std::size_t bytesPerPixel) {
    for (int y = 0; y < rows.height; ++y) std::memset(rows.Row(y), 128, bytesPerPixel * rows.width);
}

}  // namespace Zelkor::Kalvo
