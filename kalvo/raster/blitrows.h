#pragma once
// The rows of a copy between surfaces that may be one and the same: every pixel is read before it is
// overwritten.

#include <vector>

#include "kalvo/raster/lines.h"
#include "kalvo/raster/rowreader.h"

namespace Zelkor::Platform {

enum class RowOrder : std::uint8_t { Any, Downwards, Upwards, None };

// In which order rows can be read and stored one by one; `None` when the source must be copied first.
RowOrder OrderOfRows(const Surface& destination, const Surface& source, const VisibleAxis& x,
                     const VisibleAxis& y);

// A part of a surface with pixels of its own.
struct CopiedPart {
    CopiedPart(const Surface& source, Span columns, Span rows);

    std::vector<std::uint8_t> memory;
    Surface surface;
};

// Calls store(y, x0, x1, pixels, pixelsX) for the visible spans x0 <= x < x1 of a destination's rows: from
// pixelsX on, `pixels` has what the source has for them, as `form` has pixels. In rows of single bits both
// are equally far from the next byte.
template <class Store>
void ForEachSpan(const Surface& destination, const Surface& source, const BlitAxis& columns,
                 const BlitAxis& rows, const Surface& form, Store&& store) {
    const VisibleAxis x(columns, ColumnsOf(destination), source.width);
    const VisibleAxis y(rows, RowsOf(destination), source.height);
    if (x.Count() == 0 || y.Count() == 0) return;
    const RowOrder order = OrderOfRows(destination, source, x, y);
    if (order == RowOrder::None) {
        const CopiedPart part(source, x.SourceSpan(), y.SourceSpan());
        BlitAxis partColumns = columns, partRows = rows;
        partColumns.source -= x.SourceSpan().begin;
        partRows.source -= y.SourceSpan().begin;
        return ForEachSpan(destination, part.surface, partColumns, partRows, form, store);
    }
    RowReader reader(source, form, x);
    const int lead = x.First() & 7;
    std::vector<std::uint8_t> read;
    for (int i = 0, previous = -1; i < y.Count(); ++i) {
        const int step = order == RowOrder::Upwards ? y.Count() - 1 - i : i;
        const int sourceY = y.SourceOf(step);
        const std::uint8_t* found = order == RowOrder::Any ? reader.Find(sourceY) : nullptr;
        if (!found && sourceY != previous) {
            read.resize(static_cast<std::size_t>(BytesPerPixel(form.layout)) * (x.Count() + lead));
            reader.Read(sourceY, read.data(), lead);
            previous = sourceY;
        }
        const std::uint8_t* const pixels = found ? found : read.data();
        const int pixelsX = found ? -x.First() : lead - x.First();
        const int row = y.First() + step;
        ForVisibleSpans(destination, row, x.All(),
                        [&](int x0, int x1) { store(row, x0, x1, pixels, x0 + pixelsX); });
    }
}

}  // namespace Zelkor::Platform
