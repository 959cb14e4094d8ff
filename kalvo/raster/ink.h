#pragma once
// What drawing does to the pixels it reaches: it covers them, or combines their bits with those of a colour;
// everywhere, in a pattern, or in dashes.

#include <cstdint>

#include "kalvo/raster/surface.h"

namespace Zelkor::Platform {

// A pixel becomes (pixel & keep) ^ flip: so each of its bits becomes 0 or 1, or stays, or is turned over.
struct Ink {
    RawPixel keep = 0;
    RawPixel flip = 0;

    // Covers what is there.
    constexpr Ink(RawPixel pixel = 0) : flip(pixel) {}
    constexpr Ink(RawPixel kept, RawPixel flipped) : keep(kept), flip(flipped) {}

    constexpr bool Covers() const { return keep == 0; }
    bool operator==(const Ink&) const = default;
};
inline constexpr Ink kNoInk{~RawPixel{0}, 0};

// A function of a bit of a colour and one of a pixel, as its four values: bit 2 * color + pixel of this.
using BinaryOperation = unsigned;
inline constexpr BinaryOperation kCover = 0b1100, kInvert = 0b0101;

Ink InkOf(BinaryOperation operation, RawPixel color, PixelLayout layout);

// Eight rows of eight pixels, which repeat from the top left pixel of a surface on. A row is a byte, the
// first one the lowest; its first pixel is the most significant bit.
using Pattern = std::uint64_t;
inline constexpr int kPatternSize = 8;
inline constexpr Pattern kSolid = ~Pattern{0};

// The pattern with its first pixel at (right, down).
Pattern Moved(Pattern pattern, std::int64_t right, std::int64_t down);

// What interiors are filled with.
struct Fill {
    Ink ink;
    Pattern pattern = kSolid;  // where the ink is
    Ink gap = kNoInk;          // where it isn't

    constexpr Fill(RawPixel pixel) : ink(pixel) {}
    constexpr Fill(Ink everywhere) : ink(everywhere) {}
    constexpr Fill(Ink set, Pattern where, Ink unset) : ink(set), pattern(where), gap(unset) {}

    // Whether what it leaves does not depend on what was there.
    constexpr bool Covers() const { return ink.Covers() && (pattern == kSolid || gap.Covers()); }
};

// Which steps along a line have ink: bit i says it of step i, and they repeat.
struct Dashes {
    static constexpr int kPeriod = 24;
    std::uint32_t steps = (1u << kPeriod) - 1;

    constexpr bool IsSolid() const { return steps == (1u << kPeriod) - 1; }
    constexpr bool HasInk(std::int64_t step) const { return steps >> step % kPeriod & 1; }
};

// What outlines are drawn with.
struct Stroke {
    Ink ink;
    std::int64_t width = 1;  // 1 or more
    Dashes dashes{};         // of one pixel's width alone
    Ink gap = kNoInk;

    bool IsWide() const { return width > 1; }
    bool IsDashed() const { return !IsWide() && !dashes.IsSolid(); }
    const Ink& InkAt(std::int64_t step) const { return dashes.HasInk(step) ? ink : gap; }
    bool Covers() const { return ink.Covers() && (gap.Covers() || gap == kNoInk); }
};

// Apply ink to one pixel, or to pixels x0 <= x < x1 of row y, which must lie inside and are not clipped.
void ApplyInk(const Surface& surface, int x, int y, Ink ink);
void ApplyInk(const Surface& surface, int y, int x0, int x1, Ink ink);
void ApplyFill(const Surface& surface, int y, int x0, int x1, const Fill& fill);

}  // namespace Zelkor::Platform
