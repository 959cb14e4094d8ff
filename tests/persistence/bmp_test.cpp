// BMP files: their exact bytes, what loads from them, and files that must be refused.
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kalvo/frame/kxtrace.h"
#include "kalvo/image/regionrows.h"
#include "kalvo/persistence/byteorder.h"
#include "kalvo/persistence/kximagefile.h"
#include "tests/support/pixels.h"
#include "tests/support/temporary_folder.h"

namespace Zelkor::Kalvo {
namespace {

using Testing::Bytes;

/// A file of 2 x 2 pixels of 24 bits, before something is changed.
struct BmpFile {
    std::uint32_t headerBytes = 40;  // 12: the short header, without what follows the bit count
    std::int32_t width = 2;
    std::int32_t height = 2;
    std::uint16_t planes = 1;
    std::uint16_t bits = 24;
    std::uint32_t compression = 0;
    std::uint32_t imageBytes = 16;
    std::int32_t perMetreX = 1;
    std::int32_t perMetreY = 1;
    std::vector<std::uint32_t> words{};  // masks or palette
    int offsetError = 0;
    Bytes rows{1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0};

    Bytes Build() const {
        Bytes bytes{'B', 'M'};
        const auto offset = static_cast<std::uint32_t>(14 + headerBytes + 4 * words.size());
        for (const std::uint32_t word : {offset + imageBytes, 0u, offset + offsetError, headerBytes})
            AppendLittleEndian(bytes, word);
        if (headerBytes == 12) {
            for (const std::int32_t size : {width, height})
                AppendLittleEndian(bytes, static_cast<std::int16_t>(size));
        } else {
            for (const std::int32_t size : {width, height}) AppendLittleEndian(bytes, size);
        }
        for (const std::uint16_t value : {planes, bits}) AppendLittleEndian(bytes, value);
        if (headerBytes != 12) {
            for (const std::uint32_t value : {compression, imageBytes}) AppendLittleEndian(bytes, value);
            for (const std::int32_t value : {perMetreX, perMetreY, 0, 0}) AppendLittleEndian(bytes, value);
        }
        for (const std::uint32_t word : words) AppendLittleEndian(bytes, word);
        bytes.insert(bytes.end(), rows.begin(), rows.end());
        return bytes;
    }
};

const std::vector<std::uint32_t> k555{0x7C00, 0x03E0, 0x001F}, k565{0xF800, 0x07E0, 0x001F};

std::vector<std::uint32_t> GrayPalette() {
    std::vector<std::uint32_t> palette(256);
    for (std::uint32_t i = 0; i < 256; ++i) palette[i] = i * 0x010101;
    return palette;
}

class Bmp : public testing::Test {
protected:
    Bmp() {
        KxSetTraceMode(KX_TRACE_MODE_SILENT);
        KxOk();
    }
    ~Bmp() override { KxOk(); }

    template <class Image>
    KX_ERRORS Load(Image& image, const Bytes& bytes) {
        return static_cast<KX_ERRORS>(KxLoadImage(&image, folder.Write("a.bmp", bytes).c_str(), type));
    }

    /// Two rows of pixels, given from the top, and the file that holds exactly them.
    template <class Pixel>
    void ExpectBothWays(int width, const Bytes& top, const Bytes& bottom, const BmpFile& file) {
        KxImage<Pixel> image(width, 2), loaded;
        const RegionRows rows = RowsOf(image);
        std::copy(top.begin(), top.end(), rows.Row(0));
        std::copy(bottom.begin(), bottom.end(), rows.Row(1));
        image.Save(folder.File("a.bmp").c_str());
        EXPECT_EQ(folder.Read("a.bmp"), file.Build()) << file.bits;
        EXPECT_EQ(Load(loaded, file.Build()), KX_OK) << file.bits;
        EXPECT_TRUE(Testing::SamePixels(loaded, image)) << file.bits;
    }

