#pragma once
// Pictures of images with their trees of regions. Failures are thrown.

#include <string>

#include "kalvo/display/kxpixelvector.h"
#include "kalvo/image/kxgenericroi.h"
#include "common/canvas.h"

namespace App {

struct RegionStyle {
    float zoom = 1;
    bool handles = false;                    // on all frames
    const KxGenericROI* selected = nullptr;  // with handles too
    bool masks = true;
};

// Draws an image with its top-left corner at the viewport origin of a context.
// @param table  what grey values are shown as, for `KxBW8` images; may be null
void DrawPixels(HDC context, KxGenericROI& image, float zoom, const KxBW8Vector* table);

// Draws, in a colour for each region below an image that lies there, its mask as a shade and its frame.
// @param spare  a canvas of the same size, whose pixels are lost
void DrawRegions(Canvas& canvas, Canvas& spare, KxGenericROI& image, const RegionStyle& style);

// Draws both, and saves the picture.
void SaveTreePicture(KxGenericROI& image, const RegionStyle& style, const KxBW8Vector* table,
                     const std::string& path);

}  // namespace App
