#pragma once
// Forms of bitmaps: what a header says of the pixels behind it, and bitmaps made after one or like a device.

#include <memory>
#include <optional>
#include <vector>

#include "kalvo/gdi/objects.h"
#include "kalvo/raster/surface.h"

namespace Zelkor::Platform {

// What rows of that many pixels, at least 1, take: a multiple of `alignment` bytes.
std::size_t RowBytes(int width, PixelLayout layout, std::size_t alignment);

// A checked header: sizes multiply in 64 bits without surprises, and the colour table is complete.
struct DibFormat {
    int width = 0;   // at least 1
    int height = 0;  // at least 1
    bool topDown = false;
    PixelLayout layout = PixelLayout::Bgrx32;
    std::size_t rowBytes = 0;     // rowBytes x height fits std::ptrdiff_t
    std::vector<RGBQUAD> colors;  // indexed layouts: all 2 or 256 entries, black where the header has fewer

    // The pixels at `bits`, in this form. The surface refers to `colors`. Surfaces do not tell whether they
    // are written to; those of bits that the caller lends us are only read.
    Surface SurfaceAt(const void* bits) const;

    // As many rows as a caller's buffer of `lines` rows has of this bitmap, from scan `start` on; scans count
    // from the bottom. No row when the bitmap ends before.
    Surface ScansAt(const void* bits, std::uint32_t start, std::uint32_t lines) const;
};

// How many entries the colour table behind a header has: 0 for direct colours.
std::size_t ColorTableSize(const BITMAPINFOHEADER& header);

// Nothing when the header is not one of those the library draws: sizes, planes, bits, compression, masks.
std::optional<DibFormat> ReadDibHeader(const BITMAPINFO* info);

// Describes a surface as a bottom-up bitmap; the colour table and the masks are left to the caller.
BITMAPINFOHEADER MakeDibHeader(const Surface& surface);

// Scans count from the bottom: this is the row, from the top, of the last of `scans`.
inline std::int64_t RowOfScans(const Surface& surface, std::int64_t firstScan, std::int64_t scans) {
    return surface.height - firstScan - scans;
}

// A section with pixels of 0, in the form given. Null when there is no memory.
std::unique_ptr<Bitmap> MakeSection(DibFormat format);

// A bitmap with pixels of 0, as devices have them: the top row first, rows padded to 2 bytes. Null when the
// size is none or there is no memory.
std::unique_ptr<Bitmap> MakeDeviceBitmap(int width, int height, PixelLayout layout,
                                         std::vector<RGBQUAD> colors);

// How bitmaps have pixels of so many bits when nothing more is said; nothing for other numbers.
std::optional<PixelLayout> LayoutOfDepth(std::uint32_t bitCount);

}  // namespace Zelkor::Platform
