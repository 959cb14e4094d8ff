// Colour cubes: where colours and edges go, which of them are seen, and what is refused.

#include "tests/support/test.h"

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
    Image source = Row({{200, 50, 10}, {200, 50, 11}, {200, 50, 9}}), image(260, 260);
    SetPixelBytes(image, Bytes(260 * 260 * 3, 77));
    KxROI<KxC24> destination(&image, 2, 2, 256, 256);
    KxRenderColorHistogram(&source, &destination, 0, 0, 1, 1, 1);
    for (int y = -2; y < 258; ++y)
        for (int x = -2; x < 258; ++x) {
            const auto u = static_cast<std::uint8_t>(x), v = static_cast<std::uint8_t>(y);
            const bool isOutside = x != u || y != v, isEdge = u == 0 || u == 255 || v == 0 || v == 255;
            const KxC24 inside = u == 200 && v == 50 ? KxC24(u, v, 11) : KxC24(128, 128, 128);
            ASSERT_EQ(image.GetPixel(x + 2, y + 2), isOutside ? KxC24(77, 77, 77)
                                                    : isEdge  ? KxC24(u, v, 255)
                                                              : inside);
        }
}

TEST(ColorHistogram, TurnsPlacesAndDepthsOfColors) {
    const struct {
        const char* about;
        Image points;
        float angle1, angle2, scaleOfFirstByte;
        int x, y, seen;
    } cases[] = {
        {"first byte to columns, reversed; third to depth", Row({{8, 50, 30}, {9, 50, 30}}), 0, 90, 1, 225,
         50, 1},
        {"first byte to rows; second to depth, reversed", Row({{40, 8, 30}, {40, 9, 30}}), 90, 0, 1, 40, 30,
         0},
        {"the first of equal depths", Row({{70, 80, 90}, {70, 80, 90}}), 0, 0, 1, 70, 80, 0},
        {"depths of 16 bits: 38377 is -27159, -38123 is 27413", Row({{7, 8, 255}, {7, 8, 0}}), 0, 0, 300, 7,
         8, 1},
    };
    for (const auto& test : cases) {
        Image colors = Row({{1, 2, 3}, {4, 5, 6}}), points(test.points), destination(256, 256);
        KxRenderColorHistogram(&colors, &points, &destination, test.angle1, test.angle2, 1, 1,
                               test.scaleOfFirstByte);
        EXPECT_EQ(destination.GetPixel(test.x, test.y), colors.GetPixel(test.seen, 0)) << test.about;
        for (const float absurd : {1e30f, -1e30f, std::nanf("")})
            KxRenderColorHistogram(&points, &destination, absurd, 1, absurd, absurd, absurd);
    }
}

TEST(ColorHistogram, RefusesImagesWithoutPixelsAndTooSmallOnes) {
    Image image(4, 4), target(4, 4), small(3, 4), none;
    FillPattern(target, 1);
    const Bytes pixels = PixelBytes(target);
    const auto draw = [](auto*... images) {
        return [=] { KxRenderColorHistogram(images..., 0, 0, 1, 1, 1); };
    };
    const std::tuple<std::function<void()>, KX_ERRORS, const char*> cases[] = {
        {draw(&none, &target), KX_ERROR_IMAGE_MEMORY_ACCESS, ""},
        {draw(&image, &none), KX_ERROR_IMAGE_MEMORY_ACCESS, ""},
        {draw(&none, &image, &target), KX_ERROR_IMAGE_MEMORY_ACCESS, " ( RGB, System)"},
        {draw(&image, &none, &target), KX_ERROR_IMAGE_MEMORY_ACCESS, " ( RGB, System)"},
        {draw(&image, &image, &none), KX_ERROR_IMAGE_MEMORY_ACCESS, " ( RGB, System)"},
        {draw(&image, &small, &target), KX_ERROR_SIZE_MISMATCH, " ( RGB, System)"},
    };
    for (const auto& [render, code, suffix] : cases) {
        const TraceRecorder traces;
        render();
        EXPECT_EQ(KxGetError(), code);
        EXPECT_EQ(traces.Functions().at(0), std::string("KxRenderColorHistogram") + suffix);
        EXPECT_EQ(PixelBytes(target), pixels);
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
