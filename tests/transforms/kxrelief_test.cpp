// Reliefs: where points go, which of them stay visible, how they look, and what is refused.
#include "kalvo/transforms/kxrelief.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

#include "kalvo/image/kximage.h"
#include "kalvo/measure/kxangle.h"
#include "tests/support/pixel_bytes.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo::Testing {
namespace {

constexpr std::uint8_t kBack = 128;
constexpr float kQuarterTurn = std::numbers::pi_v<float> / 2;

template <class Pixel>
KxImage<Pixel> Image(int width, int height, const Bytes& bytes) {
    KxImage<Pixel> image(width, height);
    SetPixelBytes(image, bytes);
    return image;
}

TEST(Relief, SeenFromAboveIsTheImage) {
    KxImage<KxBW8> source(37, 21), destination(37, 21);
    FillPattern(source, 1);
    KxRender3D(&source, &destination, 0, 0, 1, 1, 0, 1);
    EXPECT_TRUE(SamePixels(source, destination));
}

// One point in the middle of a destination, and one at every place around its border.
TEST(Relief, DrawsPointsOfEveryShapeAndLeavesOutWhatDoesNotFit) {
    const std::pair<int, Bytes> shapes[] = {
        {1, {9, kBack, kBack, kBack, kBack, kBack, kBack, kBack, kBack}},
        {4, {9, 9, kBack, 9, 9, kBack, kBack, kBack, kBack}},
        {5, {kBack, 9, kBack, 9, 9, 9, kBack, 9, kBack}},
        {9, {9, 9, 9, 9, 9, 9, 9, 9, 9}},
    };
    for (const auto& [size, shape] : shapes) {
        const int side = size == 1 ? 1 : size == 4 ? 2 : 3;
        KxImage<KxBW8> image(20, 20), source = Image<KxBW8>(1, 1, {9});
        // The point goes to (width - 1) / 2.
        for (int width = 1; width < 8; ++width)
            for (int height = 1; height < 8; ++height) {
                FillPattern(image, 1);
                Bytes expected = PixelBytes(image);
                KxROI<KxBW8> destination(&image, 6, 6, width, height);
                const int left = (width - 1) / 2, top = (height - 1) / 2;
                const bool fits = left + side <= width && top + side <= height;
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x) {
                        const bool inside = fits && x >= left && x < left + 3 && y >= top && y < top + 3;
                        expected[(y + 6) * 20 + x + 6] = inside ? shape[(y - top) * 3 + x - left] : kBack;
                    }
                KxRender3D(&source, &destination, 0, 0, 1, 1, 0, size);
                ASSERT_EQ(PixelBytes(image), expected) << size << ": " << width << " x " << height;
            }
    }
}

// Pixels of one height and different colours fall on one place, and the one in front is seen.
TEST(Relief, HidesWhatLiesBehind) {
    const std::tuple<int, int, float, float, int> views[] = {
        {1, 3, kQuarterTurn, 0.f, 0},   // from one side, the first row in front
        {1, 3, -kQuarterTurn, 0.f, 2},  // and from the other
        {3, 1, 0.f, kQuarterTurn, 2},
        {3, 1, 0.f, -kQuarterTurn, 0},
    };
    auto heights = KxImage<KxBW8>(3, 3);
    SetPixelBytes(heights, Bytes(9, 100));
    for (const auto& [width, height, angle1, angle2, front] : views) {
        auto colors = Image<KxC24>(width, height, {1, 2, 3, 4, 5, 6, 7, 8, 9});
        KxImage<KxC24> destination(256, 256);
        KxRender3D(&colors, &heights, &destination, angle1, angle2, 1, 1, 1, 1);
        Bytes seen;
        for (const std::uint8_t byte : PixelBytes(destination))
            if (byte != kBack) seen.push_back(byte);
        const auto first = static_cast<std::uint8_t>(3 * front + 1);
        EXPECT_EQ(seen,
                  (Bytes{first, static_cast<std::uint8_t>(first + 1), static_cast<std::uint8_t>(first + 2)}));
    }
}

// The formulas as they stand, without tables and steps.
Bytes SlowRelief(const KxROI<KxBW8>& source, int width, int height, float a, float b,
                 const float (&scale)[3]) {
    const auto fixed = [](float value) { return static_cast<std::int64_t>(value * 65536.0); };
    const float ca = std::cos(a), sa = std::sin(a), cb = std::cos(b), sb = std::sin(b);
    const float xx = cb * scale[0], xy = -sb * sa * scale[1], xz = sb * ca * scale[2];
    const float yy = ca * scale[1], yz = sa * scale[2];
    const int w = source.GetWidth(), h = source.GetHeight();
    const float x0 = (width - w * xx - h * xy - 256 * xz) / 2, y0 = (height - h * yy - 256 * yz) / 2;
    Bytes pixels(width * height, kBack);
    for (int i = 0; i < h; ++i)
        for (int j = 0; j < w; ++j) {
            const int x = sb * scale[0] < 0 ? w - 1 - j : j, y = -cb * sa * scale[1] < 0 ? h - 1 - i : i;
            const std::uint8_t z = source.GetPixel(x, y);
            const auto column = (fixed(xx) * x + fixed(xy) * y + fixed(x0) + fixed(xz) * z) >> 16;
            const auto row = (fixed(yy) * y + fixed(y0) + fixed(yz) * z) >> 16;
            if (column >= 0 && column < width && row >= 0 && row < height) pixels[row * width + column] = z;
        }
    return pixels;
}

