// Drawing on a device context: pixels, shapes, texts, images, and what the context is left like.

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

template <class Pixel>
struct DrawImageOf : Adapter {};
TYPED_TEST_SUITE(DrawImageOf, FilePixels);

TYPED_TEST(DrawImageOf, AndItsOlderTwinShowEveryPixelZoomedAndBlended) {
    using Region = KxROI<TypeParam>;
    const HDC hdc = this->screen.hdc;
    KxImage<TypeParam> padded(41, 19), wrapped, upwards;
    // Rows of a caller, not padded like a bitmap's; the buffer ends with the last pixel.
    const int rowBytes = (29 * padded.GetBitsPerPixel() + 7) / 8,
              pitch = rowBytes / 4 * 4 + 4 + int{alignof(TypeParam)};
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(pitch * 15 + rowBytes));
    wrapped.SetImagePtr(29, 16, buffer.data(), pitch * 8);
    upwards.SetImagePtr(29, 16, buffer.data() + pitch * 15, -pitch * 8);
    Region region(&padded, 13, 3, 21, 14), inner(&region, 6, 5, 9, 8), part(&wrapped, 11, 2, 10, 9);
    for (KxGenericROI* image : Images{&padded, &wrapped}) FillPattern(*image, 5);
    constexpr bool isReduced = std::is_same_v<TypeParam, KxBW16> || std::is_same_v<TypeParam, KxBW32>;
    for (Region* shown : std::initializer_list<Region*>{&padded, &region, &inner, &wrapped, &part, &upwards})
        for (const auto& [zoomX, zoomY] :
             {std::pair{1.f, 1.f}, {1.f, 0.f}, {2.f, 0.f}, {1.4f, .55f}, {.3f, 3.f}})
            for (const double alpha : {1.0, 1.5, 0.4, 0.0}) {  // 0 stands for the older function, opaque
                this->screen.Clear();
                SetViewportOrgEx(hdc, alpha > 0 ? 2 : 6, alpha > 0 ? 1 : -2, nullptr);
                if (alpha > 0)
                    this->surface.DrawImage(shown, zoomX, zoomY, 4, -3, alpha, RGBColor::Current);
                else
                    KxDrawImageInWindow(shown, hdc, zoomX, zoomY);
                SetViewportOrgEx(hdc, 0, 0, nullptr);
                const int parts = alpha == 0.4 && !isReduced ? 102 : 255;
                ExpectPicture(this->screen, *shown, zoomX, zoomY, 6, -2,
                              [&](TypeParam pixel) { return OnPaper(ShownColor(pixel), parts); });
                ASSERT_FALSE(this->HasFatalFailure()) << zoomX << ", " << zoomY << ", " << alpha;
            }
}

TYPED_TEST(DrawImageOf, TintsGreysThatAreNotOpaque) {
    KxImage<TypeParam> image(7, 5);
    FillPattern(image, 9);
    constexpr bool isGray = PixelTraits<TypeParam>::kColorSystem == KX_COLOR_SYSTEM_GRAY_LEVEL;
    for (const double alpha : {0.5, 1.0}) {
        this->screen.Clear();
        this->surface.DrawImage(&image, 1, 1, 0, 0, alpha, RGBColor(200, 3, 99));
        ExpectPicture(this->screen, image, 1, 1, 0, 0, [&](TypeParam pixel) {
            const COLORREF color = ShownColor(pixel);
            if (alpha == 1) return color;
            const auto tinted = [&](int full) { return static_cast<int>(GetRValue(color) * full / 255.0); };
            if (std::is_same_v<TypeParam, KxBW1>) return kPaper;
            return OnPaper(isGray ? Shown(tinted(200), tinted(3), tinted(99)) : color, 127);
        });
    }
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

TEST_F(Adapter, LeavesContextAndObjectsAsTheyWereWhateverTheNumbers) {
    const HDC paletteDevice = Platform::CreatePaletteDC(30, 30);
    KxImage<KxBW8> gray(5, 5);
    KxImage<KxBW32> wide(5, 5);
    KxImage<KxC16> color(5, 5);
    for (KxGenericROI* image : Images{&gray, &wide, &color}) FillPattern(*image, 2);
    const auto drawEverything = [&](GDIDrawAdapter drawn, int n, double number, const RGBColor& paint) {
        DrawPointList points;
        for (const DrawPoint& point : {DrawPoint{number, 1}, {1, number}, {9, 9}}) points.Add(point);
        drawn.SetPixel(n, n, paint, number);
        drawn.DrawLine(n, 1, 3, n, paint);
        drawn.DrawArc(n, 1, n, 9, number, number, paint);
        drawn.DrawRectangle(n, 1, n, n, paint);
        drawn.DrawPolygon(points, paint);
        drawn.DrawEllipse(1, n, n, n, paint);
        drawn.FillRectangle(n, n, n, 5, paint, paint);
        drawn.FillEllipse(n, n, 5, n, paint, paint);
        drawn.FillPolygon(points, paint, paint);
        drawn.DrawText("two\nlines", n, n, paint);
        drawn.DrawTextWithBackground("text", n, 1, paint, paint);
        for (KxGenericROI* image : Images{&gray, &wide, &color}) {
            drawn.DrawImage(image, static_cast<float>(number), 2, n, 1, 1, paint);
            drawn.DrawImage(image, 1, 1, n, n, number, paint);
        }
    };
    for (const HDC hdc : {screen.hdc, paletteDevice, HDC()}) {
        SetViewportOrgEx(hdc, 3, -4, nullptr);
        SetTextColor(hdc, kRed);
        const auto state = StateOf(hdc);
        const int objects = Platform::CountGdiObjects();
        for (const int n : {0, 20, -20, INT_MAX, INT_MIN})
            for (const double number : {0.7, kNaN, 1e30, -1e30, HUGE_VAL})
                for (const RGBColor& paint : {RGBColor::Current, RGBColor::Red})
                    drawEverything(GDIDrawAdapter(hdc), n, number, paint);
        EXPECT_EQ(StateOf(hdc), state);
        EXPECT_EQ(Platform::CountGdiObjects(), objects);
    }
    DeleteDC(paletteDevice);
}

}  // namespace
}  // namespace Zelkor::Kalvo
