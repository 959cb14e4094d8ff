#pragma once
// Pixels to draw into: where they are and how a colour becomes one. All drawing ends here.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "kalvo/base/win32types.h"

namespace Zelkor::Platform {

// How a pixel stands in memory. Bits of `Bits1` count from the most significant one; words are little-endian.
enum class PixelLayout : std::uint8_t { Bits1, Indexed8, Rgb555, Rgb565, Bgr24, Bgrx32 };

constexpr int BitsPerPixel(PixelLayout layout) {
    constexpr int bits[] = {1, 8, 16, 16, 24, 32};
    return bits[static_cast<int>(layout)];
}

constexpr bool IsIndexed(PixelLayout layout) { return layout <= PixelLayout::Indexed8; }

// A pixel as its bits: an index, a 16-bit word, or 0x00RRGGBB.
using RawPixel = std::uint32_t;

class Region;

// A view of rows of pixels, without ownership. Row 0 is the top one; the pitch is negative for bottom-up
// rows.
struct Surface {
    std::uint8_t* topRow = nullptr;
    std::ptrdiff_t pitchBytes = 0;
    int width = 0;
    int height = 0;
    PixelLayout layout = PixelLayout::Bgrx32;
    std::span<const RGBQUAD> colors;  // indexed layouts only: 2 or up to 256 entries
    const Region* clip = nullptr;  // the pixels that drawing may change; null: all. Reading takes no notice
    std::optional<RawPixel> matched = {};  // Bits1 only: what alone becomes 1 when others are copied there

    std::uint8_t* Row(int y) const { return topRow + y * pitchBytes; }
};

// Red, green and blue in the order of Bgr24 and Bgrx32: 0x00RRGGBB.
constexpr RawPixel PackBgr(unsigned red, unsigned green, unsigned blue) {
    return red << 16 | green << 8 | blue;
}

// 5 and 6 bits widen to 8 by repeating their high bits.
constexpr unsigned Widen5(unsigned value) { return value << 3 | value >> 2; }
constexpr unsigned Widen6(unsigned value) { return value << 2 | value >> 4; }

constexpr RawPixel BgrFrom555(unsigned word) {
    return PackBgr(Widen5(word >> 10 & 31), Widen5(word >> 5 & 31), Widen5(word & 31));
}
constexpr RawPixel BgrFrom565(unsigned word) {
    return PackBgr(Widen5(word >> 11 & 31), Widen6(word >> 5 & 63), Widen5(word & 31));
}
constexpr unsigned Bgr555(RawPixel bgr) {
    return (bgr >> 9 & 0x7C00) | (bgr >> 6 & 0x03E0) | (bgr >> 3 & 0x1F);
}
constexpr unsigned Bgr565(RawPixel bgr) {
    return (bgr >> 8 & 0xF800) | (bgr >> 5 & 0x07E0) | (bgr >> 3 & 0x1F);
}

constexpr RawPixel BgrFromColor(COLORREF color) {
    return PackBgr(GetRValue(color), GetGValue(color), GetBValue(color));
}
constexpr COLORREF ColorFromBgr(RawPixel bgr) {
    return (bgr & 0xFF) << 16 | (bgr & 0xFF00) | (bgr >> 16 & 0xFF);
}
constexpr RGBQUAD EntryFromColor(COLORREF color) {
    return {GetBValue(color), GetGValue(color), GetRValue(color), 0};
}
constexpr RawPixel BgrFromEntry(RGBQUAD entry) {
    return PackBgr(entry.rgbRed, entry.rgbGreen, entry.rgbBlue);
}

// The entry nearest to a colour, the first of equally near ones. `colors` must not be empty.
unsigned NearestEntry(std::span<const RGBQUAD> colors, RawPixel bgr);

// The pixel that shows 0x00RRGGBB best, and what a pixel shows.
RawPixel RawFromBgr(const Surface& surface, RawPixel bgr);
RawPixel BgrFromRaw(const Surface& surface, RawPixel pixel);

// Reads and stores one pixel, which must lie inside and is not clipped.
RawPixel ReadPixel(const Surface& surface, int x, int y);
void StorePixel(const Surface& surface, int x, int y, RawPixel pixel);

// Stores pixels x0 <= x < x1 of row y, which must lie inside and are not clipped.
void FillSpan(const Surface& surface, int y, int x0, int x1, RawPixel pixel);

}  // namespace Zelkor::Platform
