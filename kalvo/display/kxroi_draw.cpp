// The drawing members of regions and images.

#include <algorithm>
#include <type_traits>

#include "kalvo/display/dib.h"
#include "kalvo/display/kxgdidrawadapter.h"
#include "kalvo/display/tabledisplay.h"
#include "kalvo/frame/boundary.h"
#include "kalvo/frame/roundtoint.h"
#include "kalvo/image/kximage.h"

using namespace Zelkor::Kalvo;

namespace {

constexpr const char* kRegionTraceName = "KxROI::Draw";
constexpr const char* kImageTraceName = "KxImage::Draw";

void DrawOn(Zelkor::DrawAdapter* surface, const KxGenericROI& region, float zoomX, float zoomY, int originX,
            int originY, const char* traceName) {
    AtBoundary(traceName, [&] {
        surface->DrawImage(&region, zoomX, zoomY, originX, originY, 1.0, Zelkor::RGBColor::Current);
    });
}

// Names of the two tables in traces.
const char* ScaleName(const KxBW8Vector*, bool isImage) {
    return isImage ? "KxImageBW8::Draw ( Gray Scale)" : "KxROIBW8::Draw ( Gray Scale)";
}
const char* ScaleName(const KxC24Vector*, bool isImage) {
    return isImage ? "KxImageBW8::Draw ( Color Scale)" : "KxROIBW8::Draw ( Color Scale)";
}

// `Region` is the class whose member was called: its own function draws, under its own name.
template <class Region, class Vector>
void DrawThroughTable(Region& region, HDC hdc, Vector* lut, float zoomX, float zoomY) {
    using Pixel = typename Region::PixelType;
    constexpr bool isImage = std::is_same_v<Region, KxImage<Pixel>>;
    if constexpr (std::is_same_v<Pixel, KxBW8>) {
        if (!region.GetGenericImagePtr(0, 0)) return;
        KxOk();
        AtBoundary(ScaleName(lut, isImage), [&] {
            DrawThroughTable(region, hdc, lut, {zoomX, zoomY},
                             isImage ? "KxDrawImageInWindow ( BW8 Image)" : "KxDrawImageInWindow ( BW8 ROI)");
        });
    } else {
        Report(KX_ERROR_UNSUPPORTED_IMAGE_TYPE, isImage ? kImageTraceName : kRegionTraceName);
    }
}

// A range of rows of a device.
struct DeviceRows {
    std::int64_t first;
    std::int64_t end;
};

// The rows on which a line may leave a mark, so that a huge zoom costs no more than the device is high.
DeviceRows RowsWithMarks(HDC hdc) {
    BITMAP bitmap{};
    LOGPEN pen{};
    POINT origin{};
    GetObjectA(GetCurrentObject(hdc, OBJ_BITMAP), sizeof bitmap, &bitmap);
    GetObjectA(GetCurrentObject(hdc, OBJ_PEN), sizeof pen, &pen);
    GetViewportOrgEx(hdc, &origin);
    const std::int64_t margin = std::max<std::int64_t>(pen.lopnWidth.x, 1);
    const std::int64_t top = -std::int64_t{origin.y};
    return {top - margin, top + bitmap.bmHeight + margin};
}

// A coordinate of the image, on the device: the device pixel to the left of it or above it.
int DeviceCoordinate(std::int64_t coordinate, float pan, float zoom) {
    return FloorToInt((static_cast<float>(coordinate) + pan) * zoom);
}

// Runs are stored as addresses or as byte offsets, whole pixels apart; those of bits count a byte each.
std::int64_t PixelsIn(const KxRun& run, int bytesPerPixel) {
    const auto bytes = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(run.pEnd) -
                                                 reinterpret_cast<std::uintptr_t>(run.pBeg));
    return bytes / std::max(bytesPerPixel, 1);
}

