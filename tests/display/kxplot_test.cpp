// Plots: ranges, layout, the order of what is drawn, and the context left behind.

#include "tests/support/test.h"

#include "tests/support/picture.h"
#include "tests/support/recording_surface.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Calls = std::vector<std::string>;

template <class Vector>
Vector Make(std::initializer_list<long> values, int isUnsigned) {
    Vector vector;
    vector.SetUnsigned(isUnsigned);
    for (const long value : values)
        vector.AddElement(
            static_cast<std::remove_pointer_t<decltype(vector.GetDataPtr())>::ValueType>(value));
    return vector;
}

// The texts among what was drawn.
Calls TextsOf(const RecordingSurface& surface) {
    Calls texts;
    for (const std::string& call : surface.calls)
        if (call.front() == '"') texts.push_back(call.substr(1, call.find('"', 1) - 1));
    return texts;
}

TEST(Plot, DrawsAxesTicksTitlesAndThenTheCurve) {
    auto vector = Make<KxBW8Vector>({0, 33, -7, 12}, 0);
    RecordingSurface surface;
    vector.Draw(&surface, 115.9f, 133, 10, 20.5f);
    EXPECT_EQ(surface.calls, (Calls{
                                 "polygon black 119,111 107,108 107,114 black",
                                 "line 16 111 107 111 black",
                                 "line 16 112 107 112 black",
                                 "polygon black 42,26 39,38 45,38 black",
                                 "line 42 147 42 38 black",
                                 "line 43 147 43 38 black",
                                 "line 62 50 62 129 black",
                                 "\"2\" 58 135 black",
                                 "line 72 50 72 123 black",
                                 "\"3\" 106 135 black",
                                 "line 72 50 42 50 black",
                                 "\"33\" 16 26 black",
                                 "line 72 56 36 56 black",
                                 "\"30\" 16 50 black",
                                 "line 72 74 36 74 black",
                                 "\"20\" 16 68 black",
                                 "line 72 92 36 92 black",
                                 "\"10\" 16 86 black",
                                 "line 72 123 42 123 black",
                                 "\"-7\" 21 117 black",
                                 "\"Index\" 78 105 black",
                                 "\"Value\" 48 26 black",
                                 "line 42 111 52 50 current",
                                 "line 52 50 62 123 current",
                                 "line 62 123 72 89 current",
                             }));
    EXPECT_EQ(surface.measured, (Calls{"-7", "33", "Index", "01", "2", "3", "012", "33", "30", "20", "10"}))
        << "what the layout needs, from the least value on";
    EXPECT_EQ(std::tuple(vector.XView(0), vector.XView(3), vector.YView(-7), vector.YView(33)),
              std::tuple(42, 72, 123, 50));
}

TEST(Plot, DrawsThreeCurvesOfColors) {
    KxC24Vector vector;
    vector.AddElement(KxC24(10, 20, 30));
    vector.AddElement(KxC24(40, 50, 0));
    RecordingSurface surface;
    vector.Draw(&surface, 300, 200, 0, 0, RGBColor::White, RGBColor::Current, RGBColor(1, 2, 3));
    const auto line = [&](int from, int to, const char* color) {
        std::ostringstream text;
        text << "line " << vector.XView(0) << ' ' << vector.YView(from) << ' ' << vector.XView(1) << ' '
             << vector.YView(to) << ' ' << color;
        return text.str();
    };
    EXPECT_EQ(Calls(surface.calls.end() - 3, surface.calls.end()),
              (Calls{line(10, 40, "white"), line(20, 50, "current"), line(30, 0, "1/2/3")}));
    EXPECT_EQ(TextsOf(surface).at(1), "50") << "the largest of all components ends the y axis";
}

