// The parts of a region that do not depend on its pixels: texts, totals, walks and checks.

#include "kalvo/image/kxgenericroi.h"

#include <bit>
#include <cstdint>
#include <cstdlib>

#include "kalvo/frame/boundary.h"
#include "kalvo/image/regioncopy.h"
#include "kalvo/image/regiontree.h"

using Zelkor::Kalvo::AtBoundary;
using Zelkor::Kalvo::RegionCopy;
using Zelkor::Kalvo::RegionTexts;
using Zelkor::Kalvo::RegionTree;
using Zelkor::Kalvo::Report;

namespace {

template <class Character>
void SetText(KxGenericROI& region, std::unique_ptr<Character[]> RegionTexts::*field, const Character* text) {
    AtBoundary(nullptr, [&] { RegionCopy::SetText(region, field, text); });
}

// Stores the outcome of a check, traces a failure, and returns the code.
short Conclude(bool passes, KX_ERRORS failure, const char* traceName) {
    if (passes) return static_cast<short>(KxOk());
    KxSetError(failure);
    if (traceName) KxTraceError(traceName);
    return static_cast<short>(failure);
}

// A broken tree must not be used any further: walking it may never end.
[[noreturn]] void StopOnCorruptedHierarchy(const char* traceName) {
    Report(KX_ERROR_CORRUPTED_HIERARCHY, traceName);
    std::abort();
}

// How often `wanted` is among the children of `parent`: once, or not at all. Stops when a child has another
// parent, and when the list leads back into itself: from time to time we remember a child, to find it again.
int TimesInList(const KxGenericROI& parent, const KxGenericROI* wanted, const char* traceName) {
    int timesMet = 0;
    std::uint64_t position = 0;
    const KxGenericROI* remembered = nullptr;
    for (const KxGenericROI* child = parent.GetFirstSubROI(); child; child = child->GetNextSiblingROI()) {
        if (child->GetParent() != &parent || child == remembered) StopOnCorruptedHierarchy(traceName);
        timesMet += child == wanted;
        if (std::has_single_bit(++position)) remembered = child;
    }
    return timesMet;
}

template <class Region>
Region* NextDepthFirst(Region* current, Region* stop) {
    Region* next = current->GetFirstSubROI();
    if (!next) {
        next = current;
        while (!next->GetNextSiblingROI() && next->GetParent()) next = next->GetParent();
        if (next->GetNextSiblingROI()) next = next->GetNextSiblingROI();
    }
    return next == stop ? nullptr : next;
}

int TopSize(const KxGenericROI& region, int (KxGenericROI::*size)() const, const char* traceName) {
    if (const KxGenericROI* top = region.GetTopParent()) return (top->*size)();
    Report(KX_ERROR_ROI_HAS_NO_PARENT, traceName);
    return 0;
}

}  // namespace

KxGenericROI::KxGenericROI() = default;

KxGenericROI::~KxGenericROI() {
    RegionTree::ReleaseChildren(*this);
    RegionTree::Unlink(*this);
}

void KxGenericROI::MakeEmpty() { m_Texts = {}; }

void KxGenericROI::SetAuthor(const char* pszText) { SetText(*this, &RegionTexts::m_pszAuthorASCII, pszText); }

void KxGenericROI::SetAuthor(const unsigned short* pwszText) {
    SetText(*this, &RegionTexts::m_pszAuthorUnicode, pwszText);
}

void KxGenericROI::SetComment(const char* pszText) {
    SetText(*this, &RegionTexts::m_pszCommentASCII, pszText);
}

void KxGenericROI::SetComment(const unsigned short* pwszText) {
    SetText(*this, &RegionTexts::m_pszCommentUnicode, pwszText);
}

void KxGenericROI::SetDate(const char* pszText) { SetText(*this, &RegionTexts::m_pszDateASCII, pszText); }

void KxGenericROI::SetDate(const unsigned short* pwszText) {
    SetText(*this, &RegionTexts::m_pszDateUnicode, pwszText);
}

