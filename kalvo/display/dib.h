#pragma once
// Regions as device-independent bitmaps: how each pixel type is described, its palette, and the blit.

#include <cstdint>
#include <vector>

#include "kalvo/frame/kxthread.h"
#include "kalvo/gdi/gdi.h"
#include "kalvo/image/regionrows.h"

namespace Zelkor::Kalvo {

// What devices with a palette need for a pixel type.
enum class PaletteKind { None, Gray, ColorCube };

// How a pixel type is described to a device.
struct DibType {
    KX_IMAGE_TYPES type;
    WORD bitCount;
    int grays;       // entries of the colour table, from black to white; 0 for none
    DWORD masks[3];  // red, green, blue; of 16-bit pixels only
    PaletteKind palette;
};

// The description of a pixel type; null when its pixels can't be shown as they are.
const DibType* FindDibType(KX_IMAGE_TYPES type);

// Describes `width` x `height` pixels, rows from the top. Colours or masks are set apart.
void DescribeBitmap(const DibType& type, int width, int height, KxBitmapInfo& info);
// The colours, from black to white, or the masks of a type.
void DescribeColors(const DibType& type, KxBitmapInfo& info);

inline BITMAPINFO* AsBitmapInfo(KxBitmapInfo& info) { return reinterpret_cast<BITMAPINFO*>(&info); }
inline const BITMAPINFO* AsBitmapInfo(const KxBitmapInfo& info) {
    return reinterpret_cast<const BITMAPINFO*>(&info);
}

// Fills `palette` as `kind` says, the grey one from the colour table of `info`.
void FillPalette(PaletteKind kind, const KxBitmapInfo& info, KxLogicalPalette& palette);
inline const LOGPALETTE* AsLogPalette(const KxLogicalPalette& palette) {
    return reinterpret_cast<const LOGPALETTE*>(&palette);
}
bool IsPaletteDevice(HDC hdc);

// Selects and realises a palette; at the end of its life the previous one is selected back. A null palette
// selects nothing.
class SelectedPalette {
public:
    SelectedPalette(HDC hdc, HPALETTE palette);
    ~SelectedPalette();
    SelectedPalette(const SelectedPalette&) = delete;
    SelectedPalette& operator=(const SelectedPalette&) = delete;

    HPALETTE Previous() const { return m_previous; }

private:
    HDC m_hdc;
    HPALETTE m_previous;
};

// How many times as large a picture gets; a vertical zoom of 0 stands for the horizontal one.
struct Zoom {
    Zoom(float zoomX, float zoomY) : x(zoomX), y(zoomY == 0 ? zoomX : zoomY) {}

    float x;
    float y;
};

// Copies pixels between rows of one size; padding is left alone.
void CopyPixels(const ConstRegionRows& from, const RegionRows& to, int bitsPerPixel);

// The rows of a bitmap of that size at `bits`.
RegionRows BitmapRows(void* bits, const DibType& type, int width, int height);

// A region as a part of the bitmap that the rows of its whole image are.
class RegionDib {
public:
    // Puts the header into `info`, which must outlive this and have its colours or masks before drawing. The
    // region must have pixels.
    RegionDib(const KxGenericROI& region, const DibType& type, KxBitmapInfo& info);

    // Draws at (0, 0).
    void Draw(HDC hdc, Zoom zoom);
    // Mixes it in at (0, 0), from 0 (invisible) to 1.
    void Blend(HDC hdc, Zoom zoom, double alpha);

private:
    bool IsDescribable() const;
    bool LiesInside() const;
    // Where the region begins, counted from the bottom row, even of bitmaps that run downwards.
    int FromBottom() const;
    void UseCopy();

    const DibType& m_type;
    KxBitmapInfo& m_info;
    ConstRegionRows m_rows;  // of the region
    const void* m_bits;      // of the bitmap
    int m_bitmapWidth;
    int m_bitmapHeight;
    int m_x;  // of the region in the bitmap
    int m_y;
    std::vector<std::uint8_t> m_copy;
};

}  // namespace Zelkor::Kalvo
