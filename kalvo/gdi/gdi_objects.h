#pragma once
// Objects that contexts draw with, pens and brushes among them, and what all kinds of objects have in common.

#include "kalvo/base/kxexport.h"
#include "kalvo/base/win32types.h"

inline constexpr UINT OBJ_PEN = 1, OBJ_BRUSH = 2, OBJ_DC = 3, OBJ_PAL = 5, OBJ_FONT = 6, OBJ_BITMAP = 7,
                      OBJ_REGION = 8;
inline constexpr int WHITE_BRUSH = 0, LTGRAY_BRUSH = 1, GRAY_BRUSH = 2, DKGRAY_BRUSH = 3, BLACK_BRUSH = 4,
                     NULL_BRUSH = 5, HOLLOW_BRUSH = 5, WHITE_PEN = 6, BLACK_PEN = 7, NULL_PEN = 8,
                     SYSTEM_FONT = 13, DEFAULT_PALETTE = 15;
inline constexpr int PS_SOLID = 0, PS_NULL = 5;
inline constexpr UINT BS_SOLID = 0, BS_NULL = 1, BS_HOLLOW = 1;

/// Deletes an object; 0 when it is selected in a context. A stock object is left alone, with success.
KX_API BOOL DeleteObject(HGDIOBJ hObject);
/// Writes a `LOGPEN`, `LOGBRUSH`, `LOGFONTA` or `BITMAP` and returns its size in bytes; returns the size
/// alone when `pBuffer` is null. 0 on failure, also when `n32Size` is too small.
KX_API int GetObjectA(HGDIOBJ hObject, int n32Size, void* pBuffer);
inline int GetObject(HGDIOBJ hObject, int n32Size, void* pBuffer) {
    return GetObjectA(hObject, n32Size, pBuffer);
}
/// A stock pen, brush, font or palette. It lives as long as the process.
KX_API HGDIOBJ GetStockObject(int n32Object);

/// A pen of `PS_SOLID` or `PS_NULL`; width 0 means 1. Wider pens are round and centred.
KX_API HPEN CreatePen(int n32Style, int n32Width, COLORREF color);
/// A brush of one colour.
KX_API HBRUSH CreateSolidBrush(COLORREF color);
