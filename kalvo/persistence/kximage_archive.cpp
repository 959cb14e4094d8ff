// Archiving images: the pixel block of the full record, and the partial records.

#include <algorithm>
#include <array>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/checkedsize.h"
#include "kalvo/persistence/recordtransfer.h"
#include "kalvo/persistence/streambytes.h"

using namespace Zelkor::Kalvo;

namespace {

// Bytes that only fill up rows.
class Padding {
public:
    // Writes zeros, or reads bytes and forgets them.
    void Transfer(KxSerializer& stream, std::uint64_t bytes) {
        while (bytes > 0) {
            const std::uint64_t piece = std::min<std::uint64_t>(bytes, m_bytes.size());
            TransferBlock(stream, m_bytes.data(), piece, "padding");
            bytes -= piece;
        }
    }

private:
    std::array<std::uint8_t, 4096> m_bytes = {};
};

// Exchanges rows of `storedBytes` each with rows in memory, of which `usefulBytes` hold pixels. A null
// `first` stands for rows of an empty image, which a stream may hold all the same.
void TransferRows(KxSerializer& stream, std::uint8_t* first, std::int64_t pitchBytes, std::int32_t height,
                  std::uint64_t storedBytes, std::uint64_t usefulBytes) {
    RequireBytes(stream, CheckedSize(storedBytes, static_cast<std::uint64_t>(height)));
    Padding padding;
    const std::uint64_t pixelBytes = first ? std::min(storedBytes, usefulBytes) : 0;
    for (std::int32_t y = 0; y < height; ++y) {
        if (first) TransferBlock(stream, first + pitchBytes * y, pixelBytes, "m_pImagePtr");
        padding.Transfer(stream, storedBytes - pixelBytes);
    }
}

// Throws when the numbers of an image in a stream can't be those of an image of that pixel type.
void RequireSoundSize(std::int32_t width, std::int32_t height, int bitsPerPixel) {
    const bool sound = width >= 0 && height >= 0 && width <= INT32_MAX / bitsPerPixel - 192 &&
                       (std::int64_t{width} * height * (bitsPerPixel / 8)) >> 32 == 0;
    if (!sound) throw Exception(KX_ERROR_BAD_FILE_FORMAT);
}

// Sizes an image to what a stream says; throws the code that the image reports.
template <class Pixel>
void ResizeTo(KxImage<Pixel>& image, std::int32_t width, std::int32_t height) {
    image.SetSize(width, height);
    if (image.GetWidth() != width || image.GetHeight() != height) throw Exception(KX_ERROR_ALLOCATION);
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
std::int64_t KxImage<Pixel>::UsefulRowBytes() const {
    return (std::int64_t{this->m_n32Width} * PixelTraits<Pixel>::kBitsPerPixel + 7) / 8;
}

template <class Pixel>
void KxImage<Pixel>::Serialize(KxSerializer* pSerializer, unsigned int un32Version) {
    RecordTransfer(*pSerializer).Run(*this, RecordTransfer::ClassOf<KxImage>(), un32Version);
}

template <class Pixel>
void KxImage<Pixel>::SerializeFields(KxSerializer& serializer, unsigned version) {
    KxROI<Pixel>::SerializeFields(serializer, version);
    if (serializer.IsReading())
        ReadPixels(serializer);
    else
        WritePixels(serializer);
    const unsigned valueVersion = ValueVersion(serializer.IsReading(), version);
    TransferDimensionalValue(serializer, m_PixelHeight, valueVersion);
    TransferDimensionalValue(serializer, m_PixelWidth, valueVersion);
}

template <class Pixel>
void KxImage<Pixel>::WritePixels(KxSerializer& serializer) {
    if (!m_pImagePtr && this->m_n32Width != 0 && this->m_n32Height != 0)
        throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);
    TransferValue(serializer, m_n32BitsPerPixel, "m_n32BitsPerPixel");
    TransferValue(serializer, m_n32BitsPerRow, "m_n32BitsPerRow");
    const auto pitch = static_cast<std::uint64_t>(GetRowPitch());
    TransferBlock(serializer, m_pImagePtr, pitch * static_cast<std::uint64_t>(this->m_n32Height),
                  "m_pImagePtr");
}

template <class Pixel>
void KxImage<Pixel>::ReadPixels(KxSerializer& serializer) {
    std::int32_t bitsPerPixel = 0;
    std::int32_t bitsPerRow = 0;
    TransferValue(serializer, bitsPerPixel, "m_n32BitsPerPixel");
    TransferValue(serializer, bitsPerRow, "m_n32BitsPerRow");
    const std::int32_t width = std::exchange(this->m_n32Width, 0);
    const std::int32_t height = std::exchange(this->m_n32Height, 0);
    this->m_n32OrgX = this->m_n32OrgY = 0;
    RequireSoundSize(width, height, PixelTraits<Pixel>::kBitsPerPixel);
    if (bitsPerPixel != m_n32BitsPerPixel || bitsPerRow < 0 || bitsPerRow % 8 != 0 ||
        bitsPerRow < std::int64_t{width} * bitsPerPixel)
        throw Exception(KX_ERROR_BAD_FILE_FORMAT);
    const auto storedPitch = static_cast<std::uint64_t>(bitsPerRow / 8);
    RequireBytes(serializer, storedPitch * static_cast<std::uint64_t>(height));

    ResizeTo(*this, width, height);
    if (bitsPerRow == m_n32BitsPerRow)  // as the library lays out its buffers: one transfer
        TransferBlock(serializer, m_pImagePtr, storedPitch * static_cast<std::uint64_t>(height),
                      "m_pImagePtr");
    else
        TransferRows(serializer, m_pImagePtr, GetRowPitch(), height, storedPitch,
                     static_cast<std::uint64_t>(UsefulRowBytes()));
}

template <class Pixel>
void KxImage<Pixel>::PartialSerialize(KxSerializer* pSerializer) {
    std::int32_t width = this->m_n32Width, height = this->m_n32Height, storedPitch = GetRowPitch();
    TransferValue(*pSerializer, width, "n32Width");
    TransferValue(*pSerializer, height, "n32Height");
    TransferValue(*pSerializer, storedPitch, "numberOfBytesPerRowPadded");
    if (pSerializer->IsReading()) {
        RequireSoundSize(width, height, PixelTraits<Pixel>::kBitsPerPixel);
        if (storedPitch < 0 || storedPitch * std::int64_t{8} < std::int64_t{width} * m_n32BitsPerPixel)
            throw Exception(KX_ERROR_BAD_FILE_FORMAT);
        const auto rowBytes = static_cast<std::uint64_t>(storedPitch);
        RequireBytes(*pSerializer, rowBytes * static_cast<std::uint64_t>(height));
        ResizeTo(*this, width, height);
    }
    TransferRows(*pSerializer, m_pImagePtr, GetRowPitch(), height, static_cast<std::uint64_t>(storedPitch),
                 static_cast<std::uint64_t>(UsefulRowBytes()));
}

template <class Pixel>
void KxImage<Pixel>::PartialSerialize(std::FILE* pFile, int bWriting) {
    AtBoundary(
        nullptr,
        [&] {
            KxFilePointerSerializer stream(pFile, bWriting);
            PartialSerialize(&stream);
        },
        KX_ERROR_ARCHIVE_ACCESS);
}

template <class Pixel>
void KxImage<Pixel>::VersionLessPartialSerialize(KxSerializer* pSerializer, unsigned int un32Align) {
    if (un32Align == 0) throw Exception(KX_ERROR_PARAMETER_2_OUT_OF_RANGE);
    std::int32_t width = this->m_n32Width, height = this->m_n32Height;
    TransferValue(*pSerializer, width, "n32Width");
    TransferValue(*pSerializer, height, "n32Height");
    const auto useful = [&] { return static_cast<std::uint64_t>(UsefulRowBytes()); };
    const auto padded = [&](std::uint64_t bytes) { return (bytes + un32Align - 1) / un32Align * un32Align; };
    if (pSerializer->IsReading()) {
        RequireSoundSize(width, height, PixelTraits<Pixel>::kBitsPerPixel);
        const std::uint64_t rowBytes =
            (static_cast<std::uint64_t>(width) * PixelTraits<Pixel>::kBitsPerPixel + 7) / 8;
        RequireBytes(*pSerializer, CheckedSize(padded(rowBytes), static_cast<std::uint64_t>(height)));
        ResizeTo(*this, width, height);
    }
    TransferRows(*pSerializer, m_pImagePtr, GetRowPitch(), height, padded(useful()), useful());
}

template <class Pixel>
void KxImage<Pixel>::VersionLessPartialSerialize(std::FILE* pFile, int bWriting, unsigned int un32Align) {
    AtBoundary(
        nullptr,
        [&] {
            KxFilePointerSerializer stream(pFile, bWriting);
            VersionLessPartialSerialize(&stream, un32Align);
        },
        KX_ERROR_ARCHIVE_ACCESS);
}

template <class Pixel>
KxSerializer::ObjectType KxImage<Pixel>::GetSerializationType() {
    return RequireObjectTypeOf<KxImage>();
}

#define KX_INSTANTIATE(Pixel)                                                                        \
    template KX_API std::int64_t KxImage<Pixel>::UsefulRowBytes() const;                             \
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
