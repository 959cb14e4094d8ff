// Writes PNG files with libpng.

#include "png_file.h"

#include <png.h>

#include <vector>

#include "failure.h"

namespace App {

void SavePng(const KxROI<KxC24A>& picture, const std::string& path) {
    const int width = picture.GetWidth(), height = picture.GetHeight();
    std::vector<png_byte> bytes;
    bytes.reserve(std::size_t{3} * static_cast<unsigned>(width) * static_cast<unsigned>(height));
    for (int y = 0; y < height; ++y) {
        const KxC24A* row = picture.GetImagePtr(0, y);
        for (int x = 0; x < width; ++x)
            bytes.insert(bytes.end(), {row[x].m_un8C0, row[x].m_un8C1, row[x].m_un8C2});
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB;
    if (!png_image_write_to_file(&image, path.c_str(), 0, bytes.data(), 0, nullptr))
        throw Failure{image.message, KX_ERROR_FILE_WRITE};
}

}  // namespace App
