#pragma once
// A memory context to draw on, what regions must look like there, and a surface that notes its own calls.

#include "tests/support/section.h"

namespace Zelkor::Kalvo::Testing {

constexpr COLORREF kPaper = RGB(10, 200, 90);

// A section filled with paper.
struct Screen : Section {
    static constexpr int width = 70, height = 60;

    Screen() : Section(width, height) { Clear(); }

    void Clear() {
        for (int i = 0; i < width * height; ++i)
            reinterpret_cast<DWORD*>(bits)[i] =
                GetRValue(kPaper) << 16 | GetGValue(kPaper) << 8 | GetBValue(kPaper);
    }
    // Counted from the origin of the context.
    COLORREF operator()(int x, int y) const { return GetPixel(hdc, x, y); }
    // How many pixels are not paper.
    int Marks() const { return width * height - static_cast<int>(Count(kPaper)); }
};

inline COLORREF ShownGray(unsigned level) { return level * 0x010101; }
inline COLORREF ShownColor(KxBW8 pixel) { return ShownGray(pixel); }
inline COLORREF ShownColor(KxC24 pixel) { return RGB(pixel.m_un8C0, pixel.m_un8C1, pixel.m_un8C2); }

// What operations must leave as it was.
inline auto StateOf(HDC hdc) {
    POINT origin{};
    GetViewportOrgEx(hdc, &origin);
    return std::tuple(GetCurrentObject(hdc, OBJ_PEN), GetCurrentObject(hdc, OBJ_BRUSH),
                      GetCurrentObject(hdc, OBJ_FONT), GetCurrentObject(hdc, OBJ_BITMAP),
                      GetCurrentObject(hdc, OBJ_PAL), GetTextColor(hdc), GetBkColor(hdc), GetBkMode(hdc),
                      GetTextAlign(hdc), origin.x, origin.y);
}

// Notes which images and pixels it is asked to draw.
struct NotingSurface final : GDIDrawAdapter {
    using GDIDrawAdapter::GDIDrawAdapter;
    void SetPixel(int x, int y, const RGBColor& color, double alpha) override {
        calls.push_back({x * 1.0, y * 1.0, color == RGBColor::Red ? 1.0 : 0, alpha});
    }
    void DrawImage(const KxGenericROI* image, float zoomX, float zoomY, int x, int y, double alpha,
                   const RGBColor& tint) override {
        if (fails) throw std::bad_alloc();
        calls.push_back({image->GetBitsPerPixel() * 1.0, zoomX, zoomY, x * 1.0, y * 1.0, alpha,
                         tint == RGBColor::Current ? 1.0 : 0});
        GDIDrawAdapter::DrawImage(image, zoomX, zoomY, x, y, alpha, tint);
    }
    using Calls = std::vector<std::vector<double>>;
    Calls calls;
    bool fails = false;
};

}  // namespace Zelkor::Kalvo::Testing
