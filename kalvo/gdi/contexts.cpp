// Device contexts: making and deleting them, what is selected into them, their colours and modes.

#include <algorithm>
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
    // What the context itself has kept for later it may have again.
    const auto kept = std::ranges::count(context.saved, next, &ContextState::bitmap);
    const bool anothers = next->contexts > kept || (next->isStock && next != context.ownBitmap);
    return context.isPaletteDevice || anothers ? nullptr : Replace(context.bitmap, next);
}

std::unique_ptr<Bitmap> MakeOwnBitmap(int width, int height, PixelLayout layout) {
    std::unique_ptr<Bitmap> bitmap = MakeDeviceBitmap(width, height, layout, DeviceColors(layout));
    if (!bitmap) throw std::bad_alloc();
    bitmap->isStock = true;
    return bitmap;
}

HDC Publish(std::unique_ptr<Context> context) { return static_cast<HDC>(Register(std::move(context))); }

template <class Operation>
void ForObjects(const ContextState& state, Operation&& operation) {
    for (GdiObject* object :
         std::initializer_list<GdiObject*>{state.pen, state.brush, state.font, state.palette, state.bitmap})
        operation(*object);
}

void LetGo(const ContextState& state) {
    ForObjects(state, [](GdiObject& object) { --object.contexts; });
}

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

BOOL SetPoint(HDC hDC, POINT ContextState::*point, POINT next, POINT* previous) {
    Context* context = Find<Context>(hDC);
    if (!context) return 0;
    const POINT replaced = std::exchange(context->*point, next);
    if (previous) *previous = replaced;
    return 1;
}

BOOL OffsetOrigin(HDC hDC, POINT ContextState::*origin, int right, int down, POINT* previous) {
    const POINT now = Field(hDC, origin, POINT{});
    POINT next;
    if (__builtin_add_overflow(now.x, right, &next.x) || __builtin_add_overflow(now.y, down, &next.y))
        return 0;
    return SetPoint(hDC, origin, next, previous);
}

BOOL TellPoint(HDC hDC, POINT ContextState::*point, POINT* told) {
    if (!told || !Find<Context>(hDC)) return 0;
    *told = Field(hDC, point, POINT{});
    return 1;
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
    LetGo(*this);
    std::ranges::for_each(saved, LetGo);
    Unregister(*ownBitmap);
}

HDC CreatePaletteDC(int width, int height) {
    constexpr int kLargest = 0x7FFF;
    if (width < 1 || height < 1 || width > kLargest || height > kLargest) return nullptr;
    return OrNeutral([&] {
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
    return OrNeutral(
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

int SetROP2(HDC hDC, int n32Mode) {
    if (n32Mode < R2_BLACK || n32Mode > R2_WHITE) return 0;
    return Exchange(hDC, &Context::drawingMode, n32Mode, 0);
}

int GetROP2(HDC hDC) { return Field(hDC, &Context::drawingMode, 0); }

int SetPolyFillMode(HDC hDC, int n32Mode) {
    if (n32Mode != ALTERNATE && n32Mode != WINDING) return 0;
    return Exchange(hDC, &Context::polygonFillMode, n32Mode, 0);
}

int GetPolyFillMode(HDC hDC) { return Field(hDC, &Context::polygonFillMode, 0); }

COLORREF SetDCPenColor(HDC hDC, COLORREF color) {
    return Exchange(hDC, &Context::penColor, color & 0xFFFFFF, CLR_INVALID);
}

COLORREF GetDCPenColor(HDC hDC) { return Field(hDC, &Context::penColor, CLR_INVALID); }

COLORREF SetDCBrushColor(HDC hDC, COLORREF color) {
    return Exchange(hDC, &Context::brushColor, color & 0xFFFFFF, CLR_INVALID);
}

COLORREF GetDCBrushColor(HDC hDC) { return Field(hDC, &Context::brushColor, CLR_INVALID); }

BOOL SetViewportOrgEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious) {
    return SetPoint(hDC, &Context::viewportOrigin, {n32X, n32Y}, pPrevious);
}

BOOL GetViewportOrgEx(HDC hDC, POINT* pOrigin) { return TellPoint(hDC, &Context::viewportOrigin, pOrigin); }

BOOL OffsetViewportOrgEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious) {
    return OffsetOrigin(hDC, &Context::viewportOrigin, n32X, n32Y, pPrevious);
}

BOOL SetWindowOrgEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious) {
    return SetPoint(hDC, &Context::windowOrigin, {n32X, n32Y}, pPrevious);
}

BOOL GetWindowOrgEx(HDC hDC, POINT* pOrigin) { return TellPoint(hDC, &Context::windowOrigin, pOrigin); }

BOOL OffsetWindowOrgEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious) {
    return OffsetOrigin(hDC, &Context::windowOrigin, n32X, n32Y, pPrevious);
}

BOOL SetBrushOrgEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious) {
    return SetPoint(hDC, &Context::brushOrigin, {n32X, n32Y}, pPrevious);
}

BOOL GetBrushOrgEx(HDC hDC, POINT* pOrigin) { return TellPoint(hDC, &Context::brushOrigin, pOrigin); }

BOOL MoveToEx(HDC hDC, int n32X, int n32Y, POINT* pPrevious) {
    return SetPoint(hDC, &Context::position, {n32X, n32Y}, pPrevious);
}

BOOL GetCurrentPositionEx(HDC hDC, POINT* pPosition) { return TellPoint(hDC, &Context::position, pPosition); }

int SaveDC(HDC hDC) {
    return OrNeutral([&] {
        Context* context = Find<Context>(hDC);
        if (!context) return 0;
        context->saved.push_back(*context);
        ForObjects(context->saved.back(), [](GdiObject& object) { ++object.contexts; });
        return static_cast<int>(context->saved.size());
    });
}

BOOL RestoreDC(HDC hDC, int n32Saved) {
    Context* context = Find<Context>(hDC);
    if (!context) return 0;
    const auto count = static_cast<std::int64_t>(context->saved.size());
    const std::int64_t level = n32Saved < 0 ? count + n32Saved : n32Saved - std::int64_t{1};
    if (level < 0 || level >= count) return 0;
    const auto restored = context->saved.begin() + level;
    LetGo(*context);
    std::for_each(restored + 1, context->saved.end(), LetGo);
    static_cast<ContextState&>(*context) = std::move(*restored);
    context->saved.erase(restored, context->saved.end());
    return 1;
}
