// Vector graphics, drawn by another library, look like what a device context shows.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>

#include "kalvo/kalvo.h"
#include "kalvo-svg/kxsvgdrawadapter.h"

namespace Zelkor {
namespace {

constexpr int kSide = 100;
using Picture = KxImage<KxC24>;
using Draw = std::function<void(DrawAdapter&)>;

Picture White() {
    Picture picture(kSide, kSide);
    for (int i = 0; i < kSide * kSide; ++i) picture.SetPixel(KxWhite24, i % kSide, i / kSide);
    return picture;
}

Picture OnContext(const Draw& draw) {
    Picture picture = White();
    const HDC context = KxOpenImageDC(&picture);
    GDIDrawAdapter surface(context);
    draw(surface);
    KxCloseImageDC(&picture, context);
    return picture;
}

Picture AsVectors(const Draw& draw) {
    const std::string folder = (std::filesystem::temp_directory_path() / "svg-XXXXXX").string();
    std::string made = folder;
    if (!mkdtemp(made.data())) throw std::runtime_error("no folder");
    SvgDrawAdapter surface(kSide, kSide);
    draw(surface);
    surface.Save((made + "/a.svg").c_str());
    const std::string command = "cd " + made +
                                " && rsvg-convert --background-color=white -o a.png a.svg && " KALVO_PROGRAM
                                " convert a.png a.bmp --type c24";
    Picture picture;
    if (std::system(command.c_str()) == 0) picture.Load((made + "/a.bmp").c_str());
    std::filesystem::remove_all(made);
    return picture;
}

// How much of the ink of one picture is more than a pixel away from any of the other, whose edges are soft.
double Strays(Picture& first, Picture& second) {
    const auto whiteness = [](Picture& picture, int x, int y) {
        const KxC24 pixel = picture.GetPixel(x, y);
        return pixel.m_un8C0 + pixel.m_un8C1 + pixel.m_un8C2;
    };
    constexpr int kInk = 560, kSoftInk = 730;
    int strays = 0, ink = 0;
    for (int y = 1; y < kSide - 1; ++y)
        for (int x = 1; x < kSide - 1; ++x) {
            if (whiteness(first, x, y) > kInk) continue;
            ++ink;
            bool isNear = false;
            for (int i = 0; i < 9; ++i) isNear |= whiteness(second, x + i % 3 - 1, y + i / 3 - 1) <= kSoftInk;
            strays += !isNear;
        }
    return static_cast<double>(strays) / std::max(ink, 1);
}

TEST(SvgDrawAdapter, DrawsWhatAContextShows) {
    KxImage<KxBW8> image(30, 20);
    for (int i = 0; i < 600; ++i) image.SetPixel(i % 30 * 8, i % 30, i / 30);
    KxROI<KxBW8> region(&image, 5, 5, 15, 10);
    KxBW8Vector profile;
    for (int i = 0; i < 50; ++i) profile.AddElement(i * i / 10);
    DrawPointList points;
    for (const DrawPoint point : {DrawPoint{10, 80}, {50, 20}, {90, 70}}) points.Add(point);
    const RGBColor black = RGBColor::Black, red = RGBColor::Red, blue = RGBColor::Blue,
                   none = RGBColor::Current;
    // clang-format off
    const std::pair<const char*, Draw> kDrawings[] = {
        {"lines", [&](auto& s) { s.DrawLine(10, 10, 90, 60, red), s.DrawLine(5, 95, 95, 95, black); }},
        {"boxes", [&](auto& s) { s.DrawRectangle(9, 9, 70, 30, blue), s.FillRectangle(20, 50, 40, 30, red, blue); }},
        {"ellipses", [&](auto& s) { s.DrawEllipse(5, 5, 60, 40, black), s.FillEllipse(30, 50, 60, 40, red, blue); }},
        {"arcs", [&](auto& s) { s.DrawArc(9, 9, 80, 60, 0.5, 2, black), s.DrawArc(30, 30, 40, 60, 1, -4, red); }},
        {"polygons", [&](auto& s) { s.FillPolygon(points, black, blue), s.DrawPolygon(points, red); }},
        {"pixels", [&](auto& s) { for (int i = 0; i < 50; ++i) s.SetPixel(20 + i, 30 + i % 20, black, 0.7); }},
        {"images", [&](auto& s) { s.DrawImage(&image, 2, 3, 20, 9, 1, none), s.DrawImage(&region, 1, 1, 5, 80, 0.5, red); }},
        {"frames", [&](auto& s) { region.DrawFrame(&s, KX_FRAME_POSITION_INSIDE, 1, 4, 4, 0, 0); }},
        {"texts", [&](auto& s) { s.DrawText("a <1>\nline 2", 9, 9, black), s.DrawTextWithBackground("b", 20, 60, red, blue); }},
        {"plots", [&](auto& s) { profile.Draw(&s, kSide, kSide, 0, 0); }},
    };
    // clang-format on
    for (const auto& [name, draw] : kDrawings) {
        Picture shown = OnContext(draw), vectors = AsVectors(draw);
        ASSERT_EQ(vectors.GetWidth(), kSide) << name;
        EXPECT_LE(Strays(shown, vectors), 0.02) << name;
        EXPECT_LE(Strays(vectors, shown), 0.02) << name;
    }
}

}  // namespace
}  // namespace Zelkor
