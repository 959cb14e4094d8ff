// Inks: binary operations as two masks, and applying them to a span of a row.

#include "kalvo/raster/ink.h"

#include <cstring>

#include "kalvo/raster/pixelaccess.h"

namespace Zelkor::Platform {
namespace {

constexpr RawPixel AllBits(PixelLayout layout) {
    constexpr RawPixel bits[] = {1, 0xFF, 0xFFFF, 0xFFFF, 0xFFFFFF, 0xFFFFFF};
    return bits[static_cast<int>(layout)];
}

constexpr unsigned PatternRow(Pattern pattern, int y) {
    return pattern >> (kPatternSize * (y % kPatternSize)) & 0xFF;
}

constexpr bool IsSet(unsigned patternRow, int x) {
    return patternRow >> (kPatternSize - 1 - x % kPatternSize) & 1;
}

template <class Access>
void CombinePixels(Access, std::uint8_t* row, int x0, int x1, Ink ink) {
    for (int x = x0; x < x1; ++x) Access::Store(row, x, (Access::Read(row, x) & ink.keep) ^ ink.flip);
}

// The fourth byte is nobody's, but some keep an opacity there: it stays.
void CombinePixels(Bgrx32Access, std::uint8_t* row, int x0, int x1, Ink ink) {
    for (int x = x0; x < x1; ++x) {
        RawPixel pixel;
        std::uint8_t* const place = row + 4 * static_cast<std::ptrdiff_t>(x);
        std::memcpy(&pixel, place, sizeof pixel);
        pixel = (pixel & (ink.keep | 0xFF000000)) ^ ink.flip;
        std::memcpy(place, &pixel, sizeof pixel);
    }
}

}  // namespace

Ink InkOf(BinaryOperation operation, RawPixel color, PixelLayout layout) {
    if (operation == kCover) return color;
    const auto everywhere = [&](unsigned bit) { return operation >> bit & 1 ? ~RawPixel{0} : 0; };
    const RawPixel whereClear = (~color & everywhere(0)) | (color & everywhere(2));
    const RawPixel whereSet = (~color & everywhere(1)) | (color & everywhere(3));
    const RawPixel all = AllBits(layout);
    return {(whereClear ^ whereSet) & all, whereClear & all};
}

Pattern Moved(Pattern pattern, std::int64_t right, std::int64_t down) {
    const auto rowsDown = static_cast<int>(down & (kPatternSize - 1));
    const auto columnsRight = static_cast<int>(right & (kPatternSize - 1));
    Pattern moved = 0;
    for (int y = 0; y < kPatternSize; ++y) {
        const unsigned row = PatternRow(pattern, y + kPatternSize - rowsDown);
        const unsigned twice = row << kPatternSize | row;
        moved |= Pattern{twice >> columnsRight & 0xFF} << (kPatternSize * y);
    }
    return moved;
}

void ApplyInk(const Surface& surface, int x, int y, Ink ink) { ApplyInk(surface, y, x, x + 1, ink); }

void ApplyInk(const Surface& surface, int y, int x0, int x1, Ink ink) {
    if (ink.Covers()) return FillSpan(surface, y, x0, x1, ink.flip);
    if (ink == kNoInk) return;
    WithPixels(surface.layout, [&](auto access) { CombinePixels(access, surface.Row(y), x0, x1, ink); });
}

void ApplyFill(const Surface& surface, int y, int x0, int x1, const Fill& fill) {
    if (fill.pattern == kSolid) return ApplyInk(surface, y, x0, x1, fill.ink);
    const unsigned row = PatternRow(fill.pattern, y);
    for (int x = x0; x < x1;) {
        const int begin = x;
        const bool isSet = IsSet(row, x);
        // A row that is all alike is one run.
        if (row == 0 || row == 0xFF) x = x1;
        while (x < x1 && IsSet(row, x) == isSet) ++x;
        ApplyInk(surface, y, begin, x, isSet ? fill.ink : fill.gap);
    }
}

}  // namespace Zelkor::Platform
