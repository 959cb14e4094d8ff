// Axes, grid and legend first, curves last: they lie on top.

#include "common/chart.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace App {
namespace {

using Zelkor::DrawPointList;
using Zelkor::RGBColor;

constexpr RGBColor kGrid(225, 225, 225), kAxis(130, 130, 130), kInk(60, 60, 60);
constexpr int kMargin = 8, kGap = 4, kCurveWidth = 2, kLegendLine = 18;

// Ten to some power, times 1, 2 or 5: the least that is no less than `least`.
double NiceStep(double least) {
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (const int factor : {1, 2, 5})
        if (factor * power >= least) return factor * power;
    return 10 * power;
}

// In thousands or millions where all numbers of an axis are.
std::string Number(double value, double step) {
    const char* unit = value == 0 || step < 1e3 ? "" : step < 1e6 ? "k" : "M";
    const double scale = *unit == 0 ? 1 : *unit == 'k' ? 1e3 : 1e6;
    char text[32];
    std::snprintf(text, sizeof text, "%.12g%s", value / scale, unit);
    return text;
}

// Values along one side of a chart. Pixels grow to the right or upwards.
class Axis {
public:
    Axis(double least, double most) : m_least(least), m_most(std::max(most, least + 1)) {}

    // Steps of whole numbers, `pixels` of `length` or more apart. Moves the limits to whole steps if asked.
    void Divide(double pixels, double length, bool isRounded) {
        m_step = NiceStep(std::max(1.0, (m_most - m_least) * pixels / std::max(length, 1.0)));
        if (!isRounded) return;
        m_least = std::floor(m_least / m_step) * m_step;
        m_most = std::ceil(m_most / m_step) * m_step;
    }
    void Place(int from, int to) {
        m_from = from;
        m_to = to;
    }
    int Pixel(double value) const {
        return m_from +
               static_cast<int>(std::lround((value - m_least) / (m_most - m_least) * (m_to - m_from)));
    }
    double Step() const { return m_step; }
    std::vector<double> Ticks() const {
        std::vector<double> ticks;
        for (double tick = std::ceil(m_least / m_step); tick * m_step <= m_most; ++tick)
            ticks.push_back(tick * m_step);
        return ticks;
    }

private:
    double m_least, m_most, m_step = 1;
    int m_from = 0, m_to = 1;
};

int Width(const Paper& paper, const std::string& text) {
    return text.empty() ? 0 : static_cast<int>(paper.surface.GetTextExtent(text).x);
}

int WidestNumber(const Paper& paper, const Axis& axis) {
    int widest = 0;
    for (const double tick : axis.Ticks()) widest = std::max(widest, Width(paper, Number(tick, axis.Step())));
    return widest;
}

// From 0 unless that would flatten values that lie close together far from it.
Axis RangeOf(const std::vector<Curve>& curves) {
    double least = HUGE_VAL, most = -HUGE_VAL;
    for (const Curve& curve : curves)
        for (const double value : curve.values) {
            least = std::min(least, value);
            most = std::max(most, value);
        }
    if (least > most) return {0, 1};
    const bool isFar = least < most && most - least < most / 4;
    return {isFar ? least : std::min(least, 0.0), most};
}

// The least and the most of the values that share a column of pixels, joined to the columns before.
void DrawCurve(const Paper& paper, const Axis& across, const Axis& upwards, const Curve& curve) {
    const auto line = [&](int x0, int y0, int x1, int y1) {
        paper.surface.DrawLine(x0, y0, x1, y1, RGBColor::Current);
    };
    paper.setPen(curve.color, kCurveWidth);
    const std::size_t count = curve.values.size();
    int lastX = 0, lastY = 0;
    for (std::size_t i = 0; i < count;) {
        const bool isFirst = i == 0;
        const int x = across.Pixel(static_cast<double>(i)), first = upwards.Pixel(curve.values[i]);
        int last = first, top = first, bottom = first;
        for (++i; i < count && across.Pixel(static_cast<double>(i)) == x; ++i) {
            last = upwards.Pixel(curve.values[i]);
            top = std::min(top, last);
            bottom = std::max(bottom, last);
        }
        if (!isFirst) line(lastX, lastY, x, first);
        if (top != bottom || count == 1) line(x, top, x, bottom);
        lastX = x;
        lastY = last;
    }
}

RGBColor Pale(const RGBColor& color) {
    const auto pale = [](int component) { return 255 - (255 - component) / 4; };
    return {pale(color.m_n32Red), pale(color.m_n32Green), pale(color.m_n32Blue)};
}

void FillBelow(const Paper& paper, const Axis& across, const Axis& upwards, const Curve& curve) {
    DrawPointList points(static_cast<int>(curve.values.size()) + 2);
    const auto add = [&](std::size_t index, double value) {
        points.Add({double(across.Pixel(static_cast<double>(index))), double(upwards.Pixel(value))});
    };
    add(0, 0);
    for (std::size_t i = 0; i < curve.values.size(); ++i) add(i, curve.values[i]);
    add(curve.values.size() - 1, 0);
    paper.surface.FillPolygon(points, Pale(curve.color), Pale(curve.color));
}

// From the right to the left, as far as there is room.
void DrawLegend(const Paper& paper, int left, int right, int top, int lineHeight,
                const std::vector<Curve>& curves) {
    for (auto curve = curves.rbegin(); curve != curves.rend() && !curve->name.empty(); ++curve) {
        const int width = Width(paper, curve->name) + kGap + kLegendLine;
        if (right - width < left) return;
        paper.setPen(curve->color, kCurveWidth);
        const int y = top + lineHeight / 2;
        paper.surface.DrawLine(right - width, y, right - width + kLegendLine, y, RGBColor::Current);
        paper.surface.DrawText(curve->name, right - width + kLegendLine + kGap, top, kInk);
        right -= width + 2 * kMargin;
    }
}

}  // namespace

