// JPEG files: what is written, what loads, and files that must be refused.
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kalvo/frame/kxlibrary.h"
#include "kalvo/frame/kxtrace.h"
#include "kalvo/persistence/jpegerror.h"
#include "kalvo/persistence/kximagefile.h"
#include "tests/support/pixels.h"
#include "tests/support/temporary_folder.h"

namespace Zelkor::Kalvo {
namespace {

using Testing::Bytes;

/// A file of 40 x 24 pixels as libjpeg makes it after `change` has set its parameters.
Bytes MakeJpeg(int components, const std::function<void(j_compress_ptr)>& change = {}) {
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
    while (info.next_scanline < info.image_height) {
        Bytes line;
        for (int i = 0; i < 40 * components; ++i)
            line.push_back(static_cast<std::uint8_t>(i * 3 + info.next_scanline * 5));
        JSAMPROW row = line.data();
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const Bytes bytes(buffer, buffer + size);
    std::free(buffer);
    return bytes;
}

/// One scan for every coefficient, and one more for its last bit: 128 scans.
Bytes MakeFileOfManyScans() {
    std::vector<jpeg_scan_info> scans;
    for (const int lastBit : {1, 0})
        for (int i = 0; i < 64; ++i) scans.push_back({1, {0}, i, i, lastBit == 1 ? 0 : 1, lastBit});
    return MakeJpeg(1, [&](j_compress_ptr info) {
        info->scan_info = scans.data();
        info->num_scans = static_cast<int>(scans.size());
    });
}

/// Where the segment of a marker starts.
std::size_t Find(const Bytes& bytes, std::uint8_t marker) {
    std::size_t i = 2;
    while (bytes.at(i + 1) != marker) i += 2 + bytes.at(i + 2) * 256 + bytes.at(i + 3);
    return i;
}

Bytes Changed(Bytes bytes, std::size_t position, const Bytes& replacement) {
    std::copy(replacement.begin(), replacement.end(), bytes.begin() + position);
    return bytes;
}

class Jpeg : public testing::Test {
protected:
    Jpeg() {
        KxSetTraceMode(KX_TRACE_MODE_SILENT);
        KxOk();
    }
    ~Jpeg() override {
        KxOk();
        KxSetJpegQuality(50);
    }

    template <class Image>
    KX_ERRORS Load(Image& image, const Bytes& bytes) {
        return static_cast<KX_ERRORS>(KxLoadImage(&image, folder.Write("a.jpg", bytes).c_str(), type));
    }
    template <class Image>
    Bytes Save(const Image& image) {
        EXPECT_EQ(KxSaveImage(&image, folder.File("a.jpg").c_str()), KX_OK);
        return folder.Read("a.jpg");
    }

    Testing::TemporaryFolder folder;
    short type = 77;
};

TEST_F(Jpeg, KeepsGrayPixelsOfARegionAndTheNeighboursOfItsDestination) {
    KxSetJpegQuality(100);
    KxImage<KxBW8> frame(50, 40), other(60, 30);
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 50; ++x) frame.SetPixel(static_cast<std::uint8_t>(x * 4 + y), x, y);
    Testing::FillPattern(other, 1);
    const KxImage<KxBW8> before(other);
    const KxROI<KxBW8> source(&frame, 5, 7, 33, 19);
    KxROI<KxBW8> destination(&other, 4, 3, 33, 19);
    EXPECT_EQ(Load(destination, Save(source)), KX_OK);
    EXPECT_EQ(type, IMAGE_FILE_JPEG_GRAY);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 60; ++x) {
            if (x >= 4 && x < 37 && y >= 3 && y < 22)
                EXPECT_NEAR(other.GetPixel(x, y), source.GetPixel(x - 4, y - 3), 1);
            else
                EXPECT_EQ(other.GetPixel(x, y), before.GetPixel(x, y));
        }
    }
}

