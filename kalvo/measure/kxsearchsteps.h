#pragma once
// How finely a search over rotation and scale has to step.

#include "kalvo/base/kxexport.h"

/// Step sizes and counts for a search of a pattern over angles and scales: from one step to the next, a point
/// at the mean distance from the centre of the pattern moves by about one pixel.
/// @param n32Width      of the pattern in pixels, at least 1, else `KX_ERROR_PARAMETER_1_OUT_OF_RANGE`
/// @param n32Height     likewise, else `KX_ERROR_PARAMETER_2_OUT_OF_RANGE`; a failure sets no result
/// @param f32SkewRange  angles to search, in the current angle unit
/// @param un32SkewSteps, un32ScaleSteps  numbers of steps that cover the ranges, both ends included: the
/// range
///                      in steps, rounded, plus 1. A negative range makes a negative number, stored modulo
///                      2^32; ranges beyond 2^31 steps are clamped, and NaN counts as 0
/// @param f32SkewStep   angle from one step to the next, in the current angle unit
/// @param f32ScaleRange scale factors to search
/// @param f32ScaleStep  scale factor from one step to the next
/// @param bAdjust       not 0 to change the steps so that they cover the ranges exactly; the step of a range
///                      too small for a second one stays as it is
KX_API void KxSkewScaleSteps(int n32Width, int n32Height, float f32SkewRange, unsigned int& un32SkewSteps,
                             float& f32SkewStep, float f32ScaleRange, unsigned int& un32ScaleSteps,
                             float& f32ScaleStep, int bAdjust);
