#pragma once
// The memory of an image that owns its pixels.

#include <cstdint>

#include "kalvo/base/kxmemory.h"

namespace Zelkor::Kalvo {

// Rows follow one another, padded to 192 bits: whole pixels of three bytes and whole words of eight.
struct PixelBlock {
    Platform::Memory memory;
    std::uint8_t* firstPixel = nullptr;  // aligned to 32 bytes

    // Whether an image of that size can be: not negative, less than 4 GiB of pixels, rows of less than 256
    // MiB.
    static bool Fits(int width, int height, int bitsPerPixel);
    // Distance between rows in bits. Throws KX_ERROR_PARAMETER_1_OUT_OF_RANGE for negative sizes, and
    // KX_ERROR_ORIGIN_IMAGE_TOO_BIG for 4 GiB of pixels and for rows of 256 MiB.
    static std::int32_t RowBits(int width, int height, int bitsPerPixel);
    // Bytes from the first pixel to the end of the last row.
    static std::uint64_t Bytes(std::int32_t rowBits, int height);
    // A block for pixels that are not initialised; what lies beyond the last pixel of each row is 0, so that
    // nothing left over in memory ever reaches an archive. Throws KX_ERROR_ALLOCATION.
    static PixelBlock Allocate(int width, int height, int bitsPerPixel);
};

}  // namespace Zelkor::Kalvo
