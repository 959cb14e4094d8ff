// Pixels of the six layouts: their colours, reading and storing one, filling a span of a row.

#include "kalvo/raster/surface.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "kalvo/raster/pixelaccess.h"

namespace Zelkor::Platform {
namespace {

int Component(RawPixel bgr, int shift) { return static_cast<int>(bgr >> shift & 0xFF); }

int SquaredDistance(RGBQUAD entry, RawPixel bgr) {
    const int red = entry.rgbRed - Component(bgr, 16);
    const int green = entry.rgbGreen - Component(bgr, 8);
    const int blue = entry.rgbBlue - Component(bgr, 0);
    return red * red + green * green + blue * blue;
}

template <class Access>
void FillPixels(Access, std::uint8_t* row, int x0, int x1, RawPixel pixel) {
    for (int x = x0; x < x1; ++x) Access::Store(row, x, pixel);
}

void FillPixels(Indexed8Access, std::uint8_t* row, int x0, int x1, RawPixel pixel) {
    std::memset(row + x0, static_cast<std::uint8_t>(pixel), static_cast<std::size_t>(x1 - x0));
}

// Three bytes make no machine word, but four pixels make one and a half, and 16 make three vectors. The last
// four may cover pixels again. Measured: short spans wait longer for vectors to be put together than they
// take.
void FillPixels(Bgr24Access, std::uint8_t* row, int x0, int x1, RawPixel pixel) {
    constexpr int kGroup = 4, kBlock = 16, kLong = 64;
    constexpr std::size_t kPixelBytes = 3;
    std::uint8_t* next = row + kPixelBytes * static_cast<std::size_t>(x0);
    int left = x1 - x0;
    if (left < kGroup) {
        for (int i = 0; i < left; ++i) Bgr24Access::Store(next, i, pixel);
        return;
    }
    const std::uint64_t bgr = pixel & 0xFFFFFF;
    const std::uint64_t first = bgr | bgr << 24 | bgr << 48;
    const auto rest = static_cast<std::uint32_t>(bgr >> 16 | bgr << 8);
    const auto storeGroup = [&](std::uint8_t* place) {
        std::memcpy(place, &first, sizeof first);
        std::memcpy(place + sizeof first, &rest, sizeof rest);
    };
    if (left >= kLong) {
        std::uint8_t block[kBlock * kPixelBytes];
        for (int i = 0; i < kBlock; i += kGroup)
            storeGroup(block + kPixelBytes * static_cast<std::size_t>(i));
        for (; left >= kBlock; left -= kBlock, next += sizeof block) std::memcpy(next, block, sizeof block);
    }
    for (; left >= kGroup; left -= kGroup, next += kPixelBytes * kGroup) storeGroup(next);
    if (left > 0) storeGroup(row + kPixelBytes * static_cast<std::size_t>(x1 - kGroup));
}

void FillPixels(Bits1Access, std::uint8_t* row, int x0, int x1, RawPixel pixel) {
    const int fill = pixel ? 0xFF : 0;
    const auto fillMasked = [fill](std::uint8_t& byte, int mask) {
        byte = static_cast<std::uint8_t>((byte & ~mask) | (fill & mask));
    };
    std::uint8_t* first = row + (x0 >> 3);
    std::uint8_t* last = row + ((x1 - 1) >> 3);
    const int firstMask = 0xFF >> (x0 & 7);
    const int lastMask = 0xFF << (7 - ((x1 - 1) & 7));
    if (first == last) return fillMasked(*first, firstMask & lastMask);
    fillMasked(*first, firstMask);
    std::memset(first + 1, fill, static_cast<std::size_t>(last - first - 1));
    fillMasked(*last, lastMask);
}

}  // namespace

unsigned NearestEntry(std::span<const RGBQUAD> colors, RawPixel bgr) {
    unsigned nearest = 0;
    int smallest = std::numeric_limits<int>::max();
    for (unsigned i = 0; i < colors.size() && smallest > 0; ++i) {
        const int distance = SquaredDistance(colors[i], bgr);
        if (distance >= smallest) continue;
        smallest = distance;
        nearest = i;
    }
    return nearest;
}

RawPixel RawFromBgr(const Surface& surface, RawPixel bgr) {
    switch (surface.layout) {
    case PixelLayout::Bits1:
    case PixelLayout::Indexed8:
        return NearestEntry(surface.colors, bgr);
    case PixelLayout::Rgb555:
        return Bgr555(bgr);
    case PixelLayout::Rgb565:
        return Bgr565(bgr);
    case PixelLayout::Bgr24:
    case PixelLayout::Bgrx32:
        break;
    }
    return bgr & 0xFFFFFF;
}

RawPixel BgrFromRaw(const Surface& surface, RawPixel pixel) {
    switch (surface.layout) {
    case PixelLayout::Bits1:
    case PixelLayout::Indexed8:
        // The bytes of a bitmap are its user's too: an index may lie beyond the entries.
        return pixel < surface.colors.size() ? BgrFromEntry(surface.colors[pixel]) : 0;
    case PixelLayout::Rgb555:
        return BgrFrom555(pixel);
    case PixelLayout::Rgb565:
        return BgrFrom565(pixel);
    case PixelLayout::Bgr24:
    case PixelLayout::Bgrx32:
        break;
    }
    return pixel & 0xFFFFFF;
}

RawPixel ReadPixel(const Surface& surface, int x, int y) {
    RawPixel pixel = 0;
    WithPixels(surface.layout, [&](auto access) { pixel = access.Read(surface.Row(y), x); });
    return pixel;
}

void StorePixel(const Surface& surface, int x, int y, RawPixel pixel) {
    WithPixels(surface.layout, [&](auto access) { access.Store(surface.Row(y), x, pixel); });
}

void FillSpan(const Surface& surface, int y, int x0, int x1, RawPixel pixel) {
    if (x0 >= x1) return;
    WithPixels(surface.layout, [&](auto access) { FillPixels(access, surface.Row(y), x0, x1, pixel); });
}

}  // namespace Zelkor::Platform
