// Arcs, and the pies and chords that they enclose: the angle of an arc, and where its rays meet the ellipse.

#include <cmath>

#include "kalvo/raster/ring.h"
#include "kalvo/raster/stencil.h"

namespace Zelkor::Platform {
namespace {

// A direction, y upwards, in half pixels.
struct Ray {
    std::int64_t x;
    std::int64_t y;
};

Int128 Cross(Ray a, Ray b) { return Int128{a.x} * b.y - Int128{a.y} * b.x; }

// The angle between two rays. One of up to 180 degrees is in each row a span; so a larger angle is kept as
// the one that it leaves out.
class Sector {
public:
    Sector(Position doubledCentre, Position start, Position end) {
        const Ray from = RayThrough(start, doubledCentre);
        const Ray to = RayThrough(end, doubledCentre);
        const Int128 turn = Cross(from, to);
        const bool isSameLine = turn == 0;
        m_isWhole = isSameLine && Int128{from.x} * to.x + Int128{from.y} * to.y > 0;
        m_isLeftOut = turn < 0;
        m_from = m_isLeftOut ? to : from;
        m_to = m_isLeftOut ? from : to;
    }

    // The part of the span in the angle, in up to two pieces. The pixels of the row are at (2 * x - centreX,
    // height) from the centre, in half pixels. The angle that is kept counts as far as `limit` goes.
    template <class Operation>
    void ForPieces(Span span, Span limit, std::int64_t centreX, std::int64_t height,
                   Operation&& operation) const {
        if (m_isWhole) return operation(span);
        // Pixels on the rays belong to the arc.
        const int least = m_isLeftOut ? 1 : 0;
        const Int128 fromConstant = Int128{m_from.x} * height + Int128{m_from.y} * centreX;
        const Int128 toConstant = Int128{m_to.x} * height + Int128{m_to.y} * centreX;
        Span within = WhereNotNegative(span, Int128{-2} * m_from.y, fromConstant - least);
        within = WhereNotNegative(within, Int128{2} * m_to.y, -toConstant - least);
        within = Intersection(within, limit);
        if (!m_isLeftOut) return operation(within);
        ForOutside(span, within, operation);
    }

    Ray From() const { return m_isLeftOut ? m_to : m_from; }
    Ray To() const { return m_isLeftOut ? m_from : m_to; }
    bool IsLeftOut() const { return m_isLeftOut; }

private:
    static Ray RayThrough(Position point, Position doubledCentre) {
        const Ray ray{2 * point.x - doubledCentre.x, doubledCentre.y - 2 * point.y};
        return ray.x == 0 && ray.y == 0 ? Ray{1, 0} : ray;
    }

    Ray m_from{}, m_to{};
    bool m_isWhole = false;
    bool m_isLeftOut = false;
};

Position DoubledCentre(const Box& box) { return {box.left + box.right - 1, box.top + box.bottom - 1}; }

// An arc of the ellipse in a box.
class ArcOutline {
public:
    ArcOutline(const Box& box, Position start, Position end)
        : m_box(box), m_sector(DoubledCentre(box), start, end) {}

    const Sector& Angle() const { return m_sector; }
    Position Start() const { return PointOn(m_sector.From()); }
    Position End() const { return PointOn(m_sector.To()); }
    Position Centre() const {
        const auto [x, y] = DoubledCentre(m_box);
        return {DivideDown<std::int64_t>(x, 2), DivideDown<std::int64_t>(y, 2)};
    }

    // Calls operation(piece) for the parts of a row's span that are in the arc's angle.
    template <class Operation>
    void ForPieces(int y, Span span, std::int64_t penWidth, Operation&& operation) const {
        ForPieces(y, span, span, penWidth, operation);
    }
    template <class Operation>
    void ForPieces(int y, Span span, Span limit, std::int64_t penWidth, Operation&& operation) const {
        const auto [centreX, centreY] = DoubledCentre(m_box);
        const std::int64_t penShift = penWidth % 2 == 0 ? 1 : 0;
        m_sector.ForPieces(span, limit, centreX - penShift, centreY - penShift - 2 * std::int64_t{y},
                           operation);
    }

