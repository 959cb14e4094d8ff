// Regions of a pixel type: making, copying and attaching them, and the numbers of the type.

#include "kalvo/image/kxroi.h"

#include <memory>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/kxlibrary.h"
#include "kalvo/image/regionclass.h"
#include "kalvo/image/regioncopy.h"

using namespace Zelkor::Kalvo;

template <class Pixel>
KxROI<Pixel>::KxROI() {
    m_eColorSystem = PixelTraits<Pixel>::kColorSystem;
}

template <class Pixel>
KxROI<Pixel>::KxROI(KxROI* pParent, int n32OrgX, int n32OrgY, int n32Width, int n32Height) : KxROI() {
    AttachTo(pParent);
    m_n32OrgX = n32OrgX;
    m_n32OrgY = n32OrgY;
    SetWidth(n32Width);
    SetHeight(n32Height);
}

template <class Pixel>
KxROI<Pixel>::KxROI(const KxROI& other) : KxROI() {
    other.CopyTo(this, KxGetRecursiveCopyBehavior());
}

template <class Pixel>
KxROI<Pixel>& KxROI<Pixel>::operator=(const KxROI& other) {
    other.CopyTo(this, KxGetRecursiveCopyBehavior());
    return *this;
}

template <class Pixel>
KxROI<Pixel>::~KxROI() {
    MakeEmpty();
}

template <class Pixel>
KxROI<Pixel>* KxROI<Pixel>::CopyTo(KxROI* pDestination, int bRecursive) const {
    return static_cast<KxROI*>(RegionCopy::CopyTo(*this, pDestination, bRecursive, ClassOf<KxROI>()));
}

template <class Pixel>
KxROI<Pixel>* KxROI<Pixel>::CreateROIClone(int bRecursive) const {
    return CopyTo(nullptr, bRecursive);
}

template <class Pixel>
void KxROI<Pixel>::Attach(KxROI* pParent) {
    AttachTo(pParent);
}

template <class Pixel>
void KxROI<Pixel>::Detach() {
    DetachFromParent();
}

template <class Pixel>
int KxROI<Pixel>::Void() const {
    return GetImagePtr(0, 0) == nullptr;
}

template <class Pixel>
void KxROI<Pixel>::SetColorSystem() {
    m_eColorSystem = PixelTraits<Pixel>::kColorSystem;
}

template <class Pixel>
KX_IMAGE_TYPES KxROI<Pixel>::GetType() {
    return PixelTraits<Pixel>::kImageType;
}

template <class Pixel>
int KxROI<Pixel>::GetBitsPerPixel() const {
    return PixelTraits<Pixel>::kBitsPerPixel;
}

template <class Pixel>
int KxROI<Pixel>::GetPlanesPerPixel() const {
    return PixelTraits<Pixel>::kPlanesPerPixel;
}

template <class Pixel>
short KxROI<Pixel>::GetBitsPerPixelCode() const {
    return PixelTraits<Pixel>::kBitsPerPixelCode;
}

template <class Pixel>
short KxROI<Pixel>::GetDataType() {
    return PixelTraits<Pixel>::kDataType;
}

#define KX_INSTANTIATE(Pixel) template class KxROI<Pixel>;
KX_FOR_EACH_PIXEL(KX_INSTANTIATE)
#undef KX_INSTANTIATE
