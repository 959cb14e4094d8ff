#pragma once
// A section of any depth, from the top down, selected into a context of its own; both go with it.

#include "kalvo/gdi/gdi.h"
#include "tests/support/test.h"

namespace Zelkor::Kalvo::Testing {

class Section {
public:
    // Pixels of one bit are black and white, those of eight the greys of their numbers.
    Section(int columns, int rows, WORD bitsPerPixel = 32, std::uint8_t fill = 0)
        : width(columns), height(rows) {
        std::vector<std::uint32_t> memory(10 + 256);
        auto* info = reinterpret_cast<BITMAPINFO*>(memory.data());
        info->bmiHeader = {40, width, -height, 1, bitsPerPixel, BI_RGB, 0, 0, 0, 0, 0};
        const std::uint32_t step = bitsPerPixel == 1 ? 0xFFFFFF : 0x10101;
        for (std::uint32_t i = 0; i < (bitsPerPixel == 1 ? 2u : 256u); ++i) memory[10 + i] = i * step;
        void* pixels = nullptr;
        bitmap = CreateDIBSection(nullptr, info, DIB_RGB_COLORS, &pixels);
        bits = static_cast<std::uint8_t*>(pixels);
        bytes =
            (static_cast<std::size_t>(width) * bitsPerPixel + 31) / 32 * 4 * static_cast<std::size_t>(height);
        Fill(fill);
        SelectObject(hdc, bitmap);
    }
    ~Section() {
        DeleteDC(hdc);
        EXPECT_TRUE(DeleteObject(bitmap));
    }
    Section(const Section&) = delete;

    void Fill(std::uint8_t byte) { std::memset(bits, byte, bytes); }
    // Selects an object, which goes with the context or when the next one replaces it.
    void Select(HGDIOBJ object) { DeleteObject(SelectObject(hdc, object)); }

    // Wherever the origin of the context is.
    COLORREF operator()(int x, int y) const {
        POINT viewport, window;
        SetViewportOrgEx(hdc, 0, 0, &viewport);
        SetWindowOrgEx(hdc, 0, 0, &window);
        const COLORREF color = GetPixel(hdc, x, y);
        SetViewportOrgEx(hdc, viewport.x, viewport.y, nullptr);
        SetWindowOrgEx(hdc, window.x, window.y, nullptr);
        return color;
    }
    std::vector<COLORREF> Pixels(int left, int top, int columns, int rows) const {
        std::vector<COLORREF> pixels;
        for (int i = 0; i < columns * rows; ++i)
            pixels.push_back((*this)(left + i % columns, top + i / columns));
        return pixels;
    }
    std::vector<COLORREF> Pixels() const { return Pixels(0, 0, width, height); }
    auto Count(COLORREF color) const { return std::ranges::count(Pixels(), color); }
    // The first columns and rows by their red: ' ' for 0, '#' for 1, 'o' for 2, '+' for others.
    std::string Picture(int columns, int rows) const {
        std::string picture;
        for (int y = 0; y < rows; ++y, picture += '\n')
            for (int x = 0; x < columns; ++x) picture += " #o+"[std::min<int>(GetRValue((*this)(x, y)), 3)];
        return picture;
    }

    const int width, height;
    const HDC hdc = CreateCompatibleDC(nullptr);
    HBITMAP bitmap = nullptr;
    std::uint8_t* bits = nullptr;
    std::size_t bytes = 0;
};

}  // namespace Zelkor::Kalvo::Testing
