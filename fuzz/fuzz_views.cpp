// Reliefs, resampled regions and masks against the formulas as they stand, pixel by pixel.

#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "kalvo/frame/kxtrace.h"
#include "kalvo/image/kximage.h"
#include "kalvo/measure/kxangle.h"
#include "kalvo/transforms/kxcolorhistogram.h"
#include "kalvo/transforms/kxrelief.h"
#include "kalvo/transforms/kxresize.h"
#include "fuzz/byte_source.h"
#include "fuzz/require.h"
#include "tests/support/pixel_bytes.h"

namespace Zelkor::Kalvo::Fuzzing {
namespace {

using Testing::Bytes;
using Testing::FillPattern;
using Testing::PixelBytes;
using Scales = std::array<float, 3>;

constexpr std::uint8_t kBack = 128;

// The pixels of a point, in rows from its place.
const std::pair<int, std::vector<std::string>> kShapes[] = {
    {1, {"x"}}, {4, {"xx", "xx"}}, {5, {" x ", "xxx", " x "}}, {9, {"xxx", "xxx", "xxx"}}};

// Which pixel of `heights` is seen at each place of `target`; -1 for none.
std::vector<int> SeenPixels(const KxROI<KxBW8>& heights, const KxGenericROI& target, float a, float b,
                            const Scales& scale, const std::vector<std::string>& shape) {
    const auto fixed = [](float value) { return static_cast<std::int64_t>(value * 65536.0); };
    const float ca = std::cos(a), sa = std::sin(a), cb = std::cos(b), sb = std::sin(b);
    const float xx = cb * scale[0], xy = -sb * sa * scale[1], xz = sb * ca * scale[2];
    const float yy = ca * scale[1], yz = sa * scale[2];
    const int w = heights.GetWidth(), h = heights.GetHeight(), side = static_cast<int>(shape.size());
    const int width = target.GetWidth(), height = target.GetHeight();
    const float fw = static_cast<float>(w), fh = static_cast<float>(h);
    const float x0 = (static_cast<float>(width) - fw * xx - fh * xy - 256 * xz) / 2,
                y0 = (static_cast<float>(height) - fh * yy - 256 * yz) / 2;
    std::vector<int> seen(static_cast<std::size_t>(width * height), -1);
    for (int i = 0; i < w * h; ++i) {
        const int x = sb * scale[0] < 0 ? w - 1 - i % w : i % w,
                  y = -cb * sa * scale[1] < 0 ? h - 1 - i / w : i / w;
        const std::uint8_t z = heights.GetPixel(x, y);
        const auto column = (fixed(xx) * x + fixed(xy) * y + fixed(x0) + fixed(xz) * z) >> 16;
        const auto row = (fixed(yy) * y + fixed(y0) + fixed(yz) * z) >> 16;
        if (column < 0 || column + side > width || row < 0 || row + side > height) continue;
        for (int j = 0; j < side * side; ++j)
            if (shape[static_cast<std::size_t>(j / side)][static_cast<std::size_t>(j % side)] == 'x')
                seen[static_cast<std::size_t>((row + j / side) * width + column + j % side)] = y * w + x;
    }
    return seen;
}

// Checks that `target`, a part of `image`, shows what is seen, and that the rest of the image is `before`.
template <class Pixel>
void RequireSeen(const KxImage<Pixel>& image, const KxROI<Pixel>& target, const std::vector<int>& seen,
                 const KxImage<Pixel>& colors, Bytes before) {
    const Bytes pixels = PixelBytes(colors);
    for (std::size_t i = 0; i < seen.size(); ++i) {
        const auto width = static_cast<std::size_t>(target.GetWidth());
        const std::size_t x = static_cast<std::size_t>(target.GetOrgX()) + i % width,
                          y = static_cast<std::size_t>(target.GetOrgY()) + i / width;
        for (std::size_t c = 0; c < sizeof(Pixel); ++c)
            before[(y * static_cast<std::size_t>(image.GetWidth()) + x) * sizeof(Pixel) + c] =
                seen[i] < 0 ? kBack : pixels[static_cast<std::size_t>(seen[i]) * sizeof(Pixel) + c];
    }
    Require(PixelBytes(image) == before, "a relief follows its formulas to the bit, inside its region");
}

float AnyFloat(ByteSource& source, float least, float most) {
    constexpr float kAbsurd[] = {1e30f, -1e30f, INFINITY, NAN, 4e4f};
    if (source.OneIn(24)) return kAbsurd[source.Between(0, 4)];
    return least + (most - least) * static_cast<float>(source.Byte()) / 255;
}

void CheckRelief(ByteSource& source) {
    KxImage<KxBW8> heights(source.Between(1, 61), source.Between(1, 47)), grayImage(80, 70);
    KxImage<KxC24> colors(heights.GetWidth(), heights.GetHeight()), colorImage(80, 70);
    const unsigned seed = source.Word();
    for (KxGenericROI* image : {static_cast<KxGenericROI*>(&heights), static_cast<KxGenericROI*>(&grayImage),
                                static_cast<KxGenericROI*>(&colors), static_cast<KxGenericROI*>(&colorImage)})
        FillPattern(*image, seed);
    KxROI<KxBW8> gray(&grayImage, 3, 2, source.Between(1, 77), source.Between(1, 68));
    KxROI<KxC24> color(&colorImage, 3, 2, gray.GetWidth(), gray.GetHeight());
    const Bytes grayBefore = PixelBytes(grayImage), colorBefore = PixelBytes(colorImage);
    const float angle1 = AnyFloat(source, -200, 200), angle2 = AnyFloat(source, -200, 200);
    const Scales scale{AnyFloat(source, -3, 3), AnyFloat(source, -3, 8), AnyFloat(source, -1, 2)};
    const auto& [size, shape] = kShapes[source.Between(0, 3)];
    const float a = KxToRadians(angle1), b = KxToRadians(angle2);
    KxRender3D(&heights, &gray, angle1, angle2, scale[0], scale[1], scale[2], size);
    KxRender3D(&colors, &heights, &color, a, b, scale[0], scale[1], scale[2], size);
    KxRenderColorHistogram(&colors, &color, angle1, angle2, scale[0], scale[1], scale[2]);
    KxRender3D(&colors, &heights, &color, a, b, scale[0], scale[1], scale[2], size);
    for (const float number : {angle1, angle2, scale[0], scale[1], scale[2]})
        if (!(std::abs(number) < 1000)) return;  // that it ends is enough
    const std::vector<int> seen = SeenPixels(heights, gray, a, b, scale, shape);
    RequireSeen(grayImage, gray, seen, heights, grayBefore);
    RequireSeen(colorImage, color, seen, colors, colorBefore);
}

// The source is a part of another image or of the same one, where the parts may overlap.
template <class Pixel>
void CheckResize(ByteSource& source) {
    KxImage<Pixel> image(140, 30), other(140, 30);
    FillPattern(other, source.Word());
    FillPattern(image, source.Word());
    KxROI<Pixel> from(source.Either() ? &image : &other, source.Between(0, 60), source.Between(0, 9),
                      source.Between(1, 80), source.Between(1, 21));
    KxROI<Pixel> to(&image, source.Between(0, 40), source.Between(0, 9), source.Between(1, 100),
                    source.Between(1, 21));
    Bytes expected = PixelBytes(image);
    for (int i = 0; i < to.GetWidth() * to.GetHeight(); ++i) {
        const int x = i % to.GetWidth(), y = i / to.GetWidth();
        const Pixel pixel =
            from.GetPixel(x * from.GetWidth() / to.GetWidth(), y * from.GetHeight() / to.GetHeight());
        std::memcpy(
            &expected[static_cast<std::size_t>((y + to.GetOrgY()) * 140 + x + to.GetOrgX()) * sizeof pixel],
            &pixel, sizeof pixel);
    }
    KxResize(&from, &to);
    Require(PixelBytes(image) == expected,
            "every pixel takes the source pixel below it, the rest is left alone");
}

// The rule as it is written down: every pixel on its own, with D up to 0 inside and down to -limit in the
// ring.
void CheckMasks(ByteSource& source) {
    KxImage<KxBW8> image(source.Between(1, 90), source.Between(1, 90));
    const int width = image.GetWidth(), height = image.GetHeight();
    const float ratio = static_cast<float>(source.Byte()) / 200;
    const std::int64_t a = (width - 1L) * (width - 1), b = (height - 1L) * (height - 1);
    const auto limit = static_cast<std::int64_t>(
        std::floor((1.0 - double{ratio} * ratio) * static_cast<double>(a * b - a - b)));
    const bool isRing = source.Either();
    if (isRing)
        image.SetRingMask(ratio);
    else
        image.SetEllipseMask(0, 0, width, height);
    std::vector<bool> counts(static_cast<std::size_t>(width * height));
    const KxVectorTemplate<KxRun>& runs = image.GetMaskRuns();
    for (unsigned i = 0; i < runs.GetNumElements(); ++i) {
        const auto* first = static_cast<const KxBW8*>(runs[i].pBeg);
        Require(first == image.GetImagePtr(runs[i].n16X, runs[i].n16Y), "a run begins at its pixel");
        const auto length = static_cast<const KxBW8*>(runs[i].pEnd) - first;
        std::fill_n(counts.begin() + runs[i].n16Y * width + runs[i].n16X, length, true);
    }
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::int64_t u = 2 * x - (width - 1), v = 2 * y - (height - 1);
            const std::int64_t decision = b * u * u + a * v * v - a * b - a - b;
            Require(counts[static_cast<std::size_t>(y * width + x)] ==
                        (decision <= 0 && (!isRing || decision > -limit)),
                    "masks follow the decision value of every pixel");
        }
}

void (*const kChecks[])(ByteSource&) = {CheckRelief,         CheckMasks,         CheckResize<KxBW8>,
                                        CheckResize<KxBW16>, CheckResize<KxC15>, CheckResize<KxC16>,
                                        CheckResize<KxC24>,  CheckResize<KxC24A>};

}  // namespace
}  // namespace Zelkor::Kalvo::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    using namespace Zelkor::Kalvo::Fuzzing;
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    ByteSource source(bytes, count);
    kChecks[source.Between(0, static_cast<int>(std::size(kChecks)) - 1)](source);
    return 0;
}
