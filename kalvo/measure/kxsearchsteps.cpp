// Steps of a search, from the mean distance of a pattern's points to its centre.

#include "kalvo/measure/kxsearchsteps.h"

#include <cmath>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/roundtoint.h"
#include "kalvo/measure/kxangle.h"

namespace {

using namespace Zelkor::Kalvo;

// The mean over a rectangle of the distance from its centre, in closed form.
float MeanRadius(float width, float height) {
    const float diagonal = std::sqrt(width * width + height * height);
    const auto part = [diagonal](double along, double across) {
        return std::log((across + diagonal) / along) * along * along / (12 * across);
    };
    const auto firstTerms = static_cast<float>(diagonal / 6.0 + part(width, height));
    return static_cast<float>(firstTerms + part(height, width));
}

struct Steps {
    unsigned count;
    float size;
};

Steps StepsFor(float range, float step, bool adjust) {
    const std::int32_t intervals = RoundToInt(range / step);
    const unsigned count = static_cast<unsigned>(intervals) + 1;
    return {count, adjust && intervals != 0 ? range / static_cast<float>(intervals) : step};
}

}  // namespace

void KxSkewScaleSteps(int n32Width, int n32Height, float f32SkewRange, unsigned int& un32SkewSteps,
                      float& f32SkewStep, float f32ScaleRange, unsigned int& un32ScaleSteps,
                      float& f32ScaleStep, int bAdjust) {
    AtBoundary("KxSkewScaleSteps", [&] {
        if (n32Width < 1) throw Exception(KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
        if (n32Height < 1) throw Exception(KX_ERROR_PARAMETER_2_OUT_OF_RANGE);
        const float step = 1 / MeanRadius(static_cast<float>(n32Width), static_cast<float>(n32Height));
        const Steps skew = StepsFor(KxToRadians(f32SkewRange), step, bAdjust != 0);
        const Steps scale = StepsFor(f32ScaleRange, step, bAdjust != 0);
        un32SkewSteps = skew.count;
        f32SkewStep = KxFromRadians(skew.size);
        un32ScaleSteps = scale.count;
        f32ScaleStep = scale.size;
    });
}
