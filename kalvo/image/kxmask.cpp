// Masks of regions: rectangles, ellipses and rings as horizontal runs.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "kalvo/frame/boundary.h"
#include "kalvo/image/kxregionbase.h"
#include "kalvo/image/regionrows.h"
#include "kalvo/vectors/vectorcore.h"

namespace Zelkor::Kalvo {
namespace {

constexpr unsigned kMoreThanAnyVector = std::numeric_limits<unsigned>::max();

__extension__ using WideInteger = __int128;  // products of four sides of an image overflow 64 bits

// A half-open range of columns.
struct Columns {
    int first;
    int end;
};

// The ellipse inscribed in a box, as an integer decision value: inside where it is not above 0. Coordinates
// count from the middle of the box in half pixels, which keeps them integers.
struct Ellipse {
    Ellipse(int boxWidth, int boxHeight)
        : width(boxWidth), height(boxHeight), a(Square(boxWidth - 1)), b(Square(boxHeight - 1)) {}

    // The decision value at the corners of the box.
    WideInteger CornerValue() const { return a * b - a - b; }

    static WideInteger Square(WideInteger value) { return value * value; }

    int width;
    int height;
    WideInteger a;
    WideInteger b;
};

// Where the decision value is at most `limit`, row by row from the top. The value is a parabola along a row
// with its minimum in the middle, so that is one range of columns. Its left end is mostly near that of the
// row before: we follow it there, and take the right end from it.
class Edge {
public:
    Edge(const Ellipse& ellipse, WideInteger limit)
        : m_ellipse(ellipse),
          m_limit(limit),
          m_beyondMiddle(ellipse.width / 2 + ellipse.width % 2),
          m_rowStep(4 * ellipse.a * (2 - ellipse.height)) {
        Stand(m_beyondMiddle);
    }

    Columns NextRow() {
        const int before = m_column;
        while (m_column > 0 && m_above + m_leftStep <= 0 && before - m_column < kNear) MoveLeft();
        while (m_column < m_beyondMiddle && m_above > 0 && m_column - before < kNear) MoveRight();
        if (std::abs(m_column - before) == kNear) Stand(Search());
        m_above += m_rowStep;
        m_rowStep += 8 * m_ellipse.a;
        ++m_row;
        return m_column == m_beyondMiddle ? Columns{0, 0} : Columns{m_column, m_ellipse.width - m_column};
    }

private:
    static constexpr int kNear = 32;  // steps that cost less than a search

    WideInteger U(int column) const { return 2 * WideInteger(column) - (m_ellipse.width - 1); }
    WideInteger V() const { return 2 * WideInteger(m_row) - (m_ellipse.height - 1); }
    WideInteger Above(int column) const {
        return m_ellipse.b * Ellipse::Square(U(column)) + m_ellipse.a * Ellipse::Square(V()) -
               m_ellipse.CornerValue() - 2 * (m_ellipse.a + m_ellipse.b) - m_limit;
    }

    void Stand(int column) {
        m_column = column;
        m_above = Above(column);
        m_leftStep = 4 * m_ellipse.b * (1 - U(column));
    }
    void MoveLeft() {
        --m_column;
        m_above += m_leftStep;
        m_leftStep += 8 * m_ellipse.b;
    }
    void MoveRight() {
        ++m_column;
        m_leftStep -= 8 * m_ellipse.b;
        m_above -= m_leftStep;
    }
    // The first column that is inside, or the one beyond the middle.
    int Search() const {
        int first = 0, end = m_beyondMiddle;
        while (first < end) {
            const int middle = first + (end - first) / 2;
            if (Above(middle) > 0)
                first = middle + 1;
            else
                end = middle;
        }
        return end;
    }

    const Ellipse& m_ellipse;
    const WideInteger m_limit;
    const int m_beyondMiddle;
    int m_row = 0;
    int m_column;            // the first one inside, or the one beyond the middle when there is none
    WideInteger m_above;     // how far the decision value there is above the limit
    WideInteger m_leftStep;  // what it grows by in the column before,
    WideInteger m_rowStep;   // and in the row below
};

// The decision value below which a pixel lies in the hole of a ring.
WideInteger HoleLimit(const Ellipse& ellipse, float ratio) {
    const double depth =
        std::floor((1.0 - double{ratio} * ratio) * static_cast<double>(ellipse.CornerValue()));
    constexpr double kDeepest = 1e30;  // far below every decision value, and still an integer
    return -static_cast<WideInteger>(std::isnan(depth) ? -kDeepest : std::clamp(depth, -kDeepest, kDeepest));
}

// Makes runs of a region: addresses of its pixels, or byte offsets from its first pixel.
class RunMaker {
public:
    RunMaker(const KxGenericROI& region, bool offsets)
        : m_rows(RowsOf(region)),
          m_bitsPerPixel(static_cast<unsigned>(region.GetBitsPerPixel())),
          m_first(offsets ? 0 : reinterpret_cast<std::uintptr_t>(m_rows.first)) {}

