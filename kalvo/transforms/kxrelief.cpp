// The relief: every pixel a point, painted from the back to the front so that nothing needs to be sorted.

#include "kalvo/transforms/kxrelief.h"

#include <algorithm>
#include <array>
#include <tuple>

#include "kalvo/frame/boundary.h"
#include "kalvo/measure/kxangle.h"
#include "kalvo/transforms/projection.h"

using namespace Zelkor::Kalvo;

namespace {

// Destination pixels of one point: in each of its rows, from the top, a run.
struct Run {
    int first, count;
};
template <int kPointSize>
constexpr auto kRuns = std::array<Run, 0>();
template <>
constexpr auto kRuns<1> = std::array{Run{0, 1}};
template <>
constexpr auto kRuns<4> = std::array{Run{0, 2}, Run{0, 2}};
template <>
constexpr auto kRuns<5> = std::array{Run{1, 1}, Run{0, 3}, Run{1, 1}};
template <>
constexpr auto kRuns<9> = std::array{Run{0, 3}, Run{0, 3}, Run{0, 3}};

struct Scales {
    float x, y, z;
};

// Where the pixel in a column and a row goes, given its height, and which pixels lie behind others.
struct Projection {
    struct Place {
        Fixed x, y;
    };

    Fixed xPerColumn, xPerRow, yPerRow;
    Place origin;
    std::array<Place, 256> heights;  // what each height adds
    bool fromRight, fromBottom;

    Projection(const View& view, const Scales& scales, const ConstRegionRows& source,
               const RegionRows& target) {
        const float xx = view.cb * scales.x, xy = -view.sb * view.sa * scales.y,
                    xz = view.sb * view.ca * scales.z;
        const float yy = view.ca * scales.y, yz = view.sa * scales.z;
        const float columns = static_cast<float>(source.width), rows = static_cast<float>(source.height);
        const float width = static_cast<float>(target.width), height = static_cast<float>(target.height);

        xPerColumn = ToFixed(xx);
        xPerRow = ToFixed(xy);
        yPerRow = ToFixed(yy);
        origin = {ToFixed((width - columns * xx - rows * xy - 256 * xz) / 2),
                  ToFixed((height - rows * yy - 256 * yz) / 2)};
        Place sum{0, 0};
        for (Place& place : heights) {
            place = sum;
            sum = {sum.x + ToFixed(xz), sum.y + ToFixed(yz)};
        }
        fromRight = view.sb * scales.x < 0;
        fromBottom = -view.cb * view.sa * scales.y < 0;
    }
};

// Unrolled: with loops at run time a point costs three to eight times as much.
template <int kPointSize, class Pixel>
void PaintPoint(std::uint8_t* place, std::ptrdiff_t pitchBytes, Pixel color) {
    const auto paintRow = [&](const Run& run) {
        std::fill_n(reinterpret_cast<Pixel*>(place) + run.first, run.count, color);
        place += pitchBytes;
    };
    std::apply([&](const auto&... run) { (paintRow(run), ...); }, kRuns<kPointSize>);
}

template <int kPointSize, class Pixel>
void PaintRelief(const Projection& projection, const ConstRegionRows& colors, const ConstRegionRows& heights,
                 const RegionRows& target) {
    constexpr int kReach = static_cast<int>(kRuns<kPointSize>.size()) - 1;
    const Fixed limitX = LimitOf(target.width - kReach), limitY = LimitOf(target.height - kReach);
    const int firstColumn = projection.fromRight ? colors.width - 1 : 0;
    const std::ptrdiff_t step = projection.fromRight ? -1 : 1;
    const Fixed xStep = step * projection.xPerColumn;

    for (int i = 0; i < colors.height; ++i) {
        const int y = projection.fromBottom ? colors.height - 1 - i : i;
        const Pixel* color = reinterpret_cast<const Pixel*>(colors.Row(y)) + firstColumn;
        const std::uint8_t* height = heights.Row(y) + firstColumn;
        Fixed rowX = projection.origin.x + projection.xPerRow * y + projection.xPerColumn * firstColumn;
        const Fixed rowY = projection.origin.y + projection.yPerRow * y;
        for (int count = colors.width; count > 0; --count) {
            const Projection::Place rise = projection.heights[*height];
            const Fixed pointX = rowX + rise.x, pointY = rowY + rise.y;
            if (pointX < limitX && pointY < limitY)
                PaintPoint<kPointSize>(
                    target.first + WholePart(pointY) * target.pitchBytes + WholePart(pointX) * sizeof(Pixel),
                    target.pitchBytes, *color);
            color += step;
            height += step;
            rowX += xStep;
        }
    }
}

template <class Pixel>
void Render(const char* traceName, const KxROI<Pixel>& colorRegion, const KxROI<KxBW8>& heightRegion,
            KxROI<Pixel>& destination, const View& view, const Scales& scales, int pointSize) {
    AtBoundary(traceName, [&] {
        const ConstRegionRows colors = RowsOf(colorRegion), heights = RowsOf(heightRegion);
        const RegionRows target = RowsOf(destination);
        if (target.first) FillBackground(target, sizeof(Pixel));
        if (!colors.first || !heights.first || !target.first) throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);
        if (heights.width < colors.width || heights.height < colors.height)
            throw Exception(KX_ERROR_SIZE_MISMATCH);

        const Projection projection(view, scales, colors, target);
        switch (pointSize) {
        case 1:
            return PaintRelief<1, Pixel>(projection, colors, heights, target);
        case 4:
            return PaintRelief<4, Pixel>(projection, colors, heights, target);
        case 5:
            return PaintRelief<5, Pixel>(projection, colors, heights, target);
        case 9:
            return PaintRelief<9, Pixel>(projection, colors, heights, target);
        }
        throw Exception(KX_ERROR_PARAMETER_8_OUT_OF_RANGE);
    });
}

}  // namespace

void KxRender3D(KxROI<KxBW8>* pSource, KxROI<KxBW8>* pDestination, float f32Angle1, float f32Angle2,
                float f32ScaleX, float f32ScaleY, float f32ScaleZ, int n32PointSize) {
    Render("KxRender3D ( Gray level)", *pSource, *pSource, *pDestination,
           View(KxToRadians(f32Angle1), KxToRadians(f32Angle2)), {f32ScaleX, f32ScaleY, f32ScaleZ},
           n32PointSize);
}

void KxRender3D(KxROI<KxC24>* pColors, KxROI<KxBW8>* pHeights, KxROI<KxC24>* pDestination, float f32Angle1,
                float f32Angle2, float f32ScaleX, float f32ScaleY, float f32ScaleZ, int n32PointSize) {
    Render("KxRender3D ( Color)", *pColors, *pHeights, *pDestination, View(f32Angle1, f32Angle2),
           {f32ScaleX, f32ScaleY, f32ScaleZ}, n32PointSize);
}
