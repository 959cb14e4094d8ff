#pragma once
// The ways in which pixels lie in image files, and which pixel type takes each of them.

#include <cstdint>

#include "kalvo/frame/kxerror_codes.h"
#include "kalvo/pixels/kxpixel.h"

namespace Zelkor::Kalvo {

enum class FileLayout : std::uint8_t {
    TiffBits,
    TiffPackedBits,
    TiffGray8,
    TiffGray16,
    TiffGray32,
    TiffColor,
    BmpBits,
    BmpGray,
    BmpWords555,
    BmpWords565,
    BmpWords16,  // 5, 5, 5 or 5, 6, 5 bits: the file does not tell
    BmpColor24,
    BmpWords32,
    JpegGray,
    JpegColor,
    // JPEG headers that lead nowhere: some pixel types are refused for what they are all the same.
    JpegOther,
    JpegDamaged,
    JpegCut,
};

// KX_OK when images of `destination` take pixels of that layout, else the code that tells why not.
// @param destination  KX_IMAGE_BW1 to KX_IMAGE_C24A
KX_ERRORS RefusalOf(FileLayout layout, KX_IMAGE_TYPES destination);

// The pixel type that keeps what a file tells; of layouts that no type takes, one whose refusal names the
// fault of the file.
KX_IMAGE_TYPES NaturalTypeOf(FileLayout layout);

}  // namespace Zelkor::Kalvo
