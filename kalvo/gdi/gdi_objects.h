#pragma once
// Objects that contexts draw with, pens and brushes among them, and what all kinds of objects have in common.

#include "kalvo/base/kxexport.h"
#include "kalvo/base/win32types.h"

inline constexpr UINT OBJ_PEN = 1, OBJ_BRUSH = 2, OBJ_DC = 3, OBJ_PAL = 5, OBJ_FONT = 6, OBJ_BITMAP = 7,
                      OBJ_REGION = 8;
inline constexpr int WHITE_BRUSH = 0, LTGRAY_BRUSH = 1, GRAY_BRUSH = 2, DKGRAY_BRUSH = 3, BLACK_BRUSH = 4,
                     NULL_BRUSH = 5, HOLLOW_BRUSH = 5, WHITE_PEN = 6, BLACK_PEN = 7, NULL_PEN = 8,
                     OEM_FIXED_FONT = 10, ANSI_FIXED_FONT = 11, ANSI_VAR_FONT = 12, SYSTEM_FONT = 13,
                     DEVICE_DEFAULT_FONT = 14, DEFAULT_PALETTE = 15, SYSTEM_FIXED_FONT = 16,
                     DEFAULT_GUI_FONT = 17, DC_BRUSH = 18, DC_PEN = 19;
inline constexpr int PS_SOLID = 0, PS_DASH = 1, PS_DOT = 2, PS_DASHDOT = 3, PS_DASHDOTDOT = 4, PS_NULL = 5,
                     PS_INSIDEFRAME = 6;
inline constexpr UINT BS_SOLID = 0, BS_NULL = 1, BS_HOLLOW = 1, BS_HATCHED = 2;
inline constexpr int HS_HORIZONTAL = 0, HS_VERTICAL = 1, HS_FDIAGONAL = 2, HS_BDIAGONAL = 3, HS_CROSS = 4,
                     HS_DIAGCROSS = 5;

/// Deletes an object; 0 when it is selected in a context. A stock object is left alone, with success.
KX_API BOOL DeleteObject(HGDIOBJ hObject);
/// Writes a `LOGPEN`, `LOGBRUSH`, `LOGFONTA` or `BITMAP` and returns its size in bytes; returns the size
/// alone when `pBuffer` is null. 0 on failure, also when `n32Size` is too small.
KX_API int GetObjectA(HGDIOBJ hObject, int n32Size, void* pBuffer);
inline int GetObject(HGDIOBJ hObject, int n32Size, void* pBuffer) {
    return GetObjectA(hObject, n32Size, pBuffer);
}
/// The `OBJ_` number of a handle's kind; 0 when there is no such object.
KX_API DWORD GetObjectType(HGDIOBJ hObject);
/// A stock pen, brush, font or palette. It lives as long as the process. `DC_PEN` and `DC_BRUSH` have the
/// colours that `SetDCPenColor` and `SetDCBrushColor` give a context.
KX_API HGDIOBJ GetStockObject(int n32Object);

/// A pen; width 0 means 1. Wider pens are round and centred.
///
/// `PS_DASH`, `PS_DOT`, `PS_DASHDOT` and `PS_DASHDOTDOT` draw dashes of 18, 3, 9 and 9 pixels and dots of 3;
/// in the gaps, of 3 or 6, is the background colour when the background mode is `OPAQUE`. They are solid when
/// they are wider than 1. `PS_INSIDEFRAME` stays inside the rectangles that shapes are given by. Styles that
/// do not exist are `PS_SOLID`.
KX_API HPEN CreatePen(int n32Style, int n32Width, COLORREF color);
KX_API HPEN CreatePenIndirect(const LOGPEN* pPen);
/// A brush of one colour.
KX_API HBRUSH CreateSolidBrush(COLORREF color);
/// Lines 8 pixels apart: `HS_HORIZONTAL`, `HS_VERTICAL`, falling to the right (`HS_FDIAGONAL`), rising
/// (`HS_BDIAGONAL`), or both of two (`HS_CROSS`, `HS_DIAGCROSS`). Between them is the background colour when
/// the background mode is `OPAQUE`. Null for other numbers.
KX_API HBRUSH CreateHatchBrush(int n32Hatch, COLORREF color);
/// A `BS_SOLID`, `BS_NULL` or `BS_HATCHED` brush; null for other styles.
KX_API HBRUSH CreateBrushIndirect(const LOGBRUSH* pBrush);
