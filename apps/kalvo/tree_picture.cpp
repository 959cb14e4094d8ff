// Draws an image, the masks of its regions, and their frames.

#include "tree_picture.h"

#include <iterator>
#include <limits>

#include "kalvo/display/kxgdidrawadapter.h"
#include "canvas.h"
#include "region.h"

namespace App {
namespace {

constexpr int kFrameWidth = 2;
constexpr double kMaskOpacity = 0.45;
constexpr COLORREF kColors[] = {RGB(255, 60, 40), RGB(0, 190, 255),  RGB(255, 200, 0),
                                RGB(60, 220, 60), RGB(230, 80, 255), RGB(255, 140, 0)};

// Also a zoom that is no number makes a side that no canvas has.
int Zoomed(int pixels, float zoom) {
    const double side = double{zoom} * pixels;
    return side < std::numeric_limits<int>::max() ? static_cast<int>(side) : std::numeric_limits<int>::max();
}

void DrawPixels(Canvas& canvas, KxGenericROI& image, const TreeStyle& style) {
    if (!style.table) return image.Draw(canvas.Context(), style.zoom, style.zoom);
    KxBW8Vector table(*style.table);
    WithPixels<KxImage>(image,
                        [&](auto& typed) { typed.Draw(canvas.Context(), &table, style.zoom, style.zoom); });
}

// Calls `draw(region)` for every region below the image, a pen in its colour being selected.
template <class Draw>
void ForEachRegion(KxGenericROI& image, Canvas& canvas, int penWidth, const Draw& draw) {
    std::size_t index = 0;
    for (KxGenericROI* region = image.GetFirstSubROI(); region; region = region->GetNextROI(&image)) {
        const SelectedPen pen(canvas.Context(), penWidth, kColors[index++ % std::size(kColors)]);
        draw(*region);
    }
}

// Masks are opaque. We draw them on a copy, and mix that into the picture: only they show.
void DrawMasks(Canvas& canvas, KxGenericROI& image, float zoom) {
    Canvas copy(canvas.Image().GetWidth(), canvas.Image().GetHeight());
    canvas.Image().Draw(copy.Context(), 1, 1);
    ForEachRegion(image, copy, 1,
                  [&](KxGenericROI& region) { region.DrawMask(copy.Context(), zoom, zoom, 0, 0); });
    Zelkor::GDIDrawAdapter(canvas.Context())
        .DrawImage(&copy.Image(), 1, 1, 0, 0, kMaskOpacity, Zelkor::RGBColor::Current);
}

}  // namespace

void SaveTreePicture(KxGenericROI& image, const TreeStyle& style, const std::string& path) {
    Canvas canvas(Zoomed(image.GetWidth(), style.zoom), Zoomed(image.GetHeight(), style.zoom));
    Checked([&] {
        DrawPixels(canvas, image, style);
        DrawMasks(canvas, image, style.zoom);
        ForEachRegion(image, canvas, kFrameWidth, [&](KxGenericROI& region) {
            region.DrawFrame(canvas.Context(), KX_FRAME_POSITION_INSIDE, style.handles, style.zoom,
                             style.zoom, 0, 0);
        });
    });
    SavePicture(canvas, path);
}

}  // namespace App
