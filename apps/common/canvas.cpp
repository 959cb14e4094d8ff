// A memory context with a bitmap of 32 bits a pixel.

#include "common/canvas.h"

#include <algorithm>

#include "common/failure.h"
#include "common/image_file.h"
#include "common/pixel_conversion.h"

namespace App {
namespace {

constexpr int kMostPixels = 30000;  // along each side
constexpr KxC24A kWhite(255, 255, 255, 255);

int CheckedSide(int pixels) {
    if (pixels > kMostPixels) throw Failure::Of(KX_ERROR_ORIGIN_IMAGE_TOO_BIG);
    return std::max(pixels, 1);
}

}  // namespace

Canvas::Canvas(int width, int height) : m_context(CreateCompatibleDC(nullptr)) {
    width = CheckedSide(width);
    height = CheckedSide(height);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;  // rows from the top
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* pixels = nullptr;
    m_bitmap = CreateDIBSection(m_context, &info, DIB_RGB_COLORS, &pixels);
    if (!m_bitmap || !SelectObject(m_context, m_bitmap)) {
        DeleteDC(m_context);
        DeleteObject(m_bitmap);
        throw Failure::Of(KX_ERROR_ALLOCATION);
    }
    m_image.SetImagePtr(width, height, pixels);
    for (int y = 0; y < height; ++y) std::fill_n(m_image.GetImagePtr(0, y), width, kWhite);
}

Canvas::~Canvas() {
    DeleteDC(m_context);
    DeleteObject(m_bitmap);
}

void SavePicture(Canvas& canvas, const std::string& path) {
    SaveImage(*Convert<KxC24>(canvas.Image(), PixelMaker{.threshold = 128}), path);
}

}  // namespace App
