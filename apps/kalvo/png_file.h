#pragma once
// Pictures as PNG files.

#include <string>

#include "kalvo/image/kximage.h"

namespace App {

// Saves the colours; the upper bytes of the pixels do not count. Failures are thrown.
void SavePng(const KxROI<KxC24A>& picture, const std::string& path);

}  // namespace App
