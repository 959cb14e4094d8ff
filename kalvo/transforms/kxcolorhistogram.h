#pragma once
// Views of the colours of an image as a cloud of points in the colour cube.

#include "kalvo/image/kxroi.h"

/// Draws the colours of an image as points in the cube 0 to 255 of their three bytes, and the edges of the
/// cube, on a grey background (128), in parallel projection and centred in the destination, which keeps its
/// size. A colour is a point of itself; of points at one place the one in front is seen.
/// @param f32Angle1, f32Angle2  from where the cube is seen, in the current angle unit; both 0 look along the
///                              axis of the first byte, blue in an RGB image
/// @param f32Scale0, f32Scale1, f32Scale2  destination pixels per level of the third byte, of the second, and
///                                         of the first
/// Failures are traced as "KxRenderColorHistogram": `KX_ERROR_IMAGE_MEMORY_ACCESS` when a region has no
/// pixels, `KX_ERROR_ALLOCATION` without memory for two bytes per destination pixel. The destination is then
/// unchanged.
KX_API void KxRenderColorHistogram(KxROI<KxC24>* pSource, KxROI<KxC24>* pDestination, float f32Angle1,
                                   float f32Angle2, float f32Scale0, float f32Scale1, float f32Scale2);

/// The same with the places of the points from one image, such as `pColors` in another colour system, and
/// their colours from the other at the same place. Failures are traced as
/// "KxRenderColorHistogram ( RGB, System)"; one more is `KX_ERROR_SIZE_MISMATCH`, when `pCoordinates` is
/// narrower or lower than `pColors`.
KX_API void KxRenderColorHistogram(KxROI<KxC24>* pColors, KxROI<KxC24>* pCoordinates,
                                   KxROI<KxC24>* pDestination, float f32Angle1, float f32Angle2,
                                   float f32Scale0, float f32Scale1, float f32Scale2);
