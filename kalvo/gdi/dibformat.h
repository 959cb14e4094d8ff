// Device-independent bitmaps: what a header says of the pixels behind it, and bitmaps made after one.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "kalvo/gdi/objects.h"
#include "kalvo/raster/surface.h"

namespace Zelkor::Platform {

// What rows of that many pixels, at least 1, take: a multiple of 4.
std::size_t RowBytes(int width, PixelLayout layout);

// A checked header: sizes multiply in 64 bits without surprises, and the colour table is complete.
struct DibFormat {
    int width = 0;   // at least 1
    int height = 0;  // at least 1
    bool topDown = false;
    PixelLayout layout = PixelLayout::Bgrx32;
    std::size_t rowBytes = 0;     // a multiple of 4; rowBytes x height fits std::ptrdiff_t
    std::vector<RGBQUAD> colors;  // indexed layouts: all 2 or 256 entries, black where the header has fewer

    // The pixels at `bits`, in this form. The surface refers to `colors`.
    Surface SurfaceAt(std::uint8_t* bits) const;

    // As many rows as a caller's buffer of `lines` rows has of this bitmap, from scan `start` on; scans count
    // from the bottom. No row when the bitmap ends before.
    Surface ScansAt(std::uint8_t* bits, std::uint32_t start, std::uint32_t lines) const;
};

// How many entries the colour table behind a header has: 0 for direct colours.
std::size_t ColorTableSize(const BITMAPINFOHEADER& header);

// Nothing when the header is not one of those the library draws: sizes, planes, bits, compression, masks.
std::optional<DibFormat> ReadDibHeader(const BITMAPINFO* info);

// Describes a surface as a bottom-up bitmap; the colour table and the masks are left to the caller.
BITMAPINFOHEADER MakeDibHeader(const Surface& surface);

// A bitmap of black pixels (all 0), in the form given. Null when there is no memory.
std::unique_ptr<Bitmap> MakeBitmap(DibFormat format);

}  // namespace Zelkor::Platform
