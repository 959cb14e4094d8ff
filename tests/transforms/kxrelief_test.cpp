// Reliefs against the formulas as they stand, pixel by pixel, and what is refused.

#include "tests/support/test.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Scales = std::array<float, 3>;

constexpr std::uint8_t kBack = 128;

// The pixels of a point, in rows from its place.
const std::pair<int, std::vector<std::string>> kShapes[] = {
    {1, {"x"}}, {4, {"xx", "xx"}}, {5, {" x ", "xxx", " x "}}, {9, {"xxx", "xxx", "xxx"}}};

// Which pixel of `heights` is seen at each place of `image` inside `target`; -1 for none.
std::vector<int> SeenPixels(const KxROI<KxBW8>& heights, const KxGenericROI& target, float a, float b,
                            const Scales& scale, const std::vector<std::string>& shape) {
    const auto fixed = [](float value) { return static_cast<std::int64_t>(value * 65536.0); };
    const float ca = std::cos(a), sa = std::sin(a), cb = std::cos(b), sb = std::sin(b);
    const float xx = cb * scale[0], xy = -sb * sa * scale[1], xz = sb * ca * scale[2];
    const float yy = ca * scale[1], yz = sa * scale[2];
    const int w = heights.GetWidth(), h = heights.GetHeight(), side = static_cast<int>(shape.size());
    const int width = target.GetWidth(), height = target.GetHeight();
    const float x0 = (width - w * xx - h * xy - 256 * xz) / 2, y0 = (height - h * yy - 256 * yz) / 2;
    std::vector<int> seen(width * height, -1);
    for (int i = 0; i < w * h; ++i) {
        const int x = sb * scale[0] < 0 ? w - 1 - i % w : i % w,
                  y = -cb * sa * scale[1] < 0 ? h - 1 - i / w : i / w;
        const std::uint8_t z = heights.GetPixel(x, y);
        const auto column = (fixed(xx) * x + fixed(xy) * y + fixed(x0) + fixed(xz) * z) >> 16;
        const auto row = (fixed(yy) * y + fixed(y0) + fixed(yz) * z) >> 16;
        if (column < 0 || column + side > width || row < 0 || row + side > height) continue;
        for (int j = 0; j < side * side; ++j)
            if (shape[j / side][j % side] == 'x')
                seen[(row + j / side) * width + column + j % side] = y * w + x;
    }
    return seen;
}

// `image` with what is seen inside `target`, which lies in it.
template <class Pixel>
Bytes Picture(const KxImage<Pixel>& image, const KxROI<Pixel>& target, const std::vector<int>& seen,
              const Bytes& colors) {
    Bytes bytes = PixelBytes(image);
    for (std::size_t i = 0; i < seen.size(); ++i) {
        const std::size_t x = target.GetOrgX() + i % target.GetWidth(),
                          y = target.GetOrgY() + i / target.GetWidth();
        for (std::size_t c = 0; c < sizeof(Pixel); ++c)
            bytes[(y * image.GetWidth() + x) * sizeof(Pixel) + c] =
                seen[i] < 0 ? kBack : colors[seen[i] * sizeof(Pixel) + c];
    }
    return bytes;
}

TEST(Relief, FollowsTheFormulasToTheBitInsideItsRegion) {
    KxImage<KxBW8> heights(61, 47), grayImage(160, 140);
    KxImage<KxC24> colors(61, 47), colorImage(160, 140);
    for (KxGenericROI* image :
         std::initializer_list<KxGenericROI*>{&heights, &grayImage, &colors, &colorImage})
        FillPattern(*image, 4);
    KxROI<KxBW8> gray(&grayImage, 3, 2, 150, 130);
    KxROI<KxC24> color(&colorImage, 3, 2, 150, 130);
    for (const float angle1 : {-200.f, -90.f, 0.f, 20.f, 110.f})
        for (const float angle2 : {-130.f, -45.f, 0.f, 90.f})
            for (const Scales& scale : {Scales{1, 1, 0}, {1.7f, 0.9f, -0.3f}, {-3.1f, 8, 2}})
                for (const auto& [size, shape] : kShapes) {
                    const float a = KxToRadians(angle1), b = KxToRadians(angle2);
                    const std::vector<int> seen = SeenPixels(heights, gray, a, b, scale, shape);
                    KxRender3D(&heights, &gray, angle1, angle2, scale[0], scale[1], scale[2], size);
                    KxRender3D(&colors, &heights, &color, a, b, scale[0], scale[1], scale[2], size);
                    ASSERT_EQ(PixelBytes(grayImage), Picture(grayImage, gray, seen, PixelBytes(heights)));
                    ASSERT_EQ(PixelBytes(colorImage), Picture(colorImage, color, seen, PixelBytes(colors)));
                }
}

