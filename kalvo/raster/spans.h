#pragma once
// Exact arithmetic of shapes: runs of whole numbers, positions, boxes, and where a linear function is not
// negative. Coordinates have 34 bits, so that three 32-bit ones can be added, and doubled in 64; products of
// two or three of them need 128.

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
    bool operator==(const Span&) const = default;
};

constexpr Span Intersection(Span a, Span b) { return {std::max(a.begin, b.begin), std::min(a.end, b.end)}; }

// The smallest span around both; an empty one does not count.
constexpr Span Hull(Span a, Span b) {
    if (a.IsEmpty()) return b;
    if (b.IsEmpty()) return a;
    return {std::min(a.begin, b.begin), std::max(a.end, b.end)};
}

// A pixel of the surface, or one beyond its edges: 32-bit coordinates plus a 33-bit origin.
struct Position {
    std::int64_t x = 0;
    std::int64_t y = 0;
};

// Pixels left <= x < right of rows top <= y < bottom.
struct Box {
    std::int64_t left = 0;
    std::int64_t top = 0;
    std::int64_t right = 0;
    std::int64_t bottom = 0;

    std::int64_t Width() const { return right - left; }
    std::int64_t Height() const { return bottom - top; }
    Span Columns() const { return {left, right}; }
    Span Rows() const { return {top, bottom}; }
    bool IsEmpty() const { return left >= right || top >= bottom; }
    bool Contains(Position point) const {
        return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
    }
    // Grown by so many pixels on every side, or shrunk by a negative number of them.
    Box GrownBy(std::int64_t pixels) const {
        return {left - pixels, top - pixels, right + pixels, bottom + pixels};
    }

    bool operator==(const Box&) const = default;
};

inline Box Intersection(const Box& a, const Box& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

// The smallest box around both, which must have pixels.
inline Box Hull(const Box& a, const Box& b) {
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

// The part of a span where slope * x + constant >= 0.
Span WhereNotNegative(Span span, Int128 slope, Int128 constant);

}  // namespace Zelkor::Platform
