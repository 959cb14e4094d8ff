// Texts: lines placed by a point or a rectangle, and measured.

#include <algorithm>
#include <string_view>

#include "kalvo/frame/roundtoint.h"
#include "kalvo/gdi/objects.h"
#include "kalvo/raster/textline.h"

namespace Zelkor::Platform {
namespace {

using Kalvo::ClampToInt;

TextInk InkOf(const Context& context, const Surface& surface) {
    const auto pixelOf = [&](COLORREF color) { return RawFromBgr(surface, BgrFromColor(color)); };
    const LOGFONTA& font = context.font->logical;
    TextInk ink{.letters = pixelOf(context.textColor),
                .isUnderlined = font.lfUnderline != 0,
                .isStruckOut = font.lfStrikeOut != 0};
    if (context.backgroundMode == OPAQUE) ink.background = pixelOf(context.backgroundColor);
    return ink;
}

// Lets a surface be drawn on inside a box alone. `clip` keeps what that means.
void ClipToBox(Surface& surface, const Box& box, Region& clip) {
    clip = Region(Intersection(box, VisibleBox(surface)));
    if (surface.clip) clip = Combination(clip, *surface.clip, SetOperation::And);
    surface.clip = &clip;
}

// One line at a place

// Where a line begins, seen from the point that its left edge, its right edge or its middle is placed at.
std::int64_t LeftOf(std::int64_t width, UINT align) {
    switch (align & TA_CENTER) {
    case TA_CENTER:
        return -(width / 2);
    case TA_RIGHT:
        return -width;
    default:
        return 0;
    }
}

std::int64_t TopOf(const SizedFace& face, UINT align) {
    switch (align & TA_BASELINE) {
    case TA_BASELINE:
        return -face.Baseline();
    case TA_BOTTOM:
        return -face.LineHeight();
    default:
        return 0;
    }
}

// Behind the text; before it when it ends at the position; a centred text leaves the position alone.
std::int64_t MoveAlong(std::int64_t width, UINT align) {
    switch (align & TA_CENTER) {
    case TA_CENTER:
        return 0;
    case TA_RIGHT:
        return -width;
    default:
        return width;
    }
}

void PlaceText(Context& context, const Surface& surface, POINT place, const TextLine& line) {
    const auto face = FindFace(context.font->logical);
    if (!face) return;
    const UINT align = context.textAlign;
    POINT& position = context.position;
    const std::int64_t width = WidthOf(*face, line);
    DrawTextLine(surface, *face, line, context.Placed(align & TA_UPDATECP ? position : place),
                 {LeftOf(width, align), TopOf(*face, align)}, InkOf(context, surface));
    if (!(align & TA_UPDATECP)) return;
    const Position moved = face->Direction().Offset({MoveAlong(width, align), 0});
    position = {ClampToInt(position.x + moved.x), ClampToInt(position.y + moved.y)};
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
        width = std::max(width, WidthOf(face, {line}));
        height += face.LineHeight();
    });
    return {ClampToInt(width), ClampToInt(height)};
}

std::int64_t OffsetInside(std::int64_t room, std::int64_t size, bool isMiddle, bool isEnd) {
    if (isMiddle) return (room - size) / 2;
    return isEnd ? room - size : 0;
}

// Returns how far below the top of the rectangle the lines end; their height when they begin there.
std::int64_t DrawLines(const Context& context, SizedFace& face, std::string_view text, const RECT& rect,
                       UINT format) {
    const Box box = context.Placed(rect);
    Surface surface = context.Target();
    Region clip;
    if (!(format & DT_NOCLIP)) ClipToBox(surface, box, clip);
    const TextInk ink = InkOf(context, surface);
    const bool isSingle = (format & DT_SINGLELINE) != 0;
    std::int64_t y = OffsetInside(box.Height(), face.LineHeight(), isSingle && (format & DT_VCENTER) != 0,
                                  isSingle && (format & DT_BOTTOM) != 0);
    ForEachLine(text, format, [&](std::string_view line) {
        const std::int64_t x = OffsetInside(box.Width(), WidthOf(face, {line}), (format & DT_CENTER) != 0,
                                            (format & DT_RIGHT) != 0);
        DrawTextLine(surface, face, {line}, {box.left + x, box.top + y}, {}, ink);
        y += face.LineHeight();
    });
    return y;
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
    return OrNeutral([&] {
        PlaceText(*context, context->Target(), {n32X, n32Y}, {TextOf(pText, n32Length)});
        return 1;
    });
}

BOOL ExtTextOutA(HDC hDC, int n32X, int n32Y, UINT un32Options, const RECT* pRect, const char* pText,
                 UINT un32Length, const int* pn32Distances) {
    constexpr UINT kUnknown = ~(ETO_OPAQUE | ETO_CLIPPED);
    Context* context = Find<Context>(hDC);
    const int length = static_cast<int>(un32Length);  // negative beyond what a text may have
    if (!context || !IsText(pText, length) || (un32Options & kUnknown)) return 0;
    const UINT options = pRect ? un32Options : 0;
    return OrNeutral([&] {
        Surface surface = context->Target();
        if (options & ETO_OPAQUE)
            PaintBox(surface, context->Placed(*pRect),
                     RawFromBgr(surface, BgrFromColor(context->backgroundColor)));
        Region clip;
        if (options & ETO_CLIPPED) ClipToBox(surface, context->Placed(*pRect), clip);
        PlaceText(*context, surface, {n32X, n32Y}, {TextOf(pText, length), pn32Distances});
        return 1;
    });
}

BOOL GetTextExtentPoint32A(HDC hDC, const char* pText, int n32Length, SIZE* pSize) {
    const Context* context = Find<Context>(hDC);
    if (!context || !pSize || !IsText(pText, n32Length)) return 0;
    return OrNeutral([&] {
        const auto face = FindFace(context->font->logical);
        *pSize = face ? MeasureLines(*face, TextOf(pText, n32Length), DT_SINGLELINE) : SIZE{0, 0};
        return 1;
    });
}

int DrawTextA(HDC hDC, const char* pText, int n32Length, RECT* pRect, UINT un32Format) {
    const Context* context = Find<Context>(hDC);
    const bool isTerminated = pText && n32Length == -1;
    if (!context || !pRect || !(isTerminated || IsText(pText, n32Length))) return 0;
    return OrNeutral([&] {
        const std::string_view text = isTerminated ? std::string_view(pText) : TextOf(pText, n32Length);
        const auto face = FindFace(context->font->logical);
        if (!(un32Format & DT_CALCRECT))
            return face ? ClampToInt(DrawLines(*context, *face, text, *pRect, un32Format)) : 0;
        const SIZE size = face ? MeasureLines(*face, text, un32Format) : SIZE{0, 0};
        pRect->right = ClampToInt(std::int64_t{pRect->left} + size.cx);
        pRect->bottom = ClampToInt(std::int64_t{pRect->top} + size.cy);
        return size.cy;
    });
}