    Testing::TemporaryFolder folder;
    short type = 77;
};

TEST_F(Bmp, HoldsExactlyTheseBytes) {
    ExpectBothWays<KxBW1>(11, {0xA5, 0xFF}, {0x5A, 0x3F},
                          {.width = 11,
                           .bits = 1,
                           .imageBytes = 8,
                           .words = {0, 0xFFFFFF},
                           .rows = {0x5A, 0x20, 0, 0, 0xA5, 0xE0, 0, 0}});
    ExpectBothWays<KxBW8>(5, {1, 2, 3, 4, 5}, {6, 7, 8, 9, 10},
                          {.width = 5,
                           .bits = 8,
                           .words = GrayPalette(),
                           .rows = {6, 7, 8, 9, 10, 0, 0, 0, 1, 2, 3, 4, 5, 0, 0, 0}});
    ExpectBothWays<KxC24>(2, {7, 8, 9, 10, 11, 12}, {1, 2, 3, 4, 5, 6}, {});
    ExpectBothWays<KxC24A>(1, {5, 6, 7, 8}, {1, 2, 3, 4},
                           {.width = 1, .bits = 32, .imageBytes = 8, .rows = {1, 2, 3, 4, 5, 6, 7, 8}});
    ExpectBothWays<KxC15>(1, {5, 6}, {1, 2},
                          {.width = 1,
                           .bits = 15,
                           .compression = 3,
                           .imageBytes = 8,
                           .words = k555,
                           .rows = {1, 2, 0, 0, 5, 6, 0, 0}});
    ExpectBothWays<KxC16>(1, {5, 6}, {1, 2},
                          {.width = 1,
                           .bits = 16,
                           .compression = 3,
                           .imageBytes = 8,
                           .words = k565,
                           .rows = {1, 2, 0, 0, 5, 6, 0, 0}});
}

// By pixel type, from BW1 to C24A: 0 where the file loads.
const struct {
    BmpFile file;
    short fileType;
    short outcomes[8];
} kFits[] = {
    {{.bits = 1}, 6, {0, 1209, 1209, 1209, 1210, 1210, 1210, 1209}},
    {{.bits = 8}, 7, {1023, 0, 1025, 32767, 1210, 1210, 1210, 32767}},
    {{.bits = 15, .compression = 3, .words = k555}, 8, {1208, 1209, 1209, 1209, 0, 1027, 1027, 1027}},
    {{.bits = 16, .compression = 3, .words = k555}, 8, {1208, 1209, 1209, 1209, 0, 1027, 1027, 1027}},
    {{.bits = 16, .compression = 3, .words = k565}, 8, {1208, 1209, 1209, 1209, 1028, 0, 1028, 1028}},
    {{.bits = 16}, 8, {1208, 1209, 1209, 1209, 0, 0, 1028, 1028}},
    {{.bits = 24}, 8, {1208, 1209, 1209, 1209, 1029, 1029, 0, 1029}},
    {{.bits = 32}, 8, {1203, 1203, 1203, 0, 1203, 1203, 1203, 0}},
    {{.bits = 32, .compression = 3, .words = {0xFF0000, 0xFF00, 0xFF}},
     8,
     {1203, 1203, 1203, 0, 1203, 1203, 1203, 0}},
};

template <class Pixel>
class BmpInto : public Bmp {};
using FilePixels = testing::Types<KxBW1, KxBW8, KxBW16, KxBW32, KxC15, KxC16, KxC24, KxC24A>;
TYPED_TEST_SUITE(BmpInto, FilePixels);

TYPED_TEST(BmpInto, LoadsTheLayoutsThatFit) {
    for (const auto& [file, fileType, outcomes] : kFits) {
        const short outcome = outcomes[PixelTraits<TypeParam>::kImageType];
        KxImage<TypeParam> image;
        EXPECT_EQ(this->Load(image, file.Build()), outcome) << file.bits << "/" << file.compression;
        EXPECT_EQ(image.Void() == 0, outcome == 0);
        if (outcome == 0) {
            EXPECT_EQ(this->type, fileType);
        }
    }
}

TEST_F(Bmp, MayRunFromTheTopDown) {
    KxImage<KxC24> image;
    EXPECT_EQ(Load(image, BmpFile{.height = -2}.Build()), KX_OK);
    EXPECT_EQ(image.GetHeight(), 2);
    EXPECT_EQ(image.GetPixel(1, 0), KxC24(6, 5, 4));
    EXPECT_EQ(image.GetPixel(0, 1), KxC24(9, 8, 7));
}

TEST_F(Bmp, MayLackThePaddingOfTheLastRow) {
    BmpFile file;
    file.rows.resize(14);
    KxImage<KxC24> image;
    EXPECT_EQ(Load(image, file.Build()), KX_OK);
    EXPECT_EQ(image.GetPixel(1, 0), KxC24(12, 11, 10));
}

TEST_F(Bmp, KeepsTheResolutionInWholePixelsPerMetre) {
    const auto expectResolution = [](const KxGenericROI& image, float x, float y, const char* unit) {
        float foundX = 0, foundY = 0;
        const KxMeasurementUnit* foundUnit = nullptr;
        image.GetResolution(foundX, foundY, foundUnit);
        EXPECT_FLOAT_EQ(foundX, x);
        EXPECT_FLOAT_EQ(foundY, y);
        EXPECT_STREQ(foundUnit->GetName(), unit);
    };
    KxImage<KxC24> image(2, 2), loaded;
    image.SetResolution(1024, 2048.5f, &KxUnit_m);
    image.Save(folder.File("a.bmp").c_str());
    loaded.Load(folder.File("a.bmp").c_str());
    expectResolution(loaded, 1024, 2048, "m");
    Load(loaded, BmpFile{.headerBytes = 12}.Build());
    expectResolution(loaded, 1000, 1000, "m");
    EXPECT_EQ(loaded.GetPixel(1, 0), KxC24(12, 11, 10));
    for (const std::int32_t nothing : {0, -1}) {
        loaded.SetResolution(3, 3, &KxUnit_m);
        Load(loaded, BmpFile{.perMetreX = 5, .perMetreY = nothing}.Build());
        expectResolution(loaded, 1, 1, "None");
    }
}

TEST_F(Bmp, MayBeLargerThanAnyBuffer) {
    const auto expectSame = [this](auto image) {
        decltype(image) loaded;
        Testing::FillPattern(image, 1);
        image.Save(folder.File("a.bmp").c_str());
        loaded.Load(folder.File("a.bmp").c_str());
        EXPECT_TRUE(Testing::SamePixels(loaded, image)) << image.GetWidth();
    };
    expectSame(KxImage<KxBW8>(301, 500));
    expectSame(KxImage<KxC24>(30000, 2));
    expectSame(KxImage<KxBW1>(600003, 2));
}

TEST_F(Bmp, WritesBilevelRegionsThatStartAtAnyBit) {
    for (int x = 0; x < 9; ++x) {
        KxImage<KxBW1> frame(90, 4), loaded;
        Testing::FillPattern(frame, 1);
        KxROI<KxBW1> region(&frame, x, 1, 60 - x, 2);
        region.Save(folder.File("a.bmp").c_str());
        loaded.Load(folder.File("a.bmp").c_str());
        EXPECT_TRUE(Testing::SamePixels<KxBW1>(loaded, region)) << x;
    }
}

TEST_F(Bmp, RefusesToWriteMoreThanTheFormatCanHold) {
    KxBW8 pixel;
    KxImage<KxBW8> image;
    image.SetImagePtr(0x10000, 0x10000, &pixel);
    EXPECT_EQ(KxSaveImage(&image, folder.File("a.bmp").c_str()), KX_ERROR_FILE_WRITE);
    EXPECT_EQ(std::filesystem::file_size(folder.File("a.bmp")), 0u);
}

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

const struct {
    const char* name;
    BmpFile file;
    KX_ERRORS code;
} kBadFiles[] = {
    {"header of 108 bytes", {.headerBytes = 108}, KX_ERROR_UNSUPPORTED_BMP},
    {"header of 0 bytes", {.headerBytes = 0}, KX_ERROR_UNSUPPORTED_BMP},
    {"two planes", {.planes = 2}, KX_ERROR_UNSUPPORTED_BMP},
    {"four bits", {.bits = 4}, KX_ERROR_UNSUPPORTED_BMP},
    {"15 bits without masks", {.bits = 15}, KX_ERROR_UNSUPPORTED_BMP},
    {"run-length compression", {.compression = 1}, KX_ERROR_UNSUPPORTED_BMP},
    {"24 bits with masks", {.compression = 3}, KX_ERROR_UNSUPPORTED_BMP},
    {"masks of zero", {.bits = 16, .compression = 3, .words = {0, 0, 0}}, KX_ERROR_UNSUPPORTED_BMP},
    {"masks from blue to red",
     {.bits = 16, .compression = 3, .words = {0x1F, 0x7E0, 0xF800}},
     KX_ERROR_UNSUPPORTED_BMP},
    {"32 bits with the short header", {.headerBytes = 12, .bits = 32}, KX_ERROR_UNSUPPORTED_BMP},
    {"no width", {.width = 0}, KX_ERROR_BAD_FILE_FORMAT},
    {"no height", {.height = 0}, KX_ERROR_BAD_FILE_FORMAT},
    {"negative width", {.width = -2}, KX_ERROR_BAD_FILE_FORMAT},
    {"height that cannot be negated", {.height = kLowest}, KX_ERROR_BAD_FILE_FORMAT},
    {"pixels inside the header", {.offsetError = -1}, KX_ERROR_BAD_FILE_FORMAT},
    {"pixels after the end", {.offsetError = 100}, KX_ERROR_FILE_READ},
    {"cut after the headers", {.rows = {}}, KX_ERROR_FILE_READ},
    {"size beyond 64 bits", {.width = kHighest, .height = kHighest}, KX_ERROR_FILE_READ},
    {"large size, top down", {.height = kLowest + 1}, KX_ERROR_FILE_READ},
};

TEST_F(Bmp, RefusesPixelsInsideTheMasks) {
    KxImage<KxC15> image;
    const BmpFile file{.bits = 16, .compression = 3, .words = k555, .offsetError = -1};
    EXPECT_EQ(Load(image, file.Build()), KX_ERROR_BAD_FILE_FORMAT);
}

TEST_F(Bmp, RefusesBadFilesAndKeepsTheImage) {
    KxImage<KxC24> image(3, 4);
    Testing::FillPattern(image, 9);
    const KxImage<KxC24> before(image);
    for (const auto& [name, file, code] : kBadFiles) EXPECT_EQ(Load(image, file.Build()), code) << name;
    const Bytes whole = BmpFile().Build();
    for (std::size_t length = 0; length < whole.size() - 2; ++length)
        EXPECT_EQ(Load(image, Bytes(whole.begin(), whole.begin() + length)), KX_ERROR_FILE_READ) << length;
    EXPECT_EQ(type, 77);
    EXPECT_TRUE(Testing::SamePixels(image, before));
    EXPECT_EQ(Load(image, whole), KX_OK);
}

}  // namespace
}  // namespace Zelkor::Kalvo
