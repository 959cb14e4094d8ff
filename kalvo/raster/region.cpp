// Sets of pixels: combining two of them, and finding the spans of a row.

#include "kalvo/raster/region.h"

#include <limits>

namespace Zelkor::Platform {
namespace {

constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

bool IsKept(SetOperation operation, bool isInA, bool isInB) {
    switch (operation) {
    case SetOperation::And:
        return isInA && isInB;
    case SetOperation::Or:
        return isInA || isInB;
    case SetOperation::Xor:
        return isInA != isInB;
    case SetOperation::Difference:
        break;
    }
    return isInA && !isInB;
}

// Walks along a row, from one change between outside and inside to the next.
class Changes {
public:
    explicit Changes(std::span<const Span> spans) : m_spans(spans) {}

    std::int64_t Next() const {
        if (m_spans.empty()) return kNever;
        return m_isInside ? m_spans.front().end : m_spans.front().begin;
    }
    bool IsInside() const { return m_isInside; }

    void PassUpTo(std::int64_t column) {
        if (Next() != column) return;
        if (m_isInside) m_spans = m_spans.subspan(1);
        m_isInside = !m_isInside;
    }

private:
    std::span<const Span> m_spans;
    bool m_isInside = false;
};

void CombineRow(std::span<const Span> spansA, std::span<const Span> spansB, SetOperation operation,
                std::vector<Span>& combined) {
    Changes a(spansA), b(spansB);
    bool isInside = false;
    for (std::int64_t column; (column = std::min(a.Next(), b.Next())) != kNever;) {
        a.PassUpTo(column);
        b.PassUpTo(column);
        const bool isKept = IsKept(operation, a.IsInside(), b.IsInside());
        if (isKept == isInside) continue;
        isInside = isKept;
        if (isInside)
            combined.push_back({column, column});
        else
            combined.back().end = column;
    }
}

}  // namespace

// Walks down a region, from one change of its rows to the next.
class Region::Cursor {
public:
    explicit Cursor(const Region& region) : m_region(region), m_band(region.m_bands.begin()) {}

    // The first row from `y` on that looks otherwise than row `y`; no row before it may be asked for again.
    std::int64_t NextChange(std::int64_t y) {
        while (!IsBehind() && m_band->bottom <= y) ++m_band;
        if (IsBehind()) return kNever;
        return y < m_band->top ? m_band->top : m_band->bottom;
    }
    // Of the row last given to NextChange.
    std::span<const Span> Spans(std::int64_t y) const {
        return IsBehind() || y < m_band->top ? std::span<const Span>() : m_region.SpansOf(*m_band);
    }

private:
    bool IsBehind() const { return m_band == m_region.m_bands.end(); }

    const Region& m_region;
    std::vector<Band>::const_iterator m_band;
};

Region::Region(const Box& box) {
    if (box.IsEmpty()) return;
    m_spans.push_back({box.left, box.right});
    CloseBand(box.top, box.bottom);
}

bool Region::Contains(Position point) const { return !RowSpans(point.y, {point.x, point.x + 1}).empty(); }

bool Region::Overlaps(const Box& box) const {
    if (box.IsEmpty()) return false;
    for (auto band = BandFrom(box.top); band != m_bands.end() && band->top < box.bottom; ++band)
        if (!RowSpans(band->top, {box.left, box.right}).empty()) return true;
    return false;
}

void Region::Move(std::int64_t right, std::int64_t down) {
    if (IsEmpty()) return;
    for (Band& band : m_bands) band.top += down, band.bottom += down;
    for (Span& span : m_spans) span.begin += right, span.end += right;
    m_bounds = {m_bounds.left + right, m_bounds.top + down, m_bounds.right + right, m_bounds.bottom + down};
}

std::vector<Region::Band>::const_iterator Region::BandFrom(std::int64_t y) const {
    return std::ranges::upper_bound(m_bands, y, {}, &Band::bottom);
}

std::span<const Span> Region::RowSpans(std::int64_t y, Span columns) const {
    const auto band = BandFrom(y);
    if (band == m_bands.end() || y < band->top || columns.IsEmpty()) return {};
    const std::span<const Span> spans = SpansOf(*band);
    const auto first = std::ranges::upper_bound(spans, columns.begin, {}, &Span::end);
    const auto end = std::ranges::lower_bound(first, spans.end(), columns.end, {}, &Span::begin);
    return {first, end};
}

void Region::CloseBand(std::int64_t top, std::int64_t bottom) {
    const std::size_t firstSpan = m_bands.empty() ? 0 : m_bands.back().endSpan;
    const std::span<const Span> spans = std::span<const Span>(m_spans).subspan(firstSpan);
    if (spans.empty()) return;
    const Box box{spans.front().begin, top, spans.back().end, bottom};
    m_bounds = m_bands.empty() ? box : Hull(m_bounds, box);
    if (!m_bands.empty() && m_bands.back().bottom == top &&
        std::ranges::equal(SpansOf(m_bands.back()), spans)) {
        m_bands.back().bottom = bottom;
        m_spans.resize(firstSpan);
    } else {
        m_bands.push_back({top, bottom, firstSpan, m_spans.size()});
    }
}

Region Combination(const Region& a, const Region& b, SetOperation operation) {
    Region combined;
    Region::Cursor cursorA(a), cursorB(b);
    std::int64_t y = std::min(a.m_bounds.top, b.m_bounds.top);
    for (std::int64_t next;; y = next) {
        next = std::min(cursorA.NextChange(y), cursorB.NextChange(y));
        if (next == kNever) return combined;
        CombineRow(cursorA.Spans(y), cursorB.Spans(y), operation, combined.m_spans);
        combined.CloseBand(y, next);
    }
}

}  // namespace Zelkor::Platform
