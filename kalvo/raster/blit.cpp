// Copying between surfaces. Both axes are clipped first, so that the loops see only visible pixels; rows are
// sampled while they have the source's layout, then converted.
#include "kalvo/raster/blit.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

#include "kalvo/kernels/kernels.h"
#include "kalvo/raster/convert.h"
#include "kalvo/raster/lines.h"
#include "kalvo/raster/pixelaccess.h"

namespace Zelkor::Platform {
namespace {

// What is visible of an axis: the destination pixels that can be changed and take a source pixel that exists.
class VisibleAxis {
public:
    VisibleAxis(const BlitAxis& axis, Span destinationLimits, int sourceLimit)
        : m_destinationSize(std::abs(axis.destinationSize)),
          m_sourceSize(std::abs(axis.sourceSize)),
          m_source(std::min(axis.source, axis.source + axis.sourceSize)),
          m_mirrored((axis.destinationSize < 0) != (axis.sourceSize < 0)) {
        if (m_destinationSize == 0 || m_sourceSize == 0) return;
        std::int64_t begin = FirstOf(-m_source), end = FirstOf(sourceLimit - m_source);
        if (m_mirrored) {
            std::swap(begin, end);
            begin = m_destinationSize - begin;
            end = m_destinationSize - end;
        }
        const std::int64_t start = std::min(axis.destination, axis.destination + axis.destinationSize);
        begin = std::max(begin, destinationLimits.begin - start);
        end = std::min(end, destinationLimits.end - start);
        if (begin >= end) return;
        m_skipped = begin;
        m_first = static_cast<int>(start + begin);
        m_count = static_cast<int>(end - begin);
    }

    int First() const { return m_first; }  // in the destination
    Span All() const { return {m_first, std::int64_t{m_first} + m_count}; }
    int Count() const { return m_count; }

    // Whether neighbours take neighbours.
    bool IsPlain() const { return m_destinationSize == m_sourceSize && !m_mirrored; }

    // The source pixel of visible pixel i.
    int SourceOf(int i) const {
        const std::int64_t position = m_skipped + i;
        return static_cast<int>(m_source + Scaled(m_mirrored ? m_destinationSize - 1 - position : position));
    }

    // The source pixels of all visible ones: divides once instead of for each.
    std::vector<int> Sources() const {
        const std::int64_t whole = m_sourceSize / m_destinationSize, part = m_sourceSize % m_destinationSize;
        std::int64_t rest = 0;
        if (part != 0) {
            const std::int64_t position = m_mirrored ? m_destinationSize - m_skipped - m_count : m_skipped;
            rest = position * m_sourceSize % m_destinationSize;
        }
        std::vector<int> sources(static_cast<std::size_t>(m_count));
        std::int64_t source = SourceOf(m_mirrored ? m_count - 1 : 0);
        for (int& entry : sources) {
            entry = static_cast<int>(source);
            source += whole;
            rest += part;
            if (rest >= m_destinationSize) {
                rest -= m_destinationSize;
                ++source;
            }
        }
        if (m_mirrored) std::ranges::reverse(sources);
        return sources;
    }

private:
    // Equal sizes may be too great to multiply.

    std::int64_t Scaled(std::int64_t position) const {
        return m_destinationSize == m_sourceSize ? position : position * m_sourceSize / m_destinationSize;
    }

    // The first position, not mirrored, that takes pixel k of the source rectangle or one behind it.
    std::int64_t FirstOf(std::int64_t k) const {
        k = std::clamp<std::int64_t>(k, 0, m_sourceSize);
        if (m_destinationSize == m_sourceSize) return k;
        return (k * m_destinationSize + m_sourceSize - 1) / m_sourceSize;
    }

    std::int64_t m_destinationSize;
    std::int64_t m_sourceSize;
    std::int64_t m_source;
    bool m_mirrored;
    std::int64_t m_skipped = 0;  // invisible destination pixels before the first visible one
    int m_first = 0;
    int m_count = 0;
};

using Sample = void(const std::uint8_t* row, std::span<const int> columns, std::uint8_t* pixels);

template <int kBytes>
void SampleBytes(const std::uint8_t* row, std::span<const int> columns, std::uint8_t* pixels) {
    for (const int x : columns) {
        std::memcpy(pixels, row + static_cast<std::ptrdiff_t>(kBytes) * x, kBytes);
        pixels += kBytes;
    }
}

void SampleBits(const std::uint8_t* row, std::span<const int> columns, std::uint8_t* bytes) {
    for (const int x : columns) *bytes++ = Bits1Access::Read(row, x) ? 255 : 0;
}

Sample* SampleOf(PixelLayout layout) {
    static constexpr Sample* samples[] = {SampleBits,     SampleBytes<1>, SampleBytes<2>,
                                          SampleBytes<2>, SampleBytes<3>, SampleBytes<4>};
    return samples[static_cast<int>(layout)];
}

// Brings the visible pixels of source rows into the layout of a destination.
class RowReader {
public:
    RowReader(const Surface& source, const Surface& destination, const VisibleAxis& columns)
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