void DrawRuns(const KxGenericROI& region, const KxVectorTemplate<KxRun>& runs, HDC hdc, Zoom zoom, float panX,
              float panY) {
    const DeviceRows visible = RowsWithMarks(hdc);
    const std::int64_t originX = region.GetTotalOrgX();
    const std::int64_t originY = region.GetTotalOrgY();
    for (unsigned i = 0; i < runs.GetNumElements(); ++i) {
        const KxRun& run = runs[i];
        const std::int64_t x = originX + run.n16X;
        const std::int64_t y = originY + run.n16Y;
        const int x0 = DeviceCoordinate(x, panX, zoom.x);
        const int x1 = DeviceCoordinate(x + PixelsIn(run, region.GetColPitch()), panX, zoom.x);
        const DeviceRows rows{std::max<std::int64_t>(DeviceCoordinate(y, panY, zoom.y), visible.first),
                              std::min<std::int64_t>(DeviceCoordinate(y + 1, panY, zoom.y), visible.end)};
        for (std::int64_t row = rows.first; row < rows.end; ++row) {
            MoveToEx(hdc, x0, static_cast<int>(row), nullptr);
            LineTo(hdc, x1, static_cast<int>(row));
        }
    }
}

}  // namespace

void KxGenericROI::Draw(Zelkor::DrawAdapter* pSurface, float f32ZoomX, float f32ZoomY, float f32PanX,
                        float f32PanY) {
    DrawOn(pSurface, *this, f32ZoomX, f32ZoomY, RoundToInt(f32PanX), RoundToInt(f32PanY), kRegionTraceName);
}

void RegionBase::Draw(Zelkor::DrawAdapter* pSurface, float f32ZoomX, float f32ZoomY, float f32PanX,
                      float f32PanY) {
    DrawOn(pSurface, *this, f32ZoomX, f32ZoomY, TruncateToInt(f32PanX), TruncateToInt(f32PanY),
           IsAnROI() ? kRegionTraceName : kImageTraceName);
}

void RegionBase::Draw(HDC hDC, float f32ZoomX, float f32ZoomY) {
    Zelkor::GDIDrawAdapter surface(hDC);
    Draw(&surface, f32ZoomX, f32ZoomY, 0, 0);
}

void RegionBase::DrawMask(HDC hDC, float f32ZoomX, float f32ZoomY, float f32PanX, float f32PanY) {
    DrawRuns(*this, m_MaskRuns, hDC, {f32ZoomX, f32ZoomY}, f32PanX, f32PanY);
}

template <class Pixel>
void KxROI<Pixel>::Draw(HDC hDC, KxBW8Vector* pLut, float f32ZoomX, float f32ZoomY) {
    DrawThroughTable(*this, hDC, pLut, f32ZoomX, f32ZoomY);
}

template <class Pixel>
void KxROI<Pixel>::Draw(HDC hDC, KxC24Vector* pLut, float f32ZoomX, float f32ZoomY) {
    DrawThroughTable(*this, hDC, pLut, f32ZoomX, f32ZoomY);
}

template <class Pixel>
void KxImage<Pixel>::Draw(HDC hDC, KxBW8Vector* pLut, float f32ZoomX, float f32ZoomY) {
    DrawThroughTable(*this, hDC, pLut, f32ZoomX, f32ZoomY);
}

template <class Pixel>
void KxImage<Pixel>::Draw(HDC hDC, KxC24Vector* pLut, float f32ZoomX, float f32ZoomY) {
    DrawThroughTable(*this, hDC, pLut, f32ZoomX, f32ZoomY);
}

#define KX_INSTANTIATE_MEMBERS(Class)                                  \
    template KX_API void Class::Draw(HDC, KxBW8Vector*, float, float); \
    template KX_API void Class::Draw(HDC, KxC24Vector*, float, float);
#define KX_INSTANTIATE(Pixel) KX_INSTANTIATE_MEMBERS(KxROI<Pixel>) KX_INSTANTIATE_MEMBERS(KxImage<Pixel>)
KX_FOR_EACH_PIXEL(KX_INSTANTIATE)
#undef KX_INSTANTIATE
#undef KX_INSTANTIATE_MEMBERS
