// Device contexts: making and deleting them, what is selected into them, their colours and modes.

#include <initializer_list>
#include <new>
#include <utility>

#include "kalvo/gdi/dibformat.h"
#include "kalvo/gdi/objects.h"
#include "kalvo/raster/lines.h"

namespace Zelkor::Platform {
namespace {

constexpr int kDotsPerInch = 96;

// Puts `next` in place of what is selected, and counts who uses whom.
template <class Object>
HGDIOBJ Replace(Object*& selected, Object* next) {
    Object* previous = std::exchange(selected, next);
    ++next->contexts;
    if (!previous) return nullptr;
    --previous->contexts;
    return previous->handle;
}

template <class Object>
void SelectStock(Object*& selected, int number) {
    Replace(selected, static_cast<Object*>(StockObject(number)));
}

HGDIOBJ ReplaceBitmap(Context& context, Bitmap* next) {
    if (next == context.bitmap) return next->handle;
    const bool anothers = next->contexts > 0 || (next->isStock && next != context.ownBitmap);
    return context.isPaletteDevice || anothers ? nullptr : Replace(context.bitmap, next);
}

std::unique_ptr<Bitmap> MakeOwnBitmap(int width, int height, PixelLayout layout) {
    std::unique_ptr<Bitmap> bitmap = MakeDeviceBitmap(width, height, layout, DeviceColors(layout));
    if (!bitmap) throw std::bad_alloc();
    bitmap->isStock = true;
    return bitmap;
}

HDC Publish(std::unique_ptr<Context> context) { return static_cast<HDC>(Register(std::move(context))); }

// What every Set and every Get does with a field of a context.
template <class Value>
Value Exchange(HDC hDC, Value ContextState::*field, Value next, Value failure) {
    Context* context = Find<Context>(hDC);
    return context ? std::exchange(context->*field, next) : failure;
}

template <class Value>
Value Field(HDC hDC, Value ContextState::*field, Value failure) {
    const Context* context = Find<Context>(hDC);
    return context ? context->*field : failure;
}

}  // namespace

Context::Context(std::unique_ptr<Bitmap> first) : GdiObject(kKind) {
    SelectStock(pen, BLACK_PEN);
    SelectStock(brush, WHITE_BRUSH);
    SelectStock(font, SYSTEM_FONT);
    SelectStock(palette, DEFAULT_PALETTE);
    ownBitmap = first.get();
    if (!Register(std::move(first))) throw std::bad_alloc();
    Replace(bitmap, ownBitmap);
}

Context::~Context() {
    for (GdiObject* object : std::initializer_list<GdiObject*>{pen, brush, font, palette, bitmap})
        --object->contexts;
    Unregister(*ownBitmap);
}

HDC CreatePaletteDC(int width, int height) {
    constexpr int kLargest = 0x7FFF;
    if (width < 1 || height < 1 || width > kLargest || height > kLargest) return nullptr;
    return FailWithoutMemory([&] {
        constexpr RawPixel kWhite = 255;
        auto context = std::make_unique<Context>(MakeOwnBitmap(width, height, PixelLayout::Indexed8));
        context->isPaletteDevice = true;
        PaintBox(context->Target(), {0, 0, width, height}, kWhite);
        return Publish(std::move(context));
    });
}

}  // namespace Zelkor::Platform

using namespace Zelkor::Platform;

HDC CreateCompatibleDC(HDC hDC) {
    if (hDC && !Find<Context>(hDC)) return nullptr;
    return FailWithoutMemory(
        [&] { return Publish(std::make_unique<Context>(MakeOwnBitmap(1, 1, PixelLayout::Bits1))); });
}

BOOL DeleteDC(HDC hDC) {
    Context* context = Find<Context>(hDC);
    if (context) Unregister(*context);
    return context != nullptr;
}

