// Loading TIFF files that are built byte by byte: right ones of every kind, and wrong ones.

#include "tests/support/test.h"

#include "kalvo/streams/byteorder.h"
#include "tests/support/tiff_builder.h"

namespace Zelkor::Kalvo {
namespace {

using namespace Testing;
using namespace std::string_literals;
using enum TiffTag;

TiffBuilder Gray(unsigned width, unsigned height, unsigned bits = 8, const char* order = "II") {
    return TiffBuilder(order)
        .Long(ImageWidth, {width})
        .Long(ImageLength, {height})
        .Short(BitsPerSample, {bits})
        .Short(Compression, {kTiffUncompressed})
        .Short(PhotometricInterpretation, {kTiffBlackIsZero});
}

TiffBuilder Packed(unsigned width, unsigned height, unsigned bits = 8, const char* order = "II") {
    return Gray(width, height, bits, order).Short(Compression, {kTiffPackBits});
}

TiffBuilder Color(unsigned width, unsigned height, const char* order = "II") {
    return Gray(width, height, 8, order)
        .Short(BitsPerSample, {8, 8, 8})
        .Short(SamplesPerPixel, {3})
        .Short(PhotometricInterpretation, {kTiffRgb});
}

Bytes Counting(std::size_t count) {
    Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});
    return bytes;
}

TiffBuilder Good() { return Gray(4, 4).Strip(Counting(16)); }

class TiffRead : public testing::Test {
protected:
    TiffRead() {
        KxSetTraceMode(KX_TRACE_MODE_SILENT);
        KxOk();
    }

    int Load(auto& region, const Bytes& file) const {
        KxOk();
        region.Load(m_folder.Write("file.tif", file).c_str());
        return KxGetError();
    }

    template <class Pixel>
    void ExpectPixels(const Bytes& file, const Bytes& pixels) const {
        KxImage<Pixel> image;
        EXPECT_EQ(Load(image, file), KX_OK);
        EXPECT_EQ(PixelBytes(image), pixels);
    }

    template <class... Pixels>
    std::vector<int> CodesFor(const Bytes& file) const {
        const auto load = [&](auto image) { return Load(image, file); };
        return {load(KxImage<Pixels>())...};
    }

    TemporaryFolder m_folder;
};

TEST_F(TiffRead, UnpacksAcrossRowsAndStripsInEitherOrderOfBits) {
    // A run reaches into the second row; the first strip ends inside it; the last strip holds too much.
    ExpectPixels<KxBW8>(Packed(3, 2).Strip({1, 1, 2, 255, 9}).Strip({128, 255, 5, 0, 7}), {1, 2, 9, 9, 5, 5});
    ExpectPixels<KxBW8>(Packed(3, 2, 1).Strip({1, 0x80, 0x40}), {255, 0, 0, 0, 255, 0});
    ExpectPixels<KxBW8>(Packed(3, 1).Short(FillOrder, {2}).Strip({0x7F, 0x20}), {4, 4, 4});
    ExpectPixels<KxBW1>(Gray(8, 2, 1).Short(FillOrder, {2}).Strip({0x01, 0x53}), {0x80, 0xCA});
}

TEST_F(TiffRead, AcceptsWhatWritersDoDifferently) {
    const TiffBuilder twoStrips = Good().Long(StripOffsets, {8, 16}).Short(StripByteCounts, {8, 8});
    // A second width behind the highest tag.
    Bytes unsorted = Good().Short(ImageWidth, {3}).Short(TiffTag{65000}, {4});
    StoreLittleEndian(&unsorted[unsorted.size() - 4 - kTiffEntryBytes],
                      static_cast<std::uint16_t>(ImageWidth));

    const std::pair<const char*, Bytes> files[] = {
        {"numbers of other widths", Good().Short(ImageWidth, {4}).Entry(ImageLength, TiffType::Byte, 1, 4)},
        {"no byte count", Good().Without(StripByteCounts)},
        {"byte counts in the entry", twoStrips},
        {"rows per strip without limit", Good().Long(RowsPerStrip, {0xFFFFFFFF})},
        {"rows per strip against the number of strips", Good().Short(RowsPerStrip, {2})},
        {"padded strip", TiffBuilder(twoStrips).Short(RowsPerStrip, {2}).Short(StripByteCounts, {12, 8})},
        {"last strip as long as the others", TiffBuilder(twoStrips)
                                                 .Long(StripOffsets, {8, 20})
                                                 .Short(RowsPerStrip, {3})
                                                 .Long(StripByteCounts, {12, 1000})},
        {"unknown tags", Good().Long(TiffTag{65000}, {1, 2}).Entry(TiffTag{65001}, TiffType{99}, 9, 9)},
        {"the last of two tags, in any order", unsorted},
    };
    for (const auto& [name, file] : files) {
        SCOPED_TRACE(name);
        ExpectPixels<KxBW8>(file, Counting(16));
    }
}

