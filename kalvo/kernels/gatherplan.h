#pragma once
// Which pixels of one row make up another: worked out once, used for many rows.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Zelkor::Kernels {

// Sixteen bytes of the source row, of which one shuffle makes some pixels of the destination row.
struct GatherBlock {
    std::size_t from;        // first byte of the source
    std::size_t to;          // first byte of the destination; the block fills up to 16, the next overwrites
    std::uint8_t lanes[16];  // which of the bytes comes where
};

struct GatherPlan {
    std::size_t bytesPerPixel;          // 1 to 4
    std::vector<std::int32_t> columns;  // for every destination pixel
    std::vector<GatherBlock> blocks;    // the same by blocks; none for a source row below 16 bytes

    std::size_t RowBytes() const { return bytesPerPixel * columns.size(); }
};

// Takes columns from 0 to `sourceWidth` - 1, which rise or fall.
GatherPlan MakeGatherPlan(std::vector<std::int32_t> columns, int sourceWidth, std::size_t bytesPerPixel);

}  // namespace Zelkor::Kernels
