// Pixels and spans in all layouts, and thin lines against the rule that says which pixels they have.

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

// Whether a line has a pixel: the one nearest to it in a column or row, of two the upper or left one; but not
// the last.
bool IsOnLine(Position from, Position to, int x, int y) {
    const Int128 dx = to.x - from.x, dy = to.y - from.y;
    const bool alongX = dx * dx >= dy * dy;
    Int128 length = alongX ? dx : dy, step = alongX ? x - from.x : y - from.y;
    Int128 rise = alongX ? dy : dx, moved = alongX ? y - from.y : x - from.x;
    if (length < 0) length = -length, step = -step;
    const Int128 twiceOff = 2 * (step * rise - moved * length);
    return step >= 0 && step < length && twiceOff > -length && twiceOff <= length;
}

TEST(GdiLine, HasTheNearestPixelOfEveryColumnOrRowAfterClipping) {
    std::mt19937 random(1);
    for (int i = 0; i < 12000; ++i) {
        const std::int64_t reach = std::int64_t{8} << random() % 29;
        const auto offset = [&] { return static_cast<std::int64_t>(random()) % (2 * reach + 1) - reach; };
        Position from{offset(), offset()}, to{offset(), offset()};
        if (i % 2)  // through the canvas, however far away the ends are
            to = {static_cast<int>(random() % 21) - from.x, static_cast<int>(random() % 14) - from.y};
        if (i % 10 == 1) to.y = from.y = 5;
        if (i % 10 == 3) to.x = from.x = 5;
        const Canvas canvas(21, 14, Layout(i), i % 4 == 0);
        PaintLine(canvas.View(), from, to, 1);
        ASSERT_EQ(canvas.Picture(), canvas.Picture([&](int x, int y) { return IsOnLine(from, to, x, y); }))
            << i;
    }
}

}  // namespace
}  // namespace Zelkor::Platform
