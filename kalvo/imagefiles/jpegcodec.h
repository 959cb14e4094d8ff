#pragma once
// The JPEG codec of the field handler: JPEG streams in memory from and into rows of 3-byte pixels. Functions,
// record and numbers have the names and values that the handler's codec has always had; libjpeg does the
// work.

#include <cstdint>

namespace Zelkor::Platform {

// What the functions answer.
enum IJLERR : int {
    IJL_OK = 0,
    IJL_NULL_ARGUMENT = -1,
    IJL_NOT_INITIALIZED = -2,
    IJL_INVALID_MODE = -3,
    IJL_NOT_A_JPEG = -4,            // the stream does not begin like one
    IJL_DAMAGED_DATA = -5,          // the stream breaks the rules, or has more than 64 scans
    IJL_CUT_DATA = -6,              // the stream ends too early, or is too short for the size it declares
    IJL_UNSUPPORTED_JPEG = -7,      // 12-bit, lossless or arithmetically coded
    IJL_UNSUPPORTED_COLORS = -8,    // other colours or channels than the record's, or none that convert
    IJL_SIZE_MISMATCH = -9,         // another size than the record's, or none that a stream can have
    IJL_INVALID_ROW_PADDING = -10,  // rows that overlap, or are further apart than memory is large
    IJL_OUT_OF_MEMORY = -11,
    IJL_BUFFER_TOO_SMALL = -28,  // the buffer for the stream must be larger than the stream
};

// What to do.
enum IJLIOTYPE : int {
    IJL_JBUFF_READPARAMS = 1,
    IJL_JBUFF_READWHOLEIMAGE = 3,
    IJL_JBUFF_WRITEWHOLEIMAGE = 9,
    IJL_JBUFF_READONEHALF = 15,
    IJL_JBUFF_READONEQUARTER = 17,
    IJL_JBUFF_READONEEIGHTH = 19,
};

// Kinds of colours.
enum IJL_COLOR : int {
    IJL_RGB = 1,
    IJL_BGR = 2,
    IJL_YCBCR = 3,
    IJL_G = 4,
    IJL_OTHER = 255,
};

// Pixels (DIB) and stream (JPG). Nothing in it is owned.
struct JPEG_CORE_PROPERTIES {
    bool isInitialized;

    std::uint8_t* DIBBytes;     // first row; writing a stream only reads it
    std::uint32_t DIBWidth;     // in pixels
    std::uint32_t DIBHeight;    // in rows
    std::int64_t DIBPadBytes;   // from the end of a row to the start of the next; upward rows: negative
    std::uint32_t DIBChannels;  // bytes per pixel, always 3
    IJL_COLOR DIBColor;         // IJL_RGB or IJL_BGR

    std::uint8_t* JPGBytes;      // the stream; reading does not change it
    std::uint32_t JPGSizeBytes;  // of the stream; writing: of the buffer before, of the stream after
    std::uint32_t JPGWidth;      // full size in pixels
    std::uint32_t JPGHeight;
    std::uint32_t JPGChannels;
    IJL_COLOR JPGColor;  // reading: IJL_G, IJL_YCBCR or IJL_RGB, whatever the stream says of itself
};

// Makes a zeroed record ready for use.
int ijlInit(JPEG_CORE_PROPERTIES* properties);

// Reads the header of the stream into `JPGWidth`, `JPGHeight` and `JPGChannels`, or decodes the stream,
// whole or reduced (each dimension divided by 2, 4 or 8 and rounded up), into the rows. The stream must have
// the size and channels of the record. A decoding that fails may leave the upper rows overwritten.
int ijlRead(JPEG_CORE_PROPERTIES* properties, IJLIOTYPE mode);

// Encodes the rows as a baseline stream of YCbCr colours in quality 75 and stores its size.
int ijlWrite(JPEG_CORE_PROPERTIES* properties, IJLIOTYPE mode);

// Ends the use of a record and zeroes it.
int ijlFree(JPEG_CORE_PROPERTIES* properties);

}  // namespace Zelkor::Platform
