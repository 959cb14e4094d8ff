// The exact bytes of saved TIFF files, and every format read back.

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "kalvo/frame/kxlibrary.h"
#include "kalvo/frame/kxtrace.h"
#include "kalvo/image/kximage.h"
#include "kalvo/persistence/byteorder.h"
#include "kalvo/persistence/tiff_directory.h"
#include "kalvo/platform/file.h"
#include "tests/support/pixel_bytes.h"

namespace Zelkor::Kalvo {
namespace {

using Testing::Bytes;
using Testing::PixelBytes;

class TiffWrite : public testing::Test {
protected:
    TiffWrite() : m_path(m_folder.File("file.tif")) {
        KxSetTraceMode(KX_TRACE_MODE_SILENT);
        KxOk();
    }
    ~TiffWrite() override {
        KxSetTiffStripSize(8192);
        KxSetTiffThreshold(128);
    }

    Bytes Save(const auto& region, IMAGE_FILE_TYPES type) const {
        region.Save(m_path.c_str(), type);
        EXPECT_EQ(KxGetError(), KX_OK);
        return m_folder.Read("file.tif");
    }

    // The contents of the strips of the saved file.
    std::vector<Bytes> Strips() const {
        const Platform::File file(m_path.c_str(), "rb");
        const ImageFileReader reader(file.Get());
        const TiffDirectory directory(reader);
        TiffNumbers offsets = directory.Numbers(TiffTag::StripOffsets);
        TiffNumbers byteCounts = directory.Numbers(TiffTag::StripByteCounts);
        std::vector<Bytes> strips(offsets.Count());
        for (Bytes& strip : strips) {
            strip.resize(byteCounts.Next());
            reader.Read(offsets.Next(), strip);
        }
        return strips;
    }

    std::uint32_t Number(TiffTag tag) const {
        const Platform::File file(m_path.c_str(), "rb");
        const ImageFileReader reader(file.Get());
        return TiffDirectory(reader).Number(tag, 0);
    }

