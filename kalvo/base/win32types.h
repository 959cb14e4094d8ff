#pragma once
// The system types that stand in the library's interface: handles of graphics objects, colours, bitmap
// headers, palettes, times. Field names, order and widths are those of the formats they describe.

#include <cstdint>

#include "kalvo/base/kxexport.h"

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using UINT = std::uint32_t;

/// Any handle. Handles compare with `nullptr`; a stale one is told from a later object and fails cleanly.
using HANDLE = void*;
/// Any handle to a graphics object; every one of the following converts to it.
using HGDIOBJ = void*;
/// A device context to draw on.
using HDC = struct HDC__*;
/// What outlines are drawn with.
using HPEN = struct HPEN__*;
/// What shapes are filled with.
using HBRUSH = struct HBRUSH__*;
/// Pixels to draw into.
using HBITMAP = struct HBITMAP__*;
/// What texts are drawn with.
using HFONT = struct HFONT__*;
/// A logical palette made for a device.
using HPALETTE = struct HPALETTE__*;

/// A set of pixels to draw in.
using HRGN = struct HRGN__*;
/// A window. There are none; programs may name them.
using HWND = struct HWND__*;

// Headers of others may have macros of these names.
#ifndef FALSE
inline constexpr BOOL FALSE = 0;
#endif
#ifndef TRUE
inline constexpr BOOL TRUE = 1;
#endif

/// A colour: red in the low byte, then green, then blue; the high byte is 0.
using COLORREF = DWORD;

/// The colour of three components of 0 to 255.
constexpr COLORREF RGB(BYTE red, BYTE green, BYTE blue) {
    return red | static_cast<COLORREF>(green) << 8 | static_cast<COLORREF>(blue) << 16;
}
constexpr BYTE GetRValue(COLORREF color) { return static_cast<BYTE>(color); }
constexpr BYTE GetGValue(COLORREF color) { return static_cast<BYTE>(color >> 8); }
constexpr BYTE GetBValue(COLORREF color) { return static_cast<BYTE>(color >> 16); }

/// A position in pixels; y grows downwards.
struct POINT {
    LONG x;
    LONG y;
};

/// A width and a height in pixels.
struct SIZE {
    LONG cx;
    LONG cy;
};

/// A rectangle in pixels; right and bottom are one beyond the last pixel.
struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

using LPPOINT = POINT*;
using LPSIZE = SIZE*;
using LPRECT = RECT*;
using LPCRECT = const RECT*;

/// Describes the pixels of a device-independent bitmap; 40 bytes. A negative height means top-down rows.
struct BITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
};

/// One entry of a bitmap's colour table.
struct RGBQUAD {
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
};

/// A bitmap header and the beginning of its colour table, or of its three colour masks. The caller provides
/// room behind it for as many entries as the header calls for.
struct BITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
};

/// What `GetObjectA` tells of a bitmap.
struct BITMAP {
    LONG bmType;        ///< 0
    LONG bmWidth;       ///< pixels
    LONG bmHeight;      ///< pixels
    LONG bmWidthBytes;  ///< from one row to the next
    WORD bmPlanes;      ///< 1
    WORD bmBitsPixel;
    void* bmBits;  ///< the lowest address of a section's pixels, null for other bitmaps
};

/// What a pen is made of. The width is in `lopnWidth.x`.
struct LOGPEN {
    UINT lopnStyle;
    POINT lopnWidth;
    COLORREF lopnColor;
};

/// What a brush is made of.
struct LOGBRUSH {
    UINT lbStyle;
    COLORREF lbColor;
    std::uintptr_t lbHatch;
};

/// What a font is asked to be.
struct LOGFONTA {
    LONG lfHeight;
    LONG lfWidth;
    LONG lfEscapement;
    LONG lfOrientation;
    LONG lfWeight;
    BYTE lfItalic;
    BYTE lfUnderline;
    BYTE lfStrikeOut;
    BYTE lfCharSet;
    BYTE lfOutPrecision;
    BYTE lfClipPrecision;
    BYTE lfQuality;
    BYTE lfPitchAndFamily;
    char lfFaceName[32];
};

/// What a font turned out to be, in pixels.
struct TEXTMETRICA {
    LONG tmHeight;  ///< tmAscent + tmDescent
    LONG tmAscent;
    LONG tmDescent;
    LONG tmInternalLeading;  ///< what of the height is above the em square
    LONG tmExternalLeading;  ///< what should stay free between lines
    LONG tmAveCharWidth;
    LONG tmMaxCharWidth;
    LONG tmWeight;    ///< FW_NORMAL or FW_BOLD
    LONG tmOverhang;  ///< 0
    LONG tmDigitizedAspectX;
    LONG tmDigitizedAspectY;
    BYTE tmFirstChar;
    BYTE tmLastChar;
    BYTE tmDefaultChar;
    BYTE tmBreakChar;
    BYTE tmItalic;
    BYTE tmUnderlined;
    BYTE tmStruckOut;
    BYTE tmPitchAndFamily;  ///< a family, and a sum of TMPF_ values
    BYTE tmCharSet;         ///< what was asked for
};

/// One entry of a logical palette.
struct PALETTEENTRY {
    BYTE peRed;
    BYTE peGreen;
    BYTE peBlue;
    BYTE peFlags;
};

/// The beginning of a logical palette; the caller provides room for `palNumEntries` entries.
struct LOGPALETTE {
    WORD palVersion;  ///< 0x300
    WORD palNumEntries;
    PALETTEENTRY palPalEntry[1];
};

/// How `AlphaBlend` mixes.
struct BLENDFUNCTION {
    BYTE BlendOp;     ///< AC_SRC_OVER
    BYTE BlendFlags;  ///< 0
    BYTE SourceConstantAlpha;
    BYTE AlphaFormat;  ///< 0, or AC_SRC_ALPHA: the pixels have alpha of their own
};

/// A date and a time of day, to the millisecond.
struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};
