#pragma once
// The numbers that a pixel of any type is made of.

#include <vector>

#include "common/image_file.h"

namespace App {

// The raw components of pixel (x, y), in the order in which the type names them: red, green, blue for
// colours.
std::vector<double> Components(const KxGenericROI& image, int x, int y);

// The greatest difference between the components of pixel (x, y) of two images of one type.
double Difference(const KxGenericROI& first, const KxGenericROI& second, int x, int y);

}  // namespace App
