// Reads Windows bitmaps with a 12-byte or a 40-byte info header and no compression. Palettes are not used.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <memory>
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

struct Picture {
    FileLayout layout;
    std::uint32_t width;
    std::uint32_t height;
    bool isTopDown;
    std::uint64_t headerEnd;
    FileResolution resolution{0, 0, &KxUnit_m};

    int BitsPerPixel() const {
        switch (layout) {
        case FileLayout::BmpBits:
            return 1;
        case FileLayout::BmpGray:
            return 8;
        case FileLayout::BmpColor24:
            return 24;
        case FileLayout::BmpWords32:
            return 32;
        default:
            return 16;
        }
    }
    std::uint64_t BitsPerRow() const { return std::uint64_t{width} * static_cast<unsigned>(BitsPerPixel()); }
    std::uint64_t Stride() const { return BmpStrideBytes(BitsPerRow()); }
    IMAGE_FILE_TYPES Type() const {
        if (layout == FileLayout::BmpBits) return IMAGE_FILE_BMP_BILEVEL;
        return layout == FileLayout::BmpGray ? IMAGE_FILE_BMP_GRAY : IMAGE_FILE_BMP_COLOR;
    }
};

FileLayout UncompressedLayout(int bitCount) {
    switch (bitCount) {
    case 1:
        return FileLayout::BmpBits;
    case 8:
        return FileLayout::BmpGray;
    case 16:
        return FileLayout::BmpWords16;
    case 24:
        return FileLayout::BmpColor24;
    case 32:
        return FileLayout::BmpWords32;
    default:
        throw Exception(KX_ERROR_UNSUPPORTED_BMP);
    }
}

// Green alone tells 5, 5, 5 bits from 5, 6, 5: other masks than those two are not distinguished.
FileLayout MaskedLayout(const ImageFileReader& file, std::uint64_t masksOffset) {
    constexpr std::size_t kGreen = 1;
    const auto green = file.Field<std::uint32_t>(masksOffset + kGreen * sizeof(BmpMasks::value_type));
    return green == kBmpMasks555[kGreen] ? FileLayout::BmpWords555 : FileLayout::BmpWords565;
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

    Picture picture{.layout = {},
                    .width = static_cast<std::uint32_t>(width),
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
        picture.layout = hasMasks && bitCount == 15 ? FileLayout::BmpWords555 : UncompressedLayout(bitCount);
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

class BmpFile : public InspectedFile {
public:
    BmpFile(const ImageFileReader& file, const Picture& picture)
        : InspectedFile({picture.Type(), picture.layout, picture.width, picture.height}),
          m_file(file),
          m_picture(picture) {}

    FileResolution Resolution() const override { return m_picture.resolution; }
    void RequirePixels() const override;
    void ReadPixels(const RegionRows& rows, int bitsPerPixel) const override;

private:
    std::uint32_t PixelOffset() const { return m_file.Field<std::uint32_t>(10); }

    const ImageFileReader& m_file;
    const Picture m_picture;
};

// The padding of the row at the end of the file may be missing.
void BmpFile::RequirePixels() const {
    if (PixelOffset() < m_picture.headerEnd) throw Exception(KX_ERROR_BAD_FILE_FORMAT);
    m_file.Require(PixelOffset(), CheckedSize(m_picture.Stride(), m_picture.height - 1, KX_ERROR_FILE_READ) +
                                      (m_picture.BitsPerRow() + 7) / 8);
}

void BmpFile::ReadPixels(const RegionRows& rows, int /*bitsPerPixel*/) const {
    const std::uint64_t stride = m_picture.Stride();
    std::vector<std::uint8_t> buffer(std::min<std::uint64_t>(stride, 0x10000));
    std::uint64_t offset = PixelOffset();
    for (int i = 0; i < rows.height; ++i, offset += stride) {
        const int y = m_picture.isTopDown ? i : rows.height - 1 - i;
        ReadRow(m_file, offset, m_picture.BitsPerRow(), rows.Row(y), rows.firstBit, buffer);
    }
}

}  // namespace

std::unique_ptr<InspectedFile> InspectBmp(const ImageFileReader& file) {
    return std::make_unique<BmpFile>(file, ReadHeader(file));
}

}  // namespace Zelkor::Kalvo
