// Conversion of values between units, and the archive record of a value.

#include "kalvo/measure/kxdimensionalvalue.h"

#include <algorithm>
#include <cstdint>

#include "kalvo/frame/boundary.h"
#include "kalvo/streams/kxserializer.h"
#include "kalvo/streams/streambytes.h"

using namespace Zelkor::Kalvo;

namespace {

constexpr unsigned int kNameBytes = 16;

void WriteUnit(KxSerializer& stream, const KxMeasurementUnit& unit) {
    std::int32_t predefined = 0;
    TransferValue(stream, predefined, "bPredefinedUnit");
    float magnitude = unit.GetMagnitude();
    TransferValue(stream, magnitude, "f32Magnitude");
    char name[kNameBytes];
    std::copy_n(unit.GetName(), kNameBytes, name);
    stream.SerializeBytes(name, kNameBytes, "m_Unit.GetName( )");
}

void ReadMagnitudeAndName(KxSerializer& stream, KxMeasurementUnit& unit) {
    float magnitude = 0;
    TransferValue(stream, magnitude, "f32Magnitude");
    char name[kNameBytes] = {};
    stream.SerializeBytes(name, kNameBytes, "pszName");
    unit.SetMagnitude(magnitude);
    unit.SetName(name);
}

}  // namespace

KxDimensionalValue::KxDimensionalValue(float f32Value, const KxMeasurementUnit* pUnit)
    : m_f32Value(f32Value), m_Unit(pUnit) {}

KxDimensionalValue::~KxDimensionalValue() = default;

float KxDimensionalValue::GetValue(const KxMeasurementUnit* pUnit) const {
    return pUnit ? m_f32Value * m_Unit.ConversionFactorTo(*pUnit) : m_f32Value;
}

void KxDimensionalValue::SetValue(float f32Value, const KxMeasurementUnit* pUnit) {
    m_f32Value = f32Value;
    if (pUnit) m_Unit = *pUnit;
}

void KxDimensionalValue::SetUnit(const KxMeasurementUnit* pUnit) {
    if (pUnit) SetValue(GetValue(pUnit), pUnit);
}

void KxDimensionalValue::Serialize(KxSerializer* pSerializer, unsigned int un32Version) {
    KxSerializer& stream = *pSerializer;
    TransferValue(stream, m_f32Value, "m_f32Value");
    if (stream.IsWriting()) {
        WriteUnit(stream, m_Unit);
        return;
    }
    // The current version is asked for with the largest number, which all the comparisons below take along.
    std::int32_t predefined = 0;
    if (un32Version >= 2) TransferValue(stream, predefined, "bPredefinedUnit");
    if (un32Version >= 3 && predefined) {
        Report(KX_ERROR_INTERNAL, "KxDimensionalValue::Serialize");
        return;
    }
    ReadMagnitudeAndName(stream, m_Unit);
}
