// Pens and brushes as inks.
#include "kalvo/gdi/inks.h"

namespace Zelkor::Platform {
namespace {

// The modes are numbered from 1 in the order of their tables of values.
Ink InkFrom(const Context& context, COLORREF color, int mode) {
    const Surface& surface = context.bitmap->surface;
    return InkOf(static_cast<BinaryOperation>(mode - R2_BLACK), RawFromBgr(surface, BgrFromColor(color)),
                 surface.layout);
}

// What stands between dashes and hatches.
Ink GapOf(const Context& context, int mode) {
    return context.backgroundMode == OPAQUE ? InkFrom(context, context.backgroundColor, mode) : kNoInk;
}

constexpr std::uint32_t Run(int begin, int length) { return ((1u << length) - 1) << begin; }

Dashes DashesOf(UINT style) {
    switch (style) {
    case PS_DASH:
        return {Run(0, 18)};
    case PS_DOT:
        return {Run(0, 3) | Run(6, 3) | Run(12, 3) | Run(18, 3)};
    case PS_DASHDOT:
        return {Run(0, 9) | Run(15, 3)};
    case PS_DASHDOTDOT:
        return {Run(0, 9) | Run(12, 3) | Run(18, 3)};
    default:
        return {};
    }
}

Pattern PatternOf(std::uintptr_t hatch) {
    constexpr Pattern kHorizontal = 0xFF000000, kVertical = 0x0808080808080808;
    constexpr Pattern kFalling = 0x0102040810204080, kRising = 0x8040201008040201;
    switch (hatch) {
    case HS_HORIZONTAL:
        return kHorizontal;
    case HS_VERTICAL:
        return kVertical;
    case HS_FDIAGONAL:
        return kFalling;
    case HS_BDIAGONAL:
        return kRising;
    case HS_CROSS:
        return kHorizontal | kVertical;
    default:
        return kFalling | kRising;
    }
}

std::optional<Fill> FillOf(const Context& context, const Brush& brush, int mode) {
    if (!brush.Draws()) return std::nullopt;
    const bool isContexts = brush.isStock && &brush == StockObject(DC_BRUSH);
    const Ink ink = InkFrom(context, isContexts ? context.brushColor : brush.logical.lbColor, mode);
    if (brush.logical.lbStyle != BS_HATCHED) return ink;
    const Pattern pattern =
        Moved(PatternOf(brush.logical.lbHatch), context.brushOrigin.x, context.brushOrigin.y);
    return Fill(ink, pattern, GapOf(context, mode));
}

}  // namespace

std::optional<Stroke> PenOf(const Context& context) {
    const Pen& pen = *context.pen;
    if (!pen.Draws()) return std::nullopt;
    const bool isContexts = pen.isStock && &pen == StockObject(DC_PEN);
    const COLORREF color = isContexts ? context.penColor : pen.logical.lopnColor;
    Stroke stroke{InkFrom(context, color, context.drawingMode), pen.Width(), DashesOf(pen.logical.lopnStyle)};
    if (stroke.IsDashed()) stroke.gap = GapOf(context, context.drawingMode);
    return stroke;
}

std::optional<Fill> BrushOf(const Context& context) {
    return FillOf(context, *context.brush, context.drawingMode);
}

Inks InksOf(const Context& context) { return {PenOf(context), BrushOf(context)}; }

std::optional<Fill> CoveringFill(const Context& context, const Brush& brush) {
    return FillOf(context, brush, R2_COPYPEN);
}

Ink InvertingInk(const Context& context) { return InkFrom(context, 0, R2_NOT); }

}  // namespace Zelkor::Platform