TEST_F(TiffRead, TakesTextsFromTheirEntryOrAnOffset) {
    TiffBuilder file = Good();
    const std::uint32_t map = file.Store({'m', 'a', 'p', 0});
    // Where the entries "a" and "\xE9" would point to: a text of their length, and none.
    std::string block(300, 'x');
    block.replace('a' - map - 4, 2, "z\0"s);
    file.Store(Bytes(block.begin(), block.end()));

    const std::tuple<const char*, Bytes, std::string> files[] = {
        {"none", file, "kept"},
        {"at an offset", TiffBuilder(file).Text(DocumentName, "a longer text\0 cut"s), "a longer text"},
        {"short, at an offset", TiffBuilder(file).Entry(DocumentName, TiffType::Ascii, 4, map), "map"},
        {"in the entry", TiffBuilder(file).Text(DocumentName, "a\0"s), "a"},
        {"in the entry, not of ASCII", TiffBuilder(file).Text(DocumentName, "\xE9\0"s), "\xE9"},
        {"in the entry, without end", TiffBuilder(file).Text(DocumentName, "abcd"), "abcd"},
        {"empty", TiffBuilder(file).Text(DocumentName, "\0"s), ""},
    };
    for (const auto& [name, bytes, title] : files) {
        KxImage<KxBW8> image;
        image.SetTitle("kept");
        Load(image, bytes);
        EXPECT_EQ(image.GetTitle(), title) << name;
    }
}

TEST_F(TiffRead, TakesTheResolutionWithItsUnit) {
    const struct {
        std::uint32_t numerator, denominator, unit;
        std::tuple<float, float, std::string> expected;
    } kResolutions[] = {
        {300, 1, 2, {300, 2, "inch"}}, {1, 4, 3, {0.25f, 2, "cm"}}, {300, 0, 2, {1, 1, "None"}}};
    for (const auto& [numerator, denominator, unit, expected] : kResolutions) {
        TiffBuilder file = Good().Rational(XResolution, numerator, denominator).Rational(YResolution, 4, 2);
        KxImage<KxBW8> image;
        Load(image, file.Short(ResolutionUnit, {unit}));
        float x = 0, y = 0;
        const KxMeasurementUnit* found = nullptr;
        image.GetResolution(x, y, found);
        EXPECT_EQ(std::tuple(x, y, found->GetName()), expected);
    }
}

TEST_F(TiffRead, TellsWhichPixelsAFileNeeds) {
    // clang-format off
    const std::tuple<const char*, Bytes, std::vector<int>> files[] = {
        // Codes for                                    BW1   BW8  BW16  BW32   C24  C24A   C15   C16
        {"1 bit", Gray(8, 1, 1).Strip({1}),            {0,    0,    1025, 1026, 1210, 1026, 1210, 1210}},
        {"1 bit, packed", Packed(8, 1, 1).Strip({0, 1}), {1418, 0, 1025, 1026, 1210, 1026, 1210, 1210}},
        {"8 bits", Gray(1, 1).Strip({1}),              {1023, 0,    1025, 1026, 1210, 1026, 1210, 1210}},
        {"16 bits", Gray(1, 1, 16).Strip({1, 2}),      {1023, 1024, 0,    1026, 1210, 1026, 1210, 1210}},
        {"32 bits", Gray(1, 1, 32).Strip(Counting(4)), {1023, 1024, 1025, 0,    1210, 0,    1210, 1210}},
        {"colour", Color(1, 1).Strip({1, 2, 3}),       {1023, 1024, 1025, 1026, 0,    1026, 1029, 1029}},
    };
    // clang-format on
    for (const auto& [name, file, codes] : files)
        EXPECT_EQ((CodesFor<KxBW1, KxBW8, KxBW16, KxBW32, KxC24, KxC24A, KxC15, KxC16>(file)), codes) << name;
}

TEST_F(TiffRead, CountsItsPages) {
    const Bytes one = Good();
    const auto linked = [&](std::size_t offset) {
        Bytes file = one;
        StoreLittleEndian(&file[file.size() - 4], static_cast<std::uint32_t>(offset));
        return file;
    };
    const auto withSecond = [&](std::uint8_t next) {
        Bytes file = linked(one.size());
        file.insert(file.end(), {0, 0, next, 0, 0, 0});  // no entries
        return file;
    };
    const std::uint8_t first = one[4];
    const std::pair<Bytes, unsigned> files[] = {
        {one, 1},
        {Bytes(one.begin(), one.end() - 4), 1},
        {linked(one.size() + 1000), 1},
        {linked(first), 1},
        {withSecond(0), 2},
        {withSecond(first), 2},
    };
    for (const auto& [file, expected] : files) {
        short type = 0;
        unsigned pages = 0;
        delete KxDescribeImage(m_folder.Write("file.tif", file).c_str(), type, pages);
        EXPECT_EQ(pages, expected) << &file - &files[0].first;
    }
}

