// Collects the values of a plot and draws it.

#include "common/plots.h"

#include <algorithm>
#include <iterator>

#include "kalvo/display/kxgdidrawadapter.h"
#include "kalvo/display/kxpixelvector.h"
#include "common/canvas.h"
#include "common/pixel_conversion.h"
#include "common/region.h"

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
void ForEachPixel(const KxROI<Pixel>& region, int step, const Visit& visit) {
    for (int y = 0; y < region.GetHeight(); y += step)
        for (int x = 0; x < region.GetWidth(); x += step) visit(region.GetPixel(x, y));
}

// A place on a device context.
struct Place {
    HDC context;
    Zelkor::Kalvo::GenericRoiExtent box;

    template <class Vector, class... Colors>
    void Plot(Vector& vector, const Colors&... colors) const {
        const auto number = [](int pixels) { return static_cast<float>(pixels); };
        Checked([&] {
            vector.Draw(context, number(box.m_n32Width), number(box.m_n32Height), number(box.m_n32OrgX),
                        number(box.m_n32OrgY), colors...);
        });
    }
};

template <class Pixel>
void PlotProfile(const Place& place, const KxROI<Pixel>& region) {
    if constexpr (kHasColors<Pixel>) {
        KxC24Vector values;
        Checked([&] {
            ForEachPixel(region, 1, [&](Pixel pixel) {
                const Light light = ToLight(pixel);
                values.AddElement(KxC24(Level(light.red), Level(light.green), Level(light.blue)));
            });
        });
        HPEN pens[3];
        for (int i = 0; i < 3; ++i) pens[i] = CreatePen(PS_SOLID, 1, kComponents[i]);
        place.Plot(values, pens[0], pens[1], pens[2]);
        for (const HPEN pen : pens) DeleteObject(pen);
    } else {
        KxBW32Vector values;
        Checked([&] {
            ForEachPixel(region, 1, [&](Pixel pixel) { values.AddElement(KxBW32(std::uint32_t{pixel})); });
        });
        const SelectedPen pen(place.context, kCurveWidth, kGray);
        place.Plot(values);
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
void AddCurve(const Place& place, const KxPlot& plot, const KxBW32Vector& values) {
    GDIDrawAdapter surface(place.context);
    for (unsigned i = 1; i < values.GetNumElements(); ++i)
        surface.DrawLine(plot.XView(i - 1), plot.YView(values[i - 1]), plot.XView(i), plot.YView(values[i]),
                         RGBColor::Current);
}

template <class Pixel>
void PlotHistogram(const Place& place, const KxROI<Pixel>& region, int step) {
    if constexpr (kHasColors<Pixel>) {
        KxBW32Vector counters[] = {MakeCounters(), MakeCounters(), MakeCounters()};
        ForEachPixel(region, step, [&](Pixel pixel) {
            const Light light = ToLight(pixel);
            ++counters[0][Level(light.red)].m_Value;
            ++counters[1][Level(light.green)].m_Value;
            ++counters[2][Level(light.blue)].m_Value;
        });
        // The first one draws the axes, so its range must do for all.
        counters[0].SetYRange(0, std::max({Most(counters[0]), Most(counters[1]), Most(counters[2]), 1u}));
        for (int i = 0; i < 3; ++i) {
            const SelectedPen pen(place.context, kCurveWidth, kComponents[i]);
            if (i == 0)
                place.Plot(counters[0]);
            else
                AddCurve(place, counters[0], counters[i]);
        }
    } else {
        KxBW32Vector counters = MakeCounters();
        ForEachPixel(region, step, [&](Pixel pixel) { ++counters[Level(ToLight(pixel).red)].m_Value; });
        const SelectedPen pen(place.context, kCurveWidth, kGray);
        place.Plot(counters);
    }
}

}  // namespace

void DrawProfile(HDC context, const Zelkor::Kalvo::GenericRoiExtent& box, KxGenericROI& region) {
    WithPixels<KxROI>(region, [&](const auto& typed) { PlotProfile({context, box}, typed); });
}

void DrawHistogram(HDC context, const Zelkor::Kalvo::GenericRoiExtent& box, KxGenericROI& region, int step) {
    WithPixels<KxROI>(region, [&](const auto& typed) { PlotHistogram({context, box}, typed, step); });
}

}  // namespace App
