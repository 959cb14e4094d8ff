#pragma once
// Whether two images are the same: their pixels, or everything that an archive keeps.

#include <cmath>

#include "kalvo/image/kximage.h"
#include "common/pixel_conversion.h"

namespace App {

template <class Pixel>
bool SamePixels(const KxROI<Pixel>& first, const KxROI<Pixel>& second) {
    if (first.GetWidth() != second.GetWidth() || first.GetHeight() != second.GetHeight()) return false;
    for (int y = 0; y < first.GetHeight(); ++y)
        for (int x = 0; x < first.GetWidth(); ++x)
            if (first.GetPixel(x, y) != second.GetPixel(x, y)) return false;
    return true;
}

// Mean difference in brightness of two images of one size, on the scale 0 to 255.
template <class Pixel>
double MeanDifference(const KxROI<Pixel>& first, const KxROI<Pixel>& second) {
    const auto brightness = [](const KxROI<Pixel>& region, int x, int y) {
        return Brightness(ToLight(region.GetPixel(x, y))) * (255.0 / 0xFFFFFFFF);
    };
    double sum = 0;
    for (int y = 0; y < first.GetHeight(); ++y)
        for (int x = 0; x < first.GetWidth(); ++x)
            sum += std::abs(brightness(first, x, y) - brightness(second, x, y));
    return sum / first.GetWidth() / first.GetHeight();
}

// Whether the texts, narrow and UTF-16, are the same.
bool SameTexts(const KxGenericROI& first, const KxGenericROI& second);

// Whether two trees have the same shape, and their objects the same type, placement, colour system and
// texts.
bool SameTrees(KxGenericROI& first, KxGenericROI& second);

// Whether two images have the same pixel size in the same unit.
bool SamePixelSize(const KxGenericROI& first, const KxGenericROI& second);

}  // namespace App
