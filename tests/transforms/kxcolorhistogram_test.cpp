// Colour cubes: where colours and edges go, which of them are seen, and what is refused.
#include "kalvo/transforms/kxcolorhistogram.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "kalvo/image/kximage.h"
#include "tests/support/pixel_bytes.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Image = KxImage<KxC24>;

Image Row(std::initializer_list<KxC24> pixels) {
    Image image(static_cast<int>(pixels.size()), 1);
    int x = 0;
    for (const KxC24& pixel : pixels) image.SetPixel(pixel, x++, 0);
    return image;
}

// Seen along the first byte, a colour goes to column = third byte, row = second byte.
TEST(ColorHistogram, ShowsTheNearestColorsInACubeOfColoredEdges) {
    Image source = Row({{200, 50, 10}, {200, 50, 11}, {200, 50, 9}, {1, 254, 0}});
    Image destination(256, 256);
    KxRenderColorHistogram(&source, &destination, 0, 0, 1, 1, 1);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) {
            const auto u = static_cast<std::uint8_t>(x), v = static_cast<std::uint8_t>(y);
            const bool isEdge = x == 0 || x == 255 || y == 0 || y == 255;
            KxC24 expected = isEdge ? KxC24(u, v, 255) : KxC24(128, 128, 128);
            if (x == 200 && y == 50) expected = {200, 50, 11};
            if (x == 1 && y == 254) expected = {1, 254, 0};
            ASSERT_EQ(destination.GetPixel(x, y), expected) << x << ", " << y;
        }
}

TEST(ColorHistogram, TurnsTheCube) {
    // A quarter turn brings the first byte to the columns, from right to left, and the third to the depth.
    Image source = Row({{9, 50, 30}, {8, 50, 30}}), destination(256, 256);
    KxRenderColorHistogram(&source, &destination, 0, 90, 1, 1, 1);
    EXPECT_EQ(destination.GetPixel(255 - 30, 50), KxC24(9, 50, 30));
    // The other one brings the first byte to the rows, and the second, reversed, to the depth.
    source = Row({{40, 8, 30}, {40, 9, 30}});
    KxRenderColorHistogram(&source, &destination, 90, 0, 1, 1, 1);
    EXPECT_EQ(destination.GetPixel(40, 30), KxC24(40, 8, 30));
}

TEST(ColorHistogram, KeepsTheFirstOfEqualDepthsAndTheColorsOfTheFirstImage) {
    Image colors = Row({{1, 2, 3}, {4, 5, 6}}), points = Row({{70, 80, 90}, {70, 80, 90}}),
          destination(256, 256);
    KxRenderColorHistogram(&colors, &points, &destination, 0, 0, 1, 1, 1);
    EXPECT_EQ(destination.GetPixel(70, 80), KxC24(1, 2, 3));
}

TEST(ColorHistogram, ComparesDepthsAsTheirLowSixteenBits) {
    // 300 depths per level: levels 0 and 255 wrap to 27414 and -27159.
    Image source = Row({{70, 80, 255}, {70, 80, 0}}), destination(256, 256);
    KxRenderColorHistogram(&source, &destination, 0, 0, 1, 1, 300);
    EXPECT_EQ(destination.GetPixel(70, 80), KxC24(70, 80, 0));
}

TEST(ColorHistogram, RefusesImagesWithoutPixelsAndTooSmallOnes) {
    Image image(4, 4), target(4, 4), small(3, 4), none;
    FillPattern(target, 1);
    const Bytes pixels = PixelBytes(target);
    const std::string one = "KxRenderColorHistogram", two = "KxRenderColorHistogram ( RGB, System)";
    const std::tuple<std::function<void()>, KX_ERRORS, std::string> cases[] = {
        {[&] { KxRenderColorHistogram(&none, &target, 0, 0, 1, 1, 1); }, KX_ERROR_IMAGE_MEMORY_ACCESS, one},
        {[&] { KxRenderColorHistogram(&image, &none, 0, 0, 1, 1, 1); }, KX_ERROR_IMAGE_MEMORY_ACCESS, one},
        {[&] { KxRenderColorHistogram(&none, &image, &target, 0, 0, 1, 1, 1); }, KX_ERROR_IMAGE_MEMORY_ACCESS,
         two},
        {[&] { KxRenderColorHistogram(&image, &none, &target, 0, 0, 1, 1, 1); }, KX_ERROR_IMAGE_MEMORY_ACCESS,
         two},
        {[&] { KxRenderColorHistogram(&image, &image, &none, 0, 0, 1, 1, 1); }, KX_ERROR_IMAGE_MEMORY_ACCESS,
         two},
        {[&] { KxRenderColorHistogram(&image, &small, &target, 0, 0, 1, 1, 1); }, KX_ERROR_SIZE_MISMATCH,
         two},
    };
    for (const auto& [render, code, name] : cases) {
        const TraceRecorder traces;
        render();
        EXPECT_EQ(KxGetError(), code);
        EXPECT_EQ(traces.Functions(), std::vector<std::string>{name});
        EXPECT_EQ(PixelBytes(target), pixels);
    }
}

TEST(ColorHistogram, StaysInsideItsRegionWhateverTheScales) {
    Image source(16, 16), image(30, 30);
    FillPattern(source, 1);
    KxROI<KxC24> destination(&image, 7, 8, 11, 9);
    for (const float scale : {0.01f, 1.f, -40.f, 1e30f, std::numeric_limits<float>::quiet_NaN()}) {
        SetPixelBytes(image, Bytes(30 * 30 * 3, 77));
        KxRenderColorHistogram(&source, &destination, 20, -35, scale, scale, scale);
        for (int i = 0; i < 30 * 30; ++i) {
            const int x = i % 30 - 7, y = i / 30 - 8;
            if (x >= 0 && x < 11 && y >= 0 && y < 9) continue;
            ASSERT_EQ(image.GetPixel(x + 7, y + 8), KxC24(77, 77, 77));
        }
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
