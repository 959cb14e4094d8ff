#pragma once
// JPEG streams as libjpeg makes them, of any kind that it knows.

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <vector>

#include "kalvo/imagefiles/libjpeg.h"
#include "tests/support/temporary_folder.h"

namespace Zelkor::Kalvo::Testing {

// A stream of 40 x 24 pixels, unless `change` sets another size; it may set all other parameters too.
inline Bytes MakeJpeg(int components, const std::function<void(j_compress_ptr)>& change = {}) {
    jpeg_compress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &buffer, &size);
    info.image_width = 40;
    info.image_height = 24;
    info.input_components = components;
    info.in_color_space = components == 1 ? JCS_GRAYSCALE : components == 3 ? JCS_RGB : JCS_CMYK;
    jpeg_set_defaults(&info);
    info.write_JFIF_header = TRUE;
    if (change) change(&info);
    jpeg_start_compress(&info, TRUE);
    Bytes line(info.image_width * components);
    for (std::size_t i = 0; i < line.size(); ++i) line[i] = static_cast<std::uint8_t>(i * 3);
    JSAMPROW row = line.data();
    while (info.next_scanline < info.image_height) jpeg_write_scanlines(&info, &row, 1);
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const Bytes bytes(buffer, buffer + size);
    std::free(buffer);
    return bytes;
}

// One scan for every coefficient, and one more for its last bit: 128 scans.
inline Bytes MakeJpegOfManyScans() {
    std::vector<jpeg_scan_info> scans;
    for (const int lastBit : {1, 0})
        for (int i = 0; i < 64; ++i) scans.push_back({1, {0}, i, i, 1 - lastBit, lastBit});
    return MakeJpeg(1, [&](j_compress_ptr info) { info->scan_info = scans.data(), info->num_scans = 128; });
}

// Where the segment of a marker starts.
inline std::size_t FindSegment(const Bytes& bytes, std::uint8_t marker) {
    std::size_t i = 2;
    while (bytes.at(i + 1) != marker) i += 2 + bytes.at(i + 2) * 256 + bytes.at(i + 3);
    return i;
}

// The bytes with others written over them.
inline Bytes Changed(Bytes bytes, std::size_t position, const Bytes& replacement) {
    std::copy(replacement.begin(), replacement.end(), bytes.begin() + position);
    return bytes;
}

}  // namespace Zelkor::Kalvo::Testing
