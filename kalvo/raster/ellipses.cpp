// Ellipses and arcs: rows of an ellipse, the ring that a pen leaves along it, and the angle of an arc.
#include "kalvo/raster/shapes.h"

#include <cstdlib>

namespace Zelkor::Platform {
namespace {

class EllipseRows {
public:
    explicit EllipseRows(const Box& box) : m_box(box) {}

    Span Row(std::int64_t y) const {
        if (m_box.IsEmpty() || y < m_box.top || y >= m_box.bottom) return {};
        const std::int64_t doubledCentre = m_box.left + m_box.right - 1;
        const std::int64_t reach = Reach(std::abs(2 * y - (m_box.top + m_box.bottom - 1)));
        return {DivideUp<std::int64_t>(doubledCentre - reach, 2),
                DivideDown<std::int64_t>(doubledCentre + reach, 2) + 1};
    }

private:
    // Half the length of a chord, in half pixels like the chord's distance from the centre: the greatest x of
    // x^2 / width^2 + distance^2 / height^2 <= 1.
    std::int64_t Reach(std::int64_t distance) const {
        const std::int64_t width = m_box.Width();
        if (distance <= 1) return width - 1;
        const auto reach = static_cast<std::int64_t>(IntegerRoot(SquaredReach(distance)));
        return std::max<std::int64_t>(reach, width % 2 == 0 ? 1 : 0);
    }

    // width^2 * (height^2 - distance^2) / height^2, rounded down. The product has up to 134 bits, so it is
    // divided in two steps; that of usual sizes has 64, and one division takes a fraction of the time.
    UInt128 SquaredReach(std::int64_t distance) const {
        constexpr std::uint64_t kUsual = 0x10000;
        const auto width = static_cast<std::uint64_t>(m_box.Width());
        const auto height = static_cast<std::uint64_t>(m_box.Height());
        const auto down = static_cast<std::uint64_t>(distance);
        if (width < kUsual && height < kUsual)
            return width * width * ((height - down) * (height + down)) / (height * height);
        const UInt128 dividend = UInt128{height - down} * (height + down) * width;
        return (dividend / height * width + dividend % height * width / height) / height;
    }

    Box m_box;
};

// An ellipse as its pen leaves it: in each row a span, and the part of it that the pen leaves to the brush.
class Ring {
public:
    struct Row {
        Span outer;
        Span inner;
    };

    Ring(const Box& box, std::int64_t penWidth)
        : m_isWide(penWidth > 1),
          m_outerBox(Outer(box, penWidth)),
          m_outer(m_outerBox),
          m_inner(m_outerBox.GrownBy(-penWidth)) {}

    Span Rows() const { return {m_outerBox.top, m_outerBox.bottom}; }

    Row At(std::int64_t y) const {
        const Span outer = m_outer.Row(y);
        if (m_isWide) return {outer, m_inner.Row(y)};
        // A pixel is inner when its four neighbours belong to the ellipse. Of the rows above and below, the
        // one further from the middle is the shorter one.
        const bool isAboveMiddle = 2 * y < m_outerBox.top + m_outerBox.bottom - 1;
        const Span next = m_outer.Row(isAboveMiddle ? y - 1 : y + 1);
        return {outer, Intersection(next, {outer.begin + 1, outer.end - 1})};
    }

private:
    static Box Outer(const Box& box, std::int64_t penWidth) {
        const std::int64_t before = penWidth / 2;
        const std::int64_t after = (penWidth - 1) / 2;
        return {box.left - before, box.top - before, box.right + after, box.bottom + after};
    }

    bool m_isWide;
    Box m_outerBox;
    EllipseRows m_outer, m_inner;
};

// Calls operation(span) for what is left of a span outside a hole.
template <class Operation>
void ForOutside(Span span, Span hole, Operation&& operation) {
    if (hole.IsEmpty()) return operation(span);
    operation(Intersection(span, {span.begin, hole.begin}));
    operation(Intersection(span, {hole.end, span.end}));
}

// A direction, y upwards, in half pixels.
struct Ray {
    std::int64_t x;
    std::int64_t y;
};

Int128 Cross(Ray a, Ray b) { return Int128{a.x} * b.y - Int128{a.y} * b.x; }

// The angle between two rays. What is not above 180 degrees is convex, and in each row a span; so a larger
// angle is kept as the one that is left out.
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
    // height) from the centre, in half pixels.
    template <class Operation>
    void ForPieces(Span span, std::int64_t centreX, std::int64_t height, Operation&& operation) const {
        if (m_isWhole) return operation(span);
        // Pixels on the rays belong to the arc.
        const int least = m_isLeftOut ? 1 : 0;
        const Int128 fromConstant = Int128{m_from.x} * height + Int128{m_from.y} * centreX;
        const Int128 toConstant = Int128{m_to.x} * height + Int128{m_to.y} * centreX;
        Span within = WhereNotNegative(span, Int128{-2} * m_from.y, fromConstant - least);
        within = WhereNotNegative(within, Int128{2} * m_to.y, -toConstant - least);
        if (!m_isLeftOut) return operation(within);
        ForOutside(span, within, operation);
    }

private:
    static Ray RayThrough(Position point, Position doubledCentre) {
        const Ray ray{2 * point.x - doubledCentre.x, doubledCentre.y - 2 * point.y};
        return ray.x == 0 && ray.y == 0 ? Ray{1, 0} : ray;
    }

    Ray m_from{}, m_to{};
    bool m_isWhole = false;
    bool m_isLeftOut = false;
};

}  // namespace

void DrawEllipse(const Surface& surface, Box box, const Inks& inks) {
    if (box.IsEmpty()) return;
    if (!inks.pen) {
        if (!inks.brush) return;
        const EllipseRows rows({box.left, box.top, box.right - 1, box.bottom - 1});
        return ForVisibleRows(surface, {box.top, box.bottom - 1},
                              [&](int y) { PaintSpan(surface, y, rows.Row(y), *inks.brush); });
    }
    const Ring ring(box, inks.pen->width);
    ForVisibleRows(surface, ring.Rows(), [&](int y) {
        const auto [outer, inner] = ring.At(y);
        ForOutside(outer, inner, [&](Span piece) { PaintSpan(surface, y, piece, inks.pen->pixel); });
        if (inks.brush) PaintSpan(surface, y, inner, *inks.brush);
    });
}

void DrawArc(const Surface& surface, const Box& box, Position start, Position end, const Stroke& pen) {
    if (box.IsEmpty()) return;
    const Position doubledCentre{box.left + box.right - 1, box.top + box.bottom - 1};
    const Sector sector(doubledCentre, start, end);
    const Ring ring(box, pen.width);
    const std::int64_t penShift = pen.width % 2 == 0 ? 1 : 0;
    ForVisibleRows(surface, ring.Rows(), [&](int y) {
        const auto [outer, inner] = ring.At(y);
        const std::int64_t height = doubledCentre.y - penShift - 2 * std::int64_t{y};
        ForOutside(outer, inner, [&](Span piece) {
            sector.ForPieces(piece, doubledCentre.x - penShift, height,
                             [&](Span part) { PaintSpan(surface, y, part, pen.pixel); });
        });
    });
}

}  // namespace Zelkor::Platform
