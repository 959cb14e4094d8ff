#pragma once
// A surface that writes down the lines, shapes and texts that are drawn on it.

#include <sstream>
#include <string>
#include <vector>

#include "kalvo/display/kxdrawadapter.h"

namespace Zelkor::Kalvo::Testing {

class RecordingSurface final : public DrawAdapter {
    using Color = const RGBColor&;

public:
    std::vector<std::string> calls;
    std::vector<std::string> measured;
    int penWidth = 1;
    DrawPoint letter{7, 12};

    void DrawLine(int x0, int y0, int x1, int y1, Color color) override {
        Record("line", color, x0, y0, x1, y1);
    }
    void FillRectangle(int x, int y, int width, int height, Color line, Color fill) override {
        Record("rectangle " + NameOf(fill), line, x, y, width, height);
    }
    void FillPolygon(const DrawPointList& points, Color line, Color fill) override {
        std::ostringstream text;
        for (int i = 0; i < points.GetCount(); ++i) text << ' ' << points[i].x << ',' << points[i].y;
        Record("polygon " + NameOf(fill) + text.str(), line);
    }
    void DrawText(const std::string& text, int x, int y, Color color) override {
        Record('"' + text + '"', color, x, y);
    }
    DrawPoint GetTextExtent(const std::string& text) override {
        measured.push_back(text);
        return {letter.x * static_cast<double>(text.size()), text.empty() ? 0 : letter.y};
    }
    int GetPenWidth() override { return penWidth; }

    // What frames and plots are not made of.
    void SetPixel(int, int, Color color, double) override { Record("pixel", color); }
    void DrawArc(int, int, int, int, double, double, Color color) override { Record("arc", color); }
    void DrawRectangle(int, int, int, int, Color color) override { Record("outline", color); }
    void DrawPolygon(const DrawPointList&, Color color) override { Record("outline", color); }
    void DrawEllipse(int, int, int, int, Color color) override { Record("ellipse", color); }
    void FillEllipse(int, int, int, int, Color color, Color) override { Record("ellipse", color); }
    void DrawTextWithBackground(const std::string& text, int, int, Color color, Color) override {
        Record(text, color);
    }
    void DrawImage(const KxGenericROI*, float, float, int, int, double, Color tint) override {
        Record("image", tint);
    }

private:
    static std::string NameOf(Color color) {
        if (color == RGBColor::Current) return "current";
        if (color == RGBColor::Black) return "black";
        if (color == RGBColor::White) return "white";
        return std::to_string(color.m_n32Red) + '/' + std::to_string(color.m_n32Green) + '/' +
               std::to_string(color.m_n32Blue);
    }
    template <class... Number>
    void Record(const std::string& what, Color color, Number... numbers) {
        std::ostringstream text;
        text << what;
        ((text << ' ' << numbers), ...);
        calls.push_back(text.str() + ' ' + NameOf(color));
    }
};

}  // namespace Zelkor::Kalvo::Testing
