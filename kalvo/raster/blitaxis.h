#pragma once
// One direction of a copy between rectangles: which pixels take which, and what of them can be seen.

#include <cstdint>
#include <vector>

#include "kalvo/raster/spans.h"

namespace Zelkor::Platform {

// The columns, or rows, of both rectangles of a copy; either may reach outside its surface. Destination pixel
// i takes source pixel floor(i x sourceSize / destinationSize); mirrored, i counts from the other end. Starts
// fit 34 bits, sizes 32, and none is negative.
struct BlitAxis {
    std::int64_t destination = 0;
    std::int64_t destinationSize = 0;
    std::int64_t source = 0;
    std::int64_t sourceSize = 0;
    bool isMirrored = false;
};

// Takes `size` columns or rows as they are.
inline BlitAxis UnscaledAxis(std::int64_t destination, std::int64_t source, std::int64_t size) {
    return {destination, size, source, size};
}

// The destination pixels within limits that take a source pixel that exists.
class VisibleAxis {
public:
    VisibleAxis(const BlitAxis& axis, Span destinationLimits, int sourceLimit);

    int First() const { return m_first; }  // in the destination
    int Count() const { return m_count; }
    Span All() const { return {m_first, std::int64_t{m_first} + m_count}; }

    // Whether neighbours take neighbours.
    bool IsPlain() const { return m_destinationSize == m_sourceSize && !m_mirrored; }

    // The source pixel of visible pixel i.
    int SourceOf(int i) const;

    // The source pixels of all visible ones: divides once instead of for each.
    std::vector<int> Sources() const;

    // The smallest span around them.
    Span SourceSpan() const;

private:
    std::int64_t Scaled(std::int64_t position) const;
    std::int64_t FirstOf(std::int64_t k) const;

    std::int64_t m_destinationSize;
    std::int64_t m_sourceSize;
    std::int64_t m_source;
    bool m_mirrored;
    std::int64_t m_skipped = 0;  // invisible destination pixels before the first visible one
    int m_first = 0;
    int m_count = 0;
};

}  // namespace Zelkor::Platform
