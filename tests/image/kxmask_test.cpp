// Masks of regions: rectangles, ellipses, rings, offsets. Every pixel of them is checked by
// fuzz/fuzz_views.cpp.

#include "tests/support/test.h"

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
        const int start = runs[i].n16Y * (region.GetWidth() + 1) + runs[i].n16X;
        std::fill_n(picture.begin() + start, length, '#');
    }
    return picture;
}

TEST(Mask, IsClippedToTheRegion) {
    Image image(30, 30);
    Region region(&image, 5, 5, 6, 4);
    region.SetRectangleMask(-3, 0, 7, 2);
    EXPECT_EQ(Picture(region), "####..\n####..\n......\n......\n");
    region.SetRectangleMask(4, 3, 10, 10);
    EXPECT_EQ(Picture(region), "......\n......\n......\n....##\n");
    region.SetRectangleMask(0, 0, 0, 0);
    EXPECT_EQ(Picture(region), "######\n######\n######\n######\n");
    region.SetEllipseMask(1, 1, 4, 3);
    EXPECT_EQ(Picture(region), "......\n..##..\n.####.\n..##..\n");
    KxSetError(KX_ERROR_FILE_READ);
    region.SetRingMask(0.5f);
    EXPECT_EQ(KxGetError(), KX_ERROR_FILE_READ) << "what was pending stays";
    EXPECT_EQ(Picture(region), "..##..\n#....#\n#....#\n..##..\n");
}

TEST(Mask, ClippedToNothingIsRefused) {
    Image image(30, 30);
    image.SetRectangleMask(0, 0, 2, 2);
    for (const auto& [x, y] : {std::pair(30, 0), {0, 30}, {-10, 0}, {0, -5}}) {
        const TraceRecorder trace;
        KxOk();
        image.SetRectangleMask(x, y, 5, 5);
        EXPECT_EQ(KxGetError(), KX_ERROR_ALLOCATION) << x << ", " << y;
        EXPECT_EQ(trace.Functions().back(), "KxROI::SetRectangleMask");
        EXPECT_EQ(image.GetMaskRuns().GetNumElements(), 2u) << "no runs would mean that all pixels count";
    }
}

TEST(MaskOffsets, CountBytesFromTheFirstPixel) {
    KxImage<KxC24> image(24, 10);
    KxROI<KxC24> region(&image, 3, 3, 12, 5);
    region.SetMaskOffsets(1);
    region.SetRectangleMask(2, 1, 4, 2);
    const KxRun first = region.GetMaskRuns()[0];
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(first.pBeg), image.GetRowPitch() + 3 * 2);
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(first.pEnd), image.GetRowPitch() + 3 * 6);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
