// The pixel block of the full record of an image, and the partial records.

#include "kalvo/archive/imagerecord.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/checkedsize.h"
#include "kalvo/image/pixelblock.h"
#include "kalvo/image/regionrows.h"
#include "kalvo/streams/streambytes.h"

namespace Zelkor::Kalvo {
namespace {

// Bytes of a row that hold pixels.
std::int64_t UsefulRowBytes(const ImagePixels& pixels, std::int32_t width) {
    return (std::int64_t{width} * pixels.m_n32BitsPerPixel + 7) / 8;
}

void TransferPixelBytes(KxSerializer& stream, std::uint8_t* pixels, std::int64_t bytes) {
    TransferBlock(stream, pixels, static_cast<std::uint64_t>(bytes), "m_pImagePtr");
}

// Exchanges rows by way of one row of ours, of which the first `usefulBytes` are those of memory.
void TransferRowsByCopy(KxSerializer& stream, const RegionRows& rows, std::int64_t storedBytes,
                        std::int64_t usefulBytes) {
    const std::unique_ptr<std::uint8_t[]> copy(new (std::nothrow)
                                                   std::uint8_t[static_cast<std::size_t>(storedBytes)]);
    if (!copy) throw Exception(KX_ERROR_ALLOCATION);
    const bool reading = stream.IsReading();
    if (!reading) std::fill_n(copy.get() + usefulBytes, storedBytes - usefulBytes, std::uint8_t{0});
    for (int y = 0; y < rows.height; ++y) {
        if (!reading && usefulBytes > 0) std::copy_n(rows.Row(y), usefulBytes, copy.get());
        TransferPixelBytes(stream, copy.get(), storedBytes);
        if (reading && usefulBytes > 0) std::copy_n(copy.get(), usefulBytes, rows.Row(y));
    }
}

// Exchanges rows of `storedBytes` each, of which `usefulBytes` hold pixels: none when the image is empty, of
// which a stream may hold rows all the same.
void TransferRows(KxSerializer& stream, const RegionRows& rows, std::int64_t storedBytes,
                  std::int64_t usefulBytes) {
    if (storedBytes == 0 || rows.height == 0) return;
    if (usefulBytes == 0 || storedBytes > std::abs(rows.pitchBytes))
        return TransferRowsByCopy(stream, rows, storedBytes, usefulBytes);
    for (int y = 0; y < rows.height; ++y) TransferPixelBytes(stream, rows.Row(y), storedBytes);
}

// The same in one transfer when the rows lie in memory as in the stream.
void TransferPixels(KxSerializer& stream, const RegionRows& rows, std::int64_t storedBytes,
                    std::int64_t usefulBytes) {
    if (usefulBytes == 0 || storedBytes != rows.pitchBytes)
        return TransferRows(stream, rows, storedBytes, usefulBytes);
    TransferPixelBytes(stream, rows.first, storedBytes * rows.height);
}

// Bytes that one row of an image takes in a stream; the rows of a wrapped buffer may run upwards. Throws when
// pixels are missing, or lie over those of the next row.
std::int64_t RequireStorableRows(const UntypedRegion& image) {
    const KxGenericROI& region = *image.region;
    const std::int64_t rowBytes = std::abs(region.GetRowPitch());
    const bool hasPixels = region.GetWidth() != 0 && region.GetHeight() != 0;
    if (hasPixels && (region.Void() || rowBytes < UsefulRowBytes(*image.pixels, region.GetWidth())))
        throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);
    return rowBytes;
}

// Gives an image the size that a stream tells. Throws when no image of the pixel type has that size, or when
// the stream is too short for its rows.
void ResizeTo(const UntypedRegion& image, std::int32_t width, std::int32_t height,
              std::int64_t storedRowBytes, const KxSerializer& stream) {
    if (!PixelBlock::Fits(width, height, image.pixels->m_n32BitsPerPixel) ||
        storedRowBytes < UsefulRowBytes(*image.pixels, width))
        throw Exception(KX_ERROR_BAD_FILE_FORMAT);
    RequireBytes(stream,
                 CheckedSize(static_cast<std::uint64_t>(storedRowBytes), static_cast<std::uint64_t>(height)));
    ImageCore::ResizeByItself(*image.region, width, height);
    RequireStorableRows(image);
}

void WritePixels(const UntypedRegion& image, KxSerializer& stream) {
    const std::int64_t rowBytes = RequireStorableRows(image);
    auto bitsPerRow = static_cast<std::int32_t>(rowBytes * 8);
    std::int32_t bitsPerPixel = image.pixels->m_n32BitsPerPixel;
    TransferValue(stream, bitsPerPixel, "m_n32BitsPerPixel");
    TransferValue(stream, bitsPerRow, "m_n32BitsPerRow");
    TransferPixels(stream, RowsOf(*image.region), rowBytes,
                   UsefulRowBytes(*image.pixels, image.region->GetWidth()));
}

void ReadPixels(const UntypedRegion& image, KxSerializer& stream) {
    std::int32_t bitsPerPixel = 0;
    std::int32_t bitsPerRow = 0;
    TransferValue(stream, bitsPerPixel, "m_n32BitsPerPixel");
    TransferValue(stream, bitsPerRow, "m_n32BitsPerRow");
    if (bitsPerPixel != image.pixels->m_n32BitsPerPixel || bitsPerRow < 0)
        throw Exception(KX_ERROR_BAD_FILE_FORMAT);
    const GenericRoiExtent stored = ImageCore::TakePlacement(*image.region);
    ResizeTo(image, stored.m_n32Width, stored.m_n32Height, bitsPerRow / 8, stream);
    TransferPixels(stream, RowsOf(*image.region), bitsPerRow / 8,
                   UsefulRowBytes(*image.pixels, stored.m_n32Width));
}

// The version of the two dimensional values in an image record.
unsigned ValueVersion(bool reading, unsigned recordVersion) {
    if (!reading) return 0xFFFFFFFFu;
    return recordVersion < 3 ? 1 : recordVersion == 3 ? 2 : 3;
}

}  // namespace

