// Finding the format of an image file, loading it whatever it is, choosing one for saving, resolutions.

#include "kalvo/imagefiles/imagefile.h"

#include <algorithm>
#include <array>

#include "kalvo/frame/kxexception.h"
#include "kalvo/image/imagecore.h"
#include "kalvo/image/regioncopy.h"

namespace Zelkor::Kalvo {
namespace {

// One cell of the table of choices: the type that is written, or from 1000 up the code of the refusal.
using Choice = int;

constexpr Choice kNoTiff = KX_ERROR_UNSUPPORTED_TIFF;
constexpr Choice kNoBmp = KX_ERROR_UNSUPPORTED_BMP;
constexpr Choice kNoJpeg = KX_ERROR_UNSUPPORTED_JPEG;
constexpr Choice kNotBilevel = KX_ERROR_BILEVEL_FORMAT_EXPECTED;
constexpr Choice kNotGray = KX_ERROR_GRAY_FORMAT_EXPECTED;
constexpr Choice kNotColor = KX_ERROR_COLOR_FORMAT_EXPECTED;
constexpr Choice kNoType = KX_ERROR_UNSUPPORTED_IMAGE_TYPE;
constexpr Choice kNoExtension = KX_ERROR_FILE_EXTENSION;

struct ChoiceRow {
    Choice bw1, bw8, deepGray, c24, c24a, c15c16;

    Choice For(KX_IMAGE_TYPES pixelType) const {
        switch (pixelType) {
        case KX_IMAGE_BW1:
            return bw1;
        case KX_IMAGE_BW8:
            return bw8;
        case KX_IMAGE_BW16:
        case KX_IMAGE_BW32:
            return deepGray;
        case KX_IMAGE_C24:
            return c24;
        case KX_IMAGE_C24A:
            return c24a;
        case KX_IMAGE_C15:
        case KX_IMAGE_C16:
            return c15c16;
        default:
            return kNoType;
        }
    }
};

// clang-format off
// The row of a type is its number.
constexpr ChoiceRow kRequested[] = {
    //      BW1          BW8    BW16, BW32        C24     C24A  C15, C16
    {         0,           0,     kNotGray, kNotColor, kNotGray,  kNoTiff},
    {kNotBilevel,          1,            1, kNotColor,        1,  kNoTiff},
    {kNotBilevel,   kNotGray,     kNotGray,         2,  kNoTiff,  kNoTiff},
    {    kNoType,          3,     kNotGray, kNotColor, kNotGray,  kNoTiff},
    {kNotBilevel,          4,     kNotGray, kNotColor, kNotGray,  kNoTiff},
    {    kNoTiff,    kNoTiff,      kNoTiff,   kNoTiff,  kNoTiff,  kNoTiff},
    {          6,   kNotGray,       kNoBmp, kNotColor,   kNoBmp, kNotColor},
    {kNotBilevel,          7,       kNoBmp, kNotColor,   kNoBmp, kNotColor},
    {kNotBilevel,   kNotGray,       kNoBmp,         8,        8,         8},
    {    kNoType,    kNoType,      kNoType,   kNoType,  kNoType,   kNoType},
    {kNotBilevel,         10,      kNoJpeg, kNotColor,  kNoJpeg,   kNoJpeg},
    {kNotBilevel,   kNotGray,      kNoJpeg,        11,  kNoJpeg,   kNoJpeg},
};

constexpr struct {
    std::string_view extension;
    ChoiceRow choices;
} kByExtension[] = {
    {"bmp", {           6,  7,  kNoBmp,  8,       8,       8}},
    {"tif", {           0,  1,       1,  2, kNoTiff, kNoTiff}},
    {"jpg", {kNoExtension, 10, kNoJpeg, 11, kNoJpeg, kNoJpeg}},
};
// clang-format on

Choice Choose(KX_IMAGE_TYPES pixelType, int requestedType, std::string_view extension) {
    if (requestedType == IMAGE_FILE_AUTO) {
        const auto row =
            std::ranges::find(kByExtension, extension, [](const auto& r) { return r.extension; });
        return row != std::end(kByExtension) ? row->choices.For(pixelType) : kNoExtension;
    }
    const bool isType = requestedType >= 0 && requestedType < std::ssize(kRequested);
    return isType ? kRequested[requestedType].For(pixelType) : kNoType;
}

void RequireSize(const KxGenericROI& region, const InspectedFile::Header& header) {
    if (region.GetWidth() != std::int64_t{header.width} || region.GetHeight() != std::int64_t{header.height})
        throw Exception(KX_ERROR_SIZE_MISMATCH);
}

void SetResolution(KxGenericROI& region, const FileResolution& resolution) {
    const bool isKnown = resolution.IsKnown();
    KxMeasurementUnit unit = isKnown ? *resolution.unit : KxUnitNone;
    region.SetResolution(isKnown ? resolution.x : 1, isKnown ? resolution.y : 1, &unit);
}

void SetTexts(KxGenericROI& region, const std::vector<FileText>& texts) {
    for (const FileText& text : texts) RegionCopy::SetText(region, text.field, text.value.c_str());
}

}  // namespace

FileResolution FileResolution::In(const KxMeasurementUnit& target) const {
    if (unit->GetMagnitude() == 0) return *this;
    const float unitsPerTarget = target.ConversionFactorTo(*unit);
    return {x * unitsPerTarget, y * unitsPerTarget, &target};
}

FileResolution ResolutionOf(const KxGenericROI& region) {
    FileResolution resolution;
    region.GetResolution(resolution.x, resolution.y, resolution.unit);
    const KxMeasurementUnit* predefined = KxMeasurementUnit::GetPredefinedUnit(resolution.unit->GetName());
    if (predefined && predefined->GetMagnitude() == resolution.unit->GetMagnitude())
        resolution.unit = predefined;
    return resolution;
}

// A file of 1000 pixels per metre may come back as 999: images keep the size of a pixel, its inverse.
std::uint32_t WholePixels(float pixelsPerUnit, std::uint32_t largest) {
    if (!(pixelsPerUnit > 0)) return 0;
    return double{pixelsPerUnit} < largest ? static_cast<std::uint32_t>(pixelsPerUnit) : largest;
}

void WriteBytes(std::FILE* stream, std::span<const std::uint8_t> bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), stream) != bytes.size())
        throw Exception(KX_ERROR_FILE_WRITE);
}

