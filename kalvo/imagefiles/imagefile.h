#pragma once
// Image files whatever their format: they are inspected, then loaded, and saved in a format that is chosen
// before. The formats themselves stand in the files of their codecs.

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kalvo/image/kximagefiletypes.h"
#include "kalvo/image/regionrows.h"
#include "kalvo/imagefiles/filelayout.h"
#include "kalvo/imagefiles/imagefilereader.h"
#include "kalvo/measure/kxunit.h"

namespace Zelkor::Kalvo {

// A pixel type as image files see it.
struct SampleFormat {
    KX_IMAGE_TYPES type;
    int planes;  // samples per pixel: 1 or 3
    int bits;    // bits of the first sample
};

// The four planes of a `KxC24A` travel as one sample of 32 bits.
template <class Pixel>
constexpr SampleFormat FormatOf() {
    using Traits = PixelTraits<Pixel>;
    const int planes = Traits::kPlanesPerPixel == 4 ? 1 : Traits::kPlanesPerPixel;
    return {Traits::kImageType, planes, Traits::kBitsPerPixel / planes};
}

// Pixels per unit; both 0 when a file tells nothing.
struct FileResolution {
    float x = 0;
    float y = 0;
    const KxMeasurementUnit* unit = &KxUnitNone;

    bool IsKnown() const { return std::isnormal(x) && std::isnormal(y); }
    // The numbers of pixels per `target`, or the numbers as they are when the unit has no length.
    FileResolution In(const KxMeasurementUnit& target) const;
};

// A text of a file, and where regions keep it.
struct FileText {
    std::unique_ptr<char[]> RegionTexts::*field;
    std::string value;
};

// A file whose header was read. What else is asked of it throws KX_ERROR_FILE_READ when the file ends
// before.
class InspectedFile {
public:
    // What the header tells. No side is larger than an `int`; BMP files may be of no size.
    struct Header {
        IMAGE_FILE_TYPES type;
        FileLayout layout;
        std::uint32_t width;
        std::uint32_t height;
    };

    explicit InspectedFile(const Header& header) : m_header(header) {}
    InspectedFile(const InspectedFile&) = delete;
    InspectedFile& operator=(const InspectedFile&) = delete;
    virtual ~InspectedFile() = default;

    const Header& GetHeader() const { return m_header; }
    // The number of pictures in the file. Everything else here is about the first.
    virtual std::uint32_t CountPages() const { return 1; }
    virtual FileResolution Resolution() const = 0;
    virtual std::vector<FileText> Texts() const { return {}; }
    // Throws when pixels are missing, as far as that can be told without reading them.
    virtual void RequirePixels() const = 0;
    // Fills `rows`, which have the size of the picture and belong to a pixel type that takes it.
    virtual void ReadPixels(const RegionRows& rows, int bitsPerPixel) const = 0;

private:
    Header m_header;
};

// They throw when a header tells nothing. `file` must outlive what they return.
std::unique_ptr<InspectedFile> InspectTiff(const ImageFileReader& file);
std::unique_ptr<InspectedFile> InspectBmp(const ImageFileReader& file);
std::unique_ptr<InspectedFile> InspectJpeg(const ImageFileReader& file);
// Finds the format in the first bytes of the file and inspects it.
std::unique_ptr<InspectedFile> Inspect(const ImageFileReader& file);

// Throws the code of the refusal unless images of `destination` take the file.
void RequireFit(const InspectedFile& file, KX_IMAGE_TYPES destination);
// Loads the picture into an image, which takes its size, or into a region, which must have it. The
// destination is untouched as long as reading pixels has not begun.
void Load(const InspectedFile& file, KxGenericROI& destination);
// Sets resolution and texts of a region from the file.
void Describe(const InspectedFile& file, KxGenericROI& region);

// The resolution of a region. Its unit is the predefined one that equals the unit of the image, if there is
// one, so that codecs may compare addresses.
FileResolution ResolutionOf(const KxGenericROI& region);

// The integer part of a number of pixels per unit, for formats that hold no fractions; 0 to `largest`.
std::uint32_t WholePixels(float pixelsPerUnit, std::uint32_t largest);

// The image or region that is saved to a file.
struct SaveSource {
    const KxGenericROI& region;
    SampleFormat format;
    ConstRegionRows rows;
    FileResolution resolution;
};

// Writes bytes at the current position; throws KX_ERROR_FILE_WRITE.
void WriteBytes(std::FILE* stream, std::span<const std::uint8_t> bytes);

// @param type  one of the five TIFF types 0 to 4, checked against the pixel type
void WriteTiff(std::FILE* stream, const SaveSource& source, IMAGE_FILE_TYPES type);
void WriteBmp(std::FILE* stream, const SaveSource& source);
void WriteJpeg(std::FILE* stream, const SaveSource& source);

// The format in which a pixel type is saved. Throws the code that tells why there is none.
// @param requestedType  any number; IMAGE_FILE_AUTO chooses by the extension
// @param extension      in lower case, without the dot
IMAGE_FILE_TYPES ChooseFileType(KX_IMAGE_TYPES pixelType, int requestedType, std::string_view extension);

// Writes the whole file in a format that `ChooseFileType` gave.
void WriteImageFile(std::FILE* stream, const SaveSource& source, IMAGE_FILE_TYPES type);

}  // namespace Zelkor::Kalvo
