#pragma once
// Bitmaps, and pixels copied into and out of them.

#include "kalvo/base/kxexport.h"
#include "kalvo/base/win32types.h"

inline constexpr int BLACKONWHITE = 1, WHITEONBLACK = 2, COLORONCOLOR = 3, HALFTONE = 4;
inline constexpr DWORD BI_RGB = 0, BI_BITFIELDS = 3;
inline constexpr UINT DIB_RGB_COLORS = 0;
inline constexpr DWORD SRCCOPY = 0x00CC0020;
inline constexpr BYTE AC_SRC_OVER = 0;

/// A bitmap whose pixels the caller reaches too: 1, 8, 16, 24 or 32 bits a pixel, rows padded to 4 bytes,
/// top-down when the height is negative; 16 bits are 5-5-5, or what `BI_BITFIELDS` masks say (5-5-5, 5-6-5).
/// The pixels start as 0. They belong to the bitmap. `hSection` and `un32Offset` are ignored.
/// @param pInfo  biClrUsed 0 means a full colour table
/// Null on failure.
KX_API HBITMAP CreateDIBSection(HDC hDC, const BITMAPINFO* pInfo, UINT un32Usage, void** ppBits,
                                HANDLE hSection = nullptr, DWORD un32Offset = 0);
/// Copies rows of `pBits` into a bitmap, converting colours; row 0 is the bottom one in both, whatever the
/// order of the rows in memory. Returns the number of rows copied.
KX_API int SetDIBits(HDC hDC, HBITMAP hBitmap, UINT un32Start, UINT un32Lines, const void* pBits,
                     const BITMAPINFO* pInfo, UINT un32Usage);
/// Copies rows of a bitmap to `pBits`, in the form that `pInfo` asks for. Fills in the colour table of forms
/// that have one. Returns the number of rows copied.
KX_API int GetDIBits(HDC hDC, HBITMAP hBitmap, UINT un32Start, UINT un32Lines, void* pBits, BITMAPINFO* pInfo,
                     UINT un32Usage);
/// Copies a part of a bitmap of `un32Lines` rows from row `un32Start` on. The source rectangle is counted
/// from the bottom row. Returns the number of rows.
KX_API int SetDIBitsToDevice(HDC hDC, int n32X, int n32Y, DWORD un32Width, DWORD un32Height, int n32SourceX,
                             int n32SourceY, UINT un32Start, UINT un32Lines, const void* pBits,
                             const BITMAPINFO* pInfo, UINT un32Usage);
/// Copies a part of a bitmap to another size: destination pixel i takes source pixel floor(i x source /
/// destination). Negative sizes mirror. The source rectangle is counted from the bottom row. `un32Operation`
/// must be `SRCCOPY`. Returns the number of rows of the source.
KX_API int StretchDIBits(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, int n32SourceX,
                         int n32SourceY, int n32SourceWidth, int n32SourceHeight, const void* pBits,
                         const BITMAPINFO* pInfo, UINT un32Usage, DWORD un32Operation);
/// Mixes a part of the bitmap in `hSource` into `hDC`, stretched by the same rule: each component becomes
/// (s x a + d x (255 - a)) / 255, rounded. 0 on failure, also when the source rectangle leaves the bitmap.
KX_API BOOL AlphaBlend(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, HDC hSource, int n32SourceX,
                       int n32SourceY, int n32SourceWidth, int n32SourceHeight, BLENDFUNCTION blend);
/// The mode is kept; stretching takes the nearest source pixel in every mode.
KX_API int SetStretchBltMode(HDC hDC, int n32Mode);
KX_API int GetStretchBltMode(HDC hDC);
