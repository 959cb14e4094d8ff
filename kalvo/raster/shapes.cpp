// Lines of any width, and rectangles.

#include "kalvo/raster/shapes.h"

#include <cstdlib>

#include "kalvo/raster/stencil.h"

namespace Zelkor::Platform {
namespace {

// The pixels within half a pen's width of a line from `from` to `to`, row by row. Pixels and the ends of the
// line are counted in half pixels, the line's direction in whole ones.
class Capsule {
public:
    Capsule(Position from, Position to, std::int64_t width)
        : m_from(PenCentre(from, width)),
          m_to(PenCentre(to, width)),
          m_dx(to.x - from.x),
          m_dy(to.y - from.y),
          m_squaredLength(Int128{m_dx} * m_dx + Int128{m_dy} * m_dy),
          m_width(width),
          m_reach(IntegerRoot(static_cast<UInt128>(m_squaredLength * m_width * m_width))) {}

    Span Rows() const {
        const auto [top, bottom] = std::minmax(m_from.y, m_to.y);
        return {DivideUp<std::int64_t>(top - m_width, 2), DivideDown<std::int64_t>(bottom + m_width, 2) + 1};
    }

    Span Row(std::int64_t y, Span columns) const {
        const Span ends = Hull(DiscRow(m_from, y), DiscRow(m_to, y));
        return Hull(Intersection(ends, columns), BodyRow(y, columns));
    }

private:
    static Position PenCentre(Position pixel, std::int64_t width) {
        const std::int64_t shift = width % 2 == 0 ? 1 : 0;
        return {2 * pixel.x - shift, 2 * pixel.y - shift};
    }

    Span DiscRow(Position centre, std::int64_t y) const {
        const std::int64_t distance = 2 * y - centre.y;
        if (std::abs(distance) > m_width) return {};
        const Int128 square = Int128{m_width} * m_width - Int128{distance} * distance;
        const auto reach = static_cast<std::int64_t>(IntegerRoot(static_cast<UInt128>(square)));
        return {DivideUp<std::int64_t>(centre.x - reach, 2),
                DivideDown<std::int64_t>(centre.x + reach, 2) + 1};
    }

    // Pixels beside the line: neither before its beginning nor after its end, nor too far off.
    Span BodyRow(std::int64_t y, Span columns) const {
        if (m_squaredLength == 0) return {};
        const Int128 down = 2 * y - m_from.y;
        const Int128 progress = down * m_dy - Int128{m_from.x} * m_dx;
        const Int128 offset = -down * m_dx - Int128{m_from.x} * m_dy;
        columns = WhereNotNegative(columns, Int128{2} * m_dx, progress);
        columns = WhereNotNegative(columns, Int128{-2} * m_dx, 2 * m_squaredLength - progress);
        columns = WhereNotNegative(columns, Int128{2} * m_dy, m_reach + offset);
        return WhereNotNegative(columns, Int128{-2} * m_dy, m_reach - offset);
    }

    Position m_from, m_to;
    std::int64_t m_dx, m_dy;
    Int128 m_squaredLength;
    std::int64_t m_width;
    Int128 m_reach;  // the greatest product of the direction and an offset across it
};

// One pixel wide, each pixel once, from the top left corner clockwise.
void OutlineThin(const Surface& surface, const Box& corners, const Stroke& pen) {
    const auto [left, top, right, bottom] = corners;
    if (left == right) return DrawLine(surface, {left, top}, {left, bottom + 1}, pen);
    if (top == bottom) return DrawLine(surface, {left, top}, {right + 1, top}, pen);
    const std::int64_t width = right - left, height = bottom - top;
    DrawLine(surface, {left, top}, {right, top}, pen);
    DrawLine(surface, {right, top}, {right, bottom}, pen, width);
    DrawLine(surface, {right, bottom}, {left, bottom}, pen, width + height);
    DrawLine(surface, {left, bottom}, {left, top}, pen, 2 * width + height);
}

// What lines between the corners leave when their pen has a width.
void OutlineWide(const Surface& surface, const Box& corners, const Stroke& pen) {
    const auto [left, top, right, bottom] = corners;
    DrawLine(surface, {left, top}, {right, top}, pen);
    DrawLine(surface, {right, top}, {right, bottom}, pen);
    DrawLine(surface, {right, bottom}, {left, bottom}, pen);
    DrawLine(surface, {left, bottom}, {left, top}, pen);
}

}  // namespace

void DrawLine(const Surface& surface, Position from, Position to, const Stroke& pen,
              std::int64_t stepsBefore) {
    if (pen.IsDashed()) return PaintDashes(surface, from, to, pen, stepsBefore);
    if (!pen.IsWide()) return PaintLine(surface, from, to, pen.ink);
    const Capsule capsule(from, to, pen.width);
    ForVisibleRows(surface, capsule.Rows(),
                   [&](int y) { PaintSpan(surface, y, capsule.Row(y, ColumnsOf(surface)), pen.ink); });
}

void DrawRectangle(const Surface& surface, Box box, const Inks& inks) {
    if (box.IsEmpty()) return;
    --box.right;
    --box.bottom;
    if (!inks.pen) {
        if (inks.brush) PaintBox(surface, box, *inks.brush);
        return;
    }
    const auto fill = [&](const Surface& onto, const Box& corners, const Inks& used) {
        const Box inside{corners.left + 1, corners.top + 1, corners.right, corners.bottom};
        if (used.brush) PaintBox(onto, inside, *used.brush);
    };
    if (!inks.pen->IsWide()) {
        fill(surface, box, inks);
        return OutlineThin(surface, box, *inks.pen);
    }
    DrawOnce(surface, box.GrownBy(inks.pen->width), inks,
             [&](const Surface& onto, Position corner, const Inks& used) {
                 const Box moved{box.left - corner.x, box.top - corner.y, box.right - corner.x,
                                 box.bottom - corner.y};
                 fill(onto, moved, used);
                 OutlineWide(onto, moved, *used.pen);
             });
}

}  // namespace Zelkor::Platform
