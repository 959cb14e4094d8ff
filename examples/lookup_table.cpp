// Shows a dark image through tables: stretched to all greys, and with what is too bright in red.

#include <kalvo/kalvo.h>

#include <cstdio>

int main() {
    KxImage<KxBW8> dark(64, 1);
    for (int x = 0; x < 64; ++x) dark.SetPixel(x, x, 0);

    KxBW8Vector stretched;
    stretched.SetupGainOffset(4, 0, 1);  // four times as bright
    KxC24Vector warning(256);
    for (int grey = 0; grey < 256; ++grey) {
        const auto level = static_cast<unsigned char>(grey);
        warning.AddElement(grey < 60 ? KxC24(level, level, level) : KxC24(255, 0, 0));
    }

    const HDC hdc = CreateCompatibleDC(nullptr);
    const HBITMAP bitmap = CreateCompatibleBitmap(nullptr, 64, 2);
    const HGDIOBJ ownBitmap = SelectObject(hdc, bitmap);
    dark.Draw(hdc, &stretched, 1, 1);
    std::printf("30 is shown as %06x\n", GetPixel(hdc, 30, 0));
    dark.Draw(hdc, &warning, 1, 1);
    std::printf("30 is shown as %06x, 61 as %06x\n", GetPixel(hdc, 30, 0), GetPixel(hdc, 61, 0));
    SelectObject(hdc, ownBitmap);
    DeleteDC(hdc);
    DeleteObject(bitmap);
    return KxFailure();
}

// Prints:
// 30 is shown as 787878
// 30 is shown as 1e1e1e, 61 as 0000ff
