#pragma once
// A picture of an image with its tree of regions.

#include <string>

#include "kalvo/display/kxpixelvector.h"
#include "kalvo/image/kxgenericroi.h"

namespace App {

struct TreeStyle {
    float zoom = 1;
    bool handles = false;
    const KxBW8Vector* table = nullptr;  // what grey values are shown as, for `KxBW8` images
};

// Draws the image and, in a colour for each region below it, the mask as a shade and the frame on top; saves
// the picture as a PNG file. Failures are thrown.
void SaveTreePicture(KxGenericROI& image, const TreeStyle& style, const std::string& path);

}  // namespace App
