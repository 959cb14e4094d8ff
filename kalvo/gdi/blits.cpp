// The exported functions that copy rectangles of pixels onto contexts: what they accept, where both
// rectangles are, and which colours bits stand for. The copying itself is the rasteriser's.

#include <algorithm>
#include <array>
#include <cstdlib>

#include "kalvo/gdi/dibformat.h"
#include "kalvo/gdi/inks.h"
#include "kalvo/raster/blit.h"

namespace Zelkor::Platform {
namespace {

// Either size may be negative: then it means the pixels up to the start, which is one of them. One of two
// that is negative mirrors the picture.
BlitAxis SignedAxis(std::int64_t destination, std::int64_t destinationSize, std::int64_t source,
                    std::int64_t sourceSize) {
    const auto firstOf = [](std::int64_t start, std::int64_t size) {
        return std::min(start, start + size + 1);
    };
    return {firstOf(destination, destinationSize), std::abs(destinationSize), firstOf(source, sourceSize),
            std::abs(sourceSize), (destinationSize < 0) != (sourceSize < 0)};
}

bool IsInside(std::int64_t start, std::int64_t size, int limit) {
    return start >= 0 && size >= 0 && start + size <= limit;
}

// The table of operations is one byte of their codes.
RasterOperation OperationOf(DWORD code) { return RasterOperation(static_cast<std::uint8_t>(code >> 16)); }

void DrawPicture(const Context& context, const Surface& target, const Surface& source,
                 const BlitAxis& columns, const BlitAxis& rows, RasterOperation operation) {
    const bool usesPattern = operation.UsesPattern();
    if (usesPattern && !context.brush->Draws()) return;
    if (operation.UsesSource()) {
        const Fill pattern = usesPattern ? FillEverywhere(context, *context.brush) : Fill(RawPixel{0});
        return Combine(target, source, columns, rows, operation, pattern);
    }
    const Box box{columns.destination, rows.destination, columns.destination + columns.destinationSize,
                  rows.destination + rows.destinationSize};
    const BinaryOperation remaining = operation.WithoutSource();
    PaintBox(target, box,
             usesPattern ? *FillOf(context, *context.brush, remaining) : InkFrom(context, 0, remaining));
}

BOOL BlendPicture(const Surface& target, const Surface& source, const BlitAxis& columns, const BlitAxis& rows,
                  BLENDFUNCTION blend) {
    if (columns.destinationSize < 0 || rows.destinationSize < 0 || blend.BlendOp != AC_SRC_OVER ||
        blend.BlendFlags != 0 || !IsInside(columns.source, columns.sourceSize, source.width) ||
        !IsInside(rows.source, rows.sourceSize, source.height))
        return 0;
    const BYTE alpha = blend.SourceConstantAlpha;
    if (blend.AlphaFormat == AC_SRC_ALPHA) {
        if (source.layout != PixelLayout::Bgrx32) return 0;
        BlendPremultiplied(target, source, columns, rows, alpha);
    } else if (blend.AlphaFormat != 0) {
        return 0;
    } else if (alpha == 255) {
        Blit(target, source, columns, rows);
    } else if (alpha > 0) {
        Blend(target, source, columns, rows, alpha);
    }
    return 1;
}

}  // namespace
}  // namespace Zelkor::Platform

using namespace Zelkor::Platform;

int SetDIBitsToDevice(HDC hDC, int n32X, int n32Y, DWORD un32Width, DWORD un32Height, int n32SourceX,
                      int n32SourceY, UINT un32Start, UINT un32Lines, const void* pBits,
                      const BITMAPINFO* pInfo, UINT un32Usage) {
    return OrNeutral([&] {
        const Context* context = Find<Context>(hDC);
        const auto format = ReadDibHeader(pInfo);
        if (!context || !format || !pBits || un32Usage != DIB_RGB_COLORS) return 0;
        const Surface buffer = format->ScansAt(pBits, un32Start, un32Lines);
        const std::int64_t firstScan = std::int64_t{n32SourceY} - un32Start;
        const auto [x, y] = context->Placed(POINT{n32X, n32Y});
        Blit(context->Target(), buffer, UnscaledAxis(x, n32SourceX, un32Width),
             UnscaledAxis(y, RowOfScans(buffer, firstScan, un32Height), un32Height));
        return buffer.height;
    });
}