    // Stores the pixels of source row y from `destinationX` on.
    void Read(int y, std::uint8_t* destination, int destinationX) {
        const std::uint8_t* row = m_source.Row(y);
        if (m_columns.empty()) return m_converter.Convert(row, m_first, destination, destinationX, m_count);
        if (m_copiesBytes) return m_sample(row, m_columns, destination + m_bytesPerPixel * destinationX);
        m_sample(row, m_columns, m_sampled.data());
        m_converter.ConvertBytes(m_sampled.data(), destination, destinationX, m_count);
    }

    // Where the source itself has the pixels of row y as they are wanted; null when they must be read.
    const std::uint8_t* Find(int y) const {
        return m_columns.empty() && m_copiesBytes ? m_source.Row(y) + m_bytesPerPixel * m_first : nullptr;
    }

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

// Copies rows of which only pieces are visible: whole ones into memory first.
void BlitPieces(const Surface& destination, RowReader& reader, const VisibleAxis& x, const VisibleAxis& y) {
    std::vector<std::uint8_t> pixels(
        (static_cast<std::size_t>(x.Count()) * BitsPerPixel(destination.layout) + 7) / 8);
    for (int i = 0, previous = -1; i < y.Count(); ++i) {
        const int sourceY = y.SourceOf(i);
        if (sourceY != previous) reader.Read(sourceY, pixels.data(), 0);
        previous = sourceY;
        const int row = y.First() + i;
        ForVisibleSpans(destination, row, x.All(), [&](int x0, int x1) {
            CopyPixels(destination.layout, pixels.data(), x0 - x.First(), destination.Row(row), x0, x1 - x0);
        });
    }
}

}  // namespace

void Blit(const Surface& destination, const Surface& source, const BlitAxis& columns, const BlitAxis& rows) {
    const VisibleAxis x(columns, ColumnsOf(destination), source.width);
    const VisibleAxis y(rows, RowsOf(destination), source.height);
    if (x.Count() == 0 || y.Count() == 0) return;
    RowReader reader(source, destination, x);
    if (!IsClippedByBox(destination)) return BlitPieces(destination, reader, x, y);
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

void Blend(const Surface& destination, const Surface& source, const BlitAxis& columns, const BlitAxis& rows,
           std::uint8_t alpha) {
    const VisibleAxis x(columns, ColumnsOf(destination), source.width);
    const VisibleAxis y(rows, RowsOf(destination), source.height);
    if (x.Count() == 0 || y.Count() == 0) return;

    // Components of whole bytes mix where they are, others in a row of 24 bits.
    const bool mixesInPlace = BytesPerPixel(destination.layout) >= 3;
    Surface mixed;
    mixed.layout = mixesInPlace ? destination.layout : PixelLayout::Bgr24;
    const std::ptrdiff_t bytesPerPixel = BytesPerPixel(mixed.layout);
    const std::size_t bytes = static_cast<std::size_t>(bytesPerPixel) * static_cast<std::size_t>(x.Count());

    RowReader reader(source, mixed, x);
    RowConverter toMixed(destination, mixed), fromMixed(mixed, destination);
    std::vector<std::uint8_t> sourcePixels(bytes), mixedPixels(mixesInPlace ? 0 : bytes);
    for (int i = 0, previous = -1; i < y.Count(); ++i) {
        const int sourceY = y.SourceOf(i);
        const std::uint8_t* pixels = reader.Find(sourceY);
        if (!pixels) {
            if (sourceY != previous) reader.Read(sourceY, sourcePixels.data(), 0);
            pixels = sourcePixels.data();
        }
        previous = sourceY;

        std::uint8_t* row = destination.Row(y.First() + i);
        ForVisibleSpans(destination, y.First() + i, x.All(), [&](int x0, int x1) {
            const std::uint8_t* piece = pixels + bytesPerPixel * (x0 - x.First());
            const std::size_t pieceBytes = static_cast<std::size_t>(bytesPerPixel * (x1 - x0));
            if (mixesInPlace) {
                Kernels::Active().blendConstant(row + bytesPerPixel * x0, piece, pieceBytes, alpha);
            } else {
                toMixed.Convert(row, x0, mixedPixels.data(), 0, x1 - x0);
                Kernels::Active().blendConstant(mixedPixels.data(), piece, pieceBytes, alpha);
                fromMixed.Convert(mixedPixels.data(), 0, row, x0, x1 - x0);
            }
        });
    }
}

}  // namespace Zelkor::Platform
