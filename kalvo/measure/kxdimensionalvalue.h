#pragma once
// A floating-point quantity expressed in a length unit.

#include "kalvo/measure/kxunit.h"

class KxSerializer;

/// A value and its unit, held by value.
/// @code
/// const KxDimensionalValue length(25.4f, &KxUnit_mm);
/// std::printf("%f inches\n", length.GetValue(&KxUnit_inch));
/// @endcode
class KX_API KxDimensionalValue {
public:
    /// 1.0 in no unit.
    KxDimensionalValue() = default;
    /// A null unit has magnitude 0 and an empty name.
    KxDimensionalValue(float f32Value, const KxMeasurementUnit* pUnit);
    KxDimensionalValue(const KxDimensionalValue&) = default;
    KxDimensionalValue& operator=(const KxDimensionalValue&) = default;
    virtual ~KxDimensionalValue();

    /// Exchanges the archive record with a stream. Reading takes record versions 1 to 3; writing always
    /// writes version 3. A version 3 record that claims a predefined unit fails with `KX_ERROR_INTERNAL`.
    /// Exceptions of the stream pass through.
    virtual void Serialize(KxSerializer* pSerializer, unsigned int un32Version = 0xFFFFFFFFu);

    /// Current version of the archive record: 3.
    unsigned int GetVersion() const { return 3; }

    /// The value in its own unit.
    float GetValue() const { return m_f32Value; }
    /// The value in `pUnit`; null leaves it in its own unit.
    float GetValue(const KxMeasurementUnit* pUnit) const;
    /// Replaces the value and keeps the unit.
    void SetValue(float f32Value) { m_f32Value = f32Value; }
    /// Replaces value and unit, without conversion; a null unit keeps the old one.
    void SetValue(float f32Value, const KxMeasurementUnit* pUnit);
    /// Converts the value to `pUnit`; null changes nothing.
    void SetUnit(const KxMeasurementUnit* pUnit);
    /// The embedded unit; it belongs to this value.
    KxMeasurementUnit* GetUnit() { return &m_Unit; }
    const KxMeasurementUnit* GetUnit() const { return &m_Unit; }

private:
    float m_f32Value = 1;
    KxMeasurementUnit m_Unit = KxUnitNone;
};
