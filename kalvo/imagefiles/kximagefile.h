#pragma once
// Loading and saving image files by free functions, as the members of KxROI and KxImage do, and telling what
// is in them.

#include "kalvo/image/kximage.h"

/// Load an image file into a region of the file's size, or into an image, which takes that size.
/// @param n16FileType  receives the format found, an `IMAGE_FILE_TYPES`
/// @return 0, or the code that is also in the error slot; see `KxROI::Load`
KX_API short KxLoadImage(KxImage<KxBW1>* pImage, const char* pszPath, short& n16FileType);
KX_API short KxLoadImage(KxROI<KxBW8>* pROI, const char* pszPath, short& n16FileType);
KX_API short KxLoadImage(KxROI<KxBW16>* pROI, const char* pszPath, short& n16FileType);
KX_API short KxLoadImage(KxROI<KxBW32>* pROI, const char* pszPath, short& n16FileType);
KX_API short KxLoadImage(KxROI<KxC15>* pROI, const char* pszPath, short& n16FileType);
KX_API short KxLoadImage(KxROI<KxC16>* pROI, const char* pszPath, short& n16FileType);
KX_API short KxLoadImage(KxROI<KxC24>* pROI, const char* pszPath, short& n16FileType);
KX_API short KxLoadImage(KxROI<KxC24A>* pROI, const char* pszPath, short& n16FileType);

/// The same with a UTF-16 path.
KX_API void KxLoadImage(KxImage<KxBW1>* pImage, const unsigned short* pwszPath, short& n16FileType);
KX_API void KxLoadImage(KxROI<KxBW8>* pROI, const unsigned short* pwszPath, short& n16FileType);
KX_API void KxLoadImage(KxROI<KxBW16>* pROI, const unsigned short* pwszPath, short& n16FileType);
KX_API void KxLoadImage(KxROI<KxBW32>* pROI, const unsigned short* pwszPath, short& n16FileType);
KX_API void KxLoadImage(KxROI<KxC15>* pROI, const unsigned short* pwszPath, short& n16FileType);
KX_API void KxLoadImage(KxROI<KxC16>* pROI, const unsigned short* pwszPath, short& n16FileType);
KX_API void KxLoadImage(KxROI<KxC24>* pROI, const unsigned short* pwszPath, short& n16FileType);
KX_API void KxLoadImage(KxROI<KxC24A>* pROI, const unsigned short* pwszPath, short& n16FileType);

/// Save the rectangle of a region as an image file.
/// @param n16FileType  the format, an `IMAGE_FILE_TYPES`
/// @return 0, or the code that is also in the error slot; see `KxROI::Save`
KX_API short KxSaveImage(const KxROI<KxBW1>* pROI, const char* pszPath, short n16FileType = IMAGE_FILE_AUTO);
KX_API short KxSaveImage(const KxROI<KxBW8>* pROI, const char* pszPath, short n16FileType = IMAGE_FILE_AUTO);
KX_API short KxSaveImage(const KxROI<KxBW16>* pROI, const char* pszPath, short n16FileType = IMAGE_FILE_AUTO);
KX_API short KxSaveImage(const KxROI<KxBW32>* pROI, const char* pszPath, short n16FileType = IMAGE_FILE_AUTO);
KX_API short KxSaveImage(const KxROI<KxC15>* pROI, const char* pszPath, short n16FileType = IMAGE_FILE_AUTO);
KX_API short KxSaveImage(const KxROI<KxC16>* pROI, const char* pszPath, short n16FileType = IMAGE_FILE_AUTO);
KX_API short KxSaveImage(const KxROI<KxC24>* pROI, const char* pszPath, short n16FileType = IMAGE_FILE_AUTO);
KX_API short KxSaveImage(const KxROI<KxC24A>* pROI, const char* pszPath, short n16FileType = IMAGE_FILE_AUTO);

/// The same with a UTF-16 path.
KX_API void KxSaveImage(const KxROI<KxBW1>* pROI, const unsigned short* pwszPath,
                        short n16FileType = IMAGE_FILE_AUTO);
KX_API void KxSaveImage(const KxROI<KxBW8>* pROI, const unsigned short* pwszPath,
                        short n16FileType = IMAGE_FILE_AUTO);
KX_API void KxSaveImage(const KxROI<KxBW16>* pROI, const unsigned short* pwszPath,
                        short n16FileType = IMAGE_FILE_AUTO);
KX_API void KxSaveImage(const KxROI<KxBW32>* pROI, const unsigned short* pwszPath,
                        short n16FileType = IMAGE_FILE_AUTO);
KX_API void KxSaveImage(const KxROI<KxC15>* pROI, const unsigned short* pwszPath,
                        short n16FileType = IMAGE_FILE_AUTO);
KX_API void KxSaveImage(const KxROI<KxC16>* pROI, const unsigned short* pwszPath,
                        short n16FileType = IMAGE_FILE_AUTO);
KX_API void KxSaveImage(const KxROI<KxC24>* pROI, const unsigned short* pwszPath,
                        short n16FileType = IMAGE_FILE_AUTO);
KX_API void KxSaveImage(const KxROI<KxC24A>* pROI, const unsigned short* pwszPath,
                        short n16FileType = IMAGE_FILE_AUTO);

/// Describes the image of a file without reading its pixels: by an image of the pixel type that suits the
/// file, with its size, resolution and texts, but without pixels. It belongs to the caller. Null on failure,
/// with the code that loading it would leave, except for pixels that are missing or broken.
/// @param n16FileType  receives the format found, an `IMAGE_FILE_TYPES`
/// @param un32Pages    receives the number of pictures in the file, of which the first is described
KX_API KxGenericROI* KxDescribeImage(const char* pszPath, short& n16FileType, unsigned int& un32Pages);
/// The same with a UTF-16 path.
KX_API KxGenericROI* KxDescribeImage(const unsigned short* pwszPath, short& n16FileType,
                                     unsigned int& un32Pages);
