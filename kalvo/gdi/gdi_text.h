#pragma once
// Fonts and texts.

#include "kalvo/base/kxexport.h"
#include "kalvo/base/win32types.h"

inline constexpr int FW_DONTCARE = 0, FW_THIN = 100, FW_EXTRALIGHT = 200, FW_LIGHT = 300, FW_NORMAL = 400,
                     FW_REGULAR = 400, FW_MEDIUM = 500, FW_SEMIBOLD = 600, FW_BOLD = 700, FW_EXTRABOLD = 800,
                     FW_HEAVY = 900;
inline constexpr DWORD ANSI_CHARSET = 0, DEFAULT_CHARSET = 1, SYMBOL_CHARSET = 2, OEM_CHARSET = 255;
inline constexpr DWORD OUT_DEFAULT_PRECIS = 0, OUT_TT_PRECIS = 4, CLIP_DEFAULT_PRECIS = 0;
inline constexpr DWORD DEFAULT_QUALITY = 0, DRAFT_QUALITY = 1, PROOF_QUALITY = 2, NONANTIALIASED_QUALITY = 3,
                       ANTIALIASED_QUALITY = 4;
inline constexpr DWORD DEFAULT_PITCH = 0, FIXED_PITCH = 1, VARIABLE_PITCH = 2;
inline constexpr DWORD FF_DONTCARE = 0, FF_ROMAN = 0x10, FF_SWISS = 0x20, FF_MODERN = 0x30, FF_SCRIPT = 0x40,
                       FF_DECORATIVE = 0x50;
/// `TMPF_FIXED_PITCH` means the opposite of its name: that widths differ.
inline constexpr BYTE TMPF_FIXED_PITCH = 1, TMPF_VECTOR = 2, TMPF_TRUETYPE = 4;

/// A font. Null on failure.
/// @param n32Height            negative: of the em square; positive: of the line; in pixels, 0 is 16, and no
///                             height is above 1000
/// @param n32Width             of the average letter in pixels; 0: as the letters are drawn
/// @param n32Escapement        the direction of lines in tenths of a degree, counter-clockwise
/// @param n32Orientation       letters always stand upright on their line, so this is ignored
/// @param n32Weight            bold from `FW_SEMIBOLD` on
/// @param un32PitchAndFamily   what replaces faces that this machine does not have: one of fixed pitch
///                             (`FIXED_PITCH`, `FF_MODERN`), one with serifs (`FF_ROMAN`), or a sans serif
/// @param pszFaceName          up to 31 bytes; null means any
/// Character set, precisions and quality are kept and ignored: characters are those of Unicode, and there is
/// no anti-aliasing.
KX_API HFONT CreateFontA(int n32Height, int n32Width, int n32Escapement, int n32Orientation, int n32Weight,
                         DWORD un32Italic, DWORD un32Underline, DWORD un32StrikeOut, DWORD un32CharSet,
                         DWORD un32OutPrecision, DWORD un32ClipPrecision, DWORD un32Quality,
                         DWORD un32PitchAndFamily, const char* pszFaceName);
/// The same from a description.
KX_API HFONT CreateFontIndirectA(const LOGFONTA* pFont);
/// Measures the selected font. Lengths of fonts with an escapement are those of horizontal lines. 0 on
/// failure, also on a machine without any font.
KX_API BOOL GetTextMetricsA(HDC hDC, TEXTMETRICA* pMetrics);
/// Writes the name of the face that the selected font got, as much of it as `n32Size` bytes hold, with a 0
/// behind it. Returns how many bytes that is, the 0 included; all of them when `pszName` is null. 0 on
/// failure.
KX_API int GetTextFaceA(HDC hDC, int n32Size, char* pszName);

/// A sum of one horizontal and one vertical `TA_` value, and `TA_UPDATECP`.
inline constexpr UINT TA_NOUPDATECP = 0, TA_UPDATECP = 1, TA_LEFT = 0, TA_RIGHT = 2, TA_CENTER = 6,
                      TA_TOP = 0, TA_BOTTOM = 8, TA_BASELINE = 24;
KX_API UINT SetTextAlign(HDC hDC, UINT un32Align);
KX_API UINT GetTextAlign(HDC hDC);

// Texts: UTF-8; bytes that are none stand for the characters of their numbers.
// Control characters have no width. On a machine without any font texts have no size and draw nothing.

