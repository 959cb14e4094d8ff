// Copying between surfaces, as pixels are or bit by bit.

#include "kalvo/raster/blit.h"

#include <vector>

#include "kalvo/raster/blitrows.h"

namespace Zelkor::Platform {
namespace {

// Rows that are whole and share no memory with the source need no other place in between.
void BlitWholeRows(const Surface& destination, const Surface& source, const VisibleAxis& x,
                   const VisibleAxis& y) {
    RowReader reader(source, destination, x);
    for (int i = 0, previous = -1; i < y.Count(); ++i) {
        const int sourceY = y.SourceOf(i);
        std::uint8_t* row = destination.Row(y.First() + i);
        if (sourceY == previous)
            CopyPixels(destination.layout, row - destination.pitchBytes, x.First(), row, x.First(),
                       x.Count());
        else
            reader.Read(sourceY, row, x.First());
        previous = sourceY;
    }
}

// Combines pixels x0 <= x < x1 of a row with an operation.
class RowCombiner {
public:
    RowCombiner(const Surface& destination, RasterOperation operation, const Fill& pattern)
        : m_destination(destination), m_operation(operation), m_patterns(destination) {
        m_patterns.clip = nullptr;
        m_patterns.height = pattern.pattern == kSolid ? 1 : kPatternSize;
        m_patterns.pitchBytes =
            (std::ptrdiff_t{destination.width} * BitsPerPixel(destination.layout) + 7) / 8;
        m_memory.resize(static_cast<std::size_t>(m_patterns.pitchBytes * m_patterns.height));
        m_patterns.topRow = m_memory.data();
        for (int y = 0; y < m_patterns.height; ++y) ApplyFill(m_patterns, y, 0, m_patterns.width, pattern);
    }
    RowCombiner(const RowCombiner&) = delete;

    // Source pixels are those from `sourceX` on, equally far from the next byte.
    void Combine(int y, int x0, int x1, const std::uint8_t* source, int sourceX) const {
        const std::ptrdiff_t bits = BitsPerPixel(m_destination.layout);
        const std::ptrdiff_t begin = bits * x0 / 8, end = (bits * x1 + 7) / 8;
        std::uint8_t* const row = m_destination.Row(y);
        const std::uint8_t first = row[begin], last = row[end - 1];
        m_operation.Apply(m_patterns.Row(y % m_patterns.height) + begin, source + bits * sourceX / 8,
                          row + begin, static_cast<std::size_t>(end - begin));
        if (m_destination.layout != PixelLayout::Bits1) return;
        PutBack(row[begin], first, 0xFF00 >> (x0 & 7));
        PutBack(row[end - 1], last, 0x7F >> ((x1 - 1) & 7));
    }

private:
    static void PutBack(std::uint8_t& byte, unsigned before, unsigned mask) {
        byte = static_cast<std::uint8_t>((byte & ~mask) | (before & mask));
    }

    const Surface& m_destination;
    RasterOperation m_operation;
    std::vector<std::uint8_t> m_memory;
    Surface m_patterns;  // as wide as the destination, as high as the pattern
};

}  // namespace

void Blit(const Surface& destination, const Surface& source, const BlitAxis& columns, const BlitAxis& rows) {
    const VisibleAxis x(columns, ColumnsOf(destination), source.width);
    const VisibleAxis y(rows, RowsOf(destination), source.height);
    if (x.Count() == 0 || y.Count() == 0) return;
    if (IsClippedByBox(destination) && OrderOfRows(destination, source, x, y) == RowOrder::Any)
        return BlitWholeRows(destination, source, x, y);
    ForEachSpan(destination, source, columns, rows, destination,
                [&](int row, int x0, int x1, const std::uint8_t* pixels, int pixelsX) {
                    CopyPixels(destination.layout, pixels, pixelsX, destination.Row(row), x0, x1 - x0);
                });
}

void Combine(const Surface& destination, const Surface& source, const BlitAxis& columns, const BlitAxis& rows,
             RasterOperation operation, const Fill& pattern) {
    if (operation.CopiesSource()) return Blit(destination, source, columns, rows);
    const RowCombiner combiner(destination, operation, pattern);
    ForEachSpan(destination, source, columns, rows, destination,
                [&](int y, int x0, int x1, const std::uint8_t* pixels, int pixelsX) {
                    combiner.Combine(y, x0, x1, pixels, pixelsX);
                });
}

}  // namespace Zelkor::Platform
