#pragma once
// Drawing in software on bitmaps in memory: device contexts and the objects selected into them. Names, values
// and pixel rules are those of the classic integer interface, without anti-aliasing.
//
// A call with a null or stale handle, or one of another kind, fails with the result named, and draws nothing.
// One thread at a time uses a context and what is selected into it; different contexts may be used in
// parallel.

#include "kalvo/base/kxexport.h"
#include "kalvo/base/win32types.h"

// Contexts and objects

inline constexpr UINT OBJ_PEN = 1, OBJ_BRUSH = 2, OBJ_DC = 3, OBJ_PAL = 5, OBJ_FONT = 6, OBJ_BITMAP = 7;
inline constexpr int WHITE_BRUSH = 0, LTGRAY_BRUSH = 1, GRAY_BRUSH = 2, DKGRAY_BRUSH = 3, BLACK_BRUSH = 4,
                     NULL_BRUSH = 5, HOLLOW_BRUSH = 5, WHITE_PEN = 6, BLACK_PEN = 7, NULL_PEN = 8,
                     SYSTEM_FONT = 13, DEFAULT_PALETTE = 15;
inline constexpr int PS_SOLID = 0, PS_NULL = 5;
inline constexpr UINT BS_SOLID = 0, BS_NULL = 1, BS_HOLLOW = 1;
inline constexpr int TECHNOLOGY = 2, HORZRES = 8, VERTRES = 10, BITSPIXEL = 12, PLANES = 14, NUMCOLORS = 24,
                     RASTERCAPS = 38, LOGPIXELSX = 88, LOGPIXELSY = 90, SIZEPALETTE = 104;
inline constexpr int DT_RASDISPLAY = 1;
inline constexpr int RC_BITBLT = 1, RC_DI_BITMAP = 0x80, RC_PALETTE = 0x100, RC_DIBTODEV = 0x200,
                     RC_STRETCHBLT = 0x800, RC_STRETCHDIB = 0x2000;
inline constexpr COLORREF CLR_INVALID = 0xFFFFFFFF;
inline constexpr UINT GDI_ERROR = 0xFFFFFFFF;

/// A memory context like the screen (32 bits, no palette), whatever device `hDC` is on. It has a bitmap of 1
/// x 1 pixel, a black pen, a white brush, the system font, black text on an opaque white background. Null
/// when `hDC` is stale or no memory or handle is left. Delete it with `DeleteDC`.
KX_API HDC CreateCompatibleDC(HDC hDC);
/// Deletes a context; what was selected into it is only let go. 0 on failure.
KX_API BOOL DeleteDC(HDC hDC);
/// Selects a pen, brush, font or bitmap and returns the one it replaces; null on failure. A bitmap is in one
/// context at a time, and the bitmap of a palette device can't be replaced.
KX_API HGDIOBJ SelectObject(HDC hDC, HGDIOBJ hObject);
/// Deletes an object; 0 when it is selected in a context. A stock object is left alone, with success.
KX_API BOOL DeleteObject(HGDIOBJ hObject);
/// What is selected: `un32Type` is `OBJ_PEN`, `OBJ_BRUSH`, `OBJ_PAL`, `OBJ_FONT` or `OBJ_BITMAP`.
KX_API HGDIOBJ GetCurrentObject(HDC hDC, UINT un32Type);
/// Writes a `LOGPEN`, `LOGBRUSH`, `LOGFONTA` or `BITMAP` and returns its size in bytes; returns the size
/// alone when `pBuffer` is null. 0 on failure, also when `n32Size` is too small.
KX_API int GetObjectA(HGDIOBJ hObject, int n32Size, void* pBuffer);
/// A stock pen, brush, font or palette. It lives as long as the process.
KX_API HGDIOBJ GetStockObject(int n32Object);
/// What the device can do: one of the `RASTERCAPS` family of constants. 0 for others.
KX_API int GetDeviceCaps(HDC hDC, int n32Index);

/// A pen of `PS_SOLID` or `PS_NULL`; width 0 means 1. Wider pens are round and centred.
KX_API HPEN CreatePen(int n32Style, int n32Width, COLORREF color);
/// A brush of one colour.
KX_API HBRUSH CreateSolidBrush(COLORREF color);
/// A font. Negative heights count the em square, positive ones the line, in pixels; 0 is 16. Unknown faces
/// are replaced by a sans serif. Width, escapement, orientation and the last five numbers are kept and
/// ignored.
KX_API HFONT CreateFontA(int n32Height, int n32Width, int n32Escapement, int n32Orientation, int n32Weight,
                         DWORD un32Italic, DWORD un32Underline, DWORD un32StrikeOut, DWORD un32CharSet,
                         DWORD un32OutPrecision, DWORD un32ClipPrecision, DWORD un32Quality,
                         DWORD un32PitchAndFamily, const char* pszFaceName);

// Palettes

