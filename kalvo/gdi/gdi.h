#pragma once
// Drawing in software on bitmaps in memory: device contexts and the objects selected into them. Names, values
// and pixel rules are those of the classic integer interface, without anti-aliasing.
//
// A call with a null or stale handle, or one of another kind, fails with the result named, and draws nothing.
// One thread at a time uses a context and what is selected into it; different contexts may be used in
// parallel.

#include "kalvo/gdi/gdi_bitmaps.h"
#include "kalvo/gdi/gdi_contexts.h"
#include "kalvo/gdi/gdi_objects.h"
#include "kalvo/gdi/gdi_palettes.h"
#include "kalvo/gdi/gdi_rects.h"
#include "kalvo/gdi/gdi_regions.h"
#include "kalvo/gdi/gdi_shapes.h"
#include "kalvo/gdi/gdi_text.h"

namespace Zelkor::Platform {

/// An 8-bit device with a palette of its own (`RASTERCAPS` has `RC_PALETTE`), white at first. Null when it
/// can't be made. Release it with `DeleteDC`.
KX_API HDC CreatePaletteDC(int width, int height);

/// How many pens, brushes, fonts, bitmaps, palettes, regions and contexts are alive, stock objects apart.
KX_API int CountGdiObjects();

}  // namespace Zelkor::Platform
