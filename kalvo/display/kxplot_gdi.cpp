// The axes of a plot drawn directly on a device context.

#include <vector>

#include "kalvo/display/gdi_arguments.h"
#include "kalvo/display/kxplot.h"
#include "kalvo/display/plotaxes.h"
#include "kalvo/display/selected_object.h"
#include "kalvo/frame/roundtoint.h"

using namespace Zelkor::Kalvo;
using Zelkor::DrawPoint;
using Zelkor::DrawPointList;

namespace {

// A reference point, and where a text lies as seen from it.
struct Placement {
    UINT align;
    std::int64_t x;
    std::int64_t y;
};

Placement PlacementOf(PlotLabel label, const PlotLayout& layout, std::int64_t position) {
    const PlotBox &box = layout.box, &area = layout.area;
    const std::int64_t text = layout.textHeight;
    switch (label) {
    case PlotLabel::XTick:
        return {TA_CENTER | TA_TOP, position, area.bottom + text};
    case PlotLabel::XEnd:
        return {TA_RIGHT, box.right - text / 2, area.bottom + text};
    case PlotLabel::YTick:
        return {TA_RIGHT | TA_BASELINE, area.left - text, position + text / 3};
    case PlotLabel::YTop:
        return {TA_RIGHT, area.left - text, box.top + text / 2};
    case PlotLabel::YBottom:
        return {TA_RIGHT, area.left - text, area.bottom + text};
    case PlotLabel::XTitle:
        return {TA_RIGHT | TA_BASELINE, box.right - text / 2, layout.axisRow - text};
    case PlotLabel::YTitle:
        return {TA_LEFT | TA_TOP, area.left + text, box.top + text / 2};
    }
    return {};
}

// Draws in black on what is there; at the end of its life the context is as it was.
class ContextCanvas final : public PlotCanvas {
public:
    explicit ContextCanvas(HDC hdc)
        : m_hdc(hdc),
          m_backgroundMode(SetBkMode(hdc, TRANSPARENT)),
          m_textAlign(GetTextAlign(hdc)),
          m_pen(hdc, GetStockObject(BLACK_PEN), SelectedObject::Owner::Other),
          m_brush(hdc, GetStockObject(BLACK_BRUSH), SelectedObject::Owner::Other) {}
    ~ContextCanvas() {
        SetBkMode(m_hdc, m_backgroundMode);
        SetTextAlign(m_hdc, m_textAlign);
    }
    ContextCanvas(const ContextCanvas&) = delete;
    ContextCanvas& operator=(const ContextCanvas&) = delete;

    DrawPoint Measure(const std::string& text) override {
        SIZE size{};
        GetTextExtentPoint32A(m_hdc, text.data(), LengthOf(text), &size);
        return {double{1} * size.cx, double{1} * size.cy};
    }
    void DrawLine(std::int64_t x0, std::int64_t y0, std::int64_t x1, std::int64_t y1) override {
        MoveToEx(m_hdc, ClampToInt(x0), ClampToInt(y0), nullptr);
        LineTo(m_hdc, ClampToInt(x1), ClampToInt(y1));
    }
    void FillPolygon(const DrawPointList& points) override {
        const std::vector<POINT> corners = ToPoints(points);
        Polygon(m_hdc, corners.data(), points.GetCount());
    }
    void DrawLabel(PlotLabel label, const std::string& text, const PlotLayout& layout,
                   std::int64_t position) override {
        const Placement placement = PlacementOf(label, layout, position);
        SetTextAlign(m_hdc, placement.align);
        TextOutA(m_hdc, ClampToInt(placement.x), ClampToInt(placement.y), text.data(), LengthOf(text));
    }
    double LongestYLabel(const PlotRanges& ranges) const override { return ranges.yMax - ranges.yMin; }

private:
    HDC m_hdc;
    int m_backgroundMode;
    UINT m_textAlign;
    SelectedObject m_pen;
    SelectedObject m_brush;
};

}  // namespace

void KxPlot::DrawAnnotations(HDC hDC, int n32Width, int n32Height, int n32X, int n32Y, const char* pszXTitle,
                             const char* pszYTitle) {
    ContextCanvas canvas(hDC);
    DrawAnnotations(canvas, n32Width, n32Height, n32X, n32Y, pszXTitle, pszYTitle);
}
