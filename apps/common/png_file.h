#pragma once
// PNG files, by libpng.

#include <string>

#include "common/image_file.h"

namespace App {

// Loads a PNG file: 1, 8 and 16 bits of grey as `KxBW1`, `KxBW8` and `KxBW16`, colours as `KxC24`, or as
// `KxC24A` when they have an opacity. Resolution and texts come along. Failures are thrown.
Object LoadPng(const std::string& path);
// The same without pixels.
Object DescribePng(const std::string& path);

// Saves an image of one of those types; of `KxC24A` the colours alone. Failures are thrown.
void SavePng(KxGenericROI& image, const std::string& path);

}  // namespace App
