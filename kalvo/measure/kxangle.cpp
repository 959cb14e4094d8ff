// The angle unit and its factors. They are read without a lock; a reader sees the old or the new ones.

#include "kalvo/measure/kxangle.h"

#include <atomic>
#include <iterator>

#include "kalvo/frame/boundary.h"

namespace {

struct AngleUnit {
    const char* name;
    float fromRadians;  // how many of the unit make a radian
};

// In the order of KX_ANGLE_UNITS.
constexpr AngleUnit kUnits[] = {
    {"Rev", 0x1.45F306p-3f},
    {"Rad", 1},
    {"Deg", 0x1.CA5DC0p+5f},
    {"Grad", 0x1.FD4BBAp+5f},
};

// The first factor to radians is pi / 180 itself; what KxSetAngleUnit computes for degrees is one bit larger.
constinit std::atomic<KX_ANGLE_UNITS> currentUnit = KX_ANGLE_UNITS_DEGREES;
constinit std::atomic<float> fromRadians = kUnits[KX_ANGLE_UNITS_DEGREES].fromRadians;
constinit std::atomic<float> toRadians = 0x1.1DF46Ap-6f;

// Null when the value is none of the units.
const AngleUnit* FindUnit(KX_ANGLE_UNITS unit) {
    return unit >= 0 && unit < static_cast<int>(std::size(kUnits)) ? &kUnits[unit] : nullptr;
}

}  // namespace

void KxSetAngleUnit(KX_ANGLE_UNITS eUnit) {
    currentUnit.store(eUnit, std::memory_order_relaxed);
    const AngleUnit* unit = FindUnit(eUnit);
    if (!unit) return Zelkor::Kalvo::Report(KX_ERROR_PARAMETER_1_OUT_OF_RANGE, "KxSetAngleUnit");
    fromRadians.store(unit->fromRadians, std::memory_order_relaxed);
    toRadians.store(1 / unit->fromRadians, std::memory_order_relaxed);
}

KX_ANGLE_UNITS KxGetAngleUnit() { return currentUnit.load(std::memory_order_relaxed); }

const char* KxGetAngleUnitName() {
    const AngleUnit* unit = FindUnit(KxGetAngleUnit());
    return unit ? unit->name : "";
}

float KxToRadians(float f32Angle) { return f32Angle * toRadians.load(std::memory_order_relaxed); }

float KxFromRadians(float f32Radians) { return f32Radians * fromRadians.load(std::memory_order_relaxed); }
