// Reads JPEG files of one or three components, row by row into the destination.

#include <algorithm>
#include <cstdint>

#include "kalvo/persistence/imagefile.h"
#include "kalvo/persistence/jpegerror.h"
#include "kalvo/platform/file.h"

namespace Zelkor::Kalvo {
namespace {

// A scan over all blocks may take a few bytes of file; only a bound on their number bounds the time.
constexpr int kMaxScans = 64;

struct Decoder {
    JpegErrors errors{KX_ERROR_JPEG_READ};
    jpeg_decompress_struct info{};
    jpeg_progress_mgr progress{};
    std::FILE* stream;
    RegionRows rows;

    explicit Decoder(std::FILE* source) : stream(source) { info.err = errors.Manager(); }
    ~Decoder() { jpeg_destroy_decompress(&info); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;
};

void OnProgress(j_common_ptr info) {
    if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > kMaxScans)
        JpegErrors::LeaveStep(info, KX_ERROR_JPEG_READ);
}

void ReadHeader(Decoder& decoder) {
    jpeg_create_decompress(&decoder.info);
    decoder.progress.progress_monitor = OnProgress;
    decoder.info.progress = &decoder.progress;
    jpeg_stdio_src(&decoder.info, decoder.stream);
    jpeg_read_header(&decoder.info, TRUE);
}

void ReadRows(Decoder& decoder) {
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

// A header may declare far more than follows it. Every block of 8 x 8 samples takes at least one bit of file,
// so forged sizes cost a comparison, not memory.
void RequireBlocks(const jpeg_decompress_struct& info, const ImageFileReader& file) {
    std::uint64_t blocks = 0;
    for (int i = 0; i < info.num_components; ++i) {
        const jpeg_component_info& component = info.comp_info[i];
        blocks = std::max(blocks, std::uint64_t{component.width_in_blocks} * component.height_in_blocks);
    }
    if (blocks / 8 > file.Size()) throw Exception(KX_ERROR_FILE_READ);
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
    Decoder decoder(file.Stream());
    decoder.errors.Run<ReadHeader>(decoder);
    const jpeg_decompress_struct& info = decoder.info;
    RequireFit(info, target.Format());
    RequireBlocks(info, file);
    decoder.rows = target.Prepare(info.image_width, info.image_height, ResolutionOf(info));
    decoder.errors.Run<ReadRows>(decoder);
    return info.num_components == 1 ? IMAGE_FILE_JPEG_GRAY : IMAGE_FILE_JPEG_COLOR;
}

}  // namespace Zelkor::Kalvo
