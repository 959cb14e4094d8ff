// The angle unit: names, factors to the bit, and what an unknown unit leaves behind.
#include "kalvo/measure/kxangle.h"

#include <gtest/gtest.h>

#include <bit>
#include <numbers>
#include <tuple>

#include "kalvo/frame/kxerror.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo::Testing {
namespace {

// The factors, read off by converting 1.
std::uint32_t ToBits() { return std::bit_cast<std::uint32_t>(KxToRadians(1)); }
std::uint32_t FromBits() { return std::bit_cast<std::uint32_t>(KxFromRadians(1)); }

// Other tests may have set a unit before, but a process begins with these.
const auto factorsAtStart = std::tuple(KxGetAngleUnit(), FromBits(), ToBits());

TEST(AngleUnit, IsDegreesAtFirstWithTheNearestFactorToRadians) {
    EXPECT_EQ(factorsAtStart, std::tuple(KX_ANGLE_UNITS_DEGREES, 0x42652EE0u, 0x3C8EFA35u));
}

TEST(AngleUnit, SetsNameAndFactors) {
    const std::tuple<KX_ANGLE_UNITS, const char*, std::uint32_t, std::uint32_t> units[] = {
        {KX_ANGLE_UNITS_REVOLUTIONS, "Rev", 0x3E22F983, 0x40C90FDB},
        {KX_ANGLE_UNITS_RADIANS, "Rad", 0x3F800000, 0x3F800000},
        {KX_ANGLE_UNITS_GRADS, "Grad", 0x427EA5DD, 0x3C80ADFD},
        {KX_ANGLE_UNITS_DEGREES, "Deg", 0x42652EE0, 0x3C8EFA36},
    };
    for (const auto& [unit, name, from, to] : units) {
        KxSetAngleUnit(unit);
        EXPECT_EQ(KxGetAngleUnit(), unit);
        EXPECT_STREQ(KxGetAngleUnitName(), name);
        EXPECT_EQ(std::tuple(FromBits(), ToBits()), std::tuple(from, to)) << name;
    }
}

TEST(AngleUnit, UnknownOneIsStoredButConvertsAsBefore) {
    const TraceRecorder traces;
    KxSetAngleUnit(KX_ANGLE_UNITS_GRADS);
    for (const int unit : {7, 4, -1}) {
        KxOk();
        KxSetAngleUnit(static_cast<KX_ANGLE_UNITS>(unit));
        EXPECT_EQ(KxGetError(), KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
        EXPECT_EQ(KxGetAngleUnit(), unit);
        EXPECT_STREQ(KxGetAngleUnitName(), "");
        EXPECT_FLOAT_EQ(KxToRadians(200), std::numbers::pi_v<float>);
    }
    EXPECT_EQ(traces.Functions(), std::vector<std::string>(3, "KxSetAngleUnit"));
    KxSetAngleUnit(KX_ANGLE_UNITS_DEGREES);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
