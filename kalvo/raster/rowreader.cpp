// Takes pixels out of rows, one loop for each size of pixels.

#include "kalvo/raster/rowreader.h"

#include <cstring>

#include "kalvo/raster/pixelaccess.h"

namespace Zelkor::Platform {
namespace {

// Four pixels at a time. Measured: single ones take a third longer when the short loop crosses a line of the
// instruction cache.
template <int kBytes>
void SampleBytes(const std::uint8_t* row, std::span<const int> columns, std::uint8_t* pixels) {
    const auto take = [&](int x) {
        std::memcpy(pixels, row + static_cast<std::ptrdiff_t>(kBytes) * x, kBytes);
        pixels += kBytes;
    };
    std::size_t i = 0;
    for (; i + 4 <= columns.size(); i += 4) {
        take(columns[i]);
        take(columns[i + 1]);
        take(columns[i + 2]);
        take(columns[i + 3]);
    }
    for (; i < columns.size(); ++i) take(columns[i]);
}

void SampleBits(const std::uint8_t* row, std::span<const int> columns, std::uint8_t* bytes) {
    for (const int x : columns) *bytes++ = Bits1Access::Read(row, x) ? 255 : 0;
}

RowReader::Sample* SampleOf(PixelLayout layout) {
    static constexpr RowReader::Sample* samples[] = {SampleBits,     SampleBytes<1>, SampleBytes<2>,
                                                     SampleBytes<2>, SampleBytes<3>, SampleBytes<4>};
    return samples[static_cast<int>(layout)];
}

}  // namespace

RowReader::RowReader(const Surface& source, const Surface& destination, const VisibleAxis& columns)
    : m_source(source),
      m_first(columns.SourceOf(0)),
      m_count(columns.Count()),
      m_bytesPerPixel(BytesPerPixel(source.layout)),
      m_converter(source, destination),
      m_copiesBytes(m_converter.Copies() && source.layout != PixelLayout::Bits1),
      m_sample(SampleOf(source.layout)) {
    if (columns.IsPlain()) return;
    m_columns = columns.Sources();
    if (!m_copiesBytes) m_sampled.resize(static_cast<std::size_t>(m_bytesPerPixel) * m_columns.size());
}

void RowReader::Read(int y, std::uint8_t* destination, int destinationX) {
    const std::uint8_t* row = m_source.Row(y);
    if (m_columns.empty()) return m_converter.Convert(row, m_first, destination, destinationX, m_count);
    if (m_copiesBytes) return m_sample(row, m_columns, destination + m_bytesPerPixel * destinationX);
    m_sample(row, m_columns, m_sampled.data());
    m_converter.ConvertBytes(m_sampled.data(), destination, destinationX, m_count);
}

}  // namespace Zelkor::Platform
