// The exported functions that make bitmaps and bring pixels into and out of them: checks of what they are
// given, and where its rows are. The copying itself is in gdi_blit.

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

#include "kalvo/gdi/dibformat.h"
#include "kalvo/gdi/objects.h"
#include "kalvo/raster/blit.h"

namespace Zelkor::Platform {
namespace {

bool IsNullOrContext(HDC hDC) { return !hDC || Find<Context>(hDC); }

// Surfaces do not tell whether they are written to; the one made of this is only read.
std::uint8_t* Readable(const void* bits) {
    return const_cast<std::uint8_t*>(static_cast<const std::uint8_t*>(bits));
}

// Places `size` columns or rows one to one.
BlitAxis Unscaled(std::int64_t destination, std::int64_t source, std::int64_t size) {
    return {destination, size, source, size};
}

// Scans count from the bottom: this is the row, from the top, of the last of `scans`.
std::int64_t RowOfScans(const Surface& surface, std::int64_t firstScan, std::int64_t scans) {
    return surface.height - firstScan - scans;
}

// Copies scans between a bitmap and a buffer that holds those from `start` on. Returns how many both have.
int CopyScans(const Surface& destination, const Surface& source, const Surface& bitmap, const Surface& buffer,
              UINT start) {
    if (start >= static_cast<UINT>(bitmap.height)) return 0;
    const int scans = std::min(buffer.height, bitmap.height - static_cast<int>(start));
    const auto firstRow = [&](const Surface& surface) {
        return RowOfScans(surface, &surface == &bitmap ? start : 0, scans);
    };
    Blit(destination, source, Unscaled(0, 0, source.width),
         Unscaled(firstRow(destination), firstRow(source), scans));
    return scans;
}

// Writes the colour table of an indexed form that takes pixels of `bitmap`: their own table if it fits, else
// greys from black to white. Returns it.
std::span<const RGBQUAD> WriteColors(const Surface& bitmap, PixelLayout layout, BITMAPINFO& info) {
    if (!IsIndexed(layout)) return {};
    RGBQUAD* behindHeader = info.bmiColors;
    const std::span colors(behindHeader, ColorTableSize(info.bmiHeader));
    const std::size_t last = (std::size_t{1} << BitsPerPixel(layout)) - 1;
    for (std::size_t i = 0; i < colors.size(); ++i) {
        const auto grey = static_cast<BYTE>(i * 255 / last);
        colors[i] = {grey, grey, grey, 0};
    }
    if (bitmap.layout == layout)
        std::copy_n(bitmap.colors.begin(), std::min(bitmap.colors.size(), colors.size()), colors.begin());
    return colors;
}

bool IsInside(std::int64_t start, std::int64_t size, int limit) {
    return start >= 0 && size >= 0 && start + size <= limit;
}

// A rectangle inside `surface` with pixels of its own, which stand in `memory`.
Surface CopyOf(const Surface& surface, std::int64_t x, std::int64_t y, int width, int height,
               std::vector<std::uint8_t>& memory) {
    Surface copy = surface;
    copy.width = width;
    copy.height = height;
    copy.pitchBytes = (std::ptrdiff_t{width} * BitsPerPixel(surface.layout) + 7) / 8;
    memory.resize(static_cast<std::size_t>(copy.pitchBytes * height));
    copy.topRow = memory.data();
    Blit(copy, surface, Unscaled(0, x, width), Unscaled(0, y, height));
    return copy;
}

}  // namespace
}  // namespace Zelkor::Platform

using namespace Zelkor::Platform;

HBITMAP CreateDIBSection(HDC hDC, const BITMAPINFO* pInfo, UINT un32Usage, void** ppBits, HANDLE, DWORD) {
    if (ppBits) *ppBits = nullptr;
    return FailWithoutMemory([&]() -> HBITMAP {
        if (un32Usage != DIB_RGB_COLORS || !IsNullOrContext(hDC)) return nullptr;
        auto format = ReadDibHeader(pInfo);
        if (!format) return nullptr;
        std::unique_ptr<Bitmap> bitmap = MakeBitmap(*std::move(format));
        if (!bitmap) return nullptr;
        std::uint8_t* bits = bitmap->memory.get();
        const HANDLE handle = Register(std::move(bitmap));
        if (handle && ppBits) *ppBits = bits;
        return static_cast<HBITMAP>(handle);
    });
}

int SetDIBits(HDC hDC, HBITMAP hBitmap, UINT un32Start, UINT un32Lines, const void* pBits,
              const BITMAPINFO* pInfo, UINT un32Usage) {
    return FailWithoutMemory([&] {
        const Bitmap* bitmap = Find<Bitmap>(hBitmap);
        const auto format = ReadDibHeader(pInfo);
        if (!bitmap || !format || !pBits || un32Usage != DIB_RGB_COLORS || !IsNullOrContext(hDC)) return 0;
        const Surface buffer = format->ScansAt(Readable(pBits), un32Start, un32Lines);
        return CopyScans(bitmap->surface, buffer, bitmap->surface, buffer, un32Start);
    });
}