void TransferImageFields(const UntypedRegion& image, KxSerializer& stream, unsigned version) {
    ImagePixels& pixels = *image.pixels;
    if (stream.IsReading())
        ReadPixels(image, stream);
    else
        WritePixels(image, stream);
    const unsigned valueVersion = ValueVersion(stream.IsReading(), version);
    KxDimensionalValue height = pixels.m_PixelHeight;
    KxDimensionalValue width = pixels.m_PixelWidth;
    ThrowWhatItStores([&] { height.Serialize(&stream, valueVersion); });
    ThrowWhatItStores([&] { width.Serialize(&stream, valueVersion); });
    pixels.m_PixelHeight = height;
    pixels.m_PixelWidth = width;
}

void TransferPartial(const UntypedRegion& image, KxSerializer* pSerializer) {
    KxSerializer& stream = RequireStream(pSerializer);
    const bool reading = stream.IsReading();
    std::int32_t width = image.region->GetWidth(), height = image.region->GetHeight();
    auto rowBytes = reading ? 0 : static_cast<std::int32_t>(RequireStorableRows(image));
    TransferValue(stream, width, "n32Width");
    TransferValue(stream, height, "n32Height");
    TransferValue(stream, rowBytes, "numberOfBytesPerRowPadded");
    if (reading) ResizeTo(image, width, height, rowBytes, stream);
    TransferRows(stream, RowsOf(*image.region), rowBytes, UsefulRowBytes(*image.pixels, width));
}

void TransferPartial(const UntypedRegion& image, KxSerializer* pSerializer, unsigned alignment) {
    KxSerializer& stream = RequireStream(pSerializer);
    if (alignment == 0) throw Exception(KX_ERROR_PARAMETER_2_OUT_OF_RANGE);
    const bool reading = stream.IsReading();
    if (!reading) RequireStorableRows(image);
    std::int32_t width = image.region->GetWidth(), height = image.region->GetHeight();
    TransferValue(stream, width, "n32Width");
    TransferValue(stream, height, "n32Height");
    const std::int64_t usefulBytes = UsefulRowBytes(*image.pixels, width);
    const std::int64_t rowBytes = (usefulBytes + alignment - 1) / alignment * alignment;
    if (reading) ResizeTo(image, width, height, rowBytes, stream);
    TransferRows(stream, RowsOf(*image.region), rowBytes, usefulBytes);
}

}  // namespace Zelkor::Kalvo
