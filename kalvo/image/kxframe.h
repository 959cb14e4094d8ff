#pragma once
// How frames of regions are placed, and the handles by which they are dragged.

#include <cstdint>

/// Where the line of a frame lies.
enum KX_FRAME_POSITION : std::int32_t {
    KX_FRAME_POSITION_ON_BORDER = 0,  ///< over the outermost pixels of the region
    KX_FRAME_POSITION_INSIDE = 1,     ///< inside, however thick the pen is
    KX_FRAME_POSITION_OUTSIDE = 2,    ///< outside, however thick the pen is
};

/// The parts of a frame that a pointer can grab.
enum KX_HANDLES : std::int32_t {
    KX_HANDLE_NONE = 0,    ///< outside the frame
    KX_HANDLE_INSIDE = 1,  ///< inside the frame, on no handle: drags the whole region
    KX_HANDLE_NORTH = 2,   ///< the middle of the top side; the three below likewise
    KX_HANDLE_EAST = 3,
    KX_HANDLE_SOUTH = 4,
    KX_HANDLE_WEST = 5,
    KX_HANDLE_NORTH_WEST = 6,  ///< a corner: drags two sides
    KX_HANDLE_SOUTH_WEST = 7,
    KX_HANDLE_NORTH_EAST = 8,
    KX_HANDLE_SOUTH_EAST = 9,
};
