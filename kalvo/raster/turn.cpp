// Angles in fixed point, and boxes at an angle.

#include "kalvo/raster/turn.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Zelkor::Platform {
namespace {

std::int64_t Rounded(std::int64_t fixed) {
    return DivideDown<std::int64_t>(fixed + Turn::kOne / 2, Turn::kOne);
}

// The part of a span where begin <= slope * x + constant < end.
Span WhereWithin(Span span, Int128 slope, Int128 constant, Int128 begin, Int128 end) {
    span = WhereNotNegative(span, slope, constant - begin);
    return WhereNotNegative(span, -slope, end - 1 - constant);
}

}  // namespace

Turn::Turn(int tenthsOfDegree) {
    const double angle = tenthsOfDegree % 3600 * (std::numbers::pi / 1800);
    m_cosine = static_cast<int>(std::lround(std::cos(angle) * kOne));
    m_sine = static_cast<int>(std::lround(std::sin(angle) * kOne));
}

Position Turn::Offset(Position place) const {
    return {Rounded(place.x * m_cosine + place.y * m_sine), Rounded(place.y * m_cosine - place.x * m_sine)};
}

void PaintTurnedBox(const Surface& surface, Position origin, const Turn& turn, const Box& box,
                    RawPixel pixel) {
    if (box.IsEmpty()) return;
    if (turn.IsNone())
        return PaintBox(
            surface, {origin.x + box.left, origin.y + box.top, origin.x + box.right, origin.y + box.bottom},
            pixel);
    const auto [top, bottom] =
        std::minmax({turn.Offset({box.left, box.top}).y, turn.Offset({box.right, box.top}).y,
                     turn.Offset({box.left, box.bottom}).y, turn.Offset({box.right, box.bottom}).y});
    // In halves of pixels, centres have whole coordinates.
    const Int128 cosine = turn.Cosine(), sine = turn.Sine(), unit = 2 * Turn::kOne;
    ForVisibleRows(surface, {origin.y + top - 1, origin.y + bottom + 1}, [&](int y) {
        const Int128 x0 = 1 - 2 * origin.x, y0 = 2 * (y - origin.y) + 1;
        Span columns = ColumnsOf(surface);
        columns =
            WhereWithin(columns, 2 * cosine, x0 * cosine - y0 * sine, box.left * unit, box.right * unit);
        columns = WhereWithin(columns, 2 * sine, x0 * sine + y0 * cosine, box.top * unit, box.bottom * unit);
        PaintSpan(surface, y, columns, pixel);
    });
}

}  // namespace Zelkor::Platform
