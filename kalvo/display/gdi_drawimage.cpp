// Images on a device context: tinted, reduced to what a device shows, zoomed, blended.

#include <array>

#include "kalvo/display/dib.h"
#include "kalvo/display/grayreduction.h"
#include "kalvo/display/kxgdidrawadapter.h"
#include "kalvo/display/selected_object.h"
#include "kalvo/frame/boundary.h"
#include "kalvo/frame/roundtoint.h"
#include "kalvo/image/imagecore.h"

namespace Zelkor {

using namespace Kalvo;

namespace {

// The coordinates of a context, moved for a while.
class MovedViewport {
public:
    MovedViewport(HDC hdc, int x, int y) : m_hdc(hdc) {
        GetViewportOrgEx(hdc, &m_previous);
        SetViewportOrgEx(hdc, ClampToInt(std::int64_t{m_previous.x} + x),
                         ClampToInt(std::int64_t{m_previous.y} + y), nullptr);
    }
    ~MovedViewport() { SetViewportOrgEx(m_hdc, m_previous.x, m_previous.y, nullptr); }
    MovedViewport(const MovedViewport&) = delete;
    MovedViewport& operator=(const MovedViewport&) = delete;

private:
    HDC m_hdc;
    POINT m_previous{};
};

// Colours from black to the tint instead of grey values.
void Tint(const KxGenericROI& gray, const RGBColor& tint, KxImage<KxC24>& tinted) {
    std::array<KxC24, 256> colors;
    for (int g = 0; g < 256; ++g) {
        const auto component = [g](int full) {
            return static_cast<std::uint8_t>(TruncateToInt(double{1} * g * full / 255.0));
        };
        colors[g] = {component(tint.m_n32Red), component(tint.m_n32Green), component(tint.m_n32Blue)};
    }
    ImageCore::Resize(tinted, gray.GetWidth(), gray.GetHeight());
    const ConstRegionRows from = RowsOf(gray);
    for (int y = 0; y < from.height; ++y) {
        const std::uint8_t* row = from.Row(y);
        KxC24* to = tinted.GetImagePtr(0, y);
        for (int x = 0; x < from.width; ++x) to[x] = colors[row[x]];
    }
}

bool IsWideGray(KX_IMAGE_TYPES type) { return type == KX_IMAGE_BW16 || type == KX_IMAGE_BW32; }

void DrawPixels(HDC hdc, const KxGenericROI& region, const DibType& type, Zoom zoom, double alpha) {
    KxBitmapInfo info;
    DescribeColors(type, info);
    RegionDib dib(region, type, info);

    OwnedPalette palette;
    if (type.palette != PaletteKind::None && IsPaletteDevice(hdc)) {
        KxLogicalPalette entries;
        FillPalette(type.palette, info, entries);
        palette.reset(CreatePalette(AsLogPalette(entries)));
    }
    const SelectedPalette selected(hdc, palette.get());
    if (alpha == 1)
        dib.Draw(hdc, zoom);
    else
        dib.Blend(hdc, zoom, alpha);
}

}  // namespace

void GDIDrawAdapter::DrawImage(const KxGenericROI* pImage, float f32ZoomX, float f32ZoomY, int n32OriginX,
                               int n32OriginY, double f64Alpha, const RGBColor& tint) {
    AtBoundary("KxROI::Draw", [&] {
        // Not `Void`, which reports pixels that have no address of their own as a failure.
        if (!pImage->GetGenericImagePtr(0, 0)) return;
        const MovedViewport viewport(m_hDC, n32OriginX, n32OriginY);
        const double alpha = f64Alpha > 1 ? 1 : f64Alpha;
        const KX_IMAGE_TYPES type = TypeOf(*pImage);
        const bool isTinted = tint != RGBColor::Current && alpha != 1;
        if (isTinted && type == KX_IMAGE_BW1) return;

        KxImage<KxBW8> reduced;
        if (IsWideGray(type)) ReduceToGray(*pImage, reduced);
        const KxGenericROI& shown = IsWideGray(type) ? reduced : *pImage;
        if (isTinted && TypeOf(shown) == KX_IMAGE_BW8) {
            KxImage<KxC24> tinted;
            Tint(shown, tint, tinted);
            DrawImage(&tinted, f32ZoomX, f32ZoomY, 0, 0, alpha, RGBColor::Current);
        } else if (IsWideGray(type)) {
            DrawImage(&reduced, f32ZoomX, f32ZoomY, 0, 0, 1.0, RGBColor::Current);
        } else if (const DibType* dibType = FindDibType(type)) {
            DrawPixels(m_hDC, *pImage, *dibType, {f32ZoomX, f32ZoomY}, alpha);
        }
    });
}

}  // namespace Zelkor
