// Bitmaps copied, converted, stretched, combined and mixed through contexts, whatever the numbers, against a
// slow loop over single pixels that knows the rules.

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <optional>
#include <random>
#include <vector>

#include "kalvo/gdi/gdi.h"
#include "kalvo/raster/spans.h"
#include "kalvo/raster/surface.h"
#include "fuzz/byte_source.h"
#include "fuzz/require.h"

namespace Zelkor::Platform {
namespace {

using Kalvo::Fuzzing::ByteSource;
using Kalvo::Fuzzing::Require;

constexpr PixelLayout kLayouts[] = {PixelLayout::Bits1,  PixelLayout::Indexed8, PixelLayout::Rgb555,
                                    PixelLayout::Rgb565, PixelLayout::Bgr24,    PixelLayout::Bgrx32};

// A header with all that stands behind it, and noise as pixels between guard bytes.
struct Dib {
    static constexpr std::size_t kGuard = 8;

    Dib(ByteSource& source, PixelLayout pixelLayout, int maxWidth)
        : layout(pixelLayout),
          width(source.Between(1, maxWidth)),
          height(source.Between(1, 30) * (source.Either() ? 1 : -1)),
          storage(40 + 4 * 256) {
        std::minstd_rand noise(source.Word());
        const DWORD masks[][3] = {
            {}, {}, {0x7C00, 0x3E0, 0x1F}, {0xF800, 0x7E0, 0x1F}, {}, {0xFF0000, 0xFF00, 0xFF}};
        const DWORD* mask = masks[static_cast<int>(layout)];
        const bool hasMasks = layout == PixelLayout::Rgb565 || (mask[0] && source.Either());
        Info()->bmiHeader = {40,
                             width,
                             height,
                             1,
                             static_cast<WORD>(BitsPerPixel(layout)),
                             hasMasks ? DWORD{BI_BITFIELDS} : DWORD{BI_RGB},
                             0,
                             0,
                             0,
                             0,
                             0};
        RGBQUAD* behindHeader = Info()->bmiColors;
        std::memcpy(behindHeader, mask, hasMasks ? sizeof *masks : 0);
        if (IsIndexed(layout)) {
            colors.resize(std::size_t{1} << BitsPerPixel(layout));
            const bool isRamp = source.Either();
            const int full = static_cast<int>(colors.size()), used = isRamp ? 0 : source.Between(0, full);
            Info()->bmiHeader.biClrUsed = static_cast<DWORD>(used);
            for (int i = 0; i < (used ? used : full); ++i) {
                const auto component = [&] {
                    return static_cast<BYTE>(isRamp ? static_cast<unsigned>(i * 255 / (full - 1))
                                                    : noise() >> 8);
                };
                colors[static_cast<std::size_t>(i)] = {component(), component(), component(), 0};
            }
            std::ranges::copy(colors, behindHeader);
        }
        memory.resize(2 * kGuard + PitchBytes() * static_cast<std::size_t>(std::abs(height)));
        std::ranges::generate(memory, [&] { return static_cast<std::uint8_t>(noise() >> 8); });
    }

    void TakeColorsOf(const Dib& other) {
        colors = other.colors;
        constexpr std::ptrdiff_t colorsUsed = 32;  // the field before the colours
        std::copy(other.storage.begin() + colorsUsed, other.storage.end(), storage.begin() + colorsUsed);
    }

    int Lines() const { return std::abs(height); }
    std::size_t PitchBytes() const {
        return (static_cast<std::size_t>(width * BitsPerPixel(layout)) + 31) / 32 * 4;
    }
    BITMAPINFO* Info() { return reinterpret_cast<BITMAPINFO*>(storage.data()); }
    std::uint8_t* Bits() { return memory.data() + kGuard; }

    bool HasPixels(const std::uint8_t* bits) {
        const bool hasFourth = layout == PixelLayout::Bgrx32 && !fourthCounts;
        for (std::size_t i = 0; i < memory.size() - 2 * kGuard; ++i)
            if (bits[i] != Bits()[i] && !(hasFourth && i % 4 == 3)) return false;
        return true;
    }

