// Drawing of regions. There is no drawing surface yet: the operations report that.

#include "kalvo/frame/boundary.h"
#include "kalvo/image/kxroi.h"

using Zelkor::Kalvo::Report;

void KxGenericROI::Draw(Zelkor::DrawAdapter*, float, float, float, float) {
    Report(KX_ERROR_NOT_YET_IMPLEMENTED, "KxGenericROI::Draw");
}

template <class Pixel>
void KxROI<Pixel>::Draw(Zelkor::DrawAdapter* pSurface, float f32ZoomX, float f32ZoomY, float f32PanX,
                        float f32PanY) {
    KxGenericROI::Draw(pSurface, f32ZoomX, f32ZoomY, f32PanX, f32PanY);
}

template <class Pixel>
void KxROI<Pixel>::Draw(HDC, float f32ZoomX, float f32ZoomY) {
    KxGenericROI::Draw(nullptr, f32ZoomX, f32ZoomY, 0, 0);
}

template <class Pixel>
void KxROI<Pixel>::DrawMask(HDC, float f32ZoomX, float f32ZoomY, float f32PanX, float f32PanY) {
    KxGenericROI::Draw(nullptr, f32ZoomX, f32ZoomY, f32PanX, f32PanY);
}

#define KX_INSTANTIATE(Pixel)                                                                  \
    template KX_API void KxROI<Pixel>::Draw(Zelkor::DrawAdapter*, float, float, float, float); \
    template KX_API void KxROI<Pixel>::Draw(HDC, float, float);                                \
    template KX_API void KxROI<Pixel>::DrawMask(HDC, float, float, float, float);
KX_FOR_EACH_PIXEL(KX_INSTANTIATE)
#undef KX_INSTANTIATE
