#pragma once
// The inks of a context's pen and brush: their colours as pixels of its bitmap, combined as its mode says.

#include <optional>

#include "kalvo/gdi/objects.h"
#include "kalvo/raster/shapes.h"

namespace Zelkor::Platform {

Ink InkFrom(const Context& context, COLORREF color, BinaryOperation operation);

// What is selected, in the context's mode; nothing for pens and brushes that do not draw.
std::optional<Stroke> PenOf(const Context& context);
std::optional<Fill> BrushOf(const Context& context);
Inks InksOf(const Context& context);

// A brush that need not be selected, combined with what is there by an operation of its own.
std::optional<Fill> FillOf(const Context& context, const Brush& brush, BinaryOperation operation);

// A brush that draws, with the background colour between its hatches whatever the background mode is.
Fill FillEverywhere(const Context& context, const Brush& brush);

}  // namespace Zelkor::Platform
