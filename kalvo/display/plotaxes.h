#pragma once
// The axes of a plot: their layout and the order of their parts, whatever they are drawn with.

#include <cstdint>
#include <string>

#include "kalvo/display/kxdrawadapter.h"

namespace Zelkor::Kalvo {

struct PlotRanges {
    double xMin;
    double xMax;
    double yMin;
    double yMax;
};

struct PlotTitles {
    std::string x;
    std::string y;
};

// The rectangle that a plot is given, in pixels.
struct PlotBox {
    std::int64_t left;
    std::int64_t top;
    std::int64_t right;   // one beyond the last column
    std::int64_t bottom;  // one beyond the last row
};

// Where the parts of a plot lie, in pixels. Wide numbers, so that adding to them never overflows.
struct PlotLayout {
    PlotBox box;
    PlotBox area;                   // between the axes; `right` and `bottom` are its last column and row
    std::int64_t axisRow = 0;       // of the x axis
    std::int64_t textHeight = 0;    // the measure of all margins
    double xTitleWidth = 0;         // may have a fraction, like all widths of texts
    std::int64_t yDigitsWidth = 0;  // of as many digits as a label of the y axis may have
    std::int64_t yDigitsHeight = 0;
};

enum class PlotLabel { XTick, XEnd, YTick, YTop, YBottom, XTitle, YTitle };

// What axes are drawn with. Rows and columns that no pixel has may occur.
class PlotCanvas {
public:
    virtual DrawPoint Measure(const std::string& text) = 0;
    virtual void DrawLine(std::int64_t x0, std::int64_t y0, std::int64_t x1, std::int64_t y1) = 0;
    virtual void FillPolygon(const DrawPointList& points) = 0;
    // Draws a text at its place.
    // @param position  the column or row of a tick
    virtual void DrawLabel(PlotLabel label, const std::string& text, const PlotLayout& layout,
                           std::int64_t position) = 0;
    // The number whose digits the labels of the y axis are expected to have.
    virtual double LongestYLabel(const PlotRanges& ranges) const = 0;

protected:
    ~PlotCanvas() = default;
};

// Lays axes out in `box` and draws them. Returns the area between them.
PlotBox DrawAxes(PlotCanvas& canvas, const PlotRanges& ranges, const PlotBox& box, const PlotTitles& titles);

}  // namespace Zelkor::Kalvo
