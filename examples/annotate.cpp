// Draws an image with the frames of its regions into a picture for a report.

#include <kalvo/kalvo.h>

#include <cstdio>

int main() {
    KxImage<KxC24> part(160, 100);
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 160; ++x) part.SetPixel(KxC24(200, 200, static_cast<unsigned char>(x)), x, y);
    KxROI<KxC24> outer(&part, 20, 15, 100, 60), inner(&outer, 10, 10, 30, 20);

    // A bitmap in memory, of twice the size, whose bits an image wraps to save them.
    constexpr int kWidth = 320, kHeight = 200;
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, kWidth, -kHeight, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HDC hdc = CreateCompatibleDC(nullptr);
    const HBITMAP bitmap = CreateDIBSection(hdc, &info, DIB_RGB_COLORS, &bits);
    const HGDIOBJ ownBitmap = SelectObject(hdc, bitmap);
    const HPEN pen = CreatePen(PS_SOLID, 2, RGB(0, 160, 0));
    const HGDIOBJ ownPen = SelectObject(hdc, pen);

    part.Draw(hdc, 2, 2);
    outer.DrawFrame(hdc, KX_FRAME_POSITION_OUTSIDE, 1, 2, 2, 0, 0);
    inner.DrawFrame(hdc, KX_FRAME_POSITION_ON_BORDER, 0, 2, 2, 0, 0);
    SetBkMode(hdc, TRANSPARENT);
    TextOutA(hdc, 44, 14, "label", 5);

    KxImage<KxC24> picture;
    picture.SetImagePtr(kWidth, kHeight, bits);
    picture.Save("annotated.bmp");
    std::printf("frame: %06x, image: %06x\n", GetPixel(hdc, 100, 28), GetPixel(hdc, 300, 100));

    SelectObject(hdc, ownPen);
    SelectObject(hdc, ownBitmap);
    DeleteDC(hdc);
    DeleteObject(pen);
    DeleteObject(bitmap);
    return KxFailure();
}

// Prints:
// frame: 00a000, image: 96c8c8
