// The angle unit: names, factors to the bit, and what an unknown unit leaves behind.

#include "tests/support/test.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using State = std::tuple<int, std::string, std::uint32_t, std::uint32_t>;

// Unit, name, and the factors from and to radians, read off by converting 1.
State Current() {
    return {KxGetAngleUnit(), KxGetAngleUnitName(), std::bit_cast<std::uint32_t>(KxFromRadians(1)),
            std::bit_cast<std::uint32_t>(KxToRadians(1))};
}

const State atStart = Current();  // before any test sets a unit

TEST(AngleUnit, SetsNameAndFactorsThatAnUnknownUnitLeavesAsTheyAre) {
    EXPECT_EQ(atStart, State(2, "Deg", 0x42652EE0, 0x3C8EFA35));
    const State states[] = {{0, "Rev", 0x3E22F983, 0x40C90FDB},
                            {1, "Rad", 0x3F800000, 0x3F800000},
                            {3, "Grad", 0x427EA5DD, 0x3C80ADFD},
                            {2, "Deg", 0x42652EE0, 0x3C8EFA36}};
    for (const State& state : states) {
        KxSetAngleUnit(static_cast<KX_ANGLE_UNITS>(std::get<0>(state)));
        EXPECT_EQ(Current(), state);
    }
    for (const int unit : {7, 4, -1}) {
        ExpectFailure(KX_ERROR_PARAMETER_1_OUT_OF_RANGE, {"KxSetAngleUnit"},
                      [&] { KxSetAngleUnit(static_cast<KX_ANGLE_UNITS>(unit)); });
        EXPECT_EQ(Current(), State(unit, "", 0x42652EE0, 0x3C8EFA36));
    }
    KxSetAngleUnit(KX_ANGLE_UNITS_DEGREES);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
