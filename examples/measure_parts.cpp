// Measures parts in millimetres and watches the last ones: units, calibrated pixels, statistics.

#include <kalvo/kalvo.h>

#include <cstdio>

const KxDimensionalValue kNominal(15, &KxUnit_mm);  // units are there before main runs

int main() {
    KxImage<KxBW8> part(400, 100);
    part.SetPixelDimensions(0.05f, 0.05f, &KxUnit_mm);
    KxROI<KxBW8> bolt(&part, 20, 10, 0, 40);

    KxStatistics lengths(4);  // of the last four parts
    for (const int pixels : {302, 299, 301, 300, 298, 303}) {
        bolt.SetWidth(pixels);
        float width = 0, height = 0;
        const KxMeasurementUnit* unit = nullptr;
        bolt.GetPixelDimensions(width, height, unit);
        const KxDimensionalValue length(static_cast<float>(bolt.GetWidth()) * width, unit);
        lengths.NewElement(length.GetValue());
        std::printf("%.2f mm, %+.4f inch\n", length.GetValue(),
                    length.GetValue(&KxUnit_inch) - kNominal.GetValue(&KxUnit_inch));
    }
    std::printf("last %u: %.3f mm on average, from %.2f to %.2f\n", lengths.Count(), lengths.Average(),
                lengths.Minimum(), lengths.Maximum());
    return KxFailure();
}

// Prints:
// 15.10 mm, +0.0039 inch
// 14.95 mm, -0.0020 inch
// 15.05 mm, +0.0020 inch
// 15.00 mm, +0.0000 inch
// 14.90 mm, -0.0039 inch
// 15.15 mm, +0.0059 inch
// last 4: 15.025 mm on average, from 14.90 to 15.15