TEST(Plot, TakesItsRangeFromTheElementsUnlessItIsFixed) {
    // The vertical range ends where the area does: its rows tell the range.
    const auto expectRange = [](auto vector, double least, double most) {
        RecordingSurface surface;
        vector.Draw(&surface, 400, 300, 0, 0);
        EXPECT_EQ(std::pair(vector.YView(least), vector.YView(most)), std::pair(300 - 30, 30));
    };
    expectRange(Make<KxBW32Vector>({5, 1000, 7}, 1), 0, 1000);
    expectRange(Make<KxBW8Vector>({-20, 30}, 0), -20, 30);
    expectRange(Make<KxBW8Vector>({-20, 30}, 1), 0, 236);
    expectRange(Make<KxBW16Vector>({-300, -200}, 0), -300, 0);
    expectRange(Make<KxBW32Vector>({-1}, 0), -1, 0);
    expectRange(Make<KxBW32Vector>({-1}, 1), 0, 4294967295.0);
    expectRange(Make<KxBW16Vector>({0, 0, 0}, 1), 0, 1);
    expectRange(KxBW8Vector(), 0, 1);

    TraceRecorder trace;
    auto fixed = Make<KxBW8Vector>({1, 2, 3}, 1);
    fixed.SetYRange(-5, 5);
    fixed.SetYRange(10, 10);
    EXPECT_EQ(KxGetError(), KX_ERROR_PARAMETERS_OUT_OF_RANGE);
    EXPECT_EQ(trace.Functions(), Calls{"KxPlot::SetYRange"});
    expectRange(fixed, -5, 5);
    fixed.SetYRange(-1, 0xFFFFFFFF);
    expectRange(fixed, -1, 4294967295.0);
    fixed.SetAutoYRange();
    expectRange(fixed, 0, 3);
}

TEST(Plot, ChoosesTicksForWhichThereIsRoom) {
    KxBW32Vector vector;
    for (unsigned i = 0; i < 256; ++i) vector.AddElement(i == 128 ? 1000 : 0);
    RecordingSurface surface;
    vector.Draw(&surface, 430, 120, 0, 0);
    EXPECT_EQ(TextsOf(surface), (Calls{"50", "100", "150", "200", "250", "255", "1000", "800", "600", "400",
                                       "200", "Index", "Value"}));
    surface.calls.clear();
    vector.SetYRange(10, 60);  // no tick is left out where the range has no 0
    vector.Draw(&surface, 430, 300, 0, 0);
    EXPECT_EQ(TextsOf(surface), (Calls{"50", "100", "150", "200", "250", "255", "60", "55", "50", "45", "40",
                                       "35", "30", "25", "20", "15", "10", "Index", "Value"}));
}

struct VisiblePlot : KxPlot {
    VisiblePlot() { SetYRange(-50, 150); }
    int Left() const { return m_n32Left; }
};

TEST(Plot, DrawnDirectlyOnAContextLeavesItAsItWas) {
    Screen screen;
    VisiblePlot plot;
    const auto draw = [&] { plot.DrawAnnotations(screen.hdc, 380, 280, 10, 10, "Index", nullptr); };
    draw();
    // We look at where the axes cross.
    const int left = plot.Left(), row = plot.YView(0);
    SetViewportOrgEx(screen.hdc, 20 - left, 30 - row, nullptr);
    const HPEN pen = CreatePen(PS_SOLID, 5, RGB(0, 0, 255));
    SelectObject(screen.hdc, pen);
    SetTextAlign(screen.hdc, TA_CENTER | TA_BOTTOM);
    const auto state = StateOf(screen.hdc);
    const int objects = Platform::CountGdiObjects();
    screen.Clear();
    draw();
    EXPECT_EQ(StateOf(screen.hdc), state);
    EXPECT_EQ(Platform::CountGdiObjects(), objects);
    for (int offset = -2; offset < 4; ++offset) {
        const COLORREF expected = offset == 0 || offset == 1 ? RGB(0, 0, 0) : kPaper;
        EXPECT_EQ(screen(left + 5, row + offset), expected) << offset;
        EXPECT_EQ(screen(left + offset, row + 5), expected) << offset;
    }
    DeleteObject(SelectObject(screen.hdc, GetStockObject(BLACK_PEN)));
}

TEST(Plot, TakesTheColorsOfPens) {
    Screen screen;
    KxC24Vector vector;
    for (int i = 0; i < 2; ++i) vector.AddElement(KxC24(40, 50, 60));
    const HPEN red = CreatePen(PS_SOLID, 3, RGB(255, 0, 0));
    const auto draw = [&] {
        vector.Draw(screen.hdc, 400, 200, 0, 0, red, nullptr, GetStockObject(BLACK_BRUSH));
    };
    draw();
    const int x = (vector.XView(0) + vector.XView(1)) / 2;
    SetViewportOrgEx(screen.hdc, 30 - x, 30 - vector.YView(50), nullptr);
    screen.Clear();
    draw();
    EXPECT_EQ(screen(x, vector.YView(40)), RGB(255, 0, 0));
    EXPECT_EQ(screen(x, vector.YView(40) + 1), kPaper) << "only the colour of the pen counts";
    EXPECT_EQ(screen(x, vector.YView(50)), RGB(0, 0, 0));
    EXPECT_EQ(screen(x, vector.YView(60)), RGB(0, 0, 0));
    DeleteObject(red);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
