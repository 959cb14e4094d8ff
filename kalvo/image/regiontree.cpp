// Linking, releasing and laying out the nodes of a tree of regions without recursion.

#include "kalvo/image/regiontree.h"

#include <algorithm>
#include <vector>

#include "kalvo/frame/boundary.h"

namespace Zelkor::Kalvo {

const RegionTree::Axis RegionTree::kHorizontal = {&KxGenericROI::m_n32OrgX, &KxGenericROI::m_n32Width,
                                                  "KxROI::SetWidth"};
const RegionTree::Axis RegionTree::kVertical = {&KxGenericROI::m_n32OrgY, &KxGenericROI::m_n32Height,
                                                "KxROI::SetHeight"};

void RegionTree::Append(KxGenericROI& parent, KxGenericROI& child, KxGenericROI* lastChild) {
    KxGenericROI** link = lastChild ? &lastChild->m_pSibling : &parent.m_pFirstSubROI;
    while (*link) link = &(*link)->m_pSibling;
    *link = &child;
    child.m_pParent = &parent;
}

void RegionTree::Attach(KxGenericROI& parent, KxGenericROI& child) {
    Append(parent, child);
    child.m_eColorSystem = parent.m_eColorSystem;
    if (child.IsAnROI()) Clip(child);  // an image in a tree keeps the size of its buffer
}

void RegionTree::Clip(KxGenericROI& region) {
    SetSize(region, kHorizontal, region.m_n32Width);
    SetSize(region, kVertical, region.m_n32Height);
}

void RegionTree::Unlink(KxGenericROI& child) {
    if (!child.m_pParent) return;
    KxGenericROI** link = &child.m_pParent->m_pFirstSubROI;
    while (*link != &child) link = &(*link)->m_pSibling;
    *link = child.m_pSibling;
    child.m_pParent = child.m_pSibling = nullptr;
}

void RegionTree::ReleaseChildren(KxGenericROI& parent) noexcept {
    // Nodes to destroy wait in a list through their sibling links, so that each is childless when it goes.
    KxGenericROI* doomed = nullptr;
    const auto detachChildren = [&doomed](KxGenericROI& node) {
        while (KxGenericROI* child = node.m_pFirstSubROI) {
            Unlink(*child);
            if (!child->m_bAllocated) continue;
            child->m_pSibling = doomed;
            doomed = child;
        }
    };
    detachChildren(parent);
    while (KxGenericROI* node = doomed) {
        doomed = node->m_pSibling;
        node->m_pSibling = nullptr;
        detachChildren(*node);
        delete node;
    }
}

bool RegionTree::IsWithin(const KxGenericROI& node, const KxGenericROI& ancestor) {
    const KxGenericROI* current = &node;
    while (current && current != &ancestor) current = current->m_pParent;
    return current != nullptr;
}

namespace {

// What is still to be done of a layout. Kept on a stack of its own, so the order is that of plain recursion.
struct LayoutStep {
    enum Kind { kApply, kReapplyFrom, kReport } kind;
    KxGenericROI* region;  // kReapplyFrom: this region and its following siblings, each with its own size
    const RegionTree::Axis* axis;
    std::int64_t size;
};

}  // namespace

bool RegionTree::SetSize(KxGenericROI& region, const Axis& axis, std::int64_t size) {
    bool keptOrigin = true;
    std::vector<LayoutStep> steps{{LayoutStep::kApply, &region, &axis, size}};
    while (!steps.empty()) {
        const LayoutStep step = steps.back();
        steps.pop_back();
        KxGenericROI* node = step.region;
        if (!node) continue;
        if (step.kind == LayoutStep::kReport) {
            Report(KX_ERROR_ROI_OUT_OF_PARENT, step.axis->setterName);
            continue;
        }
        std::int64_t nodeSize = step.size;
        if (step.kind == LayoutStep::kReapplyFrom) {
            if (node->m_pSibling) steps.push_back({LayoutStep::kReapplyFrom, node->m_pSibling, step.axis, 0});
            if (!node->IsAnROI()) continue;
            nodeSize = node->*step.axis->size;
        }
        if (const KxGenericROI* parent = node->m_pParent) {
            nodeSize = std::min(nodeSize, RoomFor(*node, *step.axis));
            if (nodeSize < 0) {
                keptOrigin &= node != &region;
                node->m_n32OrgX = node->m_n32OrgY = 0;
                steps.push_back({LayoutStep::kReport, node, step.axis, 0});
                steps.push_back({LayoutStep::kApply, node, &kVertical, parent->m_n32Height});
                steps.push_back({LayoutStep::kApply, node, &kHorizontal, parent->m_n32Width});
                continue;
            }
        }
        node->*step.axis->size = static_cast<std::int32_t>(nodeSize);
        if (node->m_pFirstSubROI)
            steps.push_back({LayoutStep::kReapplyFrom, node->m_pFirstSubROI, step.axis, 0});
    }
    return keptOrigin;
}

void RegionTree::SetOrigin(KxGenericROI& region, const Axis& axis, std::int32_t origin,
                           const char* setterName) {
    const std::int64_t size = region.*axis.size;
    if (origin + size < 0) {
        if (const KxGenericROI* parent = region.m_pParent) {
            region.m_n32OrgX = region.m_n32OrgY = 0;
            SetSize(region, kHorizontal, parent->m_n32Width);
            SetSize(region, kVertical, parent->m_n32Height);
        }
        return Report(KX_ERROR_ROI_OUT_OF_PARENT, setterName);
    }
    region.*axis.origin = std::max(origin, 0);
    SetSize(region, axis, origin < 0 ? origin + size : size);
}

void RegionTree::ClipChildren(KxGenericROI& parent) {
    for (KxGenericROI* child = parent.m_pFirstSubROI; child; child = child->m_pSibling)
        if (child->IsAnROI()) Clip(*child);
}

bool RegionTree::FitDescendants(KxGenericROI& top) {
    bool allInside = true;
    KxGenericROI* node = top.m_pFirstSubROI;
    while (node) {
        if (node->IsAnROI()) {
            allInside &= FitIntoParent(*node);
            if (node->m_pFirstSubROI) {
                node = node->m_pFirstSubROI;
                continue;
            }
        }
        // An image below is the root of its own regions.
        while (node != &top && !node->m_pSibling) node = node->m_pParent;
        node = node == &top ? nullptr : node->m_pSibling;
    }
    return allInside;
}

bool RegionTree::FitIntoParent(KxGenericROI& region) {
    const bool isInside = RoomFor(region, kHorizontal) >= 0 && RoomFor(region, kVertical) >= 0;
    if (!isInside) {
        region.m_n32OrgX = region.m_n32OrgY = 0;
        region.m_n32Width = region.m_pParent->m_n32Width;
        region.m_n32Height = region.m_pParent->m_n32Height;
    }
    for (const Axis* axis : {&kHorizontal, &kVertical}) {
        const std::int64_t size = std::min(std::int64_t{region.*axis->size}, RoomFor(region, *axis));
        region.*axis->size = static_cast<std::int32_t>(size);
    }
    return isInside;
}

std::int64_t RegionTree::RoomFor(const KxGenericROI& region, const Axis& axis) {
    const KxGenericROI& parent = *region.m_pParent;
    const std::int64_t room = std::int64_t{parent.*axis.size} - region.*axis.origin;
    const int bits = region.GetBitsPerPixel();
    const int parentBits = parent.GetBitsPerPixel();
    if (room < 0 || &axis == &kVertical || bits <= parentBits) return room;
    // Only archives make trees that mix pixel types. Wider pixels end where the rows of the parent end, and
    // have no place among single bits.
    return room * (parentBits / 8) / (bits / 8);
}

}  // namespace Zelkor::Kalvo
