// Checks fields, sizes the image, and lets the codec put every field's rows where they belong.

#include "kalvo/imagefiles/jpegfields.h"

#include <algorithm>
#include <limits>
#include <mutex>
#include <utility>

#include "kalvo/frame/checkedsize.h"
#include "kalvo/image/imagecore.h"
#include "kalvo/image/regionrows.h"
#include "kalvo/imagefiles/jpegcodec.h"

namespace Zelkor::Kalvo {
namespace {

using namespace Platform;

constexpr int kFirstCodecError = 15000;
constexpr auto kErrorFieldStart = static_cast<KX_ERRORS>(15101);
constexpr auto kErrorFieldEnd = static_cast<KX_ERRORS>(15102);
constexpr auto kErrorFieldTooShort = static_cast<KX_ERRORS>(15103);

constexpr int kBytesPerPixel = 3;
constexpr std::size_t kShortestField = 8;

// One for the process: codecs of this interface need not be able to start or end twice at a time.
constinit std::mutex codecLock;

void RequireOk(int status) {
    if (status != IJL_OK) throw Exception(static_cast<KX_ERRORS>(kFirstCodecError + status));
}

// The codec's record. An open one is closed when its owner goes.
class CodecRecord {
public:
    CodecRecord() = default;
    CodecRecord(const CodecRecord&) = delete;
    CodecRecord& operator=(const CodecRecord&) = delete;
    ~CodecRecord() { Close(); }

    int Open() {
        const std::lock_guard guard(codecLock);
        const int status = ijlInit(&properties);
        m_isOpen = status == IJL_OK;
        return status;
    }

    int Close() {
        if (!std::exchange(m_isOpen, false)) return IJL_OK;
        const std::lock_guard guard(codecLock);
        return ijlFree(&properties);
    }

    JPEG_CORE_PROPERTIES properties{};

private:
    bool m_isOpen = false;
};

void RequireField(FieldBytes field, KX_ERRORS badStart) {
    if (field.size() < kShortestField) throw Exception(kErrorFieldTooShort);
    if (field[0] != 0xFF || field[1] != 0xD8) throw Exception(badStart);
    if (field[field.size() - 2] != 0xFF || field.back() != 0xD9) throw Exception(kErrorFieldEnd);
}

// Whether the field lies in the memory of the rows, which may run upwards.
bool Overlap(FieldBytes field, const RegionRows& rows) {
    if (!rows.first || rows.height == 0) return false;
    const auto [lowest, highest] = std::minmax({reinterpret_cast<std::uintptr_t>(rows.Row(0)),
                                                reinterpret_cast<std::uintptr_t>(rows.Row(rows.height - 1))});
    const auto start = reinterpret_cast<std::uintptr_t>(field.data());
    const auto pitchBytes = static_cast<std::uintptr_t>(std::abs(rows.pitchBytes));
    return start < highest + pitchBytes && start + field.size() > lowest;
}

struct Scaling {
    IJLIOTYPE codecMode;
    std::uint32_t divisor;

    int Of(std::uint32_t fullSize) const { return static_cast<int>((fullSize + divisor - 1) / divisor); }
};

Scaling ScalingOf(KxJpegHandler::ScalingMode mode) {
    switch (mode) {
    case KxJpegHandler::FullSize:
        return {IJL_JBUFF_READWHOLEIMAGE, 1};
    case KxJpegHandler::HalfSize:
        return {IJL_JBUFF_READONEHALF, 2};
    case KxJpegHandler::QuarterSize:
        return {IJL_JBUFF_READONEQUARTER, 4};
    case KxJpegHandler::EighthSize:
        return {IJL_JBUFF_READONEEIGHTH, 8};
    }
    throw Exception(KX_ERROR_PARAMETER_2_OUT_OF_RANGE);
}

RegionRows Resized(KxImage<KxC24>& image, int width, int height) {
    ImageCore::ResizeByItself(image, width, height);
    const RegionRows rows = RowsOf(image);
    // An image that wraps a buffer may already have that size, and no memory for it.
    if (!rows.first || std::abs(rows.pitchBytes) < std::int64_t{width} * kBytesPerPixel)
        throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);
    return rows;
}

void SetSource(JPEG_CORE_PROPERTIES& properties, FieldBytes field) {
    properties.JPGBytes = const_cast<std::uint8_t*>(field.data());
    properties.JPGSizeBytes = static_cast<std::uint32_t>(field.size());
}

IJL_COLOR StreamColorOf(std::uint32_t channels) {
    if (channels == 1) return IJL_G;
    return channels == 3 ? IJL_YCBCR : IJL_OTHER;
}

// The first buffer for a stream: three bits for a byte of pixels.
std::uint64_t FirstBufferSize(std::uint32_t pitchBytes, std::uint32_t height) {
    const std::uint64_t pixelBytes =
        CheckedSize(std::uint64_t{pitchBytes} * height, 3, KX_ERROR_INVALID_DATA_SIZE);
    if (pixelBytes < 8) throw Exception(KX_ERROR_INVALID_DATA_SIZE);
    return pixelBytes / 8;
}

}  // namespace

