#pragma once
// Views of an image as a relief.

#include "kalvo/image/kxroi.h"

/// Draws a grey image as a relief on a grey background (128), in parallel projection and centred in the
/// destination, which keeps its size. A pixel becomes a point of its own grey value, as high as that value.
/// @param f32Angle1  turn around the horizontal axis of the destination, in the current angle unit: 0 looks
///                   from above; up to a quarter turn below 0 heights rise and the last row comes to the
///                   front
/// @param f32Angle2  turn around its vertical axis, in the current angle unit
/// @param f32ScaleX, f32ScaleY, f32ScaleZ  destination pixels per column, per row and per grey level
/// @param n32PointSize  destination pixels per point: 1, 4 or 9 (a square) or 5 (a plus sign); points that do
///                      not fit into the destination are left out
/// Failures are traced as "KxRender3D ( Gray level)" and leave a destination of background only:
/// `KX_ERROR_IMAGE_MEMORY_ACCESS` when a region has no pixels, `KX_ERROR_PARAMETER_8_OUT_OF_RANGE` for
/// another point size.
KX_API void KxRender3D(KxROI<KxBW8>* pSource, KxROI<KxBW8>* pDestination, float f32Angle1, float f32Angle2,
                       float f32ScaleX, float f32ScaleY, float f32ScaleZ, int n32PointSize);

/// The same with points of the colours of one image, as high as the grey values of another at the same place.
/// Here the angles are radians, whatever the current unit. Failures are traced as "KxRender3D ( Color)"; one
/// more is `KX_ERROR_SIZE_MISMATCH`, when `pHeights` is narrower or lower than `pColors`.
KX_API void KxRender3D(KxROI<KxC24>* pColors, KxROI<KxBW8>* pHeights, KxROI<KxC24>* pDestination,
                       float f32Angle1, float f32Angle2, float f32ScaleX, float f32ScaleY, float f32ScaleZ,
                       int n32PointSize);
