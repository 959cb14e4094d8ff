// The exact bytes of saved TIFF files, and every format read back.

#include "tests/support/test.h"

#include "kalvo/imagefiles/imagefile.h"
#include "kalvo/imagefiles/tiff.h"
#include "kalvo/streams/byteorder.h"

namespace Zelkor::Kalvo {
namespace {

using Testing::Bytes;

class TiffWrite : public testing::Test {
protected:
    TiffWrite() : m_path(m_folder.File("file.tif")) {
        KxSetTraceMode(KX_TRACE_MODE_SILENT);
        KxOk();
        KxSetTiffStripSize(8192);
        KxSetTiffThreshold(128);
    }

    Bytes Save(const auto& region, IMAGE_FILE_TYPES type) const {
        region.Save(m_path.c_str(), type);
        EXPECT_EQ(KxGetError(), KX_OK);
        return m_folder.Read("file.tif");
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

std::uint32_t NumberAt(const Bytes& file, std::size_t offset) {
    return LoadLittleEndian<std::uint32_t>(&file.at(offset));
}

// The values of a tag, or their offset. The directory follows the header.
std::uint32_t Value(const Bytes& file, TiffTag tag) {
    std::size_t entry = 10;
    while (TiffTag{LoadLittleEndian<std::uint16_t>(&file.at(entry))} != tag) entry += 12;
    return NumberAt(file, entry + 8);
}

// The strips, which come last.
Bytes Tail(const Bytes& file, std::size_t bytes) { return Bytes(file.end() - bytes, file.end()); }

TEST_F(TiffWrite, WritesTheseBytes) {
    KxSetTiffStripSize(3);
    auto image = MakeImage<KxC24>(1, 2, {1, 2, 3, 4, 5, 6});
    image.SetTitle("abc");
    image.SetComment("hello");  // its NUL makes it even, the author is padded
    image.SetAuthor("me too");
    // clang-format off
    const Bytes expected{
        'I', 'I', 42, 0, 8, 0, 0, 0, 15, 0,        0, 1, 4, 0, 1, 0, 0, 0, 1, 0, 0, 0,     // width
        1, 1, 4, 0, 1, 0, 0, 0, 2, 0, 0, 0,        2, 1, 3, 0, 3, 0, 0, 0, 194, 0, 0, 0,   // height, bits
        3, 1, 3, 0, 1, 0, 0, 0, 1, 0, 0, 0,        6, 1, 3, 0, 1, 0, 0, 0, 2, 0, 0, 0,     // plain, RGB
        13, 1, 2, 0, 4, 0, 0, 0, 'a', 'b', 'c', 0, 14, 1, 2, 0, 6, 0, 0, 0, 232, 0, 0, 0,  // title, comment
        17, 1, 4, 0, 2, 0, 0, 0, 200, 0, 0, 0,     21, 1, 3, 0, 1, 0, 0, 0, 3, 0, 0, 0,    // strips, samples
        22, 1, 3, 0, 1, 0, 0, 0, 1, 0, 0, 0,       23, 1, 4, 0, 2, 0, 0, 0, 208, 0, 0, 0,  // rows, bytes
        26, 1, 5, 0, 1, 0, 0, 0, 216, 0, 0, 0,     27, 1, 5, 0, 1, 0, 0, 0, 224, 0, 0, 0,  // resolution
        40, 1, 3, 0, 1, 0, 0, 0, 1, 0, 0, 0,       59, 1, 2, 0, 7, 0, 0, 0, 238, 0, 0, 0,  // unit, author
        0, 0, 0, 0,                                8, 0, 8, 0, 8, 0,                       // end, bits
        246, 0, 0, 0, 249, 0, 0, 0,                3, 0, 0, 0, 3, 0, 0, 0,                 // strips, bytes
        0, 0, 0, 128, 0, 0, 0, 128,                0, 0, 0, 128, 0, 0, 0, 128,             // resolution
        'h', 'e', 'l', 'l', 'o', 0,                'm', 'e', ' ', 't', 'o', 'o', 0, 0,     // comment, author
        3, 2, 1, 6, 5, 4};                                                                 // red, green, blue
    // clang-format on
    EXPECT_EQ(Save(image, IMAGE_FILE_TIFF_COLOR), expected);
}

TEST_F(TiffWrite, CutsStripsAtTheSizeAskedAndPacksEachRowByItself) {
    const auto image = MakeImage<KxBW8>(3, 3, {5, 5, 5, 5, 5, 5, 1, 2, 3});
    const std::uint32_t kRowsPerStrip[][2] = {{0, 3}, {1, 1}, {5, 1}, {9, 3}, {300000, 100000}, {6, 2}};
    for (const auto& [stripSize, rows] : kRowsPerStrip) {
        KxSetTiffStripSize(stripSize);
        EXPECT_EQ(Value(Save(image, IMAGE_FILE_TIFF_GRAY), TiffTag::RowsPerStrip), rows) << stripSize;
    }
    const Bytes file = Save(image, IMAGE_FILE_TIFF_GRAY_PACKBITS);
    EXPECT_EQ(Tail(file, 8), (Bytes{254, 5, 254, 5, 2, 1, 2, 3}));
    EXPECT_EQ(NumberAt(file, Value(file, TiffTag::StripOffsets) + 4), file.size() - 4);
}

TEST_F(TiffWrite, MakesBitsOfGrayLevelsAndOfRegionsAtAnyBit) {
    auto gray = MakeImage<KxBW8>(9, 2, {127, 128, 255, 0, 200, 1, 2, 3, 199, 128, 0, 0, 0, 0, 0, 0, 0, 201});
    EXPECT_EQ(Tail(Save(gray, IMAGE_FILE_TIFF_BILEVEL), 4), (Bytes{0x68, 0x80, 0x80, 0x80}));
    KxSetTiffThreshold(200);
    EXPECT_EQ(Tail(Save(gray, IMAGE_FILE_TIFF_BILEVEL), 4), (Bytes{0x28, 0, 0, 0x80}));
    EXPECT_EQ(Tail(Save(gray, IMAGE_FILE_TIFF_BILEVEL_PACKBITS), 6), (Bytes{1, 0x28, 0, 1, 0, 0x80}));

    auto bilevel = MakeImage<KxBW1>(16, 2, {0xFF, 0x12, 0x05, 0xAF});
    const KxROI<KxBW1> region(&bilevel, 3, 0, 10, 2);
    EXPECT_EQ(Tail(Save(region, IMAGE_FILE_TIFF_BILEVEL), 4), (Bytes{0xF8, 0x80, 0x2D, 0x40}));
}

TEST_F(TiffWrite, KeepsTheMostBitsOfAResolution) {
    // Numerator, denominator, unit.
    const std::pair<FileResolution, std::vector<std::uint32_t>> kResolutions[] = {
        {{300, 1, &KxUnit_inch}, {2516582400, 1 << 23, 2}},
        {{1600, 1, &KxUnit_m}, {1u << 31, 1 << 27, 3}},
        {{-3, 1, &KxUnitNone}, {0, 1u << 31, 1}},
        {{1e30f, 1, &KxUnitNone}, {0xFFFFFFFF, 1, 1}},
    };
    const auto image = MakeImage<KxBW8>(1, 1, {0});
    for (const auto& [resolution, expected] : kResolutions) {
        Bytes file(1000);
        std::FILE* stream = fmemopen(file.data(), file.size(), "w+b");
        WriteTiff(stream, {image, FormatOf<KxBW8>(), RowsOf(image), resolution}, IMAGE_FILE_TIFF_GRAY);
        std::fclose(stream);
        const std::uint32_t rational = Value(file, TiffTag::XResolution);
        EXPECT_EQ((std::vector{NumberAt(file, rational), NumberAt(file, rational + 4),
                               Value(file, TiffTag::ResolutionUnit)}),
                  expected);
    }
}

TEST_F(TiffWrite, ReportsAFullDisk) {
    MakeImage<KxBW8>(300, 300, Bytes(90000)).Save("/dev/full", IMAGE_FILE_TIFF_BILEVEL_PACKBITS);
    EXPECT_EQ(KxGetError(), KX_ERROR_FILE_WRITE);
}

}  // namespace
}  // namespace Zelkor::Kalvo
