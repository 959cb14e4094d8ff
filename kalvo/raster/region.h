#pragma once
// Sets of pixels, kept as rows of spans. A surface may have one that drawing does not leave.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "kalvo/raster/spans.h"

namespace Zelkor::Platform {

// Which pixels of two sets are in the combined one.
enum class SetOperation : std::uint8_t { And, Or, Xor, Difference };

// Rows that look alike form a band: disjoint spans from left to right that do not touch. Bands are in order,
// have pixels, and differ where they touch; so equal sets look alike.
class Region {
public:
    Region() = default;
    explicit Region(const Box& box);

    bool IsEmpty() const { return m_bands.empty(); }
    bool IsBox() const { return m_spans.size() == 1; }
    const Box& Bounds() const { return m_bounds; }  // of nothing: 0, 0, 0, 0
    bool Contains(Position point) const;
    bool Overlaps(const Box& box) const;
    void Move(std::int64_t right, std::int64_t down);

    // Calls operation(span) for the parts of a row's span that are in the set.
    template <class Operation>
    void ForSpans(std::int64_t y, Span columns, Operation&& operation) const {
        for (const Span& span : RowSpans(y, columns)) operation(Intersection(span, columns));
    }

    bool operator==(const Region&) const = default;

    friend Region Combination(const Region& a, const Region& b, SetOperation operation);

private:
    struct Band {
        std::int64_t top;
        std::int64_t bottom;
        std::size_t firstSpan;
        std::size_t endSpan;

        bool operator==(const Band&) const = default;
    };
    class Cursor;

    std::span<const Span> SpansOf(const Band& band) const {
        return std::span(m_spans).subspan(band.firstSpan, band.endSpan - band.firstSpan);
    }
    // The band of a row or the next one below.
    std::vector<Band>::const_iterator BandFrom(std::int64_t y) const;
    // The spans of a row that have some of the columns.
    std::span<const Span> RowSpans(std::int64_t y, Span columns) const;
    // Takes the spans behind those of the last band as those of a new one.
    void CloseBand(std::int64_t top, std::int64_t bottom);

    std::vector<Band> m_bands;
    std::vector<Span> m_spans;
    Box m_bounds;
};

Region Combination(const Region& a, const Region& b, SetOperation operation);

}  // namespace Zelkor::Platform