    Testing::TemporaryFolder m_folder;
    std::string m_path;
};

template <class Pixel>
KxImage<Pixel> MakeImage(int width, int height, const Bytes& pixels) {
    KxImage<Pixel> image(width, height);
    Testing::SetPixelBytes(image, pixels);
    return image;
}

TEST_F(TiffWrite, WritesTheseBytes) {
    KxSetTiffStripSize(3);
    auto image = MakeImage<KxC24>(1, 2, {1, 2, 3, 4, 5, 6});
    image.SetTitle("abc");
    image.SetComment("hello");  // its NUL makes it even, the author is padded
    image.SetAuthor("me too");
    const Bytes written = Save(image, IMAGE_FILE_TIFF_COLOR);

    struct Row {
        std::uint16_t tag, type;
        std::uint32_t count, value;
    };
    constexpr std::uint32_t kData = 8 + 2 + 15 * 12 + 4;
    Bytes expected{'I', 'I', 42, 0, 8, 0, 0, 0, 15, 0};
    for (const Row& row : {Row{256, 4, 1, 1},
                           {257, 4, 1, 2},
                           {258, 3, 3, kData},
                           {259, 3, 1, 1},
                           {262, 3, 1, 2},
                           {269, 2, 4, 0x00636261},
                           {270, 2, 6, kData + 38},
                           {273, 4, 2, kData + 6},
                           {277, 3, 1, 3},
                           {278, 3, 1, 1},
                           {279, 4, 2, kData + 14},
                           {282, 5, 1, kData + 22},
                           {283, 5, 1, kData + 30},
                           {296, 3, 1, 1},
                           {315, 2, 7, kData + 44}}) {
        AppendLittleEndian(expected, row.tag);
        AppendLittleEndian(expected, row.type);
        AppendLittleEndian(expected, row.count);
        AppendLittleEndian(expected, row.value);
    }
    // clang-format off
    const Bytes rest{0, 0, 0, 0,                          // no further directory
                     8, 0, 8, 0, 8, 0,                    // bits per sample
                     246, 0, 0, 0, 249, 0, 0, 0,          // strip offsets
                     3, 0, 0, 0, 3, 0, 0, 0,              // strip byte counts
                     0, 0, 0, 128, 0, 0, 0, 128,          // 1.0 pixels
                     0, 0, 0, 128, 0, 0, 0, 128,          // in both directions
                     'h', 'e', 'l', 'l', 'o', 0,          // comment
                     'm', 'e', ' ', 't', 'o', 'o', 0, 0,  // author
                     3, 2, 1, 6, 5, 4};                   // red, green, blue
    // clang-format on
    expected.insert(expected.end(), rest.begin(), rest.end());
    EXPECT_EQ(written, expected);
}

TEST_F(TiffWrite, CutsStripsAtTheSizeAsked) {
    struct Case {
        std::uint32_t stripSize, rowsPerStrip;
        std::size_t strips;
    };
    const auto image = MakeImage<KxBW8>(100, 100, Bytes(10000, 9));
    for (const Case& c :
         {Case{8192, 81, 2}, {0, 100, 1}, {1, 1, 100}, {100000, 1000, 1}, {10000000, 100000, 1}}) {
        KxSetTiffStripSize(c.stripSize);
        for (const auto type : {IMAGE_FILE_TIFF_GRAY, IMAGE_FILE_TIFF_GRAY_PACKBITS}) {
            Save(image, type);
            EXPECT_EQ(Number(TiffTag::RowsPerStrip), c.rowsPerStrip);
            EXPECT_EQ(Strips().size(), c.strips);
        }
    }
}

TEST_F(TiffWrite, MakesBitsOfGrayLevelsAndOfRegionsAtAnyBit) {
    auto gray = MakeImage<KxBW8>(9, 2, {127, 128, 255, 0, 200, 1, 2, 3, 199, 128, 0, 0, 0, 0, 0, 0, 0, 201});
    Save(gray, IMAGE_FILE_TIFF_BILEVEL);
    EXPECT_EQ(Strips(), (std::vector<Bytes>{{0x68, 0x80, 0x80, 0x80}}));
    KxSetTiffThreshold(200);
    Save(gray, IMAGE_FILE_TIFF_BILEVEL);
    EXPECT_EQ(Strips(), (std::vector<Bytes>{{0x28, 0x00, 0x00, 0x80}}));

    auto bilevel = MakeImage<KxBW1>(16, 2, {0xFF, 0x12, 0x05, 0xAF});
    KxROI<KxBW1> region(&bilevel, 3, 0, 10, 2);
    Save(region, IMAGE_FILE_TIFF_BILEVEL);
    EXPECT_EQ(Strips(), (std::vector<Bytes>{{0xF8, 0x80, 0x2D, 0x40}}));
}

TEST_F(TiffWrite, PacksEachRowByItself) {
    KxSetTiffStripSize(6);
    Save(MakeImage<KxBW8>(3, 3, {5, 5, 5, 5, 5, 5, 1, 2, 3}), IMAGE_FILE_TIFF_GRAY_PACKBITS);
    EXPECT_EQ(Strips(), (std::vector<Bytes>{{254, 5, 254, 5}, {2, 1, 2, 3}}));
    EXPECT_EQ(Number(TiffTag::Compression), 32773u);
}

TEST_F(TiffWrite, KeepsTheMostBitsOfAResolution) {
    struct Case {
        FileResolution resolution;
        std::uint32_t numerator, denominator, unit;
    };
    const auto image = MakeImage<KxBW8>(1, 1, {0});
    constexpr float kInfinite = std::numeric_limits<float>::infinity();
    for (const Case& c : {Case{{300, 1, &KxUnit_inch}, 2516582400, 1 << 23, 2},
                          {{0.75f, 1, &KxUnitNone}, 1610612736, 1u << 31, 1},
                          {{8, 1, &KxUnit_cm}, 1u << 31, 1 << 28, 3},
                          {{1600, 1, &KxUnit_m}, 1u << 31, 1 << 27, 3},
                          {{0, 1, &KxUnitNone}, 0, 1u << 31, 1},
                          {{-3, 1, &KxUnitNone}, 0, 1u << 31, 1},
                          {{kInfinite, 1, &KxUnitNone}, 0xFFFFFFFF, 1, 1}}) {
        Bytes file(1000);
        std::FILE* stream = fmemopen(file.data(), file.size(), "w+b");
        WriteTiff(stream, {image, FormatOf<KxBW8>(), RowsOf(image), c.resolution}, IMAGE_FILE_TIFF_GRAY);
        std::fclose(stream);
        constexpr std::size_t kRational = 8 + 2 + 12 * 12 + 4;
        EXPECT_EQ(LoadLittleEndian<std::uint32_t>(&file[kRational]), c.numerator);
        EXPECT_EQ(LoadLittleEndian<std::uint32_t>(&file[kRational + 4]), c.denominator);
        EXPECT_EQ(LoadLittleEndian<std::uint16_t>(&file[8 + 2 + 11 * 12 + 8]), c.unit);
    }
}

TEST_F(TiffWrite, ReportsAFullDisk) {
    for (const auto type : {IMAGE_FILE_TIFF_GRAY, IMAGE_FILE_TIFF_BILEVEL_PACKBITS}) {
        KxOk();
        MakeImage<KxBW8>(300, 300, Bytes(90000)).Save("/dev/full", type);
        EXPECT_EQ(KxGetError(), KX_ERROR_FILE_WRITE);
    }
}

// Rows of 360 pixels lie end to end in memory, those of the region do not.
TEST_F(TiffWrite, ComesBackEqual) {
    const auto expectEqual = [&](auto image, std::initializer_list<IMAGE_FILE_TYPES> types) {
        image.SetSize(360, 200);
        Bytes pixels(Testing::RowBytes(image) * 200);
        std::mt19937 random(3);
        for (auto& byte : pixels) byte = random() % 4 ? 255 : 0;  // levels that bits hold too
        Testing::SetPixelBytes(image, pixels);
        const KxROI<typename decltype(image)::PixelType> region(&image, 5, 2, 61, 27);
        for (const auto* saved : {static_cast<decltype(&region)>(&image), &region}) {
            for (const auto type : types) {
                for (const std::uint32_t stripSize : {0, 100, 8192}) {
                    KxSetTiffStripSize(stripSize);
                    Save(*saved, type);
                    decltype(image) loaded;
                    EXPECT_EQ(loaded.Load(m_path.c_str()), type);
                    EXPECT_EQ(PixelBytes(loaded), PixelBytes(*saved)) << type << ", strips of " << stripSize;
                }
            }
        }
    };
    expectEqual(KxImage<KxBW1>(), {IMAGE_FILE_TIFF_BILEVEL});
    expectEqual(KxImage<KxBW8>(), {IMAGE_FILE_TIFF_GRAY, IMAGE_FILE_TIFF_GRAY_PACKBITS,
                                   IMAGE_FILE_TIFF_BILEVEL, IMAGE_FILE_TIFF_BILEVEL_PACKBITS});
    expectEqual(KxImage<KxBW16>(), {IMAGE_FILE_TIFF_GRAY});
    expectEqual(KxImage<KxBW32>(), {IMAGE_FILE_TIFF_GRAY});
    expectEqual(KxImage<KxC24>(), {IMAGE_FILE_TIFF_COLOR});
    expectEqual(KxImage<KxC24A>(), {IMAGE_FILE_TIFF_GRAY});
}

}  // namespace
}  // namespace Zelkor::Kalvo
