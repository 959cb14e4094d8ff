// Reads JPEG files of one or three components, row by row into the destination.

#include "kalvo/base/file.h"
#include "kalvo/imagefiles/imagefile.h"
#include "kalvo/imagefiles/libjpeg.h"

namespace Zelkor::Kalvo {
namespace {

using Platform::JpegFault;

struct FileDecoder : Platform::JpegDecoder {
    explicit FileDecoder(const ImageFileReader& file) : stream(file.Stream()) {
        if (!Platform::Seek(stream, 0)) throw Exception(KX_ERROR_FILE_READ);
    }
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

FileLayout LayoutOf(JpegFault fault, const jpeg_decompress_struct& info) {
    if (fault == JpegFault::OutOfMemory) throw Exception(KX_ERROR_ALLOCATION);
    if (fault != JpegFault::None)
        return fault == JpegFault::Cut ? FileLayout::JpegCut : FileLayout::JpegDamaged;
    if (info.arith_code) return FileLayout::JpegOther;
    if (info.num_components == 1 && info.out_color_space == JCS_GRAYSCALE) return FileLayout::JpegGray;
    if (info.num_components == 3 && info.out_color_space == JCS_RGB) return FileLayout::JpegColor;
    return FileLayout::JpegOther;
}

FileResolution ResolutionOf(const jpeg_decompress_struct& info) {
    FileResolution resolution{static_cast<float>(info.X_density), static_cast<float>(info.Y_density)};
    if (info.density_unit == 1) resolution.unit = &KxUnit_inch;
    if (info.density_unit == 2) resolution.unit = &KxUnit_cm;
    return resolution;
}

class JpegFile : public InspectedFile {
public:
    JpegFile(const ImageFileReader& file, const Header& header, const FileResolution& resolution,
             bool canHoldPixels)
        : InspectedFile(header), m_file(file), m_resolution(resolution), m_canHoldPixels(canHoldPixels) {}

    FileResolution Resolution() const override { return m_resolution; }
    void RequirePixels() const override {
        if (!m_canHoldPixels) throw Exception(KX_ERROR_FILE_READ);
    }
    void ReadPixels(const RegionRows& rows, int bitsPerPixel) const override;

private:
    const ImageFileReader& m_file;
    FileResolution m_resolution;
    bool m_canHoldPixels;
};

void JpegFile::ReadPixels(const RegionRows& rows, int /*bitsPerPixel*/) const {
    FileDecoder decoder(m_file);
    RequireNoFault(decoder.errors.Run<ReadHeader>(decoder), KX_ERROR_JPEG_READ);
    // Somebody may have written to the file since it was inspected.
    const jpeg_decompress_struct& info = decoder.info;
    const Header& header = GetHeader();
    if (LayoutOf(JpegFault::None, info) != header.layout || info.image_width != header.width ||
        info.image_height != header.height)
        throw Exception(KX_ERROR_FILE_READ);
    decoder.rows = rows;
    RequireNoFault(decoder.errors.Run<ReadRows>(decoder), KX_ERROR_JPEG_READ);
}

}  // namespace

std::unique_ptr<InspectedFile> InspectJpeg(const ImageFileReader& file) {
    FileDecoder decoder(file);
    const JpegFault fault = decoder.errors.Run<ReadHeader>(decoder);
    const jpeg_decompress_struct& info = decoder.info;
    const FileLayout layout = LayoutOf(fault, info);
    const InspectedFile::Header header{
        layout == FileLayout::JpegGray ? IMAGE_FILE_JPEG_GRAY : IMAGE_FILE_JPEG_COLOR, layout,
        info.image_width, info.image_height};
    const bool canHoldPixels = fault == JpegFault::None && decoder.CanStandIn(file.Size());
    return std::make_unique<JpegFile>(file, header, ResolutionOf(info), canHoldPixels);
}

}  // namespace Zelkor::Kalvo
