#pragma once
// A region as plain rows of bytes, for code that does not care about the pixel type.

#include <cstddef>
#include <cstdint>

#include "kalvo/image/kxgenericroi.h"

namespace Zelkor::Kalvo {

// The rows of a region: where row 0 starts, and how far apart rows are.
template <class Byte>
struct BasicRegionRows {
    Byte* first = nullptr;  // byte that holds pixel (0, 0); null when there are no pixels
    int firstBit = 0;       // bit of that byte, from the most significant, where the pixel starts
    std::ptrdiff_t pitchBytes = 0;
    int width = 0;
    int height = 0;

    Byte* Row(int y) const { return first + pitchBytes * y; }
};
using RegionRows = BasicRegionRows<std::uint8_t>;
using ConstRegionRows = BasicRegionRows<const std::uint8_t>;

// The pixel type of a region that is only looked at.
KX_IMAGE_TYPES TypeOf(const KxGenericROI& region);

// Rows of `region`, to write to or to read from.
RegionRows RowsOf(KxGenericROI& region);
ConstRegionRows RowsOf(const KxGenericROI& region);

}  // namespace Zelkor::Kalvo
