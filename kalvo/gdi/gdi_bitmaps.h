#pragma once
// Bitmaps, and pixels copied into and out of them.

#include "kalvo/base/kxexport.h"
#include "kalvo/base/win32types.h"

inline constexpr DWORD BI_RGB = 0, BI_BITFIELDS = 3;
inline constexpr UINT DIB_RGB_COLORS = 0;
inline constexpr BYTE AC_SRC_OVER = 0, AC_SRC_ALPHA = 1;

// Making bitmaps. All pixels start as 0.

/// A bitmap whose pixels the caller reaches too: 1, 8, 16, 24 or 32 bits a pixel, rows padded to 4 bytes,
/// top-down when the height is negative; 16 bits are 5-5-5, or what `BI_BITFIELDS` masks say (5-5-5, 5-6-5).
/// The pixels belong to the bitmap. `hSection` and `un32Offset` are ignored.
/// @param pInfo  biClrUsed 0 means a full colour table
/// Null on failure.
KX_API HBITMAP CreateDIBSection(HDC hDC, const BITMAPINFO* pInfo, UINT un32Usage, void** ppBits,
                                HANDLE hSection = nullptr, DWORD un32Offset = 0);
/// A bitmap of 1, 8, 16 (5-5-5), 24 or 32 bits a pixel in one plane. `pBits` may be null; else it has the
/// rows from the top one on, padded to 2 bytes. 8 bits are the colours of a new palette device. One bit is
/// black or white, but see `BitBlt`. Null on failure.
KX_API HBITMAP CreateBitmap(int n32Width, int n32Height, UINT un32Planes, UINT un32BitCount,
                            const void* pBits);
/// A bitmap of the same kind as the one in a context: of 1 bit for a memory context that has no other yet, of
/// 8 bits with its present colours for a palette device. Without a context it has 32 bits. When a size is 0
/// it is one pixel of 1 bit. Null on failure.
KX_API HBITMAP CreateCompatibleBitmap(HDC hDC, int n32Width, int n32Height);

/// Copies colours out of, or into, the table of the section in a context, from entry `un32Start` on. Its
/// pixels stay the same. Returns how many entries there were; 0 for other bitmaps.
KX_API UINT GetDIBColorTable(HDC hDC, UINT un32Start, UINT un32Entries, RGBQUAD* pColors);
KX_API UINT SetDIBColorTable(HDC hDC, UINT un32Start, UINT un32Entries, const RGBQUAD* pColors);

// Rows of pixels

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

// Rectangles of pixels. Stretched, destination pixel i takes source pixel floor(i x source / destination). A
// negative width means the pixels up to the start, x + width + 1 to x, and so does a negative height; of
// widths, or heights, of source and destination that differ in sign, one mirrors. Pixels without a source
// stay as they are. A picture copied over itself is read before it is changed.

/// What becomes of the bits of pixels: those of the brush (P), of the source (S) and of the destination (D).
/// Any other of the 256 codes of such operations will do, too; of a code, bits 16 to 23 count.
inline constexpr DWORD SRCCOPY = 0x00CC0020,  // S
    SRCPAINT = 0x00EE0086,                    // S | D
    SRCAND = 0x008800C6,                      // S & D
    SRCINVERT = 0x00660046,                   // S ^ D
    SRCERASE = 0x00440328,                    // S & ~D
    NOTSRCCOPY = 0x00330008,                  // ~S
    NOTSRCERASE = 0x001100A6,                 // ~(S | D)
    MERGECOPY = 0x00C000CA,                   // P & S
    MERGEPAINT = 0x00BB0226,                  // ~S | D
    PATCOPY = 0x00F00021,                     // P
    PATPAINT = 0x00FB0A09,                    // P | ~S | D
    PATINVERT = 0x005A0049,                   // P ^ D
    DSTINVERT = 0x00550009,                   // ~D
    BLACKNESS = 0x00000042, WHITENESS = 0x00FF0062;

/// Copies a rectangle of the bitmap in `hSource`, which the operation may leave unused and null. Operations
/// work on the bits of the destination's pixels, indices of colours included; with an operation of the brush
/// and a null brush, nothing is drawn. Copied from a bitmap of one bit that is no section, 0 is the text
/// colour of `hDC` and 1 its background colour; copied to one, the background colour of `hSource` is 1 and
/// all others are 0.
KX_API BOOL BitBlt(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, HDC hSource, int n32SourceX,
                   int n32SourceY, DWORD un32Operation);
/// The same, stretched.
KX_API BOOL StretchBlt(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, HDC hSource, int n32SourceX,
                       int n32SourceY, int n32SourceWidth, int n32SourceHeight, DWORD un32Operation);
/// The same with an operation that uses no source; any other fails.
KX_API BOOL PatBlt(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, DWORD un32Operation);
/// The same from a bitmap in memory. The source rectangle is counted from the bottom row. Returns the number
/// of rows of the source.
KX_API int StretchDIBits(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, int n32SourceX,
                         int n32SourceY, int n32SourceWidth, int n32SourceHeight, const void* pBits,
                         const BITMAPINFO* pInfo, UINT un32Usage, DWORD un32Operation);
/// Mixes a part of the bitmap in `hSource` into `hDC`, stretched: each component becomes (s x a + d x (255 -
/// a)) / 255, rounded, where a is `SourceConstantAlpha`. With `AC_SRC_ALPHA` the source must have 32 bits,
/// and components that its fourth byte, the alpha of the pixel, was multiplied with: all four are multiplied
/// with a / 255, and each component becomes s + d x (255 - alpha) / 255, the fourth byte too where there is
/// one. 0 on failure, also when a size is negative or the source rectangle leaves the bitmap.
KX_API BOOL AlphaBlend(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, HDC hSource, int n32SourceX,
                       int n32SourceY, int n32SourceWidth, int n32SourceHeight, BLENDFUNCTION blend);
/// The same from a bitmap in memory. The source rectangle is counted from the bottom row.
KX_API BOOL BlendDIBits(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, int n32SourceX,
                        int n32SourceY, int n32SourceWidth, int n32SourceHeight, const void* pBits,
                        const BITMAPINFO* pInfo, UINT un32Usage, BLENDFUNCTION blend);

inline constexpr int BLACKONWHITE = 1, WHITEONBLACK = 2, COLORONCOLOR = 3, HALFTONE = 4;
/// The mode is kept; stretching takes the nearest source pixel in every mode.
KX_API int SetStretchBltMode(HDC hDC, int n32Mode);
KX_API int GetStretchBltMode(HDC hDC);
