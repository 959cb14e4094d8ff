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

KX_API COLORREF SetTextColor(HDC hDC, COLORREF color);
KX_API COLORREF GetTextColor(HDC hDC);
KX_API COLORREF SetBkColor(HDC hDC, COLORREF color);
KX_API COLORREF GetBkColor(HDC hDC);
/// `TRANSPARENT` or `OPAQUE`; anything else fails with 0.
KX_API int SetBkMode(HDC hDC, int n32Mode);
KX_API int GetBkMode(HDC hDC);
/// Moves the origin of all coordinates to device pixel (x, y). `pPrevious` may be null.
KX_API BOOL SetViewportOrgEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious);
KX_API BOOL GetViewportOrgEx(HDC hDC, POINT* pOrigin);
