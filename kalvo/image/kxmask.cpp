// Masks of regions: rectangles, ellipses and rings as horizontal runs.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "kalvo/frame/boundary.h"
#include "kalvo/image/kxregionbase.h"
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

// The ellipse inscribed in a box, as an integer decision value: inside where it is not above 0.
class Ellipse {
public:
    Ellipse(int width, int height)
        : m_width(width), m_height(height), m_a(Square(width - 1)), m_b(Square(height - 1)) {}

    // The decision value at the corners of the box.
    WideInteger CornerValue() const { return m_a * m_b - m_a - m_b; }

    // The columns of a row where the decision value is at most `limit`. The value is a parabola along the row
    // with its minimum in the middle, so they are one range, found from the left half.
    Columns ColumnsAtOrBelow(WideInteger limit, int row) const {
        int outside = -1;
        int inside = (m_width - 1) / 2;
        if (Value(inside, row) > limit) return {0, 0};
        while (inside - outside > 1) {
            const int middle = outside + (inside - outside) / 2;
            (Value(middle, row) > limit ? outside : inside) = middle;
        }
        return {inside, m_width - inside};
    }

private:
    static WideInteger Square(WideInteger value) { return value * value; }

    // Coordinates count from the middle of the box in half pixels, which keeps them integers.
    WideInteger Value(int column, int row) const {
        const WideInteger u = 2 * WideInteger(column) - (m_width - 1);
        const WideInteger v = 2 * WideInteger(row) - (m_height - 1);
        return m_b * u * u + m_a * v * v - m_a * m_b - m_a - m_b;
    }

    int m_width;
    int m_height;
    WideInteger m_a;
    WideInteger m_b;
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
    RunMaker(KxGenericROI& region, bool offsets)
        : m_region(region),
          m_bytesPerPixel(std::max(region.GetColPitch(), 1)),
          m_base(offsets ? Address(0, 0) : 0) {}

    KxRun Make(int x, int y, int pixels) const {
        const std::uintptr_t first = Address(x, y) - m_base;
        const std::uintptr_t end = first + static_cast<std::uintptr_t>(pixels) * m_bytesPerPixel;
        return {reinterpret_cast<void*>(first), reinterpret_cast<void*>(end), static_cast<std::int16_t>(x),
                static_cast<std::int16_t>(y)};
    }

private:
    std::uintptr_t Address(int x, int y) const {
        return reinterpret_cast<std::uintptr_t>(m_region.GetGenericImagePtr(x, y));
    }

    KxGenericROI& m_region;
    unsigned m_bytesPerPixel;
    std::uintptr_t m_base;
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
        for (int row = 0; row < n32Height; ++row) {
            const Columns inside = ellipse.ColumnsAtOrBelow(0, row);
            m_MaskRuns[static_cast<unsigned>(row)] =
                maker.Make(n32X + inside.first, n32Y + row, inside.end - inside.first);
        }
    });
}

void RegionBase::SetRingMask(float f32Ratio) {
    m_MaskRuns.Empty();
    const RunMaker maker(*this, m_bMaskOffsets);
    const Ellipse ellipse(m_n32Width, m_n32Height);
    const WideInteger holeLimit = HoleLimit(ellipse, f32Ratio);
    const auto addRun = [&](int first, int end, int row) {
        if (first < end) VectorCore<KxRun>::Append(m_MaskRuns, maker.Make(first, row, end - first));
    };
    AtBoundary("KxROI::SetRingMask", [&] {
        for (int row = 0; row < m_n32Height; ++row) {
            const Columns outer = ellipse.ColumnsAtOrBelow(0, row);
            const Columns hole = ellipse.ColumnsAtOrBelow(holeLimit, row);
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
