// Choosing and detecting formats, and what the entry points of image files have in common.

#include "tests/support/test.h"

namespace Zelkor::Kalvo {
namespace {

using namespace Testing;
using namespace std::string_literals;

class ImageFile : public testing::Test {
protected:
    ImageFile() {
        KxSetTraceMode(KX_TRACE_MODE_MESSAGE);
        KxOk();
    }

    TemporaryFolder folder;
    const std::string bmp = folder.File("a.bmp");
    TraceRecorder traces;
    short type = 77;
};

template <class Pixel>
class ImageFileOf : public ImageFile {};
TYPED_TEST_SUITE(ImageFileOf, FilePixels);

// What saving as a type, or by an extension, gives: below 1000 the type that is written.
const struct {
    short type;
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
    {10, "a", {1212, 10, 1207, 1207, 1207, 1207, 1214, 1207}},
    {11, "a", {1212, 1213, 1207, 1207, 1207, 1207, 11, 1207}},
    {12, "a.bmp", {6, 7, 1203, 1203, 8, 8, 8, 8}},
    {12, "a.tif", {0, 1, 1, 1, 1202, 1202, 2, 1202}},
    {12, "a.jpg", {1109, 10, 1207, 1207, 1207, 1207, 11, 1207}},
    {13, "a.bmp", {1418, 1418, 1418, 1418, 1418, 1418, 1418, 1418}},
};

TYPED_TEST(ImageFileOf, IsWrittenInTheChosenFormatOrNotTouched) {
    const Bytes old{'o', 'l', 'd'};
    KxImage<TypeParam> image(5, 3), loaded;
    for (const auto& choice : kChoices) {
        const short outcome = choice.outcomes[PixelTraits<TypeParam>::kImageType];
        const std::string path = this->folder.Write(choice.name, old);
        const short code = KxSaveImage(&image, path.c_str(), choice.type);
        EXPECT_EQ(code, outcome >= 1000 ? outcome : 0) << choice.type << choice.name;
        EXPECT_EQ(code, KxGetError());
        EXPECT_EQ(this->folder.Read(choice.name) == old, code != 0) << choice.type << choice.name;
        if (code == 0) {
            EXPECT_EQ(KxLoadImage(&loaded, path.c_str(), this->type), 0) << choice.type << choice.name;
            EXPECT_EQ(this->type, outcome) << choice.type << choice.name;
        }
    }
}

TEST_F(ImageFile, RefusesNullAndEmptyObjectsAndPaths) {
    KxImage<KxBW8> image(1, 1), empty;
    KxROI<KxBW8>* const none = nullptr;
    const KxROI<KxBW8> nothing(&image, 0, 0, 0, 1);
    const char* noPath = nullptr;
    for (const KxROI<KxBW8>* region : std::vector<const KxROI<KxBW8>*>{&nothing, &empty, none})
        EXPECT_EQ(KxSaveImage(region, bmp.c_str()), KX_ERROR_IMAGE_MEMORY_ACCESS);
    EXPECT_FALSE(std::filesystem::exists(bmp));
    EXPECT_EQ(KxSaveImage(&image, noPath, IMAGE_FILE_BMP_GRAY), KX_ERROR_FILE_OPEN);
    EXPECT_EQ(KxLoadImage(&image, noPath, type), KX_ERROR_FILE_OPEN);
    EXPECT_EQ(KxLoadImage(none, bmp.c_str(), type), KX_ERROR_IMAGE_MEMORY_ACCESS);
}

TEST_F(ImageFile, TakesThreeLettersAfterTheLastDotAsExtension) {
    std::filesystem::create_directory(folder.File("x.tif"));
    KxImage<KxBW8> image(2, 2);
    const auto save = [&](const std::string& name) {
        KxOk();
        KxSaveImage(&image, Wide(folder.File(name)).c_str());
        return KxGetError();
    };
    for (const char* name : {"a.TIF", "a.b.Bmp", "a.jpg", "x.tif/a.bmp"})
        EXPECT_EQ(save(name), KX_OK) << name;
    EXPECT_EQ(image.Load(folder.File("x.tif/a.bmp").c_str()), IMAGE_FILE_BMP_GRAY);
    for (const char* name : {"a.tiff", "a.ti", "a", "a.bmp.", "a.png", "bmp", "x.tif/a", "", "a.\xE2mp"})
        EXPECT_EQ(save(name), KX_ERROR_FILE_EXTENSION) << name;
}

TEST_F(ImageFile, TellsFormatsByTheirFirstBytes) {
    const std::pair<std::string, int> kFiles[] = {
        {"II*", KX_ERROR_FILE_READ},
        {"MM*\000456789ABCDEF"s, KX_ERROR_BAD_FILE_FORMAT},
        {"\x89PNG\r\n\x1A\n\0\0\0\rIHDR"s, KX_ERROR_BAD_FILE_FORMAT},
        {"      JFXX      ", KX_ERROR_BAD_FILE_FORMAT},
        {"      JFIF      ", KX_ERROR_JPEG_READ},
        {"      Exif      ", KX_ERROR_JPEG_READ},
        {"BM3456JFIFABCDEF", KX_ERROR_FILE_READ},
    };
    KxImage<KxBW8> image(3, 2);
    FillPattern(image, 2);
    const KxImage<KxBW8> before(image);
    for (const auto& [start, code] : kFiles) {
        const std::string path = folder.Write("a", Bytes(start.begin(), start.end()));
        EXPECT_EQ(KxLoadImage(&image, path.c_str(), type), code) << start;
    }
    EXPECT_EQ(KxLoadImage(&image, folder.File("").c_str(), type), KX_ERROR_FILE_OPEN);
    EXPECT_EQ(type, 77);
    EXPECT_TRUE(SamePixels(image, before));
}

TEST_F(ImageFile, LoadsIntoARegionOfTheSameSizeOnly) {
    KxImage<KxC24> frame(9, 8), image(4, 3);
    FillPattern(frame, 1);
    FillPattern(image, 2);
    KxImage<KxC24> expected(frame);
    KxROI<KxC24> region(&frame, 3, 2, 4, 3), wider(&frame, 3, 2, 5, 3), lower(&frame, 3, 2, 4, 4);
    for (const char* name : {"a.tif", "a.jpg", "a.bmp"}) {
        const std::string path = folder.File(name);
        image.Save(path.c_str());
        EXPECT_EQ(KxLoadImage(&wider, path.c_str(), type), KX_ERROR_SIZE_MISMATCH);
        std::filesystem::resize_file(path, std::filesystem::file_size(path) - 8);
        EXPECT_EQ(KxLoadImage(&lower, path.c_str(), type), KX_ERROR_SIZE_MISMATCH) << "though it is cut";
    }
    EXPECT_TRUE(SamePixels(frame, expected));
    image.Save(bmp.c_str());
    EXPECT_EQ(region.Load(bmp.c_str()), IMAGE_FILE_BMP_COLOR);
    EXPECT_EQ(KxGetError(), KX_OK);
    KxROI<KxC24> inside(&expected, 3, 2, 4, 3);
    SetPixelBytes(inside, PixelBytes(image));
    EXPECT_TRUE(SamePixels(frame, expected));
}

TEST_F(ImageFile, ResizesAnImageAndClipsItsRegions) {
    KxImage<KxBW8> small(4, 3), image(20, 20);
    KxROI<KxBW8> inside(&image, 1, 1, 10, 10), outside(&image, 10, 10, 5, 5);
    FillPattern(small, 3);
    small.Save(bmp.c_str());
    image.Load(bmp.c_str());
    EXPECT_EQ(KxGetError(), KX_OK);
    EXPECT_TRUE(SamePixels(small, image));
    EXPECT_EQ(inside.GetExtent(), GenericRoiExtent(1, 1, 3, 2));
    EXPECT_EQ(outside.GetExtent(), GenericRoiExtent(0, 0, 4, 3));
}

TEST_F(ImageFile, RefusesBilevelRegionsAndPixelsWithoutFiles) {
    KxImage<KxBW1> bilevel(20, 3);
    bilevel.Save(bmp.c_str());
    KxROI<KxBW1> bilevelRegion(&bilevel, 0, 0, 20, 3);
    KxImage<KxFLOAT32> image(2, 2);
    KxROI<KxFLOAT32> region(&image, 0, 0, 1, 1);
    EXPECT_EQ(bilevelRegion.Load(bmp.c_str()), IMAGE_FILE_RESERVED);
    EXPECT_EQ(KxGetError(), KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    image.Load(bmp.c_str());
    region.Load(Wide(bmp).c_str());
    image.Save(folder.File("b.bmp").c_str());
    region.Save(Wide(folder.File("b.bmp")).c_str(), IMAGE_FILE_TIFF_GRAY);
    EXPECT_EQ(KxGetError(), KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    EXPECT_FALSE(std::filesystem::exists(folder.File("b.bmp")));
    KxImage<KxBW16>().Load(Wide(folder.File("none")).c_str());
    EXPECT_EQ(traces.Functions(), (Names{"KxROI::Load", "KxImage::Load", "KxImage::Load", "KxImage::Save",
                                         "KxImage::Save", "KxImageBW16::Load ( Unicode)"}));
}

TEST_F(ImageFile, CreatesTheFirstImageThatTakesTheFile) {
    KxSetTraceMode(KX_TRACE_MODE_FULL_MESSAGE);
    const auto typeCreated = [&](const auto& image, IMAGE_FILE_TYPES fileType) {
        image.Save(folder.File("a").c_str(), fileType);
        const std::unique_ptr<KxGenericROI> created(
            KxGenericROI::CreateImageFromFile(folder.File("a").c_str()));
        EXPECT_TRUE(KxGetError() == KX_OK && created->GetWidth() == 7 && !created->IsAnROI());
        return created->GetType();
    };
    EXPECT_EQ(typeCreated(KxImage<KxBW1>(7, 2), IMAGE_FILE_TIFF_BILEVEL), KX_IMAGE_BW1);
    EXPECT_EQ(typeCreated(KxImage<KxBW8>(7, 2), IMAGE_FILE_TIFF_BILEVEL_PACKBITS), KX_IMAGE_BW8);
    EXPECT_EQ(typeCreated(KxImage<KxBW16>(7, 2), IMAGE_FILE_TIFF_GRAY), KX_IMAGE_BW16);
    EXPECT_EQ(typeCreated(KxImage<KxC24>(7, 2), IMAGE_FILE_JPEG_COLOR), KX_IMAGE_C24);
    EXPECT_EQ(typeCreated(KxImage<KxC15>(7, 2), IMAGE_FILE_BMP_COLOR), KX_IMAGE_C15);
    EXPECT_EQ(typeCreated(KxImage<KxC16>(7, 2), IMAGE_FILE_BMP_COLOR), KX_IMAGE_C16);
    EXPECT_EQ(typeCreated(KxImage<KxC24A>(7, 2), IMAGE_FILE_BMP_COLOR), KX_IMAGE_BW32);
    EXPECT_EQ(KxGenericROI::CreateImageFromFile(folder.File("b").c_str()), nullptr);
    EXPECT_EQ(KxGetError(), KX_ERROR_FILE_OPEN);
    EXPECT_EQ(KxGetTraceMode(), KX_TRACE_MODE_FULL_MESSAGE);
    EXPECT_TRUE(traces.Boxes().empty());
}

TEST_F(ImageFile, IsDescribedByAnImageWithoutPixels) {
    const std::string path = folder.File("a");
    unsigned pages = 77;
    const auto expectDescribed = [&](const auto& image, IMAGE_FILE_TYPES fileType, KX_IMAGE_TYPES pixelType) {
        image.Save(path.c_str(), fileType);
        std::filesystem::resize_file(path, std::filesystem::file_size(path) - 1);  // a missing pixel
        const std::unique_ptr<KxGenericROI> described(KxDescribeImage(path.c_str(), type, pages));
        ASSERT_TRUE(described);
        EXPECT_EQ(std::tuple(described->GetType(), type, pages, described->Void()),
                  std::tuple(pixelType, static_cast<short>(fileType), 1u, 1));
        EXPECT_EQ(described->GetExtent(), image.GetExtent());
        float x = 0, y = 0;
        const KxMeasurementUnit* unit = nullptr;
        described->GetResolution(x, y, unit);
        EXPECT_STREQ(unit->GetName(), fileType >= IMAGE_FILE_BMP_BILEVEL ? "m" : "cm");
        EXPECT_EQ(described->GetTitle() != nullptr, fileType < IMAGE_FILE_BMP_BILEVEL);
    };
    const auto imageOf = []<class Pixel>(Pixel) {
        KxImage<Pixel> image(70, 20);
        KxMeasurementUnit unit = KxUnit_cm;
        image.SetResolution(8, 8, &unit);
        image.SetTitle("title");
        return image;
    };
    expectDescribed(imageOf(KxBW1()), IMAGE_FILE_TIFF_BILEVEL, KX_IMAGE_BW1);
    expectDescribed(imageOf(KxBW8()), IMAGE_FILE_TIFF_BILEVEL_PACKBITS, KX_IMAGE_BW8);
    expectDescribed(imageOf(KxBW16()), IMAGE_FILE_TIFF_GRAY, KX_IMAGE_BW16);
    expectDescribed(imageOf(KxBW32()), IMAGE_FILE_TIFF_GRAY, KX_IMAGE_BW32);
    expectDescribed(imageOf(KxC24()), IMAGE_FILE_TIFF_COLOR, KX_IMAGE_C24);
    expectDescribed(imageOf(KxC15()), IMAGE_FILE_BMP_COLOR, KX_IMAGE_C15);
    expectDescribed(imageOf(KxC24A()), IMAGE_FILE_BMP_COLOR, KX_IMAGE_C24A);

    const std::pair<Bytes, KX_ERRORS> kBad[] = {
        {Bytes(16), KX_ERROR_BAD_FILE_FORMAT},
        {{0xFF, 0xD8, 0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1}, KX_ERROR_FILE_READ},
    };
    for (const auto& [bytes, code] : kBad) {
        EXPECT_EQ(KxDescribeImage(folder.Write("a", bytes).c_str(), type, pages), nullptr);
        EXPECT_EQ(KxGetError(), code);
    }
    EXPECT_EQ(KxDescribeImage(Wide(folder.File("none")).c_str(), type, pages), nullptr);
    EXPECT_EQ(KxGetError(), KX_ERROR_FILE_OPEN);
    EXPECT_EQ(traces.Functions(),
              (Names{"KxDescribeImage", "KxDescribeImage", "KxDescribeImage ( Unicode)"}));
}

TEST_F(ImageFile, KeepsToTheLimitsOfTheThread) {
    KxImage<KxBW16> image(40, 30);
    KxBW16Vector vector, loadedVector;
    vector.SetNumElements(1200);
    vector.Save(folder.File("vector").c_str());
    image.Save(folder.File("a.tif").c_str());
    image.Save(Stream(KxSerializer::CreateFileWriter(folder.File("a.kxa"))).get());
    const std::tuple<std::uint64_t, std::uint64_t, KX_ERRORS, KX_ERRORS> kLimits[] = {
        {1200, 2400, KX_OK, KX_OK},
        {1199, 0, KX_ERROR_INSUFFICIENT_ALLOCATION, KX_OK},
        {0, 2399, KX_ERROR_INSUFFICIENT_ALLOCATION, KX_ERROR_INSUFFICIENT_ALLOCATION}};
    for (const auto& [pixels, bytes, imageCode, vectorCode] : kLimits) {
        KxSetLoadLimits(pixels, bytes);
        KxImage<KxBW16> loaded;
        EXPECT_EQ(KxLoadImage(&loaded, folder.File("a.tif").c_str(), type), imageCode);
        const std::unique_ptr<KxGenericROI> created(
            KxGenericROI::CreateImageFromFile(folder.File("a.tif").c_str()));
        EXPECT_EQ(KxGetError(), imageCode);
        loaded.Load(Stream(KxSerializer::CreateFileReader(folder.File("a.kxa"))).get());
        EXPECT_EQ(KxGetError(), imageCode);
        loadedVector.Load(folder.File("vector").c_str());
        EXPECT_EQ(KxGetError(), vectorCode);
    }
    KxSetLoadLimits(0, 0);
}

}  // namespace
}  // namespace Zelkor::Kalvo
