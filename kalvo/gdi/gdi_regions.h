#pragma once
// Regions: sets of pixels, and the one that a context draws in.

#include "kalvo/base/kxexport.h"
#include "kalvo/base/win32types.h"

inline constexpr int ERROR = 0, NULLREGION = 1, SIMPLEREGION = 2, COMPLEXREGION = 3;
inline constexpr int RGN_AND = 1, RGN_OR = 2, RGN_XOR = 3, RGN_DIFF = 4, RGN_COPY = 5;

// Functions that say how complex a region is return `NULLREGION` for none, `SIMPLEREGION` for a rectangle,
// `COMPLEXREGION` for anything else, `ERROR` on failure. Delete regions with `DeleteObject`.

/// The pixels of a rectangle, whose corners may be any two opposite ones. Null on failure.
KX_API HRGN CreateRectRgn(int n32Left, int n32Top, int n32Right, int n32Bottom);
KX_API HRGN CreateRectRgnIndirect(const RECT* pRect);
/// Makes a region that of a rectangle.
KX_API BOOL SetRectRgn(HRGN hRegion, int n32Left, int n32Top, int n32Right, int n32Bottom);
/// Makes `hDestination`, which may be one of the other two, what is in both (`RGN_AND`), in one or both
/// (`RGN_OR`), in one alone (`RGN_XOR`), in the first alone (`RGN_DIFF`), or in the first (`RGN_COPY`, which
/// ignores `hSecond`). Returns how complex it is.
KX_API int CombineRgn(HRGN hDestination, HRGN hFirst, HRGN hSecond, int n32Mode);
/// Moves a region and returns how complex it is.
KX_API int OffsetRgn(HRGN hRegion, int n32X, int n32Y);
/// The smallest rectangle around a region, and how complex it is.
KX_API int GetRgnBox(HRGN hRegion, RECT* pRect);
/// Whether two regions have the same pixels.
KX_API BOOL EqualRgn(HRGN hFirst, HRGN hSecond);
KX_API BOOL PtInRegion(HRGN hRegion, int n32X, int n32Y);
/// Whether a region has a pixel of a rectangle.
KX_API BOOL RectInRegion(HRGN hRegion, const RECT* pRect);

/// From now on the context draws inside a region alone, whatever it draws. The context keeps a copy; its
/// pixels are those of the bitmap, wherever the origin is. Null lets it draw everywhere again. `SelectObject`
/// with a region does the same. Returns how complex the region is.
KX_API int SelectClipRgn(HDC hDC, HRGN hRegion);
/// Combines what the context draws in with a region, as `CombineRgn` does.
KX_API int ExtSelectClipRgn(HDC hDC, HRGN hRegion, int n32Mode);
/// Keeps of what the context draws in what is inside a rectangle, or outside of it.
KX_API int IntersectClipRect(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom);
KX_API int ExcludeClipRect(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom);
/// Moves what the context draws in.
KX_API int OffsetClipRgn(HDC hDC, int n32X, int n32Y);
/// The smallest rectangle around the pixels that the context can change, and how complex they are.
KX_API int GetClipBox(HDC hDC, RECT* pRect);
/// Copies what the context draws in to a region: 1, 0 when it draws everywhere, -1 on failure.
KX_API int GetClipRgn(HDC hDC, HRGN hRegion);
/// Whether the context can change a pixel, or one of a rectangle.
KX_API BOOL PtVisible(HDC hDC, int n32X, int n32Y);
KX_API BOOL RectVisible(HDC hDC, const RECT* pRect);
