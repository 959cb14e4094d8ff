#pragma once
// Drawing in two steps: the shape first as numbers of its inks, then the inks onto the surface, so that none
// of them reaches a pixel twice.

#include <vector>

#include "kalvo/raster/shapes.h"

namespace Zelkor::Platform {

class Stencil {
public:
    // For drawing in a box; only what is visible of it takes memory, a byte for each pixel.
    Stencil(const Surface& surface, const Box& box);

    // To draw on with these instead of the inks; its first pixel is the surface's at `Corner()`.
    Surface View();
    Position Corner() const { return {m_box.left, m_box.top}; }
    static Inks NumbersOf(const Inks& inks);

    void Apply(const Surface& surface, const Inks& inks) const;

private:
    Box m_box;
    std::vector<std::uint8_t> m_numbers;
};

// Calls draw(surface, corner, inks) for a drawing in a box: fill first, then an outline that may cross
// itself. The surface's first pixel is the one at `corner`.
template <class Draw>
void DrawOnce(const Surface& surface, const Box& box, const Inks& inks, Draw&& draw) {
    if (!inks.pen || inks.pen->Covers()) return draw(surface, Position{}, inks);
    Stencil stencil(surface, box);
    draw(stencil.View(), stencil.Corner(), Stencil::NumbersOf(inks));
    stencil.Apply(surface, inks);
}

}  // namespace Zelkor::Platform
