#pragma once
// Brings rows of a source into the layout of a destination, stretched.

#include <span>
#include <vector>

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
        return m_columns.empty() && m_copiesBytes ? m_source.Row(y) + m_bytesPerPixel * m_first : nullptr;
    }

    using Sample = void(const std::uint8_t* row, std::span<const int> columns, std::uint8_t* pixels);

private:
    Surface m_source;
    int m_first;
    int m_count;
    std::ptrdiff_t m_bytesPerPixel;
    RowConverter m_converter;
    bool m_copiesBytes;
    Sample* m_sample;
    std::vector<int> m_columns;           // empty when they are neighbours
    std::vector<std::uint8_t> m_sampled;  // a row of pixels that are not yet converted
};

}  // namespace Zelkor::Platform
