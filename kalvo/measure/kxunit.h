#pragma once
// Length units: a magnitude in metres and a short name.

#include <cstddef>

#include "kalvo/base/kxexport.h"

/// A length unit. Copied member by member. The name is kept in the form it was last set in, narrow or UTF-16;
/// reading the other form gives the same bytes reinterpreted.
/// @code
/// const KxMeasurementUnit point(0.0254f / 72, "point");
/// std::printf("%f points to a millimetre\n", KxUnit_mm.ConversionFactorTo(point));
/// @endcode
class KX_API KxMeasurementUnit {
public:
    /// Magnitude 0, empty name.
    constexpr KxMeasurementUnit() = default;
    /// Copies magnitude and narrow name; null gives magnitude 0 and an empty name.
    explicit KxMeasurementUnit(const KxMeasurementUnit* pUnit);
    /// @param f32Magnitude  length of one unit in metres
    /// @param pszName       at most 15 characters are kept; null gives an empty name
    constexpr KxMeasurementUnit(float f32Magnitude, const char* pszName) : m_f32Magnitude(f32Magnitude) {
        for (std::size_t i = 0; pszName && i < kMaxNarrow && pszName[i]; ++i)
            m_Name[i / 2] |=
                static_cast<unsigned short>(static_cast<unsigned char>(pszName[i]) << (8 * (i % 2)));
    }
    /// @param pwszName  at most 7 code units are kept; null gives an empty name
    KxMeasurementUnit(float f32Magnitude, const unsigned short* pwszName);

    /// Length of one unit in metres.
    float GetMagnitude() const { return m_f32Magnitude; }
    void SetMagnitude(float f32Magnitude) { m_f32Magnitude = f32Magnitude; }

    /// The name buffer as narrow text.
    const char* GetName() const { return reinterpret_cast<const char*>(m_Name); }
    /// The name buffer as UTF-16 text.
    const unsigned short* GetNameUnicode() const { return m_Name; }
    /// Keeps at most 15 characters, which may come from this name itself; null gives an empty name.
    void SetName(const char* pszName);
    /// Keeps at most 7 code units, which may come from this name itself; null gives an empty name.
    void SetNameUnicode(const unsigned short* pwszName);

    /// Factor that turns a value in this unit into one in `target`, in single precision; the largest float
    /// when this magnitude is 0.
    float ConversionFactorTo(const KxMeasurementUnit& target) const;

    /// 1 when this object is one of the predefined globals below; a copy of one is not.
    int IsPredefinedUnit() const;
    /// The predefined unit of that exact name ("mm", "Km", "feet", ...); null when there is none.
    static KxMeasurementUnit* GetPredefinedUnit(const char* pszName);

private:
    static constexpr std::size_t kMaxNarrow = 15;
    static constexpr std::size_t kMaxWide = 7;
    static KxMeasurementUnit* const KxPredefinedUnits[];

    float m_f32Magnitude = 0;
    unsigned short m_Name[kMaxWide + 1] = {};  // narrow text lies here too, two characters to a unit
};

/// The predefined units, usable from static constructors of other libraries.
extern KX_API KxMeasurementUnit KxUnitNone;
extern KX_API KxMeasurementUnit KxUnit_um;
extern KX_API KxMeasurementUnit KxUnit_mm;
extern KX_API KxMeasurementUnit KxUnit_cm;
extern KX_API KxMeasurementUnit KxUnit_dm;
extern KX_API KxMeasurementUnit KxUnit_m;
extern KX_API KxMeasurementUnit KxUnit_dam;
extern KX_API KxMeasurementUnit KxUnit_hm;
extern KX_API KxMeasurementUnit KxUnit_km;
extern KX_API KxMeasurementUnit KxUnit_mil;
extern KX_API KxMeasurementUnit KxUnit_inch;
extern KX_API KxMeasurementUnit KxUnit_foot;
extern KX_API KxMeasurementUnit KxUnit_yard;
extern KX_API KxMeasurementUnit KxUnit_mile;
