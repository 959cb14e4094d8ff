// Masks are mixed into the picture, frames lie on top.

#include "common/trees.h"

#include <iterator>
#include <limits>

#include "kalvo/display/kxgdidrawadapter.h"
#include "common/canvas.h"
#include "common/paper.h"
#include "common/region.h"

namespace App {
namespace {

constexpr int kFrameWidth = 2;
constexpr double kMaskOpacity = 0.45;
constexpr Zelkor::RGBColor kColors[] = {{255, 60, 40}, {0, 190, 255},  {255, 200, 0},
                                        {60, 220, 60}, {230, 80, 255}, {255, 140, 0}};

// Also a zoom that is no number makes a side that no canvas has.
int Zoomed(int pixels, float zoom) {
    const double side = double{zoom} * pixels;
    return side < std::numeric_limits<int>::max() ? static_cast<int>(side) : std::numeric_limits<int>::max();
}

// Calls `draw(region)` for every region below the image, with a pen in its colour.
template <class Draw>
void ForEachRegion(KxGenericROI& image, const Paper& paper, int penWidth, const Draw& draw) {
    std::size_t index = 0;
    for (KxGenericROI* region = image.GetFirstSubROI(); region; region = region->GetNextROI(&image)) {
        paper.setPen(kColors[index++ % std::size(kColors)], penWidth);
        draw(*region);
    }
}

// What the regions cover, in pixels of the picture.
RECT BoxOfRegions(const KxGenericROI& image, float zoom) {
    RECT box{};
    for (auto* region = image.GetFirstSubROI(); region; region = region->GetNextSiblingROI()) {
        const int x = region->GetTotalOrgX(), y = region->GetTotalOrgY();
        const RECT own{Zoomed(x, zoom), Zoomed(y, zoom), Zoomed(x + region->GetWidth(), zoom) + 1,
                       Zoomed(y + region->GetHeight(), zoom) + 1};
        const RECT others = box;
        UnionRect(&box, &others, &own);
    }
    return box;
}

// Masks are opaque. We draw them on a copy, and mix that into the picture: only they show.
void DrawMasks(Canvas& canvas, Canvas& copy, KxGenericROI& image, float zoom) {
    const SavedContext savedCanvas(canvas.Context()), savedCopy(copy.Context());
    const auto [left, top, right, bottom] = BoxOfRegions(image, zoom);
    POINT origin;
    GetViewportOrgEx(canvas.Context(), &origin);
    SetViewportOrgEx(copy.Context(), origin.x, origin.y, nullptr);
    IntersectClipRect(canvas.Context(), left, top, right, bottom);
    BitBlt(copy.Context(), left, top, right - left, bottom - top, canvas.Context(), left, top, SRCCOPY);
    DrawOnContext(copy.Context(), [&](const Paper& paper) {
        ForEachRegion(image, paper, 1,
                      [&](KxGenericROI& region) { region.DrawMask(copy.Context(), zoom, zoom, 0, 0); });
    });
    Zelkor::GDIDrawAdapter(canvas.Context())
        .DrawImage(&copy.Image(), 1, 1, -origin.x, -origin.y, kMaskOpacity, Zelkor::RGBColor::Current);
}

void DrawFrames(const Paper& paper, KxGenericROI& image, const RegionStyle& style) {
    ForEachRegion(image, paper, kFrameWidth, [&](KxGenericROI& region) {
        region.DrawFrame(&paper.surface, KX_FRAME_POSITION_INSIDE, style.handles || &region == style.selected,
                         style.zoom, style.zoom, 0, 0);
    });
}

}  // namespace

void DrawPixels(HDC context, KxGenericROI& image, float zoom, const KxBW8Vector* table) {
    if (!table) return Checked([&] { image.Draw(context, zoom, zoom); });
    KxBW8Vector copy(*table);
    WithPixels<KxImage>(image,
                        [&](auto& typed) { Checked([&] { typed.Draw(context, &copy, zoom, zoom); }); });
}

void DrawRegions(Canvas& canvas, Canvas& spare, KxGenericROI& image, const RegionStyle& style) {
    Checked([&] {
        if (style.masks) DrawMasks(canvas, spare, image, style.zoom);
        DrawOnContext(canvas.Context(), [&](const Paper& paper) { DrawFrames(paper, image, style); });
    });
}

void SaveTreePicture(KxGenericROI& image, const RegionStyle& style, const KxBW8Vector* table,
                     const std::string& path) {
    const int width = Zoomed(image.GetWidth(), style.zoom), height = Zoomed(image.GetHeight(), style.zoom);
    if (!IsVectorFile(path)) {
        Canvas canvas(width, height), spare(width, height);
        DrawPixels(canvas.Context(), image, style.zoom, table);
        DrawRegions(canvas, spare, image, style);
        return SavePicture(canvas, path);
    }
    Canvas canvas(image.GetWidth(), image.GetHeight()), spare(image.GetWidth(), image.GetHeight());
    DrawPixels(canvas.Context(), image, 1, table);
    Checked([&] { DrawMasks(canvas, spare, image, 1); });
    SaveVectors({width, height}, path, [&](const Paper& paper) {
        paper.surface.DrawImage(&canvas.Image(), style.zoom, style.zoom, 0, 0, 1, Zelkor::RGBColor::Current);
        DrawFrames(paper, image, style);
    });
}

}  // namespace App
