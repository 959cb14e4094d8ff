// Texts: bytes to characters, lines placed and measured, glyphs drawn.
#include <algorithm>
#include <cstring>
#include <limits>
#include <string_view>

#include "kalvo/gdi/objects.h"
#include "kalvo/raster/glyphs.h"
#include "kalvo/raster/lines.h"
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

// Calls visit(glyph) for each character that has one; control characters have none.
template <class Visit>
void ForEachGlyph(SizedFace& face, std::string_view text, Visit&& visit) {
    Glyph spare;
    while (!text.empty()) {
        const char32_t character = TakeCharacter(text);
        if (character >= 32) visit(face.Find(character, spare));
    }
}

std::int64_t WidthOf(SizedFace& face, std::string_view text) {
    std::int64_t width = 0;
    ForEachGlyph(face, text, [&](const Glyph& glyph) { width += glyph.advance; });
    return width;
}

// Drawing

// Draws at a place where all of the glyph is on the surface.
void StoreGlyph(const Surface& surface, const Glyph& glyph, int penX, int baseline, RawPixel pixel) {
    WithPixels(surface.layout, [&]<class Access>(Access) {
        for (const GlyphRun& run : glyph.runs) {
            std::uint8_t* row = surface.Row(baseline + run.y);
            for (int x = run.x0; x < run.x1; ++x) Access::Store(row, penX + x, pixel);
        }
    });
}

// Draws text in one colour within a part of the surface.
class TextPainter {
public:
    TextPainter(const Context& context, const Box& clip)
        : m_surface(context.Target()),
          m_clip(Intersection(clip, VisibleBox(m_surface))),
          m_font(context.font->logical),
          m_isOpaque(context.backgroundMode == OPAQUE),
          m_text(RawOf(context.textColor)),
          m_background(m_isOpaque ? RawOf(context.backgroundColor) : 0) {}

    // Draws a line whose top left corner is at (left, top).
    void DrawLine(SizedFace& face, std::string_view line, std::int64_t left, std::int64_t top,
                  std::int64_t width) const {
        if (m_clip.IsEmpty()) return;
        if (m_isOpaque) Paint({left, top, left + width, top + face.LineHeight()}, m_background);
        std::int64_t penX = left;
        ForEachGlyph(face, line, [&](const Glyph& glyph) {
            DrawGlyph(glyph, penX, top + face.Baseline());
            penX += glyph.advance;
        });
        const auto drawRule = [&](int y) {
            Paint({left, top + y, penX, top + y + face.RuleThickness()}, m_text);
        };
        if (m_font.lfUnderline) drawRule(face.Underline());
        if (m_font.lfStrikeOut) drawRule(face.StrikeOut());
    }

private:
    RawPixel RawOf(COLORREF color) const { return RawFromBgr(m_surface, BgrFromColor(color)); }

    void Paint(const Box& box, RawPixel pixel) const {
        PaintBox(m_surface, Intersection(box, m_clip), pixel);
    }

    void DrawGlyph(const Glyph& glyph, std::int64_t penX, std::int64_t baseline) const {
        const Box place{penX + glyph.left, baseline + glyph.top, penX + glyph.right, baseline + glyph.bottom};
        const Box visible = Intersection(place, m_clip);
        if (visible.IsEmpty()) return;
        if (visible == place && IsClippedByBox(m_surface))
            return StoreGlyph(m_surface, glyph, static_cast<int>(penX), static_cast<int>(baseline), m_text);
        for (const GlyphRun& run : glyph.runs)
            Paint({penX + run.x0, baseline + run.y, penX + run.x1, baseline + run.y + 1}, m_text);
    }

    const Surface m_surface;
    const Box m_clip;
    const LOGFONTA& m_font;
    const bool m_isOpaque;
    const RawPixel m_text;
    const RawPixel m_background;
};

constexpr Box kEverywhere{std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::min(),
                          std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::max()};