int GetDIBits(HDC hDC, HBITMAP hBitmap, UINT un32Start, UINT un32Lines, void* pBits, BITMAPINFO* pInfo,
              UINT un32Usage) {
    return FailWithoutMemory([&] {
        const Bitmap* bitmap = Find<Bitmap>(hBitmap);
        if (!bitmap || !pInfo || un32Usage != DIB_RGB_COLORS || !IsNullOrContext(hDC)) return 0;
        if (!pBits && pInfo->bmiHeader.biSize == sizeof(BITMAPINFOHEADER) &&
            pInfo->bmiHeader.biBitCount == 0) {
            pInfo->bmiHeader = MakeDibHeader(bitmap->surface);
            return 1;
        }
        const auto format = ReadDibHeader(pInfo);
        if (!format) return 0;
        Surface buffer = format->ScansAt(static_cast<std::uint8_t*>(pBits), un32Start, un32Lines);
        buffer.colors = WriteColors(bitmap->surface, format->layout, *pInfo);
        if (!pBits) return 1;
        return CopyScans(buffer, bitmap->surface, bitmap->surface, buffer, un32Start);
    });
}

int SetDIBitsToDevice(HDC hDC, int n32X, int n32Y, DWORD un32Width, DWORD un32Height, int n32SourceX,
                      int n32SourceY, UINT un32Start, UINT un32Lines, const void* pBits,
                      const BITMAPINFO* pInfo, UINT un32Usage) {
    return FailWithoutMemory([&] {
        const Context* context = Find<Context>(hDC);
        const auto format = ReadDibHeader(pInfo);
        if (!context || !format || !pBits || un32Usage != DIB_RGB_COLORS) return 0;
        const Surface buffer = format->ScansAt(Readable(pBits), un32Start, un32Lines);
        const std::int64_t firstScan = std::int64_t{n32SourceY} - un32Start;
        const auto [x, y] = context->Placed(POINT{n32X, n32Y});
        Blit(context->Target(), buffer, Unscaled(x, n32SourceX, un32Width),
             Unscaled(y, RowOfScans(buffer, firstScan, un32Height), un32Height));
        return buffer.height;
    });
}

int StretchDIBits(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, int n32SourceX, int n32SourceY,
                  int n32SourceWidth, int n32SourceHeight, const void* pBits, const BITMAPINFO* pInfo,
                  UINT un32Usage, DWORD un32Operation) {
    return FailWithoutMemory([&] {
        const Context* context = Find<Context>(hDC);
        const auto format = ReadDibHeader(pInfo);
        if (!context || !format || !pBits || un32Usage != DIB_RGB_COLORS || un32Operation != SRCCOPY)
            return 0;
        const Surface source = format->SurfaceAt(Readable(pBits));
        const auto [x, y] = context->Placed(POINT{n32X, n32Y});
        // Scans run upwards and rows downwards, so the rows of a negative height, too, start at its other
        // end.
        const std::int64_t firstRow = RowOfScans(source, n32SourceY, n32SourceHeight);
        Blit(context->Target(), source, {x, n32Width, n32SourceX, n32SourceWidth},
             {y, n32Height, firstRow, n32SourceHeight});
        return source.height;
    });
}

BOOL AlphaBlend(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, HDC hSource, int n32SourceX,
                int n32SourceY, int n32SourceWidth, int n32SourceHeight, BLENDFUNCTION blend) {
    return FailWithoutMemory([&]() -> BOOL {
        const Context* context = Find<Context>(hDC);
        const Context* sourceContext = Find<Context>(hSource);
        if (!context || !sourceContext || n32Width < 0 || n32Height < 0 || blend.BlendOp != AC_SRC_OVER ||
            blend.BlendFlags != 0 || blend.AlphaFormat != 0)
            return 0;
        Surface source = sourceContext->bitmap->surface;
        const Position place = context->Placed(POINT{n32X, n32Y});
        const Position sourcePlace = sourceContext->Placed(POINT{n32SourceX, n32SourceY});
        BlitAxis columns{place.x, n32Width, sourcePlace.x, n32SourceWidth};
        BlitAxis rows{place.y, n32Height, sourcePlace.y, n32SourceHeight};
        if (!IsInside(columns.source, columns.sourceSize, source.width) ||
            !IsInside(rows.source, rows.sourceSize, source.height))
            return 0;
        if (blend.SourceConstantAlpha == 0) return 1;
        std::vector<std::uint8_t> ownPixels;
        if (sourceContext == context) {  // a bitmap is in one context at a time
            source = CopyOf(source, columns.source, rows.source, n32SourceWidth, n32SourceHeight, ownPixels);
            columns.source = rows.source = 0;
        }
        if (blend.SourceConstantAlpha == 255)
            Blit(context->Target(), source, columns, rows);
        else
            Blend(context->Target(), source, columns, rows, blend.SourceConstantAlpha);
        return 1;
    });
}
