// The drawing functions: they find the context, move coordinates to the origin of the viewport, choose the
// pixels of pen and brush, and leave the rest to the shapes.

#include <utility>

#include "kalvo/gdi/gdi.h"
#include "kalvo/gdi/objects.h"
#include "kalvo/raster/shapes.h"

namespace Zelkor::Platform {
namespace {

// The box between two opposite corners.
Box PlacedBox(const Context& context, int left, int top, int right, int bottom) {
    const Box box = context.Placed(RECT{left, top, right, bottom});
    return {std::min(box.left, box.right), std::min(box.top, box.bottom), std::max(box.left, box.right),
            std::max(box.top, box.bottom)};
}

RawPixel PixelOf(const Context& context, COLORREF color) {
    return RawFromBgr(context.Target(), BgrFromColor(color));
}

std::optional<Stroke> PenOf(const Context& context) {
    if (!context.pen->Draws()) return std::nullopt;
    return Stroke{PixelOf(context, context.pen->logical.lopnColor), context.pen->Width()};
}

std::optional<RawPixel> BrushOf(const Context& context) {
    if (!context.brush->Draws()) return std::nullopt;
    return PixelOf(context, context.brush->logical.lbColor);
}

Inks InksOf(const Context& context) { return {PenOf(context), BrushOf(context)}; }

// Calls operation(surface, x, y) with a pixel of the context's bitmap, and returns the colour it results in.
template <class Operation>
COLORREF AtPixel(HDC hDC, int x, int y, Operation&& operation) {
    const Context* context = Find<Context>(hDC);
    if (!context) return CLR_INVALID;
    const Surface surface = context->Target();
    const Position pixel = context->Placed(POINT{x, y});
    if (!IsVisible(surface, pixel)) return CLR_INVALID;
    const RawPixel raw = operation(surface, static_cast<int>(pixel.x), static_cast<int>(pixel.y));
    return ColorFromBgr(BgrFromRaw(surface, raw));
}

// Calls operation(context); 0 when there is none, or no memory for it.
template <class Operation>
BOOL Draw(HDC hDC, Operation&& operation) {
    return FailWithoutMemory([&] {
        Context* context = Find<Context>(hDC);
        if (context) operation(*context);
        return BOOL{context != nullptr};
    });
}

}  // namespace
}  // namespace Zelkor::Platform

using namespace Zelkor::Platform;

COLORREF SetPixel(HDC hDC, int n32X, int n32Y, COLORREF color) {
    return AtPixel(hDC, n32X, n32Y, [&](const Surface& surface, int x, int y) {
        const RawPixel raw = RawFromBgr(surface, BgrFromColor(color));
        StorePixel(surface, x, y, raw);
        return raw;
    });
}

COLORREF GetPixel(HDC hDC, int n32X, int n32Y) { return AtPixel(hDC, n32X, n32Y, ReadPixel); }

BOOL MoveToEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious) {
    return Draw(hDC, [&](Context& context) {
        const POINT previous = std::exchange(context.position, POINT{n32X, n32Y});
        if (pPrevious) *pPrevious = previous;
    });
}

BOOL LineTo(HDC hDC, int n32X, int n32Y) {
    return Draw(hDC, [&](Context& context) {
        const POINT from = std::exchange(context.position, POINT{n32X, n32Y});
        if (const auto pen = PenOf(context))
            DrawLine(context.Target(), context.Placed(from), context.Placed(POINT{n32X, n32Y}), *pen);
    });
}

BOOL Rectangle(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom) {
    return Draw(hDC, [&](const Context& context) {
        DrawRectangle(context.Target(), PlacedBox(context, n32Left, n32Top, n32Right, n32Bottom),
                      InksOf(context));
    });
}

BOOL Ellipse(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom) {
    return Draw(hDC, [&](const Context& context) {
        DrawEllipse(context.Target(), PlacedBox(context, n32Left, n32Top, n32Right, n32Bottom),
                    InksOf(context));
    });
}

BOOL Polygon(HDC hDC, const POINT* pPoints, int n32Count) {
    if (!pPoints || n32Count < 2) return 0;
    return Draw(hDC, [&](const Context& context) {
        DrawPolygon(context.Target(), {pPoints, static_cast<std::size_t>(n32Count)}, context.Origin(),
                    InksOf(context));
    });
}

BOOL Arc(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom, int n32StartX, int n32StartY,
         int n32EndX, int n32EndY) {
    return Draw(hDC, [&](const Context& context) {
        if (const auto pen = PenOf(context))
            DrawArc(context.Target(), PlacedBox(context, n32Left, n32Top, n32Right, n32Bottom),
                    context.Placed(POINT{n32StartX, n32StartY}), context.Placed(POINT{n32EndX, n32EndY}),
                    *pen);
    });
}
