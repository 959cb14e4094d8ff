// Takes the grey profile of a row, finds the edge in it, and plots it.

#include <kalvo/kalvo.h>

#include <cstdio>

int main() {
    KxImage<KxBW8> part(200, 50);
    for (int y = 0; y < 50; ++y)
        for (int x = 0; x < 200; ++x) part.SetPixel(x < 80 ? 40 : x < 90 ? 40 + 16 * (x - 80) : 200, x, y);

    KxROI<KxBW8> row(&part, 0, 25, 200, 1);
    KxBW8Vector profile(200);
    for (int x = 0; x < row.GetWidth(); ++x) profile.AddElement(row.GetPixel(x, 0));
    unsigned edge = 0;
    while (profile[edge] < 120) ++edge;
    std::printf("the edge is at column %u\n", edge);

    KxImage<KxC24> plot(640, 320);
    const HDC hdc = CreateCompatibleDC(nullptr);
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, 640, -320, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(hdc, &info, DIB_RGB_COLORS, &bits);
    const HGDIOBJ ownBitmap = SelectObject(hdc, bitmap);
    PatBlt(hdc, 0, 0, 640, 320, WHITENESS);
    profile.SetYRange(0, 255);
    profile.Draw(hdc, 640, 320, 0, 0);
    std::printf("it is drawn at (%d, %d)\n", profile.XView(edge), profile.YView(profile[edge]));
    plot.SetImagePtr(640, 320, bits);
    plot.Save("profile.bmp");
    SelectObject(hdc, ownBitmap);
    DeleteDC(hdc);
    DeleteObject(bitmap);
    return KxFailure();
}

// Prints:
// the edge is at column 85
// it is drawn at (276, 167)
