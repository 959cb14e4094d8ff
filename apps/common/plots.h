#pragma once
// Charts of profiles and histograms of regions.

#include "kalvo/image/kxgenericroi.h"
#include "common/paper.h"

namespace App {

// Plots the pixels of a region, row by row, as one curve or, in 8 bits, as three of red, green and blue, into
// a box on a paper. Failures are thrown, as below.
void DrawProfile(const Paper& paper, const Zelkor::Kalvo::GenericRoiExtent& box, KxGenericROI& region);

// Plots how many pixels of a region have each of 256 levels: of grey, or of red, green and blue. Counts those
// of every `step`-th row and column.
void DrawHistogram(const Paper& paper, const Zelkor::Kalvo::GenericRoiExtent& box, KxGenericROI& region,
                   int step = 1);

}  // namespace App
