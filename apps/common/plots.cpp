// Collects the values of a chart.

#include "common/plots.h"

#include "common/chart.h"
#include "common/pixel_conversion.h"
#include "common/region.h"

namespace App {
namespace {

using Zelkor::RGBColor;

constexpr int kLevels = 256;

template <class Pixel>
constexpr bool kHasColors = Zelkor::Kalvo::PixelTraits<Pixel>::kPlanesPerPixel > 1;

// The curves of a region of such pixels, as yet without values.
template <class Pixel>
std::vector<Curve> Curves() {
    if constexpr (kHasColors<Pixel>)
        return {{"red", {220, 0, 0}, {}}, {"green", {0, 150, 0}, {}}, {"blue", {0, 0, 255}, {}}};
    else
        return {{"", {0, 90, 180}, {}}};
}

std::uint8_t Level(std::uint32_t component) { return Narrow<std::uint8_t>(component, 8); }

// Visits the pixels of every `step`-th row and column.
template <class Pixel, class Visit>
void ForEachPixel(const KxROI<Pixel>& region, int step, const Visit& visit) {
    for (int y = 0; y < region.GetHeight(); y += step)
        for (int x = 0; x < region.GetWidth(); x += step) visit(region.GetPixel(x, y));
}

template <class Pixel>
Chart Profile(const KxROI<Pixel>& region) {
    Chart chart{.across = region.GetHeight() == 1  ? "column"
                          : region.GetWidth() == 1 ? "row"
                                                   : "pixel",
                .upwards = "level",
                .curves = Curves<Pixel>()};
    ForEachPixel(region, 1, [&](Pixel pixel) {
        if constexpr (kHasColors<Pixel>) {
            const Light light = ToLight(pixel);
            chart.curves[0].values.push_back(Level(light.red));
            chart.curves[1].values.push_back(Level(light.green));
            chart.curves[2].values.push_back(Level(light.blue));
        } else {
            chart.curves[0].values.push_back(std::uint32_t{pixel});
        }
    });
    return chart;
}

template <class Pixel>
Chart Histogram(const KxROI<Pixel>& region, int step) {
    Chart chart{
        .across = "level", .upwards = "pixels", .curves = Curves<Pixel>(), .isFilled = !kHasColors<Pixel>};
    for (Curve& curve : chart.curves) curve.values.resize(kLevels);
    ForEachPixel(region, step, [&](Pixel pixel) {
        const Light light = ToLight(pixel);
        ++chart.curves[0].values[Level(light.red)];
        if constexpr (kHasColors<Pixel>) {
            ++chart.curves[1].values[Level(light.green)];
            ++chart.curves[2].values[Level(light.blue)];
        }
    });
    return chart;
}

}  // namespace

void DrawProfile(const Paper& paper, const Zelkor::Kalvo::GenericRoiExtent& box, KxGenericROI& region) {
    WithPixels<KxROI>(region, [&](const auto& typed) { DrawChart(paper, box, Profile(typed)); });
}

void DrawHistogram(const Paper& paper, const Zelkor::Kalvo::GenericRoiExtent& box, KxGenericROI& region,
                   int step) {
    WithPixels<KxROI>(region, [&](const auto& typed) { DrawChart(paper, box, Histogram(typed, step)); });
}

}  // namespace App
