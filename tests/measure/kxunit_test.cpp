// Length units: the predefined ones to the bit, both forms of the name, and conversion.
#include "kalvo/measure/kxunit.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace {

using WideText = std::basic_string<unsigned short>;

const struct {
    KxMeasurementUnit& unit;
    const char* name;
    std::uint32_t magnitudeBits;
} kPredefined[] = {
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
        EXPECT_EQ(unit.IsPredefinedUnit(), 1);
        EXPECT_EQ(KxMeasurementUnit(unit).IsPredefinedUnit(), 0);
    }
    for (const char* name : {"km", "foot", "none", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(KxMeasurementUnit::GetPredefinedUnit(name), nullptr);
}

TEST(KxUnit, TakesItsNameFromEachConstructor) {
    EXPECT_STREQ(KxMeasurementUnit().GetName(), "");
    const KxMeasurementUnit none(static_cast<const KxMeasurementUnit*>(nullptr));
    EXPECT_EQ(none.GetMagnitude(), 0.0f);
    EXPECT_STREQ(none.GetName(), "");
    const KxMeasurementUnit copy(&KxUnit_yard);
    EXPECT_EQ(copy.GetMagnitude(), KxUnit_yard.GetMagnitude());
    EXPECT_STREQ(copy.GetName(), "yard");
    constexpr KxMeasurementUnit narrow(2.0f, "12345678901234567890");
    EXPECT_STREQ(narrow.GetName(), "123456789012345");
    const unsigned short text[] = {'p', 0x3BC, '3', '4', '5', '6', '7', '8', 0};
    EXPECT_EQ(WideText(KxMeasurementUnit(2.0f, text).GetNameUnicode()), WideText(text, 7));
    EXPECT_STREQ(KxMeasurementUnit(2.0f, static_cast<const char*>(nullptr)).GetName(), "");
    EXPECT_EQ(KxMeasurementUnit(2.0f, static_cast<const unsigned short*>(nullptr)).GetNameUnicode()[0], 0);
}

TEST(KxUnit, KeepsOneNameForBothForms) {
    KxMeasurementUnit unit(1.0f, "mm");
    EXPECT_EQ(WideText(unit.GetNameUnicode()), (WideText{0x6D6D}));
    const unsigned short wide[] = {'a', 'b', 0};
    unit.SetNameUnicode(wide);
    EXPECT_STREQ(unit.GetName(), "a");
    unit.SetName("12345678901234567890");
    EXPECT_STREQ(unit.GetName(), "123456789012345");
    unit.SetName("xy");
    EXPECT_EQ(std::string(unit.GetName(), 16), std::string("xy").append(14, '\0'));
    unit.SetName(nullptr);
    EXPECT_STREQ(unit.GetName(), "");
    unit.SetNameUnicode(wide);
    unit.SetNameUnicode(nullptr);
    EXPECT_EQ(unit.GetNameUnicode()[0], 0);
}

TEST(KxUnit, AcceptsAPartOfItsOwnName) {
    KxMeasurementUnit unit(1.0f, "123456789012345");
    unit.SetName(unit.GetName());
    EXPECT_STREQ(unit.GetName(), "123456789012345");
    unit.SetName(unit.GetName() + 3);
    EXPECT_EQ(std::string(unit.GetName(), 16), std::string("456789012345").append(4, '\0'));
    const unsigned short text[] = {'1', '2', '3', '4', '5', '6', '7', 0};
    unit.SetNameUnicode(text);
    unit.SetNameUnicode(unit.GetNameUnicode() + 2);
    EXPECT_EQ(WideText(unit.GetNameUnicode(), 8), (WideText{'3', '4', '5', '6', '7', 0, 0, 0}));
}

TEST(KxUnit, ConvertsInSinglePrecision) {
    EXPECT_EQ(KxUnitNone.ConversionFactorTo(KxUnit_m), 1.0f);
    EXPECT_EQ(KxUnit_cm.ConversionFactorTo(KxUnit_mm), 0.01f / 0.001f);
    EXPECT_EQ(KxUnit_mile.ConversionFactorTo(KxUnit_yard), 1609.344f / 0.9144f);
    const KxMeasurementUnit none;
    EXPECT_EQ(none.ConversionFactorTo(KxUnit_m), std::numeric_limits<float>::max());
    EXPECT_EQ(none.ConversionFactorTo(none), std::numeric_limits<float>::max());
    EXPECT_TRUE(std::isinf(KxUnit_m.ConversionFactorTo(none)));
    KxMeasurementUnit pixel(1.0f, "pixel");
    pixel.SetMagnitude(0.5f);
    EXPECT_EQ(pixel.ConversionFactorTo(KxUnit_dam), 0.05f);
}

}  // namespace
