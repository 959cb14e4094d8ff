// What contexts draw with: modes, pens, brushes, origins, saved states; and rectangles.

#include "tests/support/section.h"

namespace {

using Zelkor::Kalvo::Testing::Section;

constexpr int kWidth = 16, kHeight = 9;

// Pixels of eight bits, whose numbers are their greys.
struct Sheet : Section {
    Sheet() : Section(kWidth, kHeight, 8) {}
};

COLORREF Grey(BYTE level) { return RGB(level, level, level); }

TEST(GdiDrawing, ModesCombineIndexesAndXorGivesThePictureBack) {
    const Sheet sheet;
    EXPECT_EQ(GetROP2(sheet.hdc), R2_COPYPEN);
    EXPECT_EQ(SetROP2(sheet.hdc, 0) + SetROP2(sheet.hdc, 17) + SetROP2(nullptr, R2_XORPEN), 0);
    const HPEN pen = CreatePen(PS_SOLID, 1, Grey(0xC));
    const HGDIOBJ stock = SelectObject(sheet.hdc, pen);
    struct Mode {
        int mode;
        int result;  // of pen 1100 and pixel 1010
    };
    const Mode modes[] = {
        {R2_BLACK, 0},      {R2_NOTMERGEPEN, 0xF1}, {R2_MASKNOTPEN, 2}, {R2_NOTCOPYPEN, 0xF3},
        {R2_MASKPENNOT, 4}, {R2_NOT, 0xF5},         {R2_XORPEN, 6},     {R2_NOTMASKPEN, 0xF7},
        {R2_MASKPEN, 8},    {R2_NOTXORPEN, 0xF9},   {R2_NOP, 0xA},      {R2_MERGENOTPEN, 0xFB},
        {R2_COPYPEN, 0xC},  {R2_MERGEPENNOT, 0xFD}, {R2_MERGEPEN, 0xE}, {R2_WHITE, 0xFF}};
    for (const auto& [mode, result] : modes) {
        sheet.bits[0] = 0xA;
        EXPECT_NE(SetROP2(sheet.hdc, mode), 0);
        MoveToEx(sheet.hdc, 0, 0, nullptr);
        LineTo(sheet.hdc, 1, 0);
        EXPECT_EQ(sheet.bits[0], result) << mode;
    }
    EXPECT_EQ(SetROP2(sheet.hdc, R2_COPYPEN), R2_WHITE);
    SelectObject(sheet.hdc, stock);
    DeleteObject(pen);

    const Section opaque(kWidth, kHeight);
    auto* const words = reinterpret_cast<std::uint32_t*>(opaque.bits);
    words[17] = 0x80123456;
    SetROP2(opaque.hdc, R2_NOT);
    Rectangle(opaque.hdc, 0, 0, 9, 9);
    EXPECT_EQ(words[17], 0x80EDCBA9) << "the fourth byte stays";
}

TEST(GdiDrawing, HatchesFollowTheOriginOfBrushesAndTheBackgroundMode) {
    struct Hatch {
        int hatch;
        const char* rows;
    };
    constexpr const char* kFalling =
        "#       \n #      \n  #     \n   #    \n    #   \n     #  \n      # \n       #\n";
    constexpr const char* kRising =
        "       #\n      # \n     #  \n    #   \n   #    \n  #     \n #      \n#       \n";
    const Hatch hatches[] = {
        {HS_HORIZONTAL, "        \n        \n        \n########\n        \n        \n        \n        \n"},
        {HS_VERTICAL, "    #   \n    #   \n    #   \n    #   \n    #   \n    #   \n    #   \n    #   \n"},
        {HS_FDIAGONAL, kFalling},
        {HS_BDIAGONAL, kRising},
        {HS_CROSS, "    #   \n    #   \n    #   \n########\n    #   \n    #   \n    #   \n    #   \n"},
        {HS_DIAGCROSS, "#      #\n #    # \n  #  #  \n   ##   \n   ##   \n  #  #  \n #    # \n#      #\n"}};
    Sheet sheet;
    SetBkMode(sheet.hdc, TRANSPARENT);
    for (const auto& [hatch, rows] : hatches) {
        const HBRUSH brush = CreateHatchBrush(hatch, Grey(1));
        sheet.Fill(0);
        const RECT rect{0, 0, 8, 8};
        EXPECT_TRUE(FillRect(sheet.hdc, &rect, brush));
        EXPECT_EQ(sheet.Picture(8, 8), rows);
        DeleteObject(brush);
    }
    EXPECT_EQ(CreateHatchBrush(6, 0), nullptr);

    const LOGBRUSH logical{BS_HATCHED, Grey(1), HS_VERTICAL}, none{BS_HOLLOW, 0, 0}, unknown{9, 0, 0};
    sheet.Select(CreateBrushIndirect(&logical));
    SetBrushOrgEx(sheet.hdc, -3, 0, nullptr);
    SetBkMode(sheet.hdc, OPAQUE);
    SetBkColor(sheet.hdc, Grey(2));
    sheet.Fill(0);
    PatBlt(sheet.hdc, 0, 0, 4, 1, PATCOPY);
    BitBlt(sheet.hdc, 0, 1, 4, 1, sheet.hdc, 8, 8, 0x00FC008A);  // pattern or source
    EXPECT_EQ(sheet.Picture(5, 2), "o#oo \no#oo \n");
    SetBkMode(sheet.hdc, TRANSPARENT);
    PatBlt(sheet.hdc, 0, 0, 4, 1, PATINVERT);
    EXPECT_EQ(sheet.Picture(5, 1), "o oo \n");
    sheet.Select(CreateBrushIndirect(&none));
    PatBlt(sheet.hdc, 0, 0, 4, 1, PATCOPY);
    EXPECT_EQ(sheet.Picture(5, 1), "o oo \n");
    EXPECT_EQ(CreateBrushIndirect(&unknown), nullptr);
    sheet.Select(GetStockObject(DC_BRUSH));
    EXPECT_EQ(SetDCBrushColor(sheet.hdc, Grey(1)), Grey(255));
    PatBlt(sheet.hdc, 0, 0, 2, 1, PATCOPY);
    EXPECT_EQ(sheet.Picture(3, 1), "##o\n");
}

TEST(GdiDrawing, PensTellTheirStyleAndDrawIt) {
    Sheet sheet;
    for (int style = PS_SOLID; style <= PS_INSIDEFRAME + 1; ++style) {
        const LOGPEN asked{static_cast<UINT>(style), {3, 0}, Grey(1)};
        const HPEN pen = CreatePenIndirect(&asked);
        LOGPEN told{};
        EXPECT_EQ(GetObjectA(pen, sizeof told, &told), int{sizeof told});
        EXPECT_EQ(told.lopnStyle, style > PS_INSIDEFRAME ? 0u : asked.lopnStyle);
        EXPECT_TRUE(DeleteObject(pen));
    }
    struct Style {
        int style;
        int width;
        const char* row;
    };
    const Style styles[] = {{PS_DASH, 1, "################"},    {PS_DOT, 1, "###ooo###ooo###o"},
                            {PS_DASHDOT, 0, "#########oooooo#"}, {PS_DASHDOTDOT, 1, "#########ooo###o"},
                            {PS_DASH, 2, "################"},    {PS_NULL, 1, "                "}};
    SetBkColor(sheet.hdc, Grey(2));
    for (const auto& [style, width, row] : styles) {
        sheet.Select(CreatePen(style, width, Grey(1)));
        sheet.Fill(0);
        MoveToEx(sheet.hdc, 0, 2, nullptr);
        LineTo(sheet.hdc, 16, 2);
        EXPECT_EQ(sheet.Picture(16, 3).substr(2 * 17, 16), row) << style;
    }
    sheet.Select(CreatePen(PS_DOT, 1, Grey(1)));
    SetBkMode(sheet.hdc, TRANSPARENT);
    sheet.Fill(3);
    const POINT points[] = {{14, 0}, {2, 0}};
    MoveToEx(sheet.hdc, 0, 0, nullptr);
    EXPECT_TRUE(Polyline(sheet.hdc, points, 2) && PolylineTo(sheet.hdc, points, 1));
    POINT position{};
    EXPECT_TRUE(GetCurrentPositionEx(sheet.hdc, &position));
    EXPECT_EQ(position.x, 14);
    EXPECT_EQ(sheet.Picture(16, 1), "###+++###+++###+\n");
    EXPECT_FALSE(Polyline(sheet.hdc, points, 1) || PolylineTo(sheet.hdc, points, 0));

    sheet.Select(CreatePen(PS_INSIDEFRAME, 3, Grey(1)));
    sheet.Select(GetStockObject(NULL_BRUSH));
    sheet.Fill(0);
    Rectangle(sheet.hdc, 1, 1, 9, 8);
    Ellipse(sheet.hdc, 11, 2, 13, 4);
    EXPECT_EQ(sheet.Picture(14, 9),
              "              \n ########     \n ########  ## \n ########  ## \n ###  ###     \n"
              " ########     \n ########     \n ########     \n              \n");
}

TEST(GdiDrawing, RectanglesAreFilledFramedAndInverted) {
    Sheet sheet;
    const HBRUSH one = CreateSolidBrush(Grey(1)), two = CreateSolidBrush(Grey(2));
    const RECT rect{2, 2, 7, 6}, single{10, 2, 11, 3}, empty{9, 5, 5, 9}, inner{-5, -9, 2, 1};
    SetViewportOrgEx(sheet.hdc, -1, -1, nullptr);
    SetROP2(sheet.hdc, R2_NOT);
    EXPECT_TRUE(FillRect(sheet.hdc, &rect, one) && FrameRect(sheet.hdc, &rect, two));
    EXPECT_TRUE(FrameRect(sheet.hdc, &single, two) && FillRect(sheet.hdc, &empty, one));
    EXPECT_TRUE(FrameRect(sheet.hdc, &empty, one));
    EXPECT_EQ(sheet.Picture(11, 6),
              "           \n ooooo   o \n o###o     \n o###o     \n ooooo     \n           \n");
    SetWindowOrgEx(sheet.hdc, -1, -1, nullptr);
    EXPECT_TRUE(InvertRect(sheet.hdc, &inner));
    EXPECT_EQ(sheet.Picture(3, 2), "++ \n oo\n");
    EXPECT_FALSE(FillRect(sheet.hdc, nullptr, one) || FillRect(sheet.hdc, &rect, nullptr) ||
                 InvertRect(nullptr, &rect));
    EXPECT_TRUE(DeleteObject(one) && DeleteObject(two));
}

TEST(GdiDrawing, PolygonsGoTogetherAndAreRefusedTogether) {
    Sheet sheet;
    sheet.Select(GetStockObject(DC_BRUSH));
    sheet.Select(GetStockObject(NULL_PEN));
    SetDCBrushColor(sheet.hdc, Grey(1));
    const POINT points[] = {{0, 0}, {8, 0}, {8, 8}, {0, 8}, {2, 2}, {5, 2}, {5, 5}, {2, 5}};
    const int counts[] = {4, 4}, bad[] = {7, 1};
    EXPECT_TRUE(PolyPolygon(sheet.hdc, points, counts, 2));
    EXPECT_EQ(sheet.Picture(6, 3), "######\n######\n##   #\n");
    EXPECT_EQ(SetPolyFillMode(sheet.hdc, WINDING), ALTERNATE);
    EXPECT_TRUE(PolyPolygon(sheet.hdc, points, counts, 2));
    EXPECT_EQ(sheet.Picture(6, 3), "######\n######\n######\n");
    EXPECT_FALSE(PolyPolygon(sheet.hdc, points, bad, 2) || PolyPolygon(sheet.hdc, points, counts, 0) ||
                 SetPolyFillMode(sheet.hdc, 3));
}

TEST(GdiContexts, SaveAndRestoreAllTheyDrawWith) {
    Sheet sheet;
    const HDC hdc = sheet.hdc;
    EXPECT_FALSE(RestoreDC(hdc, -1) || RestoreDC(hdc, 1) || SaveDC(nullptr));
    const HPEN pen = CreatePen(PS_DOT, 1, 0);
    const HGDIOBJ stock = SelectObject(hdc, pen);
    IntersectClipRect(hdc, 0, 0, 4, 4);
    EXPECT_EQ(SaveDC(hdc), 1);
    SelectObject(hdc, stock);
    SelectClipRgn(hdc, nullptr);
    SetROP2(hdc, R2_NOT);
    SetWindowOrgEx(hdc, 5, 5, nullptr);
    EXPECT_EQ(SaveDC(hdc), 2);
    EXPECT_EQ(SaveDC(hdc), 3);
    EXPECT_FALSE(DeleteObject(pen)) << "it is kept";
    const HGDIOBJ bitmap = SelectObject(hdc, GetCurrentObject(hdc, OBJ_BITMAP));
    EXPECT_EQ(bitmap, sheet.bitmap);
    EXPECT_FALSE(RestoreDC(hdc, 4) || RestoreDC(hdc, -4) || RestoreDC(hdc, 0) || RestoreDC(hdc, INT_MIN));
    EXPECT_TRUE(RestoreDC(hdc, -2));
    EXPECT_EQ(GetROP2(hdc), R2_NOT);
    EXPECT_TRUE(RestoreDC(hdc, 1));
    RECT box{};
    EXPECT_EQ(GetClipBox(hdc, &box), SIMPLEREGION);
    EXPECT_EQ(box.left + 10 * box.right, 40);
    EXPECT_EQ(GetROP2(hdc), R2_COPYPEN);
    EXPECT_EQ(GetCurrentObject(hdc, OBJ_PEN), pen);
    EXPECT_FALSE(RestoreDC(hdc, 1)) << "forgotten";
    EXPECT_EQ(SaveDC(hdc), 1);
    SelectObject(hdc, stock);
    const HDC other = CreateCompatibleDC(nullptr);
    SelectObject(other, pen);
    EXPECT_EQ(SaveDC(other), 1);
    DeleteDC(other);
    EXPECT_TRUE(RestoreDC(hdc, -1));
    SelectObject(hdc, stock);
    EXPECT_TRUE(DeleteObject(pen)) << "nobody has it any more";
}

TEST(GdiContexts, OriginsAddUp) {
    Sheet sheet;
    POINT previous{}, told{};
    EXPECT_TRUE(SetViewportOrgEx(sheet.hdc, 7, 1, nullptr) &&
                OffsetViewportOrgEx(sheet.hdc, 3, 2, &previous));
    EXPECT_EQ(previous.x * 10 + previous.y, 71);
    EXPECT_TRUE(SetWindowOrgEx(sheet.hdc, INT_MAX, 1, nullptr));
    EXPECT_FALSE(OffsetWindowOrgEx(sheet.hdc, 1, 0, nullptr));
    EXPECT_TRUE(OffsetWindowOrgEx(sheet.hdc, -5, 1, nullptr) && GetWindowOrgEx(sheet.hdc, &told));
    EXPECT_EQ(told.x, INT_MAX - 5);
    EXPECT_EQ(told.y, 2);
    EXPECT_EQ(SetPixel(sheet.hdc, INT_MAX - 6, 2, Grey(1)), Grey(1));
    EXPECT_EQ(sheet.bits[3 * kWidth + 9], 1);
    EXPECT_FALSE(OffsetViewportOrgEx(nullptr, 0, 0, nullptr) || GetWindowOrgEx(sheet.hdc, nullptr));
}

TEST(GdiObjects, StockObjectsAreOfTheirKinds) {
    for (int i = -1; i <= 20; ++i) {
        const bool isBrush = (i >= 0 && i <= 5) || i == DC_BRUSH, isPen = (i >= 6 && i <= 8) || i == DC_PEN;
        const bool isFont = i >= 10 && i <= 17 && i != DEFAULT_PALETTE;
        const UINT kind = isBrush ? OBJ_BRUSH : isPen ? OBJ_PEN : isFont ? OBJ_FONT : i == 15 ? OBJ_PAL : 0;
        EXPECT_EQ(GetObjectType(GetStockObject(i)), kind) << i;
    }
}

}  // namespace
