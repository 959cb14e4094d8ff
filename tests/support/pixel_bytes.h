#pragma once
// The pixels of any region as plain bytes, row after row without padding: to fill it and to compare.

#include <cstddef>
#include <random>

#include "kalvo/image/regionrows.h"
#include "kalvo/kernels/kernels.h"
#include "tests/support/temporary_folder.h"

namespace Zelkor::Kalvo::Testing {

// Bytes that a row of pixels takes; rows of bits end with a partly used one.
inline std::size_t RowBytes(const KxGenericROI& region) {
    return (static_cast<std::size_t>(region.GetWidth()) * region.GetBitsPerPixel() + 7) / 8;
}

// All pixels; unused bits at the end of a row are 0.
inline Bytes PixelBytes(const KxGenericROI& region) {
    const ConstRegionRows rows = RowsOf(region);
    const std::size_t rowBytes = RowBytes(region),
                      bits = std::size_t{1} * region.GetWidth() * region.GetBitsPerPixel();
    Bytes bytes(rowBytes * rows.height);
    for (int y = 0; y < rows.height; ++y)
        Kernels::Active().copyBits(rows.Row(y), rows.firstBit, bytes.data() + rowBytes * y, 0, bits);
    return bytes;
}

// Stores what `PixelBytes` gives.
inline void SetPixelBytes(KxGenericROI& region, const Bytes& bytes) {
    const RegionRows rows = RowsOf(region);
    const std::size_t rowBytes = RowBytes(region),
                      bits = std::size_t{1} * region.GetWidth() * region.GetBitsPerPixel();
    for (int y = 0; y < rows.height; ++y)
        Kernels::Active().copyBits(bytes.data() + rowBytes * y, 0, rows.Row(y), rows.firstBit, bits);
}

// Fills a region with noise; another seed gives other noise.
inline void FillPattern(KxGenericROI& region, unsigned seed) {
    std::minstd_rand random(seed);
    Bytes bytes(RowBytes(region) * region.GetHeight());
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random() >> 8);
    SetPixelBytes(region, bytes);
}

// Same size and same pixels.
inline bool SamePixels(const KxGenericROI& a, const KxGenericROI& b) {
    return a.GetWidth() == b.GetWidth() && a.GetHeight() == b.GetHeight() && PixelBytes(a) == PixelBytes(b);
}

}  // namespace Zelkor::Kalvo::Testing