TEST(Relief, SeenFromAboveIsTheImageAndFromTheSideHidesRows) {
    KxImage<KxBW8> source(1, 2), target(1, 2);
    SetPixelBytes(source, {7, 9});
    KxRender3D(&source, &target, 0, 0, 1, 1, 0, 1);
    EXPECT_EQ(PixelBytes(target), (Bytes{7, 9}));
    KxRender3D(&source, &target, -90, 0, 1, 1, 0, 1);  // both on one place, the last row in front
    EXPECT_EQ(PixelBytes(target), (Bytes{kBack, 9}));
    KxRender3D(&source, &target, 90, 0, 1, 1, 0, 1);
    EXPECT_EQ(PixelBytes(target), (Bytes{kBack, 7}));
}

TEST(Relief, RefusesWhatItCannotDrawAfterFillingTheBackground) {
    KxImage<KxBW8> gray(4, 4), small(4, 3), noGray, grayTarget(4, 4);
    KxImage<KxC24> color(4, 4), noColor, colorTarget(4, 4);
    const auto draw = [](auto*... images) {
        return [=](int size) { KxRender3D(images..., 0, 0, 1, 1, 1, size); };
    };
    const std::tuple<std::function<void(int)>, int, KX_ERRORS, KxGenericROI*> cases[] = {
        {draw(&noGray, &grayTarget), 2, KX_ERROR_IMAGE_MEMORY_ACCESS, &grayTarget},
        {draw(&gray, &noGray), 1, KX_ERROR_IMAGE_MEMORY_ACCESS, &noGray},
        {draw(&gray, &grayTarget), 2, KX_ERROR_PARAMETER_8_OUT_OF_RANGE, &grayTarget},
        {draw(&noColor, &gray, &colorTarget), 1, KX_ERROR_IMAGE_MEMORY_ACCESS, &colorTarget},
        {draw(&color, &noGray, &colorTarget), 1, KX_ERROR_IMAGE_MEMORY_ACCESS, &colorTarget},
        {draw(&color, &gray, &noColor), 1, KX_ERROR_IMAGE_MEMORY_ACCESS, &noColor},
        {draw(&color, &small, &colorTarget), 1, KX_ERROR_SIZE_MISMATCH, &colorTarget},
        {draw(&color, &gray, &colorTarget), 0, KX_ERROR_PARAMETER_8_OUT_OF_RANGE, &colorTarget},
    };
    for (const auto& [render, size, code, target] : cases) {
        const TraceRecorder traces;
        FillPattern(*target, 1);
        render(size);
        EXPECT_EQ(KxGetError(), code);
        const bool isGray = target->GetType() == KX_IMAGE_BW8;
        EXPECT_EQ(traces.Functions().at(0), isGray ? "KxRender3D ( Gray level)" : "KxRender3D ( Color)");
        const Bytes bytes = PixelBytes(*target);
        EXPECT_EQ(bytes, Bytes(bytes.size(), kBack));
    }
}

TEST(Relief, SurvivesAbsurdAnglesAndScales) {
    KxImage<KxBW8> source(9, 9), target(2, 2);
    for (const float value : {1e30f, -1e30f, std::numeric_limits<float>::infinity(), std::nanf(""), 4e4f})
        for (int parameter = 0; parameter < 5; ++parameter) {
            float p[] = {30, 30, 1, 1, 1};
            p[parameter] = value;
            KxRender3D(&source, &target, p[0], p[1], p[2], p[3], p[4], 9);
        }
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
