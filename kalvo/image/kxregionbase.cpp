// What regions do whatever their pixels: attaching, placing, addresses in the image that they lie in.

#include "kalvo/image/kxregionbase.h"

#include "kalvo/frame/boundary.h"
#include "kalvo/image/regiontree.h"
#include "kalvo/vectors/vectorcore.h"

namespace Zelkor::Kalvo {
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
        // The origin may be new: without this the region could lie beyond its parent, in foreign memory.
        RegionTree::SetSize(region, axis, region.*axis.size);
        Report(KX_ERROR_PARAMETER_1_OUT_OF_RANGE, axis.setterName);
        return false;
    }
    return RegionTree::SetSize(region, axis, size);
}

void SetOriginAlong(KxGenericROI& region, const RegionTree::Axis& axis, int origin, const char* traceName) {
    if (IsRegion(region, traceName)) RegionTree::SetOrigin(region, axis, origin, traceName);
}

// Bits from one row of an image to the next: whole bytes, and the bits by which the second row is off.
std::int64_t BitsPerRow(const KxGenericROI& image) {
    const std::int64_t bytes = image.GetRowPitch();
    const std::int64_t rest = image.GetBitIndex(0, 1);
    return bytes * 8 + (bytes < 0 && rest > 0 ? rest - 8 : rest);
}

}  // namespace

RegionBase::RegionBase() = default;

RegionBase::~RegionBase() = default;

void RegionBase::MakeEmpty() {
    VectorCore<KxRun>::SetCapacity(m_MaskRuns, 0);
    if (IsAnROI()) RegionTree::Unlink(*this);
    RegionTree::ReleaseChildren(*this);
    SetColorSystem();
    m_bMaskOffsets = 0;
}

void RegionBase::AttachTo(RegionBase* parent) {
    constexpr const char* kTraceName = "KxROI::Attach";
    if (m_pParent) return Report(KX_ERROR_ROI_HAS_PARENT, kTraceName);
    if (!IsRegion(*this, kTraceName)) return;
    if (!parent) return RegionTree::Clip(*this);
    const bool makesCircle = parent == this || (m_pFirstSubROI && RegionTree::IsWithin(*parent, *this));
    if (makesCircle) return Report(KX_ERROR_CANNOT_MODIFY_ROI, kTraceName);
    RegionTree::Attach(*parent, *this);
}

void RegionBase::DetachFromParent() {
    if (IsRegion(*this, "KxROI::Detach")) RegionTree::Unlink(*this);
}

void RegionBase::SetOrgX(int n32OrgX) {
    SetOriginAlong(*this, RegionTree::kHorizontal, n32OrgX, "KxROI::SetOrgX");
}

void RegionBase::SetOrgY(int n32OrgY) {
    SetOriginAlong(*this, RegionTree::kVertical, n32OrgY, "KxROI::SetOrgY");
}

void RegionBase::SetWidth(int n32Width) { SetSizeAlong(*this, RegionTree::kHorizontal, n32Width); }

void RegionBase::SetHeight(int n32Height) { SetSizeAlong(*this, RegionTree::kVertical, n32Height); }

void RegionBase::SetPlacement(int n32OrgX, int n32OrgY, int n32Width, int n32Height) {
    if (!IsRegion(*this, "KxROI::SetPlacement")) return;
    const auto cutOff = [](int origin, int size) { return std::int64_t{size} + (origin < 0 ? origin : 0); };
    m_n32OrgX = n32OrgX < 0 ? 0 : n32OrgX;
    m_n32OrgY = n32OrgY < 0 ? 0 : n32OrgY;
    // A region that lost its origin covers the whole parent, whatever height was asked for.
    const std::int64_t width = cutOff(n32OrgX, n32Width);
    if (!SetSizeAlong(*this, RegionTree::kHorizontal, width) && width >= 0) return;
    SetSizeAlong(*this, RegionTree::kVertical, cutOff(n32OrgY, n32Height));
}

