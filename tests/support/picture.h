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

// The colour that a device shows for a pixel.
inline COLORREF Shown(int red, int green, int blue) {
    return RGB(static_cast<BYTE>(red), static_cast<BYTE>(green), static_cast<BYTE>(blue));
}
inline COLORREF ShownGray(unsigned level) { return level * 0x010101; }
inline int Widen5(int bits) { return bits % 32 << 3 | bits % 32 >> 2; }
inline COLORREF ShownColor(KxBW1 pixel) { return ShownGray(pixel * 255u); }
inline COLORREF ShownColor(KxBW8 pixel) { return ShownGray(pixel); }
inline COLORREF ShownColor(KxBW16 pixel) { return ShownGray(pixel >> 8); }
inline COLORREF ShownColor(KxBW32 pixel) { return ShownGray(pixel >> 24); }
inline COLORREF ShownColor(KxC15 v) { return Shown(Widen5(v >> 10), Widen5(v >> 5), Widen5(v)); }
inline COLORREF ShownColor(KxC16 v) {
    return Shown(Widen5(v >> 11), (v >> 5 & 63) << 2 | (v >> 9 & 3), Widen5(v));
}
inline COLORREF ShownColor(KxC24 pixel) { return Shown(pixel.m_un8C0, pixel.m_un8C1, pixel.m_un8C2); }
inline COLORREF ShownColor(KxC24A pixel) { return Shown(pixel.m_un8C0, pixel.m_un8C1, pixel.m_un8C2); }

// `alpha` of 255 parts of `over` on the paper.
inline COLORREF OnPaper(COLORREF over, int alpha) {
    const auto mix = [alpha](int s, int d) { return (s * alpha + d * (255 - alpha) + 127) / 255; };
    return Shown(mix(GetRValue(over), GetRValue(kPaper)), mix(GetGValue(over), GetGValue(kPaper)),
                 mix(GetBValue(over), GetBValue(kPaper)));
}

// Expects the pixels of `region` as `colorOf` says, zoomed, with their corner at (left, top), and paper.
template <class Pixel, class ColorOf>
void ExpectPicture(const Screen& screen, const KxROI<Pixel>& region, float zoomX, float zoomY, int left,
                   int top, const ColorOf& colorOf) {
    const int width = static_cast<int>(static_cast<float>(region.GetWidth()) * zoomX);
    const int height =
        static_cast<int>(static_cast<float>(region.GetHeight()) * (zoomY == 0 ? zoomX : zoomY));
    for (int n = 0; n < screen.width * screen.height; ++n) {
        const int i = n % screen.width - left, j = n / screen.width - top;
        COLORREF expected = kPaper;
        if (i >= 0 && j >= 0 && i < width && j < height)
            expected =
                colorOf(region.GetPixel(i * region.GetWidth() / width, j * region.GetHeight() / height));
        ASSERT_EQ(screen(i + left, j + top), expected) << "at " << i << ", " << j << " of the picture";
    }
}

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
