// Shows heights as a relief: a range image seen from the side, brighter where it is higher.

#include <kalvo/kalvo.h>

#include <cmath>
#include <cstdio>

int main() {
    KxImage<KxBW8> heights(200, 200), view(400, 300);
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 200; ++x) {
            const double distance = std::hypot(x - 100, y - 100) / 60;
            heights.SetPixel(static_cast<int>(200 * std::exp(-distance * distance)), x, y);
        }
    KxRender3D(&heights, &view, -40, 15, 1.2f, 1.2f, 0.5f, 4);
    view.Save("relief.bmp");

    int seen = 0;
    for (int y = 0; y < 300; ++y)
        for (int x = 0; x < 400; ++x) seen += view.GetPixel(x, y) != 128;  // the background
    std::printf("%d %% of the picture is relief\n", seen / (400 * 300 / 100));
    return KxFailure();
}

// Prints:
// 35 % of the picture is relief
