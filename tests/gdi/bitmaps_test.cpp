// Bitmaps copied, converted, stretched and mixed, against a slow loop over single pixels that knows the
// rules.

#include "tests/support/test.h"

#include "kalvo/raster/surface.h"

namespace Zelkor::Platform {
namespace {

constexpr PixelLayout kLayouts[] = {PixelLayout::Bits1,  PixelLayout::Indexed8, PixelLayout::Rgb555,
                                    PixelLayout::Rgb565, PixelLayout::Bgr24,    PixelLayout::Bgrx32};

std::minstd_rand randomSource;
int Between(int low, int high) { return std::uniform_int_distribution(low, high)(randomSource); }

BITMAPINFOHEADER Header(LONG width, LONG height, WORD bits, DWORD compression, DWORD size = 40,
                        WORD planes = 1) {
    return {size, width, height, planes, bits, compression, 0, 0, 0, 0, 0};
}

// A header with all that stands behind it, and random pixels between guard bytes.
struct Dib {
    static constexpr std::size_t kGuard = 8;

    Dib(PixelLayout pixelLayout, int columns, int signedHeight)
        : layout(pixelLayout), width(columns), height(signedHeight), storage(40 + 4 * 256) {
        const DWORD masks[][3] = {
            {}, {}, {0x7C00, 0x3E0, 0x1F}, {0xF800, 0x7E0, 0x1F}, {}, {0xFF0000, 0xFF00, 0xFF}};
        const DWORD* mask = masks[static_cast<int>(layout)];
        const bool hasMasks = layout == PixelLayout::Rgb565 || (mask[0] && Between(0, 1));
        Info()->bmiHeader =
            Header(width, height, WORD(BitsPerPixel(layout)), hasMasks ? BI_BITFIELDS : BI_RGB);
        RGBQUAD* behindHeader = Info()->bmiColors;
        std::memcpy(behindHeader, mask, hasMasks ? sizeof *masks : 0);
        if (IsIndexed(layout)) {
            colors.resize(std::size_t{1} << BitsPerPixel(layout));
            const bool isRamp = Between(0, 1) == 1;
            const int full = static_cast<int>(colors.size()), used = isRamp ? 0 : Between(0, full);
            Info()->bmiHeader.biClrUsed = static_cast<DWORD>(used);
            for (int i = 0; i < (used ? used : full); ++i) {
                const auto component = [&] { return BYTE(isRamp ? i * 255 / (full - 1) : Between(0, 255)); };
                colors[i] = {component(), component(), component(), 0};
            }
            std::ranges::copy(colors, behindHeader);
        }
        memory.resize(2 * kGuard + PitchBytes() * std::abs(height));
        std::ranges::generate(memory, [] { return static_cast<std::uint8_t>(Between(0, 255)); });
    }

    void TakeColorsOf(const Dib& other) {
        colors = other.colors;
        constexpr std::ptrdiff_t colorsUsed = 32;  // the field before the colours
        std::copy(other.storage.begin() + colorsUsed, other.storage.end(), storage.begin() + colorsUsed);
    }

    std::size_t PitchBytes() const { return (std::size_t(width) * BitsPerPixel(layout) + 31) / 32 * 4; }
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
    Surface View() { return View(Bits(), std::abs(height)); }

    PixelLayout layout;
    int width, height;
    bool fourthCounts = false;  // else the fourth byte of 32-bit pixels is nobody's
    std::vector<RGBQUAD> colors;
    std::vector<std::uint8_t> storage, memory;
};

Dib RandomDib(PixelLayout layout, int maxWidth = 70) {
    return {layout, Between(1, maxWidth), Between(1, 30) * (Between(0, 1) ? 1 : -1)};
}

// A section with the same pixels as a buffer, selected into a context.
struct Target {
    explicit Target(Dib dib) : expected(std::move(dib)) {
        bitmap = CreateDIBSection(nullptr, expected.Info(), DIB_RGB_COLORS, &bits);
        std::memcpy(bits, expected.Bits(), expected.memory.size() - 2 * Dib::kGuard);
        ownBitmap = SelectObject(hdc, bitmap);
        SetViewportOrgEx(hdc, origin.x, origin.y, nullptr);
    }
    Target(const Target&) = delete;
    ~Target() {
        SelectObject(hdc, ownBitmap);
        EXPECT_TRUE(DeleteObject(bitmap) && DeleteDC(hdc));
    }

