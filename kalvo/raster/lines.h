// Points, lines one pixel wide, spans and boxes on a surface, clipped to it. Any coordinates will do, and
// cost no more than the pixels that can be seen.
#pragma once

#include <cstdint>

#include "kalvo/raster/spans.h"
#include "kalvo/raster/surface.h"

namespace Zelkor::Platform {

// A pixel of the surface, or one beyond its edges: 32-bit coordinates plus a 32-bit origin.
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
    bool IsEmpty() const { return left >= right || top >= bottom; }
    // Grown by so many pixels on every side, or shrunk by a negative number of them.
    Box GrownBy(std::int64_t pixels) const {
        return {left - pixels, top - pixels, right + pixels, bottom + pixels};
    }
};

inline Box Intersection(const Box& a, const Box& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

inline Span ColumnsOf(const Surface& surface) { return {0, surface.width}; }
inline Span RowsOf(const Surface& surface) { return {0, surface.height}; }

inline bool IsVisible(const Surface& surface, Position point) {
    return point.x >= 0 && point.x < surface.width && point.y >= 0 && point.y < surface.height;
}

// Calls operation(y), an int, for those of the rows that lie on the surface.
template <class Operation>
void ForVisibleRows(const Surface& surface, Span rows, Operation&& operation) {
    const Span visible = Intersection(rows, RowsOf(surface));
    for (std::int64_t y = visible.begin; y < visible.end; ++y) operation(static_cast<int>(y));
}

void PaintPoint(const Surface& surface, Position point, RawPixel pixel);
void PaintSpan(const Surface& surface, int y, Span columns, RawPixel pixel);  // y is visible
void PaintBox(const Surface& surface, const Box& box, RawPixel pixel);

// The line between two pixels without the last one. Halfway between two pixels it takes the upper or left
// one, so both directions cover the same pixels.
void PaintLine(const Surface& surface, Position from, Position to, RawPixel pixel);

}  // namespace Zelkor::Platform
