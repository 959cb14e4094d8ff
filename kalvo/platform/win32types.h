#pragma once
// The few system types that stand in the library's interface: device contexts, bitmap headers, palettes.
// Field names and widths are those of the formats they describe.

#include <cstdint>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;

/// A device context to draw on.
using HDC = struct HDC__*;
/// A logical palette made for a device.
using HPALETTE = struct HPALETTE__*;
/// Any handle to a graphics object.
using HANDLE = void*;

/// Describes the pixels of a device-independent bitmap; 40 bytes.
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

/// One entry of a logical palette.
struct PALETTEENTRY {
    BYTE peRed;
    BYTE peGreen;
    BYTE peBlue;
    BYTE peFlags;
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
