// Regions behind handles, and contexts that draw in one.

#include "tests/support/section.h"

namespace {

constexpr int kWidth = 8, kHeight = 5;

class GdiRegions : public testing::Test {
protected:
    ~GdiRegions() override { EXPECT_TRUE(DeleteObject(box) && DeleteObject(other)); }

    // What the context draws in, as a box drawn over all of it shows.
    std::string Drawn() {
        section.Fill(0);
        POINT origin;
        SetViewportOrgEx(hdc, 0, 0, &origin);
        Rectangle(hdc, -1, -1, kWidth + 2, kHeight + 2);
        SetViewportOrgEx(hdc, origin.x, origin.y, nullptr);
        std::string picture;
        for (int i = 0; i < kWidth * kHeight; ++i) {
            picture += section.bits[4 * i] ? '#' : '.';
            if (i % kWidth == kWidth - 1) picture += ' ';
        }
        return picture;
    }

    Zelkor::Kalvo::Testing::Section section{kWidth, kHeight};
    const HDC hdc = section.hdc;
    HRGN box = CreateRectRgn(5, 4, 1, 1), other = CreateRectRgn(3, 2, 20, 20);
};

TEST_F(GdiRegions, CombineAndTellTheirBox) {
    RECT rect{};
    EXPECT_EQ(GetRgnBox(box, &rect), SIMPLEREGION);
    EXPECT_EQ(rect.left * 1000 + rect.top * 100 + rect.right * 10 + rect.bottom, 1154) << "any two corners";
    const HRGN target = CreateRectRgn(0, 0, 0, 0);
    EXPECT_EQ(GetRgnBox(target, &rect), NULLREGION);
    EXPECT_EQ(CombineRgn(target, box, other, RGN_AND), SIMPLEREGION);
    EXPECT_EQ(CombineRgn(target, box, other, RGN_DIFF), COMPLEXREGION);
    EXPECT_TRUE(PtInRegion(target, 4, 1) && !PtInRegion(target, 4, 2));
    EXPECT_EQ(CombineRgn(target, target, other, RGN_OR), COMPLEXREGION);
    EXPECT_EQ(CombineRgn(target, target, other, RGN_XOR), COMPLEXREGION);
    EXPECT_EQ(CombineRgn(target, target, nullptr, RGN_COPY), COMPLEXREGION);
    EXPECT_FALSE(EqualRgn(target, box));
    EXPECT_EQ(CombineRgn(target, target, nullptr, RGN_AND), ERROR);
    EXPECT_EQ(CombineRgn(target, box, other, 6), ERROR);
    EXPECT_EQ(OffsetRgn(box, INT_MAX, 0), ERROR);
    EXPECT_EQ(OffsetRgn(box, 2, -1), SIMPLEREGION);
    const RECT right{7, 2, 6, 3};
    EXPECT_TRUE(RectInRegion(box, &right));
    EXPECT_TRUE(DeleteObject(target));
    EXPECT_EQ(GetRgnBox(target, &rect), ERROR);
}

TEST_F(GdiRegions, ContextsDrawInACopyOfWhatIsSelected) {
    RECT rect{};
    EXPECT_EQ(GetClipBox(hdc, &rect), SIMPLEREGION);
    EXPECT_EQ(rect.right * 10 + rect.bottom, 85);
    EXPECT_EQ(GetClipRgn(hdc, box), 0);
    SetViewportOrgEx(hdc, 1, 1, nullptr);
    EXPECT_EQ(SelectClipRgn(hdc, box), SIMPLEREGION);
    SetRectRgn(box, 0, 0, 1, 1);
    EXPECT_EQ(Drawn(), "........ .####... .####... .####... ........ ") << "whatever the origin is";
    EXPECT_EQ(ExcludeClipRect(hdc, 1, 1, 2, 2), COMPLEXREGION);
    EXPECT_EQ(Drawn(), "........ .####... .#.##... .####... ........ ");
    EXPECT_EQ(GetPixel(hdc, 1, 1), CLR_INVALID);
    EXPECT_EQ(SetPixel(hdc, 1, 1, 0), CLR_INVALID);
    EXPECT_TRUE(PtVisible(hdc, 0, 1) && !PtVisible(hdc, 1, 1));
    EXPECT_EQ(IntersectClipRect(hdc, INT_MIN, 2, INT_MAX, INT_MAX), SIMPLEREGION);
    EXPECT_EQ(OffsetClipRgn(hdc, 0, 1), SIMPLEREGION);
    EXPECT_EQ(GetClipBox(hdc, &rect), SIMPLEREGION);
    EXPECT_EQ(rect.left * 1000 + rect.top * 100 + rect.right * 10 + rect.bottom, 344);
    EXPECT_EQ(Drawn(), "........ ........ ........ ........ .####... ");
    EXPECT_EQ(ExtSelectClipRgn(hdc, other, RGN_OR), COMPLEXREGION);
    EXPECT_EQ(Drawn(), "........ ........ ...##### ...##### .####### ");
    EXPECT_EQ(GetClipRgn(hdc, other), 1);
    EXPECT_EQ(IntersectClipRect(hdc, 0, 0, 0, 9), NULLREGION);
    EXPECT_EQ(Drawn(), "........ ........ ........ ........ ........ ");
    EXPECT_EQ(SelectObject(hdc, other), reinterpret_cast<HGDIOBJ>(std::intptr_t{COMPLEXREGION}));
    EXPECT_EQ(SelectClipRgn(hdc, reinterpret_cast<HRGN>(section.bitmap)), ERROR);
    EXPECT_EQ(SelectClipRgn(hdc, nullptr), SIMPLEREGION);
    EXPECT_EQ(Drawn(), "######## ######## ######## ######## ######## ");
    EXPECT_EQ(SelectClipRgn(nullptr, box), ERROR);
}

TEST_F(GdiRegions, ClipTexts) {
    const auto draw = [&] {
        section.Fill(0);
        RECT rect{0, 0, kWidth, kHeight};
        EXPECT_GT(DrawTextA(hdc, "Mm", -1, &rect, DT_NOCLIP), 0);
        return std::vector<std::uint8_t>(section.bits, section.bits + section.bytes);
    };
    SetTextColor(hdc, RGB(0, 0, 9));
    SetBkColor(hdc, RGB(9, 0, 0));
    std::vector<std::uint8_t> expected = draw();
    CombineRgn(other, other, box, RGN_XOR);
    SelectClipRgn(hdc, other);
    for (int i = 0; i < 4 * kWidth * kHeight; ++i)
        if (!PtInRegion(other, i / 4 % kWidth, i / 4 / kWidth)) expected[i] = 0;
    EXPECT_EQ(draw(), expected);
}

}  // namespace
