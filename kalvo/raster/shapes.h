#pragma once
// Shapes on a surface, outlined with a pen and filled with a brush. They cost what can be seen of them.
//
// A pen of one pixel draws within a shape's box. A wider pen is a disc whose centre runs along the same
// pixels; a pen of even width has its centre half a pixel further to the top and left, so that it covers as
// many pixels as it is wide.

#include <cstdint>
#include <optional>
#include <span>

#include "kalvo/raster/lines.h"

namespace Zelkor::Platform {

// A pen draws one pixel once, and a brush draws none that its pen draws: inks that turn pixels over leave
// what can be turned back by drawing the same again. Dashes go on around corners. Shapes throw std::bad_alloc
// when they find no memory.

// Without a pen, a shape in a box also loses the last row and column of it.
struct Inks {
    std::optional<Stroke> pen;
    std::optional<Fill> brush;
};

// One pixel wide without its last pixel; wider ones have round ends, the last one too. A dashed line
// continues dashes of which some steps have gone before.
void DrawLine(const Surface& surface, Position from, Position to, const Stroke& pen,
              std::int64_t stepsBefore = 0);

// Lines from each point to the next.
void DrawPolyline(const Surface& surface, std::span<const POINT> points, Position origin, const Stroke& pen);

void DrawRectangle(const Surface& surface, Box box, const Inks& inks);

// A row of the ellipse in a box is the pixels whose centres are inside, and at least the middle one or two;
// the middle row or two rows are full.
void DrawEllipse(const Surface& surface, const Box& box, const Inks& inks);

// A rectangle whose corners are quarters of an ellipse of a width and height; 0 or more, at most the box's.
void DrawRoundRectangle(const Surface& surface, Box box, std::int64_t cornerWidth, std::int64_t cornerHeight,
                        const Inks& inks);

// The outline of an ellipse from the ray through `start` counter-clockwise to that through `end`, both
// included. Equal rays give the whole; a ray through the centre points to the right.
void DrawArc(const Surface& surface, const Box& box, Position start, Position end, const Stroke& pen);

// What an arc encloses with the lines from its ends to the centre, or with the line between its ends.
void DrawPie(const Surface& surface, const Box& box, Position start, Position end, const Inks& inks);
void DrawChord(const Surface& surface, const Box& box, Position start, Position end, const Inks& inks);

// Which pixels are inside: those with an odd number of edges to their left, or those that the edges go round,
// counted with their directions.
enum class FillRule : std::uint8_t { Alternate, Winding };

// Polygons of so many points each, one after the other, which close themselves; filled are the pixels whose
// centres are inside of all of them together.
void DrawPolygons(const Surface& surface, std::span<const POINT> points, std::span<const int> counts,
                  Position origin, const Inks& inks, FillRule rule);

}  // namespace Zelkor::Platform
