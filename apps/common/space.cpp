// A box turned by two angles, in parallel projection.

#include "common/space.h"

#include <algorithm>
#include <cmath>

#include "kalvo/measure/kxangle.h"

namespace App {
namespace {

constexpr float kSteepness = 0.12f;  // height of a relief, by the longer side of its image

}  // namespace

Box ReliefBox(const KxGenericROI& image) {
    const auto width = static_cast<float>(image.GetWidth()), height = static_cast<float>(image.GetHeight());
    return {width, height, kSteepness * std::max(width, height)};
}

Box Turned(const Box& box, const std::array<float, 2>& angles) {
    const float a = KxToRadians(angles[0]), b = KxToRadians(angles[1]);
    const float ca = std::abs(std::cos(a)), sa = std::abs(std::sin(a));
    const float cb = std::abs(std::cos(b)), sb = std::abs(std::sin(b));
    return {cb * box.width + sb * (sa * box.height + ca * box.depth), ca * box.height + sa * box.depth, 0};
}

float FittingScale(const Box& box, const PictureSize& size) {
    return kFilledPart *
           std::min(static_cast<float>(size.width) / box.width, static_cast<float>(size.height) / box.height);
}

}  // namespace App
