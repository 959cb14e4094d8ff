// The names of pixel types and file formats.

#include "common/pixel_types.h"

namespace App {
namespace {

const std::map<KX_IMAGE_TYPES, const char*> kPixelTypes = {
    {KX_IMAGE_BW1, "bw1"},
    {KX_IMAGE_BW8, "bw8"},
    {KX_IMAGE_BW16, "bw16"},
    {KX_IMAGE_BW32, "bw32"},
    {KX_IMAGE_C15, "c15"},
    {KX_IMAGE_C16, "c16"},
    {KX_IMAGE_C24, "c24"},
    {KX_IMAGE_C24A, "c24a"},
    {KX_IMAGE_SUBPIXEL64, "subpixel64"},
    {KX_IMAGE_COMPLEX64, "complex64"},
    {KX_IMAGE_RAW32, "raw32"},
    {KX_IMAGE_RAW96, "raw96"},
    {KX_IMAGE_YUY2, "yuy2"},
    {KX_IMAGE_FLOAT32, "float32"},
    {KX_IMAGE_FLOAT64, "float64"},
};

const std::map<IMAGE_FILE_TYPES, const char*> kFileTypes = {
    {IMAGE_FILE_TIFF_BILEVEL, "tiff-bilevel"},
    {IMAGE_FILE_TIFF_GRAY, "tiff-gray"},
    {IMAGE_FILE_TIFF_COLOR, "tiff-color"},
    {IMAGE_FILE_TIFF_BILEVEL_PACKBITS, "tiff-bilevel-packbits"},
    {IMAGE_FILE_TIFF_GRAY_PACKBITS, "tiff-gray-packbits"},
    {IMAGE_FILE_BMP_BILEVEL, "bmp-bilevel"},
    {IMAGE_FILE_BMP_GRAY, "bmp-gray"},
    {IMAGE_FILE_BMP_COLOR, "bmp-color"},
    {IMAGE_FILE_JPEG_GRAY, "jpeg-gray"},
    {IMAGE_FILE_JPEG_COLOR, "jpeg-color"},
    {IMAGE_FILE_AUTO, "auto"},
};

}  // namespace

const char* PixelTypeName(KX_IMAGE_TYPES type) {
    const auto found = kPixelTypes.find(type);
    return found == kPixelTypes.end() ? "unknown" : found->second;
}

std::map<std::string, KX_IMAGE_TYPES> ConvertibleTypes() {
    std::map<std::string, KX_IMAGE_TYPES> types;
    for (const auto& [type, name] : kPixelTypes)
        if (ForPixel<FilePixels>(type, [](auto) {})) types[name] = type;
    return types;
}

const char* FileTypeName(IMAGE_FILE_TYPES type) {
    const auto found = kFileTypes.find(type);
    return found == kFileTypes.end() ? "unknown" : found->second;
}

std::map<std::string, IMAGE_FILE_TYPES> WritableFileTypes() {
    std::map<std::string, IMAGE_FILE_TYPES> types;
    for (const auto& [type, name] : kFileTypes) types[name] = type;
    return types;
}

}  // namespace App