HGDIOBJ SelectObject(HDC hDC, HGDIOBJ hObject) {
    Context* context = Find<Context>(hDC);
    if (!context) return nullptr;
    if (Pen* pen = Find<Pen>(hObject)) return Replace(context->pen, pen);
    if (Brush* brush = Find<Brush>(hObject)) return Replace(context->brush, brush);
    if (Font* font = Find<Font>(hObject)) return Replace(context->font, font);
    if (Bitmap* bitmap = Find<Bitmap>(hObject)) return ReplaceBitmap(*context, bitmap);
    if (Find<RegionObject>(hObject)) {
        const std::intptr_t complexity = SelectClipRgn(hDC, static_cast<HRGN>(hObject));
        return reinterpret_cast<HGDIOBJ>(complexity);
    }
    return nullptr;
}

HGDIOBJ GetCurrentObject(HDC hDC, UINT un32Type) {
    const Context* context = Find<Context>(hDC);
    if (!context) return nullptr;
    switch (un32Type) {
    case OBJ_PEN:
        return context->pen->handle;
    case OBJ_BRUSH:
        return context->brush->handle;
    case OBJ_PAL:
        return context->palette->handle;
    case OBJ_FONT:
        return context->font->handle;
    case OBJ_BITMAP:
        return context->bitmap->handle;
    default:
        return nullptr;
    }
}

int GetDeviceCaps(HDC hDC, int n32Index) {
    const Context* context = Find<Context>(hDC);
    if (!context) return 0;
    const bool hasPalette = context->isPaletteDevice;
    switch (n32Index) {
    case TECHNOLOGY:
        return DT_RASDISPLAY;
    case HORZRES:
        return context->Target().width;
    case VERTRES:
        return context->Target().height;
    case BITSPIXEL:
        return hasPalette ? 8 : 32;
    case PLANES:
        return 1;
    case NUMCOLORS:
        return hasPalette ? static_cast<int>(FixedColors().size()) : -1;
    case RASTERCAPS:
        return RC_BITBLT | RC_DI_BITMAP | RC_DIBTODEV | RC_STRETCHBLT | RC_STRETCHDIB |
               (hasPalette ? RC_PALETTE : 0);
    case LOGPIXELSX:
    case LOGPIXELSY:
        return kDotsPerInch;
    case SIZEPALETTE:
        return hasPalette ? static_cast<int>(context->ownBitmap->colors.size()) : 0;
    default:
        return 0;
    }
}

COLORREF SetTextColor(HDC hDC, COLORREF color) {
    return Exchange(hDC, &Context::textColor, color & 0xFFFFFF, CLR_INVALID);
}

COLORREF GetTextColor(HDC hDC) { return Field(hDC, &Context::textColor, CLR_INVALID); }

COLORREF SetBkColor(HDC hDC, COLORREF color) {
    return Exchange(hDC, &Context::backgroundColor, color & 0xFFFFFF, CLR_INVALID);
}

COLORREF GetBkColor(HDC hDC) { return Field(hDC, &Context::backgroundColor, CLR_INVALID); }

int SetBkMode(HDC hDC, int n32Mode) {
    if (n32Mode != TRANSPARENT && n32Mode != OPAQUE) return 0;
    return Exchange(hDC, &Context::backgroundMode, n32Mode, 0);
}

int GetBkMode(HDC hDC) { return Field(hDC, &Context::backgroundMode, 0); }

UINT SetTextAlign(HDC hDC, UINT un32Align) {
    return Exchange(hDC, &Context::textAlign, un32Align, GDI_ERROR);
}

UINT GetTextAlign(HDC hDC) { return Field(hDC, &Context::textAlign, GDI_ERROR); }

int SetStretchBltMode(HDC hDC, int n32Mode) {
    if (n32Mode < BLACKONWHITE || n32Mode > HALFTONE) return 0;
    return Exchange(hDC, &Context::stretchMode, n32Mode, 0);
}

int GetStretchBltMode(HDC hDC) { return Field(hDC, &Context::stretchMode, 0); }

BOOL SetViewportOrgEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious) {
    Context* context = Find<Context>(hDC);
    if (!context) return 0;
    const POINT previous = std::exchange(context->viewportOrigin, POINT{n32X, n32Y});
    if (pPrevious) *pPrevious = previous;
    return 1;
}

BOOL GetViewportOrgEx(HDC hDC, POINT* pOrigin) {
    const Context* context = Find<Context>(hDC);
    if (!context || !pOrigin) return 0;
    *pOrigin = context->viewportOrigin;
    return 1;
}