    int Stretch(int x, int y, int columns, int rows, Dib& source, int sourceX, int scan, int sourceColumns,
                int scans, DWORD operation = SRCCOPY) const {
        return StretchDIBits(hdc, x - origin.x, y - origin.y, columns, rows, sourceX, scan, sourceColumns,
                             scans, source.Bits(), source.Info(), DIB_RGB_COLORS, operation);
    }

    bool HasExpectedPixels() { return expected.HasPixels(static_cast<const std::uint8_t*>(bits)); }

    Dib expected;
    void* bits = nullptr;
    HBITMAP bitmap = nullptr;
    HDC hdc = CreateCompatibleDC(nullptr);
    HGDIOBJ ownBitmap = nullptr;
    POINT origin{Between(-9, 9), Between(-9, 9)};
};

// Sizes may be negative: then they mean the pixels up to the start, which is one of them.
struct Axis {
    std::int64_t destination, destinationSize, source, sourceSize;
};

std::optional<int> SourceOf(const Axis& axis, int pixel, int sourceLimit) {
    const std::int64_t size = std::abs(axis.destinationSize), sourceSize = std::abs(axis.sourceSize);
    std::int64_t i = pixel - axis.destination + (axis.destinationSize < 0 ? size - 1 : 0);
    if (i < 0 || i >= size) return std::nullopt;
    if ((axis.destinationSize < 0) != (axis.sourceSize < 0)) i = size - 1 - i;
    const std::int64_t first = axis.sourceSize < 0 ? axis.source - sourceSize + 1 : axis.source;
    const std::int64_t source = first + i * sourceSize / size;
    if (sourceSize == 0 || source < 0 || source >= sourceLimit) return std::nullopt;
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
        for (int x = 0; sourceY && x < to.width; ++x) {
            if (const auto sourceX = SourceOf(columns, x, from.width))
                StorePixel(to, x, y, pixelOf(Meeting{to, from, x, y, *sourceX, *sourceY}));
        }
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

// Every pair of layouts, some also with rows that are long.
template <class Test>
void ForEachPair(Test test) {
    for (const PixelLayout from : kLayouts)
        for (const PixelLayout to : kLayouts)
            for (int round = 0; round < 30; ++round) {
                const int maxWidth = round == 0 ? 1700 : 70;
                Dib source = RandomDib(from, maxWidth);
                Dib destination = RandomDib(to, maxWidth);
                if (round % 2 == 1 && from == to && IsIndexed(to)) destination.TakeColorsOf(source);
                Target target(std::move(destination));
                test(source, target);
                ASSERT_TRUE(target.HasExpectedPixels())
                    << BitsPerPixel(from) << " to " << BitsPerPixel(to) << ", round " << round;
            }
}

TEST(GdiBitmaps, StretchDIBitsTakesTheFlooredPixelInEveryLayout) {
    ForEachPair([](Dib& source, Target& target) {
        const bool zoom = Between(0, 3) > 0;
        const int x = Between(-20, 60), y = Between(-20, 30), fromX = Between(-9, 40), scan = Between(-9, 20);
        const int width = Between(-90, 90), height = Between(-60, 60), total = std::abs(source.height);
        const int columns = zoom ? Between(-70, 70) : width, scans = zoom ? Between(-40, 40) : height;
        // From the top, a negative number of scans starts at its lowest, too.
        const int fromTop = total - scan - scans - (scans < 0 ? 2 : 0);
        SlowBlit(target.expected.View(), source.View(), {x, width, fromX, columns},
                 {y, height, fromTop, scans});
        EXPECT_EQ(target.Stretch(x, y, width, height, source, fromX, scan, columns, scans), total);
    });
}

TEST(GdiBitmaps, NegativeExtentsCoverThePixelsUpToTheirStart) {
    const struct {
        int x, width, sourceX, sourceWidth;
        const char *across, *down;  // scans count from the bottom
    } cases[] = {{3, -4, 0, 4, "DCBA..", "DCBA.."},  {0, 4, 3, -4, "DCBA..", "DCBA.."},
                 {3, -4, 3, -4, "ABCD..", "ABCD.."}, {1, -2, 2, -2, "BC....", "BC...."},
                 {5, -6, 3, -3, "BBCCDD", "AABBCC"}, {2, -1, 3, -1, "..D...", "..A..."}};
    for (const auto& c : cases) {
        for (const bool isColumn : {false, true}) {
            Dib source(PixelLayout::Bgr24, isColumn ? 1 : 4, isColumn ? -4 : -1);
            Target target(Dib(PixelLayout::Bgr24, isColumn ? 1 : 6, isColumn ? -6 : -1));
            const auto pixelAt = [&](const Surface& surface, int i) {
                return isColumn ? ReadPixel(surface, 0, i) : ReadPixel(surface, i, 0);
            };
            const char* const expected = isColumn ? c.down : c.across;
            for (int i = 0; i < 6; ++i) {
                if (expected[i] != '.')
                    StorePixel(target.expected.View(), isColumn ? 0 : i, isColumn ? i : 0,
                               pixelAt(source.View(), expected[i] - 'A'));
            }
            isColumn ? target.Stretch(0, c.x, 1, c.width, source, 0, c.sourceX, 1, c.sourceWidth)
                     : target.Stretch(c.x, 0, c.width, 1, source, c.sourceX, 0, c.sourceWidth, 1);
            EXPECT_TRUE(target.HasExpectedPixels()) << c.x << ", " << c.width << (isColumn ? " down" : "");
        }
    }
}

TEST(GdiBitmaps, SetDIBitsToDeviceReadsOnlyTheScansThatTheBufferHas) {
    ForEachPair([](Dib& source, Target& target) {
        const int total = std::abs(source.height);
        const int start = Between(0, total - 1), lines = Between(1, total - start);
        // A buffer of its own, so that nothing stands around the scans.
        std::vector<std::uint8_t> scans(source.Bits(), source.Bits() + source.PitchBytes() * lines);
        const int x = Between(-20, 40), y = Between(-20, 20), fromX = Between(-9, 40), scan = Between(-9, 20);
        const int width = Between(0, 1) ? 2000 : Between(0, 60), height = Between(0, 40);
        const int fromTop = start + lines - scan - height;  // of the buffer
        SlowBlit(target.expected.View(), source.View(scans.data(), lines), {x, width, fromX, width},
                 {y, height, fromTop, height});
        const UINT claimed = start + lines == total ? 1000000 : lines;
        EXPECT_EQ(SetDIBitsToDevice(target.hdc, x - target.origin.x, y - target.origin.y, width, height,
                                    fromX, scan, start, claimed, scans.data(), source.Info(), DIB_RGB_COLORS),
                  lines);
    });
}

TEST(GdiBitmaps, SetAndGetDIBitsCountScansFromTheBottomOfBoth) {
    ForEachPair([](Dib& buffer, Target& target) {
        const int total = std::abs(buffer.height), bitmapHeight = std::abs(target.expected.height);
        const int start = Between(0, total - 1), lines = Between(1, total - start);
        const int copied = std::clamp(bitmapHeight - start, 0, lines);
        const auto rowsOf = [&](int to, int from) { return Axis{to, copied, from, copied}; };
        const int inBuffer = lines - copied, inBitmap = bitmapHeight - start - copied;
        const Axis columns{0, 2000, 0, 2000};
        const auto view = [&](Dib& dib) { return dib.View(dib.Bits(), lines); };

        SlowBlit(target.expected.View(), view(buffer), columns, rowsOf(inBitmap, inBuffer));
        EXPECT_EQ(SetDIBits(nullptr, target.bitmap, start, lines, buffer.Bits(), buffer.Info(), 0), copied);
        if (!target.HasExpectedPixels()) return;

        Dib actual = buffer;
        EXPECT_EQ(GetDIBits(target.hdc, target.bitmap, start, lines, actual.Bits(), actual.Info(), 0),
                  copied);
        if (IsIndexed(buffer.layout)) {
            const RGBQUAD* table = actual.Info()->bmiColors;
            const std::size_t full = buffer.colors.size(), used = actual.Info()->bmiHeader.biClrUsed;
            buffer.colors.assign(table, table + (used ? used : full));
            const bool own = target.expected.layout == buffer.layout;
            for (std::size_t i = 0; i < buffer.colors.size(); ++i)
                ASSERT_EQ(BgrFromEntry(table[i]),
                          own ? BgrFromEntry(target.expected.colors[i]) : i * 255 / (full - 1) * 0x010101);
        }
        SlowBlit(view(buffer), target.expected.View(), columns, rowsOf(inBuffer, inBitmap));
        ASSERT_TRUE(buffer.HasPixels(actual.Bits()));
        ASSERT_TRUE(std::equal(actual.memory.end() - Dib::kGuard, actual.memory.end(),
                               buffer.memory.end() - Dib::kGuard));
        ASSERT_TRUE(std::equal(actual.Bits() - Dib::kGuard, actual.Bits(), buffer.Bits() - Dib::kGuard));
    });
}

TEST(GdiBitmaps, AlphaBlendMixesRoundedAlsoWithinOneBitmap) {
    ForEachPair([](const Dib& other, Target& target) {
        const bool isOwn = Between(0, 3) == 0;
        Dib dib = isOwn ? target.expected : other;
        const Target another(dib), &source = isOwn ? target : another;
        const int alphas[] = {0, 255, 128, Between(1, 254)}, alpha = alphas[Between(0, 3)];
        const int total = std::abs(dib.height), width = Between(1, dib.width), height = Between(1, total);
        const int fromX = Between(0, dib.width - width), fromY = Between(0, total - height);
        const int zoomed = Between(0, 1) ? width : Between(0, 90), x = Between(-20, 40), y = Between(-20, 20);
        const bool isPremultiplied = dib.layout == PixelLayout::Bgrx32 && Between(0, 1);
        target.expected.fourthCounts = isPremultiplied;
        SlowBlit(target.expected.View(), dib.View(), {x, zoomed, fromX, width}, {y, 25, fromY, height},
                 [&](const Meeting& pixels) {
                     return isPremultiplied ? MixedPremultiplied(pixels, alpha) : Mixed(pixels, alpha);
                 });
        const auto draw = [&](int sourceX, int columns, int to, BLENDFUNCTION blend) {
            return AlphaBlend(target.hdc, x - target.origin.x, y - target.origin.y, to, 25, source.hdc,
                              sourceX - source.origin.x, fromY - source.origin.y, columns, height, blend);
        };
        const BYTE format = isPremultiplied ? AC_SRC_ALPHA : BYTE{0};
        const BLENDFUNCTION blend{AC_SRC_OVER, 0, static_cast<BYTE>(alpha), format};
        EXPECT_TRUE(draw(fromX, width, zoomed, blend));
        EXPECT_FALSE(draw(fromX, dib.width - fromX + 1, zoomed, blend) || draw(-1, width, zoomed, blend));
        EXPECT_FALSE(draw(fromX, -1, zoomed, blend) || draw(fromX, width, -1, blend));
        EXPECT_FALSE(draw(fromX, width, zoomed, {AC_SRC_OVER, 0, 200, 2}));
        EXPECT_FALSE(dib.layout != PixelLayout::Bgrx32 &&
                     draw(fromX, width, zoomed, {AC_SRC_OVER, 0, 200, AC_SRC_ALPHA}));
        EXPECT_FALSE(draw(fromX, width, zoomed, {1, 0, 200, 0}));
    });
}

// A source that is a section, a buffer or the destination itself; a brush; every other time an odd clip.
TEST(GdiBitmaps, EveryOperationCombinesBitsInEveryLayout) {
    ForEachPair([](Dib& other, Target& target) {
        enum { Copied, Stretched, FromBuffer, Pattern, Kinds };
        const int kind = Between(0, Kinds - 1);
        const bool isOwn = kind != FromBuffer && Between(0, 2) == 0;
        Dib dib = isOwn ? target.expected : other;
        const Target another(dib), &source = isOwn ? target : another;
        DWORD code = Between(0, 2) ? static_cast<DWORD>(Between(0, 255)) << 16 : SRCCOPY;
        if (kind == Pattern) code = (code & 0xCC0000) | (code >> 2 & 0x330000);
        const auto color = static_cast<COLORREF>(Between(0, 0xFFFFFF));
        const HBRUSH brush = CreateSolidBrush(color);
        const HGDIOBJ before = SelectObject(target.hdc, brush);
        const int total = std::abs(dib.height);
        const int x = Between(-20, 60), y = Between(-20, 30), fromX = Between(-9, 40),
                  fromY = Between(-9, 20);
        const int width = Between(-90, 90), height = Between(-60, 60);
        const int columns = kind == Copied || Between(0, 1) ? width : Between(-70, 70);
        const int rows = kind == Copied || Between(0, 1) ? height : Between(-40, 40);

        const HRGN clip = CreateRectRgn(3, 2, 300, 20), hole = CreateRectRgn(9, 4, 21, 12);
        CombineRgn(clip, clip, hole, RGN_DIFF);
        if (Between(0, 1)) SetRectRgn(clip, -1000, -1000, 3000, 1000);
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
        const int sourceX = fromX - source.origin.x, sourceY = fromY - source.origin.y;
        const HDC from = usesSource ? source.hdc : nullptr;
        if (kind == FromBuffer) {
            const int scan = total - fromY - rows - (rows < 0 ? 2 : 0);
            EXPECT_EQ(target.Stretch(x, y, width, height, dib, fromX, scan, columns, rows, code), total);
        } else if (kind == Pattern) {
            EXPECT_TRUE(PatBlt(target.hdc, placeX, placeY, width, height, code));
        } else if (kind == Copied) {
            EXPECT_TRUE(BitBlt(target.hdc, placeX, placeY, width, height, from, sourceX, sourceY, code));
        } else {
            EXPECT_TRUE(StretchBlt(target.hdc, placeX, placeY, width, height, from, sourceX, sourceY, columns,
                                   rows, code));
        }
        EXPECT_FALSE(PatBlt(target.hdc, 0, 0, 9, 9, SRCCOPY) ||
                     BitBlt(target.hdc, 0, 0, 9, 9, nullptr, 0, 0, SRCAND));
        SelectObject(target.hdc, GetStockObject(NULL_BRUSH));
        EXPECT_TRUE(PatBlt(target.hdc, 0, 0, 9, 9, PATINVERT)) << "draws nothing";
        SelectObject(target.hdc, before);
        EXPECT_TRUE(DeleteObject(brush) && DeleteObject(clip) && DeleteObject(hole));
    });
}

TEST(GdiBitmaps, NamedOperationsAreWhatTheySay) {
    const struct {
        DWORD code;
        RawPixel (*combine)(RawPixel p, RawPixel s, RawPixel d);
    } cases[] = {{SRCCOPY, [](RawPixel, RawPixel s, RawPixel) { return s; }},
                 {SRCPAINT, [](RawPixel, RawPixel s, RawPixel d) { return s | d; }},
                 {SRCAND, [](RawPixel, RawPixel s, RawPixel d) { return s & d; }},
                 {SRCINVERT, [](RawPixel, RawPixel s, RawPixel d) { return s ^ d; }},
                 {SRCERASE, [](RawPixel, RawPixel s, RawPixel d) { return s & ~d; }},
                 {NOTSRCCOPY, [](RawPixel, RawPixel s, RawPixel) { return ~s; }},
                 {NOTSRCERASE, [](RawPixel, RawPixel s, RawPixel d) { return ~(s | d); }},
                 {MERGECOPY, [](RawPixel p, RawPixel s, RawPixel) { return p & s; }},
                 {MERGEPAINT, [](RawPixel, RawPixel s, RawPixel d) { return ~s | d; }},
                 {PATCOPY, [](RawPixel p, RawPixel, RawPixel) { return p; }},
                 {PATPAINT, [](RawPixel p, RawPixel s, RawPixel d) { return p | ~s | d; }},
                 {PATINVERT, [](RawPixel p, RawPixel, RawPixel d) { return p ^ d; }},
                 {DSTINVERT, [](RawPixel, RawPixel, RawPixel d) { return ~d; }},
                 {BLACKNESS, [](RawPixel, RawPixel, RawPixel) { return RawPixel{0}; }},
                 {WHITENESS, [](RawPixel, RawPixel, RawPixel) { return ~RawPixel{0}; }}};
    constexpr RawPixel p = 0xF0F0F0, s = 0xCCCCCC, d = 0xAAAAAA;
    for (const auto& c : cases)
        EXPECT_EQ(Combined(c.code, p, s, d, PixelLayout::Bgr24), c.combine(p, s, d) & 0xFFFFFF)
            << std::hex << c.code;
}

TEST(GdiBitmaps, BitsOfDeviceBitmapsAreTextAndBackground) {
    constexpr COLORREF kText = RGB(255, 0, 0), kBack = RGB(0, 0, 255);
    const std::uint8_t stripes[] = {0xA0, 0, 0x50, 0};
    Target target(Dib(PixelLayout::Bgrx32, 4, -4));
    SetViewportOrgEx(target.hdc, 0, 0, nullptr);
    SetTextColor(target.hdc, kText);
    SetBkColor(target.hdc, kBack);
    const HDC bits = CreateCompatibleDC(target.hdc), others = CreateCompatibleDC(target.hdc);
    const HBITMAP bitmap = CreateBitmap(4, 2, 1, 1, stripes), copy = CreateCompatibleBitmap(bits, 4, 2);
    SelectObject(bits, bitmap);
    SelectObject(others, copy);
    const auto row = [](HDC hdc, int y) {
        std::vector<COLORREF> colors;
        for (int x = 0; x < 4; ++x) colors.push_back(GetPixel(hdc, x, y));
        return colors;
    };
    constexpr COLORREF white = RGB(255, 255, 255), black = 0;
    EXPECT_TRUE(BitBlt(target.hdc, 0, 0, 4, 2, bits, 0, 0, SRCCOPY));
    EXPECT_EQ(row(target.hdc, 0), std::vector({kBack, kText, kBack, kText}));
    EXPECT_EQ(row(target.hdc, 1), std::vector({kText, kBack, kText, kBack}));
    EXPECT_TRUE(BitBlt(others, 0, 0, 4, 2, bits, 0, 0, NOTSRCCOPY)) << "bits as they are";
    EXPECT_EQ(row(others, 0), std::vector({black, white, black, white}));
    for (const WORD depth : {8, 16, 24, 32}) {  // background colours that the source has only nearly
        const HDC source = CreateCompatibleDC(nullptr);
        const HBITMAP colored = CreateBitmap(4, 1, 1, depth, nullptr);
        SelectObject(source, colored);
        SetBkColor(source, RGB(254, 1, 0));
        for (int x = 0; x < 4; ++x) SetPixel(source, x, 0, x == 2 ? RGB(254, 1, 0) : RGB(0, 255, x));
        EXPECT_TRUE(StretchBlt(bits, 3, 0, -4, 1, source, 0, 0, 4, 1, SRCCOPY));
        EXPECT_EQ(row(bits, 0), std::vector({black, white, black, black})) << depth;
        for (const HGDIOBJ object : {HGDIOBJ{source}, HGDIOBJ{colored}}) DeleteObject(object);
    }
    for (const HGDIOBJ object : {HGDIOBJ{bits}, HGDIOBJ{others}, HGDIOBJ{bitmap}, HGDIOBJ{copy}})
        EXPECT_TRUE(DeleteObject(object));
}

TEST(GdiBitmaps, AreMadeLikeThoseOfContexts) {
    const HDC device = CreatePaletteDC(3, 3), plain = CreateCompatibleDC(device);
    const Target target(Dib(PixelLayout::Indexed8, 5, 5));
    const struct {
        HBITMAP bitmap;
        LONG width, height, pitch;
        WORD bits;
    } cases[] = {{CreateCompatibleBitmap(device, 5, 2), 5, 2, 6, 8},
                 {CreateCompatibleBitmap(plain, 17, 2), 17, 2, 4, 1},
                 {CreateCompatibleBitmap(target.hdc, 5, 2), 5, 2, 6, 8},
                 {CreateCompatibleBitmap(target.hdc, 5, 0), 1, 1, 2, 1},
                 {CreateCompatibleBitmap(nullptr, 5, 2), 5, 2, 20, 32},
                 {CreateBitmap(3, 2, 1, 24, nullptr), 3, 2, 10, 24},
                 {CreateBitmap(3, 2, 1, 16, nullptr), 3, 2, 6, 16}};
    for (const auto& c : cases) {
        BITMAP description{};
        EXPECT_EQ(GetObject(c.bitmap, sizeof description, &description), int{sizeof description});
        EXPECT_EQ(description.bmWidth, c.width);
        EXPECT_EQ(description.bmHeight, c.height);
        EXPECT_EQ(description.bmWidthBytes, c.pitch);
        EXPECT_EQ(description.bmBitsPixel, c.bits);
        EXPECT_TRUE(DeleteObject(c.bitmap));
    }
    EXPECT_FALSE(CreateBitmap(1, 1, 2, 1, nullptr) || CreateBitmap(0, 1, 1, 1, nullptr) ||
                 CreateBitmap(1, 1, 1, 4, nullptr) || CreateBitmap(INT_MAX, INT_MAX, 1, 32, nullptr) ||
                 CreateCompatibleBitmap(plain, -1, 1));
    EXPECT_EQ(GetNearestColor(device, RGB(190, 190, 190)), RGB(192, 192, 192));

    RGBQUAD colors[3] = {{1, 2, 3, 0}, {4, 5, 6, 0}, {7, 8, 9, 0}}, read[3]{};
    EXPECT_EQ(SetDIBColorTable(target.hdc, 254, 3, colors), 2u);
    EXPECT_EQ(GetDIBColorTable(target.hdc, 253, 2, read), 2u);
    EXPECT_EQ(BgrFromEntry(read[1]), BgrFromEntry(colors[0]));
    EXPECT_EQ(GetNearestColor(target.hdc, RGB(6, 5, 4)), RGB(6, 5, 4));
    EXPECT_EQ(SetDIBColorTable(target.hdc, 256, 1, colors), 0u);
    EXPECT_EQ(SetDIBColorTable(device, 0, 1, colors), 0u);
    EXPECT_TRUE(DeleteDC(plain) && DeleteDC(device));
}

TEST(GdiBitmaps, ExtremeRectanglesDrawWhatIsVisibleOfThem) {
    const struct {
        int x, width, sourceX, sourceWidth;
    } cases[] = {{INT_MIN, INT_MAX, 0, 40},         {INT_MAX, INT_MIN, 0, 40},  {-1000, INT_MAX, 0, INT_MAX},
                 {0, INT_MIN, INT_MAX, INT_MIN},    {20, INT_MIN, 20, INT_MIN}, {-9, 60, INT_MIN, INT_MAX},
                 {-1000000000, 2000000000, -5, 50}, {20, 30, 39, INT_MIN},      {5, 3, 0, INT_MAX}};
    const Axis plain{0, 40, 0, 40};
    for (const auto& c : cases) {
        Dib source(PixelLayout::Bgr24, 40, 40);
        Target target(Dib(PixelLayout::Bgrx32, 50, 50));
        SetViewportOrgEx(target.hdc, 0, 0, nullptr);
        target.origin = {0, 0};
        SlowBlit(target.expected.View(), source.View(), {c.x, c.width, c.sourceX, c.sourceWidth}, plain);
        target.Stretch(c.x, 0, c.width, 40, source, c.sourceX, 0, c.sourceWidth, 40);
        const std::int64_t fromTop =
            std::int64_t{40} - c.sourceX - c.sourceWidth - (c.sourceWidth < 0 ? 2 : 0);
        SlowBlit(target.expected.View(), source.View(), plain, {c.x, c.width, fromTop, c.sourceWidth});
        target.Stretch(0, c.x, 40, c.width, source, 0, c.sourceX, 40, c.sourceWidth);
        EXPECT_TRUE(target.HasExpectedPixels()) << c.x << ", " << c.width;

        // The origin counts in more bits than the coordinates.
        for (const LONG y : {INT_MIN, 0}) {
            SetViewportOrgEx(target.hdc, INT_MAX, y, nullptr);
            SetDIBitsToDevice(target.hdc, INT_MIN, y, UINT_MAX, 40, 0, 0, 0, 40, source.Bits(), source.Info(),
                              0);
            target.Stretch(INT_MAX, INT_MAX, INT_MAX, INT_MAX, source, 0, 0, 40, 40);
        }
        SlowBlit(target.expected.View(), source.View(), {-1, UINT_MAX, 0, UINT_MAX}, plain);
        EXPECT_TRUE(target.HasExpectedPixels());
    }
}

TEST(GdiBitmaps, HeadersThatMakeNoBitmapAreRefused) {
    const BITMAPINFOHEADER bad[] = {
        Header(4, 4, 32, BI_RGB, 39),
        Header(4, 4, 32, BI_RGB, 40, 0),
        Header(0, 4, 32, BI_RGB),
        Header(-4, 4, 32, BI_RGB),
        Header(4, 0, 32, BI_RGB),
        Header(4, INT_MIN, 32, BI_RGB),
        Header(INT_MAX, -INT_MAX, 32, 0),
        Header(4, 4, 0, BI_RGB),
        Header(4, 4, 4, BI_RGB),
        Header(4, 4, 33, BI_RGB),
        Header(4, 4, 32, 1),
        Header(4, 4, 24, BI_BITFIELDS),
        Header(4, 4, 32, BI_BITFIELDS),  // all masks are 0
    };
    Target target(Dib(PixelLayout::Indexed8, 4, 4));
    std::uint8_t pixels[64]{};
    int number = 0;
    const auto expectRefused = [&](BITMAPINFO* info, UINT usage) {
        void* bits = pixels;
        EXPECT_EQ(CreateDIBSection(nullptr, info, usage, &bits), nullptr) << number;
        EXPECT_EQ(bits, nullptr) << number;
        EXPECT_EQ(SetDIBits(nullptr, target.bitmap, 0, 4, pixels, info, usage), 0) << number;
        EXPECT_EQ(GetDIBits(nullptr, target.bitmap, 0, 4, pixels, info, usage), 0) << number;
        EXPECT_EQ(SetDIBitsToDevice(target.hdc, 0, 0, 4, 4, 0, 0, 0, 4, pixels, info, usage), 0) << number;
        EXPECT_EQ(StretchDIBits(target.hdc, 0, 0, 4, 4, 0, 0, 4, 4, pixels, info, usage, SRCCOPY), 0)
            << number;
    };
    for (; number < int{std::size(bad)}; ++number) {
        BITMAPINFO info[4]{};
        info->bmiHeader = bad[number];
        expectRefused(info, DIB_RGB_COLORS);
    }
    expectRefused(nullptr, DIB_RGB_COLORS);
    BITMAPINFO* good = target.expected.Info();
    expectRefused(good, 1);
    EXPECT_EQ(SetDIBits(nullptr, nullptr, 0, 4, pixels, good, 0), 0);
    EXPECT_EQ(SetDIBits(nullptr, target.bitmap, 4, 1, pixels, good, 0), 0) << "no such scan";
    EXPECT_EQ(SetDIBits(nullptr, target.bitmap, 0, 4, nullptr, good, 0), 0);
    EXPECT_EQ(StretchDIBits(nullptr, 0, 0, 4, 4, 0, 0, 4, 4, pixels, good, 0, SRCCOPY), 0);
    EXPECT_TRUE(target.HasExpectedPixels());
}

TEST(GdiBitmaps, SectionsStartBlackAndGetDIBitsDescribesThem) {
    for (const PixelLayout layout : kLayouts) {
        Dib dib(layout, 13, -7);
        void* bits = nullptr;
        const HBITMAP bitmap = CreateDIBSection(nullptr, dib.Info(), DIB_RGB_COLORS, &bits);
        BITMAP description{};
        ASSERT_NE(GetObjectA(bitmap, sizeof description, &description), 0);
        EXPECT_EQ(description.bmBits, bits);
        const std::vector<std::uint8_t> black(7 * dib.PitchBytes());
        EXPECT_EQ(std::memcmp(bits, black.data(), black.size()), 0);
        BITMAPINFO asked{Header(0, 0, 0, 0), {}};
        EXPECT_NE(GetDIBits(nullptr, bitmap, 0, 0, nullptr, &asked, DIB_RGB_COLORS), 0);
        auto expected =
            Header(13, 7, WORD(BitsPerPixel(layout)), layout == PixelLayout::Rgb565 ? BI_BITFIELDS : BI_RGB);
        expected.biSizeImage = static_cast<DWORD>(black.size());
        EXPECT_EQ(std::memcmp(&asked.bmiHeader, &expected, sizeof expected), 0) << BitsPerPixel(layout);
        EXPECT_NE(DeleteObject(bitmap), 0);
    }
}

}  // namespace
}  // namespace Zelkor::Platform