TEST_F(Jpeg, KeepsTheOrderOfColors) {
    KxSetJpegQuality(100);
    KxImage<KxC24> image(48, 16), loaded;
    const KxC24 colors[] = {KxRed24, KxGreen24, KxBlue24};
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 48; ++x) image.SetPixel(colors[x / 16], x, y);
    EXPECT_EQ(Load(loaded, Save(image)), KX_OK);
    EXPECT_EQ(type, IMAGE_FILE_JPEG_COLOR);
    for (int i = 0; i < 3; ++i) {
        const KxC24 found = loaded.GetPixel(16 * i + 8, 8);
        EXPECT_NEAR(found.m_un8C0, colors[i].m_un8C0, 3) << i;
        EXPECT_NEAR(found.m_un8C1, colors[i].m_un8C1, 3) << i;
        EXPECT_NEAR(found.m_un8C2, colors[i].m_un8C2, 3) << i;
    }
}

TEST_F(Jpeg, IsWrittenWithTheQualityOfTheThread) {
    KxImage<KxBW8> image(64, 64);
    Testing::FillPattern(image, 1);
    std::vector<std::size_t> sizes;
    for (const unsigned quality : {0u, 10u, 50u, 90u, 100u, 0xFFFFFFFFu}) {
        KxSetJpegQuality(quality);
        const Bytes bytes = Save(image);
        EXPECT_NO_THROW(Find(bytes, 0xC0)) << "baseline";
        sizes.push_back(bytes.size());
    }
    EXPECT_TRUE(std::is_sorted(sizes.begin(), sizes.end()));
    EXPECT_LT(sizes[0], sizes[1]);
    EXPECT_EQ(sizes[4], sizes[5]);
}

TEST_F(Jpeg, HoldsTheResolutionAsDensity) {
    const struct {
        float x, y;
        KxMeasurementUnit* unit;
        Bytes density;  // after the version in the first segment
        const char* loadedUnit;
    } kResolutions[] = {
        {1, 1, &KxUnitNone, {0, 0, 1, 0, 1}, "None"},
        {3, 2, &KxUnitNone, {0, 0, 3, 0, 2}, "None"},
        {300, 600, &KxUnit_inch, {1, 1, 44, 2, 88}, "inch"},
        {16, 12.5f, &KxUnit_mm, {2, 0, 159, 0, 124}, "cm"},
        {90000, 70, &KxUnit_cm, {2, 255, 255, 0, 70}, "cm"},
        {100, 0.5f, &KxUnit_inch, {1, 0, 100, 0, 0}, "None"},
    };
    for (const auto& resolution : kResolutions) {
        KxImage<KxBW8> image(8, 8), loaded;
        image.SetResolution(resolution.x, resolution.y, resolution.unit);
        const Bytes bytes = Save(image);
        EXPECT_EQ(Bytes(bytes.begin() + 13, bytes.begin() + 18), resolution.density) << resolution.x;
        EXPECT_EQ(Load(loaded, bytes), KX_OK);
        float x = 0, y = 0;
        const KxMeasurementUnit* unit = nullptr;
        loaded.GetResolution(x, y, unit);
        const bool isKnown = resolution.density[4] != 0;
        EXPECT_FLOAT_EQ(x, isKnown ? resolution.density[1] * 256.f + resolution.density[2] : 1);
        EXPECT_FLOAT_EQ(y, isKnown ? resolution.density[3] * 256.f + resolution.density[4] : 1);
        EXPECT_STREQ(unit->GetName(), resolution.loadedUnit);
    }
}

TEST_F(Jpeg, LoadsFilesOfOtherPrograms) {
    KxImage<KxC24> baseline, loaded;
    const Bytes whole = MakeJpeg(3);
    ASSERT_EQ(Load(baseline, whole), KX_OK);
    EXPECT_EQ(Load(loaded, Changed(whole, 6, {'E', 'x', 'i', 'f'})), KX_OK);
    EXPECT_TRUE(Testing::SamePixels(loaded, baseline));
    EXPECT_EQ(Load(loaded, MakeJpeg(3, jpeg_simple_progression)), KX_OK);
    EXPECT_TRUE(Testing::SamePixels(loaded, baseline));
    EXPECT_EQ(Load(loaded, MakeJpeg(3, [](auto* info) { info->restart_interval = 2; })), KX_OK);
    EXPECT_TRUE(Testing::SamePixels(loaded, baseline));
}

