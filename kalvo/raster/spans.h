// Exact arithmetic of shapes: runs of whole numbers, and where a linear function is not negative. Coordinates
// have 34 bits, so that two 32-bit ones can be added and doubled; products of two or three of them need 128.
#pragma once

#include <algorithm>
#include <cstdint>

namespace Zelkor::Platform {

__extension__ using Int128 = __int128;
__extension__ using UInt128 = unsigned __int128;

// The quotient rounded towards minus or plus infinity; the divisor is positive.
template <class Integer>
constexpr Integer DivideDown(Integer dividend, Integer divisor) {
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}
template <class Integer>
constexpr Integer DivideUp(Integer dividend, Integer divisor) {
    return dividend / divisor + (dividend % divisor > 0 ? 1 : 0);
}

// The largest number whose square is not above `value`, which is below 2^127.
std::uint64_t IntegerRoot(UInt128 value);

// The numbers begin <= x < end.
struct Span {
    std::int64_t begin = 0;
    std::int64_t end = 0;

    constexpr bool IsEmpty() const { return begin >= end; }
};

constexpr Span Intersection(Span a, Span b) { return {std::max(a.begin, b.begin), std::min(a.end, b.end)}; }

// The smallest span around both; an empty one does not count.
constexpr Span Hull(Span a, Span b) {
    if (a.IsEmpty()) return b;
    if (b.IsEmpty()) return a;
    return {std::min(a.begin, b.begin), std::max(a.end, b.end)};
}

// The part of a span where slope * x + constant >= 0.
Span WhereNotNegative(Span span, Int128 slope, Int128 constant);

}  // namespace Zelkor::Platform
