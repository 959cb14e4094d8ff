// Regions behind handles, and what contexts draw in.

#include <algorithm>
#include <optional>

#include "kalvo/frame/roundtoint.h"
#include "kalvo/gdi/objects.h"

namespace Zelkor::Platform {
namespace {

using Kalvo::ClampToInt;

int ComplexityOf(const Region& region) {
    if (region.IsEmpty()) return NULLREGION;
    return region.IsBox() ? SIMPLEREGION : COMPLEXREGION;
}

// The box between two opposite corners.
Box BoxBetween(const RECT& rect) {
    return {std::min(rect.left, rect.right), std::min(rect.top, rect.bottom), std::max(rect.left, rect.right),
            std::max(rect.top, rect.bottom)};
}

RECT ToRect(const Box& box, Position origin) {
    return {ClampToInt(box.left - origin.x), ClampToInt(box.top - origin.y), ClampToInt(box.right - origin.x),
            ClampToInt(box.bottom - origin.y)};
}

// Moves a region unless it would leave 32-bit coordinates.
bool MoveWithinLimits(Region& region, int right, int down) {
    const Box& box = region.Bounds();
    const Box moved{box.left + right, box.top + down, box.right + right, box.bottom + down};
    const RECT rect = ToRect(moved, {});
    if (moved != Box{rect.left, rect.top, rect.right, rect.bottom}) return false;
    region.Move(right, down);
    return true;
}

Region BitmapOf(const Context& context) {
    const Surface& surface = context.bitmap->surface;
    return Region({0, 0, surface.width, surface.height});
}

// What a context can change.
Region VisibleOf(const Context& context) {
    Region bitmap = BitmapOf(context);
    return context.clip ? Combination(*context.clip, bitmap, SetOperation::And) : bitmap;
}

std::optional<SetOperation> OperationOf(int mode) {
    constexpr SetOperation operations[] = {SetOperation::And, SetOperation::Or, SetOperation::Xor,
                                           SetOperation::Difference};
    if (mode < RGN_AND || mode > RGN_DIFF) return std::nullopt;
    return operations[mode - RGN_AND];
}

// Without a second region there is no result but a copy of the first.
std::optional<Region> Combined(const Region& first, const Region* second, int mode) {
    if (mode == RGN_COPY) return first;
    const auto operation = OperationOf(mode);
    if (!operation || !second) return std::nullopt;
    return Combination(first, *second, *operation);
}

int Clip(Context& context, const Region& region, SetOperation operation) {
    context.clip = Combination(context.clip ? *context.clip : BitmapOf(context), region, operation);
    return ComplexityOf(*context.clip);
}

HRGN MakeRegion(const RECT& rect) {
    return OrNeutral([&] {
        return static_cast<HRGN>(Register(std::make_unique<RegionObject>(Region(BoxBetween(rect)))));
    });
}

int ClipRectangle(HDC hDC, const RECT& rect, SetOperation operation) {
    return OrNeutral([&] {
        Context* context = Find<Context>(hDC);
        return context ? Clip(*context, Region(context->PlacedCorners(rect)), operation) : ERROR;
    });
}

}  // namespace
}  // namespace Zelkor::Platform

using namespace Zelkor::Platform;

HRGN CreateRectRgn(int n32Left, int n32Top, int n32Right, int n32Bottom) {
    return MakeRegion({n32Left, n32Top, n32Right, n32Bottom});
}

HRGN CreateRectRgnIndirect(const RECT* pRect) { return pRect ? MakeRegion(*pRect) : nullptr; }

BOOL SetRectRgn(HRGN hRegion, int n32Left, int n32Top, int n32Right, int n32Bottom) {
    return OrNeutral([&] {
        RegionObject* region = Find<RegionObject>(hRegion);
        if (region) region->pixels = Region(BoxBetween({n32Left, n32Top, n32Right, n32Bottom}));
        return BOOL{region != nullptr};
    });
}

int CombineRgn(HRGN hDestination, HRGN hFirst, HRGN hSecond, int n32Mode) {
    return OrNeutral([&] {
        RegionObject* destination = Find<RegionObject>(hDestination);
        const RegionObject* first = Find<RegionObject>(hFirst);
        const RegionObject* second = Find<RegionObject>(hSecond);
        if (!destination || !first) return ERROR;
        auto combined = Combined(first->pixels, second ? &second->pixels : nullptr, n32Mode);
        if (!combined) return ERROR;
        destination->pixels = *std::move(combined);
        return ComplexityOf(destination->pixels);
    });
}

