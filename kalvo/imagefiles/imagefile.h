#pragma once
// What the codecs of image files share: the pixels they read into or write from, whatever the pixel type, and
// a file that is read at checked offsets. Above them stands the choice of the format.

#include <array>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string_view>
#include <vector>

#include "kalvo/image/kximagefiletypes.h"
#include "kalvo/image/regionrows.h"
#include "kalvo/measure/kxunit.h"
#include "kalvo/streams/byteorder.h"

namespace Zelkor::Kalvo {

/// A pixel type as image files see it.
struct SampleFormat {
    KX_IMAGE_TYPES type;
    int planes;  ///< samples per pixel: 1 or 3
    int bits;    ///< bits of the first sample
};

/// The four planes of a `KxC24A` travel as one sample of 32 bits.
template <class Pixel>
constexpr SampleFormat FormatOf() {
    using Traits = PixelTraits<Pixel>;
    const int planes = Traits::kPlanesPerPixel == 4 ? 1 : Traits::kPlanesPerPixel;
    return {Traits::kImageType, planes, Traits::kBitsPerPixel / planes};
}

/// Pixels per unit; both 0 when a file tells nothing.
struct FileResolution {
    float x = 0;
    float y = 0;
    const KxMeasurementUnit* unit = &KxUnitNone;

    bool IsKnown() const { return std::isnormal(x) && std::isnormal(y); }
    /// The numbers of pixels per `target`, or the numbers as they are when the unit has no length.
    FileResolution In(const KxMeasurementUnit& target) const;
};

/// The resolution of a region. Its unit is the predefined one that equals the unit of the image, if there is
/// one, so that codecs may compare addresses.
FileResolution ResolutionOf(const KxGenericROI& region);

/// The integer part of a number of pixels per unit, for formats that hold no fractions; 0 to `largest`.
std::uint32_t WholePixels(float pixelsPerUnit, std::uint32_t largest);

/// The image or region that a file is loaded into.
class LoadTarget {
public:
    LoadTarget(KxGenericROI& region, SampleFormat format) : m_region(region), m_format(format) {}

    SampleFormat Format() const { return m_format; }
    KxGenericROI& Region() const { return m_region; }

    /// Throws KX_ERROR_SIZE_MISMATCH when a region (not an image) has another size. Nothing is changed yet.
    void RequireSize(std::uint32_t width, std::uint32_t height) const;
    /// The rows to fill: an image takes the size of the file, a region must have it already. The resolution
    /// is set too. Call it when everything else about the file is known to be right.
    RegionRows Prepare(std::uint32_t width, std::uint32_t height, const FileResolution& resolution) const;

private:
    KxGenericROI& m_region;
    SampleFormat m_format;
};

/// The image or region that is saved to a file.
struct SaveSource {
    const KxGenericROI& region;
    SampleFormat format;
    ConstRegionRows rows;
    FileResolution resolution;
};

/// A file open for reading, whose every access is checked against its size. Small reads that follow one
/// another cost no system call of their own.
class ImageFileReader {
public:
    explicit ImageFileReader(std::FILE* stream);

    std::uint64_t Size() const { return m_size; }
    /// Throws KX_ERROR_FILE_READ unless the file holds `bytes` bytes at `offset`.
    void Require(std::uint64_t offset, std::uint64_t bytes) const;
    /// Fills `bytes` from `offset`; throws KX_ERROR_FILE_READ when the file ends before.
    void Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const;
    /// The little-endian value at `offset`; throws like `Read`.
    template <std::integral Value>
    Value Field(std::uint64_t offset) const {
        std::array<std::uint8_t, sizeof(Value)> bytes;
        Read(offset, bytes);
        return LoadLittleEndian<Value>(bytes.data());
    }
    std::FILE* Stream() const { return m_stream; }

private:
    void ReadStream(std::uint64_t offset, std::span<std::uint8_t> bytes) const;

    std::FILE* m_stream;
    std::uint64_t m_size;
    mutable std::vector<std::uint8_t> m_window;  // the part of the file around the latest small read
    mutable std::uint64_t m_windowOffset = 0;
};

/// Writes bytes at the current position; throws KX_ERROR_FILE_WRITE.
void WriteBytes(std::FILE* stream, std::span<const std::uint8_t> bytes);

// The codecs. Readers return the format found. Failures are thrown; the pixels of the target are untouched as
// long as reading them has not begun.
IMAGE_FILE_TYPES ReadTiff(const ImageFileReader& file, const LoadTarget& target);
IMAGE_FILE_TYPES ReadBmp(const ImageFileReader& file, const LoadTarget& target);
IMAGE_FILE_TYPES ReadJpeg(const ImageFileReader& file, const LoadTarget& target);
/// @param type  one of the five TIFF types 0 to 4, checked against the pixel type
void WriteTiff(std::FILE* stream, const SaveSource& source, IMAGE_FILE_TYPES type);
void WriteBmp(std::FILE* stream, const SaveSource& source);
void WriteJpeg(std::FILE* stream, const SaveSource& source);

/// Finds the format in the first bytes of the file and reads it; the same failures.
IMAGE_FILE_TYPES ReadImageFile(const ImageFileReader& file, const LoadTarget& target);

/// The format in which a pixel type is saved. Throws the code that tells why there is none.
/// @param requestedType  any number; IMAGE_FILE_AUTO chooses by the extension
/// @param extension      in lower case, without the dot
IMAGE_FILE_TYPES ChooseFileType(KX_IMAGE_TYPES pixelType, int requestedType, std::string_view extension);

/// Writes the whole file in a format that `ChooseFileType` gave.
void WriteImageFile(std::FILE* stream, const SaveSource& source, IMAGE_FILE_TYPES type);

}  // namespace Zelkor::Kalvo
