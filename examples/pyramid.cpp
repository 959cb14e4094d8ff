// Makes ever smaller copies of an image, for a search from coarse to fine, and shows the largest.

#include <kalvo/kalvo.h>

#include <cstdio>

int main() {
    KxImage<KxBW8> level(640, 480);
    for (int y = 0; y < 480; ++y)
        for (int x = 0; x < 640; ++x) level.SetPixel((x ^ y) & 255, x, y);
    level.SetPixelDimensions(0.1f, 0.1f, &KxUnit_mm);

    for (int i = 0; i < 4; ++i) {
        std::printf("level %d: %d x %d, the middle is %d\n", i, level.GetWidth(), level.GetHeight(),
                    static_cast<int>(level.GetPixel(level.GetWidth() / 2, level.GetHeight() / 2)));
        KxImage<KxBW8> next;
        ImgRescale(&level, &next, 0.5f, 0.5f);
        level = next;
    }
    KxImage<KxBW8> thumbnail(64, 48);
    KxResize(&level, &thumbnail);  // any size to any other
    thumbnail.Save("thumbnail.bmp");
    return KxFailure();
}

// Prints:
// level 0: 640 x 480, the middle is 176
// level 1: 320 x 240, the middle is 176
// level 2: 160 x 120, the middle is 176
// level 3: 80 x 60, the middle is 176
