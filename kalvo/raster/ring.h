#pragma once
// The outline of an ellipse or of a rectangle with round corners, row by row.

#include <array>
#include <limits>

#include "kalvo/raster/shapes.h"

namespace Zelkor::Platform {

// Rows of a rectangle whose corners are quarters of an ellipse; of the ellipse itself when that fills the
// box.
class RoundedRows {
public:
    RoundedRows(const Box& box, std::int64_t cornerWidth, std::int64_t cornerHeight);

    Span Row(std::int64_t y) const;

private:
    // Half the length of a chord, in half pixels like the chord's distance from the ellipse's centre.
    std::int64_t Reach(std::int64_t distance) const;
    UInt128 SquaredReach(std::int64_t distance) const;

    Box m_box;
    std::int64_t m_cornerWidth, m_cornerHeight;
};

// A shape as its pen leaves it: in each row a span, and the part of it that the pen leaves to the brush.
class Ring {
public:
    struct Row {
        Span outer;
        Span inner;
    };

    Ring(const Box& box, std::int64_t cornerWidth, std::int64_t cornerHeight, std::int64_t penWidth);
    // Of the ellipse in a box.
    Ring(const Box& box, std::int64_t penWidth) : Ring(box, box.Width(), box.Height(), penWidth) {}

    Span Rows() const { return m_outerBox.Rows(); }
    Row At(std::int64_t y);

    // Draws a part of row y that belongs to the outline.
    void Paint(const Surface& surface, int y, Span piece, const Stroke& pen) const;

private:
    // How far a pixel of the outline is from its rightmost point, counter-clockwise, in steps of lines.
    std::int64_t StepsTo(std::int64_t x, std::int64_t y) const;

    Span OuterRow(std::int64_t y);

    bool m_isWide;
    Box m_outerBox;
    RoundedRows m_outer, m_inner;
    // Where the outline is steep: up to this distance from the middle rows; flat: from the middle columns.
    // In half pixels.
    std::int64_t m_steepReach, m_flatReach;
    // Each row is asked for with a neighbour, which is the next one or was the last one.
    struct KnownRow {
        std::int64_t y = std::numeric_limits<std::int64_t>::min();
        Span span;
    };
    std::array<KnownRow, 2> m_known;  // even and odd ones
};

// Calls operation(span) for what is left of a span outside a hole.
template <class Operation>
void ForOutside(Span span, Span hole, Operation&& operation) {
    if (hole.IsEmpty()) return operation(span);
    operation(Intersection(span, {span.begin, hole.begin}));
    operation(Intersection(span, {hole.end, span.end}));
}

}  // namespace Zelkor::Platform
