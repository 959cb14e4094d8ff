// Describes regions to a device and hands their pixels over, without a copy where a header can describe them.

#include "kalvo/display/dib.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "kalvo/frame/roundtoint.h"
#include "kalvo/kernels/kernels.h"

namespace Zelkor::Kalvo {
namespace {

constexpr DibType kDibTypes[] = {
    {KX_IMAGE_BW1, 1, 2, {}, PaletteKind::None},
    {KX_IMAGE_BW8, 8, 256, {}, PaletteKind::Gray},
    {KX_IMAGE_C15, 16, 0, {0x7C00, 0x03E0, 0x001F}, PaletteKind::ColorCube},
    {KX_IMAGE_C16, 16, 0, {0xF800, 0x07E0, 0x001F}, PaletteKind::ColorCube},
    {KX_IMAGE_C24, 24, 0, {}, PaletteKind::ColorCube},
    {KX_IMAGE_C24A, 32, 0, {}, PaletteKind::ColorCube},
};

constexpr int kCubeSide = 6;
constexpr int kCubeStep = 51;

PALETTEENTRY EntryOf(const RGBQUAD& color) { return {color.rgbRed, color.rgbGreen, color.rgbBlue, 0}; }

// The entries that matter most come first, since a device may take a part only: the middle, the quarters, ...
void FillGrayPalette(const KxBitmapInfo& info, KxLogicalPalette& palette) {
    auto* entry = palette.m_Entries.data();
    for (std::size_t step = 256; step >= 2; step /= 2) {
        for (std::size_t i = step / 2; i < 256; i += step) *entry++ = EntryOf(info.m_Colors[i]);
    }
    *entry = EntryOf(info.m_Colors[0]);
    palette.m_un16NumEntries = 256;
}

void FillColorCube(KxLogicalPalette& palette) {
    constexpr int kEntries = kCubeSide * kCubeSide * kCubeSide;
    const auto level = [](int index) { return static_cast<BYTE>(kCubeStep * (index % kCubeSide)); };
    for (int i = 0; i < kEntries; ++i)
        palette.m_Entries[i] = {level(i / kCubeSide / kCubeSide), level(i / kCubeSide), level(i), 0};
    palette.m_un16NumEntries = kEntries;
}

int Scaled(int size, float zoom) { return zoom == 1 ? size : TruncateToInt(static_cast<float>(size) * zoom); }

}  // namespace

const DibType* FindDibType(KX_IMAGE_TYPES type) {
    const auto* found = std::ranges::find(kDibTypes, type, &DibType::type);
    return found == std::end(kDibTypes) ? nullptr : found;
}

void DescribeBitmap(const DibType& type, int width, int height, KxBitmapInfo& info) {
    info.m_Header = {};
    info.m_Header.biSize = sizeof info.m_Header;
    info.m_Header.biWidth = width;
    info.m_Header.biHeight = -height;
    info.m_Header.biPlanes = 1;
    info.m_Header.biBitCount = type.bitCount;
    info.m_Header.biCompression = type.bitCount == 16 ? BI_BITFIELDS : BI_RGB;
}

void DescribeColors(const DibType& type, KxBitmapInfo& info) {
    for (int i = 0; i < type.grays; ++i) {
        const auto level = static_cast<BYTE>(i * 255 / (type.grays - 1));
        info.m_Colors[i] = {level, level, level, 0};
    }
    if (type.bitCount == 16) std::memcpy(info.m_Colors.data(), type.masks, sizeof type.masks);
}

void FillPalette(PaletteKind kind, const KxBitmapInfo& info, KxLogicalPalette& palette) {
    if (kind == PaletteKind::Gray)
        FillGrayPalette(info, palette);
    else
        FillColorCube(palette);
}

bool IsPaletteDevice(HDC hdc) { return GetDeviceCaps(hdc, RASTERCAPS) & RC_PALETTE; }

SelectedPalette::SelectedPalette(HDC hdc, HPALETTE palette)
    : m_hdc(hdc), m_previous(palette ? SelectPalette(hdc, palette, 0) : nullptr) {
    if (m_previous) RealizePalette(hdc);
}

SelectedPalette::~SelectedPalette() {
    if (m_previous) SelectPalette(m_hdc, m_previous, 0);
}

void CopyPixels(const ConstRegionRows& from, const RegionRows& to, int bitsPerPixel) {
    const std::size_t bits = std::size_t{1} * from.width * bitsPerPixel;
    for (int y = 0; y < from.height; ++y)
        Kernels::Active().copyBits(from.Row(y), from.firstBit, to.Row(y), to.firstBit, bits);
}

RegionRows BitmapRows(void* bits, const DibType& type, int width, int height) {
    return {static_cast<std::uint8_t*>(bits), 0, (std::ptrdiff_t{width} * type.bitCount + 31) / 32 * 4, width,
            height};
}

RegionDib::RegionDib(const KxGenericROI& region, const DibType& type, KxBitmapInfo& info)
    : m_type(type), m_info(info), m_rows(RowsOf(region)) {
    const KxGenericROI* top = region.GetTopParent();
    m_bits = top->GetGenericImagePtr(0, 0);
    m_bitmapWidth = static_cast<int>(std::abs(m_rows.pitchBytes) * 8 / type.bitCount);
    m_bitmapHeight = top->GetHeight();
    m_x = region.GetTotalOrgX();
    m_y = region.GetTotalOrgY();
    if (m_rows.width == 0) m_rows.width = m_bitmapWidth;
    if (m_rows.height == 0) m_rows.height = m_bitmapHeight;
    DescribeBitmap(type, m_bitmapWidth, m_bitmapHeight, info);
}

// Rows that a caller wrapped may stand closer than a bitmap's, which are padded to 4 bytes, or run upwards.
bool RegionDib::IsDescribable() const { return m_rows.pitchBytes >= 0 && m_rows.pitchBytes % 4 == 0; }

bool RegionDib::LiesInside() const {
    return m_x >= 0 && m_y >= 0 && std::int64_t{m_x} + m_rows.width <= m_bitmapWidth &&
           std::int64_t{m_y} + m_rows.height <= m_bitmapHeight;
}

// Turns to a bitmap of the region alone.
void RegionDib::UseCopy() {
    RegionRows rows = BitmapRows(nullptr, m_type, m_rows.width, m_rows.height);
    m_copy.resize(static_cast<std::size_t>(rows.pitchBytes * rows.height));
    rows.first = m_copy.data();
    CopyPixels(m_rows, rows, m_type.bitCount);
    m_bits = m_copy.data();
    m_bitmapWidth = m_rows.width;
    m_bitmapHeight = m_rows.height;
    m_x = m_y = 0;
    DescribeBitmap(m_type, m_bitmapWidth, m_bitmapHeight, m_info);
}

int RegionDib::FromBottom() const { return ClampToInt(std::int64_t{m_bitmapHeight} - m_y - m_rows.height); }

void RegionDib::Draw(HDC hdc, Zoom zoom) {
    if (!IsDescribable()) {
        if (!LiesInside()) return;
        UseCopy();
    }
    const int width = m_rows.width;
    const int height = m_rows.height;
    if (zoom.x == 1 && zoom.y == 1) {
        SetDIBitsToDevice(hdc, 0, 0, static_cast<DWORD>(width), static_cast<DWORD>(height), m_x, FromBottom(),
                          0, static_cast<UINT>(m_bitmapHeight), m_bits, AsBitmapInfo(m_info), DIB_RGB_COLORS);
    } else {
        SetStretchBltMode(hdc, COLORONCOLOR);
        StretchDIBits(hdc, 0, 0, Scaled(width, zoom.x), Scaled(height, zoom.y), m_x, FromBottom(), width,
                      height, m_bits, AsBitmapInfo(m_info), DIB_RGB_COLORS, SRCCOPY);
    }
}

void RegionDib::Blend(HDC hdc, Zoom zoom, double alpha) {
    if (!LiesInside()) return;
    if (!IsDescribable()) UseCopy();
    const int width = m_rows.width, height = m_rows.height;
    BlendDIBits(hdc, 0, 0, Scaled(width, zoom.x), Scaled(height, zoom.y), m_x, FromBottom(), width, height,
                m_bits, AsBitmapInfo(m_info), DIB_RGB_COLORS,
                {AC_SRC_OVER, 0, static_cast<BYTE>(TruncateToInt(255.0 * alpha)), 0});
}

}  // namespace Zelkor::Kalvo