    Surface View(std::uint8_t* bits, int lines) const {
        const auto pitch = static_cast<std::ptrdiff_t>(PitchBytes());
        if (height < 0) return {bits, pitch, width, lines, layout, colors};
        return {bits + pitch * (lines - 1), -pitch, width, lines, layout, colors};
    }
    Surface View() { return View(Bits(), Lines()); }

    PixelLayout layout;
    int width, height;
    bool fourthCounts = false;  // else the fourth byte of 32-bit pixels is nobody's
    std::vector<RGBQUAD> colors;
    std::vector<std::uint8_t> storage, memory;
};

// A section with the same pixels as a buffer, selected into a context.
struct Target {
    Target(Dib dib, POINT viewportOrigin) : expected(std::move(dib)), origin(viewportOrigin) {
        bitmap = CreateDIBSection(nullptr, expected.Info(), DIB_RGB_COLORS, &bits);
        std::memcpy(bits, expected.Bits(), expected.memory.size() - 2 * Dib::kGuard);
        ownBitmap = SelectObject(hdc, bitmap);
        SetViewportOrgEx(hdc, origin.x, origin.y, nullptr);
    }
    Target(const Target&) = delete;
    ~Target() {
        SelectObject(hdc, ownBitmap);
        Require(DeleteObject(bitmap) && DeleteDC(hdc), "objects can be deleted");
    }

    bool HasExpectedPixels() { return expected.HasPixels(static_cast<const std::uint8_t*>(bits)); }

    Dib expected;
    POINT origin;
    void* bits = nullptr;
    HBITMAP bitmap = nullptr;
    HDC hdc = CreateCompatibleDC(nullptr);
    HGDIOBJ ownBitmap = nullptr;
};

// Sizes may be negative: then they mean the pixels up to the start, which is one of them.
struct Axis {
    std::int64_t destination, destinationSize, source, sourceSize;
};

std::optional<int> SourceOf(const Axis& axis, int pixel, int sourceLimit) {
    const std::int64_t size = std::abs(axis.destinationSize), sourceSize = std::abs(axis.sourceSize);
    std::int64_t i = pixel - axis.destination + (axis.destinationSize < 0 ? size - 1 : 0);
    if (i < 0 || i >= size || sourceSize == 0) return std::nullopt;
    if ((axis.destinationSize < 0) != (axis.sourceSize < 0)) i = size - 1 - i;
    const std::int64_t first = axis.sourceSize < 0 ? axis.source - sourceSize + 1 : axis.source;
    const auto source = first + static_cast<std::int64_t>(Int128{i} * sourceSize / size);
    if (source < 0 || source >= sourceLimit) return std::nullopt;
    return static_cast<int>(source);
}

// Two pixels that meet. The source's is also there as the destination would have it.
struct Meeting {
    const Surface &to, &from;
    int x, y, sourceX, sourceY;

