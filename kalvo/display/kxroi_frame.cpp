// Frames of regions: drawing them, finding what a pointer grabs, and dragging it.

#include <algorithm>
#include <cstdlib>

#include "kalvo/display/kxdrawadapter.h"
#include "kalvo/display/kxgdidrawadapter.h"
#include "kalvo/frame/boundary.h"
#include "kalvo/frame/roundtoint.h"
#include "kalvo/image/kxregionbase.h"

using namespace Zelkor::Kalvo;
using Zelkor::DrawAdapter;
using Zelkor::RGBColor;

namespace {

constexpr int kHandleReach = 4;  // pixels of the surface

// How pixels of the image become pixels of the surface along one axis, and back.
struct Mapping {
    float zoom;
    float pan;

    int ToSurface(std::int64_t position) const {
        return RoundToInt((static_cast<float>(position) + pan) * zoom);
    }
    // A zoom of 0 shows everything at one place; we take it for the image's own origin.
    int ToImage(int position) const {
        const float distance = zoom == 0 ? 0 : static_cast<float>(position) / zoom;
        return TruncateToInt(distance - pan);
    }
};

struct View {
    View(float zoomX, float zoomY, float panX, float panY)
        : x{zoomX, panX}, y{zoomY == 0 ? zoomX : zoomY, panY} {}

    Mapping x;
    Mapping y;
};

struct Place {
    int x;
    int y;
};

// A rectangle on the surface. Wide numbers, so that adding to them never overflows.
struct FrameBox {
    std::int64_t left;
    std::int64_t top;
    std::int64_t right;
    std::int64_t bottom;

    FrameBox(const KxGenericROI& region, const View& view)
        : left(view.x.ToSurface(region.GetTotalOrgX())),
          top(view.y.ToSurface(region.GetTotalOrgY())),
          right(view.x.ToSurface(std::int64_t{region.GetTotalOrgX()} + region.GetWidth())),
          bottom(view.y.ToSurface(std::int64_t{region.GetTotalOrgY()} + region.GetHeight())) {}

    void Grow(std::int64_t before, std::int64_t after) {
        left -= before;
        top -= before;
        right += after;
        bottom += after;
    }

    void Adjust(KX_FRAME_POSITION position, std::int64_t penWidth) {
        if (position == KX_FRAME_POSITION_ON_BORDER) Grow(0, -1);
        if (position == KX_FRAME_POSITION_INSIDE) Grow(-(penWidth / 2), -((penWidth + 1) / 2));
        if (position == KX_FRAME_POSITION_OUTSIDE) Grow((penWidth + 1) / 2, penWidth / 2);
    }

    bool Contains(int x, int y) const { return left <= x && x <= right && top <= y && y <= bottom; }

    // The point where a handle sits: its column and row on a grid of 0 (left, top), 1 (middle) and 2.
    Place HandleAt(int column, int row) const {
        const std::int64_t columns[] = {left, (left + right) / 2, right};
        const std::int64_t rows[] = {top, (top + bottom) / 2, bottom};
        return {ClampToInt(columns[column]), ClampToInt(rows[row])};
    }
};

void DrawSides(DrawAdapter& surface, const FrameBox& box) {
    const Place corners[] = {box.HandleAt(0, 0), box.HandleAt(2, 0), box.HandleAt(2, 2), box.HandleAt(0, 2)};
    for (int i = 0; i < 4; ++i) {
        const Place &from = corners[i], &to = corners[(i + 1) % 4];
        surface.DrawLine(from.x, from.y, to.x, to.y, RGBColor::Current);
    }
}

void DrawHandles(DrawAdapter& surface, const FrameBox& box) {
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column) {
            if (row == 1 && column == 1) continue;
            const Place place = box.HandleAt(column, row);
            surface.FillRectangle(ClampToInt(std::int64_t{place.x} - kHandleReach),
                                  ClampToInt(std::int64_t{place.y} - kHandleReach), 2 * kHandleReach,
                                  2 * kHandleReach, RGBColor::Current, RGBColor::White);
        }
}

struct Handle {
    KX_HANDLES handle;
    int column;
    int row;
};
// The order in which they are tried.
constexpr Handle kHandles[] = {
    {KX_HANDLE_NORTH, 1, 0},      {KX_HANDLE_SOUTH, 1, 2},      {KX_HANDLE_WEST, 0, 1},
    {KX_HANDLE_EAST, 2, 1},       {KX_HANDLE_NORTH_WEST, 0, 0}, {KX_HANDLE_NORTH_EAST, 2, 0},
    {KX_HANDLE_SOUTH_WEST, 0, 2}, {KX_HANDLE_SOUTH_EAST, 2, 2},
};

KX_HANDLES FindHandle(const FrameBox& box, int x, int y) {
    const auto isNear = [](std::int64_t a, std::int64_t b) { return std::abs(a - b) <= kHandleReach; };
    for (const Handle& handle : kHandles) {
        const Place place = box.HandleAt(handle.column, handle.row);
        if (isNear(x, place.x) && isNear(y, place.y)) return handle.handle;
    }
    return box.Contains(x, y) ? KX_HANDLE_INSIDE : KX_HANDLE_NONE;
}

// The side that a handle moves along one axis.
enum class Side { None, Near, Far };

Side HorizontalSide(KX_HANDLES handle) {
    for (const Handle& entry : kHandles)
        if (entry.handle == handle && entry.column != 1) return entry.column == 0 ? Side::Near : Side::Far;
    return Side::None;
}

Side VerticalSide(KX_HANDLES handle) {
    for (const Handle& entry : kHandles)
        if (entry.handle == handle && entry.row != 1) return entry.row == 0 ? Side::Near : Side::Far;
    return Side::None;
}

// A region before it is dragged, along one axis in the top image: first pixel, and the one after the last.
struct Stretch {
    std::int64_t begin;
    std::int64_t end;
};

// Moves one side of a region, and leaves the other where it is.
// @param origin  of the region in its parent, as it is now
// @param least   the parent's own origin, before which no side is moved
void DragSide(RegionBase& region, Side side, const Stretch& stretch, int pointer, int origin, int least,
              void (RegionBase::*setOrigin)(int), void (RegionBase::*setSize)(int)) {
    if (side == Side::Far)
        (region.*setSize)(ClampToInt(std::max<std::int64_t>(pointer, stretch.begin + 1) - stretch.begin));
    if (side != Side::Near) return;
    const std::int64_t begin = std::min<std::int64_t>(std::max(pointer, least), stretch.end - 1);
    (region.*setOrigin)(ClampToInt(begin - stretch.begin + origin));
    (region.*setSize)(ClampToInt(stretch.end - begin));
}

// Where the pointer counts while it drags a whole region: at most at the far end, moved by the anchor.
std::int64_t LimitedPointer(int pointer, int anchor, std::int64_t end) {
    return std::max<std::int64_t>(std::min<std::int64_t>(pointer, anchor + end - 1), 0);
}

}  // namespace

void KxGenericROI::DrawFrame(DrawAdapter* pSurface, KX_FRAME_POSITION ePosition, int bHandles, float f32ZoomX,
                             float f32ZoomY, float f32PanX, float f32PanY) {
    AtBoundary("KxROI::DrawFrame", [&] {
        FrameBox box(*this, View(f32ZoomX, f32ZoomY, f32PanX, f32PanY));
        box.Adjust(ePosition, pSurface->GetPenWidth());
        DrawSides(*pSurface, box);
        if (bHandles) DrawHandles(*pSurface, box);
    });
}

void KxGenericROI::DrawFrame(HDC hDC, KX_FRAME_POSITION ePosition, int bHandles, float f32ZoomX,
                             float f32ZoomY, float f32PanX, float f32PanY) {
    Zelkor::GDIDrawAdapter surface(hDC);
    DrawFrame(&surface, ePosition, bHandles, f32ZoomX, f32ZoomY, f32PanX, f32PanY);
}

KX_HANDLES RegionBase::HitTest(int n32X, int n32Y, float f32ZoomX, float f32ZoomY, float f32PanX,
                               float f32PanY) {
    const View view(f32ZoomX, f32ZoomY, f32PanX, f32PanY);
    m_n32CursorX = ClampToInt(std::int64_t{view.x.ToImage(n32X)} - m_n32OrgX);
    m_n32CursorY = ClampToInt(std::int64_t{view.y.ToImage(n32Y)} - m_n32OrgY);
    return FindHandle(FrameBox(*this, view), n32X, n32Y);
}

void RegionBase::Drag(KX_HANDLES eHandle, int n32X, int n32Y, float f32ZoomX, float f32ZoomY, float f32PanX,
                      float f32PanY) {
    const View view(f32ZoomX, f32ZoomY, f32PanX, f32PanY);
    const int x = view.x.ToImage(n32X), y = view.y.ToImage(n32Y);
    const std::int64_t left = GetTotalOrgX(), top = GetTotalOrgY();
    const Stretch columns{left, left + m_n32Width}, rows{top, top + m_n32Height};

    if (eHandle == KX_HANDLE_INSIDE) {
        const std::int64_t pointerX = LimitedPointer(x, m_n32CursorX, columns.end);
        const std::int64_t pointerY = LimitedPointer(y, m_n32CursorY, rows.end);
        SetOrgX(ClampToInt(pointerX - m_n32CursorX));
        SetOrgY(ClampToInt(pointerY - m_n32CursorY));
        m_n32CursorX = ClampToInt(pointerX - m_n32OrgX);
        m_n32CursorY = ClampToInt(pointerY - m_n32OrgY);
        return;
    }
    const int leastX = m_pParent ? m_pParent->GetOrgX() : 0, leastY = m_pParent ? m_pParent->GetOrgY() : 0;
    DragSide(*this, HorizontalSide(eHandle), columns, x, m_n32OrgX, leastX, &RegionBase::SetOrgX,
             &RegionBase::SetWidth);
    // A region that is reset on the way has another origin now.
    DragSide(*this, VerticalSide(eHandle), rows, y, m_n32OrgY, leastY, &RegionBase::SetOrgY,
             &RegionBase::SetHeight);
}
