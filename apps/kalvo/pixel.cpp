// The commands `pixel` and `compare`, and the statistics of `info`.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>

#include "commands.h"
#include "common/components.h"
#include "common/failure.h"
#include "common/region.h"
#include "description.h"

namespace App {
namespace {

// "X,Y" inside the image.
std::pair<int, int> ToPlace(const std::string& text, const KxGenericROI& image) {
    int x = 0, y = 0, length = 0;
    const bool isPlace = std::sscanf(text.c_str(), "%9d,%9d%n", &x, &y, &length) == 2 &&
                         static_cast<std::size_t>(length) == text.size();
    if (!isPlace) throw Failure{Escaped(text) + " is not X,Y", KX_ERROR_PARAMETERS_OUT_OF_RANGE};
    if (x < 0 || y < 0 || x >= image.GetWidth() || y >= image.GetHeight())
        throw Failure{text + " lies outside of " + std::to_string(image.GetWidth()) + " x " +
                          std::to_string(image.GetHeight()) + " pixels",
                      KX_ERROR_ROI_OUT_OF_PARENT};
    return {x, y};
}

}  // namespace

int RunPixel(const PixelOptions& options) {
    const auto print = [&] {
        const Object image = LoadImage(options.input);
        Json pixels = Json::array();
        for (const std::string& text : options.places) {
            const auto [x, y] = ToPlace(text, *image);
            const std::vector<double> values = Components(*image, x, y);
            if (options.asJson) {
                pixels.push_back({{"x", x}, {"y", y}, {"values", values}});
                continue;
            }
            std::cout << x << ',' << y << ':';
            for (const double value : values) std::cout << ' ' << value;
            std::cout << '\n';
        }
        if (options.asJson)
            std::cout << ToText({{"schema", "kalvo-pixel-1"},
                                 {"type", PixelTypeName(image->GetType())},
                                 {"pixels", pixels}},
                                2)
                      << '\n';
    };
    return Attempt(options.input, print) ? 1 : 0;
}

int RunCompare(const CompareOptions& options) {
    Object first, second;
    if (Attempt(options.first, [&] { first = LoadImage(options.first); }) ||
        Attempt(options.second, [&] { second = LoadImage(options.second); }))
        return 2;
    const bool isAlike = first->GetType() == second->GetType() && first->GetWidth() == second->GetWidth() &&
                         first->GetHeight() == second->GetHeight();
    double largest = 0;
    std::int64_t different = 0;
    int x = -1, y = -1;  // of the first difference
    for (int row = 0; isAlike && row < first->GetHeight(); ++row)
        for (int column = 0; column < first->GetWidth(); ++column) {
            const double difference = Difference(*first, *second, column, row);
            largest = std::max(largest, difference);
            if (difference <= options.tolerance) continue;
            if (different++ == 0) x = column, y = row;
        }
    const bool isSame = isAlike && different == 0;
    if (options.asJson) {
        Json json = {{"schema", "kalvo-compare-1"},
                     {"same", isSame},
                     {"comparable", isAlike},
                     {"largestDifference", largest},
                     {"differentPixels", different}};
        if (different > 0) json["first"] = {{"x", x}, {"y", y}};
        std::cout << ToText(json, 2) << '\n';
    } else if (!isAlike) {
        std::cout << "different kinds: " << PixelTypeName(first->GetType()) << ", " << first->GetWidth()
                  << " x " << first->GetHeight() << " and " << PixelTypeName(second->GetType()) << ", "
                  << second->GetWidth() << " x " << second->GetHeight() << " pixels\n";
    } else if (isSame) {
        std::cout << "the same" << (largest > 0 ? ", within the tolerance" : "") << '\n';
    } else {
        std::cout << different << " pixels differ, by " << largest << " at most, first at " << x << ',' << y
                  << '\n';
    }
    return isSame ? 0 : 1;
}

}  // namespace App
