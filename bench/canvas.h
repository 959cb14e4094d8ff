#pragma once
// Bitmaps and contexts of 1920 x 1080 pixels to draw on.

#include <cstdint>
#include <cstring>
#include <vector>

#include "kalvo/gdi/gdi.h"

inline constexpr int kWidth = 1920, kHeight = 1080;

enum class Colors { Greys, Rainbow };

// A top-down bitmap of the kind that images become, with a colour table if it needs one.
struct Picture {
    Picture(int bitCount, Colors colors, int width = kWidth, int height = kHeight)
        : header(sizeof(BITMAPINFOHEADER) + 256 * sizeof(RGBQUAD)),
          pixels((static_cast<std::size_t>(width) * bitCount + 31) / 32 * 4 * height) {
        Info()->bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
        Info()->bmiHeader.biWidth = width;
        Info()->bmiHeader.biHeight = -height;
        Info()->bmiHeader.biPlanes = 1;
        Info()->bmiHeader.biBitCount = static_cast<WORD>(bitCount);
        const int entries = bitCount > 8 ? 0 : 1 << bitCount;
        RGBQUAD* table = Info()->bmiColors;
        for (int i = 0; i < entries; ++i) {
            const auto level = static_cast<BYTE>(i * 255 / (entries - 1));
            table[i] = {level, level, colors == Colors::Greys ? level : static_cast<BYTE>(255 - level), 0};
        }
        for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<std::uint8_t>(i * i >> 5);
    }
    BITMAPINFO* Info() { return reinterpret_cast<BITMAPINFO*>(header.data()); }

    std::vector<std::uint8_t> header, pixels;
};

// A context with a section of its own.
struct Canvas {
    explicit Canvas(Picture picture) {
        bitmap = CreateDIBSection(nullptr, picture.Info(), DIB_RGB_COLORS, &bits);
        std::memcpy(bits, picture.pixels.data(), picture.pixels.size());
        previous = SelectObject(hdc, bitmap);
    }
    Canvas(const Canvas&) = delete;
    ~Canvas() {
        SelectObject(hdc, previous);
        DeleteObject(bitmap);
        DeleteDC(hdc);
    }

    HDC hdc = CreateCompatibleDC(nullptr);
    HBITMAP bitmap = nullptr;
    HGDIOBJ previous = nullptr;
    void* bits = nullptr;
};
