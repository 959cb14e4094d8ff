// Regions against sets of single pixels, and every kind of drawing clipped by one.

#include "tests/support/test.h"

#include <bitset>

#include "kalvo/raster/blit.h"
#include "kalvo/raster/region.h"
#include "kalvo/raster/shapes.h"
#include "tests/support/canvas.h"

namespace Zelkor::Platform {
namespace {

constexpr int kSize = 24;
using PixelSet = std::bitset<kSize * kSize>;

struct Random {
    std::mt19937 engine{7};
    int Between(int least, int most) { return std::uniform_int_distribution(least, most)(engine); }
    Box SmallBox() {
        const int x = Between(-2, kSize), y = Between(-2, kSize);
        return {x, y, x + Between(0, 9), y + Between(0, 9)};
    }
};

PixelSet PixelsOf(const auto& contains) {
    PixelSet pixels;
    for (int i = 0; i < kSize * kSize; ++i) pixels[i] = contains(Position{i % kSize, i / kSize});
    return pixels;
}

TEST(Region, CombinesAsItsPixelsDoAndLooksAlikeWhenTheyAre) {
    Random random;
    for (int i = 0; i < 400; ++i) {
        Region region, shuffled;
        PixelSet pixels;
        for (int k = 0; k < 1 + i % 12; ++k) {
            const Box box = Intersection(random.SmallBox(), {0, 0, kSize, kSize});
            const PixelSet boxPixels = PixelsOf([&](Position at) { return box.Contains(at); });
            switch (const auto operation = static_cast<SetOperation>(k == 0 ? 1 : random.Between(0, 9) % 4);
                    region = Combination(region, Region(box), operation), operation) {
            case SetOperation::And:
                pixels &= boxPixels;
                break;
            case SetOperation::Or:
                pixels |= boxPixels;
                break;
            case SetOperation::Xor:
                pixels ^= boxPixels;
                break;
            case SetOperation::Difference:
                pixels &= ~boxPixels;
                break;
            }
        }
        ASSERT_EQ(PixelsOf([&](Position at) { return region.Contains(at); }), pixels);
        for (int x = kSize - 1; x >= 0; --x)
            for (int y = 0; y < kSize; ++y)
                if (pixels[y * kSize + x])
                    shuffled = Combination(Region({x, y, x + 1, y + 1}), shuffled, SetOperation::Xor);
        ASSERT_EQ(region, shuffled);
        const Box box = random.SmallBox();
        ASSERT_EQ(region.Overlaps(box),
                  (pixels & PixelsOf([&](Position at) { return box.Contains(at); })).any());
    }
}

// Each draws on a surface of kSize x kSize pixels.
void BlitScaled(const Surface& surface, int width, bool blends) {
    const Canvas source(9, 9, PixelLayout::Bgr24, true, 0x5A);
    PaintLine(source.View(), {0, 0}, {9, 9}, 0xFFFFFF);
    const BlitAxis columns{2, width, 0, 9}, rows{kSize - 1, -width, 0, 9};
    if (blends)
        Blend(surface, source.View(), columns, rows, 100);
    else
        Blit(surface, source.View(), columns, rows);
}
const std::function<void(const Surface&)> kDrawings[] = {
    [](const Surface& surface) {
        PaintBox(surface, {-5, 1, 50, 22}, 1);
    },
    [](const Surface& surface) {
        for (int i = 0; i < kSize; ++i) PaintLine(surface, {i, -3}, {kSize - i, 30}, 1);
    },
    [](const Surface& surface) {
        for (int i = 0; i < kSize; ++i) PaintLine(surface, {-3, i}, {30, kSize - i}, 1);
    },
    [](const Surface& surface) {
        DrawLine(surface, {2, 3}, {20, 17}, {1, 7});
    },
    [](const Surface& surface) {
        DrawEllipse(surface, {1, 2, 23, 21}, {Stroke{1, 3}, 0});
    },
    [](const Surface& surface) {
        DrawArc(surface, {1, 2, 23, 21}, {0, 0}, {40, 2}, {1, 1});
    },
    [](const Surface& surface) {
        const POINT points[] = {{1, 1}, {30, 5}, {4, 23}, {9, -8}};
        DrawPolygons(surface, points, std::array{static_cast<int>(std::size(points))}, {}, {Stroke{0, 1}, 1},
                     FillRule::Alternate);
    },
    [](const Surface& surface) { BlitScaled(surface, 9, false); },
    [](const Surface& surface) { BlitScaled(surface, 21, false); },
    [](const Surface& surface) { BlitScaled(surface, 9, true); },
    [](const Surface& surface) { BlitScaled(surface, 21, true); },
};

TEST(Region, ClipsWhateverIsDrawn) {
    Random random;
    for (int i = 0; i < 60; ++i) {
        Region clip(random.SmallBox());
        for (int k = 0; k < i % 7; ++k)
            clip = Combination(clip, Region(random.SmallBox()), SetOperation::Xor);
        for (const auto& draw : kDrawings) {
            const auto layout = static_cast<PixelLayout>(i % 6);
            const Canvas clipped(kSize, kSize, layout, i % 2), whole(kSize, kSize, layout);
            Surface surface = clipped.View();
            surface.clip = &clip;
            draw(surface);
            draw(whole.View());
            ASSERT_EQ(clipped.Picture(), clipped.Picture([&](int x, int y) {
                return clip.Contains({x, y}) ? whole(x, y) : 0;
            })) << i
                << ' ' << &draw - kDrawings;
        }
    }
}

}  // namespace
}  // namespace Zelkor::Platform
