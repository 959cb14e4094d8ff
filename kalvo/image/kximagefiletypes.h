#pragma once
// The formats of image files.

#include <cstdint>

/// The format of an image file: chosen when saving, reported when loading.
enum IMAGE_FILE_TYPES : std::int32_t {
    IMAGE_FILE_TIFF_BILEVEL = 0,           ///< TIFF, 1 bit per pixel
    IMAGE_FILE_TIFF_GRAY = 1,              ///< TIFF, one sample of 8, 16 or 32 bits
    IMAGE_FILE_TIFF_COLOR = 2,             ///< TIFF, three 8-bit samples
    IMAGE_FILE_TIFF_BILEVEL_PACKBITS = 3,  ///< TIFF, 1 bit per pixel, PackBits
    IMAGE_FILE_TIFF_GRAY_PACKBITS = 4,     ///< TIFF, one 8-bit sample, PackBits
    IMAGE_FILE_TIFF_COLOR_PACKBITS = 5,    ///< TIFF, colour, PackBits: neither read nor written
    IMAGE_FILE_BMP_BILEVEL = 6,            ///< BMP, 1 bit per pixel
    IMAGE_FILE_BMP_GRAY = 7,               ///< BMP, 8 bits per pixel with grey palette
    IMAGE_FILE_BMP_COLOR = 8,              ///< BMP, 15, 16, 24 or 32 bits per pixel
    IMAGE_FILE_RESERVED = 9,               ///< no format
    IMAGE_FILE_JPEG_GRAY = 10,             ///< JPEG, one component
    IMAGE_FILE_JPEG_COLOR = 11,            ///< JPEG, three components
    IMAGE_FILE_AUTO = 12,                  ///< saving only: by the extension bmp, tif or jpg of the file name
};