void DecodeFields(FieldBytes upField, FieldBytes downField, KxImage<KxC24>& image,
                  KxJpegHandler::ScalingMode mode) {
    if (!upField.data()) throw Exception(kErrorFieldAbsent);
    RequireField(upField, kErrorFieldEnd);
    const bool isInterlaced = downField.data() != nullptr;
    if (isInterlaced) RequireField(downField, kErrorFieldStart);
    if (Overlap(upField, RowsOf(image)) || (isInterlaced && Overlap(downField, RowsOf(image))))
        throw Exception(KX_ERROR_IMAGES_OVERLAP);

    CodecRecord codec;
    RequireOk(codec.Open());
    JPEG_CORE_PROPERTIES& properties = codec.properties;
    SetSource(properties, upField);
    RequireOk(ijlRead(&properties, IJL_JBUFF_READPARAMS));
    const Scaling scaling = ScalingOf(mode);
    const int width = scaling.Of(properties.JPGWidth), height = scaling.Of(properties.JPGHeight);
    const int fields = isInterlaced ? 2 : 1;
    const RegionRows rows = Resized(image, width, height * fields);

    properties.JPGColor = StreamColorOf(properties.JPGChannels);
    properties.DIBWidth = static_cast<std::uint32_t>(width);
    properties.DIBHeight = static_cast<std::uint32_t>(height);
    properties.DIBChannels = kBytesPerPixel;
    properties.DIBColor = IJL_BGR;
    // The rows of the other field are padding, so the codec interlaces.
    properties.DIBPadBytes = rows.pitchBytes * fields - std::int64_t{width} * kBytesPerPixel;
    properties.DIBBytes = rows.Row(0);
    RequireOk(ijlRead(&properties, scaling.codecMode));
    if (isInterlaced) {
        SetSource(properties, downField);
        properties.DIBBytes = rows.Row(1);
        RequireOk(ijlRead(&properties, scaling.codecMode));
    }
    RequireOk(codec.Close());
}

EncodedField EncodeRgb24(const std::uint8_t* pixels, std::uint32_t pitchBytes, std::uint32_t width,
                         std::uint32_t height) {
    CodecRecord codec;
    if (codec.Open() != IJL_OK) throw Exception(KX_ERROR_INVALID_DATA_SIZE);
    JPEG_CORE_PROPERTIES& properties = codec.properties;
    properties.DIBBytes = const_cast<std::uint8_t*>(pixels);
    properties.DIBWidth = width;
    properties.DIBHeight = height;
    properties.DIBPadBytes = pitchBytes - std::int64_t{width} * kBytesPerPixel;
    properties.DIBChannels = kBytesPerPixel;
    properties.DIBColor = IJL_RGB;

    constexpr std::uint64_t kLargestBuffer = std::numeric_limits<std::uint32_t>::max();
    std::uint64_t capacity = std::min(FirstBufferSize(pitchBytes, height), kLargestBuffer);
    EncodedField encoded;
    for (;; capacity = std::min(2 * capacity, kLargestBuffer)) {
        encoded.block.Resize(capacity);
        properties.JPGBytes = encoded.block.Bytes();
        properties.JPGSizeBytes = static_cast<std::uint32_t>(capacity);
        const int status = ijlWrite(&properties, IJL_JBUFF_WRITEWHOLEIMAGE);
        if (status != IJL_BUFFER_TOO_SMALL) {
            RequireOk(status);
            break;
        }
        if (capacity == kLargestBuffer) throw Exception(KX_ERROR_ALLOCATION);
    }
    encoded.size = properties.JPGSizeBytes;
    RequireOk(codec.Close());
    return encoded;
}

}  // namespace Zelkor::Kalvo
