// JPEG files: what is written, what loads, and files that must be refused.

#include "tests/support/test.h"

#include <sys/resource.h>

#include <malloc.h>

#include "tests/support/jpeg_builder.h"

namespace Zelkor::Kalvo {
namespace {

using namespace Testing;

class Jpeg : public testing::Test {
protected:
    Jpeg() { KxSetTraceMode(KX_TRACE_MODE_SILENT); }
    ~Jpeg() override { KxSetJpegQuality(50); }

    KX_ERRORS Load(auto& image, const Bytes& bytes) {
        return static_cast<KX_ERRORS>(KxLoadImage(&image, folder.Write("a.jpg", bytes).c_str(), type));
    }
    Bytes Save(const auto& image) {
        EXPECT_EQ(KxSaveImage(&image, folder.File("a.jpg").c_str()), KX_OK);
        return folder.Read("a.jpg");
    }

    TemporaryFolder folder;
    short type = 77;
};

TEST_F(Jpeg, IsWrittenWithTheQualityOfTheThread) {
    KxImage<KxBW8> image(64, 64);
    FillPattern(image, 1);
    const auto fileOf = [&](unsigned quality) { return KxSetJpegQuality(quality), Save(image); };
    EXPECT_LT(fileOf(10).size() * 2, fileOf(100).size());
    EXPECT_EQ(fileOf(100), fileOf(0xFFFFFFFF));
    EXPECT_NO_THROW(FindSegment(fileOf(0), 0xC0)) << "baseline";
}

TEST_F(Jpeg, HoldsTheResolutionAsDensity) {
    // What is set, the density after the version in the first segment, and the unit that comes back.
    const std::tuple<float, float, KxMeasurementUnit, Bytes, const char*> kResolutions[] = {
        {3, 2, KxUnitNone, {0, 0, 3, 0, 2}, "None"},
        {300, 600, KxUnit_inch, {1, 1, 44, 2, 88}, "inch"},
        {16, 12.5f, KxUnit_mm, {2, 0, 159, 0, 124}, "cm"},  // images keep the inverse: 15.9999
        {90000, 70, KxUnit_cm, {2, 255, 255, 0, 70}, "cm"},
        {100, 0.5f, KxUnit_inch, {1, 0, 100, 0, 0}, "None"},
    };
    for (auto [x, y, unit, density, loadedUnit] : kResolutions) {
        KxImage<KxBW8> image(8, 8), loaded;
        image.SetResolution(x, y, &unit);
        const Bytes bytes = Save(image);
        EXPECT_EQ(Bytes(bytes.begin() + 13, bytes.begin() + 18), density) << x;
        EXPECT_EQ(Load(loaded, bytes), KX_OK);
        const KxMeasurementUnit* foundUnit = nullptr;
        loaded.GetResolution(x, y, foundUnit);
        const bool isKnown = density[4] != 0;
        EXPECT_FLOAT_EQ(x, isKnown ? density[1] * 256.f + density[2] : 1);
        EXPECT_STREQ(foundUnit->GetName(), loadedUnit);
    }
}

TEST_F(Jpeg, LoadsFilesOfOtherPrograms) {
    KxImage<KxC24> baseline, loaded;
    const Bytes whole = MakeJpeg(3);
    Load(baseline, whole);
    for (const Bytes& file : {Changed(whole, 6, {'E', 'x', 'i', 'f'}), MakeJpeg(3, jpeg_simple_progression),
                              MakeJpeg(3, [](j_compress_ptr info) { info->restart_interval = 2; })}) {
        loaded.SetSize(0, 0);
        EXPECT_EQ(Load(loaded, file), KX_OK);
        EXPECT_TRUE(SamePixels(loaded, baseline));
    }
}

TEST_F(Jpeg, RefusesBadFiles) {
    const Bytes gray = MakeJpeg(1);
    const std::size_t frame = FindSegment(gray, 0xC0);
    const Bytes noCode{0xFF, 0, 0xFF, 0, 0xFF, 0, 0xFF, 0, 0xFF, 0, 0xFF, 0};  // all bits are 1
    // Name, file, code, and whether it is found out before the image is touched.
    const std::tuple<const char*, Bytes, KX_ERRORS, bool> kBadFiles[] = {
        {"65500 x 65500", Changed(gray, frame + 5, {0xFF, 0xDC, 0xFF, 0xDC}), KX_ERROR_FILE_READ, true},
        {"four times as high", Changed(gray, frame + 5, {0, 96}), KX_ERROR_FILE_READ, false},
        {"no height", Changed(gray, frame + 5, {0, 0}), KX_ERROR_JPEG_READ, true},
        {"12 bits", Changed(gray, frame + 4, {12}), KX_ERROR_JPEG_READ, true},
        {"arithmetic coding", Changed(gray, frame + 1, {0xC9}), KX_ERROR_UNSUPPORTED_JPEG, true},
        {"four components", MakeJpeg(4), KX_ERROR_UNSUPPORTED_JPEG, true},
        {"no start of image", Changed(gray, 0, {0, 0}), KX_ERROR_JPEG_READ, true},
        {"unknown codes", Changed(gray, FindSegment(gray, 0xDA) + 10, noCode), KX_ERROR_JPEG_READ, false},
        {"128 scans", MakeJpegOfManyScans(), KX_ERROR_JPEG_READ, false},
    };
    for (const auto& [name, bytes, code, isKept] : kBadFiles) {
        KxImage<KxBW8> image(3, 2);
        FillPattern(image, 1);
        const KxImage<KxBW8> before(image);
        EXPECT_EQ(Load(image, bytes), code) << name;
        EXPECT_EQ(SamePixels(image, before), isKept) << name;
        EXPECT_EQ(Load(image, gray), KX_OK) << name;
    }
    const KxImage<KxBW8> tooWide(65501, 1);
    EXPECT_EQ(KxSaveImage(&tooWide, folder.File("b.jpg").c_str()), KX_ERROR_JPEG_WRITE);
}

TEST_F(Jpeg, NeverTakesACutFileForAWholeOne) {
    KxImage<KxC24> image;
    for (const Bytes& whole : {MakeJpeg(3), MakeJpeg(3, jpeg_simple_progression)}) {
        for (std::size_t length = whole.size() - 1; length > 37; length -= 37)
            EXPECT_EQ(Load(image, Bytes(whole.begin(), whole.begin() + length)), KX_ERROR_FILE_READ)
                << length;
        EXPECT_EQ(Load(image, Bytes(whole.begin(), whole.end() - 2)), KX_ERROR_FILE_READ);
        EXPECT_EQ(Load(image, whole), KX_OK);
    }
}

#ifndef __SANITIZE_ADDRESS__  // it takes memory of its own
// Lets the heap keep what it has, a little of it free, and grow no further.
void EndGrowthOfHeap() {
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    std::free(std::malloc(300000));
    const rlimit none{0, 0};
    setrlimit(RLIMIT_AS, &none);
}

TEST_F(Jpeg, NeedsMemory) {
    // Libjpeg keeps all coefficients of a progressive file, and eight rows of a file that is written.
    const Bytes progressive = MakeJpeg(1, [](j_compress_ptr info) {
        info->image_width = info->image_height = 2000;
        jpeg_simple_progression(info);
    });
    folder.Write("a.jpg", progressive);
    KxImage<KxBW8> image(2000, 2000);
    KxROI<KxBW8> region(&image, 0, 0, 2000, 2000);
    const KxImage<KxC24> wide(60000, 16);
    const std::pair<const char*, std::function<int()>> operations[] = {
        {"load", [&] { return KxLoadImage(&region, folder.File("a.jpg").c_str(), type); }},
        {"save", [&] { return KxSaveImage(&wide, folder.File("b.jpg").c_str()); }},
    };
    for (const auto& [name, operation] : operations) {
        const auto run = [&] {
            EndGrowthOfHeap();
            std::_Exit(operation() == KX_ERROR_ALLOCATION ? 0 : 1);
        };
        EXPECT_EXIT(run(), testing::ExitedWithCode(0), "") << name;
    }
}
#endif

template <class Pixel>
class JpegInto : public Jpeg {};
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
