#pragma once
// Resampling of images by nearest neighbour, for the pixel types `KX_FOR_EACH_RESIZABLE_PIXEL`.

#include "kalvo/image/kximage.h"

/// @fn void KxResize(KxROI<Pixel>* pSource, KxROI<Pixel>* pDestination)
/// Resamples `pSource` into `pDestination`; both keep their size, and may be parts of one image, even
/// overlapping ones. Destination column x takes source column floor(x * source width / destination width),
/// rows alike. Clears the error slot first. Fails, traced as "KxResize" and with the destination unchanged,
/// with `KX_ERROR_IMAGE_MEMORY_ACCESS` when a region has no pixels, and with `KX_ERROR_ALLOCATION`.

/// @fn void ImgRescale(KxImage<Pixel>* pSource, KxImage<Pixel>* pDestination, float f32ScaleX, float
/// f32ScaleY) Makes `pDestination` the source resampled to its size times the scales, each side rounded to
/// the nearest pixel, halves up. The destination gets a buffer of its own and loses its mask; its children
/// are clipped. Null or the source itself rescales in place. Failures are traced as "ImgRescale" and leave
/// the destination unchanged: `KX_ERROR_IMAGE_MEMORY_ACCESS` when the source has no pixels or the result
/// would have none, as with scales that are negative or not numbers; `KX_ERROR_ORIGIN_IMAGE_TOO_BIG`;
/// `KX_ERROR_ALLOCATION`.

/// @fn void ImgRescale(KxImage<Pixel>* pImage, float f32ScaleX, float f32ScaleY)
/// Rescales in place.

#define KX_DECLARE(Pixel)                                                                          \
    KX_API void KxResize(KxROI<Pixel>* pSource, KxROI<Pixel>* pDestination);                       \
    KX_API void ImgRescale(KxImage<Pixel>* pSource, KxImage<Pixel>* pDestination, float f32ScaleX, \
                           float f32ScaleY);                                                       \
    KX_API void ImgRescale(KxImage<Pixel>* pImage, float f32ScaleX, float f32ScaleY);
KX_FOR_EACH_RESIZABLE_PIXEL(KX_DECLARE)
#undef KX_DECLARE
