// Points, lines one pixel wide, spans and boxes on a surface.

#include "kalvo/raster/lines.h"

#include <cstddef>
#include <cstdlib>
#include <utility>

#include "kalvo/raster/pixelaccess.h"

namespace Zelkor::Platform {
namespace {

// A line as its longer axis sees it: step i of `length` is pixel major + i * majorStep; across it has moved
// floor((2 * i * rise + bias) / (2 * length)) pixels in the direction of minorStep.
struct Steps {
    bool alongX;
    std::int64_t major, minor;
    int majorStep, minorStep;
    std::int64_t length, rise;
    std::int64_t bias;  // half of the divisor rounds to the nearest pixel, one less rounds a tie back

    Steps(Position from, Position to) {
        std::int64_t across = to.y - from.y;
        std::int64_t along = to.x - from.x;
        alongX = std::abs(along) >= std::abs(across);
        if (!alongX) {
            std::swap(along, across);
            std::swap(from.x, from.y);
        }
        major = from.x;
        minor = from.y;
        majorStep = along < 0 ? -1 : 1;
        minorStep = across < 0 ? -1 : 1;
        length = std::abs(along);
        rise = std::abs(across);
        bias = length - (minorStep > 0 ? 1 : 0);
    }

    // The steps whose pixels are in a box.
    Span Inside(const Box& box) const {
        const Span majors = alongX ? box.Columns() : box.Rows();
        const Span minors = alongX ? box.Rows() : box.Columns();
        Span steps{0, length};
        steps = WhereNotNegative(steps, majorStep, Int128{major} - majors.begin);
        steps = WhereNotNegative(steps, -majorStep, Int128{majors.end} - 1 - major);
        // How far the line may move across before it enters, and before it leaves.
        const Int128 enter = minorStep > 0 ? minors.begin - minor : minor - (minors.end - 1);
        const Int128 leave = minorStep > 0 ? minors.end - minor : minor - minors.begin + 1;
        const Int128 divisor = Int128{2} * length;
        steps = WhereNotNegative(steps, Int128{2} * rise, bias - divisor * enter);
        return WhereNotNegative(steps, Int128{-2} * rise, divisor * leave - bias - 1);
    }
};

// Calls visit(x, y) for the pixels of some steps; y counts in units of `rowUnit`.
template <class Visit>
void WalkSteps(const Steps& line, Span steps, std::ptrdiff_t rowUnit, Visit&& visit) {
    const Int128 numerator = Int128{2} * steps.begin * line.rise + line.bias;
    const std::int64_t divisor = 2 * line.length;
    const std::int64_t major = line.major + line.majorStep * steps.begin;
    const std::int64_t minor = line.minor + line.minorStep * static_cast<std::int64_t>(numerator / divisor);
    auto error = static_cast<std::int64_t>(numerator % divisor);

    const int majorColumns = line.alongX ? line.majorStep : 0;
    const int minorColumns = line.alongX ? 0 : line.minorStep;
    const std::ptrdiff_t majorRows = line.alongX ? 0 : line.majorStep * rowUnit;
    const std::ptrdiff_t minorRows = line.alongX ? line.minorStep * rowUnit : 0;

    int x = static_cast<int>(line.alongX ? major : minor);
    std::ptrdiff_t y = (line.alongX ? minor : major) * rowUnit;
    for (std::int64_t count = steps.end - steps.begin; count > 0; --count) {
        visit(x, y);
        x += majorColumns;
        y += majorRows;
        error += 2 * line.rise;
        if (error < divisor) continue;
        error -= divisor;
        x += minorColumns;
        y += minorRows;
    }
}

Span VisibleSteps(const Surface& surface, const Steps& line, Position from, Position to) {
    const Box visible = VisibleBox(surface);
    const bool isInside = visible.Contains(from) && visible.Contains(to);
    return isInside ? Span{0, line.length} : line.Inside(visible);
}

}  // namespace

void PaintPoint(const Surface& surface, Position point, Ink ink) {
    if (IsVisible(surface, point))
        ApplyInk(surface, static_cast<int>(point.x), static_cast<int>(point.y), ink);
}

void PaintSpan(const Surface& surface, int y, Span columns, const Fill& fill) {
    ForVisibleSpans(surface, y, columns, [&](int x0, int x1) { ApplyFill(surface, y, x0, x1, fill); });
}

void PaintBox(const Surface& surface, const Box& box, const Fill& fill) {
    ForVisibleRows(surface, box.Rows(), [&](int y) { PaintSpan(surface, y, box.Columns(), fill); });
}

std::int64_t CountSteps(Position from, Position to) {
    return std::max(std::abs(to.x - from.x), std::abs(to.y - from.y));
}

void PaintLine(const Surface& surface, Position from, Position to, Ink ink) {
    if (from.y == to.y) {
        const Span columns = from.x <= to.x ? Span{from.x, to.x} : Span{to.x + 1, from.x + 1};
        return ForVisibleRows(surface, {from.y, from.y + 1}, [&](int y) {
            ForVisibleSpans(surface, y, columns, [&](int x0, int x1) { ApplyInk(surface, y, x0, x1, ink); });
        });
    }
    const Steps line(from, to);
    const Span steps = VisibleSteps(surface, line, from, to);
    if (steps.IsEmpty()) return;
    if (!ink.Covers() || !IsClippedByBox(surface))
        return WalkSteps(line, steps, 1, [&](int x, std::ptrdiff_t y) { PaintPoint(surface, {x, y}, ink); });
    // Copies: what is stored might else change what is referred to, as far as the compiler knows.
    WithPixels(surface.layout, [&](auto access) {
        WalkSteps(line, steps, surface.pitchBytes,
                  [access, topRow = surface.topRow, pixel = ink.flip](int x, std::ptrdiff_t row) {
                      access.Store(topRow + row, x, pixel);
                  });
    });
}

void PaintDashes(const Surface& surface, Position from, Position to, const Stroke& pen,
                 std::int64_t stepsBefore) {
    const Steps line(from, to);
    const Span steps = VisibleSteps(surface, line, from, to);
    if (steps.IsEmpty()) return;
    std::int64_t step = stepsBefore + steps.begin;
    WalkSteps(line, steps, 1, [&](int x, std::ptrdiff_t y) {
        PaintPoint(surface, {x, y}, pen.InkAt(step++));
    });
}

}  // namespace Zelkor::Platform
