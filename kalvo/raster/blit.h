// Copies a rectangle of one surface to another: clipped, stretched, mirrored, converted, mixed.
#pragma once

#include "kalvo/raster/surface.h"

namespace Zelkor::Platform {

// The columns, or rows, of both rectangles of a copy; either may reach outside its surface. Destination pixel
// i takes source pixel floor(i x sourceSize / destinationSize). A negative size means the pixels before the
// start, and one negative size of the two mirrors the picture. Starts and sizes fit 34 bits; where the two
// sizes differ, 32.
struct BlitAxis {
    std::int64_t destination = 0;
    std::int64_t destinationSize = 0;
    std::int64_t source = 0;
    std::int64_t sourceSize = 0;
};

// Destination pixels without a source pixel inside the source stay as they are. Memory for a row of what is
// visible is all this takes. When both surfaces share memory, what is drawn there is not determined.
void Blit(const Surface& destination, const Surface& source, const BlitAxis& columns, const BlitAxis& rows);

// The same, but each component becomes (s x alpha + d x (255 - alpha)) / 255, rounded. 16-bit and indexed
// destinations mix what their pixels show, and take the nearest pixel.
void Blend(const Surface& destination, const Surface& source, const BlitAxis& columns, const BlitAxis& rows,
           std::uint8_t alpha);

}  // namespace Zelkor::Platform
