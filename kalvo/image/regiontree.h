#pragma once
// The links and the layout of a tree of regions, whatever the pixel types of its nodes.

#include <cstdint>

#include "kalvo/image/kxroi.h"

namespace Zelkor::Kalvo {

/// Works on the fields that the nodes of a tree share. Trees from archives may be a thousand levels deep and
/// threads may have small stacks, so nothing here recurses.
struct RegionTree {
    /// One direction of the layout: the fields that place and size a region, and the setter's name.
    struct Axis {
        std::int32_t KxGenericROI::*origin;
        std::int32_t KxGenericROI::*size;
        const char* setterName;
    };
    static const Axis kHorizontal;
    static const Axis kVertical;

    /// Appends `child`, which has no parent, to the children of `parent`, whose last child may be given.
    static void Append(KxGenericROI& parent, KxGenericROI& child, KxGenericROI* lastChild = nullptr);
    /// Appends `child`, gives it the colour system of `parent`, and clips it.
    static void Attach(KxGenericROI& parent, KxGenericROI& child);
    /// Re-applies the own width and height of `region`, which clips it to its parent.
    static void Clip(KxGenericROI& region);
    /// Takes `child` out of its parent's list, if it has a parent.
    static void Unlink(KxGenericROI& child);
    /// Detaches all children and destroys those that the tree owns, at every level below them too.
    static void ReleaseChildren(KxGenericROI& parent) noexcept;
    /// Whether `node` is `ancestor` or lies below it.
    static bool IsWithin(const KxGenericROI& node, const KxGenericROI& ancestor);

    /// Gives `region` a size along an axis, clipped to its parent, and clips its subtree after it. A region
    /// whose origin lies beyond its parent is reset to cover it, reported as KX_ERROR_ROI_OUT_OF_PARENT.
    /// False when `region` itself was reset.
    static bool SetSize(KxGenericROI& region, const Axis& axis, std::int64_t size);
    /// Moves `region` along an axis, cutting off what lies before its parent; otherwise as `SetSize`.
    static void SetOrigin(KxGenericROI& region, const Axis& axis, std::int32_t origin,
                          const char* setterName);
    /// Re-applies the own width and height of every child, which clips them to their parent.
    static void ClipChildren(KxGenericROI& parent);
    /// Clips every region below `top`, but not those below a further image, in one pass: their placements may
    /// be of unknown origin. False when some lay beyond their parent; those cover it now.
    static bool FitDescendants(KxGenericROI& top);

private:
    /// Pixels that the parent of `region` leaves it along an axis; negative when its origin lies beyond.
    static std::int64_t RoomFor(const KxGenericROI& region, const Axis& axis);
    static bool FitIntoParent(KxGenericROI& region);
};

}  // namespace Zelkor::Kalvo
