// Shapes against slow rules that decide pixel by pixel, the pen's as 1, the brush's as 2; and the functions
// that draw them.

#include "tests/support/test.h"

#include "kalvo/raster/shapes.h"
#include "tests/support/canvas.h"

namespace Zelkor::Platform {
namespace {

using std::numbers::pi;

Inks PenAndBrush(std::int64_t penWidth) { return {Stroke{1, penWidth}, 2}; }
constexpr Inks kBrushAlone{std::nullopt, 2};

void DrawPolygon(const Surface& surface, std::span<const POINT> points, Position origin, const Inks& inks,
                 FillRule rule = FillRule::Alternate) {
    const int count = static_cast<int>(points.size());
    DrawPolygons(surface, points, {&count, 1}, origin, inks, rule);
}

struct Random {
    std::mt19937 engine;
    int Between(int least, int most) { return std::uniform_int_distribution(least, most)(engine); }
    Position Place(int least, int most) { return {Between(least, most), Between(least, most)}; }
};

// Pixels with their centres inside, the middle rows and the middle columns.
bool IsInEllipse(const Box& box, std::int64_t px, std::int64_t py) {
    const Int128 w = box.Width(), h = box.Height();
    const Int128 x = 2 * px - (box.left + box.right - 1), y = 2 * py - (box.top + box.bottom - 1);
    if (x <= -w || x >= w || y <= -h || y >= h) return false;
    return x * x <= 1 || y * y <= 1 || x * x * h * h + y * y * w * w <= w * w * h * h;
}

TEST(GdiEllipse, HasThePixelsInsideAndOutlinesThoseWithANeighbourOutside) {
    constexpr int kSmall = 25 * 25;
    for (int i = 0; i < kSmall + 16; ++i) {
        const Canvas both(24, 22), filled(24, 22);
        Box box{i % 3 - 1, i % 4 - 1, i % 3 - 1 + i % 25, i % 4 - 1 + i / 25};
        if (i >= kSmall) {  // a giant one whose outline passes through
            const double angle = i * pi / 8 + 0.1;
            const std::int64_t width = INT_MAX - 3 * i, height = i % 3 ? INT_MAX : 900001;
            box.left = static_cast<std::int64_t>(12 - (1 + std::cos(angle)) * width / 2);
            box.top = static_cast<std::int64_t>(12 - (1 + std::sin(angle)) * height / 2);
            box = {box.left, box.top, box.left + width, box.top + height};
        }
        DrawEllipse(both.View(), box, PenAndBrush(1));
        DrawEllipse(filled.View(), box, kBrushAlone);
        ASSERT_EQ(both.Picture(), both.Picture([&](int x, int y) {
            const bool isSurrounded = IsInEllipse(box, x - 1, y) && IsInEllipse(box, x + 1, y) &&
                                      IsInEllipse(box, x, y - 1) && IsInEllipse(box, x, y + 1);
            return IsInEllipse(box, x, y) ? 1 + isSurrounded : 0;
        }));
        --box.right, --box.bottom;
        ASSERT_EQ(filled.Picture(), filled.Picture([&](int x, int y) { return 2 * IsInEllipse(box, x, y); }));
    }
}

TEST(GdiRectangle, OutlinesItsBox) {
    const Canvas canvas(28, 5);
    const auto draw = [&](const Box& box, const Inks& inks) { DrawRectangle(canvas.View(), box, inks); };
    draw({0, 0, 4, 3}, PenAndBrush(1));
    draw({5, 0, 6, 3}, PenAndBrush(1));
    draw({7, 0, 11, 1}, PenAndBrush(1));
    draw({7, 2, 8, 3}, PenAndBrush(1));
    draw({9, 2, 9, 5}, PenAndBrush(3));
    draw({12, 0, 16, 3}, kBrushAlone);
    draw({18, 1, 23, 5}, PenAndBrush(2));
    draw({25, 2, 26, 3}, PenAndBrush(3));
    EXPECT_EQ(canvas.Picture(),
              "#### # #### ooo  ######     \n#oo# #      ooo  ###### ### \n"
              "#### # #         ##oo## ### \n                 ###### ### \n"
              "                 ######     \n");
}

TEST(GdiLine, AWidePenCoversWhatLiesWithinHalfItsWidth) {
    Random random;
    for (int i = 0; i < 2000; ++i) {
        const int width = 2 + i % 12, shift = 1 - width % 2;
        const Position from = random.Place(-10, 34), to = i % 50 ? random.Place(-10, 34) : from;
        const Canvas canvas(25, 25);
        DrawLine(canvas.View(), from, to, {1, width});
        const std::int64_t dx = 2 * (to.x - from.x), dy = 2 * (to.y - from.y), square = dx * dx + dy * dy;
        ASSERT_EQ(canvas.Picture(), canvas.Picture([&](int px, int py) {
            const std::int64_t x = 2 * (px - from.x) + shift, y = 2 * (py - from.y) + shift;
            const std::int64_t along = x * dx + y * dy, across = x * dy - y * dx;
            if (along <= 0) return x * x + y * y <= width * width;
            if (along < square) return across * across <= width * width * square;
            return (x - dx) * (x - dx) + (y - dy) * (y - dy) <= width * width;
        }));
    }
}

TEST(GdiArc, RunsCounterClockwiseInTheRingBetweenTheBoxGrownAndShrunkByThePen) {
    Random random;
    const auto turn = [](double angle) { return angle < 0 ? angle + 2 * pi : angle; };
    for (int i = 0; i < 600; ++i) {
        const int width = 2 + i % 4, before = width / 2;
        const Box box{4, 4, random.Between(11, 28), random.Between(11, 28)};
        const Box outer{4 - before, 4 - before, box.right - 1 - before + width,
                        box.bottom - 1 - before + width};
        const Position start = random.Place(-10, 49), end = i % 9 ? random.Place(-10, 49) : start;
        const Canvas canvas(24, 26);
        DrawArc(canvas.View(), box, start, end, {1, width});
        if (i % 9 == 0) DrawEllipse(canvas.View(), box, {Stroke{1, width}, {}});
        const double cx = (box.left + box.right - 1) / 2.0, cy = (box.top + box.bottom - 1) / 2.0;
        const double first = std::atan2(cy - start.y, start.x - cx), shift = i % 2 ? 0 : 0.5;
        const double sweep = turn(std::atan2(cy - end.y, end.x - cx) - first);
        ASSERT_EQ(canvas.Picture(), canvas.Picture([&](int x, int y) {
            const double angle = turn(std::atan2(cy - shift - y, x - cx + shift) - first);
            const bool isOnRay = std::abs(angle - sweep) < 1e-9 || std::abs(angle - pi) > pi - 1e-9;
            return (isOnRay || sweep < 1e-9 || angle < sweep) && IsInEllipse(outer, x, y) &&
                   !IsInEllipse(outer.GrownBy(-width), x, y);
        })) << i;
    }
    const Canvas fromCentre(7, 4);
    DrawArc(fromCentre.View(), {0, 0, 7, 7}, {3, 3}, {3, 0}, {1, 1});
    EXPECT_EQ(fromCentre.Picture(), "   ##  \n     # \n      #\n      #\n");
}

TEST(GdiRoundRectangle, HasCornersOfAnEllipse) {
    for (int i = 0; i < 9 * 9 * 4; ++i) {
        const int width = i % 9, height = i / 9 % 9, pen = 1 + i / 81;
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
        ASSERT_EQ(canvas.Picture(), canvas.Picture([&](int x, int y) {
            if (!isOuter(x, y)) return 0;
            if (pen > 1) return 1 + isIn(outer.GrownBy(-pen), -1 - pen, x, y);
            return 1 + (isOuter(x - 1, y) && isOuter(x + 1, y) && isOuter(x, y - 1) && isOuter(x, y + 1));
        })) << width
            << ' ' << height << ' ' << pen;
    }
}

TEST(GdiPie, FillsTheAngleAndTheChordWhatIsBesideItsLine) {
    Random random;
    const auto turn = [](double angle) { return angle < 0 ? angle + 2 * pi : angle; };
    for (int i = 0; i < 500; ++i) {
        const Box box{4, 4, random.Between(12, 28), random.Between(12, 28)};
        const Box inside{4, 4, box.right - 1, box.bottom - 1};
        const Position start = random.Place(-10, 49), end = random.Place(-10, 49);
        const double cx = (inside.left + inside.right - 1) / 2.0, cy = (inside.top + inside.bottom - 1) / 2.0;
        const double first = std::atan2(cy - start.y, start.x - cx);
        const double sweep = turn(std::atan2(cy - end.y, end.x - cx) - first);
        if (sweep < 0.2 || sweep > 2 * pi - 0.2) continue;
        const Canvas pie(28, 28), chord(28, 28);
        DrawPie(pie.View(), box, start, end, kBrushAlone);
        ASSERT_EQ(pie.Picture(), pie.Picture([&](int x, int y) {
            const double angle = turn(std::atan2(cy - y, x - cx) - first);
            const bool isOnRay = std::abs(angle - sweep) < 1e-9 || std::abs(angle - pi) > pi - 1e-9;
            const bool isCentre = x == cx && y == cy;
            return 2 * ((isOnRay || isCentre || angle < sweep) && IsInEllipse(inside, x, y));
        })) << i;
        // Where a ray meets the ellipse, and which side of the line between two such points a pixel is on.
        const double a = (inside.Width() - 1) / 2.0, b = (inside.Height() - 1) / 2.0;
        const auto meet = [&](Position at) {
            const double x = at.x - cx, y = at.y - cy, scale = std::hypot(x / a, y / b);
            return scale > 0 ? std::pair{x / scale + cx, y / scale + cy} : std::pair{cx + a, cy};
        };
        const auto [x0, y0] = meet(start);
        const auto [x1, y1] = meet(end);
        DrawChord(chord.View(), box, start, end, kBrushAlone);
        for (int k = 0; k < 28 * 28; ++k) {
            const int x = k % 28, y = k / 28;
            const double off = ((x1 - x0) * (y - y0) - (y1 - y0) * (x - x0)) / std::hypot(x1 - x0, y1 - y0);
            if (std::abs(off) <= 1.0) continue;  // the ends are whole pixels
            ASSERT_EQ(chord(x, y), off > 0 && IsInEllipse(inside, x, y) ? 2u : 0u) << i;
        }
    }
}

TEST(GdiPolygon, WindingCountsTheDirectionsOfEdges) {
    Random random;
    for (int i = 0; i < 400; ++i) {
        std::vector<POINT> points(3 + i % 9);
        for (POINT& point : points) point = {random.Between(-15, 55), random.Between(-15, 55)};
        const int counts[] = {2, static_cast<int>(points.size()) - 2};
        const Canvas canvas(40, 40);
        const std::span<const int> all(counts);
        DrawPolygons(canvas.View(), points, all, {}, kBrushAlone, FillRule::Winding);
        ASSERT_EQ(canvas.Picture(), canvas.Picture([&](int x, int y) {
            int winding = 0;
            for (std::size_t k = 2; k < points.size(); ++k) {
                const POINT a = points[k], b = points[k + 1 < points.size() ? k + 1 : 2];
                const int side = (x - a.x) * (b.y - a.y) - (y - a.y) * (b.x - a.x);
                if ((a.y <= y) != (b.y <= y) && (b.y > a.y ? side >= 0 : side <= 0))
                    winding += b.y > a.y ? 1 : -1;
            }
            return winding ? 2 : 0;
        }));
    }
}

TEST(GdiPolygon, FillsWhereAnOddNumberOfEdgesLiesToTheLeft) {
    Random random;
    for (int i = 0; i < 1500; ++i) {
        std::vector<POINT> points(2 + i % 9);
        for (POINT& point : points) point = {random.Between(-15, 55), random.Between(-15, 55)};
        const Canvas canvas(40, 40);
        DrawPolygon(canvas.View(), points, {}, kBrushAlone);
        ASSERT_EQ(canvas.Picture(), canvas.Picture([&](int x, int y) {
            unsigned edges = 0;
            for (std::size_t k = 0; k < points.size(); ++k) {
                const POINT a = points[k], b = points[(k + 1) % points.size()];
                const int side = (x - a.x) * (b.y - a.y) - (y - a.y) * (b.x - a.x);
                if ((a.y <= y) != (b.y <= y)) edges += b.y > a.y ? side >= 0 : side <= 0;
            }
            return edges % 2 * 2;
        }));
    }
}

TEST(GdiShapes, TakeAnyCoordinatesAndPens) {
    constexpr std::int64_t kMin = INT_MIN, kMax = INT_MAX, kHalf = kMin / 2;
    const Box all{kMin, kMin, kMax, kMax}, half{kHalf + 9, kHalf + 9, kMax / 2, kMax / 2}, small{3, 2, 4, 3};
    const POINT square[] = {{INT_MIN, INT_MIN}, {INT_MAX, INT_MIN}, {INT_MAX, INT_MAX}, {INT_MIN, INT_MAX}};
    const auto expectRow = [&](const std::string& row, auto&& draw) {
        const Canvas canvas(8, 1);
        draw(canvas.View());
        EXPECT_EQ(canvas.Picture(), row + '\n');
    };
    expectRow("oooooooo", [&](auto& view) { DrawRectangle(view, all, PenAndBrush(1)); });
    expectRow("########", [&](auto& view) { DrawRectangle(view, half, PenAndBrush(kMax)); });
    expectRow("oooooooo", [&](auto& view) { DrawEllipse(view, all, PenAndBrush(kMax)); });
    expectRow("########", [&](auto& view) { DrawArc(view, small, {kMax, 0}, {kMax, 0}, {1, kMax}); });
    expectRow("###     ", [&](auto& view) {
        DrawLine(view, {kHalf + 3, kMin}, {kHalf + 3, kMax}, {1, kMax});
    });
    expectRow("  ###   ", [&](auto& view) { DrawLine(view, {3, -9}, {3, -9 - 2 * kMin}, {1, 3}); });
    expectRow("#ooooooo", [&](auto& view) { DrawPolygon(view, square, {-kMin, kMin + 9}, PenAndBrush(1)); });
}

TEST(GdiDrawing, UsesTheObjectsTheOriginAndThePositionOfItsContext) {
    const HDC hdc = CreateCompatibleDC(nullptr);
    BITMAPINFO info{};
    info.bmiHeader = {40, 9, -7, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    const HGDIOBJ objects[] = {CreateDIBSection(hdc, &info, DIB_RGB_COLORS, nullptr),
                               CreatePen(PS_SOLID, 1, RGB(1, 0, 0)), CreateSolidBrush(RGB(2, 0, 0))};
    for (const HGDIOBJ object : objects) SelectObject(hdc, object);
    const auto picture = [&] {
        SetViewportOrgEx(hdc, 0, 0, nullptr);
        return Canvas(9, 7).Picture([&](int x, int y) { return GetPixel(hdc, x, y); });
    };
    SetViewportOrgEx(hdc, INT_MIN, INT_MAX, nullptr);
    EXPECT_EQ(GetPixel(hdc, 0, 0), CLR_INVALID);
    SetViewportOrgEx(hdc, 1, 2, nullptr);
    EXPECT_TRUE(Rectangle(hdc, 3, 3, -1, -2));
    const POINT corners[] = {{4, 0}, {7, 0}, {7, 3}};
    EXPECT_TRUE(Polygon(hdc, corners, 3));
    EXPECT_FALSE(Polygon(hdc, corners, 1) || Polygon(hdc, corners, -1) || Polygon(hdc, nullptr, 3));
    POINT previous{};
    EXPECT_TRUE(MoveToEx(hdc, 4, 4, nullptr) && LineTo(hdc, 6, 4) && MoveToEx(hdc, 0, 0, &previous));
    EXPECT_EQ(previous.x * 10 + previous.y, 64);
    EXPECT_EQ(SetPixel(hdc, 5, -2, 0xFF000003), 3u);
    EXPECT_EQ(picture(), "####  +  \n#oo#     \n#oo# ####\n#oo#  #o#\n####   ##\n        #\n     ##  \n");
    SelectObject(hdc, GetStockObject(NULL_PEN));
    SelectObject(hdc, GetStockObject(WHITE_BRUSH));
    EXPECT_TRUE(Ellipse(hdc, 6, 4, 1, 1) && Arc(hdc, 0, 0, 9, 7, 0, 0, 0, 0) && LineTo(hdc, 9, 9));
    EXPECT_EQ(picture(), "####  +  \n#++++    \n#++++####\n#oo#  #o#\n####   ##\n        #\n     ##  \n");
    EXPECT_FALSE(LineTo(nullptr, 0, 0) || SetPixel(nullptr, 0, 0, 0) != CLR_INVALID);
    DeleteDC(hdc);
    for (const HGDIOBJ object : objects) EXPECT_TRUE(DeleteObject(object));
}

}  // namespace
}  // namespace Zelkor::Platform
