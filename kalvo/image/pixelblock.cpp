// Layout and allocation of the memory behind images.

#include "kalvo/image/pixelblock.h"

#include <cstring>
#include <limits>

#include "kalvo/base/memory.h"
#include "kalvo/frame/kxexception.h"

namespace Zelkor::Kalvo {
namespace {

constexpr std::int64_t kRowAlignmentBits = 192;
constexpr std::uintptr_t kFirstPixelAlignment = 32;
// Room to align the first pixel, and eight bytes after the last row.
constexpr std::uint64_t kSlackBytes = 39;

std::int64_t PaddedRowBits(int width, int bitsPerPixel) {
    return (std::int64_t{width} * bitsPerPixel + kRowAlignmentBits - 1) / kRowAlignmentBits *
           kRowAlignmentBits;
}

}  // namespace

bool PixelBlock::Fits(int width, int height, int bitsPerPixel) {
    // A row that fits is short enough for the product of all rows.
    return width >= 0 && height >= 0 &&
           PaddedRowBits(width, bitsPerPixel) <= std::numeric_limits<std::int32_t>::max() &&
           (std::int64_t{width} * (bitsPerPixel / 8) * height) >> 32 == 0;
}

std::int32_t PixelBlock::RowBits(int width, int height, int bitsPerPixel) {
    if (width < 0 || height < 0) throw Exception(KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
    if (!Fits(width, height, bitsPerPixel)) throw Exception(KX_ERROR_ORIGIN_IMAGE_TOO_BIG);
    return static_cast<std::int32_t>(PaddedRowBits(width, bitsPerPixel));
}

std::uint64_t PixelBlock::Bytes(std::int32_t rowBits, int height) {
    return static_cast<std::uint64_t>((std::int64_t{rowBits} * height + 7) / 8);
}

PixelBlock PixelBlock::Allocate(int width, int height, int bitsPerPixel) {
    const std::int32_t rowBits = RowBits(width, height, bitsPerPixel);
    PixelBlock block;
    block.memory = Platform::AllocateMemory(Bytes(rowBits, height) + kSlackBytes);
    if (!block.memory) throw Exception(KX_ERROR_ALLOCATION);
    const std::uintptr_t misalignment =
        reinterpret_cast<std::uintptr_t>(block.memory.get()) % kFirstPixelAlignment;
    block.firstPixel = block.memory.get() + (kFirstPixelAlignment - misalignment) % kFirstPixelAlignment;

    const std::size_t rowBytes = static_cast<std::size_t>(rowBits) / 8;
    const std::size_t pixelBytes = static_cast<std::size_t>(std::int64_t{width} * bitsPerPixel / 8);
    if (pixelBytes == rowBytes) return block;
    for (int y = 0; y < height; ++y)
        std::memset(block.firstPixel + rowBytes * static_cast<std::size_t>(y) + pixelBytes, 0,
                    rowBytes - pixelBytes);
    return block;
}

}  // namespace Zelkor::Kalvo
