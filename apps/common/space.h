#pragma once
// How large things in space look in a picture.

#include <array>

#include "kalvo/image/kxgenericroi.h"
#include "common/canvas.h"

namespace App {

struct Box {
    float width, height, depth;
};

constexpr float kLevels = 256;       // of a component, and of a height
constexpr float kFilledPart = 0.9f;  // of a picture

// An image and its relief, as high as looks well.
Box ReliefBox(const KxGenericROI& image);

// Width and height in a picture of a box that is turned by two angles, in the current angle unit.
Box Turned(const Box& box, const std::array<float, 2>& angles);

// The scale at which the box fills a picture of that size, but for a margin.
float FittingScale(const Box& box, const PictureSize& size);

}  // namespace App