TEST(Relief, FollowsTheFormulasToTheBitInTheCurrentAngleUnit) {
    KxImage<KxBW8> source(61, 47), destination(150, 130);
    FillPattern(source, 4);
    for (const float angle1 : {-200.f, -35.f, 0.f, 20.f, 65.f, 110.f})
        for (const float angle2 : {-130.f, -45.f, 15.f, 90.f, 170.f})
            for (const auto& scale : {std::array{1.f, 1.f, 0.5f}, {1.7f, 0.9f, -0.3f}, {-3.1f, 8.f, 2.f}}) {
                KxRender3D(&source, &destination, angle1, angle2, scale[0], scale[1], scale[2], 1);
                ASSERT_EQ(PixelBytes(destination),
                          SlowRelief(source, 150, 130, KxToRadians(angle1), KxToRadians(angle2),
                                     {scale[0], scale[1], scale[2]}))
                    << angle1 << ", " << angle2 << ", " << scale[0];
            }
}

TEST(Relief, RefusesWhatItCannotDrawAfterFillingTheBackground) {
    KxImage<KxBW8> gray(4, 4), grayTarget(4, 4), small(4, 3), noGray;
    KxImage<KxC24> color(4, 4), colorTarget(4, 4), noColor;
    const auto grayCase = [&](KxImage<KxBW8>& source, KxImage<KxBW8>& target, int size) {
        KxRender3D(&source, &target, 0, 0, 1, 1, 1, size);
    };
    const auto colorCase = [&](KxImage<KxC24>& colors, KxImage<KxBW8>& heights, KxImage<KxC24>& target,
                               int size) { KxRender3D(&colors, &heights, &target, 0, 0, 1, 1, 1, size); };
    const std::pair<std::function<void()>, KX_ERRORS> cases[] = {
        {[&] { grayCase(noGray, grayTarget, 2); }, KX_ERROR_IMAGE_MEMORY_ACCESS},
        {[&] { grayCase(gray, noGray, 1); }, KX_ERROR_IMAGE_MEMORY_ACCESS},
        {[&] { grayCase(gray, grayTarget, 2); }, KX_ERROR_PARAMETER_8_OUT_OF_RANGE},
        {[&] { colorCase(noColor, gray, colorTarget, 1); }, KX_ERROR_IMAGE_MEMORY_ACCESS},
        {[&] { colorCase(color, noGray, colorTarget, 1); }, KX_ERROR_IMAGE_MEMORY_ACCESS},
        {[&] { colorCase(color, gray, noColor, 1); }, KX_ERROR_IMAGE_MEMORY_ACCESS},
        {[&] { colorCase(color, small, colorTarget, 1); }, KX_ERROR_SIZE_MISMATCH},
        {[&] { colorCase(color, gray, colorTarget, 0); }, KX_ERROR_PARAMETER_8_OUT_OF_RANGE},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const TraceRecorder traces;
        FillPattern(grayTarget, 1);
        FillPattern(colorTarget, 1);
        cases[i].first();
        EXPECT_EQ(KxGetError(), cases[i].second) << i;
        const bool isGray = i < 3;
        EXPECT_EQ(traces.Functions(),
                  std::vector<std::string>{isGray ? "KxRender3D ( Gray level)" : "KxRender3D ( Color)"});
        if (i == 1 || i == 5) continue;
        EXPECT_EQ(isGray ? PixelBytes(grayTarget) : PixelBytes(colorTarget), Bytes(isGray ? 16 : 48, kBack));
    }
}

TEST(Relief, SurvivesAbsurdAnglesAndScales) {
    KxImage<KxBW8> source(9, 9), destination(9, 9);
    FillPattern(source, 1);
    KxOk();
    for (const float value : {1e30f, -1e30f, std::numeric_limits<float>::infinity(), std::nanf(""), 4e4f})
        for (int parameter = 0; parameter < 5; ++parameter) {
            float p[] = {30, 30, 1, 1, 1};
            p[parameter] = value;
            KxRender3D(&source, &destination, p[0], p[1], p[2], p[3], p[4], 9);
            EXPECT_EQ(KxGetError(), KX_OK);
        }
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
