// Shapes on a surface, outlined with a pen and filled with a brush. They cost what can be seen of them.
//
// A pen of one pixel draws within a shape's box. A wider pen is a disc whose centre runs along the same
// pixels; a pen of even width has its centre half a pixel further to the top and left, so that it covers as
// many pixels as it is wide.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "kalvo/raster/lines.h"

namespace Zelkor::Platform {

struct Stroke {
    RawPixel pixel = 0;
    std::int64_t width = 1;  // 1 or more

    bool IsWide() const { return width > 1; }
};

// Without a pen, a rectangle and an ellipse also lose the last row and column of their box.
struct Inks {
    std::optional<Stroke> pen;
    std::optional<RawPixel> brush;
};

// One pixel wide without its last pixel; wider ones have round ends, the last one too.
void DrawLine(const Surface& surface, Position from, Position to, const Stroke& pen);

void DrawRectangle(const Surface& surface, Box box, const Inks& inks);

// A row of the ellipse in a box is the pixels whose centres are inside, and at least the middle one or two;
// the middle row or two rows are full.
void DrawEllipse(const Surface& surface, Box box, const Inks& inks);

// The outline of an ellipse from the ray through `start` counter-clockwise to that through `end`, both
// included. Equal rays give the whole; a ray through the centre points to the right.
void DrawArc(const Surface& surface, const Box& box, Position start, Position end, const Stroke& pen);

// Closes itself. Filled are the pixels whose centres have an odd number of edges to their left.
// Throws std::bad_alloc when the edges find no memory.
void DrawPolygon(const Surface& surface, std::span<const POINT> points, Position origin, const Inks& inks);

}  // namespace Zelkor::Platform
