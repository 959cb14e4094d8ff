// The exported functions that make bitmaps, bring rows of pixels into and out of them, and change their
// colours.

#include <algorithm>
#include <cstring>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "kalvo/gdi/dibformat.h"
#include "kalvo/gdi/objects.h"
#include "kalvo/raster/blit.h"

namespace Zelkor::Platform {
namespace {

bool IsNullOrContext(HDC hDC) { return !hDC || Find<Context>(hDC); }

// Copies scans between a bitmap and a buffer that holds those from `start` on. Returns how many both have.
int CopyScans(const Surface& destination, const Surface& source, const Surface& bitmap, const Surface& buffer,
              UINT start) {
    if (start >= static_cast<UINT>(bitmap.height)) return 0;
    const int scans = std::min(buffer.height, bitmap.height - static_cast<int>(start));
    const auto firstRow = [&](const Surface& surface) {
        return RowOfScans(surface, &surface == &bitmap ? start : 0, scans);
    };
    Blit(destination, source, UnscaledAxis(0, 0, source.width),
         UnscaledAxis(firstRow(destination), firstRow(source), scans));
    return scans;
}

// Writes the colour table of an indexed form that takes pixels of `bitmap`: their own table if it fits, else
// greys from black to white. Returns it.
std::span<const RGBQUAD> WriteColors(const Surface& bitmap, PixelLayout layout, BITMAPINFO& info) {
    if (!IsIndexed(layout)) return {};
    RGBQUAD* behindHeader = info.bmiColors;
    const std::span colors(behindHeader, ColorTableSize(info.bmiHeader));
    const std::size_t last = (std::size_t{1} << BitsPerPixel(layout)) - 1;
    for (std::size_t i = 0; i < colors.size(); ++i) {
        const auto grey = static_cast<BYTE>(i * 255 / last);
        colors[i] = {grey, grey, grey, 0};
    }
    if (bitmap.layout == layout)
        std::copy_n(bitmap.colors.begin(), std::min(bitmap.colors.size(), colors.size()), colors.begin());
    return colors;
}

// Entries of the colour table of the section that is selected in a context, as many as there are.
std::span<RGBQUAD> ColorEntries(HDC hDC, UINT start, UINT count) {
    const Context* context = Find<Context>(hDC);
    if (!context || !context->bitmap->isSection) return {};
    const std::span<RGBQUAD> table = context->bitmap->colors;
    if (start >= table.size()) return {};
    return table.subspan(start, std::min<std::size_t>(count, table.size() - start));
}

}  // namespace
}  // namespace Zelkor::Platform

using namespace Zelkor::Platform;

HBITMAP CreateBitmap(int n32Width, int n32Height, UINT un32Planes, UINT un32BitCount, const void* pBits) {
    const std::optional<PixelLayout> layout = LayoutOfDepth(un32BitCount);
    if (un32Planes != 1 || !layout) return nullptr;
    return OrNeutral([&] {
        auto bitmap = MakeDeviceBitmap(n32Width, n32Height, *layout, DeviceColors(*layout));
        if (bitmap && pBits) {
            const Surface& surface = bitmap->surface;
            const auto bytes = static_cast<std::size_t>(surface.pitchBytes * surface.height);
            std::memcpy(bitmap->memory.get(), pBits, bytes);
        }
        return static_cast<HBITMAP>(Register(std::move(bitmap)));
    });
}

HBITMAP CreateCompatibleBitmap(HDC hDC, int n32Width, int n32Height) {
    if (!IsNullOrContext(hDC)) return nullptr;
    if (n32Width == 0 || n32Height == 0) return CreateBitmap(1, 1, 1, 1, nullptr);
    if (!hDC) return CreateBitmap(n32Width, n32Height, 1, 32, nullptr);
    return OrNeutral([&] {
        const Bitmap& model = *Find<Context>(hDC)->bitmap;
        auto bitmap = MakeDeviceBitmap(n32Width, n32Height, model.surface.layout, model.colors);
        if (bitmap) bitmap->isSection = model.isSection;
        return static_cast<HBITMAP>(Register(std::move(bitmap)));
    });
}

HBITMAP CreateDIBSection(HDC hDC, const BITMAPINFO* pInfo, UINT un32Usage, void** ppBits, HANDLE, DWORD) {
    if (ppBits) *ppBits = nullptr;
    return OrNeutral([&]() -> HBITMAP {
        if (un32Usage != DIB_RGB_COLORS || !IsNullOrContext(hDC)) return nullptr;
        auto format = ReadDibHeader(pInfo);
        if (!format) return nullptr;
        std::unique_ptr<Bitmap> bitmap = MakeSection(*std::move(format));
        if (!bitmap) return nullptr;
        std::uint8_t* bits = bitmap->memory.get();
        const HANDLE handle = Register(std::move(bitmap));
        if (handle && ppBits) *ppBits = bits;
        return static_cast<HBITMAP>(handle);
    });
}

int SetDIBits(HDC hDC, HBITMAP hBitmap, UINT un32Start, UINT un32Lines, const void* pBits,
              const BITMAPINFO* pInfo, UINT un32Usage) {
    return OrNeutral([&] {
        const Bitmap* bitmap = Find<Bitmap>(hBitmap);
        const auto format = ReadDibHeader(pInfo);
        if (!bitmap || !format || !pBits || un32Usage != DIB_RGB_COLORS || !IsNullOrContext(hDC)) return 0;
        const Surface buffer = format->ScansAt(pBits, un32Start, un32Lines);
        return CopyScans(bitmap->surface, buffer, bitmap->surface, buffer, un32Start);
    });
}

int GetDIBits(HDC hDC, HBITMAP hBitmap, UINT un32Start, UINT un32Lines, void* pBits, BITMAPINFO* pInfo,
              UINT un32Usage) {
    return OrNeutral([&] {
        const Bitmap* bitmap = Find<Bitmap>(hBitmap);
        if (!bitmap || !pInfo || un32Usage != DIB_RGB_COLORS || !IsNullOrContext(hDC)) return 0;
        if (!pBits && pInfo->bmiHeader.biSize == sizeof(BITMAPINFOHEADER) &&
            pInfo->bmiHeader.biBitCount == 0) {
            pInfo->bmiHeader = MakeDibHeader(bitmap->surface);
            return 1;
        }
        const auto format = ReadDibHeader(pInfo);
        if (!format) return 0;
        Surface buffer = format->ScansAt(pBits, un32Start, un32Lines);
        buffer.colors = WriteColors(bitmap->surface, format->layout, *pInfo);
        if (!pBits) return 1;
        return CopyScans(buffer, bitmap->surface, bitmap->surface, buffer, un32Start);
    });
}

UINT GetDIBColorTable(HDC hDC, UINT un32Start, UINT un32Entries, RGBQUAD* pColors) {
    const std::span<RGBQUAD> entries = ColorEntries(hDC, un32Start, un32Entries);
    if (!pColors) return 0;
    std::ranges::copy(entries, pColors);
    return static_cast<UINT>(entries.size());
}

UINT SetDIBColorTable(HDC hDC, UINT un32Start, UINT un32Entries, const RGBQUAD* pColors) {
    const std::span<RGBQUAD> entries = ColorEntries(hDC, un32Start, un32Entries);
    if (!pColors) return 0;
    std::copy_n(pColors, entries.size(), entries.begin());
    return static_cast<UINT>(entries.size());
}
