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

    // The steps whose pixels are inside.
    Span Visible(const Surface& surface) const {
        const Int128 majorEnd = alongX ? surface.width : surface.height;
        const Int128 minorEnd = alongX ? surface.height : surface.width;
        Span steps{0, length};
        steps = WhereNotNegative(steps, majorStep, major);
        steps = WhereNotNegative(steps, -majorStep, majorEnd - 1 - major);
        // How far the line may move across before it enters, and before it leaves.
        const Int128 enter = minorStep > 0 ? Int128{-minor} : minor - (minorEnd - 1);
        const Int128 leave = minorStep > 0 ? minorEnd - minor : Int128{minor} + 1;
        const Int128 divisor = Int128{2} * length;
        steps = WhereNotNegative(steps, Int128{2} * rise, bias - divisor * enter);
        return WhereNotNegative(steps, Int128{-2} * rise, divisor * leave - bias - 1);
    }
};

template <class Access>
void StoreSteps(Access, const Surface& surface, const Steps& line, Span steps, RawPixel pixel) {
    const Int128 numerator = Int128{2} * steps.begin * line.rise + line.bias;
    const std::int64_t divisor = 2 * line.length;
    const std::int64_t major = line.major + line.majorStep * steps.begin;
    const std::int64_t minor = line.minor + line.minorStep * static_cast<std::int64_t>(numerator / divisor);
    auto error = static_cast<std::int64_t>(numerator % divisor);

    const std::ptrdiff_t pitch = surface.pitchBytes;
    const int majorColumns = line.alongX ? line.majorStep : 0;
    const int minorColumns = line.alongX ? 0 : line.minorStep;
    const std::ptrdiff_t majorBytes = line.alongX ? 0 : line.majorStep * pitch;
    const std::ptrdiff_t minorBytes = line.alongX ? line.minorStep * pitch : 0;

    int x = static_cast<int>(line.alongX ? major : minor);
    std::ptrdiff_t rowBytes = (line.alongX ? minor : major) * pitch;
    for (std::int64_t count = steps.end - steps.begin; count > 0; --count) {
        Access::Store(surface.topRow + rowBytes, x, pixel);
        x += majorColumns;
        rowBytes += majorBytes;
        error += 2 * line.rise;
        if (error < divisor) continue;
        error -= divisor;
        x += minorColumns;
        rowBytes += minorBytes;
    }
}

}  // namespace

void PaintPoint(const Surface& surface, Position point, RawPixel pixel) {
    if (IsVisible(surface, point))
        StorePixel(surface, static_cast<int>(point.x), static_cast<int>(point.y), pixel);
}

void PaintSpan(const Surface& surface, int y, Span columns, RawPixel pixel) {
    const Span visible = Intersection(columns, ColumnsOf(surface));
    if (!visible.IsEmpty())
        FillSpan(surface, y, static_cast<int>(visible.begin), static_cast<int>(visible.end), pixel);
}

void PaintBox(const Surface& surface, const Box& box, RawPixel pixel) {
    ForVisibleRows(surface, {box.top, box.bottom}, [&](int y) {
        PaintSpan(surface, y, {box.left, box.right}, pixel);
    });
}

void PaintLine(const Surface& surface, Position from, Position to, RawPixel pixel) {
    if (from.y == to.y) {
        const Span columns = from.x <= to.x ? Span{from.x, to.x} : Span{to.x + 1, from.x + 1};
        return PaintBox(surface, {columns.begin, from.y, columns.end, from.y + 1}, pixel);
    }
    const Steps line(from, to);
    const bool isInside = IsVisible(surface, from) && IsVisible(surface, to);
    const Span steps = isInside ? Span{0, line.length} : line.Visible(surface);
    if (steps.IsEmpty()) return;
    WithPixels(surface.layout, [&](auto access) { StoreSteps(access, surface, line, steps, pixel); });
}

}  // namespace Zelkor::Platform
