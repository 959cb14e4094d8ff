// Which copies overwrite what they have yet to read.

#include "kalvo/raster/blitrows.h"

#include <algorithm>
#include <functional>

namespace Zelkor::Platform {
namespace {

struct Memory {
    const std::uint8_t* begin;
    const std::uint8_t* end;
};

Memory MemoryOf(const Surface& surface, Span rows) {
    const std::uint8_t* first = surface.Row(static_cast<int>(rows.begin));
    const std::uint8_t* last = surface.Row(static_cast<int>(rows.end - 1));
    const std::ptrdiff_t bytes = (std::ptrdiff_t{surface.width} * BitsPerPixel(surface.layout) + 7) / 8;
    return std::less()(first, last) ? Memory{first, last + bytes} : Memory{last, first + bytes};
}

bool Overlap(const Memory& a, const Memory& b) {
    return std::less()(a.begin, b.end) && std::less()(b.begin, a.end);
}

}  // namespace

RowOrder OrderOfRows(const Surface& destination, const Surface& source, const VisibleAxis& x,
                     const VisibleAxis& y) {
    const bool shareMemory = Overlap(MemoryOf(destination, y.All()), MemoryOf(source, y.SourceSpan()));
    if (!shareMemory) return RowOrder::Any;
    const bool shareRows = destination.topRow == source.topRow && destination.layout == source.layout &&
                           destination.pitchBytes == source.pitchBytes;
    if (!shareRows || !x.IsPlain() || !y.IsPlain()) return RowOrder::None;
    return y.First() > y.SourceOf(0) ? RowOrder::Upwards : RowOrder::Downwards;
}

CopiedPart::CopiedPart(const Surface& source, Span columns, Span rows) : surface(source) {
    surface.width = static_cast<int>(columns.end - columns.begin);
    surface.height = static_cast<int>(rows.end - rows.begin);
    surface.pitchBytes = (std::ptrdiff_t{surface.width} * BitsPerPixel(source.layout) + 7) / 8;
    memory.resize(static_cast<std::size_t>(surface.pitchBytes * surface.height));
    surface.topRow = memory.data();
    for (int y = 0; y < surface.height; ++y)
        CopyPixels(source.layout, source.Row(static_cast<int>(rows.begin) + y),
                   static_cast<int>(columns.begin), surface.Row(y), 0, surface.width);
}

}  // namespace Zelkor::Platform