    KxRun Make(int x, int y, int pixels) const {
        const std::uintptr_t first = Address(x, y);
        const std::uintptr_t end =
            first + static_cast<std::uintptr_t>(pixels) * std::max(m_bitsPerPixel / 8, 1u);
        return {reinterpret_cast<void*>(first), reinterpret_cast<void*>(end), static_cast<std::int16_t>(x),
                static_cast<std::int16_t>(y)};
    }

private:
    // 0 for all pixels of a region that has none.
    std::uintptr_t Address(int x, int y) const {
        if (!m_rows.first) return 0;
        const std::int64_t bits = m_rows.firstBit + std::int64_t{x} * m_bitsPerPixel;
        return m_first + static_cast<std::uintptr_t>(m_rows.pitchBytes * y + (bits >> 3));
    }

    ConstRegionRows m_rows;
    unsigned m_bitsPerPixel;
    std::uintptr_t m_first;
};

}  // namespace

void RegionBase::ResetMask() {
    KxOk();
    AtBoundary("KxROI::ResetMask", [&] { VectorCore<KxRun>::SetCapacity(m_MaskRuns, 0); });
}

void RegionBase::SetRectangleMask(int n32X, int n32Y, int n32Width, int n32Height) {
    const bool whole = n32Width < 1 || n32Height < 1;
    const auto clip = [](int& first, std::int64_t size, int limit) {
        const std::int64_t end = std::min(first + size, std::int64_t{limit});
        first = std::max(first, 0);
        return static_cast<int>(std::max<std::int64_t>(end - first, 0));
    };
    const int width = clip(n32X, whole ? m_n32Width : n32Width, m_n32Width);
    const int height = clip(n32Y, whole ? m_n32Height : n32Height, m_n32Height);

    // No runs would mean that every pixel counts, so a rectangle clipped to nothing is refused.
    const unsigned runs = width == 0 || height == 0 ? kMoreThanAnyVector : static_cast<unsigned>(height);
    KxOk();
    AtBoundary("KxROI::SetRectangleMask", [&] {
        VectorCore<KxRun>::SetCount(m_MaskRuns, runs);
        const RunMaker maker(*this, m_bMaskOffsets);
        for (int row = 0; row < height; ++row)
            m_MaskRuns[static_cast<unsigned>(row)] = maker.Make(n32X, n32Y + row, width);
    });
}

void RegionBase::SetEllipseMask(int n32X, int n32Y, int n32Width, int n32Height) {
    if (n32Width < 1 || n32Height < 1) {
        n32X = n32Y = 0;
        n32Width = m_n32Width;
        n32Height = m_n32Height;
    }
    KxOk();
    AtBoundary("KxROI::SetEllipseMask", [&] {
        VectorCore<KxRun>::SetCount(m_MaskRuns, static_cast<unsigned>(n32Height));
        const RunMaker maker(*this, m_bMaskOffsets);
        const Ellipse ellipse(n32Width, n32Height);
        Edge edge(ellipse, 0);
        for (int row = 0; row < n32Height; ++row) {
            const Columns inside = edge.NextRow();
            m_MaskRuns[static_cast<unsigned>(row)] =
                maker.Make(n32X + inside.first, n32Y + row, inside.end - inside.first);
        }
    });
}

void RegionBase::SetRingMask(float f32Ratio) {
    m_MaskRuns.Empty();
    const RunMaker maker(*this, m_bMaskOffsets);
    const Ellipse ellipse(m_n32Width, m_n32Height);
    Edge outerEdge(ellipse, 0), holeEdge(ellipse, HoleLimit(ellipse, f32Ratio));
    const auto addRun = [&](int first, int end, int row) {
        if (first < end) VectorCore<KxRun>::Append(m_MaskRuns, maker.Make(first, row, end - first));
    };
    AtBoundary("KxROI::SetRingMask", [&] {
        for (int row = 0; row < m_n32Height; ++row) {
            const Columns outer = outerEdge.NextRow();
            const Columns hole = holeEdge.NextRow();
            if (hole.first == hole.end) {
                addRun(outer.first, outer.end, row);
            } else {
                addRun(outer.first, hole.first, row);
                addRun(hole.end, outer.end, row);
            }
        }
    });
}

void RegionBase::SetBinarizedMask(unsigned int) {}

}  // namespace Zelkor::Kalvo
