#pragma once
// Floating point and wider numbers to 32-bit integers, for any value: what does not fit is clamped, NaN is 0.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace Zelkor::Kalvo {

// The integer next to `value` towards zero.
constexpr std::int32_t TruncateToInt(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (value != value) return 0;
    if (value <= Limits::min()) return Limits::min();
    if (value >= Limits::max()) return Limits::max();
    return static_cast<std::int32_t>(value);
}

// `value` itself.
constexpr std::int32_t ClampToInt(std::int64_t value) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

// The nearest integer, halves away from zero; the half is added in single precision.
constexpr std::int32_t RoundToInt(float value) { return TruncateToInt(value + (value < 0 ? -0.5f : 0.5f)); }

// The integer next to `value` towards minus infinity.
inline std::int32_t FloorToInt(double value) { return TruncateToInt(std::floor(value)); }

}  // namespace Zelkor::Kalvo
