// Exact arithmetic of shapes.

#include "kalvo/raster/spans.h"

#include <cmath>

namespace Zelkor::Platform {

std::uint64_t IntegerRoot(UInt128 value) {
    // The root of a number that a double can hold is never rounded up to the next whole number. A double
    // knows 53 bits of other roots; those of more bits take one step of refinement.
    if (value >> 52 == 0)
        return static_cast<std::uint64_t>(std::sqrt(static_cast<double>(static_cast<std::int64_t>(value))));
    auto root = static_cast<UInt128>(std::sqrt(static_cast<double>(value)));
    if (value >> 100 != 0) root = (root + value / root) / 2;
    while (root * root > value) --root;
    while ((root + 1) * (root + 1) <= value) ++root;
    return static_cast<std::uint64_t>(root);
}

Span WhereNotNegative(Span span, Int128 slope, Int128 constant) {
    const Int128 begin = span.begin;
    const Int128 end = span.end;
    if (slope > 0) {
        const Int128 first = DivideUp(-constant, slope);
        return {static_cast<std::int64_t>(std::clamp(first, begin, std::max(begin, end))), span.end};
    }
    if (slope < 0) {
        const Int128 last = DivideDown(constant, -slope);
        return {span.begin, static_cast<std::int64_t>(std::clamp(last + 1, std::min(begin, end), end))};
    }
    return constant >= 0 ? span : Span{};
}

}  // namespace Zelkor::Platform
