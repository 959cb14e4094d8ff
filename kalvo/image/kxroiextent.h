#pragma once
// The placement and size of a region as a plain value.

#include <cstdint>

#include "kalvo/base/kxexport.h"

class KxGenericROI;

namespace Zelkor::Kalvo {

/// Origin and size of a region, in pixels of its parent.
struct KX_API GenericRoiExtent {
    std::int32_t m_n32OrgX = 0;
    std::int32_t m_n32OrgY = 0;
    std::int32_t m_n32Width = 0;
    std::int32_t m_n32Height = 0;

    constexpr GenericRoiExtent() = default;
    constexpr GenericRoiExtent(int n32OrgX, int n32OrgY, int n32Width, int n32Height)
        : m_n32OrgX(n32OrgX), m_n32OrgY(n32OrgY), m_n32Width(n32Width), m_n32Height(n32Height) {}
    /// The extent of `region` at this moment.
    GenericRoiExtent(const KxGenericROI& region);

    friend constexpr bool operator==(const GenericRoiExtent& left, const GenericRoiExtent& right) {
        return left.m_n32OrgX == right.m_n32OrgX && left.m_n32OrgY == right.m_n32OrgY &&
               left.m_n32Width == right.m_n32Width && left.m_n32Height == right.m_n32Height;
    }
    friend constexpr bool operator!=(const GenericRoiExtent& left, const GenericRoiExtent& right) {
        return !(left == right);
    }
};

}  // namespace Zelkor::Kalvo
