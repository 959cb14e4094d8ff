#pragma once
// Texts and points in the form that the platform's drawing functions take.

#include <algorithm>
#include <limits>
#include <string_view>
#include <vector>

#include "kalvo/base/win32types.h"
#include "kalvo/display/kxdrawadapter.h"
#include "kalvo/frame/roundtoint.h"

namespace Zelkor::Kalvo {

inline int LengthOf(std::string_view text) {
    return static_cast<int>(std::min<std::size_t>(text.size(), std::numeric_limits<int>::max()));
}

// Coordinates truncated toward zero.
inline std::vector<POINT> ToPoints(const DrawPointList& points) {
    std::vector<POINT> converted;
    converted.reserve(static_cast<std::size_t>(points.GetCount()));
    for (int i = 0; i < points.GetCount(); ++i)
        converted.push_back({TruncateToInt(points[i].x), TruncateToInt(points[i].y)});
    return converted;
}

}  // namespace Zelkor::Kalvo
