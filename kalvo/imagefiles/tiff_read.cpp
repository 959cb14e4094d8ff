// Reads TIFF files: which pictures are accepted, and what their directory tells of them.

#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "kalvo/frame/checkedsize.h"
#include "kalvo/imagefiles/imagefile.h"
#include "kalvo/imagefiles/tiff_directory.h"
#include "kalvo/imagefiles/tiff_strips.h"

namespace Zelkor::Kalvo {
namespace {

void RequireSupported(const TiffDirectory& directory, const TiffPicture& picture) {
    constexpr std::uint32_t kReducedPageOrMask = 7;
    constexpr std::uint32_t kNoPhotometric = std::numeric_limits<std::uint32_t>::max();
    const std::uint32_t compression = directory.Number(TiffTag::Compression, kTiffUncompressed);
    const std::uint32_t photometric = directory.Number(TiffTag::PhotometricInterpretation, kNoPhotometric);
    const std::uint32_t bits = picture.bits;

    const bool isGray = (compression == kTiffUncompressed || compression == kTiffPackBits) &&
                        picture.samples == 1 && (bits == 1 || bits == 8 || bits == 16 || bits == 32) &&
                        photometric == kTiffBlackIsZero;
    const bool isColor =
        compression == kTiffUncompressed && picture.samples == 3 && bits == 8 && photometric == kTiffRgb;
    const bool isPlanar = directory.Number(TiffTag::PlanarConfiguration, 1) != 1;
    const bool isPart = (directory.Number(TiffTag::NewSubfileType, 0) & kReducedPageOrMask) != 0;
    if (isPart || isPlanar || (!isGray && !isColor)) throw Exception(KX_ERROR_UNSUPPORTED_TIFF);
}

TiffPicture PictureOf(const TiffDirectory& directory) {
    TiffPicture picture{};
    picture.width = directory.Number(TiffTag::ImageWidth, 0);
    picture.height = directory.Number(TiffTag::ImageLength, 0);
    picture.samples = directory.Number(TiffTag::SamplesPerPixel, 1);
    picture.bits = directory.Number(TiffTag::BitsPerSample, 1);
    picture.rowsPerStrip = directory.Number(TiffTag::RowsPerStrip, picture.height);
    picture.strips = directory.Numbers(TiffTag::StripOffsets).Count();
    picture.isPacked = directory.Number(TiffTag::Compression, kTiffUncompressed) == kTiffPackBits;
    picture.isBigEndian = directory.IsBigEndian();
    picture.hasReversedBits = directory.Number(TiffTag::FillOrder, 1) == 2;

    // Only a single strip of plain rows tells its size without a byte count.
    const std::uint32_t byteCounts = directory.Numbers(TiffTag::StripByteCounts).Count();
    const bool needsByteCounts = picture.strips > 1 || picture.isPacked;
    constexpr std::uint32_t kMaxSize = std::numeric_limits<std::int32_t>::max();
    if (picture.width == 0 || picture.width > kMaxSize || picture.height == 0 || picture.height > kMaxSize ||
        picture.strips == 0 || (needsByteCounts && byteCounts < picture.strips))
        throw Exception(KX_ERROR_BAD_FILE_FORMAT);

    RequireSupported(directory, picture);
    picture.rowBytes = (std::uint64_t{picture.width} * picture.samples * picture.bits + 7) / 8;
    picture.bytes = CheckedSize(picture.rowBytes, picture.height);
    return picture;
}

IMAGE_FILE_TYPES TypeOf(const TiffPicture& picture) {
    if (picture.samples == 3) return IMAGE_FILE_TIFF_COLOR;
    if (picture.bits == 1)
        return picture.isPacked ? IMAGE_FILE_TIFF_BILEVEL_PACKBITS : IMAGE_FILE_TIFF_BILEVEL;
    return picture.isPacked && picture.bits == 8 ? IMAGE_FILE_TIFF_GRAY_PACKBITS : IMAGE_FILE_TIFF_GRAY;
}

FileLayout LayoutOf(const TiffPicture& picture) {
    if (picture.samples == 3) return FileLayout::TiffColor;
    switch (picture.bits) {
    case 1:
        return picture.isPacked ? FileLayout::TiffPackedBits : FileLayout::TiffBits;
    case 8:
        return FileLayout::TiffGray8;
    case 16:
        return FileLayout::TiffGray16;
    default:
        return FileLayout::TiffGray32;
    }
}

class TiffFile : public InspectedFile {
public:
    TiffFile(const ImageFileReader& file, TiffDirectory directory, const TiffPicture& picture)
        : InspectedFile({TypeOf(picture), LayoutOf(picture), picture.width, picture.height}),
          m_file(file),
          m_directory(std::move(directory)),
          m_picture(picture) {}

    std::uint32_t CountPages() const override { return m_directory.CountDirectories(); }
    FileResolution Resolution() const override;
    std::vector<FileText> Texts() const override;
    void RequirePixels() const override { RequireStrips(m_file, m_directory, m_picture); }
    void ReadPixels(const RegionRows& rows, int bitsPerPixel) const override {
        ReadStrips(m_file, m_directory, m_picture, rows, bitsPerPixel);
    }

private:
    const ImageFileReader& m_file;
    const TiffDirectory m_directory;
    const TiffPicture m_picture;
};

FileResolution TiffFile::Resolution() const {
    FileResolution resolution{m_directory.Rational(TiffTag::XResolution),
                              m_directory.Rational(TiffTag::YResolution)};
    const std::uint32_t unit = m_directory.Number(TiffTag::ResolutionUnit, kTiffNoUnit);
    if (unit == kTiffInch) resolution.unit = &KxUnit_inch;
    if (unit == kTiffCentimetre) resolution.unit = &KxUnit_cm;
    return resolution;
}

std::vector<FileText> TiffFile::Texts() const {
    std::vector<FileText> texts;
    for (const TiffText& text : kTiffTexts)
        if (auto value = m_directory.Text(text.tag)) texts.push_back({text.field, std::move(*value)});
    return texts;
}

}  // namespace

std::unique_ptr<InspectedFile> InspectTiff(const ImageFileReader& file) {
    TiffDirectory directory(file);
    const TiffPicture picture = PictureOf(directory);
    return std::make_unique<TiffFile>(file, std::move(directory), picture);
}

}  // namespace Zelkor::Kalvo
