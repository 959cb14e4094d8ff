// Archiving images: the pixel block of the full record, and the partial records.

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

#include "kalvo/archive/recordtransfer.h"
#include "kalvo/frame/checkedsize.h"
#include "kalvo/image/pixelblock.h"
#include "kalvo/image/regionrows.h"
#include "kalvo/streams/streambytes.h"

using namespace Zelkor::Kalvo;

namespace {

// Bytes of a row that hold pixels.
template <class Pixel>
std::int64_t UsefulRowBytes(std::int32_t width) {
    return (std::int64_t{width} * PixelTraits<Pixel>::kBitsPerPixel + 7) / 8;
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
template <class Pixel>
std::int64_t RequireStorableRows(const KxImage<Pixel>& image) {
    const std::int64_t rowBytes = std::abs(image.GetRowPitch());
    const bool hasPixels = image.GetWidth() != 0 && image.GetHeight() != 0;
    if (hasPixels && (image.Void() || rowBytes < UsefulRowBytes<Pixel>(image.GetWidth())))
        throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);
    return rowBytes;
}

// Gives an image the size that a stream tells. Throws when no image of the pixel type has that size, or when
// the stream is too short for its rows.
template <class Pixel>
void ResizeTo(KxImage<Pixel>& image, std::int32_t width, std::int32_t height, std::int64_t storedRowBytes,
              const KxSerializer& stream) {
    if (!PixelBlock::Fits(width, height, PixelTraits<Pixel>::kBitsPerPixel) ||
        storedRowBytes < UsefulRowBytes<Pixel>(width))
        throw Exception(KX_ERROR_BAD_FILE_FORMAT);
    RequireBytes(stream,
                 CheckedSize(static_cast<std::uint64_t>(storedRowBytes), static_cast<std::uint64_t>(height)));

    image.SetSize(width, height);
    if (image.GetWidth() != width || image.GetHeight() != height) throw Exception(KX_ERROR_ALLOCATION);
    RequireStorableRows(image);
}

// The version of the two dimensional values in an image record.
unsigned ValueVersion(bool reading, unsigned recordVersion) {
    if (!reading) return 0xFFFFFFFFu;
    return recordVersion < 3 ? 1 : recordVersion == 3 ? 2 : 3;
}

// A dimensional value reports a record that it refuses in the error slot, which may hold an older code.
void TransferDimensionalValue(KxSerializer& stream, KxDimensionalValue& value, unsigned version) {
    const KX_ERRORS earlier = KxGetError();
    KxOk();
    value.Serialize(&stream, version);
    if (KxFailure()) throw Exception(KxGetError());
    KxSetError(earlier);
}

}  // namespace

template <class Pixel>
void KxImage<Pixel>::Serialize(KxSerializer* pSerializer, unsigned int un32Version) {
    RecordTransfer(RequireStream(pSerializer)).Run(*this, RecordTransfer::ClassOf<KxImage>(), un32Version);
}

template <class Pixel>
void KxImage<Pixel>::SerializeFields(KxSerializer& serializer, unsigned version) {
    KxROI<Pixel>::SerializeFields(serializer, version);
    if (serializer.IsReading())
        ReadPixels(serializer);
    else
        WritePixels(serializer);
    const unsigned valueVersion = ValueVersion(serializer.IsReading(), version);
    KxDimensionalValue height = m_PixelHeight;
    KxDimensionalValue width = m_PixelWidth;
    TransferDimensionalValue(serializer, height, valueVersion);
    TransferDimensionalValue(serializer, width, valueVersion);
    m_PixelHeight = height;
    m_PixelWidth = width;
}

template <class Pixel>
void KxImage<Pixel>::WritePixels(KxSerializer& serializer) {
    const std::int64_t rowBytes = RequireStorableRows(*this);
    auto bitsPerRow = static_cast<std::int32_t>(rowBytes * 8);
    TransferValue(serializer, m_n32BitsPerPixel, "m_n32BitsPerPixel");
    TransferValue(serializer, bitsPerRow, "m_n32BitsPerRow");
    TransferPixels(serializer, RowsOf(*this), rowBytes, UsefulRowBytes<Pixel>(this->m_n32Width));
}

