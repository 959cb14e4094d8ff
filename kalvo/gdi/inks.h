// The inks of a context's pen and brush: their colours as pixels of its bitmap, combined as its mode says.
#pragma once

#include <optional>

#include "kalvo/gdi/objects.h"
#include "kalvo/raster/shapes.h"

namespace Zelkor::Platform {

// Nothing for pens and brushes that do not draw.
std::optional<Stroke> PenOf(const Context& context);
std::optional<Fill> BrushOf(const Context& context);
Inks InksOf(const Context& context);

// A brush that covers what is there, whatever the context's mode.
std::optional<Fill> CoveringFill(const Context& context, const Brush& brush);

// Turns over all bits of the pixels.
Ink InvertingInk(const Context& context);

}  // namespace Zelkor::Platform
