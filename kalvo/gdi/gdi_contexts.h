#pragma once
// Device contexts: making and deleting them, what is selected into them, their colours, modes and origin.

#include "kalvo/base/kxexport.h"
#include "kalvo/base/win32types.h"

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
/// context at a time, and the bitmap of a palette device can't be replaced. A region goes to `SelectClipRgn`,
/// whose result is returned.
KX_API HGDIOBJ SelectObject(HDC hDC, HGDIOBJ hObject);
/// What is selected: `un32Type` is `OBJ_PEN`, `OBJ_BRUSH`, `OBJ_PAL`, `OBJ_FONT` or `OBJ_BITMAP`.
KX_API HGDIOBJ GetCurrentObject(HDC hDC, UINT un32Type);
/// What the device can do: one of the `RASTERCAPS` family of constants. 0 for others.
KX_API int GetDeviceCaps(HDC hDC, int n32Index);

// Colours and modes. Each Set returns what it replaces.

inline constexpr int TRANSPARENT = 1, OPAQUE = 2;
inline constexpr int ALTERNATE = 1, WINDING = 2;
inline constexpr int R2_BLACK = 1, R2_NOTMERGEPEN = 2, R2_MASKNOTPEN = 3, R2_NOTCOPYPEN = 4,
                     R2_MASKPENNOT = 5, R2_NOT = 6, R2_XORPEN = 7, R2_NOTMASKPEN = 8, R2_MASKPEN = 9,
                     R2_NOTXORPEN = 10, R2_NOP = 11, R2_MERGENOTPEN = 12, R2_COPYPEN = 13,
                     R2_MERGEPENNOT = 14, R2_MERGEPEN = 15, R2_WHITE = 16;

KX_API COLORREF SetTextColor(HDC hDC, COLORREF color);
KX_API COLORREF GetTextColor(HDC hDC);
KX_API COLORREF SetBkColor(HDC hDC, COLORREF color);
KX_API COLORREF GetBkColor(HDC hDC);
/// `TRANSPARENT` or `OPAQUE`; anything else fails with 0.
KX_API int SetBkMode(HDC hDC, int n32Mode);
KX_API int GetBkMode(HDC hDC);
/// How pens and brushes draw: `R2_COPYPEN` covers, the others combine the bits of a pixel with those of the
/// colour; in bitmaps with a colour table these are the bits of the indexes. A shape reaches each pixel once,
/// so that drawing it again with `R2_XORPEN` or `R2_NOT` restores the picture. Texts, `SetPixel`, `FillRect`
/// and `FrameRect` cover always. Anything else than the sixteen numbers fails with 0.
KX_API int SetROP2(HDC hDC, int n32Mode);
KX_API int GetROP2(HDC hDC);
/// Polygons have the pixels with an odd number of edges to their left (`ALTERNATE`), or those that their
/// edges go round (`WINDING`). Anything else fails with 0.
KX_API int SetPolyFillMode(HDC hDC, int n32Mode);
KX_API int GetPolyFillMode(HDC hDC);
/// The colours of the stock objects `DC_PEN` and `DC_BRUSH` in this context, black and white at first.
KX_API COLORREF SetDCPenColor(HDC hDC, COLORREF color);
KX_API COLORREF GetDCPenColor(HDC hDC);
KX_API COLORREF SetDCBrushColor(HDC hDC, COLORREF color);
KX_API COLORREF GetDCBrushColor(HDC hDC);

// Origins: a point (x, y) is the pixel (x, y) - origin of the window + origin of the viewport. Where
// `pPrevious` stands it may be null. Offsets fail when the origin would leave 32 bits.

KX_API BOOL SetViewportOrgEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious);
KX_API BOOL GetViewportOrgEx(HDC hDC, POINT* pOrigin);
KX_API BOOL OffsetViewportOrgEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious);
KX_API BOOL SetWindowOrgEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious);
KX_API BOOL GetWindowOrgEx(HDC hDC, POINT* pOrigin);
KX_API BOOL OffsetWindowOrgEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious);
/// The pixel from which hatches are counted.
KX_API BOOL SetBrushOrgEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious);
KX_API BOOL GetBrushOrgEx(HDC hDC, POINT* pOrigin);

/// Keeps all that the context draws with: objects, colours, modes, origins, position, and what it draws in.
/// Returns a number for `RestoreDC`, from 1 on; 0 on failure.
KX_API int SaveDC(HDC hDC);
/// Brings back what a call of `SaveDC` kept, and forgets it and what later calls kept. A negative number
/// counts from the last call, -1. 0 when there is none.
KX_API BOOL RestoreDC(HDC hDC, int n32Saved);