void RegionBase::SetSize(const KxGenericROI* pOther) { SetSize(pOther->GetWidth(), pOther->GetHeight()); }

void RegionBase::SetSize(KxGenericROI* pOther) { SetSize(pOther->GetWidth(), pOther->GetHeight()); }

void RegionBase::SetSize(int n32Width, int n32Height) {
    SetWidth(n32Width);
    SetHeight(n32Height);
}

int RegionBase::IsAnROI() { return 1; }

const void* RegionBase::GetGenericImagePtr(int n32X, int n32Y) const {
    const RegionTree::Place place = RegionTree::PlaceOf(*this, n32X, n32Y);
    if (!place.image) return nullptr;
    return place.image->GetGenericImagePtr(static_cast<int>(place.x), static_cast<int>(place.y));
}

void* RegionBase::GetGenericImagePtr(int n32X, int n32Y) {
    return const_cast<void*>(static_cast<const RegionBase&>(*this).GetGenericImagePtr(n32X, n32Y));
}

unsigned int RegionBase::GetBitIndex(int n32X, int n32Y) const {
    const RegionTree::Place place = RegionTree::PlaceOf(*this, n32X, n32Y);
    if (!place.image) return 0;
    return place.image->GetBitIndex(static_cast<int>(place.x), static_cast<int>(place.y));
}

int RegionBase::GetColPitch() const { return GetBitsPerPixel() >> 3; }

int RegionBase::GetRowPitch() const {
    const KxGenericROI* top = GetTopParent();
    return top ? top->GetRowPitch() : 0;
}

int RegionBase::GetImgPitch() const { return static_cast<int>(std::int64_t{GetRowPitch()} * m_n32Height); }

int RegionBase::GetSkip() const {
    int skip = 0;
    WithTopImage(*this, "KxROI::GetSkip", [&](const KxGenericROI& top) {
        skip = static_cast<int>((BitsPerRow(top) - std::int64_t{m_n32Width} * GetBitsPerPixel()) / 8);
    });
    return skip;
}

const KxGenericROI* RegionBase::GetTopParent() const {
    const RegionTree::Place place = RegionTree::PlaceOf(*this, 0, 0);
    if (!place.image) Report(KX_ERROR_ROI_HAS_NO_PARENT, "KxROI::GetTopParent");
    return place.image;
}

KxGenericROI* RegionBase::GetTopParent() {
    return const_cast<KxGenericROI*>(static_cast<const RegionBase&>(*this).GetTopParent());
}

void RegionBase::NotVoid() const {
    if (Void()) KxSetError(KX_ERROR_IMAGE_MEMORY_ACCESS);
}

void RegionBase::GetResolution(float& f32X, float& f32Y, const KxMeasurementUnit*& pUnit) const {
    WithTopImage(*this, "KxROI::GetResolution",
                 [&](const KxGenericROI& top) { top.GetResolution(f32X, f32Y, pUnit); });
}

void RegionBase::SetResolution(float f32X, float f32Y, KxMeasurementUnit* pUnit) {
    WithTopImage(*this, "KxROI::SetResolution",
                 [&](KxGenericROI& top) { top.SetResolution(f32X, f32Y, pUnit); });
}

void RegionBase::GetPixelDimensions(float& f32Width, float& f32Height,
                                    const KxMeasurementUnit*& pUnit) const {
    WithTopImage(*this, "KxROI::GetPixelDimensions",
                 [&](const KxGenericROI& top) { top.GetPixelDimensions(f32Width, f32Height, pUnit); });
}

void RegionBase::SetPixelDimensions(float f32Width, float f32Height, KxMeasurementUnit* pUnit) {
    WithTopImage(*this, "KxROI::SetPixelDimensions",
                 [&](KxGenericROI& top) { top.SetPixelDimensions(f32Width, f32Height, pUnit); });
}

}  // namespace Zelkor::Kalvo