void DrawChart(const Paper& paper, const Zelkor::Kalvo::GenericRoiExtent& box, const Chart& chart) {
    auto& surface = paper.surface;
    paper.setPen(RGBColor::White, 1);
    surface.FillRectangle(box.m_n32OrgX, box.m_n32OrgY, box.m_n32Width - 1, box.m_n32Height - 1,
                          RGBColor::White, RGBColor::White);

    std::size_t count = 0;
    for (const Curve& curve : chart.curves) count = std::max(count, curve.values.size());
    const int lineHeight = static_cast<int>(surface.GetTextExtent("0").y);
    const int titleTop = box.m_n32OrgY + kGap;
    const int top = titleTop + lineHeight + kMargin;
    const int bottom = box.m_n32OrgY + box.m_n32Height - 2 * lineHeight - 2 * kGap - kMargin;
    Axis upwards = RangeOf(chart.curves), across(0, static_cast<double>(count) - 1);
    upwards.Divide(2 * lineHeight, bottom - top, true);
    const int left = box.m_n32OrgX + kMargin + WidestNumber(paper, upwards) + kGap;
    const int lastNumber = Width(paper, Number(static_cast<double>(count), 1));
    const int right = box.m_n32OrgX + box.m_n32Width - kMargin - lastNumber / 2;
    if (count == 0 || right - left < kMargin || bottom - top < kMargin) return;
    across.Divide(lastNumber + 2 * kMargin, right - left, false);
    upwards.Place(bottom, top);
    across.Place(left, right);

    for (const double tick : upwards.Ticks()) {
        const std::string number = Number(tick, upwards.Step());
        const int y = upwards.Pixel(tick);
        surface.DrawLine(left, y, right, y, kGrid);
        surface.DrawText(number, left - kGap - Width(paper, number), y - lineHeight / 2, kInk);
    }
    for (const double tick : across.Ticks()) {
        const std::string number = Number(tick, across.Step());
        const int x = across.Pixel(tick);
        surface.DrawLine(x, top, x, bottom, kGrid);
        surface.DrawText(number, x - Width(paper, number) / 2, bottom + kGap, kInk);
    }
    surface.DrawText(chart.upwards, box.m_n32OrgX + kMargin, titleTop, kInk);
    surface.DrawText(chart.across, (left + right - Width(paper, chart.across)) / 2,
                     bottom + 2 * kGap + lineHeight, kInk);
    DrawLegend(paper, box.m_n32OrgX + 2 * kMargin + Width(paper, chart.upwards), right, titleTop, lineHeight,
               chart.curves);
    if (chart.isFilled)
        for (const Curve& curve : chart.curves) FillBelow(paper, across, upwards, curve);
    paper.setPen(kAxis, 1);
    surface.DrawLine(left, top, left, bottom, kAxis);
    surface.DrawLine(left, bottom, right, bottom, kAxis);
    for (const Curve& curve : chart.curves) DrawCurve(paper, across, upwards, curve);
}

}  // namespace App
