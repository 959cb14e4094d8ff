// Writes baseline JPEG files of one or three components, row by row from the source.

#include <algorithm>
#include <cstdint>

#include "kalvo/frame/kxthread.h"
#include "kalvo/imagefiles/imagefile.h"
#include "kalvo/imagefiles/libjpeg.h"

namespace Zelkor::Kalvo {
namespace {

struct FileEncoder : Platform::JpegEncoder {
    FileEncoder(std::FILE* destination, const SaveSource& pixels, int percent)
        : stream(destination), source(pixels), quality(percent) {}
    std::FILE* stream;
    const SaveSource& source;
    int quality;
};

void SetDensity(jpeg_compress_struct& info, const FileResolution& resolution) {
    const bool isPlain = resolution.unit == &KxUnitNone || resolution.unit == &KxUnit_inch;
    const FileResolution density = isPlain ? resolution : resolution.In(KxUnit_cm);
    constexpr std::uint32_t kLargest = 0xFFFF;
    info.density_unit = resolution.unit == &KxUnitNone ? 0 : resolution.unit == &KxUnit_inch ? 1 : 2;
    info.X_density = static_cast<UINT16>(WholePixels(density.x, kLargest));
    info.Y_density = static_cast<UINT16>(WholePixels(density.y, kLargest));
}

void WriteAll(FileEncoder& encoder) {
    jpeg_compress_struct& info = encoder.info;
    const ConstRegionRows& rows = encoder.source.rows;
    jpeg_create_compress(&info);
    jpeg_stdio_dest(&info, encoder.stream);
    info.image_width = static_cast<JDIMENSION>(rows.width);
    info.image_height = static_cast<JDIMENSION>(rows.height);
    info.input_components = encoder.source.format.planes;
    info.in_color_space = info.input_components == 1 ? JCS_GRAYSCALE : JCS_EXT_BGR;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, encoder.quality, TRUE);
    SetDensity(info, encoder.source.resolution);

    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        // libjpeg reads the row but does not say so.
        JSAMPROW row = const_cast<JSAMPLE*>(rows.Row(static_cast<int>(info.next_scanline)));
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
}

}  // namespace

void WriteJpeg(std::FILE* stream, const SaveSource& source) {
    constexpr std::uint32_t kBest = 100;
    const OzzoTLSStruct* record = KxGetTLSPtr();
    if (!record) throw Exception(KX_ERROR_CANNOT_TRACE);
    FileEncoder encoder(stream, source, static_cast<int>(std::min(record->m_un32JpegQuality, kBest)));
    RequireNoFault(encoder.errors.Run<WriteAll>(encoder), KX_ERROR_JPEG_WRITE);
}

}  // namespace Zelkor::Kalvo
