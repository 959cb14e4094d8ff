// Texts: what they measure, where their pixels go, which bytes are which characters, what is kept of faces.

#include "tests/support/section.h"

#include "kalvo/raster/glyphs.h"

namespace Zelkor::Platform {
namespace {

constexpr COLORREF kPaper = RGB(255, 255, 255), kInk = RGB(0, 0, 0);

LOGFONTA MakeFont(int height, int weight = 400, bool isItalic = false, const char* face = "DejaVu Sans") {
    LOGFONTA font{height, 0, 0, 0, weight, isItalic, 0, 0, 0, 0, 0, 0, 0, {}};
    std::strcpy(font.lfFaceName, face);
    return font;
}

// A white square with a font of its own; texts leave what is around their strokes.
struct Canvas : Kalvo::Testing::Section {
    explicit Canvas(const LOGFONTA& font = MakeFont(-13), WORD bitsPerPixel = 32, int size = 128)
        : Section(size, size, bitsPerPixel, 0xFF), dc(hdc) {
        Select(CreateFontIndirectA(&font));
        SetBkMode(dc, TRANSPARENT);
    }
    ~Canvas() { Select(GetStockObject(SYSTEM_FONT)); }

    Canvas& Out(int x, int y, const std::string& text) {
        EXPECT_EQ(TextOutA(dc, x, y, text.data(), static_cast<int>(text.size())), 1);
        return *this;
    }
    Canvas& Draw(const RECT& rect, const char* text, UINT format) {
        drawn = rect;
        drawnHeight = DrawTextA(dc, text, -1, &drawn, format);
        return *this;
    }
    SIZE Extent(const std::string& text) const {
        SIZE extent{-1, -1};
        EXPECT_EQ(GetTextExtentPoint32A(dc, text.data(), static_cast<int>(text.size()), &extent), 1);
        return extent;
    }

