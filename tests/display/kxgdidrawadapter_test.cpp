// Drawing on a device context: pixels, shapes, texts, failures and palettes. Every pixel of images, and what
// any numbers do, is checked by fuzz/fuzz_display.cpp.

#include "tests/support/test.h"

#include "tests/support/picture.h"

namespace Zelkor::Kalvo {
namespace {

using namespace Testing;
using Images = std::initializer_list<KxGenericROI*>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr COLORREF kRed = RGB(255, 0, 0), kBlue = RGB(0, 0, 255);

struct Adapter : testing::Test {
    Screen screen;
    GDIDrawAdapter surface{screen.hdc};
};

TEST_F(Adapter, SetPixelMixesTruncatedAndClampsAlpha) {
    for (const auto& [alpha, level] : {std::pair{0.5, 127}, {1, 0}, {1.7, 0}, {-1, 255}, {kNaN, 255}}) {
        surface.SetPixel(3, 4, RGBColor(0x1FF, -1, 255), 1);
        EXPECT_EQ(screen(3, 4), ShownGray(255)) << "the low 8 bits";
        surface.SetPixel(3, 4, RGBColor::Black, alpha);
        EXPECT_EQ(screen(3, 4), ShownGray(level)) << alpha;
    }
}

TEST_F(Adapter, ShapesCoverBothEndsOfTheirBoxes) {
    DrawPointList square(2);
    for (const DrawPoint& p : {DrawPoint{2.9, 2.9}, {12.2, 2.5}, {12.9, 12.9}, {2.1, 12}}) square.Add(p);
    const std::pair<int, std::function<void()>> cases[] = {
        {11, [&] { surface.DrawLine(0, 0, 10, 0, RGBColor::Red); }},
        {1, [&] { surface.DrawRectangle(0, 0, 0, 0, RGBColor::Red); }},
        {40, [&] { surface.DrawRectangle(2, 2, 10, 10, RGBColor::Red); }},
        {121, [&] { surface.FillRectangle(2, 2, 10, 10, RGBColor::Red, RGBColor::Blue); }},
        {40, [&] { surface.DrawPolygon(square, RGBColor::Red); }},
        {121, [&] { surface.FillPolygon(square, RGBColor::Red, RGBColor::Blue); }},
    };
    for (const auto& [marks, draw] : cases) {
        screen.Clear();
        draw();
        EXPECT_EQ(screen.Marks(), marks);
    }
    surface.DrawEllipse(25, 5, 20, 10, RGBColor::Red);
    EXPECT_EQ(screen(25, 10) + screen(45, 10) + screen(35, 5) + screen(35, 15), 4 * kRed);
    EXPECT_EQ(screen(35, 10), kPaper);
    surface.FillEllipse(25, 5, 20, 10, RGBColor::Red, RGBColor::Blue);
    EXPECT_EQ(screen(2, 2) + screen(7, 7) + screen(35, 10), kRed + kBlue + kBlue);
}

TEST_F(Adapter, CurrentColoursAreThoseOfTheContext) {
    const HGDIOBJ pen = CreatePen(PS_SOLID, 3, kBlue), brush = CreateSolidBrush(kRed);
    const HGDIOBJ previous[] = {SelectObject(screen.hdc, pen), SelectObject(screen.hdc, brush)};
    surface.FillRectangle(10, 10, 20, 20, RGBColor::Current, RGBColor::Current);
    surface.SetPixel(50, 50, RGBColor::Current, 1);
    EXPECT_EQ(screen(9, 20) + screen(20, 20) + screen(50, 50), kBlue + kRed + kBlue);
    EXPECT_EQ(surface.GetPenWidth(), 3);
    for (const HGDIOBJ object : previous) DeleteObject(SelectObject(screen.hdc, object));
}

TEST_F(Adapter, ArcsTurnTowardsPositiveY) {
    constexpr double kTurn = 2 * std::numbers::pi;
    const auto quarters = [&](double start, double sweep) {
        std::string drawn(4, '.');  // south-east, south-west, north-west, north-east
        screen.Clear();
        surface.DrawArc(10, 10, 40, 40, start, sweep, RGBColor::Red);
        for (int i = 0; i < 4; ++i)
            for (int d = 5; d < 25; ++d)
                if (screen(30 + (i % 3 ? -d : d), 30 + (i < 2 ? d : -d)) == kRed) drawn[i] = 'x';
        return drawn;
    };
    EXPECT_EQ(quarters(0, kTurn / 4) + quarters(0, -kTurn / 4), "x......x");
    EXPECT_EQ(quarters(kTurn / 2, kTurn / 2) + quarters(1, 0), "..xxxxxx");
}

TEST_F(Adapter, TextsAreMeasuredAndDrawnLineByLine) {
    const DrawPoint line = surface.GetTextExtent("i"), lines = surface.GetTextExtent("longer line\n\ni\n");
    EXPECT_EQ(lines.x, surface.GetTextExtent("longer line").x);
    EXPECT_EQ(lines.y, 2 * line.y);
    EXPECT_EQ(surface.GetTextExtent("\n").y + surface.GetTextExtent("").x, 0);
    const int area = static_cast<int>((line.x + 4) * (line.y + 2));
    surface.DrawText("i", 5, 6, RGBColor::Red);
    EXPECT_TRUE(screen.Marks() > 3 && screen.Marks() < area / 2) << "no background";
    SetBkColor(screen.hdc, kBlue);
    surface.DrawTextWithBackground("i", 5, 6, RGBColor::Red, RGBColor::Current);
    EXPECT_EQ(screen.Marks(), area);
    EXPECT_EQ(screen(5, 6), kBlue);
}

TEST_F(Adapter, GoesThroughItsOwnVirtualOperations) {
    NotingSurface noting(screen.hdc);
    KxImage<KxBW16> gray(4, 4);
    FillPattern(gray, 1);
    noting.DrawLine(1, 2, 5, 6, RGBColor::Red);
    noting.DrawImage(&gray, 2, 0, 7, 8, 0.5, RGBColor::Current);
    noting.DrawImage(&gray, 2, 0, 7, 8, 0.5, RGBColor::Red);
    const NotingSurface::Calls images = {{16, 2, 0, 7, 8, .5, 1}, {8, 2, 0, 0, 0, 1, 1}};
    const NotingSurface::Calls tinted = {{16, 2, 0, 7, 8, .5, 0}, {24, 2, 0, 0, 0, .5, 1}};
    EXPECT_EQ(noting.calls, (NotingSurface::Calls{{5, 6, 1, 1}, images[0], images[1], tinted[0], tinted[1]}));
}

TEST_F(Adapter, ReportsOnlyWantOfMemory) {
    const TraceRecorder traces;
    const auto state = StateOf(screen.hdc);
    KxImage<KxYUY2> pairs(4, 4);
    KxImage<KxFLOAT32> floats(4, 4);
    KxROI<KxYUY2> region(&pairs, 0, 0, 2, 2);
    KxROI<KxBW1> detached;
    KxImage<KxBW8> huge;
    KxSetError(KX_ERROR_READ_ONLY_PROPERTY);
    for (KxGenericROI* drawn : Images{&pairs, &floats, &region, &detached, &huge}) {
        surface.DrawImage(drawn, 1, 1, 0, 0, 0.5, RGBColor::Red);
        drawn->Draw(screen.hdc, 2, 2);
    }
    EXPECT_EQ(KxGetError(), KX_ERROR_READ_ONLY_PROPERTY);
    std::uint8_t pixel = 0;
    huge.SetImagePtr(70000, 70000, &pixel);
    surface.DrawImage(&huge, 1, 1, 5, 5, 0.5, RGBColor::Red);
    EXPECT_EQ(KxGetError(), KX_ERROR_ORIGIN_IMAGE_TOO_BIG);
    EXPECT_EQ(traces.Functions(), (Names{"KxImage::SetSize", "KxROI::Draw"}));
    EXPECT_TRUE(screen.Marks() == 0 && StateOf(screen.hdc) == state);
    KxOk();
}

TEST_F(Adapter, MixesPixelsOfItsOwnSurfaceAsTheyWere) {
    BITMAPINFO info{{sizeof(BITMAPINFOHEADER), 8, -8, 1, 32, BI_RGB, 0, 0, 0, 0, 0}, {}};
    void* bits = nullptr;
    const HBITMAP section = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits);
    const HDC device = CreateCompatibleDC(nullptr);
    SelectObject(device, section);
    for (const int step : {-1, 0, 1}) {
        KxImage<KxC24A> own, before(8, 8);
        own.SetImagePtr(8, 8, bits);
        for (auto* image : {&own, &before})
            for (int i = 0; i < 64; ++i) image->SetPixel(KxC24A(i, 3 * i, 255 - i, 0), i % 8, i / 8);
        GDIDrawAdapter(device).DrawImage(&own, 1, 1, step, step, 0.6, RGBColor::Current);
        for (int y = 1; y < 7; ++y)
            for (int x = 1; x < 7; ++x) {
                const int from = before.GetPixel(x - step, y - step).m_un8C0,
                          to = before.GetPixel(x, y).m_un8C0;
                EXPECT_EQ(own.GetPixel(x, y).m_un8C0, (from * 153 + to * 102 + 127) / 255) << x << ' ' << y;
            }
    }
    DeleteDC(device);
    DeleteObject(section);
}

TEST_F(Adapter, ShowsImagesThroughPalettes) {
    const HDC device = Platform::CreatePaletteDC(256, 2);
    KxImage<KxBW8> ramp(256, 1);
    KxImage<KxC24> cube(216, 1);
    const auto level = [](int i) { return static_cast<std::uint8_t>(i % 6 * 51); };
    for (int x = 0; x < 256; ++x) ramp.SetPixel(static_cast<std::uint8_t>(x), x, 0);
    for (int x = 0; x < 216; ++x) cube.SetPixel({level(x / 36), level(x / 6), level(x)}, x, 0);
    GDIDrawAdapter(device).DrawImage(&ramp, 1, 1, 0, 0, 1, RGBColor::Current);
    int exact = 0;
    for (int x = 0; x < 256; ++x) exact += GetPixel(device, x, 0) == ShownGray(x);
    EXPECT_GE(exact, 230) << "of the greys, beside the fixed colours";
    GDIDrawAdapter(device).DrawImage(&cube, 1, 1, 0, 1, 1, RGBColor::Current);
    for (int x = 0; x < 216; ++x) EXPECT_EQ(GetPixel(device, x, 1), ShownColor(cube.GetPixel(x, 0))) << x;
    DeleteDC(device);
}

}  // namespace
}  // namespace Zelkor::Kalvo
