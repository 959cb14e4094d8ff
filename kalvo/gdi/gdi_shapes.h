#pragma once
// Pixels, lines and shapes.

#include "kalvo/base/kxexport.h"
#include "kalvo/base/win32types.h"

/// Stores the nearest colour that the bitmap has, and returns it; `CLR_INVALID` outside the bitmap and what
/// the context draws in, for `GetPixel` too.
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
