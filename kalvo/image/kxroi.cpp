// Regions: attaching, placing, addresses through the parent chain, copying.

#include "kalvo/image/kxroi.h"

#include <memory>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/kxlibrary.h"
#include "kalvo/image/regiontree.h"

using namespace Zelkor::Kalvo;

namespace {

// Runs `operation` on the top image of `region`; without one the failed search is reported once more.
template <class Region, class Operation>
void WithTopImage(Region& region, const char* traceName, const Operation& operation) {
    if (auto* top = region.GetTopParent())
        operation(*top);
    else
        Report(KX_ERROR_ROI_HAS_NO_PARENT, traceName);
}

// False, and reported, when `region` is an image: those have no placement.
bool IsRegion(KxGenericROI& region, const char* traceName) {
    if (region.IsAnROI()) return true;
    Report(KX_ERROR_CANNOT_APPLY_TO_IMAGE, traceName);
    return false;
}

// Sets the size along one axis; false when the size is refused or the region lost its origin.
bool SetSizeAlong(KxGenericROI& region, const RegionTree::Axis& axis, std::int64_t size) {
    if (!IsRegion(region, axis.setterName)) return false;
    if (size < 0) {
        Report(KX_ERROR_PARAMETER_1_OUT_OF_RANGE, axis.setterName);
        return false;
    }
    return AtBoundary(axis.setterName, [&] { return RegionTree::SetSize(region, axis, size); });
}

void SetOriginAlong(KxGenericROI& region, const RegionTree::Axis& axis, int origin, const char* traceName) {
    if (!IsRegion(region, traceName)) return;
    AtBoundary(traceName, [&] { RegionTree::SetOrigin(region, axis, origin, traceName); });
}

// A clone of a child with everything below it. Trees from archives may mix pixel types.
template <class Pixel, class... OtherPixels>
std::unique_ptr<KxGenericROI> CloneOf(const KxGenericROI& child, std::tuple<Pixel, OtherPixels...>) {
    if (const auto* typed = dynamic_cast<const KxROI<Pixel>*>(&child))
        return std::unique_ptr<KxGenericROI>(typed->CreateROIClone(1));
    if constexpr (sizeof...(OtherPixels) > 0) return CloneOf(child, std::tuple<OtherPixels...>());
    return nullptr;
}

}  // namespace

template <class Pixel>
KxROI<Pixel>::KxROI() {
    m_eColorSystem = PixelTraits<Pixel>::kColorSystem;
}