std::unique_ptr<InspectedFile> Inspect(const ImageFileReader& file) {
    std::array<std::uint8_t, 16> start;
    file.Read(0, start);
    const std::string_view text(reinterpret_cast<const char*>(start.data()), start.size());
    if (text.starts_with("II") || text.starts_with("MM")) return InspectTiff(file);
    if (text.starts_with("BM")) return InspectBmp(file);
    const std::string_view application = text.substr(6, 4);
    if (application == "JFIF" || application == "Exif") return InspectJpeg(file);
    throw Exception(KX_ERROR_BAD_FILE_FORMAT);
}

void RequireFit(const InspectedFile& file, KX_IMAGE_TYPES destination) {
    const InspectedFile::Header& header = file.GetHeader();
    if (const KX_ERRORS refusal = RefusalOf(header.layout, destination)) throw Exception(refusal);
    if (header.width == 0 || header.height == 0) throw Exception(KX_ERROR_BAD_FILE_FORMAT);
}

void Load(const InspectedFile& file, KxGenericROI& destination) {
    const InspectedFile::Header& header = file.GetHeader();
    RequireFit(file, destination.GetType());
    if (destination.IsAnROI()) RequireSize(destination, header);

    // Everything that may turn out wrong comes before the first change of the destination.
    const std::vector<FileText> texts = file.Texts();
    const FileResolution resolution = file.Resolution();
    file.RequirePixels();
    if (!destination.IsAnROI())
        ImageCore::ResizeByItself(destination, static_cast<int>(header.width),
                                  static_cast<int>(header.height));
    if (destination.Void()) throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);
    SetResolution(destination, resolution);
    file.ReadPixels(RowsOf(destination), destination.GetBitsPerPixel());
    SetTexts(destination, texts);
}

void Describe(const InspectedFile& file, KxGenericROI& region) {
    SetResolution(region, file.Resolution());
    SetTexts(region, file.Texts());
}

IMAGE_FILE_TYPES ChooseFileType(KX_IMAGE_TYPES pixelType, int requestedType, std::string_view extension) {
    const Choice choice = Choose(pixelType, requestedType, extension);
    if (choice >= 1000) throw Exception(static_cast<KX_ERRORS>(choice));
    return static_cast<IMAGE_FILE_TYPES>(choice);
}

void WriteImageFile(std::FILE* stream, const SaveSource& source, IMAGE_FILE_TYPES type) {
    if (type <= IMAGE_FILE_TIFF_COLOR_PACKBITS)
        WriteTiff(stream, source, type);
    else if (type <= IMAGE_FILE_BMP_COLOR)
        WriteBmp(stream, source);
    else
        WriteJpeg(stream, source);
}

}  // namespace Zelkor::Kalvo
