// The older display functions: descriptions and palettes live in the thread's record.

#include "kalvo/display/kximagedisplay.h"

#include "kalvo/display/dib.h"
#include "kalvo/display/grayreduction.h"
#include "kalvo/display/tabledisplay.h"
#include "kalvo/frame/boundary.h"
#include "kalvo/frame/thread_slot.h"

#include <utility>

using namespace Zelkor::Kalvo;

namespace {

constexpr const char* kGrayImageTraceName = "KxDrawImageInWindow ( BW8 Image)";
constexpr const char* kGrayRegionTraceName = "KxDrawImageInWindow ( BW8 ROI)";

RGBQUAD ShownAs(KxBW8 gray) { return {gray, gray, gray, 0}; }
RGBQUAD ShownAs(KxC24 color) { return {color.m_un8C2, color.m_un8C1, color.m_un8C0, 0}; }

OzzoTLSStruct& Record() {
    if (OzzoTLSStruct* record = KxGetTLSPtr()) return *record;
    throw Exception(KX_ERROR_ALLOCATION);
}

void CheckPixels(const KxGenericROI& region) {
    const KxGenericROI* top = region.GetTopParent();
    if (!top) throw Exception(KX_ERROR_ROI_HAS_NO_PARENT);
    if (!top->GetGenericImagePtr(0, 0)) throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);
}

void DeletePalettes(OzzoTLSStruct& record) {
    for (HPALETTE* palette : {&record.m_hGrayPalette, &record.m_hColorPalette})
        if (*palette) DeleteObject(std::exchange(*palette, nullptr));
}

// Made on first use from the colours of that time, and kept for the life of the thread.
HPALETTE ThreadPalette(PaletteKind kind, OzzoTLSStruct& record) {
    const bool isGray = kind == PaletteKind::Gray;
    HPALETTE& handle = isGray ? record.m_hGrayPalette : record.m_hColorPalette;
    KxLogicalPalette& palette = isGray ? record.m_GrayPalette : record.m_ColorPalette;
    if (!handle) {
        FillPalette(kind, record.m_BitmapInfo, palette);
        handle = CreatePalette(AsLogPalette(palette));
        ReleasePalettesWith(DeletePalettes);
    }
    return handle;
}

// `setColors` completes the description, the header of which is there already.
template <class SetColors>
void DrawRegion(const KxGenericROI& region, HDC hdc, Zoom zoom, const SetColors& setColors) {
    CheckPixels(region);
    const DibType& type = *FindDibType(TypeOf(region));
    OzzoTLSStruct& record = Record();
    RegionDib dib(region, type, record.m_BitmapInfo);
    setColors(type, record.m_BitmapInfo);
    const bool hasPalette = type.palette != PaletteKind::None && IsPaletteDevice(hdc);
    const SelectedPalette selected(hdc, hasPalette ? ThreadPalette(type.palette, record) : nullptr);
    if (hasPalette) record.m_hPreviousPalette = selected.Previous();
    dib.Draw(hdc, zoom);
}

void Draw(const KxGenericROI& region, HDC hdc, Zoom zoom, const char* traceName) {
    AtBoundary(traceName, [&] { DrawRegion(region, hdc, zoom, DescribeColors); });
}

void DrawAndClearError(const KxGenericROI& region, HDC hdc, Zoom zoom, const char* traceName) {
    AtBoundary(traceName, [&] {
        DrawRegion(region, hdc, zoom, DescribeColors);
        KxOk();
    });
}

template <class Vector>
void DrawInColorsOf(const Vector* lut, const KxGenericROI& region, HDC hdc, Zoom zoom,
                    const char* traceName) {
    AtTracePoint(traceName, [&] {
        DrawRegion(region, hdc, zoom, [lut](const DibType&, KxBitmapInfo& info) {
            if (!lut || lut->GetNumElements() != info.m_Colors.size())
                throw Exception(KX_ERROR_VECTOR_NUMBER_OF_ELEMENTS);
            for (unsigned k = 0; k < info.m_Colors.size(); ++k) info.m_Colors[k] = ShownAs((*lut)[k]);
        });
    });
}

void DrawReduced(const KxGenericROI& region, HDC hdc, Zoom zoom, const char* traceName) {
    AtBoundary(traceName, [&] {
        CheckPixels(region);
        KxImage<KxBW8> reduced;
        ReduceToGray(region, reduced);
        AtTracePoint(kGrayImageTraceName, [&] { DrawRegion(reduced, hdc, zoom, DescribeColors); });
        KxOk();
    });
}

