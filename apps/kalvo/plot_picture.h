#pragma once
// Pictures of plots: profiles and histograms of regions.

#include <string>

#include "kalvo/image/kxgenericroi.h"

namespace App {

struct PictureSize {
    int width = 800;
    int height = 400;
};

// Plots the pixels of a region, row by row, as one curve or, in 8 bits, as three of red, green and blue.
// Saves the picture as a PNG file. Failures are thrown, as below.
void SaveProfile(KxGenericROI& region, PictureSize size, const std::string& path);

// Plots how many pixels of a region have each of 256 levels: of grey, or of red, green and blue.
void SaveHistogram(KxGenericROI& region, PictureSize size, const std::string& path);

}  // namespace App