    const HDC dc;
    int drawnHeight = 0;
    RECT drawn{};
};

TEST(TextOut, PaintsItsCellInTwoColours) {
    Canvas canvas;
    const SIZE size = canvas.Extent("Value -20");
    EXPECT_EQ(size.cx, canvas.Extent("Value").cx + canvas.Extent(" -20").cx);
    EXPECT_EQ(size.cy, canvas.Extent("").cy);
    SetBkMode(canvas.dc, OPAQUE);
    SetBkColor(canvas.dc, RGB(255, 255, 0));
    EXPECT_GT(canvas.Out(20, 30, "Value -20").Count(kInk), 100);
    EXPECT_EQ(canvas.Count(kInk) + canvas.Count(RGB(255, 255, 0)), size.cx * size.cy);
    EXPECT_EQ(std::ranges::count(canvas.Pixels(20, 30, size.cx, size.cy), kPaper), 0);
}

TEST(TextOut, HonoursAlignmentAndMovesThePosition) {
    const SIZE size = Canvas().Extent("Hg");
    const int baseline = FindFace(MakeFont(-13))->Baseline();
    const int cases[][4] = {{TA_LEFT | TA_TOP, 0, 0, size.cx},
                            {TA_RIGHT | TA_TOP, -size.cx, 0, -size.cx},
                            {TA_CENTER | TA_BOTTOM, -(size.cx / 2), -size.cy, 0},
                            {TA_LEFT | TA_BASELINE, 0, -baseline, size.cx}};
    for (const auto& [align, left, top, moved] : cases) {
        Canvas canvas;
        SetViewportOrgEx(canvas.dc, 10, -10, nullptr);
        SetTextAlign(canvas.dc, align | TA_UPDATECP);
        POINT position;
        MoveToEx(canvas.dc, 50, 70, nullptr);
        canvas.Out(INT_MAX, INT_MIN, "Hg");
        MoveToEx(canvas.dc, 0, 0, &position);
        EXPECT_EQ(position.x, 50 + moved) << align;
        EXPECT_EQ(canvas.Pixels(), Canvas().Out(60 + left, 60 + top, "Hg").Pixels()) << align;
    }
    Canvas letter;  // stands on the baseline, which is the first row below
    letter.Out(60, 60 - baseline, "H");
    EXPECT_EQ(letter.Pixels(60, 60, 20, 9), Canvas().Pixels(60, 60, 20, 9));
    EXPECT_NE(letter.Pixels(60, 59, 20, 1), Canvas().Pixels(60, 59, 20, 1));
}

// Where pixels of a colour are: how many, and the middle of them.
struct Cloud {
    double count = 0, x = 0, y = 0;
};

Cloud CloudOf(const Canvas& canvas, bool (*belongs)(COLORREF)) {
    Cloud cloud;
    const std::vector<COLORREF> pixels = canvas.Pixels();
    for (int i = 0; i < canvas.width * canvas.width; ++i) {
        if (!belongs(pixels[i])) continue;
        ++cloud.count;
        cloud.x += i % canvas.width + 0.5;
        cloud.y += i / canvas.width + 0.5;
    }
    return {cloud.count, cloud.x / cloud.count, cloud.y / cloud.count};
}

TEST(TextOut, TurnsTheLineAboutItsPlace) {
    constexpr int size = 240, x = 120, y = 120;
    for (const int tenths : {0, 1, 300, 450, 900, 1234, 1800, 2700, -450, 3600 * 7 - 150}) {
        for (const UINT align : {TA_LEFT | TA_TOP, TA_CENTER | TA_BASELINE, TA_RIGHT | TA_BOTTOM}) {
            const auto draw = [&](Canvas& canvas) {
                SetBkMode(canvas.dc, OPAQUE);
                SetBkColor(canvas.dc, RGB(255, 255, 0));
                SetTextAlign(canvas.dc, align | TA_UPDATECP);
                MoveToEx(canvas.dc, x, y, nullptr);
                canvas.Out(0, 0, "Hgl1");
            };
            LOGFONTA font = MakeFont(-30);
            font.lfUnderline = 1;
            Canvas upright(font, 32, size);
            font.lfEscapement = tenths;
            Canvas turned(font, 32, size);
            draw(upright);
            draw(turned);
            const double angle = tenths * std::numbers::pi / 1800;
            const auto across = [&](double dx, double dy) { return x + dx * cos(angle) + dy * sin(angle); };
            const auto down = [&](double dx, double dy) { return y + dy * cos(angle) - dx * sin(angle); };
            for (const auto belongs : {+[](COLORREF color) { return color != kPaper; },
                                       +[](COLORREF color) { return color == kInk; }}) {
                const Cloud from = CloudOf(upright, belongs), to = CloudOf(turned, belongs);
                EXPECT_NEAR(to.count / from.count, 1, 0.15) << tenths;
                EXPECT_NEAR(to.x, across(from.x - x, from.y - y), 0.5) << tenths << ", " << align;
                EXPECT_NEAR(to.y, down(from.x - x, from.y - y), 0.5) << tenths << ", " << align;
            }
            POINT before, after;
            MoveToEx(upright.dc, 0, 0, &before);
            MoveToEx(turned.dc, 0, 0, &after);
            EXPECT_NEAR(after.x, across(before.x - x, 0), 0.51) << tenths;
            EXPECT_NEAR(after.y, down(before.x - x, 0), 0.51) << tenths;
            EXPECT_EQ(turned.Extent("Hgl1").cx, upright.Extent("Hgl1").cx);
        }
    }
}

TEST(ExtTextOut, FillsAndKeepsToItsRectangle) {
    constexpr COLORREF kFill = RGB(0, 255, 0);
    const RECT rect{10, 20, 30, 26};
    Canvas plain, cut, apart;
    SetBkColor(cut.dc, kFill);
    EXPECT_TRUE(ExtTextOut(cut.dc, 0, 0, ETO_OPAQUE, &rect, nullptr, 0, nullptr));
    EXPECT_EQ(cut.Count(kFill), 20 * 6);
    EXPECT_TRUE(ExtTextOut(cut.dc, 8, 15, ETO_CLIPPED, &rect, "MMMM", 4, nullptr));
    plain.Out(8, 15, "MMMM");
    const auto inside = plain.Pixels(10, 20, 20, 6);
    EXPECT_EQ(cut.Count(kInk), std::ranges::count(inside, kInk));
    EXPECT_EQ(cut.Count(kFill) + cut.Count(kInk), 20 * 6);

    // Distances are those of bytes; a character of two takes both, one without a glyph its own.
    const int distances[] = {20, 3, 4, 30, -40, 5};
    EXPECT_TRUE(ExtTextOut(apart.dc, 5, 50, 0, nullptr, "A\xC3\xA9\tBC", 6, distances));
    EXPECT_EQ(apart.Pixels(),
              Canvas().Out(5, 50, "A").Out(25, 50, "\xC3\xA9").Out(62, 50, "B").Out(22, 50, "C").Pixels());
    const std::vector<int> far(100000, INT_MAX);
    const std::string text(far.size(), 'x');
    EXPECT_TRUE(ExtTextOut(apart.dc, 0, 0, 0, nullptr, text.data(), text.size(), far.data()));
    EXPECT_FALSE(ExtTextOut(plain.dc, 0, 0, 16, nullptr, "x", 1, nullptr) ||
                 ExtTextOut(plain.dc, 0, 0, 0, nullptr, "x", UINT_MAX, nullptr) ||
                 ExtTextOut(nullptr, 0, 0, 0, nullptr, "x", 1, nullptr));
}

TEST(TextOut, TakesUtf8AndBytesThatAreNone) {
    // Also: too long a form, half of a pair, sequences cut off, more than the last character, controls.
    const char* const sameTexts[][2] = {{"\xC3\xA9", "\xE9"},
                                        {"\xC3", "\xC3\x83"},
                                        {"\xC0\xAF", "\xC3\x80\xC2\xAF"},
                                        {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xC2\x80"},
                                        {"\xE2\x82", "\xC3\xA2\xC2\x82"},
                                        {"\xE2\x82+", "\xC3\xA2\xC2\x82+"},
                                        {"\xF4\x90\x80\x80", "\xC3\xB4\xC2\x90\xC2\x80\xC2\x80"},
                                        {"\t1\r\n2\x1F", "12"}};
    for (const auto& [text, same] : sameTexts)
        EXPECT_EQ(Canvas().Out(1, 1, text).Pixels(), Canvas().Out(1, 1, same).Pixels()) << same;
    EXPECT_NE(Canvas().Out(1, 1, "\xE2\x82\xAC").Pixels(), Canvas().Out(1, 1, "\xF0\xA0\x82\xAC").Pixels());
}

TEST(TextOut, IsCutAtTheEdgesOfEveryKindOfBitmap) {
    constexpr int size = 32, margin = 48;
    Canvas large;
    large.Out(margin, margin, "Mg");
    for (const WORD bits : {1, 8, 16, 24, 32}) {
        for (const int x : {INT_MIN, -17, -9, 0, 25, size, INT_MAX}) {
            for (const int y : {INT_MIN, -12, -5, 0, 23, size, INT_MAX}) {
                const bool isNear = x > -margin && x < margin && y > -margin && y < margin;
                const POINT from{isNear ? margin - x : 0, isNear ? margin - y : 0};
                ASSERT_EQ(Canvas(MakeFont(-13), bits, size).Out(x, y, "Mg").Pixels(),
                          large.Pixels(from.x, from.y, size, size))
                    << bits << " bits at " << x << ", " << y;
            }
        }
    }
}

TEST(DrawText, PlacesLinesInTheRectangle) {
    const int line = Canvas().Extent("").cy, wide = Canvas().Extent("Wide&").cx, i = Canvas().Extent("i").cx;
    const RECT rect{10, 20, 110, 120};
    const char* const text = "Wide&\r\ni\n";
    const int cases[][3] = {{DT_LEFT | DT_BOTTOM, 10, 10},
                            {DT_CENTER | DT_VCENTER, 10 + (100 - wide) / 2, 10 + (100 - i) / 2},
                            {DT_RIGHT, 110 - wide, 110 - i}};
    for (const auto& [format, wideLeft, narrowLeft] : cases) {
        Canvas lines, expected;
        SetTextAlign(lines.dc, TA_RIGHT | TA_BOTTOM);
        expected.Out(wideLeft, 20, "Wide&").Out(narrowLeft, 20 + line, "i");
        EXPECT_EQ(lines.Draw(rect, text, format).Pixels(), expected.Pixels());
        EXPECT_EQ(lines.drawnHeight, 2 * line);
    }
    EXPECT_EQ(Canvas().Draw(rect, "a\nb", DT_SINGLELINE | DT_VCENTER).Pixels(),
              Canvas().Out(10, 20 + (100 - line) / 2, "ab").Pixels());
    Canvas measured;
    EXPECT_EQ(measured.Draw({INT_MAX - 5, 20, 0, 0}, text, DT_CALCRECT).drawn.right, INT_MAX);
    EXPECT_EQ(measured.Draw({10, 20, 0, 0}, text, DT_CALCRECT).drawn.right, 10 + wide);
    EXPECT_EQ(measured.drawn.bottom, 20 + 2 * line);
    EXPECT_EQ(measured.Draw({INT_MAX, INT_MAX, INT_MIN, INT_MIN}, "x", DT_CENTER | DT_NOCLIP).Count(kInk), 0);
    EXPECT_EQ(measured.Draw(rect, "", DT_CENTER).drawnHeight, line);
    // One line that does not begin at the top: how far down it ends.
    EXPECT_EQ(measured.Draw(rect, "x", DT_SINGLELINE | DT_BOTTOM).drawnHeight, 100);
    EXPECT_EQ(measured.Draw(rect, "x", DT_SINGLELINE | DT_VCENTER).drawnHeight, (100 - line) / 2 + line);
    EXPECT_EQ(measured.Draw(rect, "x", DT_SINGLELINE | DT_BOTTOM | DT_CALCRECT).drawnHeight, line);
}

TEST(DrawText, KeepsToTheRectangleUnlessTold) {
    Canvas cut, plain;
    SetViewportOrgEx(cut.dc, -3, 5, nullptr);
    cut.Draw({25, 15, 34, 25}, "MMM", 0);
    plain.Out(22, 20, "MMM");
    EXPECT_EQ(cut.Pixels(22, 20, 9, 10), plain.Pixels(22, 20, 9, 10));
    EXPECT_EQ(std::ranges::count(cut.Pixels(22, 20, 9, 10), kInk), cut.Count(kInk));
    EXPECT_EQ(Canvas().Draw({22, 20, 0, 0}, "MMM", DT_NOCLIP).Pixels(), plain.Pixels());
}

TEST(Texts, RefuseWhatIsNone) {
    const Canvas canvas;
    SIZE size{7, 7};
    RECT rect{0, 0, 9, 9};
    EXPECT_FALSE(TextOutA(nullptr, 0, 0, "x", 1) || TextOutA(canvas.dc, 0, 0, nullptr, 1) ||
                 TextOutA(canvas.dc, 0, 0, "x", -1) || GetTextExtentPoint32A(canvas.dc, "x", 1, nullptr) ||
                 GetTextExtentPoint32A(canvas.dc, "x", INT_MIN, &size) || size.cx != 7 ||
                 DrawTextA(canvas.dc, nullptr, -1, &rect, 0) || DrawTextA(canvas.dc, "x", -2, &rect, 0) ||
                 DrawTextA(canvas.dc, "x", 1, nullptr, 0) || canvas.Count(kInk));
    EXPECT_EQ(TextOutA(canvas.dc, 0, 0, nullptr, 0), 1);
}

TEST(Fonts, DifferInHeightWeightAndSlant) {
    for (const int height : {8, 11, 16, 33, 200}) {
        EXPECT_LE(FindFace(MakeFont(height))->LineHeight(), height);
        EXPECT_GE(FindFace(MakeFont(height))->LineHeight(), height - 2);
        EXPECT_GT(FindFace(MakeFont(-height))->LineHeight(), height);
    }
    EXPECT_EQ(FindFace(MakeFont(0)), FindFace(MakeFont(16)));
    EXPECT_EQ(FindFace(MakeFont(INT_MIN)), FindFace(MakeFont(-1000)));
    EXPECT_EQ(FindFace(MakeFont(INT_MAX)), FindFace(MakeFont(1000)));
    EXPECT_TRUE(FindFace(MakeFont(-13, 400, false, "No such face")));
    LOGFONTA ruled = MakeFont(-13);
    ruled.lfUnderline = 1;
    Canvas plain;
    const auto ink = plain.Out(1, 1, "HHH").Count(kInk);
    EXPECT_GT(Canvas(MakeFont(-13, 700)).Out(1, 1, "HHH").Count(kInk), ink * 3 / 2);
    EXPECT_EQ(Canvas(ruled).Out(1, 1, "HHH").Count(kInk), ink + plain.Extent("HHH").cx);
    EXPECT_NE(Canvas(MakeFont(-13, 400, true)).Out(1, 1, "HHH").Pixels(), plain.Pixels());
}

TEST(Fonts, AreMeasured) {
    LOGFONTA font = MakeFont(-40, 700);
    const Canvas plain(font);
    TEXTMETRIC metrics{};
    ASSERT_TRUE(GetTextMetrics(plain.dc, &metrics));
    const auto face = FindFace(font);
    EXPECT_EQ(metrics.tmHeight, plain.Extent("").cy);
    EXPECT_EQ(metrics.tmAscent, face->Baseline());
    EXPECT_EQ(metrics.tmHeight, metrics.tmAscent + metrics.tmDescent);
    EXPECT_EQ(metrics.tmHeight - metrics.tmInternalLeading, 40);
    EXPECT_EQ(metrics.tmWeight, FW_BOLD);
    EXPECT_TRUE(metrics.tmPitchAndFamily & TMPF_FIXED_PITCH);
    font.lfWidth = 2 * metrics.tmAveCharWidth;
    const Canvas wide(font);
    EXPECT_NEAR(wide.Extent("Width").cx, 2 * plain.Extent("Width").cx, 12);
    EXPECT_EQ(wide.Extent("").cy, metrics.tmHeight);
    ASSERT_TRUE(GetTextMetrics(wide.dc, &metrics));
    EXPECT_NEAR(metrics.tmAveCharWidth, font.lfWidth, 1);

    char name[40]{};
    EXPECT_EQ(GetTextFace(plain.dc, 5, name), 5);
    EXPECT_STREQ(name, "Deja");
    EXPECT_EQ(GetTextFace(plain.dc, sizeof name, name), GetTextFace(plain.dc, 0, nullptr));
    EXPECT_STREQ(name, "DejaVu Sans");
    LOGFONTA fixed = MakeFont(-13, 400, false, "No such face");
    fixed.lfPitchAndFamily = FIXED_PITCH;
    const Canvas typewriter(fixed);
    EXPECT_EQ(typewriter.Extent("iiii").cx, typewriter.Extent("MMMM").cx);
    ASSERT_TRUE(GetTextMetrics(typewriter.dc, &metrics));
    EXPECT_FALSE(metrics.tmPitchAndFamily & TMPF_FIXED_PITCH);
    EXPECT_FALSE(CreateFontIndirect(nullptr) || GetTextMetrics(nullptr, &metrics) ||
                 GetTextFace(plain.dc, 0, name));
}

TEST(Fonts, ReplaceAFaceThatKeepsAllItMay) {
    const auto face = FindFace(MakeFont(-1000));
    Glyph spare;
    for (char32_t character = 0x4E00; !face->IsFull() && character < 0x5E00; ++character)
        face->Find(character, spare);
    EXPECT_EQ(&face->Find('!', spare), &spare);
    EXPECT_GT(spare.runs.size(), 100u);
    const auto next = FindFace(MakeFont(-1000));
    EXPECT_NE(next, face);
    EXPECT_NE(&next->Find('!', spare), &spare);
    EXPECT_EQ(next, FindFace(MakeFont(-1000)));
}

// Fontconfig looks for fonts once, so this takes a process of its own.
TEST(Fonts, MayBeMissingAltogether) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto showsNothingWithoutFonts = [] {
        setenv("FONTCONFIG_SYSROOT", "/dev", 1);
        Canvas canvas;
        const SIZE size = canvas.Extent("text");
        canvas.Out(1, 1, "text").Draw({1, 1, 100, 100}, "text", 0);
        return size.cx == 0 && size.cy == 0 && canvas.drawnHeight == 0 && canvas.Count(kInk) == 0;
    };
    EXPECT_EXIT(std::_Exit(showsNothingWithoutFonts() ? 0 : 1), testing::ExitedWithCode(0), "");
    EXPECT_EQ(SizedFace::Open({{"/no/such/file"}, {"/dev/null"}}, {}, {-13}), nullptr);
}

}  // namespace
}  // namespace Zelkor::Platform
