#pragma once
// Plots of profiles and histograms of regions.

#include <string>

#include "kalvo/image/kxgenericroi.h"
#include "common/canvas.h"

namespace App {

// Plots the pixels of a region, row by row, as one curve or, in 8 bits, as three of red, green and blue, into
// a box on a device context. Failures are thrown, as below.
void DrawProfile(HDC context, const Zelkor::Kalvo::GenericRoiExtent& box, KxGenericROI& region);

// Plots how many pixels of a region have each of 256 levels: of grey, or of red, green and blue. Counts those
// of every `step`-th row and column.
void DrawHistogram(HDC context, const Zelkor::Kalvo::GenericRoiExtent& box, KxGenericROI& region,
                   int step = 1);

// Saves what `draw(context, box)` draws into a box of that size.
template <class Draw>
void SavePlot(PictureSize size, const std::string& path, const Draw& draw) {
    Canvas canvas(size.width, size.height);
    draw(canvas.Context(), Zelkor::Kalvo::GenericRoiExtent(0, 0, size.width, size.height));
    SavePicture(canvas, path);
}

}  // namespace App
