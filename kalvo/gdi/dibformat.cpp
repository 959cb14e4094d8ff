// Which bitmap headers the library draws, where the rows behind them are, and bitmaps with memory of their
// own.

#include "kalvo/gdi/dibformat.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "kalvo/base/memory.h"

namespace Zelkor::Platform {
namespace {

constexpr std::size_t kDibAlignment = 4, kDeviceAlignment = 2;

using Masks = std::array<DWORD, 3>;  // red, green, blue

struct LayoutRule {
    WORD bitCount;
    DWORD compression;
    Masks masks;  // behind headers of BI_BITFIELDS only
    PixelLayout layout;
};

// A layout described in two ways stands first as we describe it ourselves.
constexpr LayoutRule kLayoutRules[] = {
    {1, BI_RGB, {}, PixelLayout::Bits1},
    {8, BI_RGB, {}, PixelLayout::Indexed8},
    {16, BI_RGB, {}, PixelLayout::Rgb555},
    {16, BI_BITFIELDS, {0x7C00, 0x03E0, 0x001F}, PixelLayout::Rgb555},
    {16, BI_BITFIELDS, {0xF800, 0x07E0, 0x001F}, PixelLayout::Rgb565},
    {24, BI_RGB, {}, PixelLayout::Bgr24},
    {32, BI_RGB, {}, PixelLayout::Bgrx32},
    {32, BI_BITFIELDS, {0xFF0000, 0x00FF00, 0x0000FF}, PixelLayout::Bgrx32},
};

std::optional<PixelLayout> LayoutOf(const BITMAPINFO& info) {
    const BITMAPINFOHEADER& header = info.bmiHeader;
    const RGBQUAD* behindHeader = info.bmiColors;
    Masks masks{};
    // Only these have masks; behind other headers there may be no memory to read.
    if (header.biCompression == BI_BITFIELDS && (header.biBitCount == 16 || header.biBitCount == 32))
        std::memcpy(masks.data(), behindHeader, sizeof masks);
    for (const LayoutRule& rule : kLayoutRules) {
        if (rule.bitCount == header.biBitCount && rule.compression == header.biCompression &&
            rule.masks == masks)
            return rule.layout;
    }
    return std::nullopt;
}

bool FitsMemory(std::size_t rowBytes, int height) {
    constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max());
    return rowBytes <= kMost / static_cast<std::size_t>(height);
}

std::unique_ptr<Bitmap> MakeBitmap(DibFormat format) {
    auto bitmap = std::make_unique<Bitmap>();
    const std::size_t bytes = format.rowBytes * static_cast<std::size_t>(format.height);
    bitmap->memory = AllocateMemory(bytes);
    if (!bitmap->memory) return nullptr;
    std::memset(bitmap->memory.get(), 0, bytes);
    bitmap->surface = format.SurfaceAt(bitmap->memory.get());
    bitmap->colors = std::move(format.colors);
    bitmap->surface.colors = bitmap->colors;
    return bitmap;
}

}  // namespace

std::size_t RowBytes(int width, PixelLayout layout, std::size_t alignment) {
    const std::size_t bits = 8 * alignment;
    return (static_cast<std::size_t>(width) * BitsPerPixel(layout) + bits - 1) / bits * alignment;
}

Surface DibFormat::SurfaceAt(const void* bits) const {
    return ScansAt(bits, 0, static_cast<std::uint32_t>(height));
}

Surface DibFormat::ScansAt(const void* bits, std::uint32_t start, std::uint32_t lines) const {
    auto* const first = static_cast<std::uint8_t*>(const_cast<void*>(bits));
    const auto total = static_cast<std::uint32_t>(height);
    const int rows = start < total ? static_cast<int>(std::min(lines, total - start)) : 0;
    const auto pitch = static_cast<std::ptrdiff_t>(rowBytes);
    if (topDown || rows == 0) return {first, pitch, width, rows, layout, colors};
    return {first + pitch * (rows - 1), -pitch, width, rows, layout, colors};
}

std::size_t ColorTableSize(const BITMAPINFOHEADER& header) {
    if (header.biBitCount != 1 && header.biBitCount != 8) return 0;
    const std::size_t full = std::size_t{1} << header.biBitCount;
    return header.biClrUsed == 0 ? full : std::min<std::size_t>(header.biClrUsed, full);
}

std::optional<DibFormat> ReadDibHeader(const BITMAPINFO* info) {
    if (!info) return std::nullopt;
    const BITMAPINFOHEADER& header = info->bmiHeader;
    if (header.biSize != sizeof header || header.biPlanes != 1 || header.biWidth < 1 ||
        header.biHeight == 0 || header.biHeight == std::numeric_limits<LONG>::min())
        return std::nullopt;
    const std::optional<PixelLayout> layout = LayoutOf(*info);
    if (!layout) return std::nullopt;

    DibFormat format;
    format.width = header.biWidth;
    format.height = header.biHeight < 0 ? -header.biHeight : header.biHeight;
    format.topDown = header.biHeight < 0;
    format.layout = *layout;
    format.rowBytes = RowBytes(format.width, *layout, kDibAlignment);
    if (!FitsMemory(format.rowBytes, format.height)) return std::nullopt;
    if (const std::size_t count = ColorTableSize(header); count > 0) {
        const RGBQUAD* behindHeader = info->bmiColors;
        format.colors.assign(behindHeader, behindHeader + count);
        format.colors.resize(std::size_t{1} << header.biBitCount);
    }
    return format;
}

BITMAPINFOHEADER MakeDibHeader(const Surface& surface) {
    const auto* rule = std::ranges::find(kLayoutRules, surface.layout, &LayoutRule::layout);
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = surface.width;
    header.biHeight = surface.height;
    header.biPlanes = 1;
    header.biBitCount = rule->bitCount;
    header.biCompression = rule->compression;
    // Sizes that the field can't hold are left out; it is optional for uncompressed pixels.
    const std::uint64_t bytes = std::uint64_t{RowBytes(surface.width, surface.layout, kDibAlignment)} *
                                static_cast<std::uint64_t>(surface.height);
    if (bytes <= std::numeric_limits<DWORD>::max()) header.biSizeImage = static_cast<DWORD>(bytes);
    return header;
}

std::unique_ptr<Bitmap> MakeSection(DibFormat format) {
    std::unique_ptr<Bitmap> bitmap = MakeBitmap(std::move(format));
    if (bitmap) bitmap->isSection = true;
    return bitmap;
}

std::unique_ptr<Bitmap> MakeDeviceBitmap(int width, int height, PixelLayout layout,
                                         std::vector<RGBQUAD> colors) {
    if (width < 1 || height < 1) return nullptr;
    const std::size_t rowBytes = RowBytes(width, layout, kDeviceAlignment);
    if (!FitsMemory(rowBytes, height)) return nullptr;
    return MakeBitmap({width, height, true, layout, rowBytes, std::move(colors)});
}

std::optional<PixelLayout> LayoutOfDepth(std::uint32_t bitCount) {
    for (const LayoutRule& rule : kLayoutRules) {
        if (rule.bitCount == bitCount && rule.compression == BI_RGB) return rule.layout;
    }
    return std::nullopt;
}

}  // namespace Zelkor::Platform
