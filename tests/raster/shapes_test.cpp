// Shapes, the pen's pixels as 1, the brush's as 2, and the functions that draw them. What each pixel must be
// is checked by fuzz/fuzz_shapes.cpp.

#include "tests/support/test.h"

#include "kalvo/raster/shapes.h"
#include "tests/support/canvas.h"
#include "tests/support/section.h"

namespace Zelkor::Platform {
namespace {

Inks PenAndBrush(std::int64_t penWidth) { return {Stroke{1, penWidth}, 2}; }
constexpr Inks kBrushAlone{std::nullopt, 2};

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
    expectRow("#ooooooo", [&](auto& view) {
        DrawPolygons(view, square, std::array{4}, {-kMin, kMin + 9}, PenAndBrush(1), FillRule::Alternate);
    });
}

constexpr Dashes kDots{0b000111000111000111000111};

TEST(GdiShapes, DashesCountStepsAndGoOnAroundCorners) {
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

TEST(GdiDrawing, UsesTheObjectsTheOriginAndThePositionOfItsContext) {
    Kalvo::Testing::Section section(9, 7);
    const HDC hdc = section.hdc;
    section.Select(CreatePen(PS_SOLID, 1, RGB(1, 0, 0)));
    section.Select(CreateSolidBrush(RGB(2, 0, 0)));
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
    EXPECT_EQ(section.Picture(9, 7),
              "####  +  \n#oo#     \n#oo# ####\n#oo#  #o#\n####   ##\n        #\n     ##  \n");
    SetViewportOrgEx(hdc, 0, 0, nullptr);
    section.Select(GetStockObject(NULL_PEN));
    section.Select(GetStockObject(WHITE_BRUSH));
    EXPECT_TRUE(Ellipse(hdc, 6, 4, 1, 1) && Arc(hdc, 0, 0, 9, 7, 0, 0, 0, 0) && LineTo(hdc, 9, 9));
    EXPECT_EQ(section.Picture(9, 7),
              "####  +  \n#++++    \n#++++####\n#oo#  #o#\n####   ##\n        #\n     ##  \n");
    EXPECT_FALSE(LineTo(nullptr, 0, 0) || SetPixel(nullptr, 0, 0, 0) != CLR_INVALID);
}

}  // namespace
}  // namespace Zelkor::Platform
