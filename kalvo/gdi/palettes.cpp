// Logical palettes, and how a palette device takes their colours over.

#include <algorithm>

#include "kalvo/gdi/objects.h"

namespace Zelkor::Platform {
namespace {

constexpr std::size_t kLargestPalette = 256;
constexpr WORD kPaletteVersion = 0x300;

bool SameColor(RGBQUAD entry, PALETTEENTRY wanted) {
    return entry.rgbRed == wanted.peRed && entry.rgbGreen == wanted.peGreen && entry.rgbBlue == wanted.peBlue;
}

// Gives `wanted` places in the device's palette between the fixed colours, in their order, until there is no
// more room. A colour that is there already takes none. Returns how many places got another colour.
UINT Realize(std::span<const PALETTEENTRY> wanted, std::span<RGBQUAD> colors) {
    const std::size_t fixedAtEachEnd = FixedColors().size() / 2;
    const std::span<RGBQUAD> free = colors.subspan(fixedAtEachEnd, colors.size() - 2 * fixedAtEachEnd);
    const std::span<RGBQUAD> head = colors.first(fixedAtEachEnd), tail = colors.last(fixedAtEachEnd);
    std::size_t used = 0;
    UINT changed = 0;
    for (const PALETTEENTRY& entry : wanted) {
        const auto same = [&](RGBQUAD color) { return SameColor(color, entry); };
        if (std::ranges::any_of(head, same) || std::ranges::any_of(tail, same) ||
            std::ranges::any_of(free.first(used), same))
            continue;
        if (used == free.size()) break;
        changed += !same(free[used]);
        free[used++] = {entry.peBlue, entry.peGreen, entry.peRed, 0};
    }
    return changed;
}

}  // namespace

std::span<const PALETTEENTRY> FixedColors() {
    static constexpr PALETTEENTRY colors[] = {
        {0, 0, 0, 0},       {128, 0, 0, 0},     {0, 128, 0, 0},     {128, 128, 0, 0},   {0, 0, 128, 0},
        {128, 0, 128, 0},   {0, 128, 128, 0},   {192, 192, 192, 0}, {192, 220, 192, 0}, {166, 202, 240, 0},
        {255, 251, 240, 0}, {160, 160, 164, 0}, {128, 128, 128, 0}, {255, 0, 0, 0},     {0, 255, 0, 0},
        {255, 255, 0, 0},   {0, 0, 255, 0},     {255, 0, 255, 0},   {0, 255, 255, 0},   {255, 255, 255, 0}};
    return colors;
}

std::vector<RGBQUAD> DeviceColors(PixelLayout layout) {
    if (layout == PixelLayout::Bits1) return {{0, 0, 0, 0}, {255, 255, 255, 0}};
    if (layout != PixelLayout::Indexed8) return {};
    std::vector<RGBQUAD> colors(kLargestPalette);
    const std::span<const PALETTEENTRY> fixed = FixedColors();
    for (std::size_t i = 0; i < fixed.size(); ++i) {
        const std::size_t place = i < fixed.size() / 2 ? i : colors.size() - fixed.size() + i;
        colors[place] = {fixed[i].peBlue, fixed[i].peGreen, fixed[i].peRed, 0};
    }
    return colors;
}

}  // namespace Zelkor::Platform

using namespace Zelkor::Platform;

HPALETTE CreatePalette(const LOGPALETTE* pPalette) {
    if (!pPalette || pPalette->palVersion != kPaletteVersion) return nullptr;
    const std::size_t count = pPalette->palNumEntries;
    if (count < 1 || count > kLargestPalette) return nullptr;
    return OrNeutral([&] {
        const PALETTEENTRY* first = pPalette->palPalEntry;
        return static_cast<HPALETTE>(
            Register(std::make_unique<Palette>(std::vector<PALETTEENTRY>(first, first + count))));
    });
}

HPALETTE SelectPalette(HDC hDC, HPALETTE hPalette, BOOL bForceBackground) {
    Context* context = Find<Context>(hDC);
    Palette* next = Find<Palette>(hPalette);
    if (!context || !next) return nullptr;
    Palette* previous = std::exchange(context->palette, next);
    ++next->contexts;
    --previous->contexts;
    context->isPaletteInBackground = bForceBackground != 0;
    return static_cast<HPALETTE>(previous->handle);
}

UINT RealizePalette(HDC hDC) {
    Context* context = Find<Context>(hDC);
    if (!context) return GDI_ERROR;
    if (!context->isPaletteDevice || context->isPaletteInBackground) return 0;
    return Realize(context->palette->entries, context->ownBitmap->colors);
}

COLORREF GetNearestColor(HDC hDC, COLORREF color) {
    const Context* context = Find<Context>(hDC);
    if (!context) return CLR_INVALID;
    const Surface& surface = context->bitmap->surface;
    return ColorFromBgr(BgrFromRaw(surface, RawFromBgr(surface, BgrFromColor(color))));
}