int StretchDIBits(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, int n32SourceX, int n32SourceY,
                  int n32SourceWidth, int n32SourceHeight, const void* pBits, const BITMAPINFO* pInfo,
                  UINT un32Usage, DWORD un32Operation) {
    return OrNeutral([&] {
        const Context* context = Find<Context>(hDC);
        const auto format = ReadDibHeader(pInfo);
        if (!context || !format || !pBits || un32Usage != DIB_RGB_COLORS) return 0;
        const Surface source = format->SurfaceAt(pBits);
        const auto [x, y] = context->Placed(POINT{n32X, n32Y});
        BlitAxis rows = SignedAxis(y, n32Height, n32SourceY, n32SourceHeight);
        rows.source = RowOfScans(source, rows.source, rows.sourceSize);
        DrawPicture(*context, context->Target(), source, SignedAxis(x, n32Width, n32SourceX, n32SourceWidth),
                    rows, OperationOf(un32Operation));
        return source.height;
    });
}

BOOL StretchBlt(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, HDC hSource, int n32SourceX,
                int n32SourceY, int n32SourceWidth, int n32SourceHeight, DWORD un32Operation) {
    return OrNeutral([&] {
        const Context* context = Find<Context>(hDC);
        const RasterOperation operation = OperationOf(un32Operation);
        const Context* sourceContext = operation.UsesSource() ? Find<Context>(hSource) : context;
        if (!context || !sourceContext) return 0;

        Surface target = context->Target(), source = sourceContext->bitmap->surface;
        const bool isMonochrome = context->bitmap->IsMonochrome();
        const bool isSourceMonochrome = sourceContext->bitmap->IsMonochrome();
        std::array<RGBQUAD, 2> colors;
        if (isSourceMonochrome && !isMonochrome) {
            colors = {EntryFromColor(context->textColor), EntryFromColor(context->backgroundColor)};
            source.colors = colors;
        } else if (isMonochrome && !isSourceMonochrome) {
            target.matched =
                BgrFromRaw(source, RawFromBgr(source, BgrFromColor(sourceContext->backgroundColor)));
        }
        const Position place = context->Placed(POINT{n32X, n32Y});
        const Position sourcePlace = sourceContext->Placed(POINT{n32SourceX, n32SourceY});
        DrawPicture(*context, target, source, SignedAxis(place.x, n32Width, sourcePlace.x, n32SourceWidth),
                    SignedAxis(place.y, n32Height, sourcePlace.y, n32SourceHeight), operation);
        return 1;
    });
}

BOOL BitBlt(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, HDC hSource, int n32SourceX,
            int n32SourceY, DWORD un32Operation) {
    return StretchBlt(hDC, n32X, n32Y, n32Width, n32Height, hSource, n32SourceX, n32SourceY, n32Width,
                      n32Height, un32Operation);
}

BOOL PatBlt(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, DWORD un32Operation) {
    return BitBlt(hDC, n32X, n32Y, n32Width, n32Height, nullptr, 0, 0, un32Operation);
}

BOOL AlphaBlend(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, HDC hSource, int n32SourceX,
                int n32SourceY, int n32SourceWidth, int n32SourceHeight, BLENDFUNCTION blend) {
    return OrNeutral([&] {
        const Context* context = Find<Context>(hDC);
        const Context* sourceContext = Find<Context>(hSource);
        if (!context || !sourceContext) return 0;
        const Position place = context->Placed(POINT{n32X, n32Y});
        const Position sourcePlace = sourceContext->Placed(POINT{n32SourceX, n32SourceY});
        return BlendPicture(context->Target(), sourceContext->bitmap->surface,
                            {place.x, n32Width, sourcePlace.x, n32SourceWidth},
                            {place.y, n32Height, sourcePlace.y, n32SourceHeight}, blend);
    });
}

BOOL BlendDIBits(HDC hDC, int n32X, int n32Y, int n32Width, int n32Height, int n32SourceX, int n32SourceY,
                 int n32SourceWidth, int n32SourceHeight, const void* pBits, const BITMAPINFO* pInfo,
                 UINT un32Usage, BLENDFUNCTION blend) {
    return OrNeutral([&] {
        const Context* context = Find<Context>(hDC);
        const auto format = ReadDibHeader(pInfo);
        if (!context || !format || !pBits || un32Usage != DIB_RGB_COLORS) return 0;
        const Surface source = format->SurfaceAt(pBits);
        const Position place = context->Placed(POINT{n32X, n32Y});
        return BlendPicture(
            context->Target(), source, {place.x, n32Width, n32SourceX, n32SourceWidth},
            {place.y, n32Height, RowOfScans(source, n32SourceY, n32SourceHeight), n32SourceHeight}, blend);
    });
}
