// Length units: the predefined ones to the bit, both forms of the name, and conversion.

#include "tests/support/test.h"

namespace {

using WideText = std::basic_string<unsigned short>;

const std::tuple<KxMeasurementUnit&, const char*, std::uint32_t> kPredefined[] = {
    {KxUnitNone, "None", 0x3F800000},  {KxUnit_um, "\xB5m", 0x358637BD},  {KxUnit_mm, "mm", 0x3A83126F},
    {KxUnit_cm, "cm", 0x3C23D70A},     {KxUnit_dm, "dm", 0x3DCCCCCD},     {KxUnit_m, "m", 0x3F800000},
    {KxUnit_dam, "Dm", 0x41200000},    {KxUnit_hm, "Hm", 0x42C80000},     {KxUnit_km, "Km", 0x447A0000},
    {KxUnit_mil, "mil", 0x37D51216},   {KxUnit_inch, "inch", 0x3CD013A9}, {KxUnit_foot, "feet", 0x3E9C0EBF},
    {KxUnit_yard, "yard", 0x3F6A161E}, {KxUnit_mile, "mile", 0x44C92B02},
};

TEST(KxUnit, DefinesTheFourteenUnitsAndFindsThemByName) {
    for (const auto& [unit, name, magnitudeBits] : kPredefined) {
        EXPECT_STREQ(unit.GetName(), name);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(unit.GetMagnitude()), magnitudeBits) << name;
        EXPECT_EQ(KxMeasurementUnit::GetPredefinedUnit(name), &unit);
        EXPECT_TRUE(unit.IsPredefinedUnit() && !KxMeasurementUnit(unit).IsPredefinedUnit());
    }
    for (const char* name : {"km", "foot", "none", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(KxMeasurementUnit::GetPredefinedUnit(name), nullptr);
}

TEST(KxUnit, KeepsOneNameForBothFormsCutToItsRoom) {
    const unsigned short wide[] = {'p', 0x3BC, '3', '4', '5', '6', '7', '8', 0};
    KxMeasurementUnit unit(2.0f, "12345678901234567890");
    EXPECT_STREQ(unit.GetName(), "123456789012345");
    unit.SetName("xy");
    EXPECT_EQ(std::string(unit.GetName(), 16), std::string("xy").append(14, '\0'));
    EXPECT_EQ(WideText(unit.GetNameUnicode()), WideText{'x' | 'y' << 8});
    unit.SetNameUnicode(wide);
    EXPECT_EQ(WideText(unit.GetNameUnicode()), WideText(wide, 7));
    EXPECT_STREQ(unit.GetName(), "p");
    EXPECT_STREQ(KxMeasurementUnit(&KxUnit_yard).GetName(), "yard");
    EXPECT_EQ(KxMeasurementUnit(static_cast<KxMeasurementUnit*>(nullptr)).GetMagnitude(), 0.0f);
    unit.SetNameUnicode(nullptr);
    EXPECT_EQ(WideText(unit.GetNameUnicode(), 8), WideText(8, 0));
}

TEST(KxUnit, AcceptsAPartOfItsOwnName) {
    KxMeasurementUnit unit(1.0f, "123456789012345");
    unit.SetName(unit.GetName() + 3);
    EXPECT_EQ(std::string(unit.GetName(), 16), std::string("456789012345").append(4, '\0'));
    unit.SetNameUnicode(unit.GetNameUnicode() + 2);
    EXPECT_EQ(std::string(unit.GetName(), 16), std::string("89012345").append(8, '\0'));
}

TEST(KxUnit, ConvertsInSinglePrecision) {
    EXPECT_EQ(KxUnit_mile.ConversionFactorTo(KxUnit_yard), 1609.344f / 0.9144f);
    const KxMeasurementUnit none;
    EXPECT_EQ(none.ConversionFactorTo(none), std::numeric_limits<float>::max());
    EXPECT_EQ(KxUnit_m.ConversionFactorTo(none), std::numeric_limits<float>::infinity());
}

}  // namespace