TEST_F(Jpeg, RefusesBadFiles) {
    const Bytes gray = MakeJpeg(1);
    const std::size_t frame = Find(gray, 0xC0);
    const std::size_t scan = Find(gray, 0xDA);
    Bytes allOnes;  // no code of the standard tables
    for (int i = 0; i < 8; ++i) allOnes.insert(allOnes.end(), {0xFF, 0});
    const struct {
        const char* name;
        Bytes bytes;
        KX_ERRORS code;
        bool isFoundInTime;  // before the image is touched
    } kBadFiles[] = {
        {"65500 x 65500", Changed(gray, frame + 5, {0xFF, 0xDC, 0xFF, 0xDC}), KX_ERROR_FILE_READ, true},
        {"four times as high", Changed(gray, frame + 5, {0, 96}), KX_ERROR_FILE_READ, false},
        {"no height", Changed(gray, frame + 5, {0, 0}), KX_ERROR_JPEG_READ, true},
        {"12 bits", Changed(gray, frame + 4, {12}), KX_ERROR_JPEG_READ, true},
        {"arithmetic coding", Changed(gray, frame + 1, {0xC9}), KX_ERROR_UNSUPPORTED_JPEG, true},
        {"four components", MakeJpeg(4), KX_ERROR_UNSUPPORTED_JPEG, true},
        {"no start of image", Changed(gray, 0, {0, 0}), KX_ERROR_JPEG_READ, true},
        {"unknown codes", Changed(gray, scan + 10, allOnes), KX_ERROR_JPEG_READ, false},
        {"128 scans", MakeFileOfManyScans(), KX_ERROR_JPEG_READ, false},
    };
    for (const auto& [name, bytes, code, isFoundInTime] : kBadFiles) {
        KxImage<KxBW8> image(3, 2);
        Testing::FillPattern(image, 1);
        const KxImage<KxBW8> before(image);
        EXPECT_EQ(Load(image, bytes), code) << name;
        EXPECT_EQ(Testing::SamePixels(image, before), isFoundInTime) << name;
        EXPECT_EQ(Load(image, gray), KX_OK) << name;
    }
}

TEST_F(Jpeg, NeverTakesACutFileForAWholeOne) {
    const auto expectEveryCutRefused = [this](auto image, const Bytes& whole) {
        EXPECT_EQ(Load(image, whole), KX_OK);
        for (std::size_t length = 0; length < whole.size(); ++length)
            EXPECT_EQ(Load(image, Bytes(whole.begin(), whole.begin() + length)), KX_ERROR_FILE_READ)
                << length;
    };
    expectEveryCutRefused(KxImage<KxBW8>(), MakeJpeg(1));
    expectEveryCutRefused(KxImage<KxC24>(), MakeJpeg(3, jpeg_simple_progression));
}

TEST_F(Jpeg, IsNotWrittenBeyondTheSizeOfTheFormat) {
    KxImage<KxBW8> image(65501, 1);
    EXPECT_EQ(KxSaveImage(&image, folder.File("a.jpg").c_str()), KX_ERROR_JPEG_WRITE);
}

template <class Pixel>
class JpegInto : public Jpeg {};
using FilePixels = testing::Types<KxBW1, KxBW8, KxBW16, KxBW32, KxC15, KxC16, KxC24, KxC24A>;
TYPED_TEST_SUITE(JpegInto, FilePixels);

TYPED_TEST(JpegInto, LoadsIntoGrayAndTrueColorOnly) {
    constexpr short kOutcomes[][2] = {{1208, 1208}, {0, 1209},    {1025, 1209}, {1026, 1209},
                                      {1207, 1207}, {1207, 1207}, {1210, 0},    {1207, 1209}};
    const auto& [gray, color] = kOutcomes[PixelTraits<TypeParam>::kImageType];
    KxImage<TypeParam> image;
    EXPECT_EQ(this->Load(image, MakeJpeg(1)), gray);
    EXPECT_EQ(this->Load(image, MakeJpeg(3)), color);
}

}  // namespace
}  // namespace Zelkor::Kalvo
