#pragma once
// Copies a rectangle of one surface to another: clipped, stretched, mirrored, converted, combined, mixed.
//
// Destination pixels without a source pixel inside the source stay as they are. Both surfaces may share
// memory: all is as if the source were read first. Memory for a row of what is visible is all this takes,
// and for a part of the source where it is stretched over itself.

#include "kalvo/raster/blitaxis.h"
#include "kalvo/raster/ink.h"
#include "kalvo/raster/rasteroperation.h"
#include "kalvo/raster/surface.h"

namespace Zelkor::Platform {

void Blit(const Surface& destination, const Surface& source, const BlitAxis& columns, const BlitAxis& rows);

// The bits of destination pixels become what an operation makes of them, of the bits that `Blit` would store,
// and of those of a pattern that covers all.
void Combine(const Surface& destination, const Surface& source, const BlitAxis& columns, const BlitAxis& rows,
             RasterOperation operation, const Fill& pattern);

// Each component becomes (s x alpha + d x (255 - alpha)) / 255, rounded. 16-bit and indexed destinations mix
// what their pixels show, and take the nearest pixel.
void Blend(const Surface& destination, const Surface& source, const BlitAxis& columns, const BlitAxis& rows,
           std::uint8_t alpha);

// The fourth byte of a source of 32 bits is how opaque its pixel is; the others were multiplied with that
// before. With all four first multiplied with `alpha`, each component becomes s + d x (255 - fourth) / 255,
// rounded, at most 255; the fourth byte of a destination of 32 bits, too.
void BlendPremultiplied(const Surface& destination, const Surface& source, const BlitAxis& columns,
                        const BlitAxis& rows, std::uint8_t alpha);

}  // namespace Zelkor::Platform
