// Polygons and chains of lines: a fill walks the visible rows with the edges that cross them, then the
// outline goes over it.

#include <cstring>
#include <utility>
#include <vector>

#include "kalvo/raster/stencil.h"

namespace Zelkor::Platform {
namespace {

Position Placed(POINT point, Position origin) { return {point.x + origin.x, point.y + origin.y}; }

// Calls operation(from, to) for the edges of a closed polygon.
template <class Operation>
void ForEdges(std::span<const POINT> points, Position origin, Operation&& operation) {
    for (std::size_t i = 0; i < points.size(); ++i)
        operation(Placed(points[i], origin), Placed(points[(i + 1) % points.size()], origin));
}

// Calls operation(points) for each polygon.
template <class Operation>
void ForPolygons(std::span<const POINT> points, std::span<const int> counts, Operation&& operation) {
    for (const int count : counts) {
        operation(points.first(static_cast<std::size_t>(count)));
        points = points.subspan(static_cast<std::size_t>(count));
    }
}

// The box around all points.
Box BoxAround(std::span<const POINT> points, Position origin) {
    Box around{};
    for (const POINT& point : points) {
        const auto [x, y] = Placed(point, origin);
        const Box pixel{x, y, x + 1, y + 1};
        around = around.IsEmpty() ? pixel : Hull(around, pixel);
    }
    return around;
}

// An edge on its way down the surface. It crosses the current row at or less than one pixel left of `column`,
// by slack / rise; so pixels from `column` on have it to their left.
class Edge {
public:
    // Both are in different rows; the upper one's row is crossed, the lower one's is not.
    Edge(Position upper, Position lower, int direction, Span visibleRows)
        : m_rows(Intersection({upper.y, lower.y}, visibleRows)),
          m_rise(lower.y - upper.y),
          m_direction(direction) {
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
    int Direction() const { return m_direction; }

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
    int m_direction;  // 1 when the polygon goes down here, -1 up
};

std::vector<Edge> VisibleEdges(const Surface& surface, std::span<const POINT> points,
                               std::span<const int> counts, Position origin) {
    std::vector<Edge> edges;
    const auto add = [&](Position from, Position to) {
        const bool isDownward = from.y < to.y;
        const Position upper = isDownward ? from : to;
        const Position lower = isDownward ? to : from;
        if (!Intersection({upper.y, lower.y}, RowsOf(surface)).IsEmpty())
            edges.emplace_back(upper, lower, isDownward ? 1 : -1, RowsOf(surface));
    };
    ForPolygons(points, counts, [&](std::span<const POINT> polygon) { ForEdges(polygon, origin, add); });
    std::ranges::sort(edges, {}, [](const Edge& edge) { return edge.Rows().begin; });
    return edges;
}

// The columns of a row where edges cross it. Marks instead of a sorted list: a row may have a crossing for
// every edge of a huge polygon.
class Crossings {
public:
    Crossings(int width, FillRule rule)
        : m_width(width),
          m_isMarked(static_cast<std::size_t>(width) + 1),
          m_windings(rule == FillRule::Winding ? m_isMarked.size() : 0) {}

    void Add(std::int64_t column, int direction) {
        column = std::clamp<std::int64_t>(column, 0, m_width);
        const auto place = static_cast<std::size_t>(column);
        if (m_windings.empty()) {
            m_isMarked[place] ^= 1;  // two in one place cancel out
        } else {
            m_isMarked[place] = 1;
            m_windings[place] += direction;
        }
        m_marked = Hull(m_marked, {column, column + 1});
    }

    // Calls operation(span) for what is inside, and forgets all.
    template <class Operation>
    void TakeSpans(Operation&& operation) {
        Span inside;
        for (int winding = 0; !m_marked.IsEmpty();) {
            const std::int64_t column = Take();
            const bool wasInside = winding != 0;
            winding = m_windings.empty() ? winding ^ 1 : winding + TakeWinding(column);
            if (!wasInside) inside.begin = column;
            inside.end = column;
            if (wasInside && winding == 0) operation(inside);
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

    int TakeWinding(std::int64_t column) {
        return column <= m_width ? std::exchange(m_windings[static_cast<std::size_t>(column)], 0) : 0;
    }

    std::int64_t m_width;
    std::vector<std::uint8_t> m_isMarked;
    std::vector<int> m_windings;  // how often the edges of a column go round what is right of it
    Span m_marked;                // all marks are in here
};

void FillPolygons(const Surface& surface, const std::vector<Edge>& edges, const Fill& brush, FillRule rule) {
    if (edges.empty()) return;
    auto next = edges.begin();
    std::vector<Edge> active;
    Crossings crossings(surface.width, rule);
    ForVisibleRows(surface, {edges.front().Rows().begin, surface.height}, [&](int y) {
        std::erase_if(active, [&](const Edge& edge) { return edge.Rows().end <= y; });
        for (; next != edges.end() && next->Rows().begin == y; ++next) active.push_back(*next);
        for (Edge& edge : active) {
            crossings.Add(edge.Column(), edge.Direction());
            edge.GoDown();
        }
        crossings.TakeSpans([&](Span inside) { PaintSpan(surface, y, inside, brush); });
    });
}

void OutlinePolygon(const Surface& surface, std::span<const POINT> points, Position origin,
                    const Stroke& pen) {
    if (points.empty()) return;
    // Edges leave out their last pixel for the next edge to draw; those of a single point never would.
    PaintPoint(surface, Placed(points[0], origin), pen.ink);
    std::int64_t steps = 0;
    ForEdges(points, origin, [&](Position from, Position to) {
        DrawLine(surface, from, to, pen, steps);
        steps += CountSteps(from, to);
    });
}

}  // namespace

void DrawPolygons(const Surface& surface, std::span<const POINT> points, std::span<const int> counts,
                  Position origin, const Inks& inks, FillRule rule) {
    const Box bounds = BoxAround(points, origin).GrownBy(inks.pen ? inks.pen->width : 0);
    DrawOnce(surface, bounds, inks, [&](const Surface& onto, Position corner, const Inks& used) {
        const Position moved{origin.x - corner.x, origin.y - corner.y};
        if (used.brush) FillPolygons(onto, VisibleEdges(onto, points, counts, moved), *used.brush, rule);
        if (!used.pen) return;
        ForPolygons(points, counts,
                    [&](std::span<const POINT> polygon) { OutlinePolygon(onto, polygon, moved, *used.pen); });
    });
}

void DrawPolyline(const Surface& surface, std::span<const POINT> points, Position origin, const Stroke& pen) {
    const Box bounds = BoxAround(points, origin).GrownBy(pen.width);
    DrawOnce(surface, bounds, {pen, {}}, [&](const Surface& onto, Position corner, const Inks& used) {
        const Position moved{origin.x - corner.x, origin.y - corner.y};
        std::int64_t steps = 0;
        for (std::size_t i = 1; i < points.size(); ++i) {
            const Position from = Placed(points[i - 1], moved), to = Placed(points[i], moved);
            DrawLine(onto, from, to, *used.pen, steps);
            steps += CountSteps(from, to);
        }
    });
}

}  // namespace Zelkor::Platform
