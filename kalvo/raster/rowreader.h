#pragma once
// Brings rows of a source into the layout of a destination, stretched.

#include <vector>

#include "kalvo/kernels/gatherplan.h"
#include "kalvo/raster/blitaxis.h"
#include "kalvo/raster/convert.h"

namespace Zelkor::Platform {

// Reads the pixels that the visible columns take. Rows are sampled while they have the source's layout, then
// converted.
class RowReader {
public:
    RowReader(const Surface& source, const Surface& destination, const VisibleAxis& columns);

    // Stores the pixels of source row y from `destinationX` on.
    void Read(int y, std::uint8_t* destination, int destinationX);

    // Where the source itself has the pixels of row y as they are wanted; null when they must be read.
    const std::uint8_t* Find(int y) const {
        return m_isPlain && m_copiesBytes ? m_source.Row(y) + m_bytesPerPixel * m_first : nullptr;
    }

private:
    const std::uint8_t* WholeBytes(int y);

    Surface m_source;
    int m_first;  // of the source columns that are taken
    int m_count;  // of the pixels that are read
    bool m_isPlain;
    std::ptrdiff_t m_bytesPerPixel;
    RowConverter m_converter;
    bool m_copiesBytes;
    Kernels::GatherPlan m_plan;           // of columns that are no neighbours, from the first one on
    std::vector<std::uint8_t> m_bits;     // a row of pixels of one bit, as whole bytes
    std::vector<std::uint8_t> m_sampled;  // a row of pixels that are not yet converted
};

}  // namespace Zelkor::Platform