/// A palette of `pPalette->palNumEntries` (1 to 256) entries.
KX_API HPALETTE CreatePalette(const LOGPALETTE* pPalette);
/// Selects a palette and returns the one it replaces; null on failure. Drawing does not change before it is
/// realised.
KX_API HPALETTE SelectPalette(HDC hDC, HPALETTE hPalette, BOOL bForceBackground);
/// Gives the selected palette's entries places in the device's own palette, as far as there is room beside
/// the 20 fixed colours. Returns how many changed; 0 on devices without a palette, `GDI_ERROR` on failure.
KX_API UINT RealizePalette(HDC hDC);

// Colours and modes. Each Set returns what it replaces.

inline constexpr int TRANSPARENT = 1, OPAQUE = 2;
inline constexpr int BLACKONWHITE = 1, WHITEONBLACK = 2, COLORONCOLOR = 3, HALFTONE = 4;
inline constexpr UINT TA_NOUPDATECP = 0, TA_UPDATECP = 1, TA_LEFT = 0, TA_RIGHT = 2, TA_CENTER = 6,
                      TA_TOP = 0, TA_BOTTOM = 8, TA_BASELINE = 24;

KX_API COLORREF SetTextColor(HDC hDC, COLORREF color);
KX_API COLORREF GetTextColor(HDC hDC);
KX_API COLORREF SetBkColor(HDC hDC, COLORREF color);
KX_API COLORREF GetBkColor(HDC hDC);
/// `TRANSPARENT` or `OPAQUE`; anything else fails with 0.
KX_API int SetBkMode(HDC hDC, int n32Mode);
KX_API int GetBkMode(HDC hDC);
/// A sum of one horizontal and one vertical `TA_` value, and `TA_UPDATECP`.
KX_API UINT SetTextAlign(HDC hDC, UINT un32Align);
KX_API UINT GetTextAlign(HDC hDC);
/// The mode is kept; stretching takes the nearest source pixel in every mode.
KX_API int SetStretchBltMode(HDC hDC, int n32Mode);
KX_API int GetStretchBltMode(HDC hDC);
/// Moves the origin of all coordinates to device pixel (x, y). `pPrevious` may be null.
KX_API BOOL SetViewportOrgEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious);
KX_API BOOL GetViewportOrgEx(HDC hDC, POINT* pOrigin);

// Pixels, lines and shapes

/// Stores the nearest colour that the bitmap has, and returns it; `CLR_INVALID` outside the bitmap.
KX_API COLORREF SetPixel(HDC hDC, int n32X, int n32Y, COLORREF color);
KX_API COLORREF GetPixel(HDC hDC, int n32X, int n32Y);
/// Moves the current position. `pPrevious` may be null.
KX_API BOOL MoveToEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious);
/// Draws from the current position to (x, y), which is left out, and moves there.
KX_API BOOL LineTo(HDC hDC, int n32X, int n32Y);
/// Outlined with the pen and filled with the brush; the right and bottom edges are left out.
KX_API BOOL Rectangle(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom);
/// The ellipse inscribed in a rectangle, outlined and filled likewise.
KX_API BOOL Ellipse(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom);
/// A closed polygon of at least two points, filled where an odd number of edges lies to the left.
KX_API BOOL Polygon(HDC hDC, const POINT* pPoints, int n32Count);
/// The part of an ellipse's outline that runs counter-clockwise from the ray through the first point to that
/// through the second; the whole outline when the rays are equal. No fill.
KX_API BOOL Arc(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom, int n32StartX, int n32StartY,
                int n32EndX, int n32EndY);

// Bitmaps

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

// Texts: UTF-8; bytes that are none stand for the characters of their numbers.
// Control characters have no width. On a machine without any font texts have no size and draw nothing.

inline constexpr UINT DT_TOP = 0, DT_LEFT = 0, DT_CENTER = 1, DT_RIGHT = 2, DT_VCENTER = 4, DT_BOTTOM = 8,
                      DT_SINGLELINE = 0x20, DT_NOCLIP = 0x100, DT_CALCRECT = 0x400;

/// Draws one line of text at (x, y), placed as the text alignment says.
KX_API BOOL TextOutA(HDC hDC, int n32X, int n32Y, const char* pText, int n32Length);
/// Draws lines of text in a rectangle and returns their height. `n32Length` -1 means up to the 0. Vertical
/// alignment is for `DT_SINGLELINE`. `DT_CALCRECT` sets the rectangle and draws nothing.
/// A "&" is a character like others, and the text alignment of the context does not matter.
KX_API int DrawTextA(HDC hDC, const char* pText, int n32Length, RECT* pRect, UINT un32Format);
/// The size of one line of text in pixels. A line's height is the font's.
KX_API BOOL GetTextExtentPoint32A(HDC hDC, const char* pText, int n32Length, SIZE* pSize);

namespace Zelkor::Platform {

/// An 8-bit device with a palette of its own (`RASTERCAPS` has `RC_PALETTE`), white at first. Null when it
/// can't be made. Release it with `DeleteDC`.
KX_API HDC CreatePaletteDC(int width, int height);

/// How many pens, brushes, fonts, bitmaps, palettes and contexts are alive, stock objects apart.
KX_API int CountGdiObjects();

}  // namespace Zelkor::Platform