template <class Pixel>
void KxImage<Pixel>::ReadPixels(KxSerializer& serializer) {
    std::int32_t bitsPerPixel = 0;
    std::int32_t bitsPerRow = 0;
    TransferValue(serializer, bitsPerPixel, "m_n32BitsPerPixel");
    TransferValue(serializer, bitsPerRow, "m_n32BitsPerRow");
    if (bitsPerPixel != m_n32BitsPerPixel || bitsPerRow < 0) throw Exception(KX_ERROR_BAD_FILE_FORMAT);

    const std::int32_t width = std::exchange(this->m_n32Width, 0);
    const std::int32_t height = std::exchange(this->m_n32Height, 0);
    this->m_n32OrgX = this->m_n32OrgY = 0;
    ResizeTo(*this, width, height, bitsPerRow / 8, serializer);
    TransferPixels(serializer, RowsOf(*this), bitsPerRow / 8, UsefulRowBytes<Pixel>(width));
}

template <class Pixel>
void KxImage<Pixel>::PartialSerialize(KxSerializer* pSerializer) {
    KxSerializer& stream = RequireStream(pSerializer);
    const bool reading = stream.IsReading();
    std::int32_t width = this->m_n32Width, height = this->m_n32Height;
    auto rowBytes = reading ? 0 : static_cast<std::int32_t>(RequireStorableRows(*this));
    TransferValue(stream, width, "n32Width");
    TransferValue(stream, height, "n32Height");
    TransferValue(stream, rowBytes, "numberOfBytesPerRowPadded");
    if (reading) ResizeTo(*this, width, height, rowBytes, stream);
    TransferRows(stream, RowsOf(*this), rowBytes, UsefulRowBytes<Pixel>(width));
}

template <class Pixel>
void KxImage<Pixel>::PartialSerialize(std::FILE* pFile, int bWriting) {
    WithOpenFile(pFile, bWriting, [&](KxSerializer& stream) { PartialSerialize(&stream); });
}

template <class Pixel>
void KxImage<Pixel>::VersionLessPartialSerialize(KxSerializer* pSerializer, unsigned int un32Align) {
    KxSerializer& stream = RequireStream(pSerializer);
    if (un32Align == 0) throw Exception(KX_ERROR_PARAMETER_2_OUT_OF_RANGE);
    const bool reading = stream.IsReading();
    if (!reading) RequireStorableRows(*this);
    std::int32_t width = this->m_n32Width, height = this->m_n32Height;
    TransferValue(stream, width, "n32Width");
    TransferValue(stream, height, "n32Height");
    const std::int64_t usefulBytes = UsefulRowBytes<Pixel>(width);
    const std::int64_t rowBytes = (usefulBytes + un32Align - 1) / un32Align * un32Align;
    if (reading) ResizeTo(*this, width, height, rowBytes, stream);
    TransferRows(stream, RowsOf(*this), rowBytes, usefulBytes);
}

template <class Pixel>
void KxImage<Pixel>::VersionLessPartialSerialize(std::FILE* pFile, int bWriting, unsigned int un32Align) {
    WithOpenFile(pFile, bWriting,
                 [&](KxSerializer& stream) { VersionLessPartialSerialize(&stream, un32Align); });
}

template <class Pixel>
KxSerializer::ObjectType KxImage<Pixel>::GetSerializationType() {
    return RequireObjectTypeOf<KxImage>();
}

#define KX_INSTANTIATE(Pixel)                                                                        \
    template KX_API void KxImage<Pixel>::Serialize(KxSerializer*, unsigned int);                     \
    template KX_API void KxImage<Pixel>::SerializeFields(KxSerializer&, unsigned);                   \
    template KX_API void KxImage<Pixel>::ReadPixels(KxSerializer&);                                  \
    template KX_API void KxImage<Pixel>::WritePixels(KxSerializer&);                                 \
    template KX_API void KxImage<Pixel>::PartialSerialize(KxSerializer*);                            \
    template KX_API void KxImage<Pixel>::PartialSerialize(std::FILE*, int);                          \
    template KX_API void KxImage<Pixel>::VersionLessPartialSerialize(KxSerializer*, unsigned int);   \
    template KX_API void KxImage<Pixel>::VersionLessPartialSerialize(std::FILE*, int, unsigned int); \
    template KX_API KxSerializer::ObjectType KxImage<Pixel>::GetSerializationType();
KX_FOR_EACH_PIXEL(KX_INSTANTIATE)
#undef KX_INSTANTIATE
