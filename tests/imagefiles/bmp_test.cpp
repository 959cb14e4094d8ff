// BMP files: their exact bytes, what loads from them, and files that must be refused.

#include "tests/support/test.h"

#include "kalvo/streams/byteorder.h"

namespace Zelkor::Kalvo {
namespace {

using namespace Testing;
using Words = std::vector<std::uint32_t>;

// A file of 2 x 2 pixels of 24 bits, before something is changed.
struct BmpFile {
    std::uint32_t headerBytes = 40;  // 12: the short header, without what follows the bit count
    std::int32_t width = 2, height = 2;
    std::uint32_t planes = 1, bits = 24, compression = 0;
    std::int32_t perMetreX = 1, perMetreY = 1;
    Words words{};  // masks or palette
    int offsetError = 0;
    Bytes rows{1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0};

    Bytes Build() const {
        Bytes bytes{'B', 'M'};
        const auto append = [&](std::initializer_list<std::int64_t> fields) {
            for (const std::int64_t field : fields)
                AppendLittleEndian(bytes, static_cast<std::uint32_t>(field));
        };
        const auto imageBytes = static_cast<std::uint32_t>(rows.size());
        const auto offset = static_cast<std::uint32_t>(14 + headerBytes + 4 * words.size());
        append({offset + imageBytes, 0, offset + offsetError, headerBytes});
        if (headerBytes == 12)
            append({width | height << 16, planes | bits << 16});
        else
            append({width, height, planes | bits << 16, compression, imageBytes, perMetreX, perMetreY, 0, 0});
        for (const std::uint32_t word : words) append({word});
        bytes.insert(bytes.end(), rows.begin(), rows.end());
        return bytes;
    }
};

const Words k555{0x7C00, 0x03E0, 0x001F}, k565{0xF800, 0x07E0, 0x001F};

class Bmp : public testing::Test {
protected:
    Bmp() { KxSetTraceMode(KX_TRACE_MODE_SILENT); }

    template <class Image>
    KX_ERRORS Load(Image& image, const Bytes& bytes) {
        return static_cast<KX_ERRORS>(KxLoadImage(&image, folder.Write("a.bmp", bytes).c_str(), type));
    }

    // Two rows of pixels, from the top, and the file that holds exactly them.
    template <class Pixel>
    void ExpectBothWays(const Bytes& pixels, const BmpFile& file) {
        KxImage<Pixel> image(file.width, 2), loaded;
        SetPixelBytes(image, pixels);
        image.Save(path.c_str());
        EXPECT_EQ(folder.Read("a.bmp"), file.Build()) << file.bits;
        EXPECT_EQ(Load(loaded, file.Build()), KX_OK) << file.bits;
        EXPECT_EQ(PixelBytes(loaded), pixels) << file.bits;
    }

