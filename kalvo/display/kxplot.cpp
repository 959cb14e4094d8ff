// The ranges of a plot, the mapping to pixels, and the axes on a surface.

#include "kalvo/display/kxplot.h"

#include <algorithm>
#include <cmath>

#include "kalvo/display/plotaxes.h"
#include "kalvo/frame/boundary.h"
#include "kalvo/frame/roundtoint.h"

using namespace Zelkor::Kalvo;
using Zelkor::RGBColor;

namespace {

struct Place {
    double x;
    double y;
};

// The top-left corner of a label. `width` is asked only where the place depends on it.
template <class Width>
Place PlaceOf(PlotLabel label, const Width& width, const PlotLayout& layout, std::int64_t position) {
    const PlotBox &box = layout.box, &area = layout.area;
    const auto text = static_cast<double>(layout.textHeight);
    const auto at = static_cast<double>(position), left = static_cast<double>(area.left);
    const auto boxRight = static_cast<double>(box.right);
    const auto belowArea = static_cast<double>(area.bottom + layout.textHeight);
    const auto halfDigits = layout.yDigitsHeight / 2;
    const auto firstRow = static_cast<double>(box.top + halfDigits);
    switch (label) {
    case PlotLabel::XTick:
        return {at - width() / 2, belowArea};
    case PlotLabel::XEnd:
        return {boxRight - width() - text, belowArea};
    case PlotLabel::YTick:
        return {left - width() - text, at - static_cast<double>(halfDigits)};
    case PlotLabel::YTop:
        return {left - width() - text, firstRow};
    case PlotLabel::YBottom:
        return {left - static_cast<double>(layout.yDigitsWidth),
                static_cast<double>(area.bottom - halfDigits)};
    case PlotLabel::XTitle:
        return {boxRight - std::trunc(layout.xTitleWidth) - text,
                static_cast<double>(area.bottom) - 1.5 * text};
    case PlotLabel::YTitle:
        return {left + static_cast<double>(layout.textHeight / 2), firstRow};
    }
    return {};
}

class SurfaceCanvas final : public PlotCanvas {
public:
    explicit SurfaceCanvas(Zelkor::DrawAdapter& surface) : m_surface(surface) {}

    Zelkor::DrawPoint Measure(const std::string& text) override { return m_surface.GetTextExtent(text); }
    void DrawLine(std::int64_t x0, std::int64_t y0, std::int64_t x1, std::int64_t y1) override {
        m_surface.DrawLine(ClampToInt(x0), ClampToInt(y0), ClampToInt(x1), ClampToInt(y1), RGBColor::Black);
    }
    void FillPolygon(const Zelkor::DrawPointList& points) override {
        m_surface.FillPolygon(points, RGBColor::Black, RGBColor::Black);
    }
    void DrawLabel(PlotLabel label, const std::string& text, const PlotLayout& layout,
                   std::int64_t position) override {
        const Place place = PlaceOf(
            label, [&] { return Measure(text).x; }, layout, position);
        m_surface.DrawText(text, TruncateToInt(place.x), TruncateToInt(place.y), RGBColor::Black);
    }
    double LongestYLabel(const PlotRanges& ranges) const override { return ranges.yMax; }

private:
    Zelkor::DrawAdapter& m_surface;
};

}  // namespace

void KxPlot::SetYRange(int n32YMin, unsigned int un32YMax) {
    if (std::int64_t{un32YMax} <= n32YMin)
        return Report(KX_ERROR_PARAMETERS_OUT_OF_RANGE, "KxPlot::SetYRange");
    m_f64YMin = n32YMin;
    m_f64YMax = un32YMax;
    m_bAutoYRange = 0;
}

void KxPlot::FitXRange(unsigned int un32NumElements) {
    m_f64XMin = 0;
    m_f64XMax = std::max(double{1} * un32NumElements - 1, 1.0);
}

void KxPlot::FitYRange(double f64Least, double f64Most) {
    m_f64YMin = f64Least;
    m_f64YMax = f64Most == f64Least ? f64Most + 1 : f64Most;
}

int KxPlot::XView(double f64X) const {
    const double size = double{1} * m_n32Right - m_n32Left;
    return TruncateToInt(std::trunc(size * (f64X - m_f64XMin) / (m_f64XMax - m_f64XMin)) + m_n32Left);
}

int KxPlot::YView(double f64Y) const {
    const double size = double{1} * m_n32Top - m_n32Bottom;
    return TruncateToInt(std::trunc(size * (f64Y - m_f64YMin) / (m_f64YMax - m_f64YMin)) + m_n32Bottom);
}

void KxPlot::DrawAnnotations(Zelkor::DrawAdapter* pSurface, int n32Width, int n32Height, int n32X, int n32Y,
                             const char* pszXTitle, const char* pszYTitle) {
    SurfaceCanvas canvas(*pSurface);
    DrawAnnotations(canvas, n32Width, n32Height, n32X, n32Y, pszXTitle, pszYTitle);
}

void KxPlot::DrawAnnotations(PlotCanvas& canvas, int n32Width, int n32Height, int n32X, int n32Y,
                             const char* pszXTitle, const char* pszYTitle) {
    AtBoundary("KxPlot::DrawAnnotations", [&] {
        const std::int64_t x = n32X, y = n32Y;
        const PlotBox box{x, y, x + std::max(n32Width, 0), y + std::max(n32Height, 0)};
        const PlotTitles titles{pszXTitle ? pszXTitle : "", pszYTitle ? pszYTitle : ""};
        const PlotBox area = DrawAxes(canvas, {m_f64XMin, m_f64XMax, m_f64YMin, m_f64YMax}, box, titles);
        m_n32Left = ClampToInt(area.left);
        m_n32Right = ClampToInt(area.right);
        m_n32Bottom = ClampToInt(area.bottom);
        m_n32Top = ClampToInt(area.top);
    });
}
