// Reads TIFF files: which pictures are accepted, which destination takes them, and in which order things
// change.

#include <limits>
#include <string>
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

// The code that names the pixels a destination of one plane needs.
KX_ERRORS ExpectedPixels(int bits) {
    switch (bits) {
    case 1:
        return KX_ERROR_BW1_EXPECTED;
    case 8:
        return KX_ERROR_BW8_EXPECTED;
    case 16:
        return KX_ERROR_BW16_EXPECTED;
    default:
        return KX_ERROR_BW32_EXPECTED;
    }
}

void RequireFit(const TiffPicture& picture, SampleFormat destination) {
    const int bits = static_cast<int>(picture.bits);
    if (picture.samples == 1) {
        if (destination.planes != 1) throw Exception(KX_ERROR_COLOR_IMAGE_EXPECTED);
        const bool expandsBits = bits == 1 && destination.bits == 8;
        if (destination.bits != bits && !expandsBits) throw Exception(ExpectedPixels(destination.bits));
        if (picture.isPacked && destination.bits == 1) throw Exception(KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    } else {
        if (destination.planes == 1) throw Exception(ExpectedPixels(destination.bits));
        if (destination.bits != bits) throw Exception(KX_ERROR_C24_EXPECTED);
    }
}

FileResolution ResolutionIn(const TiffDirectory& directory) {
    FileResolution resolution{directory.Rational(TiffTag::XResolution),
                              directory.Rational(TiffTag::YResolution)};
    const std::uint32_t unit = directory.Number(TiffTag::ResolutionUnit, kTiffNoUnit);
    if (unit == kTiffInch) resolution.unit = &KxUnit_inch;
    if (unit == kTiffCentimetre) resolution.unit = &KxUnit_cm;
    return resolution;
}

// The setters tell only the error slot that they found no memory.
void SetText(KxGenericROI& region, const TiffText& text, const std::string& value) {
    KxOk();
    (region.*text.set)(value.c_str());
    if (KxFailure()) throw Exception(KxGetError());
}

}  // namespace

IMAGE_FILE_TYPES ReadTiff(const ImageFileReader& file, const LoadTarget& target) {
    // Everything that may turn out wrong comes before Prepare, the first call that changes the destination.
    const TiffDirectory directory(file);
    const TiffPicture picture = PictureOf(directory);
    RequireFit(picture, target.Format());
    target.RequireSize(picture.width, picture.height);

    std::vector<std::pair<const TiffText*, std::string>> texts;
    for (const TiffText& text : kTiffTexts)
        if (auto value = directory.Text(text.tag)) texts.emplace_back(&text, std::move(*value));
    const FileResolution resolution = ResolutionIn(directory);
    RequireStrips(file, directory, picture);

    const RegionRows rows = target.Prepare(picture.width, picture.height, resolution);
    ReadStrips(file, directory, picture, rows, target.Format().bits);
    for (const auto& [text, value] : texts) SetText(target.Region(), *text, value);
    return TypeOf(picture);
}

}  // namespace Zelkor::Kalvo
