#pragma once
// What must hold for every image file, whatever the format.

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>

#include "kalvo/frame/kxexception.h"
#include "kalvo/frame/kxtrace.h"
#include "kalvo/image/kximage.h"
#include "kalvo/imagefiles/imagefile.h"
#include "fuzz/require.h"

namespace Zelkor::Kalvo::Fuzzing {

using Inspector = std::unique_ptr<InspectedFile> (*)(const ImageFileReader&);

// Whether the bytes load into `region`; only failures with a code may stop that.
template <class Pixel>
bool Loads(Inspector inspect, std::FILE* stream, KxROI<Pixel>& region) {
    try {
        const ImageFileReader file(stream);
        const auto inspected = inspect(file);
        inspected->CountPages();
        Load(*inspected, region);
        return true;
    } catch (const Exception& exception) {
        Require(exception.GetError() >= 1000, "a failure has a code");
        return false;
    }
}

// An image whose bytes, padding included, are all the same.
template <class Pixel>
std::unique_ptr<KxImage<Pixel>> MakeGuard(int width, int height) {
    constexpr int kGuard = 0xA5;
    auto image = std::make_unique<KxImage<Pixel>>(width, height);
    const RegionRows rows = RowsOf(*image);
    std::memset(rows.first, kGuard, rows.pitchBytes * rows.height);
    return image;
}

// What an image takes, a region of its size takes too, and leaves its neighbours alone.
template <class Pixel>
void CheckPixelType(Inspector inspect, std::FILE* stream) {
    KxImage<Pixel> image;
    if (!Loads(inspect, stream, image)) return;
    const int width = image.GetWidth();
    const int height = image.GetHeight();
    Require(!image.Void() && width > 0 && height > 0, "a loaded image has pixels");

    constexpr int kMargin = 3;
    const auto guard = MakeGuard<Pixel>(width + 2 * kMargin, height + 2 * kMargin);
    const auto frame = MakeGuard<Pixel>(width + 2 * kMargin, height + 2 * kMargin);
    KxROI<Pixel> region(frame.get(), kMargin, kMargin, width, height);
    Require(Loads(inspect, stream, region), "a region of the right size loads");
    for (int y = 0; y < frame->GetHeight(); ++y) {
        for (int x = 0; x < frame->GetWidth(); ++x) {
            const int column = x - kMargin, row = y - kMargin;
            const bool isInside = column >= 0 && column < width && row >= 0 && row < height;
            const Pixel expected = isInside ? image.GetPixel(column, row) : guard->GetPixel(x, y);
            const Pixel actual = frame->GetPixel(x, y);
            Require(std::memcmp(&actual, &expected, sizeof(Pixel)) == 0, "only the region's pixels change");
        }
    }
}

// Offers the bytes to every pixel type that files know.
inline int CheckReader(Inspector inspect, const std::uint8_t* bytes, std::size_t count) {
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    if (count == 0) return 0;
    std::FILE* stream = fmemopen(const_cast<std::uint8_t*>(bytes), count, "rb");
#define KX_CHECK(Pixel) CheckPixelType<Pixel>(inspect, stream);
    KX_FOR_EACH_FILE_PIXEL(KX_CHECK)
#undef KX_CHECK
    std::fclose(stream);
    return 0;
}

}  // namespace Zelkor::Kalvo::Fuzzing
