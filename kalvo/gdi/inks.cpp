// Pens and brushes as inks.

#include "kalvo/gdi/inks.h"

namespace Zelkor::Platform {
namespace {

// What stands between dashes and hatches.
Ink GapOf(const Context& context, BinaryOperation operation) {
    return context.backgroundMode == OPAQUE ? InkFrom(context, context.backgroundColor, operation) : kNoInk;
}

// The modes are numbered from 1 in the order of their tables of values.
BinaryOperation ModeOf(const Context& context) {
    return static_cast<BinaryOperation>(context.drawingMode - R2_BLACK);
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

COLORREF ColorOf(const Context& context, const Pen& pen) {
    return pen.hasContextColor ? context.penColor : pen.logical.lopnColor;
}
COLORREF ColorOf(const Context& context, const Brush& brush) {
    return brush.hasContextColor ? context.brushColor : brush.logical.lbColor;
}

Fill FillWithGaps(const Context& context, const Brush& brush, BinaryOperation operation, Ink gap) {
    const Ink ink = InkFrom(context, ColorOf(context, brush), operation);
    if (brush.logical.lbStyle != BS_HATCHED) return ink;
    const auto [right, down] = context.brushOrigin;
    return {ink, Moved(PatternOf(brush.logical.lbHatch), right, down), gap};
}

}  // namespace

Ink InkFrom(const Context& context, COLORREF color, BinaryOperation operation) {
    const Surface& surface = context.bitmap->surface;
    return InkOf(operation, RawFromBgr(surface, BgrFromColor(color)), surface.layout);
}

std::optional<Stroke> PenOf(const Context& context) {
    const Pen& pen = *context.pen;
    if (!pen.Draws()) return std::nullopt;
    const BinaryOperation mode = ModeOf(context);
    Stroke stroke{InkFrom(context, ColorOf(context, pen), mode), pen.Width(),
                  DashesOf(pen.logical.lopnStyle)};
    if (stroke.IsDashed()) stroke.gap = GapOf(context, mode);
    return stroke;
}

std::optional<Fill> FillOf(const Context& context, const Brush& brush, BinaryOperation operation) {
    if (!brush.Draws()) return std::nullopt;
    const bool hasGaps = brush.logical.lbStyle == BS_HATCHED;
    return FillWithGaps(context, brush, operation, hasGaps ? GapOf(context, operation) : kNoInk);
}

Fill FillEverywhere(const Context& context, const Brush& brush) {
    return FillWithGaps(context, brush, kCover, InkFrom(context, context.backgroundColor, kCover));
}

std::optional<Fill> BrushOf(const Context& context) {
    return FillOf(context, *context.brush, ModeOf(context));
}

Inks InksOf(const Context& context) { return {PenOf(context), BrushOf(context)}; }

}  // namespace Zelkor::Platform
