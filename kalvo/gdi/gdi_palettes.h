#pragma once
// Palettes and how devices take them over.

#include "kalvo/base/kxexport.h"
#include "kalvo/base/win32types.h"

/// A palette of `pPalette->palNumEntries` (1 to 256) entries.
KX_API HPALETTE CreatePalette(const LOGPALETTE* pPalette);
/// Selects a palette and returns the one it replaces; null on failure. Drawing does not change before it is
/// realised.
KX_API HPALETTE SelectPalette(HDC hDC, HPALETTE hPalette, BOOL bForceBackground);
/// Gives the selected palette's entries places in the device's own palette, as far as there is room beside
/// the 20 fixed colours. Returns how many changed; 0 on devices without a palette, `GDI_ERROR` on failure.
KX_API UINT RealizePalette(HDC hDC);
/// The colour that a pixel gets when it is to have `color`; `CLR_INVALID` on failure.
KX_API COLORREF GetNearestColor(HDC hDC, COLORREF color);
