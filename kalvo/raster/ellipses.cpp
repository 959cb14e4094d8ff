// Ellipses and rectangles with round corners.

#include "kalvo/raster/ring.h"

namespace Zelkor::Platform {

void DrawEllipse(const Surface& surface, const Box& box, const Inks& inks) {
    DrawRoundRectangle(surface, box, box.Width(), box.Height(), inks);
}

void DrawRoundRectangle(const Surface& surface, Box box, std::int64_t cornerWidth, std::int64_t cornerHeight,
                        const Inks& inks) {
    if (box.IsEmpty()) return;
    if (!inks.pen) --box.right, --box.bottom;
    cornerWidth = std::min(cornerWidth, box.Width());
    cornerHeight = std::min(cornerHeight, box.Height());
    if (!inks.pen) {
        if (!inks.brush) return;
        const RoundedRows rows(box, cornerWidth, cornerHeight);
        return ForVisibleRows(surface, box.Rows(),
                              [&](int y) { PaintSpan(surface, y, rows.Row(y), *inks.brush); });
    }
    Ring ring(box, cornerWidth, cornerHeight, inks.pen->width);
    ForVisibleRows(surface, ring.Rows(), [&](int y) {
        const auto [outer, inner] = ring.At(y);
        ForOutside(outer, inner, [&](Span piece) { ring.Paint(surface, y, piece, *inks.pen); });
        if (inks.brush) PaintSpan(surface, y, inner, *inks.brush);
    });
}

}  // namespace Zelkor::Platform