inline constexpr UINT ETO_OPAQUE = 2, ETO_CLIPPED = 4;
inline constexpr UINT DT_TOP = 0, DT_LEFT = 0, DT_CENTER = 1, DT_RIGHT = 2, DT_VCENTER = 4, DT_BOTTOM = 8,
                      DT_SINGLELINE = 0x20, DT_NOCLIP = 0x100, DT_CALCRECT = 0x400;

/// Draws one line of text at (x, y), placed as the text alignment says. With `TA_UPDATECP` it is drawn at the
/// current position, which moves along the line. A font with an escapement turns the whole line about (x, y).
KX_API BOOL TextOutA(HDC hDC, int n32X, int n32Y, const char* pText, int n32Length);
/// The same with a rectangle and distances of the caller's.
/// @param un32Options    `ETO_OPAQUE` fills the rectangle with the background colour first, `ETO_CLIPPED`
///                       draws the text only inside of it; any other fails
/// @param pRect          may be null, which means without these options
/// @param pn32Distances  how far each byte moves on, `un32Length` of them: a character of several bytes takes
///                       their sum. Null: as the letters want
KX_API BOOL ExtTextOutA(HDC hDC, int n32X, int n32Y, UINT un32Options, const RECT* pRect, const char* pText,
                        UINT un32Length, const int* pn32Distances);
/// Draws lines of text in a rectangle, as much of them as it shows, and returns their height. `n32Length` -1
/// means up to the 0. Vertical alignment is for `DT_SINGLELINE`; then, what is returned is how far below the
/// top of the rectangle the text ends. `DT_CALCRECT` sets the rectangle, draws nothing and returns the
/// height. A "&" is a character like others, and the text alignment of the context does not matter.
KX_API int DrawTextA(HDC hDC, const char* pText, int n32Length, RECT* pRect, UINT un32Format);
/// The size of one line of text in pixels, as if it were horizontal. A line's height is the font's.
KX_API BOOL GetTextExtentPoint32A(HDC hDC, const char* pText, int n32Length, SIZE* pSize);

// The same by the names that most programs use.

using TEXTMETRIC = TEXTMETRICA;
using LOGFONT = LOGFONTA;

inline HFONT CreateFont(int n32Height, int n32Width, int n32Escapement, int n32Orientation, int n32Weight,
                        DWORD un32Italic, DWORD un32Underline, DWORD un32StrikeOut, DWORD un32CharSet,
                        DWORD un32OutPrecision, DWORD un32ClipPrecision, DWORD un32Quality,
                        DWORD un32PitchAndFamily, const char* pszFaceName) {
    return CreateFontA(n32Height, n32Width, n32Escapement, n32Orientation, n32Weight, un32Italic,
                       un32Underline, un32StrikeOut, un32CharSet, un32OutPrecision, un32ClipPrecision,
                       un32Quality, un32PitchAndFamily, pszFaceName);
}
inline HFONT CreateFontIndirect(const LOGFONTA* pFont) { return CreateFontIndirectA(pFont); }
inline BOOL GetTextMetrics(HDC hDC, TEXTMETRICA* pMetrics) { return GetTextMetricsA(hDC, pMetrics); }
inline int GetTextFace(HDC hDC, int n32Size, char* pszName) { return GetTextFaceA(hDC, n32Size, pszName); }
inline BOOL TextOut(HDC hDC, int n32X, int n32Y, const char* pText, int n32Length) {
    return TextOutA(hDC, n32X, n32Y, pText, n32Length);
}
inline BOOL ExtTextOut(HDC hDC, int n32X, int n32Y, UINT un32Options, const RECT* pRect, const char* pText,
                       UINT un32Length, const int* pn32Distances) {
    return ExtTextOutA(hDC, n32X, n32Y, un32Options, pRect, pText, un32Length, pn32Distances);
}
inline int DrawText(HDC hDC, const char* pText, int n32Length, RECT* pRect, UINT un32Format) {
    return DrawTextA(hDC, pText, n32Length, pRect, un32Format);
}
inline BOOL GetTextExtentPoint32(HDC hDC, const char* pText, int n32Length, SIZE* pSize) {
    return GetTextExtentPoint32A(hDC, pText, n32Length, pSize);
}
