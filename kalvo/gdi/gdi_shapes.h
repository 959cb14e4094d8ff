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
KX_API BOOL GetCurrentPositionEx(HDC hDC, POINT* pPosition);
/// Draws from the current position to (x, y), which is left out, and moves there.
KX_API BOOL LineTo(HDC hDC, int n32X, int n32Y);
/// Draws from each of at least two points to the next; the last one is left out.
KX_API BOOL Polyline(HDC hDC, const POINT* pPoints, int n32Count);
/// Draws from the current position on through at least one point, and moves to the last one.
KX_API BOOL PolylineTo(HDC hDC, const POINT* pPoints, DWORD un32Count);
/// Outlined with the pen and filled with the brush; the right and bottom edges are left out.
KX_API BOOL Rectangle(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom);
/// The same with corners that are quarters of an ellipse of a width and a height.
KX_API BOOL RoundRect(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom, int n32Width,
                      int n32Height);
/// The ellipse inscribed in a rectangle, outlined and filled likewise.
KX_API BOOL Ellipse(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom);
/// A closed polygon of at least two points, filled as the polygon fill mode says.
KX_API BOOL Polygon(HDC hDC, const POINT* pPoints, int n32Count);
/// Closed polygons of so many points each, one after the other; the fill mode sees them together.
KX_API BOOL PolyPolygon(HDC hDC, const POINT* pPoints, const int* pCounts, int n32Polygons);
/// The part of an ellipse's outline that runs counter-clockwise from the ray through the first point to that
/// through the second; the whole outline when the rays are equal. No fill.
KX_API BOOL Arc(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom, int n32StartX, int n32StartY,
                int n32EndX, int n32EndY);
/// What the same arc encloses with lines to the centre, outlined and filled.
KX_API BOOL Pie(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom, int n32StartX, int n32StartY,
                int n32EndX, int n32EndY);
/// What it encloses with the line between its ends.
KX_API BOOL Chord(HDC hDC, int n32Left, int n32Top, int n32Right, int n32Bottom, int n32StartX, int n32StartY,
                  int n32EndX, int n32EndY);

// Rectangles without an outline of the pen: right and bottom are left out, and nothing is drawn when they are
// not beyond left and top.

/// Fills a rectangle with a brush, which need not be selected.
KX_API int FillRect(HDC hDC, const RECT* pRect, HBRUSH hBrush);
/// Draws a border of one pixel inside a rectangle with a brush.
KX_API int FrameRect(HDC hDC, const RECT* pRect, HBRUSH hBrush);
/// Turns over all bits of the pixels of a rectangle.
KX_API BOOL InvertRect(HDC hDC, const RECT* pRect);