int OffsetRgn(HRGN hRegion, int n32X, int n32Y) {
    RegionObject* region = Find<RegionObject>(hRegion);
    if (!region || !MoveWithinLimits(region->pixels, n32X, n32Y)) return ERROR;
    return ComplexityOf(region->pixels);
}

int GetRgnBox(HRGN hRegion, RECT* pRect) {
    const RegionObject* region = Find<RegionObject>(hRegion);
    if (!region || !pRect) return ERROR;
    *pRect = ToRect(region->pixels.Bounds(), {});
    return ComplexityOf(region->pixels);
}

BOOL EqualRgn(HRGN hFirst, HRGN hSecond) {
    const RegionObject* first = Find<RegionObject>(hFirst);
    const RegionObject* second = Find<RegionObject>(hSecond);
    return first && second && first->pixels == second->pixels;
}

BOOL PtInRegion(HRGN hRegion, int n32X, int n32Y) {
    const RegionObject* region = Find<RegionObject>(hRegion);
    return region && region->pixels.Contains({n32X, n32Y});
}

BOOL RectInRegion(HRGN hRegion, const RECT* pRect) {
    const RegionObject* region = Find<RegionObject>(hRegion);
    return region && pRect && region->pixels.Overlaps(BoxBetween(*pRect));
}

int SelectClipRgn(HDC hDC, HRGN hRegion) { return ExtSelectClipRgn(hDC, hRegion, RGN_COPY); }

int ExtSelectClipRgn(HDC hDC, HRGN hRegion, int n32Mode) {
    return OrNeutral([&] {
        Context* context = Find<Context>(hDC);
        const RegionObject* region = Find<RegionObject>(hRegion);
        if (!context) return ERROR;
        if (!hRegion && n32Mode == RGN_COPY) {
            context->clip.reset();
            return SIMPLEREGION;
        }
        if (!region) return ERROR;
        if (n32Mode == RGN_COPY) {
            context->clip = region->pixels;
            return ComplexityOf(*context->clip);
        }
        const auto operation = OperationOf(n32Mode);
        return operation ? Clip(*context, region->pixels, *operation) : ERROR;
    });
}

int IntersectClipRect(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom) {
    return ClipRectangle(hDC, {n32Left, n32Top, n32Right, n32Bottom}, SetOperation::And);
}

int ExcludeClipRect(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom) {
    return ClipRectangle(hDC, {n32Left, n32Top, n32Right, n32Bottom}, SetOperation::Difference);
}

int OffsetClipRgn(HDC hDC, int n32X, int n32Y) {
    Context* context = Find<Context>(hDC);
    if (!context) return ERROR;
    if (!context->clip) return SIMPLEREGION;
    return MoveWithinLimits(*context->clip, n32X, n32Y) ? ComplexityOf(*context->clip) : ERROR;
}

int GetClipBox(HDC hDC, RECT* pRect) {
    return OrNeutral([&] {
        const Context* context = Find<Context>(hDC);
        if (!context || !pRect) return ERROR;
        const Region visible = VisibleOf(*context);
        *pRect = visible.IsEmpty() ? RECT{} : ToRect(visible.Bounds(), context->Origin());
        return ComplexityOf(visible);
    });
}

int GetClipRgn(HDC hDC, HRGN hRegion) {
    constexpr int kFailure = -1;
    const Context* context = Find<Context>(hDC);
    RegionObject* region = Find<RegionObject>(hRegion);
    if (!context || !region) return kFailure;
    if (!context->clip) return 0;
    const int copied = OrNeutral([&] {
        region->pixels = *context->clip;
        return 1;
    });
    return copied ? copied : kFailure;
}

BOOL PtVisible(HDC hDC, int n32X, int n32Y) {
    const Context* context = Find<Context>(hDC);
    return context && IsVisible(context->Target(), context->Placed(POINT{n32X, n32Y}));
}

BOOL RectVisible(HDC hDC, const RECT* pRect) {
    return OrNeutral([&] {
        const Context* context = Find<Context>(hDC);
        return BOOL{context && pRect && VisibleOf(*context).Overlaps(context->PlacedCorners(*pRect))};
    });
}
