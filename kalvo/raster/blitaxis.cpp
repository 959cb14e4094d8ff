// Clips the two rectangles of a copy in one direction, and finds source pixels.

#include "kalvo/raster/blitaxis.h"

#include <algorithm>

namespace Zelkor::Platform {

VisibleAxis::VisibleAxis(const BlitAxis& axis, Span destinationLimits, int sourceLimit)
    : m_destinationSize(axis.destinationSize),
      m_sourceSize(axis.sourceSize),
      m_source(axis.source),
      m_mirrored(axis.isMirrored) {
    if (m_destinationSize == 0 || m_sourceSize == 0) return;
    std::int64_t begin = FirstOf(-m_source), end = FirstOf(sourceLimit - m_source);
    if (m_mirrored) {
        std::swap(begin, end);
        begin = m_destinationSize - begin;
        end = m_destinationSize - end;
    }
    begin = std::max(begin, destinationLimits.begin - axis.destination);
    end = std::min(end, destinationLimits.end - axis.destination);
    if (begin >= end) return;
    m_skipped = begin;
    m_first = static_cast<int>(axis.destination + begin);
    m_count = static_cast<int>(end - begin);
}

int VisibleAxis::SourceOf(int i) const {
    const std::int64_t position = m_skipped + i;
    return static_cast<int>(m_source + Scaled(m_mirrored ? m_destinationSize - 1 - position : position));
}

std::vector<int> VisibleAxis::Sources() const {
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

Span VisibleAxis::SourceSpan() const {
    const auto [first, last] = std::minmax({SourceOf(0), SourceOf(m_count - 1)});
    return {first, std::int64_t{last} + 1};
}

// Equal sizes may be too great to multiply.
std::int64_t VisibleAxis::Scaled(std::int64_t position) const {
    return m_destinationSize == m_sourceSize ? position : position * m_sourceSize / m_destinationSize;
}

// The first position, not mirrored, that takes pixel k of the source rectangle or one behind it.
std::int64_t VisibleAxis::FirstOf(std::int64_t k) const {
    k = std::clamp<std::int64_t>(k, 0, m_sourceSize);
    if (m_destinationSize == m_sourceSize) return k;
    return (k * m_destinationSize + m_sourceSize - 1) / m_sourceSize;
}

}  // namespace Zelkor::Platform
