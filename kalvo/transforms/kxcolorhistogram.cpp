// The colour cube: points with a depth, of which the nearest is kept.

#include "kalvo/transforms/kxcolorhistogram.h"

#include <limits>
#include <vector>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/checkedsize.h"
#include "kalvo/measure/kxangle.h"
#include "kalvo/transforms/projection.h"

using namespace Zelkor::Kalvo;

namespace {

// One projected value of a point of the cube; the middle of the cube goes to the middle of `extent`.
class Axis {
public:
    Axis(float u, float v, float w, int extent)
        : m_u(ToFixed(u)),
          m_v(ToFixed(v)),
          m_w(ToFixed(w)),
          m_origin(ToFixed((static_cast<float>(extent) - 255 * (u + v + w)) / 2)) {}

    Fixed Project(KxC24 point) const {
        return m_u * point.m_un8C0 + m_v * point.m_un8C1 + m_w * point.m_un8C2 + m_origin;
    }

private:
    Fixed m_u, m_v, m_w, m_origin;
};

struct Scales {
    float u, v, w;
};

// The destination with a depth behind every pixel.
class CubeView {
public:
    CubeView(const View& view, const Scales& scales, const RegionRows& target)
        : m_x(view.cb * scales.u, view.sb * view.sa * scales.v, -view.sb * view.ca * scales.w, target.width),
          m_y(0, view.ca * scales.v, view.sa * scales.w, target.height),
          m_depth(view.sb * scales.u, -view.cb * view.sa * scales.v, view.cb * view.ca * scales.w, 255),
          m_target(target),
          m_limitX(LimitOf(target.width)),
          m_limitY(LimitOf(target.height)),
          m_depths(CheckedSize(target.width, target.height, KX_ERROR_ALLOCATION),
                   std::numeric_limits<std::int16_t>::min()) {}

    void Plot(KxC24 point, KxC24 color) {
        const Fixed x = m_x.Project(point), y = m_y.Project(point);
        if (x >= m_limitX || y >= m_limitY) return;
        const std::int64_t column = WholePart(x), row = WholePart(y);
        const auto depth = static_cast<std::int16_t>(WholePart(m_depth.Project(point)));
        std::int16_t& nearest = m_depths[row * m_target.width + column];
        if (depth <= nearest) return;
        nearest = depth;
        reinterpret_cast<KxC24*>(m_target.first + row * m_target.pitchBytes)[column] = color;
    }

private:
    Axis m_x, m_y, m_depth;
    RegionRows m_target;
    Fixed m_limitX, m_limitY;
    std::vector<std::int16_t> m_depths;
};

// Every point of the edges along one axis, given by its coordinates on the two other axes and on this one.
template <class Operation>
void ForEachEdgePoint(const Operation& operation) {
    for (const std::uint8_t first : {0, 255})
        for (const std::uint8_t second : {0, 255})
            for (int along = 0; along < 256; ++along)
                operation(first, second, static_cast<std::uint8_t>(along));
}

// Of points of the same depth the first one stays, so the order of the edges counts.
void PlotEdges(CubeView& cube) {
    const auto plot = [&](KxC24 point) { cube.Plot(point, point); };
    ForEachEdgePoint([&](std::uint8_t u, std::uint8_t v, std::uint8_t w) { plot({u, v, w}); });
    ForEachEdgePoint([&](std::uint8_t v, std::uint8_t w, std::uint8_t u) { plot({u, v, w}); });
    ForEachEdgePoint([&](std::uint8_t w, std::uint8_t u, std::uint8_t v) { plot({u, v, w}); });
}

void Render(const char* traceName, const KxROI<KxC24>& colorRegion, const KxROI<KxC24>& pointRegion,
            KxROI<KxC24>& destination, const View& view, const Scales& scales) {
    AtBoundary(traceName, [&] {
        const ConstRegionRows colors = RowsOf(colorRegion), points = RowsOf(pointRegion);
        const RegionRows target = RowsOf(destination);
        if (!colors.first || !points.first || !target.first) throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);
        if (points.width < colors.width || points.height < colors.height)
            throw Exception(KX_ERROR_SIZE_MISMATCH);

        CubeView cube(view, scales, target);
        FillBackground(target, sizeof(KxC24));
        for (int y = 0; y < colors.height; ++y) {
            const auto* color = reinterpret_cast<const KxC24*>(colors.Row(y));
            const auto* point = reinterpret_cast<const KxC24*>(points.Row(y));
            for (int x = 0; x < colors.width; ++x) cube.Plot(point[x], color[x]);
        }
        PlotEdges(cube);
    });
}

}  // namespace

void KxRenderColorHistogram(KxROI<KxC24>* pSource, KxROI<KxC24>* pDestination, float f32Angle1,
                            float f32Angle2, float f32Scale0, float f32Scale1, float f32Scale2) {
    Render("KxRenderColorHistogram", *pSource, *pSource, *pDestination,
           View(KxToRadians(f32Angle1), KxToRadians(f32Angle2)), {f32Scale0, f32Scale1, f32Scale2});
}

void KxRenderColorHistogram(KxROI<KxC24>* pColors, KxROI<KxC24>* pCoordinates, KxROI<KxC24>* pDestination,
                            float f32Angle1, float f32Angle2, float f32Scale0, float f32Scale1,
                            float f32Scale2) {
    Render("KxRenderColorHistogram ( RGB, System)", *pColors, *pCoordinates, *pDestination,
           View(KxToRadians(f32Angle1), KxToRadians(f32Angle2)), {f32Scale0, f32Scale1, f32Scale2});
}
