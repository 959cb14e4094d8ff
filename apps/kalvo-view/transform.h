#pragma once
// From pixels of an image to pixels of the window.

#include <algorithm>
#include <cmath>

namespace View {

// Pixel (x, y) of the image begins at (x * zoom + panX, y * zoom + panY). Pixels are square.
struct Transform {
    static constexpr double kLeast = 1.0 / 64, kMost = 128;

    double zoom = 1;
    int panX = 0, panY = 0;

    double ToImageX(int x) const { return (x - panX) / zoom; }
    double ToImageY(int y) const { return (y - panY) / zoom; }

    // Changes the zoom so that what lies under (x, y) stays there.
    void ZoomAt(int x, int y, double newZoom) {
        const double imageX = ToImageX(x), imageY = ToImageY(y);
        zoom = std::clamp(newZoom, kLeast, kMost);
        panX = static_cast<int>(std::lround(x - imageX * zoom));
        panY = static_cast<int>(std::lround(y - imageY * zoom));
    }

    // Shows an image as large as it fits into a window, in the middle.
    void Fit(int imageWidth, int imageHeight, int width, int height) {
        const double fitting = std::min(static_cast<double>(width) / std::max(imageWidth, 1),
                                        static_cast<double>(height) / std::max(imageHeight, 1));
        zoom = std::clamp(fitting, kLeast, kMost);
        panX = static_cast<int>(std::lround((width - imageWidth * zoom) / 2));
        panY = static_cast<int>(std::lround((height - imageHeight * zoom) / 2));
    }

    // The zooms that keys step through: powers of the square root of two, among them 1.
    void Step(int x, int y, int steps) {
        const double exponent = std::round(std::log2(zoom) * 2) + steps;
        ZoomAt(x, y, std::exp2(exponent / 2));
    }
};

}  // namespace View