    void Paint(const Surface& surface, const Stroke& pen) const {
        Ring ring(m_box, pen.width);
        ForVisibleRows(surface, ring.Rows(), [&](int y) {
            const auto [outer, inner] = ring.At(y);
            ForOutside(outer, inner, [&](Span piece) {
                ForPieces(y, piece, pen.width, [&](Span part) { ring.Paint(surface, y, part, pen); });
            });
        });
    }

private:
    // The pixel of the ellipse that is nearest to where a ray leaves it.
    Position PointOn(Ray ray) const {
        const auto [centreX, centreY] = DoubledCentre(m_box);
        const double width = static_cast<double>(m_box.Width() - 1);
        const double height = static_cast<double>(m_box.Height() - 1);
        const double x = static_cast<double>(ray.x) * height, y = static_cast<double>(ray.y) * width;
        const double scale = std::hypot(x, y);
        const auto placed = [&](std::int64_t centre, double offset) {
            const double middle = static_cast<double>(centre) / 2;
            return static_cast<std::int64_t>(std::floor(middle + (scale > 0 ? offset / scale / 2 : 0) + 0.5));
        };
        return {placed(centreX, x * width), placed(centreY, -y * height)};
    }

    Box m_box;
    Sector m_sector;
};

// Calls operation(y, span) for what the pen leaves of the rows of an ellipse.
template <class Operation>
void ForInside(const Surface& surface, const Box& box, const Inks& inks, Operation&& operation) {
    if (inks.pen) {
        Ring ring(box, inks.pen->width);
        ForVisibleRows(surface, ring.Rows(), [&](int y) { operation(y, ring.At(y).inner); });
    } else {
        const RoundedRows rows(box, box.Width(), box.Height());
        ForVisibleRows(surface, box.Rows(), [&](int y) { operation(y, rows.Row(y)); });
    }
}

// The part of a row's span on the arc's side of the line between its ends, with the line itself; of an arc
// above 180 degrees the rest of it. An end is a whole pixel, so the line of a short arc is inexact: it only
// divides the angle.
Span BesideChord(const ArcOutline& arc, int y, Span span) {
    const Position start = arc.Start(), end = arc.End();
    const std::int64_t right = end.x - start.x, down = end.y - start.y;
    const Int128 constant = Int128{right} * (y - start.y) + Int128{down} * start.x;
    if (arc.Angle().IsLeftOut()) return WhereNotNegative(span, Int128{down}, -constant - 1);
    return right == 0 && down == 0 ? Span{} : WhereNotNegative(span, Int128{-down}, constant);
}

enum class Closing : std::uint8_t { AtCentre, Straight };

void FillEnclosed(const Surface& surface, const Box& box, const ArcOutline& arc, Closing closing,
                  const Inks& inks) {
    const std::int64_t penWidth = inks.pen ? inks.pen->width : 1;
    const auto paint = [&](int y, Span span) { PaintSpan(surface, y, span, *inks.brush); };
    ForInside(surface, box, inks, [&](int y, Span span) {
        const Span limit = closing == Closing::Straight ? BesideChord(arc, y, span) : span;
        arc.ForPieces(y, span, limit, penWidth, [&](Span piece) { paint(y, piece); });
    });
}

void OutlineEnclosed(const Surface& surface, const ArcOutline& arc, Closing closing, const Stroke& pen) {
    arc.Paint(surface, pen);
    const Position start = arc.Start(), end = arc.End(), centre = arc.Centre();
    if (closing == Closing::Straight) {
        DrawLine(surface, start, end, pen);
    } else {
        DrawLine(surface, start, centre, pen);
        DrawLine(surface, centre, end, pen, CountSteps(start, centre));
    }
    if (!pen.IsWide()) PaintPoint(surface, end, pen.ink);
}

void DrawEnclosed(const Surface& surface, Box box, Position start, Position end, Closing closing,
                  const Inks& inks) {
    if (!inks.pen) --box.right, --box.bottom;
    if (box.IsEmpty()) return;
    const Box bounds = box.GrownBy(inks.pen ? inks.pen->width : 0);
    DrawOnce(surface, bounds, inks, [&](const Surface& onto, Position corner, const Inks& used) {
        const Box moved{box.left - corner.x, box.top - corner.y, box.right - corner.x, box.bottom - corner.y};
        const ArcOutline arc(moved, {start.x - corner.x, start.y - corner.y},
                             {end.x - corner.x, end.y - corner.y});
        if (used.brush) FillEnclosed(onto, moved, arc, closing, used);
        if (used.pen) OutlineEnclosed(onto, arc, closing, *used.pen);
    });
}

}  // namespace

void DrawArc(const Surface& surface, const Box& box, Position start, Position end, const Stroke& pen) {
    if (!box.IsEmpty()) ArcOutline(box, start, end).Paint(surface, pen);
}

void DrawPie(const Surface& surface, const Box& box, Position start, Position end, const Inks& inks) {
    DrawEnclosed(surface, box, start, end, Closing::AtCentre, inks);
}

void DrawChord(const Surface& surface, const Box& box, Position start, Position end, const Inks& inks) {
    DrawEnclosed(surface, box, start, end, Closing::Straight, inks);
}

}  // namespace Zelkor::Platform
