// Reads JPEG files of one or three components, row by row into the destination.

#include "kalvo/base/file.h"
#include "kalvo/imagefiles/imagefile.h"
#include "kalvo/imagefiles/libjpeg.h"

namespace Zelkor::Kalvo {
namespace {

struct FileDecoder : Platform::JpegDecoder {
    explicit FileDecoder(std::FILE* source) : stream(source) {}
    std::FILE* stream;
    RegionRows rows;
};

void ReadHeader(FileDecoder& decoder) {
    decoder.Create();
    jpeg_stdio_src(&decoder.info, decoder.stream);
    jpeg_read_header(&decoder.info, TRUE);
}

void ReadRows(FileDecoder& decoder) {
    jpeg_decompress_struct& info = decoder.info;
    if (info.num_components == 3) info.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&info);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = decoder.rows.Row(static_cast<int>(info.output_scanline));
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
}

void RequirePossibleTarget(const SampleFormat& format) {
    if (format.planes == 1 && format.bits == 1) throw Exception(KX_ERROR_BILEVEL_IMAGE_EXPECTED);
    if (format.planes == 3 && format.bits != 8) throw Exception(KX_ERROR_UNSUPPORTED_JPEG);
}

void RequireFit(const jpeg_decompress_struct& info, const SampleFormat& format) {
    const bool isGray = info.num_components == 1 && info.out_color_space == JCS_GRAYSCALE;
    const bool isColor = info.num_components == 3 && info.out_color_space == JCS_RGB;
    if ((!isGray && !isColor) || info.arith_code) throw Exception(KX_ERROR_UNSUPPORTED_JPEG);
    if (isColor && format.planes == 1) throw Exception(KX_ERROR_GRAY_IMAGE_EXPECTED);
    if (isGray && format.planes == 3) throw Exception(KX_ERROR_COLOR_IMAGE_EXPECTED);
    if (format.type == KX_IMAGE_C24A) throw Exception(KX_ERROR_UNSUPPORTED_JPEG);
    if (format.bits == 16) throw Exception(KX_ERROR_BW16_EXPECTED);
    if (format.bits == 32) throw Exception(KX_ERROR_BW32_EXPECTED);
}

FileResolution ResolutionOf(const jpeg_decompress_struct& info) {
    FileResolution resolution{static_cast<float>(info.X_density), static_cast<float>(info.Y_density)};
    if (info.density_unit == 1) resolution.unit = &KxUnit_inch;
    if (info.density_unit == 2) resolution.unit = &KxUnit_cm;
    return resolution;
}

}  // namespace

IMAGE_FILE_TYPES ReadJpeg(const ImageFileReader& file, const LoadTarget& target) {
    RequirePossibleTarget(target.Format());
    if (!Platform::Seek(file.Stream(), 0)) throw Exception(KX_ERROR_FILE_READ);
    FileDecoder decoder(file.Stream());
    RequireNoFault(decoder.errors.Run<ReadHeader>(decoder), KX_ERROR_JPEG_READ);
    const jpeg_decompress_struct& info = decoder.info;
    RequireFit(info, target.Format());
    target.RequireSize(info.image_width, info.image_height);
    if (!decoder.CanStandIn(file.Size())) throw Exception(KX_ERROR_FILE_READ);
    decoder.rows = target.Prepare(info.image_width, info.image_height, ResolutionOf(info));
    RequireNoFault(decoder.errors.Run<ReadRows>(decoder), KX_ERROR_JPEG_READ);
    return info.num_components == 1 ? IMAGE_FILE_JPEG_GRAY : IMAGE_FILE_JPEG_COLOR;
}

}  // namespace Zelkor::Kalvo
