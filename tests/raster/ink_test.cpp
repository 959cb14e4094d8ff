// Inks against single bits and steps, and shapes drawn with inks that do not cover.

#include "tests/support/test.h"

#include "kalvo/raster/ink.h"
#include "kalvo/raster/shapes.h"
#include "tests/support/canvas.h"

namespace Zelkor::Platform {
namespace {

TEST(Ink, AppliesItsOperationToEachBit) {
    constexpr int kBits[] = {1, 8, 16, 16, 24, 24};
    std::mt19937 random(3);
    for (int i = 0; i < 6 * 16 * 8; ++i) {
        const auto layout = static_cast<PixelLayout>(i % 6);
        const unsigned operation = static_cast<unsigned>(i / 6) % 16;
        const RawPixel all = (1u << kBits[i % 6]) - 1, color = random() & all, before = random() & all;
        const Canvas canvas(21, 1, layout);
        FillSpan(canvas.View(), 0, 0, 21, before);
        ApplyInk(canvas.View(), 0, 2, 20, InkOf(operation, color, layout));
        RawPixel expected = 0;
        for (int bit = 0; bit < kBits[i % 6]; ++bit)
            expected |= (operation >> (2 * (color >> bit & 1) + (before >> bit & 1)) & 1) << bit;
        for (int x = 0; x < 21; ++x)
            ASSERT_EQ(canvas(x, 0), x >= 2 && x < 20 ? expected : before) << operation << ' ' << i % 6;
    }
}

TEST(Ink, PatternsRepeatAndMove) {
    std::mt19937_64 random(4);
    for (int i = 0; i < 200; ++i) {
        const Pattern pattern = i % 5 ? random() : random() & 0xFF00FF00;
        const int right = i * 5 % 17 - 8, down = i * 3 % 17 - 8;
        const Canvas canvas(30, 19);
        PaintBox(canvas.View(), {1, 0, 30, 19},
                 {Ink(1), Moved(pattern, right, down), i % 2 ? Ink(2) : kNoInk});
        ASSERT_EQ(canvas.Picture(), canvas.Picture([&](int x, int y) {
            const int row = (y - down) & 7, column = (x - right) & 7;
            if (x < 1) return 0;
            return pattern >> (8 * row + 7 - column) & 1 ? 1 : i % 2 * 2;
        }));
    }
}

constexpr Dashes kDots{0b000111000111000111000111}, kLong{0b000000111111111111111111};

TEST(Ink, DashesCountStepsAndGoOnAroundCorners) {
    const Canvas canvas(30, 9);
    const Stroke dots{1, 1, kDots, kNoInk}, opaque{1, 1, kDots, 2};
    const POINT corner[] = {{-4, 0}, {20, 0}, {20, 9}};
    DrawPolyline(canvas.View(), corner, {}, dots);
    DrawRectangle(canvas.View(), {0, 2, 8, 7}, {opaque, {}});
    DrawLine(canvas.View(), {12, 8}, {8, 4}, dots);
    DrawEllipse(canvas.View(), {22, 1, 29, 8}, {opaque, {}});
    EXPECT_EQ(canvas.Picture(),
              "  ###   ###   ###   #         \n                    #   ooo   \n"
              "###ooo##            #  #   #  \no      #              #     # \n"
              "#      o              #     # \n#      o              o     o \n"
              "#ooo###o  #         #  o   #  \n           #        #   o##   \n"
              "            #       #         \n");
    const Canvas wide(9, 3);
    DrawLine(wide.View(), {1, 1}, {7, 1}, {1, 3, kDots, 2});
    EXPECT_EQ(wide.Picture(), "#########\n#########\n#########\n");
}

const POINT kKnot[] = {{2, 2}, {20, 18}, {20, 3}, {2, 17}, {11, -5}, {11, 30}};
const int kKnotCounts[] = {4, 2};

// Draw with pen 1 and brush 2, or other inks.
const std::function<void(const Surface&, const Inks&)> kShapes[] = {
    [](const Surface& surface, const Inks& inks) {
        DrawRectangle(surface, {2, 3, 20, 15}, inks);
    },
    [](const Surface& surface, const Inks& inks) {
        DrawRectangle(surface, {5, 3, 6, 9}, inks);
    },
    [](const Surface& surface, const Inks& inks) {
        DrawRectangle(surface, {5, 3, 6, 4}, inks);
    },
    [](const Surface& surface, const Inks& inks) {
        DrawEllipse(surface, {-3, 3, 20, 15}, inks);
    },
    [](const Surface& surface, const Inks& inks) {
        DrawRoundRectangle(surface, {2, -3, 23, 15}, 9, 7, inks);
    },
    [](const Surface& surface, const Inks& inks) {
        DrawPolygons(surface, kKnot, kKnotCounts, {1, 0}, inks, FillRule::Alternate);
    },
    [](const Surface& surface, const Inks& inks) {
        DrawPie(surface, {2, 3, 22, 21}, {9, 0}, {30, 20}, inks);
    },
    [](const Surface& surface, const Inks& inks) {
        DrawChord(surface, {-2, 3, 12, 31}, {3, 0}, {12, 31}, inks);
    },
    [](const Surface& surface, const Inks& inks) {
        if (inks.pen) DrawPolyline(surface, kKnot, {}, *inks.pen);
    },
    [](const Surface& surface, const Inks& inks) {
        if (inks.pen) DrawArc(surface, {2, 3, 22, 21}, {9, 0}, {30, 20}, *inks.pen);
    },
};

TEST(Ink, ShapesReachTheSamePixelsWhateverTheInkAndEachOnce) {
    const Region clip = Combination(Region({0, 0, 24, 24}), Region({6, 5, 14, 12}), SetOperation::Difference);
    const auto flipping = [](RawPixel pixel) { return Ink(0xFF, pixel); };
    for (int i = 0; i < 2 * 4 * 4 * static_cast<int>(std::size(kShapes)); ++i) {
        const auto& draw = kShapes[i / 32];
        const std::int64_t width = i / 8 % 4 + 1;
        const bool hasPen = i / 2 % 4 != 1, hasBrush = i / 2 % 4 != 2;
        const Dashes dashes = i / 2 % 4 == 3 ? kLong : Dashes{};
        const Ink gap = i / 2 % 4 == 3 ? Ink(3) : kNoInk, flippingGap = gap == kNoInk ? gap : flipping(3);
        Inks covering, flips;
        if (hasPen)
            covering.pen = Stroke{1, width, dashes, gap},
            flips.pen = {flipping(1), width, dashes, flippingGap};
        if (hasBrush) covering.brush = 2, flips.brush = flipping(2);
        const Canvas covered(24, 24), flipped(24, 24);
        Surface one = covered.View(), other = flipped.View();
        one.clip = other.clip = i % 2 ? &clip : nullptr;
        draw(one, covering);
        draw(other, flips);
        ASSERT_EQ(flipped.Picture(), covered.Picture()) << i;
        draw(other, flips);
        ASSERT_EQ(flipped.Picture(), flipped.Picture([](int, int) { return 0; })) << i;
    }
}

}  // namespace
}  // namespace Zelkor::Platform
