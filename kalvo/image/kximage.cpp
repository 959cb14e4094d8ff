// Images of a pixel type: the exported edge over what images of all types do.

#include "kalvo/image/kximage.h"

#include <string>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/kxlibrary.h"
#include "kalvo/image/regionclass.h"

using namespace Zelkor::Kalvo;

namespace {

void SwapImages(const UntypedRegion& image, const UntypedRegion& other, const std::string& pixelName) {
    AtBoundary(nullptr, [&] {
        KxOk();
        if (image.region->SameSize(other.region))
            KxTraceError(("KxSwapImages ( " + pixelName + ")").c_str());
        else
            ImageCore::SwapPixels(*image.pixels, *other.pixels);
    });
}

}  // namespace

template <class Pixel>
KxImage<Pixel>::KxImage(int n32Width, int n32Height) {
    SetSize(n32Width, n32Height);
}

template <class Pixel>
KxImage<Pixel>::KxImage(const KxImage& other) : KxROI<Pixel>() {
    other.CopyTo(this, KxGetRecursiveCopyBehavior());
}

template <class Pixel>
KxImage<Pixel>& KxImage<Pixel>::operator=(const KxImage& other) {
    other.CopyTo(this, KxGetRecursiveCopyBehavior());
    return *this;
}

template <class Pixel>
KxImage<Pixel>::~KxImage() {
    MakeEmpty();
}

template <class Pixel>
void KxImage<Pixel>::MakeEmpty() {
    ImageCore::MakeEmpty(*this, m_Pixels);
}

template <class Pixel>
KxImage<Pixel>* KxImage<Pixel>::CopyTo(KxImage* pDestination, int bRecursive) const {
    const UntypedRegion destination = pDestination ? ImageCore::Untyped(*pDestination) : UntypedRegion();
    return static_cast<KxImage*>(
        ImageCore::CopyTo(*this, m_Pixels, destination, bRecursive, ClassOf<KxImage>()));
}

template <class Pixel>
KxROI<Pixel>* KxImage<Pixel>::CreateROIClone(int bRecursive) const {
    return CopyTo(nullptr, bRecursive);
}

template <class Pixel>
void KxImage<Pixel>::SetSize(int n32Width, int n32Height) {
    ImageCore::SetSize(*this, m_Pixels, n32Width, n32Height);
}

template <class Pixel>
void KxImage<Pixel>::SetSize(const KxGenericROI* pOther) {
    SetSize(pOther->GetWidth(), pOther->GetHeight());
}

template <class Pixel>
void KxImage<Pixel>::SetSize(KxGenericROI* pOther) {
    SetSize(pOther->GetWidth(), pOther->GetHeight());
}

template <class Pixel>
void KxImage<Pixel>::SetImagePtr(int n32Width, int n32Height, void* pPixels, int n32BitsPerRow) {
    ImageCore::SetImagePtr(*this, m_Pixels, n32Width, n32Height, pPixels, n32BitsPerRow);
}

template <class Pixel>
void KxImage<Pixel>::SetImagePtr(void* pPixels, int n32BitsPerRow) {
    SetImagePtr(this->m_n32Width, this->m_n32Height, pPixels, n32BitsPerRow);
}

template <class Pixel>
const void* KxImage<Pixel>::GetGenericImagePtr(int n32X, int n32Y) const {
    return ImageCore::AddressOf(m_Pixels, n32X, n32Y);
}

template <class Pixel>
void* KxImage<Pixel>::GetGenericImagePtr(int n32X, int n32Y) {
    return ImageCore::AddressOf(m_Pixels, n32X, n32Y);
}

template <class Pixel>
unsigned int KxImage<Pixel>::GetBitIndex(int n32X, int n32Y) const {
    return ImageCore::BitOf(m_Pixels, n32X, n32Y);
}

template <class Pixel>
void KxImage<Pixel>::SetResolution(float f32X, float f32Y, KxMeasurementUnit* pUnit) {
    ImageCore::SetResolution(m_Pixels, f32X, f32Y, pUnit);
}

template <class Pixel>
void KxImage<Pixel>::GetResolution(float& f32X, float& f32Y, const KxMeasurementUnit*& pUnit) const {
    f32X = 1 / m_Pixels.m_PixelWidth.GetValue();
    f32Y = 1 / m_Pixels.m_PixelHeight.GetValue();
    pUnit = m_Pixels.m_PixelWidth.GetUnit();
}

template <class Pixel>
void KxImage<Pixel>::SetPixelDimensions(float f32Width, float f32Height, KxMeasurementUnit* pUnit) {
    ImageCore::SetPixelDimensions(m_Pixels, f32Width, f32Height, pUnit);
}

template <class Pixel>
void KxImage<Pixel>::GetPixelDimensions(float& f32Width, float& f32Height,
                                        const KxMeasurementUnit*& pUnit) const {
    f32Width = m_Pixels.m_PixelWidth.GetValue();
    f32Height = m_Pixels.m_PixelHeight.GetValue();
    pUnit = m_Pixels.m_PixelWidth.GetUnit();
}

template <class Pixel>
void KxImage<Pixel>::DumpToStream(std::ostream&, int) const {
    throw 0;
}

template <class Pixel>
void KxImage<Pixel>::SwapPixels(KxImage& other) noexcept {
    ImageCore::SwapPixels(m_Pixels, other.m_Pixels);
}

#define KX_INSTANTIATE(Pixel) template class KxImage<Pixel>;
KX_FOR_EACH_PIXEL(KX_INSTANTIATE)
#undef KX_INSTANTIATE

// The trace names the pixel type by what stands after its prefix.
#define KX_DEFINE(Pixel)                                                                  \
    void KxSwapImages(KxImage<Pixel>* pImage, KxImage<Pixel>* pOther) {                   \
        SwapImages(ImageCore::Untyped(*pImage), ImageCore::Untyped(*pOther), &#Pixel[2]); \
    }
KX_FOR_EACH_SWAPPABLE_PIXEL(KX_DEFINE)
#undef KX_DEFINE
