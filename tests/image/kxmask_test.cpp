// Masks of regions: rectangles, ellipses, rings, offsets.

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "kalvo/image/kximage.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Image = KxImage<KxBW8>;
using Region = KxROI<KxBW8>;

// The runs as text: one row per line, # where a pixel counts.
std::string Picture(Region& region) {
    std::string picture;
    for (int y = 0; y < region.GetHeight(); ++y)
        picture += std::string(static_cast<std::size_t>(region.GetWidth()), '.') + "\n";
    const KxVectorTemplate<KxRun>& runs = region.GetMaskRuns();
    for (unsigned i = 0; i < runs.GetNumElements(); ++i) {
        const auto* first = static_cast<const KxBW8*>(runs[i].pBeg);
        EXPECT_EQ(first, region.GetImagePtr(runs[i].n16X, runs[i].n16Y));
        const auto length = static_cast<const KxBW8*>(runs[i].pEnd) - first;
        for (int x = 0; x < length; ++x)
            picture[static_cast<std::size_t>(runs[i].n16Y * (region.GetWidth() + 1) + runs[i].n16X + x)] =
                '#';
    }
    return picture;
}

TEST(RectangleMask, IsClippedToTheRegion) {
    Image image(30, 30);
    Region region(&image, 5, 5, 6, 4);
    region.SetRectangleMask(-3, 0, 7, 2);
    EXPECT_EQ(Picture(region), "####..\n####..\n......\n......\n");
    region.SetRectangleMask(4, 3, 10, 10);
    EXPECT_EQ(Picture(region), "......\n......\n......\n....##\n");
    region.SetRectangleMask(0, 0, 0, 0);
    EXPECT_EQ(Picture(region), "######\n######\n######\n######\n");
    region.SetBinarizedMask(7);
    EXPECT_EQ(region.GetMaskRuns().GetNumElements(), 4u);
    region.ResetMask();
    EXPECT_EQ(region.GetMaskRuns().GetNumElements(), 0u);
}

TEST(RectangleMask, ClippedToNothingIsRefused) {
    TraceRecorder trace;
    Image image(30, 30);
    image.SetRectangleMask(0, 0, 2, 2);
    for (const auto& [x, y] : {std::pair(30, 0), {0, 30}, {1000, 0}, {-10, 0}, {0, -5}}) {
        image.SetRectangleMask(x, y, 5, 5);
        EXPECT_EQ(KxGetError(), KX_ERROR_ALLOCATION) << x << ", " << y;
        EXPECT_EQ(image.GetMaskRuns().GetNumElements(), 2u) << "no runs would mean that all pixels count";
        EXPECT_EQ(trace.Functions().back(), "KxROI::SetRectangleMask");
    }
    KxOk();
}

TEST(EllipseMask, TouchesTheBox) {
    Image image(30, 30);
    Region five(&image, 3, 3, 5, 5), four(&image, 3, 3, 4, 3), one(&image, 3, 3, 1, 1);
    five.SetEllipseMask(0, 0, 0, 0);
    EXPECT_EQ(Picture(five), "..#..\n.###.\n#####\n.###.\n..#..\n");
    four.SetEllipseMask(0, 0, 4, 3);
    EXPECT_EQ(Picture(four), ".##.\n####\n.##.\n");
    one.SetEllipseMask(0, 0, 1, 1);
    EXPECT_EQ(Picture(one), "#\n");
    five.SetEllipseMask(1, 2, 4, 3);
    EXPECT_EQ(Picture(five), ".....\n.....\n..##.\n.####\n..##.\n");
}

// The rule as it is written down: every pixel on its own, with D up to 0 inside and down to -limit in the
// ring.
TEST(EllipseAndRingMask, FollowTheDecisionValueOfEveryPixel) {
    for (const auto& [width, height] : {std::pair(9, 9), {17, 8}, {2, 31}, {40, 1}, {33, 34}}) {
        for (const float ratio : {0.0f, 0.3f, 0.75f, 1.0f}) {
            Image image(width, height);
            const long a = (width - 1L) * (width - 1), b = (height - 1L) * (height - 1);
            const long limit = static_cast<long>(
                std::floor((1.0 - double{ratio} * ratio) * static_cast<double>(a * b - a - b)));
            std::string ellipse, ring;
            for (int y = 0; y < height; ++y, ellipse += '\n', ring += '\n')
                for (int x = 0; x < width; ++x) {
                    const long u = 2L * x - (width - 1), v = 2L * y - (height - 1);
                    const long decision = b * u * u + a * v * v - a * b - a - b;
                    ellipse += decision <= 0 ? '#' : '.';
                    ring += decision <= 0 && decision > -limit ? '#' : '.';
                }
            image.SetEllipseMask(0, 0, width, height);
            EXPECT_EQ(Picture(image), ellipse);
            image.SetRingMask(ratio);
            EXPECT_EQ(Picture(image), ring) << width << " x " << height << ", ratio " << ratio;
        }
    }
}

TEST(MaskOffsets, CountBytesFromTheFirstPixel) {
    Image image(24, 10);
    Region region(&image, 3, 3, 12, 5);
    region.SetMaskOffsets(1);
    region.SetRectangleMask(2, 1, 4, 2);
    const KxRun first = region.GetMaskRuns()[0];
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(first.pBeg), 26u);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(first.pEnd), 30u);

    KxImage<KxC24> color(10, 4);
    color.SetMaskOffsets(1);
    color.SetRectangleMask(2, 1, 4, 1);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(color.GetMaskRuns()[0].pBeg), 48u + 6u);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(color.GetMaskRuns()[0].pEnd), 48u + 18u);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
