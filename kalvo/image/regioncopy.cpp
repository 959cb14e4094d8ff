// Building copies of trees without recursion, and putting them in place.

#include "kalvo/image/regioncopy.h"

#include <utility>

#include "kalvo/frame/boundary.h"
#include "kalvo/image/regionclass.h"
#include "kalvo/image/regionrows.h"
#include "kalvo/image/regiontree.h"
#include "kalvo/vectors/vectorcore.h"

namespace Zelkor::Kalvo {
namespace {

RegionTexts CopyOf(const RegionTexts& texts) {
    return {CopyOfText(texts.m_pszAuthorASCII.get()),  CopyOfText(texts.m_pszAuthorUnicode.get()),
            CopyOfText(texts.m_pszCommentASCII.get()), CopyOfText(texts.m_pszCommentUnicode.get()),
            CopyOfText(texts.m_pszDateASCII.get()),    CopyOfText(texts.m_pszDateUnicode.get()),
            CopyOfText(texts.m_pszTitleASCII.get()),   CopyOfText(texts.m_pszTitleUnicode.get())};
}

}  // namespace

bool IsPlainRegion(const KxGenericROI& region) {
    const RegionClass* regionClass = FindRegionClass(TypeOf(region));
    return regionClass && typeid(region) == regionClass->type;
}

void RegionCopy::Build(const RegionBase& source, RegionBase& copy, bool recursive,
                       const KxGenericROI* excluded) {
    CopyFields(source, copy);
    if (recursive) CopyDescendants(source, copy, excluded);
}

void RegionCopy::Place(const RegionBase& source, RegionBase& copy) noexcept {
    RegionTree::AttachCopies(copy);
    if (source.m_pParent) RegionTree::Append(*source.m_pParent, copy);
}

void RegionCopy::Replace(const RegionBase& source, RegionBase& copy, RegionBase& destination) noexcept {
    if (destination.m_pParent != source.m_pParent) RegionTree::Unlink(destination);
    RegionTree::UnlinkChildren(destination);  // the source may be one of them, and has no parent then
    if (!destination.m_pParent && source.m_pParent) RegionTree::Append(*source.m_pParent, destination);
    destination.m_Texts = std::move(copy.m_Texts);
    VectorCore<KxRun>::Swap(destination.m_MaskRuns, copy.m_MaskRuns);
    CopyPlainFields(copy, destination);
    RegionTree::MoveChildren(copy, destination);
    RegionTree::AttachCopies(destination);
}

RegionBase* RegionCopy::CopyTo(const RegionBase& source, RegionBase* destination, bool recursive,
                               const RegionClass& sourceClass) noexcept {
    if (destination == &source) return destination;
    RegionBase* result = destination;
    AtBoundary("KxROI::CopyTo", [&] {
        if (destination && !destination->IsAnROI()) throw Exception(KX_ERROR_CANNOT_APPLY_TO_IMAGE);
        std::unique_ptr<RegionBase> copy(sourceClass.make().region);
        Build(source, *copy, recursive, destination);
        if (destination) return Replace(source, *copy, *destination);
        Place(source, *copy);
        result = copy.release();
    });
    return result;
}

void RegionCopy::CopyFields(const RegionBase& source, RegionBase& copy) {
    copy.m_Texts = CopyOf(source.m_Texts);
    VectorCore<KxRun>::Assign(copy.m_MaskRuns, source.m_MaskRuns);
    CopyPlainFields(source, copy);
}

void RegionCopy::CopyPlainFields(const RegionBase& source, RegionBase& copy) noexcept {
    copy.m_n32OrgX = source.m_n32OrgX;
    copy.m_n32OrgY = source.m_n32OrgY;
    copy.m_n32Width = source.m_n32Width;
    copy.m_n32Height = source.m_n32Height;
    copy.m_eColorSystem = source.m_eColorSystem;
    copy.m_bMaskOffsets = source.m_bMaskOffsets;
    copy.m_n32CursorX = source.m_n32CursorX;
    copy.m_n32CursorY = source.m_n32CursorY;
}

// Parents before children, so that whatever has been made when memory runs out goes with `copy`.
void RegionCopy::CopyDescendants(const RegionBase& source, RegionBase& copy, const KxGenericROI* excluded) {
    KxGenericROI* parent = &copy;
    for (const KxGenericROI* node = source.GetFirstSubROI(); node;) {
        std::unique_ptr<RegionBase> clone;
        if (node != excluded) clone = CloneOf(*node);
        if (clone) {
            clone->SetAllocated();
            RegionTree::Append(*parent, *clone);
            KxGenericROI* const made = clone.release();
            if (node->GetFirstSubROI()) {
                parent = made;
                node = node->GetFirstSubROI();
                continue;
            }
        }
        while (!node->GetNextSiblingROI()) {
            node = node->GetParent();
            if (node == &source) return;
            parent = parent->GetParent();
        }
        node = node->GetNextSiblingROI();
    }
}

// A detached copy of one node, null of a node of another base. Objects of a class of the user's own are
// copied by that class.
std::unique_ptr<RegionBase> RegionCopy::CloneOf(const KxGenericROI& node) {
    const KX_IMAGE_TYPES pixelType = TypeOf(node);
    for (const RegionClass* nodeClass : {FindRegionClass(pixelType), FindImageClass(pixelType)}) {
        if (!nodeClass || typeid(node) != nodeClass->type) continue;
        const UntypedRegion source = nodeClass->untyped(const_cast<KxGenericROI&>(node));
        const UntypedRegion made = nodeClass->make();
        std::unique_ptr<RegionBase> clone(made.region);
        CopyFields(*source.region, *clone);
        if (source.pixels) ImageCore::CopyPixels(*source.region, *source.pixels, made);
        return clone;
    }
    const RegionClass* base = FindRegionClass(pixelType);
    std::unique_ptr<RegionBase> clone(base ? base->clone(node) : nullptr);
    if (clone) RegionTree::Unlink(*clone);
    return clone;
}

}  // namespace Zelkor::Kalvo
