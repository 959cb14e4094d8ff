// Reads Windows bitmaps with a 12-byte or a 40-byte info header and no compression. Palettes are not used.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <span>
#include <vector>

#include "kalvo/frame/checkedsize.h"
#include "kalvo/imagefiles/bmp.h"
#include "kalvo/imagefiles/imagefile.h"
#include "kalvo/kernels/kernels.h"

namespace Zelkor::Kalvo {
namespace {

constexpr std::uint32_t kCoreHeaderBytes = 12;
constexpr float kCorePixelsPerMetre = 1000;  // a core header tells no resolution

/// How pixels lie in a file, and which destinations take them.
struct Layout {
    int bits;  ///< of a stored pixel
    IMAGE_FILE_TYPES type;
    std::array<KX_ERRORS, 8> refusals;  ///< by pixel type; KX_OK where it takes the file
};

// Words of 16 bits without masks are 5, 5, 5 bits by the definition of the format, but there are programs
// that mean 5, 6, 5: the destination decides.
// clang-format off
constexpr KX_ERRORS kOk = KX_OK, kBw1 = KX_ERROR_BW1_EXPECTED, kBw16 = KX_ERROR_BW16_EXPECTED,
                    kC15 = KX_ERROR_C15_EXPECTED, kC16 = KX_ERROR_C16_EXPECTED, kC24 = KX_ERROR_C24_EXPECTED,
                    kBilevel = KX_ERROR_BILEVEL_IMAGE_EXPECTED, kGray = KX_ERROR_GRAY_IMAGE_EXPECTED,
                    kColor = KX_ERROR_COLOR_IMAGE_EXPECTED, kNoBmp = KX_ERROR_UNSUPPORTED_BMP,
                    kFault = KX_ERROR_INTERNAL;

//                                                     BW1       BW8     BW16    BW32    C15     C16     C24     C24A
constexpr Layout kBits1{1, IMAGE_FILE_BMP_BILEVEL,    {kOk,      kGray,  kGray,  kGray,  kColor, kColor, kColor, kGray}};
constexpr Layout kGray8{8, IMAGE_FILE_BMP_GRAY,       {kBw1,     kOk,    kBw16,  kFault, kColor, kColor, kColor, kFault}};
constexpr Layout kWords555{16, IMAGE_FILE_BMP_COLOR,  {kBilevel, kGray,  kGray,  kGray,  kOk,    kC15,   kC15,   kC15}};
constexpr Layout kWords565{16, IMAGE_FILE_BMP_COLOR,  {kBilevel, kGray,  kGray,  kGray,  kC16,   kOk,    kC16,   kC16}};
constexpr Layout kWords16{16, IMAGE_FILE_BMP_COLOR,   {kBilevel, kGray,  kGray,  kGray,  kOk,    kOk,    kC16,   kC16}};
constexpr Layout kColor24{24, IMAGE_FILE_BMP_COLOR,   {kBilevel, kGray,  kGray,  kGray,  kC24,   kC24,   kOk,    kC24}};
constexpr Layout kWords32{32, IMAGE_FILE_BMP_COLOR,   {kNoBmp,   kNoBmp, kNoBmp, kOk,    kNoBmp, kNoBmp, kNoBmp, kOk}};
// clang-format on

struct Picture {
    const Layout* layout = nullptr;
    std::uint32_t width;
    std::uint32_t height;
    bool isTopDown;
    std::uint64_t headerEnd;
    FileResolution resolution{0, 0, &KxUnit_m};
};

const Layout* UncompressedLayout(int bitCount) {
    switch (bitCount) {
    case 1:
        return &kBits1;
    case 8:
        return &kGray8;
    case 16:
        return &kWords16;
    case 24:
        return &kColor24;
    case 32:
        return &kWords32;
    default:
        throw Exception(KX_ERROR_UNSUPPORTED_BMP);
    }
}

// Green alone tells 5, 5, 5 bits from 5, 6, 5: other masks than those two are not distinguished.
const Layout* MaskedLayout(const ImageFileReader& file, std::uint64_t masksOffset) {
    constexpr std::size_t kGreen = 1;
    const auto green = file.Field<std::uint32_t>(masksOffset + kGreen * sizeof(BmpMasks::value_type));
    return green == kBmpMasks555[kGreen] ? &kWords555 : &kWords565;
}

// The fields of both headers stand at fixed offsets from the start of the file.

Picture ReadCoreHeader(const ImageFileReader& file) {
    const auto planes = file.Field<std::uint16_t>(22);
    const auto bitCount = file.Field<std::uint16_t>(24);
    if (planes != 1 || bitCount > 24) throw Exception(KX_ERROR_UNSUPPORTED_BMP);
    return {.layout = UncompressedLayout(bitCount),
            .width = file.Field<std::uint16_t>(18),
            .height = file.Field<std::uint16_t>(20),
            .isTopDown = false,
            .headerEnd = kBmpFileHeaderBytes + kCoreHeaderBytes,
            .resolution = {kCorePixelsPerMetre, kCorePixelsPerMetre, &KxUnit_m}};
}

Picture ReadInfoHeader(const ImageFileReader& file) {
    const auto width = file.Field<std::int32_t>(18);
    const auto height = file.Field<std::int32_t>(22);  // below 0: from the top row down
    const auto planes = file.Field<std::uint16_t>(26);
    const auto bitCount = file.Field<std::uint16_t>(28);
    const auto compression = file.Field<std::uint32_t>(30);
    if (planes != 1) throw Exception(KX_ERROR_UNSUPPORTED_BMP);
    if (width < 0 || height == std::numeric_limits<std::int32_t>::min())
        throw Exception(KX_ERROR_BAD_FILE_FORMAT);

    Picture picture{.width = static_cast<std::uint32_t>(width),
                    .height = static_cast<std::uint32_t>(std::abs(height)),
                    .isTopDown = height < 0,
                    .headerEnd = kBmpFileHeaderBytes + kBmpInfoHeaderBytes};
    const bool hasMasks = compression == kBmpBitFields;
    if (!hasMasks && compression != kBmpUncompressed) throw Exception(KX_ERROR_UNSUPPORTED_BMP);
    if (hasMasks && bitCount == 16) {
        picture.layout = MaskedLayout(file, picture.headerEnd);
        picture.headerEnd += sizeof(BmpMasks);
    } else {
        // 15 bits need masks to be known, but say all without them.
        picture.layout = hasMasks && bitCount == 15 ? &kWords555 : UncompressedLayout(bitCount);
    }
    // Numbers below 0 mean nothing here.
    picture.resolution.x = static_cast<float>(std::max(0, file.Field<std::int32_t>(38)));
    picture.resolution.y = static_cast<float>(std::max(0, file.Field<std::int32_t>(42)));
    return picture;
}

Picture ReadHeader(const ImageFileReader& file) {
    switch (file.Field<std::uint32_t>(kBmpFileHeaderBytes)) {
    case kCoreHeaderBytes:
        return ReadCoreHeader(file);
    case kBmpInfoHeaderBytes:
        return ReadInfoHeader(file);
    default:
        throw Exception(KX_ERROR_UNSUPPORTED_BMP);
    }
}

// Goes through a buffer, so that a bilevel row may start at any bit and its neighbours keep their pixels.
void ReadRow(const ImageFileReader& file, std::uint64_t offset, std::uint64_t bits, std::uint8_t* row,
             int firstBit, std::span<std::uint8_t> buffer) {
    while (bits > 0) {
        const std::size_t count = std::min<std::uint64_t>(bits, buffer.size() * 8);
        file.Read(offset, buffer.first((count + 7) / 8));
        Kernels::Active().copyBits(buffer.data(), 0, row, firstBit, count);
        offset += count / 8;
        row += count / 8;
        bits -= count;
    }
}

}  // namespace

IMAGE_FILE_TYPES ReadBmp(const ImageFileReader& file, const LoadTarget& target) {
    const Picture picture = ReadHeader(file);
    const Layout& layout = *picture.layout;
    if (const KX_ERRORS refusal = layout.refusals[target.Format().type]) throw Exception(refusal);
    const auto pixelOffset = file.Field<std::uint32_t>(10);
    if (picture.width == 0 || picture.height == 0 || pixelOffset < picture.headerEnd)
        throw Exception(KX_ERROR_BAD_FILE_FORMAT);
    target.RequireSize(picture.width, picture.height);

    // The padding of the row at the end of the file may be missing.
    const std::uint64_t bitsPerRow = std::uint64_t{picture.width} * layout.bits;
    const std::uint64_t stride = BmpStrideBytes(bitsPerRow);
    file.Require(pixelOffset,
                 CheckedSize(stride, picture.height - 1, KX_ERROR_FILE_READ) + (bitsPerRow + 7) / 8);

    const RegionRows rows = target.Prepare(picture.width, picture.height, picture.resolution);
    std::vector<std::uint8_t> buffer(std::min<std::uint64_t>(stride, 0x10000));
    for (int i = 0; i < rows.height; ++i) {
        const int y = picture.isTopDown ? i : rows.height - 1 - i;
        ReadRow(file, pixelOffset + stride * i, bitsPerRow, rows.Row(y), rows.firstBit, buffer);
    }
    return layout.type;
}

}  // namespace Zelkor::Kalvo
