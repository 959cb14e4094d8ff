#pragma once
// Points, lines one pixel wide, spans and boxes on a surface, clipped to it and to its region. Any
// coordinates will do, and cost no more than the pixels that can be seen.

#include <cstdint>

#include "kalvo/raster/ink.h"
#include "kalvo/raster/region.h"
#include "kalvo/raster/spans.h"
#include "kalvo/raster/surface.h"

namespace Zelkor::Platform {

// Where drawing can change pixels: on the surface, and within the bounds of what clips it.
inline Box VisibleBox(const Surface& surface) {
    const Box whole{0, 0, surface.width, surface.height};
    return surface.clip ? Intersection(whole, surface.clip->Bounds()) : whole;
}
inline Span ColumnsOf(const Surface& surface) { return VisibleBox(surface).Columns(); }
inline Span RowsOf(const Surface& surface) { return VisibleBox(surface).Rows(); }

// Whether all pixels of the visible box can be changed.
inline bool IsClippedByBox(const Surface& surface) { return !surface.clip || surface.clip->IsBox(); }

inline bool IsVisible(const Surface& surface, Position point) {
    return VisibleBox(surface).Contains(point) && (!surface.clip || surface.clip->Contains(point));
}

// Calls operation(y), an int, for those of the rows that are visible.
template <class Operation>
void ForVisibleRows(const Surface& surface, Span rows, Operation&& operation) {
    const Span visible = Intersection(rows, RowsOf(surface));
    for (std::int64_t y = visible.begin; y < visible.end; ++y) operation(static_cast<int>(y));
}

// Calls operation(x0, x1), ints, for the visible parts of a span in row y of the surface.
template <class Operation>
void ForVisibleSpans(const Surface& surface, int y, Span columns, Operation&& operation) {
    const auto call = [&](Span span) { operation(static_cast<int>(span.begin), static_cast<int>(span.end)); };
    const Span inside = Intersection(columns, {0, surface.width});
    if (inside.IsEmpty()) return;
    if (!surface.clip) return call(inside);
    surface.clip->ForSpans(y, inside, call);
}

void PaintPoint(const Surface& surface, Position point, Ink ink);
void PaintSpan(const Surface& surface, int y, Span columns, const Fill& fill);  // y is on the surface
void PaintBox(const Surface& surface, const Box& box, const Fill& fill);

// How many steps a line between two pixels takes: one for each of its pixels but the last.
std::int64_t CountSteps(Position from, Position to);

// The line between two pixels without the last one. Halfway between two pixels it takes the upper or left
// one, so both directions cover the same pixels.
void PaintLine(const Surface& surface, Position from, Position to, Ink ink);

// The same in dashes, of which some steps have gone before.
void PaintDashes(const Surface& surface, Position from, Position to, const Stroke& pen,
                 std::int64_t stepsBefore);

}  // namespace Zelkor::Platform
