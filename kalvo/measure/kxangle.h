#pragma once
// The angle unit of the process, and conversion to and from radians.

#include <cstdint>

#include "kalvo/base/kxexport.h"

/// Units of angles.
enum KX_ANGLE_UNITS : std::int32_t {
    KX_ANGLE_UNITS_REVOLUTIONS = 0,
    KX_ANGLE_UNITS_RADIANS = 1,
    KX_ANGLE_UNITS_DEGREES = 2,
    KX_ANGLE_UNITS_GRADS = 3,
};

/// Sets the unit in which the whole process gives and takes angles; degrees at first. Threads that convert
/// angles meanwhile use either unit. Any other value fails with `KX_ERROR_PARAMETER_1_OUT_OF_RANGE`: it is
/// stored as the unit, but conversions go on as before.
KX_API void KxSetAngleUnit(KX_ANGLE_UNITS eUnit);

/// The value last set.
KX_API KX_ANGLE_UNITS KxGetAngleUnit();

/// "Rev", "Rad", "Deg" or "Grad"; "" when the value last set is no unit.
KX_API const char* KxGetAngleUnitName();

/// An angle in the current unit, converted to radians in single precision.
KX_API float KxToRadians(float f32Angle);

/// An angle in radians, converted to the current unit in single precision.
KX_API float KxFromRadians(float f32Radians);
