// Polygons: the fill walks the visible rows with the edges that cross them, then the outline goes over it.

#include <cstring>
#include <vector>

#include "kalvo/raster/shapes.h"

namespace Zelkor::Platform {
namespace {

// Calls operation(from, to) for the edges of a closed polygon.
template <class Operation>
void ForEdges(std::span<const POINT> points, Position origin, Operation&& operation) {
    const auto placed = [&](const POINT& point) { return Position{point.x + origin.x, point.y + origin.y}; };
    Position from = placed(points.back());
    for (const POINT& point : points) {
        const Position to = placed(point);
        operation(from, to);
        from = to;
    }
}

// An edge on its way down the surface. It crosses the current row at or less than one pixel left of `column`,
// by slack / rise; so pixels from `column` on have it to their left.
class Edge {
public:
    // Both are in different rows; the upper one's row is crossed, the lower one's is not.
    Edge(Position upper, Position lower, Span visibleRows)
        : m_rows(Intersection({upper.y, lower.y}, visibleRows)), m_rise(lower.y - upper.y) {
        const std::int64_t run = lower.x - upper.x;
        const Int128 moved = Int128{run} * (m_rows.begin - upper.y);
        const Int128 columns = DivideUp<Int128>(moved, m_rise);
        m_column = upper.x + static_cast<std::int64_t>(columns);
        m_slack = static_cast<std::int64_t>(columns * m_rise - moved);
        m_columnStep = DivideDown(run, m_rise);
        m_slackStep = run - m_columnStep * m_rise;
    }

    Span Rows() const { return m_rows; }
    std::int64_t Column() const { return m_column; }

    void GoDown() {
        m_column += m_columnStep;
        m_slack -= m_slackStep;
        if (m_slack >= 0) return;
        m_slack += m_rise;
        ++m_column;
    }

private:
    Span m_rows;
    std::int64_t m_column, m_columnStep;
    std::int64_t m_slack, m_slackStep;
    std::int64_t m_rise;
};

std::vector<Edge> VisibleEdges(const Surface& surface, std::span<const POINT> points, Position origin) {
    std::vector<Edge> edges;
    ForEdges(points, origin, [&](Position from, Position to) {
        const bool isDownward = from.y < to.y;
        const Position upper = isDownward ? from : to;
        const Position lower = isDownward ? to : from;
        if (!Intersection({upper.y, lower.y}, RowsOf(surface)).IsEmpty())
            edges.emplace_back(upper, lower, RowsOf(surface));
    });
    std::ranges::sort(edges, {}, [](const Edge& edge) { return edge.Rows().begin; });
    return edges;
}

// The columns of a row where inside and outside change. Marks instead of a sorted list: a row may have a
// crossing for every edge of a huge polygon, and two in one place cancel out.
class Crossings {
public:
    explicit Crossings(int width) : m_width(width), m_isMarked(static_cast<std::size_t>(width) + 1) {}

    void Add(std::int64_t column) {
        column = std::clamp<std::int64_t>(column, 0, m_width);
        m_isMarked[static_cast<std::size_t>(column)] ^= 1;
        m_marked = Hull(m_marked, {column, column + 1});
    }

    // Calls operation(span) for what is inside, and forgets all.
    template <class Operation>
    void TakeSpans(Operation&& operation) {
        for (Span inside; !m_marked.IsEmpty(); operation(inside)) {
            inside.begin = Take();
            inside.end = Take();
        }
    }

private:
    // Clears the first mark and returns its column.
    std::int64_t Take() {
        std::uint8_t* first = m_isMarked.data();
        void* mark =
            std::memchr(first + m_marked.begin, 1, static_cast<std::size_t>(m_marked.end - m_marked.begin));
        if (mark) *static_cast<std::uint8_t*>(mark) = 0;
        const std::int64_t column = mark ? static_cast<std::uint8_t*>(mark) - first : m_marked.end;
        m_marked.begin = std::min(column + 1, m_marked.end);
        return column;
    }

    std::int64_t m_width;
    std::vector<std::uint8_t> m_isMarked;
    Span m_marked;  // all marks are in here
};

void FillPolygon(const Surface& surface, std::span<const POINT> points, Position origin, RawPixel pixel) {
    const std::vector<Edge> edges = VisibleEdges(surface, points, origin);
    if (edges.empty()) return;
    auto next = edges.begin();
    std::vector<Edge> active;
    Crossings crossings(surface.width);
    ForVisibleRows(surface, {edges.front().Rows().begin, surface.height}, [&](int y) {
        std::erase_if(active, [&](const Edge& edge) { return edge.Rows().end <= y; });
        for (; next != edges.end() && next->Rows().begin == y; ++next) active.push_back(*next);
        for (Edge& edge : active) {
            crossings.Add(edge.Column());
            edge.GoDown();
        }
        crossings.TakeSpans([&](Span inside) { PaintSpan(surface, y, inside, pixel); });
    });
}

}  // namespace

void DrawPolygon(const Surface& surface, std::span<const POINT> points, Position origin, const Inks& inks) {
    if (points.empty()) return;
    if (inks.brush) FillPolygon(surface, points, origin, *inks.brush);
    if (!inks.pen) return;
    // Edges leave out their last pixel for the next edge to draw; those of a single point never would.
    PaintPoint(surface, {points[0].x + origin.x, points[0].y + origin.y}, inks.pen->pixel);
    ForEdges(points, origin, [&](Position from, Position to) { DrawLine(surface, from, to, *inks.pen); });
}

}  // namespace Zelkor::Platform
