#pragma once
// Grey images drawn through a table of 256 greys or colours.

#include "kalvo/display/dib.h"
#include "kalvo/display/kxpixelvector.h"

namespace Zelkor::Kalvo {

// Draws a region of KxBW8 pixels in the colours of `lut`. Throws, traced under `traceName`, what
// `KxDrawImageInWindow` stores.
void DrawThroughTable(const KxGenericROI& region, HDC hdc, const KxBW8Vector* lut, Zoom zoom,
                      const char* traceName);
void DrawThroughTable(const KxGenericROI& region, HDC hdc, const KxC24Vector* lut, Zoom zoom,
                      const char* traceName);

}  // namespace Zelkor::Kalvo
