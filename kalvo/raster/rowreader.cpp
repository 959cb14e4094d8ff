// Takes pixels out of rows, whatever their size, by one plan for all of them.

#include "kalvo/raster/rowreader.h"

#include "kalvo/kernels/kernels.h"

namespace Zelkor::Platform {

RowReader::RowReader(const Surface& source, const Surface& destination, const VisibleAxis& columns)
    : m_source(source),
      m_first(columns.SourceOf(0)),
      m_count(columns.Count()),
      m_isPlain(columns.IsPlain()),
      m_bytesPerPixel(BytesPerPixel(source.layout)),
      m_converter(source, destination),
      m_copiesBytes(m_converter.Copies() && source.layout != PixelLayout::Bits1) {
    if (m_isPlain) return;
    const Span taken = columns.SourceSpan();
    m_first = static_cast<int>(taken.begin);
    std::vector<std::int32_t> offsets = columns.Sources();
    for (std::int32_t& offset : offsets) offset -= m_first;
    const int width = static_cast<int>(taken.end - taken.begin);
    m_plan = Kernels::MakeGatherPlan(std::move(offsets), width, static_cast<std::size_t>(m_bytesPerPixel));
    if (source.layout == PixelLayout::Bits1) m_bits.resize(static_cast<std::size_t>(width));
    if (!m_copiesBytes) m_sampled.resize(m_plan.RowBytes());
}

void RowReader::Read(int y, std::uint8_t* destination, int destinationX) {
    if (m_isPlain) return m_converter.Convert(m_source.Row(y), m_first, destination, destinationX, m_count);
    const std::uint8_t* from = WholeBytes(y);
    if (m_copiesBytes)
        return Kernels::Active().gatherRow(m_plan, from, destination + m_bytesPerPixel * destinationX);
    Kernels::Active().gatherRow(m_plan, from, m_sampled.data());
    m_converter.ConvertBytes(m_sampled.data(), destination, destinationX, m_count);
}

// The pixels of row y from the first one that is taken, in whole bytes.
const std::uint8_t* RowReader::WholeBytes(int y) {
    const std::uint8_t* row = m_source.Row(y);
    if (m_bits.empty()) return row + m_bytesPerPixel * m_first;
    Kernels::Active().expandBits(row + m_first / 8, m_first % 8, m_bits.data(), m_bits.size());
    return m_bits.data();
}

}  // namespace Zelkor::Platform
