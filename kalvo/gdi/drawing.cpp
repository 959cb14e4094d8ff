// The drawing functions: they find the context, move coordinates to its origin, and leave the rest to the
// shapes.

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <utility>
#include <vector>

#include "kalvo/gdi/gdi.h"
#include "kalvo/gdi/inks.h"

namespace Zelkor::Platform {
namespace {

// Where the outline of a shape runs that is given by two opposite corners. The width of some pens is taken
// from inside; of a box that is too small for it, the pen takes as much as there is.
Box FrameOf(const Context& context, const RECT& rect, std::optional<Stroke>& pen) {
    Box box = context.PlacedCorners(rect);
    if (!pen || context.pen->logical.lopnStyle != PS_INSIDEFRAME) return box;
    pen->width = std::max<std::int64_t>(std::min({pen->width, box.Width(), box.Height()}), 1);
    const std::int64_t before = pen->width / 2, after = (pen->width - 1) / 2;
    return {box.left + before, box.top + before, box.right - after, box.bottom - after};
}

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
    return OrNeutral([&] {
        Context* context = Find<Context>(hDC);
        if (context) operation(*context);
        return BOOL{context != nullptr};
    });
}

// Calls draw(context, box, inks) with a shape in a rectangle.
template <class Shape>
BOOL DrawInFrame(HDC hDC, const RECT& rect, Shape&& draw) {
    return Draw(hDC, [&](const Context& context) {
        Inks inks = InksOf(context);
        const Box box = FrameOf(context, rect, inks.pen);
        draw(context, box, inks);
    });
}

// Calls draw(surface, box, inks) with such a shape.
template <class Shape>
BOOL DrawFramed(HDC hDC, const RECT& rect, Shape&& draw) {
    return DrawInFrame(hDC, rect, [&](const Context& context, const Box& box, const Inks& inks) {
        draw(context.Target(), box, inks);
    });
}

// Calls draw(surface, box, start, end, inks) with one between two rays.
template <class Shape>
BOOL DrawWithRays(HDC hDC, const RECT& rect, POINT start, POINT end, Shape&& draw) {
    return DrawInFrame(hDC, rect, [&](const Context& context, const Box& box, const Inks& inks) {
        draw(context.Target(), box, context.Placed(start), context.Placed(end), inks);
    });
}

// Calls draw(surface, box, fill) for a brush that need not be selected, unless the box is empty.
template <class Operation>
int DrawBoxes(HDC hDC, const RECT* rect, HBRUSH hBrush, Operation&& draw) {
    const Brush* brush = Find<Brush>(hBrush);
    if (!rect || !brush) return 0;
    return Draw(hDC, [&](const Context& context) {
        const Box box = context.Placed(*rect);
        const auto fill = FillOf(context, *brush, kCover);
        if (fill && !box.IsEmpty()) draw(context.Target(), box, *fill);
    });
}

void DrawLines(const Context& context, std::span<const POINT> points) {
    if (const auto pen = PenOf(context)) DrawPolyline(context.Target(), points, context.Origin(), *pen);
}

std::span<const POINT> PointsOf(const POINT* points, int count) {
    return {points, static_cast<std::size_t>(count)};
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

BOOL LineTo(HDC hDC, int n32X, int n32Y) {
    return Draw(hDC, [&](Context& context) {
        const POINT from = std::exchange(context.position, POINT{n32X, n32Y});
        if (const auto pen = PenOf(context))
            DrawLine(context.Target(), context.Placed(from), context.Placed(POINT{n32X, n32Y}), *pen);
    });
}

BOOL Polyline(HDC hDC, const POINT* pPoints, int n32Count) {
    if (!pPoints || n32Count < 2) return 0;
    return Draw(hDC, [&](const Context& context) { DrawLines(context, PointsOf(pPoints, n32Count)); });
}

BOOL PolylineTo(HDC hDC, const POINT* pPoints, DWORD un32Count) {
    if (!pPoints || un32Count < 1) return 0;
    return Draw(hDC, [&](Context& context) {
        std::vector<POINT> points{context.position};
        points.insert(points.end(), pPoints, pPoints + un32Count);
        DrawLines(context, points);
        context.position = points.back();
    });
}

BOOL Rectangle(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom) {
    return DrawFramed(hDC, {n32Left, n32Top, n32Right, n32Bottom}, DrawRectangle);
}

BOOL RoundRect(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom, int n32Width, int n32Height) {
    return DrawFramed(hDC, {n32Left, n32Top, n32Right, n32Bottom},
                      [&](const Surface& surface, const Box& box, const Inks& inks) {
                          DrawRoundRectangle(surface, box, std::abs(std::int64_t{n32Width}),
                                             std::abs(std::int64_t{n32Height}), inks);
                      });
}

BOOL Ellipse(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom) {
    return DrawFramed(hDC, {n32Left, n32Top, n32Right, n32Bottom}, DrawEllipse);
}

BOOL Polygon(HDC hDC, const POINT* pPoints, int n32Count) { return PolyPolygon(hDC, pPoints, &n32Count, 1); }

BOOL PolyPolygon(HDC hDC, const POINT* pPoints, const int* pCounts, int n32Polygons) {
    if (!pPoints || !pCounts || n32Polygons < 1) return 0;
    const std::span counts(pCounts, static_cast<std::size_t>(n32Polygons));
    if (std::ranges::any_of(counts, [](int count) { return count < 2; })) return 0;
    const auto total = std::accumulate(counts.begin(), counts.end(), std::size_t{0});
    return Draw(hDC, [&](const Context& context) {
        const FillRule rule = context.polygonFillMode == WINDING ? FillRule::Winding : FillRule::Alternate;
        DrawPolygons(context.Target(), {pPoints, total}, counts, context.Origin(), InksOf(context), rule);
    });
}

BOOL Arc(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom, int n32StartX, int n32StartY,
         int n32EndX, int n32EndY) {
    return DrawWithRays(
        hDC, {n32Left, n32Top, n32Right, n32Bottom}, {n32StartX, n32StartY}, {n32EndX, n32EndY},
        [](const Surface& surface, const Box& box, Position start, Position end, const Inks& inks) {
            if (inks.pen) DrawArc(surface, box, start, end, *inks.pen);
        });
}

BOOL Pie(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom, int n32StartX, int n32StartY,
         int n32EndX, int n32EndY) {
    return DrawWithRays(hDC, {n32Left, n32Top, n32Right, n32Bottom}, {n32StartX, n32StartY},
                        {n32EndX, n32EndY}, DrawPie);
}

BOOL Chord(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom, int n32StartX, int n32StartY,
           int n32EndX, int n32EndY) {
    return DrawWithRays(hDC, {n32Left, n32Top, n32Right, n32Bottom}, {n32StartX, n32StartY},
                        {n32EndX, n32EndY}, DrawChord);
}

int FillRect(HDC hDC, const RECT* pRect, HBRUSH hBrush) {
    return DrawBoxes(hDC, pRect, hBrush, [](const Surface& surface, const Box& box, const Fill& fill) {
        PaintBox(surface, box, fill);
    });
}

int FrameRect(HDC hDC, const RECT* pRect, HBRUSH hBrush) {
    return DrawBoxes(hDC, pRect, hBrush, [](const Surface& surface, const Box& box, const Fill& fill) {
        PaintBox(surface, {box.left, box.top, box.right, box.top + 1}, fill);
        PaintBox(surface, {box.left, box.bottom - 1, box.right, box.bottom}, fill);
        PaintBox(surface, {box.left, box.top, box.left + 1, box.bottom}, fill);
        PaintBox(surface, {box.right - 1, box.top, box.right, box.bottom}, fill);
    });
}

BOOL InvertRect(HDC hDC, const RECT* pRect) {
    if (!pRect) return 0;
    return Draw(hDC, [&](const Context& context) {
        PaintBox(context.Target(), context.Placed(*pRect), InkFrom(context, 0, kInvert));
    });
}
