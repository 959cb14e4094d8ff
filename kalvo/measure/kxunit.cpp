// The predefined units, names of units, and conversion between magnitudes.

#include "kalvo/measure/kxunit.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>

constinit KxMeasurementUnit KxUnitNone(1.0f, "None");
constinit KxMeasurementUnit KxUnit_um(1e-6f, "\xB5m");  // the micro sign of ISO 8859-1
constinit KxMeasurementUnit KxUnit_mm(1e-3f, "mm");
constinit KxMeasurementUnit KxUnit_cm(1e-2f, "cm");
constinit KxMeasurementUnit KxUnit_dm(0.1f, "dm");
constinit KxMeasurementUnit KxUnit_m(1.0f, "m");
constinit KxMeasurementUnit KxUnit_dam(10.0f, "Dm");
constinit KxMeasurementUnit KxUnit_hm(100.0f, "Hm");
constinit KxMeasurementUnit KxUnit_km(1000.0f, "Km");
constinit KxMeasurementUnit KxUnit_mil(2.54e-5f, "mil");
constinit KxMeasurementUnit KxUnit_inch(0.0254f, "inch");
constinit KxMeasurementUnit KxUnit_foot(0.3048f, "feet");
constinit KxMeasurementUnit KxUnit_yard(0.9144f, "yard");
constinit KxMeasurementUnit KxUnit_mile(1609.344f, "mile");

constinit KxMeasurementUnit* const KxMeasurementUnit::KxPredefinedUnits[] = {
    &KxUnitNone, &KxUnit_um,  &KxUnit_mm,   &KxUnit_cm,   &KxUnit_dm,   &KxUnit_m,    &KxUnit_dam, &KxUnit_hm,
    &KxUnit_km,  &KxUnit_mil, &KxUnit_inch, &KxUnit_foot, &KxUnit_yard, &KxUnit_mile, nullptr,
};

KxMeasurementUnit::KxMeasurementUnit(const KxMeasurementUnit* pUnit) {
    if (!pUnit) return;
    m_f32Magnitude = pUnit->m_f32Magnitude;
    SetName(pUnit->GetName());
}

KxMeasurementUnit::KxMeasurementUnit(float f32Magnitude, const unsigned short* pwszName)
    : m_f32Magnitude(f32Magnitude) {
    SetNameUnicode(pwszName);
}

// A text may be this name itself or its end, so we measure it, move it, and only then clear what follows.

void KxMeasurementUnit::SetName(const char* pszName) {
    const std::size_t length = pszName ? strnlen(pszName, kMaxNarrow) : 0;
    char* name = reinterpret_cast<char*>(m_Name);
    if (length > 0) std::memmove(name, pszName, length);
    std::fill(name + length, name + sizeof(m_Name), '\0');
}

void KxMeasurementUnit::SetNameUnicode(const unsigned short* pwszName) {
    std::size_t length = 0;
    while (pwszName && length < kMaxWide && pwszName[length]) ++length;
    if (length > 0) std::memmove(m_Name, pwszName, length * sizeof(*m_Name));
    std::fill(m_Name + length, std::end(m_Name), 0);
}

float KxMeasurementUnit::ConversionFactorTo(const KxMeasurementUnit& target) const {
    if (m_f32Magnitude == 0) return std::numeric_limits<float>::max();
    return m_f32Magnitude / target.m_f32Magnitude;
}

int KxMeasurementUnit::IsPredefinedUnit() const {
    return std::ranges::find(KxPredefinedUnits, this) != std::end(KxPredefinedUnits);
}

KxMeasurementUnit* KxMeasurementUnit::GetPredefinedUnit(const char* pszName) {
    if (!pszName) return nullptr;
    // The null at the end of the table is found last.
    return *std::ranges::find_if(KxPredefinedUnits, [pszName](const KxMeasurementUnit* pUnit) {
        return !pUnit || std::strcmp(pUnit->GetName(), pszName) == 0;
    });
}