    TemporaryFolder folder;
    const std::string path = folder.File("a.bmp");
    short type = 77;
};

TEST_F(Bmp, HoldsExactlyTheseBytes) {
    Words grays;
    for (std::uint32_t i = 0; i < 256; ++i) grays.push_back(i * 0x010101);
    const Bytes padded{1, 2, 0, 0, 5, 6, 0, 0};
    ExpectBothWays<KxBW1>(
        {0xA5, 0xE0, 0x5A, 0x20},
        {.width = 11, .bits = 1, .words = {0, 0xFFFFFF}, .rows = {0x5A, 0x20, 0, 0, 0xA5, 0xE0, 0, 0}});
    ExpectBothWays<KxBW8>({5, 6, 7, 1, 2, 3},
                          {.width = 3, .bits = 8, .words = grays, .rows = {1, 2, 3, 0, 5, 6, 7, 0}});
    ExpectBothWays<KxC24>({7, 8, 9, 10, 11, 12, 1, 2, 3, 4, 5, 6}, {});
    ExpectBothWays<KxC24A>({3, 4, 5, 6, 1, 2, 7, 8},
                           {.width = 1, .bits = 32, .rows = {1, 2, 7, 8, 3, 4, 5, 6}});
    ExpectBothWays<KxC15>({5, 6, 1, 2},
                          {.width = 1, .bits = 15, .compression = 3, .words = k555, .rows = padded});
    ExpectBothWays<KxC16>({5, 6, 1, 2},
                          {.width = 1, .bits = 16, .compression = 3, .words = k565, .rows = padded});
}

// By pixel type, from BW1 to C24A: 0 where the file loads.
const std::pair<BmpFile, std::array<short, 8>> kFits[] = {
    {{.bits = 1}, {0, 1209, 1209, 1209, 1210, 1210, 1210, 1209}},
    {{.bits = 8}, {1023, 0, 1025, 32767, 1210, 1210, 1210, 32767}},
    {{.bits = 15, .compression = 3, .words = k555}, {1208, 1209, 1209, 1209, 0, 1027, 1027, 1027}},
    {{.bits = 16, .compression = 3, .words = k565}, {1208, 1209, 1209, 1209, 1028, 0, 1028, 1028}},
    {{.bits = 16, .compression = 3, .words = {0, 0x03E0, 0}}, {1208, 1209, 1209, 1209, 0, 1027, 1027, 1027}},
    {{.bits = 16, .compression = 3, .words = {0, 0, 0}}, {1208, 1209, 1209, 1209, 1028, 0, 1028, 1028}},
    {{.bits = 16}, {1208, 1209, 1209, 1209, 0, 0, 1028, 1028}},
    {{.bits = 24}, {1208, 1209, 1209, 1209, 1029, 1029, 0, 1029}},
    {{.bits = 24, .compression = 3}, {1208, 1209, 1209, 1209, 1029, 1029, 0, 1029}},
    {{.bits = 8, .compression = 3}, {1023, 0, 1025, 32767, 1210, 1210, 1210, 32767}},
    {{.bits = 1, .compression = 3}, {0, 1209, 1209, 1209, 1210, 1210, 1210, 1209}},
    {{.bits = 32}, {1203, 1203, 1203, 0, 1203, 1203, 1203, 0}},
    {{.bits = 32, .compression = 3}, {1203, 1203, 1203, 0, 1203, 1203, 1203, 0}},
};

template <class Pixel>
class BmpInto : public Bmp {};
TYPED_TEST_SUITE(BmpInto, FilePixels);

TYPED_TEST(BmpInto, LoadsTheLayoutsThatFit) {
    for (const auto& [file, outcomes] : kFits) {
        const short outcome = outcomes[PixelTraits<TypeParam>::kImageType];
        KxImage<TypeParam> image;
        EXPECT_EQ(this->Load(image, file.Build()), outcome) << file.bits << "/" << file.compression;
        EXPECT_EQ(image.Void() == 0, outcome == 0);
    }
}

TEST_F(Bmp, MayRunFromTheTopDownHaveAShortHeaderAndLackTheLastPadding) {
    KxImage<KxC24> image;
    BmpFile file{.height = -2};
    EXPECT_EQ(Load(image, file.Build()), KX_OK);
    EXPECT_EQ(PixelBytes(image), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    file = {.headerBytes = 12};
    file.rows.resize(14);
    EXPECT_EQ(Load(image, file.Build()), KX_OK);
    EXPECT_EQ(PixelBytes(image), (Bytes{7, 8, 9, 10, 11, 12, 1, 2, 3, 4, 5, 6}));
}

TEST_F(Bmp, KeepsTheResolutionInWholePixelsPerMetre) {
    KxImage<KxC24> image(2, 2);
    const auto resolution = [&] {
        float x = 0, y = 0;
        const KxMeasurementUnit* unit = nullptr;
        image.GetResolution(x, y, unit);
        return std::tuple(x, y, std::string(unit->GetName()));
    };
    image.SetResolution(1024, 2048.5f, &KxUnit_m);
    image.Save(path.c_str());
    image.Load(path.c_str());
    EXPECT_EQ(resolution(), std::tuple(1024, 2048, "m"));
    Load(image, BmpFile{.perMetreX = 5, .perMetreY = -1}.Build());
    EXPECT_EQ(resolution(), std::tuple(1, 1, "None"));
    Load(image, BmpFile{.headerBytes = 12}.Build());
    EXPECT_FLOAT_EQ(std::get<0>(resolution()), 1000);
}

TEST_F(Bmp, RefusesToWriteMoreThanTheFormatCanHold) {
    KxBW8 pixel;
    KxImage<KxBW8> image;
    image.SetImagePtr(0x10000, 0x10000, &pixel);
    EXPECT_EQ(KxSaveImage(&image, path.c_str()), KX_ERROR_FILE_WRITE);
    EXPECT_EQ(std::filesystem::file_size(path), 0u);
}

const std::tuple<const char*, BmpFile, KX_ERRORS> kBadFiles[] = {
    {"header of 108 bytes", {.headerBytes = 108}, KX_ERROR_UNSUPPORTED_BMP},
    {"two planes", {.planes = 2}, KX_ERROR_UNSUPPORTED_BMP},
    {"four bits", {.bits = 4}, KX_ERROR_UNSUPPORTED_BMP},
    {"15 bits without masks", {.bits = 15}, KX_ERROR_UNSUPPORTED_BMP},
    {"run-length compression", {.compression = 1}, KX_ERROR_UNSUPPORTED_BMP},
    {"four bits with masks", {.bits = 4, .compression = 3}, KX_ERROR_UNSUPPORTED_BMP},
    {"32 bits with the short header", {.headerBytes = 12, .bits = 32}, KX_ERROR_UNSUPPORTED_BMP},
    {"no width", {.width = 0}, KX_ERROR_BAD_FILE_FORMAT},
    {"no height", {.height = 0}, KX_ERROR_BAD_FILE_FORMAT},
    {"negative width", {.width = -2}, KX_ERROR_BAD_FILE_FORMAT},
    {"height that cannot be negated", {.height = INT_MIN}, KX_ERROR_BAD_FILE_FORMAT},
    {"pixels inside the header", {.offsetError = -1}, KX_ERROR_BAD_FILE_FORMAT},
    {"pixels after the end", {.offsetError = 100}, KX_ERROR_FILE_READ},
    {"cut after the headers", {.rows = {}}, KX_ERROR_FILE_READ},
    {"size beyond 64 bits", {.width = INT_MAX, .height = INT_MAX}, KX_ERROR_FILE_READ},
    {"large size, top down", {.height = INT_MIN + 1}, KX_ERROR_FILE_READ},
};

TEST_F(Bmp, RefusesBadFilesAndKeepsTheImage) {
    KxImage<KxC24> image(3, 4);
    FillPattern(image, 9);
    const KxImage<KxC24> before(image);
    for (const auto& [name, file, code] : kBadFiles) EXPECT_EQ(Load(image, file.Build()), code) << name;
    const Bytes whole = BmpFile().Build();
    for (std::size_t length = 0; length < whole.size() - 2; ++length)
        EXPECT_EQ(Load(image, Bytes(whole.begin(), whole.begin() + length)), KX_ERROR_FILE_READ) << length;
    EXPECT_EQ(type, 77);
    EXPECT_TRUE(SamePixels(image, before));
    EXPECT_EQ(Load(image, whole), KX_OK);
}

}  // namespace
}  // namespace Zelkor::Kalvo
