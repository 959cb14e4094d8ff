// Characters of a line and their glyphs, drawn in its direction.

#include "kalvo/raster/textline.h"

#include <algorithm>

#include "kalvo/raster/pixelaccess.h"

namespace Zelkor::Platform {
namespace {

// Characters

// How many bytes a UTF-8 sequence has after a first byte, and the least character it may stand for.
struct SequenceForm {
    std::size_t following;
    char32_t least;
    char32_t firstBits;
};

constexpr SequenceForm FormOf(unsigned char first) {
    if (first >= 0xC0 && first < 0xE0) return {1, 0x80, first & 0x1Fu};
    if (first >= 0xE0 && first < 0xF0) return {2, 0x800, first & 0x0Fu};
    if (first >= 0xF0 && first < 0xF8) return {3, 0x10000, first & 0x07u};
    return {0, 0, first};
}

// Takes the first character off a text. A byte that begins no sequence stands for its own number.
char32_t TakeCharacter(std::string_view& text) {
    const auto byteAt = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned char first = byteAt(0);
    const SequenceForm form = FormOf(first);
    char32_t character = form.firstBits;
    bool isSequence = form.following < text.size();
    for (std::size_t i = 1; isSequence && i <= form.following; ++i) {
        isSequence = (byteAt(i) & 0xC0) == 0x80;
        character = character << 6 | (byteAt(i) & 0x3F);
    }
    const bool isSurrogate = character >= 0xD800 && character < 0xE000;
    isSequence = isSequence && character >= form.least && character <= 0x10FFFF && !isSurrogate;
    text.remove_prefix(isSequence ? form.following + 1 : 1);
    return isSequence ? character : first;
}

// Calls visit(glyph, pen) for each character that has one, where the pen is on the line by then; control
// characters have none. Returns where it ends.
template <class Visit>
std::int64_t ForEachGlyph(SizedFace& face, const TextLine& line, Visit&& visit) {
    constexpr std::int64_t kFar = std::int64_t{1}
                                  << 44;  // beyond all that can be seen, and turned in 64 bits
    Glyph spare;
    std::int64_t pen = 0;
    const int* distance = line.distances;
    for (std::string_view text = line.text; !text.empty();) {
        const std::size_t before = text.size();
        const char32_t character = TakeCharacter(text);
        std::int64_t advance = 0;
        if (character >= 32) {
            const Glyph& glyph = face.Find(character, spare);
            visit(glyph, pen);
            advance = glyph.advance;
        }
        if (distance) {
            const int* const end = distance + (before - text.size());
            for (advance = 0; distance < end; ++distance) advance += *distance;
        }
        pen = std::clamp(pen + advance, -kFar, kFar);
    }
    return pen;
}

// Drawing

// Draws at a place where all of the glyph is visible.
void StoreGlyph(const Surface& surface, const Glyph& glyph, int penX, int baseline, RawPixel pixel) {
    WithPixels(surface.layout, [&]<class Access>(Access) {
        for (const GlyphRun& run : glyph.runs) {
            std::uint8_t* row = surface.Row(baseline + run.y);
            for (int x = run.x0; x < run.x1; ++x) Access::Store(row, penX + x, pixel);
        }
    });
}

void DrawGlyph(const Surface& surface, const Glyph& glyph, Position pen, RawPixel pixel) {
    const Box place{pen.x + glyph.left, pen.y + glyph.top, pen.x + glyph.right, pen.y + glyph.bottom};
    const Box visible = Intersection(place, VisibleBox(surface));
    if (visible.IsEmpty()) return;
    if (visible == place && IsClippedByBox(surface))
        return StoreGlyph(surface, glyph, static_cast<int>(pen.x), static_cast<int>(pen.y), pixel);
    for (const GlyphRun& run : glyph.runs)
        PaintBox(surface, {pen.x + run.x0, pen.y + run.y, pen.x + run.x1, pen.y + run.y + 1}, pixel);
}

}  // namespace

std::int64_t WidthOf(SizedFace& face, const TextLine& line) {
    return ForEachGlyph(face, line, [](const Glyph&, std::int64_t) {});
}

void DrawTextLine(const Surface& surface, SizedFace& face, const TextLine& line, Position origin,
                  Position corner, const TextInk& ink) {
    if (VisibleBox(surface).IsEmpty()) return;
    const Turn& turn = face.Direction();
    const auto paintStripe = [&](std::int64_t width, int top, int height, RawPixel pixel) {
        PaintTurnedBox(surface, origin, turn,
                       {corner.x, corner.y + top, corner.x + width, corner.y + top + height}, pixel);
    };
    if (ink.background) paintStripe(WidthOf(face, line), 0, face.LineHeight(), *ink.background);
    const std::int64_t width = ForEachGlyph(face, line, [&](const Glyph& glyph, std::int64_t pen) {
        const Position offset = turn.Offset({corner.x + pen, corner.y + face.Baseline()});
        DrawGlyph(surface, glyph, {origin.x + offset.x, origin.y + offset.y}, ink.letters);
    });
    if (ink.isUnderlined) paintStripe(width, face.Underline(), face.RuleThickness(), ink.letters);
    if (ink.isStruckOut) paintStripe(width, face.StrikeOut(), face.RuleThickness(), ink.letters);
}

}  // namespace Zelkor::Platform
