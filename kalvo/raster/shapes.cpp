// Lines of any width, and rectangles.
#include "kalvo/raster/shapes.h"

#include <array>
#include <cstdlib>

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

}  // namespace

void DrawLine(const Surface& surface, Position from, Position to, const Stroke& pen) {
    if (!pen.IsWide()) return PaintLine(surface, from, to, pen.pixel);
    const Capsule capsule(from, to, pen.width);
    ForVisibleRows(surface, capsule.Rows(),
                   [&](int y) { PaintSpan(surface, y, capsule.Row(y, ColumnsOf(surface)), pen.pixel); });
}

void DrawRectangle(const Surface& surface, Box box, const Inks& inks) {
    if (box.IsEmpty()) return;
    --box.right;
    --box.bottom;
    if (!inks.pen) {
        if (inks.brush) PaintBox(surface, box, *inks.brush);
        return;
    }
    if (inks.brush) PaintBox(surface, {box.left + 1, box.top + 1, box.right, box.bottom}, *inks.brush);
    const std::array<Position, 4> corners{
        {{box.left, box.top}, {box.right, box.top}, {box.right, box.bottom}, {box.left, box.bottom}}};
    PaintPoint(surface, corners[0], inks.pen->pixel);  // the edges of a single pixel have no other
    for (std::size_t i = 0; i < corners.size(); ++i)
        DrawLine(surface, corners[i], corners[(i + 1) % corners.size()], *inks.pen);
}

}  // namespace Zelkor::Platform
