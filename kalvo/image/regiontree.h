#pragma once
// The links and the layout of a tree of regions, whatever the pixel types of its nodes.

#include <cstdint>

#include "kalvo/image/kxgenericroi.h"

namespace Zelkor::Kalvo {

// Works on the fields that the nodes of a tree share. Trees may be deep and wide and threads may have small
// stacks, so nothing here recurses or takes memory, and nothing fails.
struct RegionTree {
    // One direction of the layout: the fields that place and size a region, and the setter's name.
    struct Axis {
        std::int32_t KxGenericROI::*origin;
        std::int32_t KxGenericROI::*size;
        const char* setterName;
    };
    static const Axis kHorizontal;
    static const Axis kVertical;

    // Appends `child`, which has no parent, to the children of `parent`.
    static void Append(KxGenericROI& parent, KxGenericROI& child) noexcept;
    // Appends `child`, gives it the colour system of `parent`, and clips it.
    static void Attach(KxGenericROI& parent, KxGenericROI& child) noexcept;
    // Gives all children of `from`, as they are, to `to`, which has none.
    static void MoveChildren(KxGenericROI& from, KxGenericROI& to) noexcept;
    // Takes `child` out of its parent's list, if it has a parent.
    static void Unlink(KxGenericROI& child) noexcept;
    static void UnlinkChildren(KxGenericROI& parent) noexcept;
    // Detaches all children and destroys those that the tree owns, at every level below them too.
    static void ReleaseChildren(KxGenericROI& parent) noexcept;
    // Whether `node` is `ancestor` or lies below it.
    static bool IsWithin(const KxGenericROI& node, const KxGenericROI& ancestor) noexcept;
    // The node after `node`, parents before children, of the subtree of `root`; null at the end. With
    // `skipsChildren` those of `node` are left out.
    template <class Node>
    static Node* Next(Node* node, const KxGenericROI& root, bool skipsChildren = false) noexcept {
        if (node->m_pFirstSubROI && !skipsChildren) return node->m_pFirstSubROI;
        while (node != &root && !node->m_pSibling) node = node->m_pParent;
        return node == &root ? nullptr : node->m_pSibling;
    }

    // A pixel of the image that a region lies in, at any number of levels above it; an image is its own.
    // Without an image it counts from the topmost region.
    struct Place {
        const KxGenericROI* image;  // null when there is none above
        std::int64_t x;
        std::int64_t y;
    };
    static Place PlaceOf(const KxGenericROI& region, std::int64_t x, std::int64_t y) noexcept;

    // Re-applies the own width and height of `region`, which clips it to its parent.
    static void Clip(KxGenericROI& region) noexcept;
    // Re-applies the own width and height of every child, which clips them to their parent.
    static void ClipChildren(KxGenericROI& parent) noexcept;
    // Gives `region` a size along an axis, clipped to its parent, and clips its subtree after it. A region
    // whose origin lies beyond its parent is reset to cover it, reported as KX_ERROR_ROI_OUT_OF_PARENT.
    // False when `region` itself was reset.
    static bool SetSize(KxGenericROI& region, const Axis& axis, std::int64_t size) noexcept;
    // Moves `region` along an axis, cutting off what lies before its parent; otherwise as `SetSize`.
    static void SetOrigin(KxGenericROI& region, const Axis& axis, std::int32_t origin,
                          const char* setterName) noexcept;
    // Clips every region below `top`, but not those below a further image, in one pass: their placements may
    // be of unknown origin. False when some lay beyond their parent; those cover it now.
    static bool FitDescendants(KxGenericROI& top) noexcept;
    // What attaching the children of every copied node to it, from the leaves upwards, does to them: each
    // takes the colour system that its parent was copied with, and is clipped. From then on the tree does
    // not own them.
    static void AttachCopies(KxGenericROI& root) noexcept;

private:
    class LayoutWalk;

    // Pixels that the parent of `region` leaves it along an axis; negative when its origin lies beyond.
    static std::int64_t RoomFor(const KxGenericROI& region, const Axis& axis) noexcept;
    static bool FitIntoParent(KxGenericROI& region) noexcept;
};

}  // namespace Zelkor::Kalvo
