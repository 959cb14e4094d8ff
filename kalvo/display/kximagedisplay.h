#pragma once
// Images straight on a device context: the older display functions, and images lent out to draw into.

#include "kalvo/image/kximage.h"

class KxBW8Vector;
class KxC24Vector;

/// Draw an image, or a region of one, with its top-left corner at (0, 0) of a device context. The horizontal
/// zoom stands for the vertical one where that is 0. Every grey value may be shown as another, or as a
/// colour, through a table of 256 elements.
///
/// Failures are traced under the name of the function and its pixel type: `KX_ERROR_ROI_HAS_NO_PARENT`,
/// `KX_ERROR_IMAGE_MEMORY_ACCESS` (no pixels), `KX_ERROR_VECTOR_NUMBER_OF_ELEMENTS` (a table of another
/// size), `KX_ERROR_ALLOCATION`. On devices with a palette the calling thread makes one palette for grey
/// images, from the first table it draws through, and one for colour images, and keeps them until it ends.
KX_API void KxDrawImageInWindow(KxImage<KxBW1>* pImage, HDC hDC, float f32ZoomX, float f32ZoomY);
KX_API void KxDrawImageInWindow(KxROI<KxBW1>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY);
/// Clears the error slot on success, and returns the code in it.
KX_API short KxDrawImageInWindow(KxImage<KxBW8>* pImage, HDC hDC, float f32ZoomX, float f32ZoomY);
KX_API void KxDrawImageInWindow(KxImage<KxBW8>* pImage, HDC hDC, KxBW8Vector* pLut, float f32ZoomX,
                                float f32ZoomY);
KX_API void KxDrawImageInWindow(KxImage<KxBW8>* pImage, HDC hDC, KxC24Vector* pLut, float f32ZoomX,
                                float f32ZoomY);
/// Clears the error slot on success.
KX_API void KxDrawImageInWindow(KxROI<KxBW8>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY);
KX_API void KxDrawImageInWindow(KxROI<KxBW8>* pROI, HDC hDC, KxBW8Vector* pLut, float f32ZoomX,
                                float f32ZoomY);
KX_API void KxDrawImageInWindow(KxROI<KxBW8>* pROI, HDC hDC, KxC24Vector* pLut, float f32ZoomX,
                                float f32ZoomY);
/// The high bytes of wider grey values. Clear the error slot on success.
KX_API void KxDrawImageInWindow(KxROI<KxBW16>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY);
KX_API void KxDrawImageInWindow(KxROI<KxBW32>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY);
KX_API void KxDrawImageInWindow(KxROI<KxC15>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY);
KX_API void KxDrawImageInWindow(KxROI<KxC16>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY);
KX_API void KxDrawImageInWindow(KxROI<KxC24>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY);
KX_API void KxDrawImageInWindow(KxROI<KxC24A>* pROI, HDC hDC, float f32ZoomX, float f32ZoomY);

/// A memory context with a copy of the image to draw into. The thread remembers the last one it opened. It
/// belongs to the caller, who gives it back with `KxCloseImageDC`: a thread that ends does not delete it.
/// Null on failure: `KX_ERROR_IMAGE_MEMORY_ACCESS` (no pixels), `KX_ERROR_WINDOWS` (no handles or memory).
KX_API HDC KxOpenImageDC(KxImage<KxBW8>* pImage);
KX_API HDC KxOpenImageDC(KxImage<KxC24>* pImage);

/// Copies what was drawn back into the image and deletes the context with its bitmap. A null `hDC` stands for
/// the last context that the calling thread opened. Fails with `KX_ERROR_IMAGE_MEMORY_ACCESS`,
/// `KX_ERROR_ALLOCATION`, or `KX_ERROR_WINDOWS` when the bitmap can't be read (it has fewer rows, or there is
/// none) or a handle not be deleted. The image is changed only when it was read.
KX_API void KxCloseImageDC(KxImage<KxBW8>* pImage, HDC hDC);
KX_API void KxCloseImageDC(KxImage<KxC24>* pImage, HDC hDC);
