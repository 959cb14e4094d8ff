// Pixels and spans in all layouts.

#include "tests/support/test.h"

#include "kalvo/raster/lines.h"
#include "tests/support/canvas.h"

namespace Zelkor::Platform {
namespace {

constexpr int kLayouts = 6;
PixelLayout Layout(int index) { return static_cast<PixelLayout>(index % kLayouts); }

TEST(GdiSurface, SpansChangeTheirPixelsAlone) {
    constexpr int kWidth = 55;
    for (int i = 0; i < kLayouts * kWidth * kWidth; ++i) {
        const int x0 = i / kLayouts % kWidth, x1 = std::max(x0, i / kLayouts / kWidth);
        const Canvas canvas(kWidth, 3, Layout(i), true, x0 % 2 ? 0 : 0xFF);
        const RawPixel other = canvas(0, 0), pixel = RawFromBgr(canvas.View(), other ? 0 : 0xFFFFFF);
        FillSpan(canvas.View(), 1, x0, x1, pixel);
        ASSERT_EQ(canvas.Picture(),
                  canvas.Picture([&](int x, int y) { return y == 1 && x >= x0 && x < x1 ? pixel : other; }));
    }
}

TEST(GdiSurface, ColoursComeBackAsNearAsTheLayoutHasThem) {
    constexpr RawPixel kFound[kLayouts][2] = {{0x000000, 0xFFFFFF}, {0x000000, 0xFFFFFF},
                                              {0x10B552, 0x84847B}, {0x10B652, 0x84827B},
                                              {0x12B456, 0x80807F}, {0x12B456, 0x80807F}};
    for (int i = 0; i < 11 * kLayouts; ++i) {
        const Canvas canvas(11, 3, Layout(i));
        const RawPixel pixel = RawFromBgr(canvas.View(), i % 2 ? 0x80807F : 0x12B456);
        StorePixel(canvas.View(), i / kLayouts, 1, pixel);
        EXPECT_EQ(BgrFromRaw(canvas.View(), canvas(i / kLayouts, 1)), kFound[i % kLayouts][i % 2]);
    }
    const RGBQUAD colors[] = {{0, 0, 9, 0}, {0, 9, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}, {9, 0, 0, 0}};
    EXPECT_EQ(NearestEntry(colors, 0x000000), 2u) << "the first of equal ones";
    EXPECT_EQ(NearestEntry(colors, 0x080800), 0u) << "the first of equally near ones";
    EXPECT_EQ(NearestEntry(colors, 0x0000FF), 4u);
    EXPECT_EQ(BgrFromRaw({nullptr, 0, 1, 1, PixelLayout::Indexed8, colors}, 5), 0u);
}

}  // namespace
}  // namespace Zelkor::Platform