void KxGenericROI::SetTitle(const char* pszText) { SetText(*this, &RegionTexts::m_pszTitleASCII, pszText); }

void KxGenericROI::SetTitle(const unsigned short* pwszText) {
    SetText(*this, &RegionTexts::m_pszTitleUnicode, pwszText);
}

int KxGenericROI::GetTotalOrgX() const { return static_cast<int>(RegionTree::PlaceOf(*this, 0, 0).x); }

int KxGenericROI::GetTotalOrgY() const { return static_cast<int>(RegionTree::PlaceOf(*this, 0, 0).y); }

int KxGenericROI::GetTotalWidth() const {
    return TopSize(*this, &KxGenericROI::GetWidth, "KxROI::GetTotalWidth");
}

int KxGenericROI::GetTotalHeight() const {
    return TopSize(*this, &KxGenericROI::GetHeight, "KxROI::GetTotalHeight");
}

const KxGenericROI* KxGenericROI::GetNextROI(const KxGenericROI* pStop) const {
    return NextDepthFirst(this, pStop);
}

KxGenericROI* KxGenericROI::GetNextROI(KxGenericROI* pStop) { return NextDepthFirst(this, pStop); }

unsigned int KxGenericROI::GetCurrentVersion() const { return 4; }

short KxGenericROI::SameSize(const KxGenericROI* pOther) const {
    return Conclude(m_n32Height == pOther->m_n32Height && m_n32Width == pOther->m_n32Width,
                    KX_ERROR_SIZE_MISMATCH, nullptr);
}

short KxGenericROI::SameDepth(KxGenericROI* pOther) {
    return Conclude(GetBitsPerPixel() == pOther->GetBitsPerPixel(), KX_ERROR_DEPTH_MISMATCH,
                    "KxROI::SameDepth");
}

short KxGenericROI::SameDataType(KxGenericROI* pOther) {
    return Conclude(GetDataType() == pOther->GetDataType(), KX_ERROR_INVALID_DATA_TYPE,
                    "KxROI::SameDataType");
}

short KxGenericROI::PermittedDepth(short n16Mask) {
    return Conclude(GetBitsPerPixelCode() & n16Mask, KX_ERROR_INVALID_DEPTH, "KxROI::PermittedDepth");
}

short KxGenericROI::PermittedDataType(short n16Mask) {
    return Conclude(GetDataType() & n16Mask, KX_ERROR_INVALID_DATA_TYPE, "KxROI::PermittedDataType");
}

short KxGenericROI::SameSizeDepthType(KxGenericROI* pOther, short n16DepthMask, short n16DataTypeMask) {
    if (SameSize(pOther) || SameDepth(pOther) || SameDataType(pOther) || PermittedDepth(n16DepthMask) ||
        PermittedDataType(n16DataTypeMask))
        KxTraceError("KxROI::SameSizeDepthType");
    return static_cast<short>(KxGetError());
}

int KxGenericROI::DoesContainChild(const KxGenericROI* pParent, const KxGenericROI* pChild) {
    return pParent ? TimesInList(*pParent, pChild, "DoesContainChild") : 0;
}

void KxGenericROI::CheckParentChildrenConsistency(const KxGenericROI* pObject) {
    constexpr const char* kTraceName = "CheckParentChildrenConsistency";
    if (!pObject) return;
    if (pObject->m_pParent && !DoesContainChild(pObject->m_pParent, pObject))
        StopOnCorruptedHierarchy(kTraceName);
    // An object below itself would make a circle of parents and children.
    for (const KxGenericROI* node = pObject; node; node = RegionTree::Next(node, *pObject))
        if (TimesInList(*node, pObject, kTraceName)) StopOnCorruptedHierarchy(kTraceName);
}

namespace Zelkor::Kalvo {

GenericRoiExtent::GenericRoiExtent(const KxGenericROI& region)
    : GenericRoiExtent(region.GetOrgX(), region.GetOrgY(), region.GetWidth(), region.GetHeight()) {}

}  // namespace Zelkor::Kalvo