LONG ToLong(std::int64_t value) {
    using Limits = std::numeric_limits<LONG>;
    return static_cast<LONG>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

// One line at a place

// Where a line begins that is placed by its left edge, its right edge or its middle.
std::int64_t LeftOf(std::int64_t x, std::int64_t width, UINT align) {
    switch (align & TA_CENTER) {
    case TA_CENTER:
        return x - width / 2;
    case TA_RIGHT:
        return x - width;
    default:
        return x;
    }
}

std::int64_t TopOf(std::int64_t y, const SizedFace& face, UINT align) {
    switch (align & TA_BASELINE) {
    case TA_BASELINE:
        return y - face.Baseline();
    case TA_BOTTOM:
        return y - face.LineHeight();
    default:
        return y;
    }
}

// Behind the text; before it when it ends at the position; a centred text leaves the position alone.
std::int64_t MovedPosition(std::int64_t x, std::int64_t width, UINT align) {
    switch (align & TA_CENTER) {
    case TA_CENTER:
        return x;
    case TA_RIGHT:
        return x - width;
    default:
        return x + width;
    }
}

void PlaceText(Context& context, SizedFace& face, POINT place, std::string_view text) {
    const UINT align = context.textAlign;
    const POINT reference = align & TA_UPDATECP ? context.position : place;
    const std::int64_t width = WidthOf(face, text);
    const auto [x, y] = context.Placed(reference);
    TextPainter(context, kEverywhere)
        .DrawLine(face, text, LeftOf(x, width, align), TopOf(y, face, align), width);
    if (align & TA_UPDATECP) context.position.x = ToLong(MovedPosition(reference.x, width, align));
}

// Lines in a rectangle

// Calls visit(line) for each line of a text. A line end is "\n" or "\r\n"; one at the very end of the text
// begins no further line. An empty text is one empty line.
template <class Visit>
void ForEachLine(std::string_view text, UINT format, Visit&& visit) {
    bool isLast = (format & DT_SINGLELINE) != 0;
    do {
        const std::size_t end = isLast ? std::string_view::npos : text.find('\n');
        visit(text.substr(0, end));  // "\r" is a control character, which draws nothing
        isLast = end == std::string_view::npos || end + 1 == text.size();
        if (!isLast) text.remove_prefix(end + 1);
    } while (!isLast);
}

SIZE MeasureLines(SizedFace& face, std::string_view text, UINT format) {
    std::int64_t width = 0, height = 0;
    ForEachLine(text, format, [&](std::string_view line) {
        width = std::max(width, WidthOf(face, line));
        height += face.LineHeight();
    });
    return {ToLong(width), ToLong(height)};
}

std::int64_t OffsetInside(std::int64_t room, std::int64_t size, bool isMiddle, bool isEnd) {
    if (isMiddle) return (room - size) / 2;
    return isEnd ? room - size : 0;
}

// Returns the height of all lines.
std::int64_t DrawLines(const Context& context, SizedFace& face, std::string_view text, const RECT& rect,
                       UINT format) {
    const Box box = context.Placed(rect);
    const TextPainter painter(context, format & DT_NOCLIP ? kEverywhere : box);
    const bool isSingle = (format & DT_SINGLELINE) != 0;
    const std::int64_t top =
        box.top + OffsetInside(box.Height(), face.LineHeight(), isSingle && (format & DT_VCENTER) != 0,
                               isSingle && (format & DT_BOTTOM) != 0);
    std::int64_t height = 0;
    ForEachLine(text, format, [&](std::string_view line) {
        const std::int64_t width = WidthOf(face, line);
        const std::int64_t left =
            box.left + OffsetInside(box.Width(), width, (format & DT_CENTER) != 0, (format & DT_RIGHT) != 0);
        painter.DrawLine(face, line, left, top + height, width);
        height += face.LineHeight();
    });
    return height;
}

// Exported edge

bool IsText(const char* text, int length) { return length == 0 || (text && length > 0); }

std::string_view TextOf(const char* text, int length) {
    return length ? std::string_view(text, static_cast<std::size_t>(length)) : std::string_view();
}

}  // namespace
}  // namespace Zelkor::Platform

using namespace Zelkor::Platform;

// Without any font on the machine, texts have no size and draw nothing; that is no failure of the call.

BOOL TextOutA(HDC hDC, int n32X, int n32Y, const char* pText, int n32Length) {
    Context* context = Find<Context>(hDC);
    if (!context || !IsText(pText, n32Length)) return 0;
    return FailWithoutMemory([&] {
        if (const auto face = FindFace(context->font->logical))
            PlaceText(*context, *face, {n32X, n32Y}, TextOf(pText, n32Length));
        return 1;
    });
}

BOOL GetTextExtentPoint32A(HDC hDC, const char* pText, int n32Length, SIZE* pSize) {
    const Context* context = Find<Context>(hDC);
    if (!context || !pSize || !IsText(pText, n32Length)) return 0;
    return FailWithoutMemory([&] {
        const auto face = FindFace(context->font->logical);
        *pSize = face ? MeasureLines(*face, TextOf(pText, n32Length), DT_SINGLELINE) : SIZE{0, 0};
        return 1;
    });
}

int DrawTextA(HDC hDC, const char* pText, int n32Length, RECT* pRect, UINT un32Format) {
    const Context* context = Find<Context>(hDC);
    const bool isTerminated = pText && n32Length == -1;
    if (!context || !pRect || !(isTerminated || IsText(pText, n32Length))) return 0;
    return FailWithoutMemory([&] {
        const std::string_view text = isTerminated ? std::string_view(pText) : TextOf(pText, n32Length);
        const auto face = FindFace(context->font->logical);
        if (!(un32Format & DT_CALCRECT))
            return face ? ToLong(DrawLines(*context, *face, text, *pRect, un32Format)) : 0;
        const SIZE size = face ? MeasureLines(*face, text, un32Format) : SIZE{0, 0};
        pRect->right = ToLong(std::int64_t{pRect->left} + size.cx);
        pRect->bottom = ToLong(std::int64_t{pRect->top} + size.cy);
        return size.cy;
    });
}
