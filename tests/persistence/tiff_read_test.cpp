// Loading TIFF files that are built byte by byte: right ones of every kind, and wrong ones.

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <utility>

#include "kalvo/frame/kxtrace.h"
#include "kalvo/image/kximage.h"
#include "kalvo/persistence/byteorder.h"
#include "kalvo/persistence/packbits.h"
#include "tests/support/pixel_bytes.h"
#include "tests/support/tiff_builder.h"

namespace Zelkor::Kalvo {
namespace {

using Testing::Bytes;
using Testing::PixelBytes;
using Testing::TiffBuilder;
using enum TiffTag;

TiffBuilder Gray(std::uint32_t width, std::uint32_t height, std::uint32_t bits = 8,
                 const char* order = "II") {
    TiffBuilder file(order);
    return file.Short(ImageWidth, {width})
        .Long(ImageLength, {height})
        .Short(BitsPerSample, {bits})
        .Short(Compression, {kTiffUncompressed})
        .Short(PhotometricInterpretation, {kTiffBlackIsZero});
}

TiffBuilder Packed(std::uint32_t width, std::uint32_t height, std::uint32_t bits = 8,
                   const char* order = "II") {
    return Gray(width, height, bits, order).Short(Compression, {kTiffPackBits});
}

TiffBuilder Color(std::uint32_t width, std::uint32_t height, const char* order = "II") {
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

class TiffRead : public testing::Test {
protected:
    TiffRead() {
        KxSetTraceMode(KX_TRACE_MODE_SILENT);
        KxOk();
    }

    IMAGE_FILE_TYPES Load(auto& region, const Bytes& file) const {
        return region.Load(m_folder.Write("file.tif", file).c_str());
    }

    template <class Pixel>
    void ExpectPixels(const TiffBuilder& file, const Bytes& pixels,
                      IMAGE_FILE_TYPES type = IMAGE_FILE_TIFF_GRAY) const {
        KxImage<Pixel> image;
        EXPECT_EQ(Load(image, file), type);
        EXPECT_EQ(KxGetError(), KX_OK);
        EXPECT_EQ(PixelBytes(image), pixels);
    }

    Testing::TemporaryFolder m_folder;
};

TEST_F(TiffRead, FillsPixelsOfEveryFormatInBothByteOrders) {
    for (const char* order : {"II", "MM"}) {
        SCOPED_TRACE(order);
        const bool isBig = *order == 'M';
        ExpectPixels<KxBW8>(Gray(3, 3, 8, order).Strip({1, 2, 3, 4, 5, 6}).Strip({7, 8, 9}), Counting(9));

        const Bytes two = isBig ? Bytes{2, 1, 4, 3} : Counting(4);
        const Bytes four = isBig ? Bytes{4, 3, 2, 1, 8, 7, 6, 5} : Counting(8);
        ExpectPixels<KxBW16>(Gray(2, 1, 16, order).Strip(two), Counting(4));
        ExpectPixels<KxBW32>(Gray(1, 2, 32, order).Strip(four), Counting(8));
        ExpectPixels<KxC24A>(Gray(1, 2, 32, order).Strip(four), Counting(8));
        ExpectPixels<KxC24>(Color(2, 1, order).Strip(Counting(6)), {3, 2, 1, 6, 5, 4}, IMAGE_FILE_TIFF_COLOR);

        const TiffBuilder bilevel = Gray(10, 2, 1, order).Strip({0xA5, 0xBF, 0x0F, 0x40});
        ExpectPixels<KxBW1>(bilevel, {0xA5, 0x80, 0x0F, 0x40}, IMAGE_FILE_TIFF_BILEVEL);
        ExpectPixels<KxBW8>(bilevel,
                            {255, 0, 255, 0, 0, 255, 0, 255, 255, 0, 0, 0, 0, 0, 255, 255, 255, 255, 0, 255},
                            IMAGE_FILE_TIFF_BILEVEL);

        const Bytes packedTwo = isBig ? Bytes{0, 2, 2, 1, 4, 3} : Bytes{0, 1, 2, 2, 3, 4};
        ExpectPixels<KxBW16>(Packed(2, 1, 16, order).Strip(packedTwo), Counting(4));
    }
}

TEST_F(TiffRead, UnpacksAcrossRowsAndStrips) {
    // A run reaches into the second row; the first strip ends inside it; the last strip holds too much.
    ExpectPixels<KxBW8>(Packed(3, 2).Strip({1, 1, 2, 256 - 1, 9}).Strip({128, 255, 5, 3, 7, 7, 7, 7}),
                        {1, 2, 9, 9, 5, 5}, IMAGE_FILE_TIFF_GRAY_PACKBITS);
    ExpectPixels<KxBW8>(Packed(10, 2, 1).Strip({0xFF, 0xC0, 0, 0x80, 0, 0x00}),
                        {255, 255, 0, 0, 0, 0, 0, 0, 255, 255, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0},
                        IMAGE_FILE_TIFF_BILEVEL_PACKBITS);

    // Longer than the pieces in which strips are read.
    const Bytes pixels = Counting(200 * 200);
    Bytes packed;
    AppendPackBits(packed, pixels);
    ExpectPixels<KxBW8>(Packed(200, 200).Strip(packed), pixels, IMAGE_FILE_TIFF_GRAY_PACKBITS);
}

TEST_F(TiffRead, HonoursTheOrderOfBits) {
    ExpectPixels<KxBW1>(Gray(8, 2, 1).Short(FillOrder, {2}).Strip({0x01, 0x53}), {0x80, 0xCA},
                        IMAGE_FILE_TIFF_BILEVEL);
    ExpectPixels<KxBW8>(Packed(3, 1).Short(FillOrder, {2}).Strip({0x7F, 0x20}), {4, 4, 4},
                        IMAGE_FILE_TIFF_GRAY_PACKBITS);
}

TEST_F(TiffRead, AcceptsWhatWritersDoDifferently) {
    const Bytes pixels = Counting(16);
    const auto file = [&] { return Gray(4, 4).Strip(pixels); };
    const Bytes first(pixels.begin(), pixels.begin() + 8), second(pixels.begin() + 8, pixels.end());
    const auto padded = [](Bytes strip) {
        strip.resize(strip.size() + 8);
        return strip;
    };
    const std::pair<const char*, TiffBuilder> files[] = {
        {"numbers of other widths",
         file().Byte(ImageWidth, {4}).Byte(ImageLength, {4}).Long(BitsPerSample, {8})},
        {"no byte count", file().Without(StripByteCounts)},
        {"byte counts in the entry", Gray(4, 4).Strip(first).Strip(second).Short(StripByteCounts, {8, 8})},
        {"rows per strip 0", file().Short(RowsPerStrip, {0})},
        {"rows per strip without limit", file().Long(RowsPerStrip, {0xFFFFFFFF})},
        {"rows per strip against the number of strips", file().Short(RowsPerStrip, {2})},
        {"padded strips", Gray(4, 4).Short(RowsPerStrip, {2}).Strip(padded(first)).Strip(padded(second))},
        {"padding at the end", Gray(4, 4).Strip(first).Strip(padded(second))},
        {"a resolution that is none", file().Short(XResolution, {1}).Short(YResolution, {1})},
        {"unknown tags", file().Long(TiffTag{65000}, {1, 2, 3}).Entry(TiffTag{65001}, TiffType{99}, 9, 9)},
    };
    for (const auto& [name, builder] : files) {
        SCOPED_TRACE(name);
        ExpectPixels<KxBW8>(builder, pixels);
    }

    // The last of two tags counts, and their order does not: the first entry becomes another width, and the
    // compression and the bits change places.
    Bytes odd = file().Long(NewSubfileType, {0});
    const auto entries = odd.begin() + LoadLittleEndian<std::int32_t>(odd.data() + 4) + 2;
    entries[0] = 0;
    entries[1] = 1;
    entries[8] = 3;
    std::swap_ranges(entries + 36, entries + 48, entries + 48);
    KxImage<KxBW8> image;
    Load(image, odd);
    EXPECT_EQ(PixelBytes(image), pixels);
}

TEST_F(TiffRead, TakesTextsFromTheirEntryOrAnOffset) {
    KxImage<KxBW8> image;
    image.SetAuthor("kept");
    TiffBuilder file = Gray(1, 1).Strip({1});
    const std::uint32_t offset = file.Store({'m', 'a', 'p', 0});
    file.Text(DocumentName, "abc")
        .Text(ImageDescription, std::string("a longer text\0 cut", 18))
        .Entry(DateTime, TiffType::Ascii, 4, offset);
    Load(image, file);
    EXPECT_STREQ(image.GetTitle(), "abc");
    EXPECT_STREQ(image.GetComment(), "a longer text");
    EXPECT_STREQ(image.GetDate(), "map");
    EXPECT_STREQ(image.GetAuthor(), "kept");

    // Entries win over what stands at the offset they would be, unless that alone is a text.
    TiffBuilder odd = Gray(1, 1).Strip({1});
    Bytes block(300, 'x');
    block['a' - 9] = 'z';
    block['b' - 9] = 0;
    EXPECT_EQ(odd.Store(block), 9u);
    odd.Text(DocumentName, "a")
        .Text(ImageDescription, "")
        .Entry(DateTime, TiffType::Ascii, 4, 0x64636261)
        .Entry(Artist, TiffType::Ascii, 2, 0xE9);
    Load(image, odd);
    EXPECT_STREQ(image.GetTitle(), "a");
    EXPECT_STREQ(image.GetComment(), "");
    EXPECT_STREQ(image.GetDate(), "abcd");
    EXPECT_STREQ(image.GetAuthor(), "\xE9");
}

TEST_F(TiffRead, TakesTheResolutionWithItsUnit) {
    struct Case {
        std::uint32_t numerator, denominator, unit;
        float x;
        const char* unitName;
    };
    for (const Case& c :
         {Case{300, 1, 2, 300, "inch"}, Case{1, 4, 3, 0.25f, "cm"}, Case{72, 1, 1, 72, "None"},
          Case{72, 1, 9, 72, "None"}, Case{300, 0, 2, 1, "None"}}) {
        KxImage<KxBW8> image;
        Load(image, Gray(1, 1)
                        .Strip({1})
                        .Rational(XResolution, c.numerator, c.denominator)
                        .Rational(YResolution, 4, 2)
                        .Short(ResolutionUnit, {c.unit}));
        float x = 0, y = 0;
        const KxMeasurementUnit* unit = nullptr;
        image.GetResolution(x, y, unit);
        EXPECT_FLOAT_EQ(x, c.x);
        EXPECT_FLOAT_EQ(y, c.denominator ? 2 : 1);
        EXPECT_STREQ(unit->GetName(), c.unitName);
    }
}

TEST_F(TiffRead, FillsARegionOfTheSameSizeOnly) {
    KxImage<KxBW8> image(4, 3);
    Testing::SetPixelBytes(image, Bytes(12));
    KxROI<KxBW8> region(&image, 1, 1, 2, 2);
    Load(region, Gray(2, 2).Strip({1, 2, 3, 4}));
    const Bytes filled{0, 0, 0, 0, 0, 1, 2, 0, 0, 3, 4, 0};
    EXPECT_EQ(PixelBytes(image), filled);

    Load(region, Gray(2, 1).Strip({8, 9}));
    EXPECT_EQ(KxGetError(), KX_ERROR_SIZE_MISMATCH);
    EXPECT_EQ(PixelBytes(image), filled);
}

template <class... Pixels>
std::vector<int> CodesFor(const std::string& path) {
    const auto codeFor = [&](auto image) {
        KxOk();
        image.Load(path.c_str());
        return static_cast<int>(KxGetError());
    };
    return {codeFor(KxImage<Pixels>())...};
}

TEST_F(TiffRead, TellsWhichPixelsAFileNeeds) {
    // clang-format off
    const std::tuple<const char*, TiffBuilder, std::vector<int>> files[] = {
        // Codes for                                    BW1   BW8  BW16  BW32   C24  C24A   C15   C16
        {"1 bit", Gray(8, 1, 1).Strip({1}),            {0,    0,    1025, 1026, 1210, 1026, 1210, 1210}},
        {"1 bit, packed", Packed(8, 1, 1).Strip({0, 1}), {1418, 0, 1025, 1026, 1210, 1026, 1210, 1210}},
        {"8 bits", Gray(1, 1).Strip({1}),              {1023, 0,    1025, 1026, 1210, 1026, 1210, 1210}},
        {"16 bits", Gray(1, 1, 16).Strip({1, 2}),      {1023, 1024, 0,    1026, 1210, 1026, 1210, 1210}},
        {"32 bits", Gray(1, 1, 32).Strip(Counting(4)), {1023, 1024, 1025, 0,    1210, 0,    1210, 1210}},
        {"colour", Color(1, 1).Strip({1, 2, 3}),       {1023, 1024, 1025, 1026, 0,    1026, 1029, 1029}},
    };
    // clang-format on
    for (const auto& [name, file, codes] : files) {
        const std::string path = m_folder.Write("file.tif", file);
        EXPECT_EQ((CodesFor<KxBW1, KxBW8, KxBW16, KxBW32, KxC24, KxC24A, KxC15, KxC16>(path)), codes) << name;
    }
}

TiffBuilder Good() { return Gray(4, 4).Strip(Counting(16)); }
TiffBuilder TwoStrips() { return Gray(4, 4).Strip(Counting(8)).Strip(Counting(8)); }

Bytes Patched(Bytes bytes, std::size_t offset, std::uint8_t value) {
    bytes[offset] = value;
    return bytes;
}

Bytes WithEntryCount(Bytes bytes, std::uint16_t count) {
    StoreLittleEndian(bytes.data() + LoadLittleEndian<std::uint32_t>(bytes.data() + 4), count);
    return bytes;
}

Bytes Cut(Bytes bytes, std::size_t missing) {
    bytes.resize(bytes.size() - missing);
    return bytes;
}

// A hundred strips on the same bytes.
TiffBuilder Overlapping() {
    TiffBuilder file = Gray(4, 400).Strip(Counting(16));
    Bytes table(400);
    for (std::size_t i = 0; i < table.size(); i += 4) table[i] = 16;
    const std::uint32_t offset = file.Store(table);
    return file.Entry(StripOffsets, TiffType::Long, 100, offset)
        .Entry(StripByteCounts, TiffType::Long, 100, offset);
}

// clang-format off
const struct {
    KX_ERRORS code;
    std::vector<std::pair<const char*, Bytes>> files;
} kBadFiles[] = {
    {KX_ERROR_BAD_FILE_FORMAT, {
        {"no entries", WithEntryCount(Good(), 0)},
        {"other magic number", Patched(Good(), 2, 43)},
        {"mixed byte order", Patched(Good(), 1, 'M')},
        {"no width", Good().Without(ImageWidth)},
        {"width 0", Good().Short(ImageWidth, {0})},
        {"width as text", Good().Text(ImageWidth, "4")},
        {"height 0", Good().Short(ImageLength, {0})},
        {"negative height", Good().Long(ImageLength, {0xFFFFFFFE})},
        {"size beyond 63 bits", Gray(1, 0x7FFFFFFF, 32).Long(ImageWidth, {0x7FFFFFFF}).Strip({1})},
        {"no strips", Good().Without(StripOffsets)},
        {"byte counts missing", TwoStrips().Without(StripByteCounts)},
        {"fewer byte counts than strips", TwoStrips().Long(StripByteCounts, {8})},
        {"packed without byte count", Packed(1, 1).Strip({0, 1}).Without(StripByteCounts)},
    }},
    {KX_ERROR_FILE_READ, {
        {"nothing but a header", Cut(Good(), Bytes(Good()).size() - 8)},
        {"cut in the directory", Cut(Good(), 20)},
        {"more entries than bytes", WithEntryCount(Good(), 65535)},
        {"directory beyond the end", Patched(Good(), 7, 0x7F)},
        {"too large for its strip", Good().Short(ImageWidth, {60000}).Short(ImageLength, {60000})},
        {"strip beyond the end", Good().Long(StripOffsets, {1000})},
        {"strip that wraps", Good().Long(StripOffsets, {0xFFFFFFF8})},
        {"strip one byte short", Good().Long(StripByteCounts, {15})},
        {"byte count beyond the end", Good().Long(StripByteCounts, {0xFFFFFFFF})},
        {"strips shorter than a row", Gray(4, 1).Strip({1, 2}).Strip({3, 4})},
        {"endless strip table", Good().Entry(StripOffsets, TiffType::Long, 0xFFFFFFFF, 8)},
        {"strips on the same bytes", Overlapping()},
        {"packed strip too short", Packed(4, 4).Strip({256 - 14, 1})},
        {"packed strip of nothing", Packed(4, 4).Strip(Bytes(50, 128))},
        {"text beyond the end", Good().Entry(DocumentName, TiffType::Ascii, 1000, 8)},
        {"resolution beyond the end", Good().Entry(XResolution, TiffType::Rational, 1, 1000)},
    }},
    {KX_ERROR_UNSUPPORTED_TIFF, {
        {"unknown compression", Good().Short(Compression, {5})},
        {"white is zero", Good().Short(PhotometricInterpretation, {0})},
        {"photometric missing", Good().Without(PhotometricInterpretation)},
        {"planes apart", Good().Short(PlanarConfiguration, {2})},
        {"seven bits", Good().Short(BitsPerSample, {7})},
        {"two samples", Good().Short(SamplesPerPixel, {2})},
        {"packed colour", Color(1, 1).Strip({2, 1, 2, 3}).Short(Compression, {kTiffPackBits})},
        {"deep colour", Color(1, 1).Strip(Counting(6)).Short(BitsPerSample, {16, 16, 16})},
        {"reduced picture", Good().Long(NewSubfileType, {1})},
        {"page of many", Good().Long(NewSubfileType, {2})},
        {"mask", Good().Long(NewSubfileType, {4})},
    }},
};
// clang-format on

TEST_F(TiffRead, RefusesBadFilesAndKeepsTheImage) {
    KxImage<KxBW8> image(2, 2);
    Testing::SetPixelBytes(image, {5, 6, 7, 8});
    image.SetTitle("old");
    for (const auto& [code, files] : kBadFiles) {
        for (const auto& [name, bytes] : files) {
            KxOk();
            Load(image, bytes);
            EXPECT_EQ(KxGetError(), code) << name;
            EXPECT_EQ(PixelBytes(image), (Bytes{5, 6, 7, 8})) << name;
            EXPECT_STREQ(image.GetTitle(), "old") << name;
        }
    }
    Load(image, Good().Text(DocumentName, "new"));
    EXPECT_EQ(PixelBytes(image), Counting(16));
    EXPECT_STREQ(image.GetTitle(), "new");
}

}  // namespace
}  // namespace Zelkor::Kalvo
