#pragma once
// The pixel data of a TIFF file: strips of rows, plain or PackBits, and their way into a destination.

#include <cstdint>

#include "kalvo/imagefiles/imagefile.h"
#include "kalvo/imagefiles/tiff_directory.h"

namespace Zelkor::Kalvo {

// How the pixels of a file are stored. Neither side is 0 or beyond 31 bits.
struct TiffPicture {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t samples;       // of a pixel: 1 or 3
    std::uint32_t bits;          // of a sample: 1, 8, 16 or 32
    std::uint32_t rowsPerStrip;  // as the file says, so anything
    std::uint32_t strips;
    bool isPacked;
    bool isBigEndian;
    bool hasReversedBits;
    std::uint64_t rowBytes;
    std::uint64_t bytes;  // of all rows
};

// Throws KX_ERROR_FILE_READ unless the strips fill the whole picture. Compares and counts; takes no memory
// that depends on the file.
void RequireStrips(const ImageFileReader& file, const TiffDirectory& directory, const TiffPicture& picture);

// Fills `rows` from the strips. 8-bit rows take 1-bit pixels too.
// @param rows            of the size of the picture
// @param bitsPerPixel    of the destination
void ReadStrips(const ImageFileReader& file, const TiffDirectory& directory, const TiffPicture& picture,
                const RegionRows& rows, int bitsPerPixel);

}  // namespace Zelkor::Kalvo