template <class Vector>
void DrawInWindow(const KxGenericROI& region, HDC hdc, const Vector* lut, Zoom zoom, const char* traceName) {
    AtBoundary(nullptr, [&] { DrawThroughTable(region, hdc, lut, zoom, traceName); });
}

}  // namespace

namespace Zelkor::Kalvo {

void DrawThroughTable(const KxGenericROI& region, HDC hdc, const KxBW8Vector* lut, Zoom zoom,
                      const char* traceName) {
    DrawInColorsOf(lut, region, hdc, zoom, traceName);
}

void DrawThroughTable(const KxGenericROI& region, HDC hdc, const KxC24Vector* lut, Zoom zoom,
                      const char* traceName) {
    DrawInColorsOf(lut, region, hdc, zoom, traceName);
}

}  // namespace Zelkor::Kalvo

void KxDrawImageInWindow(KxImage<KxBW1>* pImage, HDC hDC, float f32ZoomX, float f32ZoomY) {
    Draw(*pImage, hDC, {f32ZoomX, f32ZoomY}, "KxDrawImageInWindow ( BW1 Image)");
}

void KxDrawImageInWindow(KxROI<KxBW1>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY) {
    Draw(*pROI, hDC, {f32ZoomX, f32ZoomY}, "KxDrawImageInWindow ( BW1 ROI)");
}

short KxDrawImageInWindow(KxImage<KxBW8>* pImage, HDC hDC, float f32ZoomX, float f32ZoomY) {
    DrawAndClearError(*pImage, hDC, {f32ZoomX, f32ZoomY}, kGrayImageTraceName);
    return static_cast<short>(KxGetError());
}

void KxDrawImageInWindow(KxImage<KxBW8>* pImage, HDC hDC, KxBW8Vector* pLut, float f32ZoomX, float f32ZoomY) {
    DrawInWindow(*pImage, hDC, pLut, {f32ZoomX, f32ZoomY}, kGrayImageTraceName);
}

void KxDrawImageInWindow(KxImage<KxBW8>* pImage, HDC hDC, KxC24Vector* pLut, float f32ZoomX, float f32ZoomY) {
    DrawInWindow(*pImage, hDC, pLut, {f32ZoomX, f32ZoomY}, kGrayImageTraceName);
}

void KxDrawImageInWindow(KxROI<KxBW8>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY) {
    DrawAndClearError(*pROI, hDC, {f32ZoomX, f32ZoomY}, kGrayRegionTraceName);
}

void KxDrawImageInWindow(KxROI<KxBW8>* pROI, HDC hDC, KxBW8Vector* pLut, float f32ZoomX, float f32ZoomY) {
    DrawInWindow(*pROI, hDC, pLut, {f32ZoomX, f32ZoomY}, kGrayRegionTraceName);
}

void KxDrawImageInWindow(KxROI<KxBW8>* pROI, HDC hDC, KxC24Vector* pLut, float f32ZoomX, float f32ZoomY) {
    DrawInWindow(*pROI, hDC, pLut, {f32ZoomX, f32ZoomY}, kGrayRegionTraceName);
}

void KxDrawImageInWindow(KxROI<KxBW16>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY) {
    DrawReduced(*pROI, hDC, {f32ZoomX, f32ZoomY}, "KxDrawImageInWindow ( BW16 Image)");
}

void KxDrawImageInWindow(KxROI<KxBW32>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY) {
    DrawReduced(*pROI, hDC, {f32ZoomX, f32ZoomY}, "KxDrawImageInWindow ( BW32 Image)");
}

void KxDrawImageInWindow(KxROI<KxC15>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY) {
    Draw(*pROI, hDC, {f32ZoomX, f32ZoomY}, "KxDrawImageInWindow ( C15 ROI)");
}

void KxDrawImageInWindow(KxROI<KxC16>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY) {
    Draw(*pROI, hDC, {f32ZoomX, f32ZoomY}, "KxDrawImageInWindow ( C16 ROI)");
}

void KxDrawImageInWindow(KxROI<KxC24>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY) {
    Draw(*pROI, hDC, {f32ZoomX, f32ZoomY}, "KxDrawImageInWindow ( C24 ROI)");
}

void KxDrawImageInWindow(KxROI<KxC24A>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY) {
    Draw(*pROI, hDC, {f32ZoomX, f32ZoomY}, "KxDrawImageInWindow ( C24A ROI)");
}