const std::tuple<KX_ERRORS, const char*, Bytes> kBadFiles[] = {
    {KX_ERROR_BAD_FILE_FORMAT, "width 0", Good().Short(ImageWidth, {0})},
    {KX_ERROR_BAD_FILE_FORMAT, "negative height", Good().Long(ImageLength, {0xFFFFFFFE})},
    {KX_ERROR_BAD_FILE_FORMAT, "no strips", Good().Without(StripOffsets)},
    {KX_ERROR_BAD_FILE_FORMAT, "fewer byte counts than strips", Good().Long(StripOffsets, {8, 16})},
    {KX_ERROR_BAD_FILE_FORMAT, "no packed size", Packed(1, 1).Strip({0, 1}).Without(StripByteCounts)},
    {KX_ERROR_FILE_READ, "size beyond 32 bits", Gray(1 << 29, 8).Strip(Counting(16))},
    {KX_ERROR_FILE_READ, "strip beyond the end", Good().Long(StripOffsets, {1000})},
    {KX_ERROR_FILE_READ, "strip that wraps", Good().Long(StripOffsets, {0xFFFFFFF8})},
    {KX_ERROR_FILE_READ, "strip one byte short", Good().Long(StripByteCounts, {15})},
    {KX_ERROR_FILE_READ, "strips shorter than a row", Gray(4, 1).Strip({1, 2}).Strip({3, 4})},
    {KX_ERROR_FILE_READ, "endless strip table", Good().Entry(StripOffsets, TiffType::Long, 0xFFFFFFFF, 8)},
    {KX_ERROR_FILE_READ, "strips on the same bytes",
     Gray(100, 10).Strip(Bytes(500)).Long(StripOffsets, {8, 8}).Long(StripByteCounts, {500, 500})},
    {KX_ERROR_FILE_READ, "packed strip too short", Packed(4, 4).Strip({256 - 14, 1})},
    {KX_ERROR_FILE_READ, "text beyond the end", Good().Entry(DocumentName, TiffType::Ascii, 1000, 8)},
    {KX_ERROR_FILE_READ, "resolution beyond the end", Good().Entry(XResolution, TiffType::Rational, 1, 1000)},
    {KX_ERROR_UNSUPPORTED_TIFF, "unknown compression", Good().Short(Compression, {5})},
    {KX_ERROR_UNSUPPORTED_TIFF, "white is zero", Good().Short(PhotometricInterpretation, {0})},
    {KX_ERROR_UNSUPPORTED_TIFF, "planes apart", Good().Short(PlanarConfiguration, {2})},
    {KX_ERROR_UNSUPPORTED_TIFF, "seven bits", Good().Short(BitsPerSample, {7})},
    {KX_ERROR_UNSUPPORTED_TIFF, "packed colour", Color(1, 1).Strip({1}).Short(Compression, {kTiffPackBits})},
    {KX_ERROR_UNSUPPORTED_TIFF, "deep colour", Color(1, 1).Strip(Counting(6)).Short(BitsPerSample, {16})},
    {KX_ERROR_UNSUPPORTED_TIFF, "reduced picture", Good().Long(NewSubfileType, {1})},
};

TEST_F(TiffRead, RefusesBadFilesAndKeepsTheImage) {
    KxImage<KxBW8> image(2, 2);
    SetPixelBytes(image, {5, 6, 7, 8});
    image.SetTitle("old");
    const auto expectRefused = [&](KX_ERRORS code, const Bytes& file, const auto& name) {
        EXPECT_EQ(Load(image, file), code) << name;
        EXPECT_EQ(PixelBytes(image), (Bytes{5, 6, 7, 8})) << name;
        EXPECT_STREQ(image.GetTitle(), "old") << name;
    };
    for (const auto& [code, name, file] : kBadFiles) expectRefused(code, file, name);
    // The directory comes last; we do not look for a next one.
    const Bytes whole = Good().Text(DocumentName, "new\0"s);
    for (std::size_t length = 0; length < whole.size() - 4; ++length)
        expectRefused(KX_ERROR_FILE_READ, Bytes(whole.begin(), whole.begin() + length), length);

    Load(image, whole);
    EXPECT_EQ(PixelBytes(image), Counting(16));
}

}  // namespace
}  // namespace Zelkor::Kalvo