template <class Pixel>
KxROI<Pixel>::KxROI(KxROI* pParent, int n32OrgX, int n32OrgY, int n32Width, int n32Height) : KxROI() {
    Attach(pParent);
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
void KxROI<Pixel>::MakeEmpty() {
    m_MaskRuns.SetMaxElements(0);
    if (IsAnROI()) RegionTree::Unlink(*this);
    RegionTree::ReleaseChildren(*this);
    m_eColorSystem = PixelTraits<Pixel>::kColorSystem;
    m_bMaskOffsets = 0;
}

template <class Pixel>
KxROI<Pixel>* KxROI<Pixel>::CopyTo(KxROI* pDestination, int bRecursive) const {
    constexpr const char* kTraceName = "KxROI::CopyTo";
    if (pDestination && pDestination != this && !IsRegion(*pDestination, kTraceName)) return pDestination;
    return AtBoundary(kTraceName, [&] {
        if (!pDestination) {
            auto copy = std::make_unique<KxROI>();
            CopyRegionTo(*copy, bRecursive);
            return copy.release();
        }
        if (pDestination != this) CopyRegionTo(*pDestination, bRecursive);
        return pDestination;
    });
}

template <class Pixel>
KxROI<Pixel>* KxROI<Pixel>::CreateROIClone(int bRecursive) const {
    return CopyTo(nullptr, bRecursive);
}

template <class Pixel>
void KxROI<Pixel>::CopyRegionTo(KxROI& destination, bool recursive) const {
    if (destination.m_pParent != m_pParent) RegionTree::Unlink(destination);
    while (KxGenericROI* child = destination.GetFirstSubROI()) RegionTree::Unlink(*child);
    if (!destination.m_pParent && m_pParent) RegionTree::Append(*m_pParent, destination);

    destination.SetAuthor(GetAuthor());
    destination.SetAuthor(GetAuthorUnicode());
    destination.SetComment(GetComment());
    destination.SetComment(GetCommentUnicode());
    destination.SetDate(GetDate());
    destination.SetDate(GetDateUnicode());
    destination.SetTitle(GetTitle());
    destination.SetTitle(GetTitleUnicode());
    destination.m_n32OrgX = m_n32OrgX;
    destination.m_n32OrgY = m_n32OrgY;
    destination.m_n32Width = m_n32Width;
    destination.m_n32Height = m_n32Height;
    destination.m_eColorSystem = m_eColorSystem;
    destination.m_bMaskOffsets = m_bMaskOffsets;
    destination.m_MaskRuns = m_MaskRuns;
    destination.m_n32CursorX = m_n32CursorX;
    destination.m_n32CursorY = m_n32CursorY;

    if (!recursive) return;
    for (const KxGenericROI* child = m_pFirstSubROI; child; child = child->GetNextSiblingROI()) {
        std::unique_ptr<KxGenericROI> clone = CloneOf(*child, PixelTypes());
        if (!clone) continue;
        RegionTree::Unlink(*clone);
        RegionTree::Attach(destination, *clone.release());
    }
}

template <class Pixel>
void KxROI<Pixel>::Attach(KxROI* pParent) {
    constexpr const char* kTraceName = "KxROI::Attach";
    if (m_pParent) return Report(KX_ERROR_ROI_HAS_PARENT, kTraceName);
    if (!IsRegion(*this, kTraceName)) return;
    if (pParent && RegionTree::IsWithin(*pParent, *this))
        return Report(KX_ERROR_CANNOT_MODIFY_ROI, kTraceName);
    AtBoundary(kTraceName, [&] {
        if (pParent) RegionTree::Attach(*pParent, *this);
    });
}

template <class Pixel>
void KxROI<Pixel>::Detach() {
    if (IsRegion(*this, "KxROI::Detach")) RegionTree::Unlink(*this);
}

template <class Pixel>
void KxROI<Pixel>::SetOrgX(int n32OrgX) {
    SetOriginAlong(*this, RegionTree::kHorizontal, n32OrgX, "KxROI::SetOrgX");
}

template <class Pixel>
void KxROI<Pixel>::SetOrgY(int n32OrgY) {
    SetOriginAlong(*this, RegionTree::kVertical, n32OrgY, "KxROI::SetOrgY");
}

template <class Pixel>
void KxROI<Pixel>::SetWidth(int n32Width) {
    SetSizeAlong(*this, RegionTree::kHorizontal, n32Width);
}

template <class Pixel>
void KxROI<Pixel>::SetHeight(int n32Height) {
    SetSizeAlong(*this, RegionTree::kVertical, n32Height);
}

template <class Pixel>
void KxROI<Pixel>::SetPlacement(int n32OrgX, int n32OrgY, int n32Width, int n32Height) {
    if (!IsRegion(*this, "KxROI::SetPlacement")) return;
    const auto cutOff = [](int origin, int size) { return std::int64_t{size} + (origin < 0 ? origin : 0); };
    m_n32OrgX = n32OrgX < 0 ? 0 : n32OrgX;
    m_n32OrgY = n32OrgY < 0 ? 0 : n32OrgY;
    // A region that lost its origin covers the whole parent, whatever height was asked for.
    const std::int64_t width = cutOff(n32OrgX, n32Width);
    if (!SetSizeAlong(*this, RegionTree::kHorizontal, width) && width >= 0) return;
    SetSizeAlong(*this, RegionTree::kVertical, cutOff(n32OrgY, n32Height));
}

template <class Pixel>
void KxROI<Pixel>::SetSize(const KxGenericROI* pOther) {
    SetSize(pOther->GetWidth(), pOther->GetHeight());
}

template <class Pixel>
void KxROI<Pixel>::SetSize(KxGenericROI* pOther) {
    SetSize(pOther->GetWidth(), pOther->GetHeight());
}

template <class Pixel>
void KxROI<Pixel>::SetSize(int n32Width, int n32Height) {
    SetWidth(n32Width);
    SetHeight(n32Height);
}

template <class Pixel>
const void* KxROI<Pixel>::GetGenericImagePtr(int n32X, int n32Y) const {
    const KxGenericROI* parent = m_pParent;
    return parent ? parent->GetGenericImagePtr(m_n32OrgX + n32X, m_n32OrgY + n32Y) : nullptr;
}

template <class Pixel>
void* KxROI<Pixel>::GetGenericImagePtr(int n32X, int n32Y) {
    return m_pParent ? m_pParent->GetGenericImagePtr(m_n32OrgX + n32X, m_n32OrgY + n32Y) : nullptr;
}

template <class Pixel>
unsigned int KxROI<Pixel>::GetBitIndex(int n32X, int n32Y) const {
    return m_pParent ? m_pParent->GetBitIndex(m_n32OrgX + n32X, m_n32OrgY + n32Y) : 0;
}

template <class Pixel>
int KxROI<Pixel>::GetColPitch() const {
    return GetBitsPerPixel() >> 3;
}

template <class Pixel>
int KxROI<Pixel>::GetRowPitch() const {
    const KxGenericROI* top = GetTopParent();
    return top ? top->GetRowPitch() : 0;
}

template <class Pixel>
int KxROI<Pixel>::GetImgPitch() const {
    return static_cast<int>(std::int64_t{GetRowPitch()} * m_n32Height);
}

template <class Pixel>
int KxROI<Pixel>::GetSkip() const {
    int skip = 0;
    WithTopImage(*this, "KxROI::GetSkip", [&](const KxGenericROI& top) {
        const std::int64_t rowBits = std::int64_t{m_n32Width} * GetBitsPerPixel();
        skip = static_cast<int>((std::int64_t{top.GetRowPitch()} * 8 - rowBits) / 8);
    });
    return skip;
}

template <class Pixel>
const KxGenericROI* KxROI<Pixel>::GetTopParent() const {
    const KxGenericROI* parent = m_pParent;
    if (parent) return parent->GetTopParent();
    Report(KX_ERROR_ROI_HAS_NO_PARENT, "KxROI::GetTopParent");
    return nullptr;
}

template <class Pixel>
KxGenericROI* KxROI<Pixel>::GetTopParent() {
    return const_cast<KxGenericROI*>(static_cast<const KxROI&>(*this).GetTopParent());
}

template <class Pixel>
int KxROI<Pixel>::Void() const {
    return GetImagePtr(0, 0) == nullptr;
}

template <class Pixel>
void KxROI<Pixel>::NotVoid() const {
    if (Void()) KxSetError(KX_ERROR_IMAGE_MEMORY_ACCESS);
}

template <class Pixel>
void KxROI<Pixel>::GetResolution(float& f32X, float& f32Y, const KxMeasurementUnit*& pUnit) const {
    WithTopImage(*this, "KxROI::GetResolution",
                 [&](const KxGenericROI& top) { top.GetResolution(f32X, f32Y, pUnit); });
}

template <class Pixel>
void KxROI<Pixel>::SetResolution(float f32X, float f32Y, KxMeasurementUnit* pUnit) {
    WithTopImage(*this, "KxROI::SetResolution",
                 [&](KxGenericROI& top) { top.SetResolution(f32X, f32Y, pUnit); });
}

template <class Pixel>
void KxROI<Pixel>::GetPixelDimensions(float& f32Width, float& f32Height,
                                      const KxMeasurementUnit*& pUnit) const {
    WithTopImage(*this, "KxROI::GetPixelDimensions",
                 [&](const KxGenericROI& top) { top.GetPixelDimensions(f32Width, f32Height, pUnit); });
}

template <class Pixel>
void KxROI<Pixel>::SetPixelDimensions(float f32Width, float f32Height, KxMeasurementUnit* pUnit) {
    WithTopImage(*this, "KxROI::SetPixelDimensions",
                 [&](KxGenericROI& top) { top.SetPixelDimensions(f32Width, f32Height, pUnit); });
}

template <class Pixel>
void KxROI<Pixel>::SetColorSystem() {
    m_eColorSystem = PixelTraits<Pixel>::kColorSystem;
}

template <class Pixel>
int KxROI<Pixel>::IsAnROI() {
    return 1;
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
