// Pixels, shapes and texts on a device context. Images have a source of their own.

#include "kalvo/display/kxgdidrawadapter.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

#include "kalvo/base/clock.h"
#include "kalvo/display/gdi_arguments.h"
#include "kalvo/display/selected_object.h"
#include "kalvo/frame/boundary.h"
#include "kalvo/frame/roundtoint.h"

namespace Zelkor {

using Kalvo::LengthOf;
using Kalvo::SelectedObject;
using Kalvo::TruncateToInt;
using Owner = SelectedObject::Owner;

namespace {

// The low 8 bits of each component.
COLORREF ColorRef(const RGBColor& color) {
    return RGB(static_cast<BYTE>(color.m_n32Red), static_cast<BYTE>(color.m_n32Green),
               static_cast<BYTE>(color.m_n32Blue));
}

// The pen, brush or font stays selected for as long as the result lives. A current one needs nothing.
SelectedObject SelectPen(HDC hdc, const RGBColor& color) {
    return {hdc, color == RGBColor::Current ? nullptr : CreatePen(PS_SOLID, 1, ColorRef(color)), Owner::Self};
}

SelectedObject SelectBrush(HDC hdc, const RGBColor& color) {
    return {hdc, color == RGBColor::Current ? nullptr : CreateSolidBrush(ColorRef(color)), Owner::Self};
}

SelectedObject SelectNoBrush(HDC hdc) { return {hdc, GetStockObject(NULL_BRUSH), Owner::Other}; }

SelectedObject SelectTextFont(HDC hdc) {
    constexpr int kPoints = 10;
    constexpr int kPointsPerInch = 72;
    const int pixels = MulDiv(kPoints, GetDeviceCaps(hdc, LOGPIXELSY), kPointsPerInch);
    return {hdc, CreateFontA(-pixels, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, "MS Sans Serif"), Owner::Self};
}

LOGPEN CurrentPen(HDC hdc) {
    LOGPEN pen{};
    GetObjectA(GetCurrentObject(hdc, OBJ_PEN), sizeof pen, &pen);
    return pen;
}

// The edge beyond the last of `size` + 1 pixels.
int EdgeBeyond(int origin, int size) { return Kalvo::ClampToInt(std::int64_t{origin} + size + 1); }

// A shape that fills a box is drawn by one function of the platform, whatever pen and brush are selected.
using BoxFunction = BOOL (*)(HDC, int, int, int, int);

void DrawBox(BoxFunction function, HDC hdc, int x, int y, int width, int height) {
    function(hdc, x, y, EdgeBeyond(x, width), EdgeBeyond(y, height));
}

void DrawPoints(HDC hdc, const DrawPointList& points) {
    const std::vector<POINT> vertices = Kalvo::ToPoints(points);
    Polygon(hdc, vertices.data(), points.GetCount());
}

// The size of lines of text in the font that is selected; an empty line has no height.
DrawPoint MeasureText(HDC hdc, std::string_view text) {
    DrawPoint extent{0, 0};
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        SIZE size{};
        if (line.empty() || !GetTextExtentPoint32A(hdc, line.data(), LengthOf(line), &size)) continue;
        extent.x = std::max(extent.x, double{1} * size.cx);
        extent.y += size.cy;
    }
    return extent;
}

// Puts colours and background mode back as they were.
class KeptTextColors {
public:
    explicit KeptTextColors(HDC hdc)
        : m_hdc(hdc),
          m_textColor(GetTextColor(hdc)),
          m_backgroundColor(GetBkColor(hdc)),
          m_backgroundMode(GetBkMode(hdc)) {}
    ~KeptTextColors() {
        SetTextColor(m_hdc, m_textColor);
        SetBkColor(m_hdc, m_backgroundColor);
        SetBkMode(m_hdc, m_backgroundMode);
    }
    KeptTextColors(const KeptTextColors&) = delete;
    KeptTextColors& operator=(const KeptTextColors&) = delete;

private:
    HDC m_hdc;
    COLORREF m_textColor;
    COLORREF m_backgroundColor;
    int m_backgroundMode;
};

// Draws lines of text at (x, y). `paintBackground` gets the rectangle before the text goes into it.
template <class Paint>
void DrawLines(HDC hdc, const std::string& text, int x, int y, const RGBColor& color,
               const Paint& paintBackground) {
    const KeptTextColors kept(hdc);
    const SelectedObject font = SelectTextFont(hdc);
    SetBkMode(hdc, TRANSPARENT);
    if (color != RGBColor::Current) SetTextColor(hdc, ColorRef(color));
    const DrawPoint extent = MeasureText(hdc, text);
    RECT box{x, y, TruncateToInt(x + extent.x + 4.0), TruncateToInt(y + extent.y + 2.0)};
    paintBackground(box);
    DrawTextA(hdc, text.data(), LengthOf(text), &box, DT_CENTER | DT_VCENTER);
}

}  // namespace

