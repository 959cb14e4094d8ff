// Lines, shapes, inks and regions against slow rules that decide pixel by pixel: the pen's as 1, the brush's
// as 2.

#include <array>
#include <bitset>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <numbers>
#include <span>
#include <vector>

#include "kalvo/raster/blit.h"
#include "kalvo/raster/ink.h"
#include "kalvo/raster/lines.h"
#include "kalvo/raster/region.h"
#include "kalvo/raster/shapes.h"
#include "fuzz/byte_source.h"
#include "fuzz/require.h"
#include "tests/support/canvas.h"

namespace Zelkor::Platform {
namespace {

using Kalvo::Fuzzing::ByteSource;
using Kalvo::Fuzzing::Require;
using std::numbers::pi;

Inks PenAndBrush(std::int64_t penWidth) { return {Stroke{1, penWidth}, 2}; }
const Inks kBrushAlone{std::nullopt, 2};

Position PlaceFrom(ByteSource& source, int least, int most) {
    return {source.Between(least, most), source.Between(least, most)};
}

template <class Rule>
void RequirePicture(const Canvas& canvas, const char* what, Rule&& rule) {
    Require(canvas.Picture() == canvas.Picture(rule), what);
}

// Pixels with their centres inside, the middle rows and the middle columns.
bool IsInEllipse(const Box& box, std::int64_t px, std::int64_t py) {
    const Int128 w = box.Width(), h = box.Height();
    const Int128 x = 2 * px - (box.left + box.right - 1), y = 2 * py - (box.top + box.bottom - 1);
    if (x <= -w || x >= w || y <= -h || y >= h) return false;
    return x * x <= 1 || y * y <= 1 || x * x * h * h + y * y * w * w <= w * w * h * h;
}

void CheckEllipse(ByteSource& source) {
    const Canvas both(24, 22), filled(24, 22);
    const std::int64_t left = source.Between(-1, 1), top = source.Between(-1, 2);
    Box box{left, top, left + source.Between(0, 24), top + source.Between(0, 24)};
    if (source.OneIn(8)) {  // a giant one whose outline passes through
        const double angle = source.Between(0, 15) * pi / 8 + 0.1;
        const std::int64_t width = INT_MAX - 3 * source.Byte(), height = source.Either() ? INT_MAX : 900001;
        box.left = static_cast<std::int64_t>(12 - (1 + std::cos(angle)) * static_cast<double>(width) / 2);
        box.top = static_cast<std::int64_t>(12 - (1 + std::sin(angle)) * static_cast<double>(height) / 2);
        box = {box.left, box.top, box.left + width, box.top + height};
    }
    DrawEllipse(both.View(), box, PenAndBrush(1));
    DrawEllipse(filled.View(), box, kBrushAlone);
    RequirePicture(both, "an ellipse outlines pixels with a neighbour outside", [&](int x, int y) {
        const bool isSurrounded = IsInEllipse(box, x - 1, y) && IsInEllipse(box, x + 1, y) &&
                                  IsInEllipse(box, x, y - 1) && IsInEllipse(box, x, y + 1);
        return IsInEllipse(box, x, y) ? 1 + isSurrounded : 0;
    });
    --box.right, --box.bottom;
    RequirePicture(filled, "an ellipse without pen is one pixel smaller",
                   [&](int x, int y) { return 2 * IsInEllipse(box, x, y); });
}

// Whether a thin line has a pixel: the one nearest to it in a column or row, of two the upper or left one;
// but not the last.
bool IsOnLine(Position from, Position to, int x, int y) {
    const Int128 dx = to.x - from.x, dy = to.y - from.y;
    const bool alongX = dx * dx >= dy * dy;
    Int128 length = alongX ? dx : dy, step = alongX ? x - from.x : y - from.y;
    Int128 rise = alongX ? dy : dx, moved = alongX ? y - from.y : x - from.x;
    if (length < 0) length = -length, step = -step;
    const Int128 twiceOff = 2 * (step * rise - moved * length);
    return step >= 0 && step < length && twiceOff > -length && twiceOff <= length;
}

void CheckThinLine(ByteSource& source) {
    const std::int64_t reach = std::int64_t{8} << source.Between(0, 28);
    const auto offset = [&] { return static_cast<std::int64_t>(source.Word()) % (2 * reach + 1) - reach; };
    Position from{offset(), offset()}, to{offset(), offset()};
    if (source.Either()) to = {source.Between(0, 20) - from.x, source.Between(0, 13) - from.y};
    if (source.OneIn(8)) to.y = from.y = 5;
    if (source.OneIn(8)) to.x = from.x = 5;
    const Canvas canvas(21, 14, static_cast<PixelLayout>(source.Between(0, 5)), source.Either());
    PaintLine(canvas.View(), from, to, 1);
    RequirePicture(canvas, "a thin line has the nearest pixel of every column or row",
                   [&](int x, int y) { return IsOnLine(from, to, x, y); });
}

void CheckWideLine(ByteSource& source) {
    const int width = source.Between(2, 13), shift = 1 - width % 2;
    const Position from = PlaceFrom(source, -10, 34),
                   to = source.OneIn(50) ? from : PlaceFrom(source, -10, 34);
    const Canvas canvas(25, 25);
    DrawLine(canvas.View(), from, to, {1, width});
    const std::int64_t dx = 2 * (to.x - from.x), dy = 2 * (to.y - from.y), square = dx * dx + dy * dy;
    RequirePicture(canvas, "a wide pen covers what lies within half its width", [&](int px, int py) {
        const std::int64_t x = 2 * (px - from.x) + shift, y = 2 * (py - from.y) + shift;
        const std::int64_t along = x * dx + y * dy, across = x * dy - y * dx;
        if (along <= 0) return x * x + y * y <= width * width;
        if (along < square) return across * across <= width * width * square;
        return (x - dx) * (x - dx) + (y - dy) * (y - dy) <= width * width;
    });
}

double Turn(double angle) { return angle < 0 ? angle + 2 * pi : angle; }

void CheckArc(ByteSource& source) {
    const int width = source.Between(2, 5), before = width / 2;
    const Box box{4, 4, source.Between(11, 28), source.Between(11, 28)};
    const Box outer{4 - before, 4 - before, box.right - 1 - before + width, box.bottom - 1 - before + width};
    const bool isWhole = source.OneIn(9);
    const Position start = PlaceFrom(source, -10, 49), end = isWhole ? start : PlaceFrom(source, -10, 49);
    const Canvas canvas(24, 26);
    DrawArc(canvas.View(), box, start, end, {1, width});
    if (isWhole) DrawEllipse(canvas.View(), box, {Stroke{1, width}, {}});
    const double cx = static_cast<double>(box.left + box.right - 1) / 2,
                 cy = static_cast<double>(box.top + box.bottom - 1) / 2, shift = width % 2 ? 0 : 0.5;
    const auto angleOf = [&](Position at) {
        return std::atan2(cy - static_cast<double>(at.y), static_cast<double>(at.x) - cx);
    };
    const double first = angleOf(start), sweep = Turn(angleOf(end) - first);
    RequirePicture(canvas, "an arc runs counter-clockwise in its ring", [&](int x, int y) {
        const double angle = Turn(std::atan2(cy - shift - y, x - cx + shift) - first);
        const bool isOnRay = std::abs(angle - sweep) < 1e-9 || std::abs(angle - pi) > pi - 1e-9;
        return (isOnRay || sweep < 1e-9 || angle < sweep) && IsInEllipse(outer, x, y) &&
               !IsInEllipse(outer.GrownBy(-width), x, y);
    });
}

void CheckRoundRectangle(ByteSource& source) {
    const int width = source.Between(0, 8), height = source.Between(0, 8), pen = source.Between(1, 4);
    const Box box{3, 3, 16, 15};
    const Canvas canvas(20, 18);
    DrawRoundRectangle(canvas.View(), box, 2 * width, 2 * height, {Stroke{1, pen}, 2});
    const int before = pen / 2;
    const Box outer{3 - before, 3 - before, 15 - before + pen, 14 - before + pen};
    const auto isIn = [&](const Box& in, int grown, int x, int y) {
        const std::int64_t w = std::min<std::int64_t>(2 * width, box.Width()) + grown;
        const std::int64_t h = std::min<std::int64_t>(2 * height, box.Height()) + grown;
        if (!in.Contains({x, y})) return false;
        if (w <= 0 || h <= 0) return true;
        const bool isRight = 2 * (x - in.left) >= in.Width(), isLow = 2 * (y - in.top) >= in.Height();
        const std::int64_t left = isRight ? in.right - w : in.left, top = isLow ? in.bottom - h : in.top;
        const bool isCorner = isRight ? x >= in.right - w / 2 : x < in.left + w / 2;
        const bool isInCornerRows = isLow ? y >= in.bottom - h / 2 : y < in.top + h / 2;
        return !isCorner || !isInCornerRows || IsInEllipse({left, top, left + w, top + h}, x, y);
    };
    const auto isOuter = [&](int x, int y) { return isIn(outer, pen - 1, x, y); };
    RequirePicture(canvas, "a round rectangle has the corners of an ellipse", [&](int x, int y) {
        if (!isOuter(x, y)) return 0;
        if (pen > 1) return 1 + isIn(outer.GrownBy(-pen), -1 - pen, x, y);
        return 1 + (isOuter(x - 1, y) && isOuter(x + 1, y) && isOuter(x, y - 1) && isOuter(x, y + 1));
    });
}

void CheckPieAndChord(ByteSource& source) {
    const Box box{4, 4, source.Between(12, 28), source.Between(12, 28)};
    const Box inside{4, 4, box.right - 1, box.bottom - 1};
    const Position start = PlaceFrom(source, -10, 49), end = PlaceFrom(source, -10, 49);
    const double cx = static_cast<double>(inside.left + inside.right - 1) / 2,
                 cy = static_cast<double>(inside.top + inside.bottom - 1) / 2;
    const auto angleOf = [&](Position at) {
        return std::atan2(cy - static_cast<double>(at.y), static_cast<double>(at.x) - cx);
    };
    const double first = angleOf(start), sweep = Turn(angleOf(end) - first);
    if (sweep < 0.2 || sweep > 2 * pi - 0.2) return;
    const Canvas pie(28, 28), chord(28, 28);
    DrawPie(pie.View(), box, start, end, kBrushAlone);
    RequirePicture(pie, "a pie fills the angle", [&](int x, int y) {
        const double angle = Turn(angleOf({x, y}) - first);
        const bool isOnRay = std::abs(angle - sweep) < 1e-9 || std::abs(angle - pi) > pi - 1e-9;
        const bool isCentre = x == cx && y == cy;
        return 2 * ((isOnRay || isCentre || angle < sweep) && IsInEllipse(inside, x, y));
    });
    // Where a ray meets the ellipse, and which side of the line between two such points a pixel is on.
    const double a = static_cast<double>(inside.Width() - 1) / 2,
                 b = static_cast<double>(inside.Height() - 1) / 2;
    const auto meet = [&](Position at) {
        const double x = static_cast<double>(at.x) - cx, y = static_cast<double>(at.y) - cy,
                     scale = std::hypot(x / a, y / b);
        return scale > 0 ? std::pair{x / scale + cx, y / scale + cy} : std::pair{cx + a, cy};
    };
    const auto [x0, y0] = meet(start);
    const auto [x1, y1] = meet(end);
    DrawChord(chord.View(), box, start, end, kBrushAlone);
    for (int k = 0; k < 28 * 28; ++k) {
        const int x = k % 28, y = k / 28;
        const double off = ((x1 - x0) * (y - y0) - (y1 - y0) * (x - x0)) / std::hypot(x1 - x0, y1 - y0);
        if (std::abs(off) > 1.0)  // the ends are whole pixels
            Require(chord(x, y) == (off > 0 && IsInEllipse(inside, x, y) ? 2u : 0u),
                    "a chord fills what is beside its line");
    }
}

void CheckPolygon(ByteSource& source) {
    std::vector<POINT> points(static_cast<std::size_t>(source.Between(2, 11)));
    for (POINT& point : points) point = {source.Between(-15, 55), source.Between(-15, 55)};
    const int counts[] = {static_cast<int>(points.size())};
    const bool isWinding = source.Either();
    const Canvas canvas(40, 40);
    DrawPolygons(canvas.View(), points, counts, {}, kBrushAlone,
                 isWinding ? FillRule::Winding : FillRule::Alternate);
    RequirePicture(canvas, "a polygon counts the edges to the left", [&](int x, int y) {
        int edges = 0, winding = 0;
        for (std::size_t k = 0; k < points.size(); ++k) {
            const POINT a = points[k], b = points[(k + 1) % points.size()];
            const int side = (x - a.x) * (b.y - a.y) - (y - a.y) * (b.x - a.x);
            const bool isLeft = (a.y <= y) != (b.y <= y) && (b.y > a.y ? side >= 0 : side <= 0);
            edges += isLeft;
            winding += isLeft ? (b.y > a.y ? 1 : -1) : 0;
        }
        return (isWinding ? winding != 0 : edges % 2 != 0) ? 2 : 0;
    });
}

void CheckInk(ByteSource& source) {
    constexpr int kBits[] = {1, 8, 16, 16, 24, 24};
    const int layout = source.Between(0, 5), x0 = source.Between(0, 20), x1 = source.Between(x0, 21);
    const unsigned operation = static_cast<unsigned>(source.Between(0, 15));
    const RawPixel all = (1u << kBits[layout]) - 1, color = source.Word() & all, before = source.Word() & all;
    const Canvas canvas(21, 1, static_cast<PixelLayout>(layout));
    FillSpan(canvas.View(), 0, 0, 21, before);
    ApplyInk(canvas.View(), 0, x0, x1, InkOf(operation, color, static_cast<PixelLayout>(layout)));
    RawPixel expected = 0;
    for (int bit = 0; bit < kBits[layout]; ++bit)
        expected |= (operation >> (2 * (color >> bit & 1) + (before >> bit & 1)) & 1) << bit;
    for (int x = 0; x < 21; ++x)
        Require(canvas(x, 0) == (x >= x0 && x < x1 ? expected : before),
                "an ink changes its span bit by bit");
}

void CheckPattern(ByteSource& source) {
    const Pattern pattern = static_cast<Pattern>(source.Word()) << 32 | source.Word();
    const int right = source.Between(-8, 8), down = source.Between(-8, 8), gap = source.Either() ? 2 : 0;
    const Canvas canvas(30, 19);
    PaintBox(canvas.View(), {1, 0, 30, 19},
             {Ink(1), Moved(pattern, right, down), gap ? Ink(static_cast<RawPixel>(gap)) : kNoInk});
    RequirePicture(canvas, "patterns repeat and move", [&](int x, int y) {
        const int row = (y - down) & 7, column = (x - right) & 7;
        return x < 1 ? 0 : pattern >> (8 * row + 7 - column) & 1 ? 1 : gap;
    });
}

constexpr int kSize = 24;
using PixelSet = std::bitset<kSize * kSize>;

PixelSet PixelsOf(const auto& contains) {
    PixelSet pixels;
    for (int i = 0; i < kSize * kSize; ++i)
        pixels[static_cast<std::size_t>(i)] = contains(Position{i % kSize, i / kSize});
    return pixels;
}

Box SmallBox(ByteSource& source) {
    const int x = source.Between(-2, kSize), y = source.Between(-2, kSize);
    return {x, y, x + source.Between(0, 9), y + source.Between(0, 9)};
}

PixelSet Combined(const PixelSet& first, const PixelSet& second, SetOperation operation) {
    switch (operation) {
    case SetOperation::And:
        return first & second;
    case SetOperation::Or:
        return first | second;
    case SetOperation::Xor:
        return first ^ second;
    case SetOperation::Difference:
        break;
    }
    return first & ~second;
}

void CheckRegion(ByteSource& source) {
    Region region, shuffled;
    PixelSet pixels;
    for (int k = source.Between(1, 12); k > 0; --k) {
        const Box box = Intersection(SmallBox(source), {0, 0, kSize, kSize});
        const auto operation = static_cast<SetOperation>(pixels.none() ? 1 : source.Between(0, 9) % 4);
        region = Combination(region, Region(box), operation);
        pixels = Combined(pixels, PixelsOf([&](Position at) { return box.Contains(at); }), operation);
    }
    Require(PixelsOf([&](Position at) { return region.Contains(at); }) == pixels,
            "a region combines as its pixels do");
    for (int x = kSize - 1; x >= 0; --x)
        for (int y = 0; y < kSize; ++y)
            if (pixels[static_cast<std::size_t>(y * kSize + x)])
                shuffled = Combination(Region({x, y, x + 1, y + 1}), shuffled, SetOperation::Xor);
    Require(region == shuffled, "regions of the same pixels are equal");
    const Box box = SmallBox(source);
    Require(region.Overlaps(box) == (pixels & PixelsOf([&](Position at) { return box.Contains(at); })).any(),
            "a region overlaps a box where they share a pixel");
}

const POINT kKnot[] = {{2, 2}, {20, 18}, {20, 3}, {2, 17}, {11, -5}, {11, 30}};
const int kKnotCounts[] = {4, 2};

// Draw with pen and brush on a surface of kSize x kSize pixels.
const std::function<void(const Surface&, const Inks&)> kShapes[] = {
    [](auto& surface, auto& inks) {
        DrawRectangle(surface, {2, 3, 20, 15}, inks);
    },
    [](auto& surface, auto& inks) {
        DrawRectangle(surface, {5, 3, 6, 9}, inks);
    },
    [](auto& surface, auto& inks) {
        DrawRectangle(surface, {5, 3, 6, 4}, inks);
    },
    [](auto& surface, auto& inks) {
        DrawEllipse(surface, {-3, 3, 20, 15}, inks);
    },
    [](auto& surface, auto& inks) {
        DrawRoundRectangle(surface, {2, -3, 23, 15}, 9, 7, inks);
    },
    [](auto& surface, auto& inks) {
        DrawPolygons(surface, kKnot, kKnotCounts, {1, 0}, inks, FillRule::Alternate);
    },
    [](auto& surface, auto& inks) {
        DrawPie(surface, {2, 3, 22, 21}, {9, 0}, {30, 20}, inks);
    },
    [](auto& surface, auto& inks) {
        DrawChord(surface, {-2, 3, 12, 31}, {3, 0}, {12, 31}, inks);
    },
    [](auto& surface, auto& inks) {
        if (inks.pen) DrawPolyline(surface, kKnot, {}, *inks.pen);
    },
    [](auto& surface, auto& inks) {
        if (inks.pen) DrawArc(surface, {2, 3, 22, 21}, {9, 0}, {30, 20}, *inks.pen);
    },
};
constexpr int kShapeCount = static_cast<int>(std::size(kShapes));

void CheckFlippingInks(ByteSource& source) {
    const Region clip = Combination(Region({0, 0, 24, 24}), Region({6, 5, 14, 12}), SetOperation::Difference);
    constexpr Dashes kLong{0b000000111111111111111111};
    const auto flipping = [](RawPixel pixel) { return Ink(0xFF, pixel); };
    const auto& draw = kShapes[source.Between(0, kShapeCount - 1)];
    const std::int64_t width = source.Between(1, 4);
    const int kind = source.Between(0, 3);  // both, brush alone, pen alone, both with dashes
    const bool isDashed = kind == 3;
    const Dashes dashes = isDashed ? kLong : Dashes{};
    Inks covering, flips;
    if (kind != 1) {
        covering.pen = Stroke{1, width, dashes, isDashed ? Ink(3) : kNoInk};
        flips.pen = Stroke{flipping(1), width, dashes, isDashed ? flipping(3) : kNoInk};
    }
    if (kind != 2) covering.brush = 2, flips.brush = flipping(2);
    const Canvas covered(kSize, kSize), flipped(kSize, kSize);
    Surface one = covered.View(), other = flipped.View();
    one.clip = other.clip = source.Either() ? &clip : nullptr;
    draw(one, covering);
    draw(other, flips);
    Require(flipped.Picture() == covered.Picture(), "a shape reaches the same pixels whatever the ink");
    draw(other, flips);
    RequirePicture(flipped, "a shape reaches each pixel once", [](int, int) { return 0; });
}

void BlitScaled(const Surface& surface, int width, bool blends) {
    const Canvas source(9, 9, PixelLayout::Bgr24, true, 0x5A);
    PaintLine(source.View(), {0, 0}, {9, 9}, 0xFFFFFF);
    const BlitAxis columns{2, width, 0, 9}, rows{kSize - 1, -width, 0, 9};
    if (blends)
        Blend(surface, source.View(), columns, rows, 100);
    else
        Blit(surface, source.View(), columns, rows);
}

void CheckClip(ByteSource& source) {
    Region clip(SmallBox(source));
    for (int k = source.Between(0, 6); k > 0; --k)
        clip = Combination(clip, Region(SmallBox(source)), SetOperation::Xor);
    const auto layout = static_cast<PixelLayout>(source.Between(0, 5));
    const int shape = source.Between(-4, kShapeCount - 1), width = source.Between(1, 7);
    const bool isBottomUp = source.Either();
    const auto draw = [&](const Surface& surface) {
        if (shape < 0) return BlitScaled(surface, shape % 2 ? 9 : 21, shape < -2);
        kShapes[shape](surface, {Stroke{1, width}, 0});
    };
    const Canvas clipped(kSize, kSize, layout, isBottomUp), whole(kSize, kSize, layout);
    Surface surface = clipped.View();
    surface.clip = &clip;
    draw(surface);
    draw(whole.View());
    RequirePicture(clipped, "whatever is drawn keeps to the clip region", [&](int x, int y) {
        return clip.Contains({x, y}) ? whole(x, y) : 0;
    });
}

void (*const kChecks[])(ByteSource&) = {
    CheckEllipse, CheckThinLine, CheckWideLine, CheckArc,    CheckRoundRectangle, CheckPieAndChord,
    CheckPolygon, CheckInk,      CheckPattern,  CheckRegion, CheckFlippingInks,   CheckClip,
};

}  // namespace
}  // namespace Zelkor::Platform

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    using namespace Zelkor;
    Kalvo::Fuzzing::ByteSource source(bytes, count);
    Platform::kChecks[source.Between(0, static_cast<int>(std::size(Platform::kChecks)) - 1)](source);
    return 0;
}
