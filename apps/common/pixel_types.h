#pragma once
// From a pixel type known at run time to code compiled for it, and the names the program gives to types and
// file formats.

#include <map>
#include <string>
#include <tuple>
#include <type_traits>

#include "kalvo/image/kximage.h"

namespace App {

// The pixel types that the program converts, loads and saves.
using FilePixels = std::tuple<KxBW1, KxBW8, KxBW16, KxBW32, KxC24, KxC24A, KxC15, KxC16>;

// Calls `operation(std::type_identity<Pixel>())` for every pixel type of the tuple until one returns true;
// false when none does.
template <class Pixels, class Operation>
bool ForFirstPixel(const Operation& operation) {
    return []<class... Pixel>(std::type_identity<std::tuple<Pixel...>>, const Operation& call) {
        return (call(std::type_identity<Pixel>()) || ...);
    }(std::type_identity<Pixels>(), operation);
}

// Calls `operation(std::type_identity<Pixel>())` for the pixel type with that number; false when the tuple
// does not hold it.
template <class Pixels, class Operation>
bool ForPixel(KX_IMAGE_TYPES type, const Operation& operation) {
    return ForFirstPixel<Pixels>([&]<class Pixel>(std::type_identity<Pixel> tag) {
        if (Zelkor::Kalvo::PixelTraits<Pixel>::kImageType != type) return false;
        operation(tag);
        return true;
    });
}

// "bw1", "c24", ... of every pixel type.
const char* PixelTypeName(KX_IMAGE_TYPES type);
// The types that `--type` takes, by name.
std::map<std::string, KX_IMAGE_TYPES> ConvertibleTypes();

// "tiff-gray", "bmp-color", ... of the formats that files have.
const char* FileTypeName(IMAGE_FILE_TYPES type);
// The formats that `--file-type` takes, by name.
std::map<std::string, IMAGE_FILE_TYPES> WritableFileTypes();

}  // namespace App