void GDIDrawAdapter::SetPixel(int n32X, int n32Y, const RGBColor& color, double f64Alpha) {
    const COLORREF drawn = color == RGBColor::Current ? CurrentPen(m_hDC).lopnColor : ColorRef(color);
    if (f64Alpha >= 1) {
        ::SetPixel(m_hDC, n32X, n32Y, drawn);
        return;
    }
    const double alpha = f64Alpha > 0 ? f64Alpha : 0;
    const COLORREF present = ::GetPixel(m_hDC, n32X, n32Y);
    const auto mix = [alpha](BYTE under, BYTE over) {
        return static_cast<BYTE>((1 - alpha) * under + alpha * over);
    };
    ::SetPixel(m_hDC, n32X, n32Y,
               RGB(mix(GetRValue(present), GetRValue(drawn)), mix(GetGValue(present), GetGValue(drawn)),
                   mix(GetBValue(present), GetBValue(drawn))));
}

void GDIDrawAdapter::DrawLine(int n32X0, int n32Y0, int n32X1, int n32Y1, const RGBColor& color) {
    {
        const SelectedObject pen = SelectPen(m_hDC, color);
        MoveToEx(m_hDC, n32X0, n32Y0, nullptr);
        LineTo(m_hDC, n32X1, n32Y1);
    }
    SetPixel(n32X1, n32Y1, color, 1.0);
}

void GDIDrawAdapter::DrawArc(int n32X, int n32Y, int n32Width, int n32Height, double f64StartAngle,
                             double f64SweepAngle, const RGBColor& color) {
    const auto pointAt = [&](double angle) {
        return POINT{TruncateToInt(std::cos(angle) * n32Width + (n32X + n32Width / 2.0)),
                     TruncateToInt(std::sin(angle) * n32Height + (n32Y + n32Height / 2.0))};
    };
    // The platform runs counter-clockwise, positive angles clockwise.
    POINT from = pointAt(f64StartAngle);
    POINT to = pointAt(f64StartAngle + f64SweepAngle);
    if (f64SweepAngle > 0) std::swap(from, to);
    const SelectedObject pen = SelectPen(m_hDC, color);
    Arc(m_hDC, n32X, n32Y, EdgeBeyond(n32X, n32Width), EdgeBeyond(n32Y, n32Height), from.x, from.y, to.x,
        to.y);
}

void GDIDrawAdapter::DrawRectangle(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& color) {
    const SelectedObject pen = SelectPen(m_hDC, color);
    const SelectedObject brush = SelectNoBrush(m_hDC);
    DrawBox(Rectangle, m_hDC, n32X, n32Y, n32Width, n32Height);
}

void GDIDrawAdapter::DrawPolygon(const DrawPointList& points, const RGBColor& color) {
    Kalvo::AtBoundary("GDIDrawAdapter::DrawPolygon", [&] {
        const SelectedObject pen = SelectPen(m_hDC, color);
        const SelectedObject brush = SelectNoBrush(m_hDC);
        DrawPoints(m_hDC, points);
    });
}

void GDIDrawAdapter::DrawEllipse(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& color) {
    const SelectedObject pen = SelectPen(m_hDC, color);
    const SelectedObject brush = SelectNoBrush(m_hDC);
    DrawBox(Ellipse, m_hDC, n32X, n32Y, n32Width, n32Height);
}

void GDIDrawAdapter::FillRectangle(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& lineColor,
                                   const RGBColor& fillColor) {
    const SelectedObject pen = SelectPen(m_hDC, lineColor);
    const SelectedObject brush = SelectBrush(m_hDC, fillColor);
    DrawBox(Rectangle, m_hDC, n32X, n32Y, n32Width, n32Height);
}

void GDIDrawAdapter::FillEllipse(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& lineColor,
                                 const RGBColor& fillColor) {
    const SelectedObject pen = SelectPen(m_hDC, lineColor);
    const SelectedObject brush = SelectBrush(m_hDC, fillColor);
    DrawBox(Ellipse, m_hDC, n32X, n32Y, n32Width, n32Height);
}

void GDIDrawAdapter::FillPolygon(const DrawPointList& points, const RGBColor& lineColor,
                                 const RGBColor& fillColor) {
    Kalvo::AtBoundary("GDIDrawAdapter::FillPolygon", [&] {
        const SelectedObject pen = SelectPen(m_hDC, lineColor);
        const SelectedObject brush = SelectBrush(m_hDC, fillColor);
        DrawPoints(m_hDC, points);
    });
}

void GDIDrawAdapter::DrawText(const std::string& text, int n32X, int n32Y, const RGBColor& textColor) {
    DrawLines(m_hDC, text, n32X, n32Y, textColor, [](const RECT&) {});
}

void GDIDrawAdapter::DrawTextWithBackground(const std::string& text, int n32X, int n32Y,
                                            const RGBColor& textColor, const RGBColor& backgroundColor) {
    DrawLines(m_hDC, text, n32X, n32Y, textColor, [&](const RECT& box) {
        const COLORREF color =
            backgroundColor == RGBColor::Current ? GetBkColor(m_hDC) : ColorRef(backgroundColor);
        const SelectedObject brush(m_hDC, CreateSolidBrush(color), Owner::Self);
        const SelectedObject pen(m_hDC, CreatePen(PS_SOLID, 1, color), Owner::Self);
        Rectangle(m_hDC, box.left, box.top, box.right, box.bottom);
    });
}

DrawPoint GDIDrawAdapter::GetTextExtent(const std::string& text) {
    const SelectedObject font = SelectTextFont(m_hDC);
    return MeasureText(m_hDC, text);
}

int GDIDrawAdapter::GetPenWidth() { return CurrentPen(m_hDC).lopnWidth.x; }

}  // namespace Zelkor
