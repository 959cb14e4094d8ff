// Writes Windows bitmaps: 40-byte header, palette or colour masks, rows from the last to the first.

#include <algorithm>
#include <limits>
#include <span>
#include <vector>

#include "kalvo/frame/checkedsize.h"
#include "kalvo/imagefiles/bmp.h"
#include "kalvo/imagefiles/imagefile.h"
#include "kalvo/kernels/kernels.h"
#include "kalvo/streams/byteorder.h"

namespace Zelkor::Kalvo {
namespace {

// The masks that a pixel type needs: none for types whose bit count says all.
std::span<const std::uint32_t> MasksOf(KX_IMAGE_TYPES type) {
    if (type == KX_IMAGE_C15) return kBmpMasks555;
    if (type == KX_IMAGE_C16) return kBmpMasks565;
    return {};
}

// Everything before the rows. `bits` is the width of a pixel in memory.
std::vector<std::uint8_t> MakeHeaders(const SaveSource& source, int bits, std::uint64_t stride) {
    const auto masks = MasksOf(source.format.type);
    const std::uint32_t colors = bits <= 8 ? 1u << bits : 0;
    const std::uint64_t dataOffset =
        kBmpFileHeaderBytes + kBmpInfoHeaderBytes + 4 * (masks.size() + std::uint64_t{colors});
    const std::uint64_t imageBytes = CheckedSize(stride, source.rows.height, KX_ERROR_FILE_WRITE);
    if (imageBytes > std::numeric_limits<std::uint32_t>::max() - dataOffset)
        throw Exception(KX_ERROR_FILE_WRITE);

    std::vector<std::uint8_t> bytes{'B', 'M'};
    const auto append32 = [&](std::uint64_t value) {
        AppendLittleEndian(bytes, static_cast<std::uint32_t>(value));
    };
    const auto append16 = [&](int value) { AppendLittleEndian(bytes, static_cast<std::uint16_t>(value)); };
    append32(imageBytes + dataOffset);
    append32(0);  // reserved
    append32(dataOffset);

    append32(kBmpInfoHeaderBytes);
    append32(source.rows.width);
    append32(source.rows.height);
    append16(1);  // planes
    append16(source.format.type == KX_IMAGE_C15 ? 15 : bits);
    append32(masks.empty() ? kBmpUncompressed : kBmpBitFields);
    append32(imageBytes);
    const FileResolution perMetre = source.resolution.In(KxUnit_m);
    append32(WholePixels(perMetre.x, std::numeric_limits<std::int32_t>::max()));
    append32(WholePixels(perMetre.y, std::numeric_limits<std::int32_t>::max()));
    append32(0);  // colours used: all
    append32(0);  // colours important: all

    for (const std::uint32_t mask : masks) append32(mask);
    for (std::uint32_t i = 0; i < colors; ++i) append32(i * 255 / (colors - 1) * 0x010101);
    return bytes;
}

}  // namespace

void WriteBmp(std::FILE* stream, const SaveSource& source) {
    const ConstRegionRows& rows = source.rows;
    const int bits = source.region.GetBitsPerPixel();
    const std::uint64_t bitsPerRow = std::uint64_t{static_cast<std::uint32_t>(rows.width)} * bits;
    const std::uint64_t stride = BmpStrideBytes(bitsPerRow);
    WriteBytes(stream, MakeHeaders(source, bits, stride));

    constexpr std::uint64_t kBlockBytes = 0x10000;
    const std::uint64_t rowsPerBlock = std::max<std::uint64_t>(1, kBlockBytes / stride);
    std::vector<std::uint8_t> block(rowsPerBlock * stride);  // what the pixels leave free stays 0
    for (int left = rows.height; left > 0;) {
        std::size_t filled = 0;
        for (; filled < block.size() && left > 0; filled += stride)
            Kernels::Active().copyBits(rows.Row(--left), rows.firstBit, block.data() + filled, 0, bitsPerRow);
        WriteBytes(stream, std::span(block).first(filled));
    }
}

}  // namespace Zelkor::Kalvo
