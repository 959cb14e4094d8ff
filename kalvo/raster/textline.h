#pragma once
// One line of text: which bytes are which characters, how wide it is, its pixels.

#include <optional>
#include <string_view>

#include "kalvo/raster/glyphs.h"
#include "kalvo/raster/lines.h"

namespace Zelkor::Platform {

// UTF-8; bytes that are none stand for the characters of their numbers. Control characters draw nothing.
struct TextLine {
    std::string_view text;
    const int* distances = nullptr;  // how far each byte moves the pen; null: as far as the letters want
};

std::int64_t WidthOf(SizedFace& face, const TextLine& line);

struct TextInk {
    RawPixel letters = 0;
    std::optional<RawPixel> background = {};  // of the line's whole box
    bool isUnderlined = false;
    bool isStruckOut = false;
};

// Draws a line in the face's direction: in a frame at `origin`, its top left corner is at `corner`.
void DrawTextLine(const Surface& surface, SizedFace& face, const TextLine& line, Position origin,
                  Position corner, const TextInk& ink);

}  // namespace Zelkor::Platform
