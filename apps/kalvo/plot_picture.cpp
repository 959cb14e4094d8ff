// Collects the values of a plot and draws it.

#include "plot_picture.h"

#include <algorithm>
#include <iterator>

#include "kalvo/display/kxgdidrawadapter.h"
#include "kalvo/display/kxpixelvector.h"
#include "canvas.h"
#include "pixel_conversion.h"
#include "region.h"

namespace App {
namespace {

using Zelkor::GDIDrawAdapter;
using Zelkor::RGBColor;

constexpr int kCurveWidth = 2;
constexpr COLORREF kGray = RGB(0, 90, 180);  // black is the colour of the axes
constexpr COLORREF kComponents[] = {RGB(220, 0, 0), RGB(0, 150, 0), RGB(0, 0, 255)};

template <class Pixel>
constexpr bool kHasColors = Zelkor::Kalvo::PixelTraits<Pixel>::kPlanesPerPixel > 1;

std::uint8_t Level(std::uint32_t component) { return Narrow<std::uint8_t>(component, 8); }

template <class Pixel, class Visit>
void ForEachPixel(const KxROI<Pixel>& region, const Visit& visit) {
    for (int y = 0; y < region.GetHeight(); ++y)
        for (int x = 0; x < region.GetWidth(); ++x) visit(region.GetPixel(x, y));
}

// As wide and high as the picture.
template <class Vector, class... Colors>
void DrawPlot(Canvas& canvas, Vector& vector, const Colors&... colors) {
    const auto width = static_cast<float>(canvas.Image().GetWidth());
    const auto height = static_cast<float>(canvas.Image().GetHeight());
    Checked([&] { vector.Draw(canvas.Context(), width, height, 0, 0, colors...); });
}

template <class Pixel>
void DrawProfile(Canvas& canvas, const KxROI<Pixel>& region) {
    if constexpr (kHasColors<Pixel>) {
        KxC24Vector values;
        Checked([&] {
            ForEachPixel(region, [&](Pixel pixel) {
                const Light light = ToLight(pixel);
                values.AddElement(KxC24(Level(light.red), Level(light.green), Level(light.blue)));
            });
        });
        HPEN pens[3];
        for (int i = 0; i < 3; ++i) pens[i] = CreatePen(PS_SOLID, 1, kComponents[i]);
        DrawPlot(canvas, values, pens[0], pens[1], pens[2]);
        for (const HPEN pen : pens) DeleteObject(pen);
    } else {
        KxBW32Vector values;
        Checked([&] {
            ForEachPixel(region, [&](Pixel pixel) { values.AddElement(KxBW32(std::uint32_t{pixel})); });
        });
        const SelectedPen pen(canvas.Context(), kCurveWidth, kGray);
        DrawPlot(canvas, values);
    }
}

KxBW32Vector MakeCounters() {
    KxBW32Vector counters;
    Checked([&] { counters.SetNumElements(256); });
    return counters;
}

std::uint32_t Most(const KxBW32Vector& counters) {
    const KxBW32* first = counters.GetDataPtr();
    return *std::max_element(first, first + counters.GetNumElements());
}

// One more curve on the axes of a plot, in the pen that is selected.
void AddCurve(Canvas& canvas, const KxPlot& plot, const KxBW32Vector& values) {
    GDIDrawAdapter surface(canvas.Context());
    for (unsigned i = 1; i < values.GetNumElements(); ++i)
        surface.DrawLine(plot.XView(i - 1), plot.YView(values[i - 1]), plot.XView(i), plot.YView(values[i]),
                         RGBColor::Current);
}

template <class Pixel>
void DrawHistogram(Canvas& canvas, const KxROI<Pixel>& region) {
    if constexpr (kHasColors<Pixel>) {
        KxBW32Vector counters[] = {MakeCounters(), MakeCounters(), MakeCounters()};
        ForEachPixel(region, [&](Pixel pixel) {
            const Light light = ToLight(pixel);
            ++counters[0][Level(light.red)].m_Value;
            ++counters[1][Level(light.green)].m_Value;
            ++counters[2][Level(light.blue)].m_Value;
        });
        // The first one draws the axes, so its range must do for all.
        counters[0].SetYRange(0, std::max({Most(counters[0]), Most(counters[1]), Most(counters[2]), 1u}));
        for (int i = 0; i < 3; ++i) {
            const SelectedPen pen(canvas.Context(), kCurveWidth, kComponents[i]);
            if (i == 0)
                DrawPlot(canvas, counters[0]);
            else
                AddCurve(canvas, counters[0], counters[i]);
        }
    } else {
        KxBW32Vector counters = MakeCounters();
        ForEachPixel(region, [&](Pixel pixel) { ++counters[Level(ToLight(pixel).red)].m_Value; });
        const SelectedPen pen(canvas.Context(), kCurveWidth, kGray);
        DrawPlot(canvas, counters);
    }
}

}  // namespace

void SaveProfile(KxGenericROI& region, PictureSize size, const std::string& path) {
    Canvas canvas(size.width, size.height);
    WithPixels<KxROI>(region, [&](const auto& typed) { DrawProfile(canvas, typed); });
    SavePicture(canvas, path);
}

void SaveHistogram(KxGenericROI& region, PictureSize size, const std::string& path) {
    Canvas canvas(size.width, size.height);
    WithPixels<KxROI>(region, [&](const auto& typed) { DrawHistogram(canvas, typed); });
    SavePicture(canvas, path);
}

}  // namespace App
