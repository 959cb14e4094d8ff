#pragma once
// Fonts and texts.

#include "kalvo/base/kxexport.h"
#include "kalvo/base/win32types.h"

inline constexpr UINT TA_NOUPDATECP = 0, TA_UPDATECP = 1, TA_LEFT = 0, TA_RIGHT = 2, TA_CENTER = 6,
                      TA_TOP = 0, TA_BOTTOM = 8, TA_BASELINE = 24;

/// A font. Negative heights count the em square, positive ones the line, in pixels; 0 is 16. Unknown faces
/// are replaced by a sans serif. Width, escapement, orientation and the last five numbers are kept and
/// ignored.
KX_API HFONT CreateFontA(int n32Height, int n32Width, int n32Escapement, int n32Orientation, int n32Weight,
                         DWORD un32Italic, DWORD un32Underline, DWORD un32StrikeOut, DWORD un32CharSet,
                         DWORD un32OutPrecision, DWORD un32ClipPrecision, DWORD un32Quality,
                         DWORD un32PitchAndFamily, const char* pszFaceName);
/// A sum of one horizontal and one vertical `TA_` value, and `TA_UPDATECP`.
KX_API UINT SetTextAlign(HDC hDC, UINT un32Align);
KX_API UINT GetTextAlign(HDC hDC);

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
