// Lays the axes of a plot out, chooses their ticks, and draws them part by part.

#include "kalvo/display/plotaxes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "kalvo/frame/roundtoint.h"

namespace Zelkor::Kalvo {
namespace {

// No screen has room for as many labels. Whatever size and range are given, drawing them comes to an end.
constexpr std::int64_t kMostTicks = 10000;
constexpr int kMostStepChanges = 1000;

std::string NumberText(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.0f", value);
    return text;
}

// As many digits as the labels up to `value` may have, and one more.
std::string DigitsSample(double value) {
    constexpr const char kDigits[] = "01234567890123456789";
    const int digits = value > 1 ? TruncateToInt(std::ceil(std::log10(value))) : 0;
    return {kDigits, static_cast<std::size_t>(std::clamp(digits, 1, 19)) + 1};
}

// Ticks at the multiples of a step, which is 1, 2 or 5 times a power of ten.
struct Ticks {
    // As many as `room` pixels have place for, if each takes `size` pixels.
    Ticks(std::int64_t room, std::int64_t size, double range)
        : most(std::clamp<std::int64_t>(room / std::max<std::int64_t>(size, 1), 1, kMostTicks)) {
        for (int i = 0; i < kMostStepChanges && static_cast<double>(most) * step < range; ++i)
            step *= i % 3 == 1 ? 2.5 : 2;
    }

    std::int64_t most;
    double step = 1;
};

class Axes {
public:
    Axes(PlotCanvas& canvas, const PlotRanges& ranges, const PlotBox& box, const PlotTitles& titles)
        : m_canvas(canvas), m_ranges(ranges), m_titles(titles) {
        m_layout.box = box;
    }

    PlotBox Draw() {
        LayOut();
        DrawXAxis();
        DrawYAxis();
        DrawXTicks();
        DrawYTicks();
        DrawLabel(PlotLabel::XTitle, m_titles.x);
        DrawLabel(PlotLabel::YTitle, m_titles.y);
        return m_layout.area;
    }

private:
    void LayOut();
    void DrawXAxis();
    void DrawYAxis();
    void DrawXTicks();
    void DrawYTicks();

    double WidthOf(double number) { return m_canvas.Measure(NumberText(number)).x; }
    void DrawLabel(PlotLabel label, const std::string& text, std::int64_t position = 0) {
        m_canvas.DrawLabel(label, text, m_layout, position);
    }
    void DrawNumber(PlotLabel label, double number, std::int64_t position = 0) {
        DrawLabel(label, NumberText(number), position);
    }

