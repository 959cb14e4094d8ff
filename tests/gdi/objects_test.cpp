// Handles, what is selected into a context, and palettes.

#include "tests/support/test.h"

namespace {

using Zelkor::Platform::CountGdiObjects;
using Zelkor::Platform::CreatePaletteDC;

struct OpenContext {
    HDC hdc = CreateCompatibleDC(nullptr);
    ~OpenContext() { DeleteDC(hdc); }
};

TEST(GdiObjects, FreshContextHasTheDocumentedDefaults) {
    const OpenContext context;
    const HDC hdc = context.hdc;
    EXPECT_EQ(GetCurrentObject(hdc, OBJ_PEN), GetStockObject(BLACK_PEN));
    EXPECT_EQ(GetCurrentObject(hdc, OBJ_BRUSH), GetStockObject(WHITE_BRUSH));
    EXPECT_EQ(GetCurrentObject(hdc, OBJ_FONT), GetStockObject(SYSTEM_FONT));
    EXPECT_EQ(GetCurrentObject(hdc, OBJ_PAL), GetStockObject(DEFAULT_PALETTE));
    BITMAP bitmap{};
    EXPECT_EQ(GetObjectA(GetCurrentObject(hdc, OBJ_BITMAP), sizeof bitmap, &bitmap), int{sizeof bitmap});
    EXPECT_EQ(bitmap.bmWidth * 1000 + bitmap.bmHeight * 100 + bitmap.bmBitsPixel, 1101);
    EXPECT_EQ(GetTextColor(hdc), RGB(0, 0, 0));
    EXPECT_EQ(GetBkColor(hdc), RGB(255, 255, 255));
    EXPECT_EQ(GetBkMode(hdc), OPAQUE);
    EXPECT_EQ(GetDeviceCaps(hdc, LOGPIXELSY), 96);
    EXPECT_EQ(GetDeviceCaps(hdc, RASTERCAPS) & RC_PALETTE, 0);
}

TEST(GdiObjects, StaleHandlesFailAlsoWhenTheirSlotIsTakenAgain) {
    const int before = CountGdiObjects();
    const OpenContext context;
    const HPEN first = CreatePen(PS_SOLID, 3, RGB(1, 2, 3));
    const HGDIOBJ previous = SelectObject(context.hdc, first);
    EXPECT_EQ(DeleteObject(first), 0) << "it is selected";
    EXPECT_EQ(SelectObject(context.hdc, previous), first);
    EXPECT_NE(DeleteObject(first), 0);
    const HPEN second = CreatePen(PS_SOLID, 1, RGB(4, 5, 6));
    EXPECT_NE(second, first);
    LOGPEN pen{};
    EXPECT_EQ(GetObjectA(first, sizeof pen, &pen), 0);
    EXPECT_EQ(SelectObject(context.hdc, first), nullptr);
    EXPECT_EQ(GetObjectA(second, sizeof pen, &pen), int{sizeof pen});
    EXPECT_EQ(pen.lopnColor, RGB(4, 5, 6));
    EXPECT_EQ(GetObjectA(second, sizeof pen - 1, &pen), 0);
    EXPECT_NE(DeleteObject(second), 0);
    EXPECT_EQ(CountGdiObjects(), before + 1) << "the context";
    EXPECT_EQ(SetTextColor(nullptr, 0), CLR_INVALID);
    EXPECT_EQ(SelectObject(nullptr, GetStockObject(BLACK_PEN)), nullptr);
}

TEST(GdiObjects, ABitmapIsInOneContextAtATime) {
    const OpenContext one, other;
    BITMAPINFO info{};
    info.bmiHeader = {40, 2, 2, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr);
    const HGDIOBJ stock = SelectObject(one.hdc, bitmap);
    ASSERT_NE(stock, nullptr);
    EXPECT_EQ(SelectObject(other.hdc, bitmap), nullptr);
    EXPECT_EQ(SelectObject(other.hdc, stock), nullptr) << "the first context's own";
    EXPECT_EQ(SelectObject(one.hdc, stock), bitmap);
    EXPECT_NE(DeleteObject(bitmap), 0);
}

TEST(GdiPalette, RealisedColorsFillThePlacesBetweenTheFixedOnes) {
    const HDC device = CreatePaletteDC(4, 4);
    ASSERT_NE(GetDeviceCaps(device, RASTERCAPS) & RC_PALETTE, 0);
    EXPECT_EQ(SetPixel(device, 0, 0, RGB(9, 9, 9)), RGB(0, 0, 0)) << "nearest fixed colour";
    std::vector<std::uint32_t> memory(258);
    auto* logical = reinterpret_cast<LOGPALETTE*>(memory.data());
    logical->palVersion = 0x300;
    logical->palNumEntries = 257;
    EXPECT_EQ(CreatePalette(logical), nullptr);
    logical->palNumEntries = 256;
    for (int i = 0; i < 256; ++i) {
        const auto level = static_cast<BYTE>(i);
        logical->palPalEntry[i] = {level, level, level, 0};
    }
    const HPALETTE palette = CreatePalette(logical);
    const HPALETTE previous = SelectPalette(device, palette, 0);
    EXPECT_EQ(SetPixel(device, 0, 0, RGB(9, 9, 9)), RGB(0, 0, 0)) << "not realised yet";
    EXPECT_GT(RealizePalette(device), 200u);
    EXPECT_EQ(SetPixel(device, 0, 0, RGB(9, 9, 9)), RGB(9, 9, 9));
    for (const COLORREF fixed : {RGB(255, 0, 0), RGB(166, 202, 240), RGB(255, 251, 240)})
        EXPECT_EQ(SetPixel(device, 0, 0, fixed), fixed) << "fixed colours stay";
    EXPECT_EQ(RealizePalette(device), 0u);
    EXPECT_EQ(DeleteObject(palette), 0) << "it is selected";
    SelectPalette(device, previous, 0);
    EXPECT_NE(DeleteObject(palette), 0);
    EXPECT_NE(DeleteDC(device), 0);
}

}  // namespace
