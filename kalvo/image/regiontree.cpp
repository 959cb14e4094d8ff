// Linking, releasing and laying out the nodes of a tree of regions without recursion.

#include "kalvo/image/regiontree.h"

#include <algorithm>
#include <utility>

#include "kalvo/frame/boundary.h"

namespace Zelkor::Kalvo {

const RegionTree::Axis RegionTree::kHorizontal = {&KxGenericROI::m_n32OrgX, &KxGenericROI::m_n32Width,
                                                  "KxROI::SetWidth"};
const RegionTree::Axis RegionTree::kVertical = {&KxGenericROI::m_n32OrgY, &KxGenericROI::m_n32Height,
                                                "KxROI::SetHeight"};

// The first child's link to the sibling before it leads to the last one, so that both ends are at hand.
void RegionTree::Append(KxGenericROI& parent, KxGenericROI& child) noexcept {
    child.m_pParent = &parent;
    if (KxGenericROI* first = parent.m_pFirstSubROI) {
        child.m_pPreviousSibling = first->m_pPreviousSibling;
        child.m_pPreviousSibling->m_pSibling = first->m_pPreviousSibling = &child;
    } else {
        parent.m_pFirstSubROI = child.m_pPreviousSibling = &child;
    }
}

void RegionTree::Attach(KxGenericROI& parent, KxGenericROI& child) noexcept {
    Append(parent, child);
    child.m_eColorSystem = parent.m_eColorSystem;
    if (child.IsAnROI()) Clip(child);  // an image in a tree keeps the size of its buffer
}

void RegionTree::MoveChildren(KxGenericROI& from, KxGenericROI& to) noexcept {
    to.m_pFirstSubROI = std::exchange(from.m_pFirstSubROI, nullptr);
    for (KxGenericROI* child = to.m_pFirstSubROI; child; child = child->m_pSibling) child->m_pParent = &to;
}

void RegionTree::Unlink(KxGenericROI& child) noexcept {
    if (!child.m_pParent) return;
    KxGenericROI*& first = child.m_pParent->m_pFirstSubROI;
    KxGenericROI* const previous = child.m_pPreviousSibling;
    KxGenericROI* const next = child.m_pSibling;
    (first == &child ? first : previous->m_pSibling) = next;
    if (KxGenericROI* follower = next ? next : first) follower->m_pPreviousSibling = previous;
    child.m_pParent = child.m_pSibling = child.m_pPreviousSibling = nullptr;
}

void RegionTree::UnlinkChildren(KxGenericROI& parent) noexcept {
    while (KxGenericROI* child = parent.m_pFirstSubROI) Unlink(*child);
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

bool RegionTree::IsWithin(const KxGenericROI& node, const KxGenericROI& ancestor) noexcept {
    const KxGenericROI* current = &node;
    while (current && current != &ancestor) current = current->m_pParent;
    return current != nullptr;
}

RegionTree::Place RegionTree::PlaceOf(const KxGenericROI& region, std::int64_t x, std::int64_t y) noexcept {
    const KxGenericROI* node = &region;
    while (true) {
        if (!const_cast<KxGenericROI*>(node)->IsAnROI()) return {node, x, y};
        if (!node->m_pParent) return {nullptr, x, y};
        x += node->m_n32OrgX;
        y += node->m_n32OrgY;
        node = node->m_pParent;
    }
}

void RegionTree::Clip(KxGenericROI& region) noexcept {
    SetSize(region, kHorizontal, region.m_n32Width);
    SetSize(region, kVertical, region.m_n32Height);
}

void RegionTree::ClipChildren(KxGenericROI& parent) noexcept {
    for (KxGenericROI* child = parent.m_pFirstSubROI; child; child = child->m_pSibling)
        if (child->IsAnROI()) Clip(*child);
}

// Applies a size to a region, and then to all below it, each time their own. The order is that of plain
// recursion: a region that is moved back applies its width and its height anew, with everything below it each
// time, before its siblings go on. How far it has come stands in the region itself.
class RegionTree::LayoutWalk {
public:
    LayoutWalk(KxGenericROI& root, const Axis& axis, std::int64_t size)
        : m_root(root), m_node(&root), m_axis(&axis), m_size(size) {}

    // Whether the root kept its origin.
    bool Run() {
        while (m_node) {
            const bool isRegion =
                m_node == &m_root || m_node->IsAnROI();  // images keep the size of their buffers
            if (isRegion && !Apply()) continue;
            if (isRegion && m_node->m_pFirstSubROI)
                MoveTo(m_node->m_pFirstSubROI);
            else
                GoOn();
        }
        return m_keptOrigin;
    }

private:
    // False when the region must begin anew.
    bool Apply() {
        if (const KxGenericROI* parent = m_node->m_pParent) {
            m_size = std::min(m_size, RoomFor(*m_node, *m_axis));
            if (m_size < 0) {
                m_keptOrigin &= m_node != &m_root;
                m_node->m_n32OrgX = m_node->m_n32OrgY = 0;
                m_node->m_LayoutState = {LayoutState::kWidth, m_axis == &kVertical};
                m_axis = &kHorizontal;
                m_size = parent->m_n32Width;
                return false;
            }
        }
        m_node->*m_axis->size = static_cast<std::int32_t>(m_size);
        return true;
    }

    void MoveTo(KxGenericROI* node) {
        m_node = node;
        m_size = node->*m_axis->size;
    }

    // From a node that is done with everything below it to the next one, or to the second half of the same.
    void GoOn() {
        while (true) {
            LayoutState& state = m_node->m_LayoutState;
            if (state.m_ePass == LayoutState::kWidth) {
                state.m_ePass = LayoutState::kHeight;
                m_axis = &kVertical;
                m_size = m_node->m_pParent->m_n32Height;
                return;
            }
            if (state.m_ePass == LayoutState::kHeight) {
                state.m_ePass = LayoutState::kNone;
                m_axis = state.m_bInHeightPass ? &kVertical : &kHorizontal;
                Report(KX_ERROR_ROI_OUT_OF_PARENT, m_axis->setterName);
            }
            if (m_node == &m_root) {
                m_node = nullptr;
                return;
            }
            if (m_node->m_pSibling) return MoveTo(m_node->m_pSibling);
            m_node = m_node->m_pParent;
        }
    }

    KxGenericROI& m_root;
    KxGenericROI* m_node;
    const Axis* m_axis;
    std::int64_t m_size;
    bool m_keptOrigin = true;
};

bool RegionTree::SetSize(KxGenericROI& region, const Axis& axis, std::int64_t size) noexcept {
    return LayoutWalk(region, axis, size).Run();
}

void RegionTree::SetOrigin(KxGenericROI& region, const Axis& axis, std::int32_t origin,
                           const char* setterName) noexcept {
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

bool RegionTree::FitDescendants(KxGenericROI& top) noexcept {
    bool allInside = true;
    bool isImage = false;  // an image below is the root of its own regions
    for (KxGenericROI* node = Next(&top, top); node; node = Next(node, top, isImage)) {
        isImage = !node->IsAnROI();
        if (!isImage) allInside &= FitIntoParent(*node);
    }
    return allInside;
}

void RegionTree::AttachCopies(KxGenericROI& root) noexcept {
    const auto firstLeaf = [](KxGenericROI* node) {
        while (node->m_pFirstSubROI) node = node->m_pFirstSubROI;
        return node;
    };
    for (KxGenericROI* node = firstLeaf(&root); node != &root;) {
        KxGenericROI* const parent = node->m_pParent;
        node->m_eColorSystem = parent->m_eColorSystem;
        node->m_bAllocated = 0;
        const bool fits =
            RoomFor(*node, kHorizontal) >= node->m_n32Width && RoomFor(*node, kVertical) >= node->m_n32Height;
        if (!fits && node->IsAnROI()) Clip(*node);
        node = node->m_pSibling ? firstLeaf(node->m_pSibling) : parent;
    }
}

bool RegionTree::FitIntoParent(KxGenericROI& region) noexcept {
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

std::int64_t RegionTree::RoomFor(const KxGenericROI& region, const Axis& axis) noexcept {
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