    PlotCanvas& m_canvas;
    const PlotRanges& m_ranges;
    const PlotTitles& m_titles;
    PlotLayout m_layout;
    double m_scaleX = 0;  // pixels for a value of 1; the vertical one is negative
    double m_scaleY = 0;
};

void Axes::LayOut() {
    const double leastWidth = WidthOf(m_ranges.yMin);
    const double yLabelWidth = std::max(leastWidth, WidthOf(m_ranges.yMax));
    const DrawPoint title = m_canvas.Measure(m_titles.x);
    const std::int64_t text = std::max(TruncateToInt(title.y), 0);
    m_layout.textHeight = text;
    m_layout.xTitleWidth = title.x;

    const PlotBox& box = m_layout.box;
    PlotBox& area = m_layout.area;
    area.left =
        TruncateToInt(static_cast<double>(box.left + text / 2) + yLabelWidth + static_cast<double>(text));
    area.right =
        TruncateToInt(static_cast<double>(box.right - text / 2) - title.x - static_cast<double>(text));
    area.bottom = box.bottom - text / 2 - 2 * text;
    area.top = box.top + text / 2 + 2 * text;
    // Where there is no room between the labels, the area is empty, but it stays in the box.
    area.left = std::clamp(area.left, box.left, box.right);
    area.right = std::clamp(area.right, area.left, box.right);
    area.top = std::clamp(area.top, box.top, box.bottom);
    area.bottom = std::clamp(area.bottom, area.top, box.bottom);

    m_scaleX = static_cast<double>(area.right - area.left) / (m_ranges.xMax - m_ranges.xMin);
    m_scaleY = static_cast<double>(area.top - area.bottom) / (m_ranges.yMax - m_ranges.yMin);
    m_layout.axisRow = area.bottom - TruncateToInt(m_scaleY * m_ranges.yMin);
}

void Axes::DrawXAxis() {
    const std::int64_t text = m_layout.textHeight, row = m_layout.axisRow;
    const std::int64_t tip = m_layout.box.right - text / 2, base = tip - text;
    DrawPointList arrow(3);
    arrow.Add({static_cast<double>(tip), static_cast<double>(row)});
    arrow.Add({static_cast<double>(base), static_cast<double>(row - text / 4)});
    arrow.Add({static_cast<double>(base), static_cast<double>(row + text / 4)});
    m_canvas.FillPolygon(arrow);
    for (const std::int64_t line : {row, row + 1})
        m_canvas.DrawLine(m_layout.box.left + text / 2, line, base, line);
}

void Axes::DrawYAxis() {
    const std::int64_t text = m_layout.textHeight, column = m_layout.area.left;
    const std::int64_t tip = m_layout.box.top + text / 2, base = tip + text;
    DrawPointList arrow(3);
    arrow.Add({static_cast<double>(column), static_cast<double>(tip)});
    arrow.Add({static_cast<double>(column - text / 4), static_cast<double>(base)});
    arrow.Add({static_cast<double>(column + text / 4), static_cast<double>(base)});
    m_canvas.FillPolygon(arrow);
    for (const std::int64_t line : {column, column + 1})
        m_canvas.DrawLine(line, m_layout.box.bottom - text / 2, line, base);
}

void Axes::DrawXTicks() {
    const PlotBox& area = m_layout.area;
    const double last = m_ranges.xMax;
    const auto width = TruncateToInt(m_canvas.Measure(DigitsSample(last)).x);
    const Ticks ticks(area.right - area.left, width, last);
    double value = ticks.step;
    for (std::int64_t i = 0; i < ticks.most && value <= last; ++i, value += ticks.step) {
        const std::int64_t column = TruncateToInt(value * m_scaleX) + area.left;
        m_canvas.DrawLine(column, area.top, column, area.bottom + m_layout.textHeight / 2);
        DrawNumber(PlotLabel::XTick, value, column);
    }
    if (value >= last + ticks.step) return;
    m_canvas.DrawLine(area.right, area.top, area.right, area.bottom);
    DrawNumber(PlotLabel::XEnd, last);
}

void Axes::DrawYTicks() {
    const PlotBox& area = m_layout.area;
    const DrawPoint digits = m_canvas.Measure(DigitsSample(m_canvas.LongestYLabel(m_ranges)));
    m_layout.yDigitsWidth = TruncateToInt(digits.x);
    m_layout.yDigitsHeight = TruncateToInt(digits.y);
    const Ticks ticks(area.bottom - area.top, m_layout.yDigitsHeight, m_ranges.yMax - m_ranges.yMin);
    const double lowest = std::ceil(m_ranges.yMin / ticks.step);
    const double highest = std::floor(m_ranges.yMax / ticks.step);

    if (highest * ticks.step != m_ranges.yMax) {
        m_canvas.DrawLine(area.right, area.top, area.left, area.top);
        DrawNumber(PlotLabel::YTop, m_ranges.yMax);
    }
    double multiple = highest;
    for (std::int64_t i = 0; i <= ticks.most && multiple >= lowest; ++i, --multiple) {
        if (multiple == 0) continue;  // the x axis is there
        const double value = multiple * ticks.step;
        const std::int64_t row = TruncateToInt((value - m_ranges.yMin) * m_scaleY) + area.bottom;
        m_canvas.DrawLine(area.right, row, area.left - m_layout.textHeight / 2, row);
        DrawNumber(PlotLabel::YTick, value, row);
    }
    if (lowest * ticks.step != m_ranges.yMin) {
        m_canvas.DrawLine(area.right, area.bottom, area.left, area.bottom);
        DrawNumber(PlotLabel::YBottom, m_ranges.yMin);
    }
}

}  // namespace

PlotBox DrawAxes(PlotCanvas& canvas, const PlotRanges& ranges, const PlotBox& box, const PlotTitles& titles) {
    return Axes(canvas, ranges, box, titles).Draw();
}

}  // namespace Zelkor::Kalvo