    RawPixel Below() const { return ReadPixel(to, x, y); }
    RawPixel SourceBgr() const { return BgrFromRaw(from, ReadPixel(from, sourceX, sourceY)); }
    RawPixel Source() const {
        const bool same = to.layout == from.layout &&
                          std::ranges::equal(to.colors, from.colors, {}, BgrFromEntry, BgrFromEntry);
        return same ? ReadPixel(from, sourceX, sourceY) : RawFromBgr(to, SourceBgr());
    }
};

template <class PixelOf>
void SlowBlit(const Surface& to, const Surface& from, const Axis& columns, const Axis& rows,
              PixelOf pixelOf) {
    for (int y = 0; y < to.height; ++y) {
        const auto sourceY = SourceOf(rows, y, from.height);
        for (int x = 0; sourceY && x < to.width; ++x)
            if (const auto sourceX = SourceOf(columns, x, from.width))
                StorePixel(to, x, y, pixelOf(Meeting{to, from, x, y, *sourceX, *sourceY}));
    }
}

void SlowBlit(const Surface& to, const Surface& from, const Axis& columns, const Axis& rows) {
    SlowBlit(to, from, columns, rows, [](const Meeting& pixels) { return pixels.Source(); });
}

int Rounded255(int product) { return static_cast<int>(std::lround(product / 255.0)); }

RawPixel Mixed(const Meeting& pixels, int alpha) {
    if (alpha == 255) return pixels.Source();
    if (alpha == 0) return pixels.Below();
    RawPixel mixed = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const int s = pixels.SourceBgr() >> shift & 0xFF;
        const int d = BgrFromRaw(pixels.to, pixels.Below()) >> shift & 0xFF;
        mixed |= static_cast<RawPixel>(Rounded255(s * alpha + d * (255 - alpha))) << shift;
    }
    return RawFromBgr(pixels.to, mixed);
}

// From a source of 32 bits; of destinations like it the fourth byte, too.
RawPixel MixedPremultiplied(const Meeting& pixels, int alpha) {
    const std::uint8_t* s = pixels.from.Row(pixels.sourceY) + 4 * pixels.sourceX;
    const bool hasFourth = pixels.to.layout == PixelLayout::Bgrx32;
    std::uint32_t below = BgrFromRaw(pixels.to, pixels.Below()), mixed = 0;
    if (hasFourth) std::memcpy(&below, pixels.to.Row(pixels.y) + 4 * pixels.x, 4);
    for (int i = 0; i < 4; ++i) {
        const int d = below >> 8 * i & 0xFF, rest = 255 - Rounded255(s[3] * alpha);
        const int sum = Rounded255(s[i] * alpha) + Rounded255(d * rest);
        mixed |= static_cast<RawPixel>(std::min(sum, 255)) << 8 * i;
    }
    return hasFourth ? mixed : RawFromBgr(pixels.to, mixed & 0xFFFFFF);
}

// Bit by bit, as the codes of operations are defined.
RawPixel Combined(DWORD code, RawPixel pattern, RawPixel source, RawPixel below, PixelLayout layout) {
    RawPixel result = 0;
    for (int bit = 0; bit < std::min(BitsPerPixel(layout), 24); ++bit) {
        const RawPixel place = (pattern >> bit & 1) << 2 | (source >> bit & 1) << 1 | (below >> bit & 1);
        result |= (code >> 16 >> place & 1) << bit;
    }
    return result;
}

// A number that is mostly small, but may be any.
int AnyNumber(ByteSource& source, int low, int high) {
    constexpr int kExtremes[] = {INT_MIN, INT_MIN + 1, -1'000'000'000, 1'000'000'000, INT_MAX - 1, INT_MAX};
    if (source.OneIn(24)) return kExtremes[source.Between(0, 5)];
    return source.OneIn(24) ? static_cast<int>(source.Word()) : source.Between(low, high);
}

int Minus(int number, LONG origin) {
    return static_cast<int>(static_cast<unsigned>(number) - static_cast<unsigned>(origin));
}
bool WouldWrap(int number, LONG origin) {
    const std::int64_t exact = std::int64_t{number} - origin;
    return exact < INT_MIN || exact > INT_MAX;
}

void CheckStretch(ByteSource& source, Dib& dib, Target& target) {
    const bool zooms = !source.OneIn(4);
    const int x = AnyNumber(source, -20, 60), y = AnyNumber(source, -20, 30);
    const int fromX = AnyNumber(source, -9, 40), scan = AnyNumber(source, -9, 20);
    const int width = AnyNumber(source, -90, 90), height = AnyNumber(source, -60, 60);
    const int columns = zooms ? AnyNumber(source, -70, 70) : width;
    const int scans = zooms ? AnyNumber(source, -40, 40) : height;
    if (WouldWrap(x, target.origin.x) || WouldWrap(y, target.origin.y)) return;
    // From the top, a negative number of scans starts at its lowest, too.
    const std::int64_t fromTop = std::int64_t{dib.Lines()} - scan - scans - (scans < 0 ? 2 : 0);
    SlowBlit(target.expected.View(), dib.View(), {x, width, fromX, columns}, {y, height, fromTop, scans});
    Require(
        StretchDIBits(target.hdc, Minus(x, target.origin.x), Minus(y, target.origin.y), width, height, fromX,
                      scan, columns, scans, dib.Bits(), dib.Info(), DIB_RGB_COLORS, SRCCOPY) == dib.Lines(),
        "StretchDIBits returns the scans of the source");
}

void CheckToDevice(ByteSource& source, Dib& dib, Target& target) {
    const int start = source.Between(0, dib.Lines() - 1), lines = source.Between(1, dib.Lines() - start);
    // A buffer of its own, so that nothing stands around the scans.
    std::vector<std::uint8_t> scans(dib.Bits(),
                                    dib.Bits() + dib.PitchBytes() * static_cast<std::size_t>(lines));
    const int x = source.Between(-20, 40), y = source.Between(-20, 20), fromX = source.Between(-9, 40),
              scan = source.Between(-9, 20);
    const int width = source.Either() ? 2000 : source.Between(0, 60), height = source.Between(0, 40);
    const int fromTop = start + lines - scan - height;  // of the buffer
    SlowBlit(target.expected.View(), dib.View(scans.data(), lines), {x, width, fromX, width},
             {y, height, fromTop, height});
    const int claimed = start + lines == dib.Lines() ? 1000000 : lines;
    Require(SetDIBitsToDevice(target.hdc, x - target.origin.x, y - target.origin.y, static_cast<DWORD>(width),
                              static_cast<DWORD>(height), fromX, scan, static_cast<UINT>(start),
                              static_cast<UINT>(claimed), scans.data(), dib.Info(), DIB_RGB_COLORS) == lines,
            "SetDIBitsToDevice reads only the scans that the buffer has");
}

// Scans count from the bottom of both.
void CheckSetAndGet(ByteSource& source, Dib& buffer, Target& target) {
    const int bitmapHeight = target.expected.Lines();
    const int start = source.Between(0, buffer.Lines() - 1),
              lines = source.Between(1, buffer.Lines() - start);
    const int copied = std::clamp(bitmapHeight - start, 0, lines);
    const auto rowsOf = [&](int to, int from) { return Axis{to, copied, from, copied}; };
    const int inBuffer = lines - copied, inBitmap = bitmapHeight - start - copied;
    const Axis columns{0, 2000, 0, 2000};
    const auto view = [&](Dib& dib) { return dib.View(dib.Bits(), lines); };
    const UINT first = static_cast<UINT>(start), count = static_cast<UINT>(lines);

    SlowBlit(target.expected.View(), view(buffer), columns, rowsOf(inBitmap, inBuffer));
    Require(SetDIBits(nullptr, target.bitmap, first, count, buffer.Bits(), buffer.Info(), 0) == copied,
            "SetDIBits returns the scans that it copied");
    Dib actual = buffer;
    Require(GetDIBits(target.hdc, target.bitmap, first, count, actual.Bits(), actual.Info(), 0) == copied,
            "GetDIBits returns the scans that it copied");
    if (IsIndexed(buffer.layout)) {
        const RGBQUAD* table = actual.Info()->bmiColors;
        const std::size_t full = buffer.colors.size(), used = actual.Info()->bmiHeader.biClrUsed;
        buffer.colors.assign(table, table + (used ? used : full));
        const bool own = target.expected.layout == buffer.layout;
        for (std::size_t i = 0; i < buffer.colors.size(); ++i)
            Require(BgrFromEntry(table[i]) ==
                        (own ? BgrFromEntry(target.expected.colors[i]) : i * 255 / (full - 1) * 0x010101),
                    "GetDIBits gives the bitmap's own colours, or a ramp");
    }
    SlowBlit(view(buffer), target.expected.View(), columns, rowsOf(inBuffer, inBitmap));
    Require(buffer.HasPixels(actual.Bits()), "GetDIBits converts every pixel");
    Require(std::equal(actual.memory.end() - Dib::kGuard, actual.memory.end(),
                       buffer.memory.end() - Dib::kGuard) &&
                std::equal(actual.Bits() - Dib::kGuard, actual.Bits(), buffer.Bits() - Dib::kGuard),
            "GetDIBits keeps to its buffer");
}

void CheckAlpha(ByteSource& source, Dib& other, Target& target) {
    const bool isOwn = source.OneIn(4);  // mixed within one bitmap
    Dib dib = isOwn ? target.expected : other;
    const Target another(dib, {source.Between(-9, 9), source.Between(-9, 9)}),
        &from = isOwn ? target : another;
    const int alphas[] = {0, 255, 128, source.Between(1, 254)}, alpha = alphas[source.Between(0, 3)];
    const int width = source.Between(1, dib.width), height = source.Between(1, dib.Lines());
    const int fromX = source.Between(0, dib.width - width), fromY = source.Between(0, dib.Lines() - height);
    const int zoomed = source.Either() ? width : source.Between(0, 90);
    const int x = source.Between(-20, 40), y = source.Between(-20, 20);
    const bool isPremultiplied = dib.layout == PixelLayout::Bgrx32 && source.Either();
    target.expected.fourthCounts = isPremultiplied;
    SlowBlit(target.expected.View(), dib.View(), {x, zoomed, fromX, width}, {y, 25, fromY, height},
             [&](const Meeting& pixels) {
                 return isPremultiplied ? MixedPremultiplied(pixels, alpha) : Mixed(pixels, alpha);
             });
    const auto draw = [&](int sourceX, int columns, int to, BLENDFUNCTION blend) {
        return AlphaBlend(target.hdc, x - target.origin.x, y - target.origin.y, to, 25, from.hdc,
                          sourceX - from.origin.x, fromY - from.origin.y, columns, height, blend);
    };
    const BYTE format = isPremultiplied ? AC_SRC_ALPHA : BYTE{0};
    const BLENDFUNCTION blend{AC_SRC_OVER, 0, static_cast<BYTE>(alpha), format};
    Require(draw(fromX, width, zoomed, blend), "AlphaBlend draws");
    const bool takes = draw(fromX, dib.width - fromX + 1, zoomed, blend) || draw(-1, width, zoomed, blend) ||
                       draw(fromX, -1, zoomed, blend) || draw(fromX, width, -1, blend) ||
                       draw(fromX, width, zoomed, {AC_SRC_OVER, 0, 200, 2}) ||
                       draw(fromX, width, zoomed, {1, 0, 200, 0}) ||
                       (dib.layout != PixelLayout::Bgrx32 &&
                        draw(fromX, width, zoomed, {AC_SRC_OVER, 0, 200, AC_SRC_ALPHA}));
    Require(!takes, "AlphaBlend refuses what lies outside and what it does not know");
}

// A source that is a section, a buffer or the destination itself; a brush; every other time an odd clip.
void CheckOperation(ByteSource& source, Dib& other, Target& target) {
    enum { Copied, Stretched, FromBuffer, WithPattern };
    const int kind = source.Between(Copied, WithPattern);
    const bool isOwn = kind != FromBuffer && source.OneIn(3);
    Dib dib = isOwn ? target.expected : other;
    const Target another(dib, {source.Between(-9, 9), source.Between(-9, 9)}),
        &from = isOwn ? target : another;
    DWORD code = source.OneIn(3) ? SRCCOPY : static_cast<DWORD>(source.Byte()) << 16;
    if (kind == WithPattern) code = (code & 0xCC0000) | (code >> 2 & 0x330000);
    const auto color = static_cast<COLORREF>(source.Between(0, 0xFFFFFF));
    const HBRUSH brush = CreateSolidBrush(color);
    const HGDIOBJ before = SelectObject(target.hdc, brush);
    const int x = source.Between(-20, 60), y = source.Between(-20, 30);
    const int fromX = source.Between(-9, 40), fromY = source.Between(-9, 20);
    const int width = source.Between(-90, 90), height = source.Between(-60, 60);
    const int columns = kind == Copied || source.Either() ? width : source.Between(-70, 70);
    const int rows = kind == Copied || source.Either() ? height : source.Between(-40, 40);

    const HRGN clip = CreateRectRgn(3, 2, 300, 20), hole = CreateRectRgn(9, 4, 21, 12);
    CombineRgn(clip, clip, hole, RGN_DIFF);
    if (source.Either()) SetRectRgn(clip, -1000, -1000, 3000, 1000);
    SelectClipRgn(target.hdc, clip);

    const Surface to = target.expected.View();
    const RawPixel pattern = RawFromBgr(to, BgrFromColor(color));
    const bool usesSource = ((code >> 2 ^ code) & 0x330000) != 0;
    SlowBlit(to, usesSource ? dib.View() : to,
             usesSource ? Axis{x, width, fromX, columns} : Axis{x, width, x, width},
             usesSource ? Axis{y, height, fromY, rows} : Axis{y, height, y, height},
             [&](const Meeting& pixels) {
                 if (!PtInRegion(clip, pixels.x, pixels.y)) return pixels.Below();
                 const RawPixel bits = usesSource ? pixels.Source() : 0;
                 return Combined(code, pattern, bits, pixels.Below(), to.layout);
             });
    const int placeX = x - target.origin.x, placeY = y - target.origin.y;
    const int sourceX = fromX - from.origin.x, sourceY = fromY - from.origin.y;
    const HDC fromContext = usesSource ? from.hdc : nullptr;
    if (kind == FromBuffer) {
        const int scan = dib.Lines() - fromY - rows - (rows < 0 ? 2 : 0);
        StretchDIBits(target.hdc, placeX, placeY, width, height, fromX, scan, columns, rows, dib.Bits(),
                      dib.Info(), DIB_RGB_COLORS, code);
    } else if (kind == WithPattern) {
        Require(PatBlt(target.hdc, placeX, placeY, width, height, code), "PatBlt draws");
    } else if (kind == Copied) {
        Require(BitBlt(target.hdc, placeX, placeY, width, height, fromContext, sourceX, sourceY, code),
                "BitBlt draws");
    } else {
        Require(StretchBlt(target.hdc, placeX, placeY, width, height, fromContext, sourceX, sourceY, columns,
                           rows, code),
                "StretchBlt draws");
    }
    Require(
        !PatBlt(target.hdc, 0, 0, 9, 9, SRCCOPY) && !BitBlt(target.hdc, 0, 0, 9, 9, nullptr, 0, 0, SRCAND),
        "an operation with a source needs one");
    SelectObject(target.hdc, GetStockObject(NULL_BRUSH));
    Require(PatBlt(target.hdc, 0, 0, 9, 9, PATINVERT), "without a brush PatBlt draws nothing");
    SelectObject(target.hdc, before);
    Require(DeleteObject(brush) && DeleteObject(clip) && DeleteObject(hole), "objects can be deleted");
}

void (*const kChecks[])(ByteSource&, Dib&, Target&) = {CheckStretch, CheckToDevice, CheckSetAndGet,
                                                       CheckAlpha, CheckOperation};

void Check(ByteSource& source) {
    const auto check = kChecks[source.Between(0, static_cast<int>(std::size(kChecks)) - 1)];
    const int maxWidth = source.OneIn(30) ? 1700 : 70;
    Dib dib(source, kLayouts[source.Between(0, 5)], maxWidth);
    Dib destination(source, kLayouts[source.Between(0, 5)], maxWidth);
    if (dib.layout == destination.layout && IsIndexed(dib.layout) && source.Either())
        destination.TakeColorsOf(dib);
    Target target(std::move(destination), {source.Between(-9, 9), source.Between(-9, 9)});
    check(source, dib, target);
    Require(target.HasExpectedPixels(), "every pixel is what the rules say");
}

}  // namespace
}  // namespace Zelkor::Platform

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    Zelkor::Kalvo::Fuzzing::ByteSource source(bytes, count);
    Zelkor::Platform::Check(source);
    return 0;
}
