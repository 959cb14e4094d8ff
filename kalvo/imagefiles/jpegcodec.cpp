// The codec functions on top of libjpeg, straight from and into the caller's rows and buffers.

#include "kalvo/imagefiles/jpegcodec.h"

#include <cstdlib>

#include "kalvo/imagefiles/libjpeg.h"

namespace Zelkor::Platform {
namespace {

constexpr int kChannels = 3;
// Beyond what any memory holds, and small enough to be multiplied with rows.
constexpr std::int64_t kMostPadBytes = std::int64_t{1} << 44;

int StatusOf(JpegFault fault) {
    switch (fault) {
    case JpegFault::None:
        return IJL_OK;
    case JpegFault::Cut:
        return IJL_CUT_DATA;
    case JpegFault::Unsupported:
        return IJL_UNSUPPORTED_JPEG;
    case JpegFault::OutOfMemory:
        return IJL_OUT_OF_MEMORY;
    case JpegFault::BufferFull:
        return IJL_BUFFER_TOO_SMALL;
    case JpegFault::Damaged:
        break;
    }
    return IJL_DAMAGED_DATA;
}

// What a dimension is divided by; 0 for modes that do not decode.
unsigned ScaleOf(IJLIOTYPE mode) {
    switch (mode) {
    case IJL_JBUFF_READWHOLEIMAGE:
        return 1;
    case IJL_JBUFF_READONEHALF:
        return 2;
    case IJL_JBUFF_READONEQUARTER:
        return 4;
    case IJL_JBUFF_READONEEIGHTH:
        return 8;
    default:
        return 0;
    }
}

J_COLOR_SPACE ColorSpaceOfRows(const JPEG_CORE_PROPERTIES& properties) {
    if (properties.DIBChannels != kChannels) return JCS_UNKNOWN;
    if (properties.DIBColor == IJL_BGR) return JCS_EXT_BGR;
    return properties.DIBColor == IJL_RGB ? JCS_EXT_RGB : JCS_UNKNOWN;
}

J_COLOR_SPACE ColorSpaceOfStream(const JPEG_CORE_PROPERTIES& properties, int channels) {
    if (channels == 1 && properties.JPGColor == IJL_G) return JCS_GRAYSCALE;
    if (channels == 3 && properties.JPGColor == IJL_YCBCR) return JCS_YCbCr;
    return channels == 3 && properties.JPGColor == IJL_RGB ? JCS_RGB : JCS_UNKNOWN;
}

std::int64_t PitchOf(const JPEG_CORE_PROPERTIES& properties) {
    return std::int64_t{properties.DIBWidth} * kChannels + properties.DIBPadBytes;
}

// Rows must not overlap, whichever way they run.
bool HasPossibleRows(const JPEG_CORE_PROPERTIES& properties) {
    if (properties.DIBPadBytes < -kMostPadBytes || properties.DIBPadBytes > kMostPadBytes) return false;
    return std::abs(PitchOf(properties)) >= std::int64_t{properties.DIBWidth} * kChannels;
}

struct StreamReader : JpegDecoder {
    explicit StreamReader(const JPEG_CORE_PROPERTIES& record) : properties(record) {}
    const JPEG_CORE_PROPERTIES& properties;
};

void ReadHeader(StreamReader& reader) {
    reader.Create();
    jpeg_mem_src(&reader.info, reader.properties.JPGBytes, reader.properties.JPGSizeBytes);
    jpeg_read_header(&reader.info, TRUE);
}

void CalculateSize(StreamReader& reader) { jpeg_calc_output_dimensions(&reader.info); }

void ReadRows(StreamReader& reader) {
    jpeg_decompress_struct& info = reader.info;
    jpeg_start_decompress(&info);
    const std::int64_t pitch = PitchOf(reader.properties);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = reader.properties.DIBBytes + pitch * info.output_scanline;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
}

// Sets up the decoding; nothing is written unless stream, record and rows agree.
int PrepareToRead(StreamReader& reader, unsigned scale) {
    const JPEG_CORE_PROPERTIES& properties = reader.properties;
    jpeg_decompress_struct& info = reader.info;
    info.jpeg_color_space = ColorSpaceOfStream(properties, info.num_components);
    info.out_color_space = ColorSpaceOfRows(properties);
    if (info.jpeg_color_space == JCS_UNKNOWN || info.out_color_space == JCS_UNKNOWN)
        return IJL_UNSUPPORTED_COLORS;
    if (info.image_width != properties.JPGWidth || info.image_height != properties.JPGHeight)
        return IJL_SIZE_MISMATCH;
    info.scale_num = 1;
    info.scale_denom = scale;
    if (const JpegFault fault = reader.errors.Run<CalculateSize>(reader); fault != JpegFault::None)
        return StatusOf(fault);
    if (info.output_width != properties.DIBWidth || info.output_height != properties.DIBHeight)
        return IJL_SIZE_MISMATCH;
    return HasPossibleRows(properties) ? IJL_OK : IJL_INVALID_ROW_PADDING;
}

struct StreamWriter : JpegEncoder {
    explicit StreamWriter(const JPEG_CORE_PROPERTIES& record) : properties(record) {}
    const JPEG_CORE_PROPERTIES& properties;
    jpeg_destination_mgr buffer{};
};

// libjpeg calls this as soon as the buffer is full, even if nothing is to follow.
boolean OnFullBuffer(j_compress_ptr info) {
    JpegErrors::LeaveStep(reinterpret_cast<j_common_ptr>(info), JpegFault::BufferFull);
}

void WriteRows(StreamWriter& writer) {
    const JPEG_CORE_PROPERTIES& properties = writer.properties;
    jpeg_compress_struct& info = writer.info;
    jpeg_create_compress(&info);
    writer.buffer = {.next_output_byte = properties.JPGBytes,
                     .free_in_buffer = properties.JPGSizeBytes,
                     .init_destination = [](j_compress_ptr) {},
                     .empty_output_buffer = OnFullBuffer,
                     .term_destination = [](j_compress_ptr) {}};
    info.dest = &writer.buffer;
    info.image_width = properties.DIBWidth;
    info.image_height = properties.DIBHeight;
    info.input_components = kChannels;
    info.in_color_space = ColorSpaceOfRows(properties);
    jpeg_set_defaults(&info);

    jpeg_start_compress(&info, TRUE);
    const std::int64_t pitch = PitchOf(properties);
    while (info.next_scanline < info.image_height) {
        JSAMPROW row = properties.DIBBytes + pitch * info.next_scanline;
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
}

}  // namespace

int ijlInit(JPEG_CORE_PROPERTIES* properties) {
    if (!properties) return IJL_NULL_ARGUMENT;
    properties->isInitialized = true;
    return IJL_OK;
}

int ijlRead(JPEG_CORE_PROPERTIES* properties, IJLIOTYPE mode) {
    if (!properties || !properties->JPGBytes) return IJL_NULL_ARGUMENT;
    if (!properties->isInitialized) return IJL_NOT_INITIALIZED;
    const unsigned scale = ScaleOf(mode);
    if (scale == 0 && mode != IJL_JBUFF_READPARAMS) return IJL_INVALID_MODE;
    if (scale != 0 && !properties->DIBBytes) return IJL_NULL_ARGUMENT;
    if (properties->JPGSizeBytes < 2 || properties->JPGBytes[0] != 0xFF || properties->JPGBytes[1] != 0xD8)
        return IJL_NOT_A_JPEG;

    StreamReader reader(*properties);
    if (const JpegFault fault = reader.errors.Run<ReadHeader>(reader); fault != JpegFault::None)
        return StatusOf(fault);
    if (reader.info.arith_code) return IJL_UNSUPPORTED_JPEG;
    if (!reader.CanStandIn(properties->JPGSizeBytes)) return IJL_CUT_DATA;
    if (scale == 0) {
        properties->JPGWidth = reader.info.image_width;
        properties->JPGHeight = reader.info.image_height;
        properties->JPGChannels = static_cast<std::uint32_t>(reader.info.num_components);
        return IJL_OK;
    }
    if (const int status = PrepareToRead(reader, scale); status != IJL_OK) return status;
    return StatusOf(reader.errors.Run<ReadRows>(reader));
}

int ijlWrite(JPEG_CORE_PROPERTIES* properties, IJLIOTYPE mode) {
    if (!properties || !properties->DIBBytes || !properties->JPGBytes) return IJL_NULL_ARGUMENT;
    if (!properties->isInitialized) return IJL_NOT_INITIALIZED;
    if (mode != IJL_JBUFF_WRITEWHOLEIMAGE) return IJL_INVALID_MODE;
    if (ColorSpaceOfRows(*properties) == JCS_UNKNOWN) return IJL_UNSUPPORTED_COLORS;
    constexpr std::uint32_t kLargest = JPEG_MAX_DIMENSION;
    if (properties->DIBWidth == 0 || properties->DIBWidth > kLargest || properties->DIBHeight == 0 ||
        properties->DIBHeight > kLargest)
        return IJL_SIZE_MISMATCH;
    if (!HasPossibleRows(*properties)) return IJL_INVALID_ROW_PADDING;
    if (properties->JPGSizeBytes == 0) return IJL_BUFFER_TOO_SMALL;

    StreamWriter writer(*properties);
    const JpegFault fault = writer.errors.Run<WriteRows>(writer);
    if (fault == JpegFault::None)
        properties->JPGSizeBytes -= static_cast<std::uint32_t>(writer.buffer.free_in_buffer);
    return StatusOf(fault);
}

int ijlFree(JPEG_CORE_PROPERTIES* properties) {
    if (!properties) return IJL_NULL_ARGUMENT;
    if (!properties->isInitialized) return IJL_NOT_INITIALIZED;
    *properties = {};
    return IJL_OK;
}

}  // namespace Zelkor::Platform
