// Choosing and detecting formats, and what the entry points of image files have in common.
#include "kalvo/persistence/kximagefile.h"

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "kalvo/frame/kxtrace.h"
#include "kalvo/persistence/imagefile.h"
#include "tests/support/pixels.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo {
namespace {

using Testing::Bytes;
using Testing::Wide;
using namespace std::string_literals;
using Names = std::vector<std::string>;

class ImageFile : public testing::Test {
protected:
    ImageFile() {
        KxSetTraceMode(KX_TRACE_MODE_MESSAGE);
        KxOk();
    }
    ~ImageFile() override { KxOk(); }

    Testing::TemporaryFolder folder;
    Testing::TraceRecorder traces;
    short type = 77;
};

template <class Pixel>
class ImageFileOf : public ImageFile {};
using FilePixels = testing::Types<KxBW1, KxBW8, KxBW16, KxBW32, KxC15, KxC16, KxC24, KxC24A>;
TYPED_TEST_SUITE(ImageFileOf, FilePixels);

// What saving as a type, or by an extension, gives: below 1000 the type that is written.
const struct {
    int type;
    const char* name;
    short outcomes[8];  // BW1, BW8, BW16, BW32, C15, C16, C24, C24A
} kChoices[] = {
    {-1, "a.bmp", {1418, 1418, 1418, 1418, 1418, 1418, 1418, 1418}},
    {0, "a", {0, 0, 1213, 1213, 1202, 1202, 1214, 1213}},
    {1, "a", {1212, 1, 1, 1, 1202, 1202, 1214, 1}},
    {2, "a", {1212, 1213, 1213, 1213, 1202, 1202, 2, 1202}},
    {3, "a", {1418, 3, 1213, 1213, 1202, 1202, 1214, 1213}},
    {4, "a", {1212, 4, 1213, 1213, 1202, 1202, 1214, 1213}},
    {5, "a.tif", {1202, 1202, 1202, 1202, 1202, 1202, 1202, 1202}},
    {6, "a", {6, 1213, 1203, 1203, 1214, 1214, 1214, 1203}},
    {7, "a", {1212, 7, 1203, 1203, 1214, 1214, 1214, 1203}},
    {8, "a", {1212, 1213, 1203, 1203, 8, 8, 8, 8}},
    {9, "a.bmp", {1418, 1418, 1418, 1418, 1418, 1418, 1418, 1418}},
    {10, "a", {1212, 10, 1207, 1207, 1207, 1207, 1214, 1207}},
    {11, "a", {1212, 1213, 1207, 1207, 1207, 1207, 11, 1207}},
    {12, "a.bmp", {6, 7, 1203, 1203, 8, 8, 8, 8}},
    {12, "a.tif", {0, 1, 1, 1, 1202, 1202, 2, 1202}},
    {12, "a.jpg", {1109, 10, 1207, 1207, 1207, 1207, 11, 1207}},
    {12, "a", {1109, 1109, 1109, 1109, 1109, 1109, 1109, 1109}},
    {13, "a.bmp", {1418, 1418, 1418, 1418, 1418, 1418, 1418, 1418}},
};

TYPED_TEST(ImageFileOf, IsWrittenInTheChosenFormatOrNotTouched) {
    const Bytes old{'o', 'l', 'd'};
    KxImage<TypeParam> image(5, 3), loaded;
    Testing::FillPattern(image, 1);
    for (const auto& choice : kChoices) {
        const short outcome = choice.outcomes[PixelTraits<TypeParam>::kImageType];
        const std::string path = this->folder.Write(choice.name, old);
        const short code = KxSaveImage(&image, path.c_str(), static_cast<short>(choice.type));
        EXPECT_EQ(code, KxGetError());
        if (outcome >= 1000) {
            EXPECT_EQ(code, outcome) << choice.type << choice.name;
            EXPECT_EQ(this->folder.Read(choice.name), old) << choice.type << choice.name;
        } else {
            EXPECT_EQ(code, 0) << choice.type << choice.name;
            EXPECT_EQ(KxLoadImage(&loaded, path.c_str(), this->type), 0) << choice.type << choice.name;
            EXPECT_EQ(this->type, outcome) << choice.type << choice.name;
            EXPECT_EQ(loaded.GetWidth(), 5);
        }
    }
}

TYPED_TEST(ImageFileOf, TracesEveryOperationUnderItsName) {
    static const char* const kNames[][2] = {
        {"KxROIBW1::Load", "KxImageBW1::Save"},   {"KxROIBW8::Load", "KxROIBW8::Save"},
        {"KxImageBW16::Load", "KxROIBW16::Save"}, {"KxImageBW32::Load", "KxROIBW32::Save"},
        {"KxImageC15::Load", "KxROIC15::Save"},   {"KxImageC16::Load", "KxROIC16::Save"},
        {"KxImageC24::Load", "KxROIC24::Save"},   {"KxImageC24A::Load", "KxROIC24A::Save"},
    };
    const auto& [load, save] = kNames[PixelTraits<TypeParam>::kImageType];
    const std::string unicode = " ( Unicode)";
    const Names expected{load, load + unicode, save, save + unicode,
                         load, load + unicode, save, save + unicode};

    KxImage<TypeParam> image(1, 1);
    const std::string missing = this->folder.File("missing/a");
    const auto wide = Wide(missing);
    EXPECT_EQ(KxLoadImage(&image, missing.c_str(), this->type), KX_ERROR_FILE_OPEN);
    KxLoadImage(&image, wide.c_str(), this->type);
    EXPECT_EQ(KxSaveImage(&image, missing.c_str(), 9), KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    KxSaveImage(&image, wide.c_str(), 9);
    EXPECT_EQ(this->type, 77);
    EXPECT_EQ(image.Load(missing.c_str()), IMAGE_FILE_RESERVED);
    EXPECT_EQ(KxGetError(), KX_ERROR_FILE_OPEN);
    image.Load(wide.c_str());
    image.Save(missing.c_str(), IMAGE_FILE_TYPES{9});
    image.Save(wide.c_str(), IMAGE_FILE_TYPES{0x10008});
    EXPECT_EQ(KxGetError(), KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    EXPECT_EQ(this->traces.Functions(), expected);
}

TYPED_TEST(ImageFileOf, RefusesNullAndEmptyObjectsAndPaths) {
    KxImage<TypeParam> image(1, 1), empty;
    KxImage<TypeParam>* none = nullptr;
    const short fileType = "\0\1\1\1\10\10\10\10"[PixelTraits<TypeParam>::kImageType];
    const std::string path = this->folder.File("new");
    EXPECT_EQ(KxLoadImage(none, path.c_str(), this->type), KX_ERROR_IMAGE_MEMORY_ACCESS);
    EXPECT_EQ(KxLoadImage(&image, static_cast<const char*>(nullptr), this->type), KX_ERROR_FILE_OPEN);
    EXPECT_EQ(KxSaveImage(none, path.c_str(), fileType), KX_ERROR_IMAGE_MEMORY_ACCESS);
    EXPECT_EQ(KxSaveImage(&empty, path.c_str(), fileType), KX_ERROR_IMAGE_MEMORY_ACCESS);
    for (const auto& [width, height] : {std::pair(0, 1), std::pair(1, 0)}) {
        const KxROI<TypeParam> nothing(&image, 0, 0, width, height);
        EXPECT_EQ(KxSaveImage(&nothing, path.c_str(), fileType), KX_ERROR_IMAGE_MEMORY_ACCESS);
    }
    EXPECT_EQ(KxSaveImage(&image, static_cast<const char*>(nullptr), fileType), KX_ERROR_FILE_OPEN);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(ImageFile, TakesThreeLettersAfterTheLastDotAsExtension) {
    const struct {
        const char* name;
        short outcome;
    } kNames[] = {{"a.TIF", 1},      {"a.b.Bmp", 7}, {"a.jpg", 10},     {"x.tif/a.bmp", 7}, {"a.tiff", 1109},
                  {"a.ti", 1109},    {"a", 1109},    {"a.bmp.", 1109},  {"a.png", 1109},    {"bmp", 1109},
                  {"x.tif/a", 1109}, {"", 1109},     {"a.\xE2mp", 1109}};
    std::filesystem::create_directory(folder.File("x.tif"));
    KxImage<KxBW8> image(2, 2);
    for (const auto& [name, outcome] : kNames) {
        const std::string path = folder.File(name);
        for (const bool isWide : {false, true}) {
            if (isWide)
                KxSaveImage(&image, Wide(path).c_str());
            else
                image.Save(path.c_str());
            if (outcome >= 1000) {
                EXPECT_EQ(KxGetError(), outcome) << name;
            } else {
                ASSERT_EQ(KxGetError(), KX_OK) << name;
                KxLoadImage(&image, Wide(path).c_str(), type);
                EXPECT_EQ(type, outcome) << name;
                EXPECT_EQ(image.Load(path.c_str()), outcome) << name;
                std::filesystem::remove(path);
            }
        }
    }
    const unsigned short kWideLetters[] = {'a', '.', 'b', 'm', 0x100 + 'p', 0};
    KxSaveImage(&image, kWideLetters);
    EXPECT_EQ(KxGetError(), KX_ERROR_FILE_EXTENSION);
}

TEST_F(ImageFile, TellsFormatsByTheirFirstBytes) {
    const struct {
        std::string start;
        int code;
    } kFiles[] = {
        {"II*", KX_ERROR_FILE_READ},
        {"BM3456789ABCDEF", KX_ERROR_FILE_READ},
        {"II\0*456789ABCDEF"s, KX_ERROR_BAD_FILE_FORMAT},
        {"MM*\000456789ABCDEF"s, KX_ERROR_BAD_FILE_FORMAT},
        {"II+\0  JFIF      "s, KX_ERROR_BAD_FILE_FORMAT},
        {"\x89PNG\r\n\x1A\n\0\0\0\rIHDR"s, KX_ERROR_BAD_FILE_FORMAT},
        {"      JFXX      ", KX_ERROR_BAD_FILE_FORMAT},
        {"      JFIF      ", KX_ERROR_JPEG_READ},
        {"      Exif      ", KX_ERROR_JPEG_READ},
        {"BM3456JFIFABCDEF", KX_ERROR_FILE_READ},
    };
    KxImage<KxBW8> image(3, 2), before(image);
    Testing::FillPattern(image, 2);
    before = image;
    for (const auto& [start, code] : kFiles) {
        const std::string path = folder.Write("a", Bytes(start.begin(), start.end()));
        EXPECT_EQ(KxLoadImage(&image, path.c_str(), type), code) << start;
    }
    EXPECT_EQ(KxLoadImage(&image, folder.File("").c_str(), type), KX_ERROR_FILE_OPEN);
    EXPECT_EQ(KxLoadImage(&image, folder.File("b").c_str(), type), KX_ERROR_FILE_OPEN);
    EXPECT_EQ(type, 77);
    EXPECT_TRUE(Testing::SamePixels(image, before));
}

TEST_F(ImageFile, LoadsIntoARegionOfTheSameSizeOnly) {
    KxImage<KxC24> frame(9, 8), image(4, 3);
    Testing::FillPattern(frame, 1);
    Testing::FillPattern(image, 2);
    const KxImage<KxC24> before(frame);
    KxROI<KxC24> region(&frame, 3, 2, 4, 3), wider(&frame, 3, 2, 5, 3), lower(&frame, 3, 2, 4, 4), detached;
    detached.SetSize(4, 3);
    image.Save(folder.File("a.bmp").c_str());
    EXPECT_EQ(KxLoadImage(&wider, folder.File("a.bmp").c_str(), type), KX_ERROR_SIZE_MISMATCH);
    EXPECT_EQ(KxLoadImage(&lower, folder.File("a.bmp").c_str(), type), KX_ERROR_SIZE_MISMATCH);
    EXPECT_EQ(KxLoadImage(&detached, folder.File("a.bmp").c_str(), type), KX_ERROR_IMAGE_MEMORY_ACCESS);
    EXPECT_TRUE(Testing::SamePixels(frame, before));
    EXPECT_EQ(traces.Functions(), Names(3, "KxImageC24::Load"));

    EXPECT_EQ(region.Load(folder.File("a.bmp").c_str()), IMAGE_FILE_BMP_COLOR);
    EXPECT_EQ(KxGetError(), KX_OK);
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 9; ++x) {
            const bool isInside = x >= 3 && x < 7 && y >= 2 && y < 5;
            EXPECT_EQ(frame.GetPixel(x, y), isInside ? image.GetPixel(x - 3, y - 2) : before.GetPixel(x, y));
        }
    }
}

TEST_F(ImageFile, ResizesAnImageAndClipsItsRegions) {
    KxImage<KxBW8> small(4, 3), image(20, 20);
    KxROI<KxBW8> inside(&image, 1, 1, 10, 10), outside(&image, 10, 10, 5, 5);
    Testing::FillPattern(small, 3);
    small.Save(folder.File("a.bmp").c_str());
    image.Load(folder.File("a.bmp").c_str());
    EXPECT_EQ(KxGetError(), KX_OK);
    EXPECT_TRUE(Testing::SamePixels(small, image));
    EXPECT_EQ(inside.GetExtent(), GenericRoiExtent(1, 1, 3, 2));
    EXPECT_EQ(outside.GetExtent(), GenericRoiExtent(0, 0, 4, 3));
}

TEST_F(ImageFile, ReportsAFullDisk) {
    KxImage<KxBW8> image(300, 200);
    Testing::FillPattern(image, 4);
    EXPECT_EQ(KxSaveImage(&image, "/dev/full", IMAGE_FILE_BMP_GRAY), KX_ERROR_FILE_WRITE);
    EXPECT_EQ(KxSaveImage(&image, "/dev/full", IMAGE_FILE_JPEG_GRAY), KX_ERROR_JPEG_WRITE);
    KxImage<KxBW8> dot(1, 1);  // fails when it is closed
    EXPECT_EQ(KxSaveImage(&dot, "/dev/full", IMAGE_FILE_BMP_GRAY), KX_ERROR_FILE_WRITE);
}

TEST_F(ImageFile, LoadsBilevelFilesIntoImagesOnly) {
    KxImage<KxBW1> image(20, 3), loaded;
    Testing::FillPattern(image, 5);
    image.Save(folder.File("a.bmp").c_str());
    KxROI<KxBW1> region(&image, 0, 0, 20, 3);
    KxROI<KxBW1>& plain = loaded;
    EXPECT_EQ(region.Load(folder.File("a.bmp").c_str()), IMAGE_FILE_RESERVED);
    EXPECT_EQ(KxGetError(), KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    region.Load(Wide(folder.File("a.bmp")).c_str());
    EXPECT_EQ(plain.Load(folder.File("a.bmp").c_str()), IMAGE_FILE_BMP_BILEVEL);
    EXPECT_TRUE(Testing::SamePixels(image, loaded));
    EXPECT_EQ(traces.Functions(), Names(2, "KxROI::Load"));
}

template <class Pixel>
class PixelsWithoutFiles : public ImageFile {};
using MemoryPixels =
    testing::Types<KxYUY2, KxSubPixel64, KxComplex64, KxRaw32, KxRaw96, KxFLOAT32, KxFLOAT64>;
TYPED_TEST_SUITE(PixelsWithoutFiles, MemoryPixels);

TYPED_TEST(PixelsWithoutFiles, AreRefused) {
    KxImage<TypeParam> image(2, 2);
    KxROI<TypeParam> region(&image, 0, 0, 1, 1);
    const std::string path = this->folder.File("a.bmp");
    for (const KxROI<TypeParam>* object :
         {static_cast<const KxROI<TypeParam>*>(&image), &std::as_const(region)}) {
        KxOk();
        object->Save(path.c_str());
        object->Save(Wide(path).c_str(), IMAGE_FILE_TIFF_GRAY);
        EXPECT_EQ(KxGetError(), KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    }
    KxOk();
    image.Load(path.c_str());
    region.Load(Wide(path).c_str());
    EXPECT_EQ(KxGetError(), KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(this->traces.Functions(), (Names{"KxImage::Save", "KxImage::Save", "KxROI::Save", "KxROI::Save",
                                               "KxImage::Load", "KxROI::Load"}));
}

TEST_F(ImageFile, CreatesTheFirstImageThatTakesTheFile) {
    const auto created = [&](const KxGenericROI& image, const auto& save) {
        save(folder.File("a"));
        EXPECT_EQ(KxGetError(), KX_OK);
        const std::unique_ptr<KxGenericROI> copy(KxGenericROI::CreateImageFromFile(folder.File("a").c_str()));
        EXPECT_EQ(KxGetError(), KX_OK);
        EXPECT_TRUE(copy && copy->GetWidth() == image.GetWidth() && !copy->IsAnROI());
        return copy ? copy->GetType() : KX_IMAGE_FLOAT64;
    };
    const auto check = [&](auto& image, IMAGE_FILE_TYPES fileType, KX_IMAGE_TYPES expected) {
        Testing::FillPattern(image, 6);
        const auto save = [&](const std::string& path) { image.Save(path.c_str(), fileType); };
        EXPECT_EQ(created(image, save), expected);
    };
    KxImage<KxBW1> bw1(7, 2);
    KxImage<KxBW8> bw8(7, 2);
    KxImage<KxBW16> bw16(7, 2);
    KxImage<KxC15> c15(7, 2);
    KxImage<KxC16> c16(7, 2);
    KxImage<KxC24> c24(7, 2);
    KxImage<KxC24A> c24a(7, 2);
    check(bw1, IMAGE_FILE_TIFF_BILEVEL, KX_IMAGE_BW1);
    check(bw8, IMAGE_FILE_TIFF_BILEVEL_PACKBITS, KX_IMAGE_BW8);
    check(bw8, IMAGE_FILE_JPEG_GRAY, KX_IMAGE_BW8);
    check(bw16, IMAGE_FILE_TIFF_GRAY, KX_IMAGE_BW16);
    check(c24, IMAGE_FILE_BMP_COLOR, KX_IMAGE_C24);
    check(c24, IMAGE_FILE_JPEG_COLOR, KX_IMAGE_C24);
    check(c15, IMAGE_FILE_BMP_COLOR, KX_IMAGE_C15);
    check(c16, IMAGE_FILE_BMP_COLOR, KX_IMAGE_C16);
    check(c24a, IMAGE_FILE_BMP_COLOR, KX_IMAGE_BW32);

    KxSetTraceMode(KX_TRACE_MODE_FULL_MESSAGE);
    EXPECT_EQ(KxGenericROI::CreateImageFromFile(folder.File("b").c_str()), nullptr);
    EXPECT_EQ(KxGetError(), KX_ERROR_FILE_OPEN);
    EXPECT_EQ(KxGetTraceMode(), KX_TRACE_MODE_FULL_MESSAGE);
    EXPECT_TRUE(traces.Boxes().empty());
}

TEST(FileResolution, ConvertsBetweenUnitsAndCutsFractionsOff) {
    KxImage<KxBW8> image(1, 1);
    const struct {
        float x;
        KxMeasurementUnit unit;
        const KxMeasurementUnit* found;  // null: the image's own
        std::uint32_t perMetre;
    } kResolutions[] = {
        {1024, KxUnit_m, &KxUnit_m, 1024},
        {1000, KxUnit_m, &KxUnit_m, 999},  // the image holds its inverse, 0.001
        {10, KxUnit_mm, &KxUnit_mm, 9999},
        {300, KxUnit_inch, &KxUnit_inch, 11811},
        {2.9f, KxUnit_m, &KxUnit_m, 2},
        {8, KxUnitNone, &KxUnitNone, 8},
        {3, {0, "blob"}, nullptr, 3},
        {4, {2, "inch"}, nullptr, 2},
        {1e30f, KxUnit_m, &KxUnit_m, 50000},
        {-5, KxUnit_m, &KxUnit_m, 0},
    };
    for (auto resolution : kResolutions) {
        image.SetResolution(resolution.x, resolution.x, &resolution.unit);
        const FileResolution stored = ResolutionOf(image);
        EXPECT_EQ(stored.unit == resolution.found, resolution.found != nullptr);
        EXPECT_EQ(WholePixels(stored.In(KxUnit_m).x, 50000), resolution.perMetre) << resolution.x;
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo
