// Images: buffers, wrapping, copies, swapping, physical size.

#include "tests/support/test.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Image = KxImage<KxBW8>;
using Region = KxROI<KxBW8>;

template <class Pixel>
class ImageBuffer : public testing::Test {};
TYPED_TEST_SUITE(ImageBuffer, AllPixels);

TYPED_TEST(ImageBuffer, PadsRowsAndAlignsTheFirstPixel) {
    constexpr int kBits = PixelTraits<TypeParam>::kBitsPerPixel;
    for (KxImage<TypeParam> dirty(100, 10); dirty.GetWidth(); dirty.SetSize(0, 0))
        std::memset(dirty.GetGenericImagePtr(0, 0), 0xEE, static_cast<std::size_t>(dirty.GetImgPitch()));
    KxImage<TypeParam> image(100, 10);
    EXPECT_EQ(image.GetBitsPerRow(), (100 * kBits + 191) / 192 * 192);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(image.GetGenericImagePtr(0, 0)) % 32, 0u);
    const auto* first = static_cast<const std::uint8_t*>(image.GetGenericImagePtr(0, 0));
    EXPECT_EQ(image.GetImagePtr(13, 3), image.GetGenericImagePtr(13, 3));
    EXPECT_EQ(image.GetGenericImagePtr(13, 3), first + 13 * kBits / 8 + 3 * image.GetRowPitch());
    // Nothing that was left over in memory stands behind the pixels of a row.
    const int pixelBytes = (100 * kBits + 7) / 8;
    for (int y = 0; y < 10; ++y)
        for (int byte = pixelBytes; byte < image.GetRowPitch(); ++byte)
            ASSERT_EQ(first[y * image.GetRowPitch() + byte], 0);
    // The block reaches beyond the last row by at least eight bytes: address sanitizer watches.
    std::memset(image.GetGenericImagePtr(0, 0), 1, static_cast<std::size_t>(image.GetImgPitch()) + 8);
}

TYPED_TEST(ImageBuffer, IsCopiedDeeplyWhenOwnedAndSharedWhenNot) {
    std::uint8_t pixels[40 * 12] = {};
    KxImage<TypeParam> owner(30, 2), wrapper, copy;
    for (int x = 0; x < 30; ++x) owner.SetPixel(SamplePixel<TypeParam>(static_cast<unsigned>(x)), x, 1);
    copy = owner;
    EXPECT_NE(copy.GetGenericImagePtr(0, 0), owner.GetGenericImagePtr(0, 0));
    EXPECT_EQ(PixelBytes(copy), PixelBytes(owner));
    wrapper.SetImagePtr(30, 1, pixels);
    copy = wrapper;
    EXPECT_EQ(copy.GetGenericImagePtr(0, 0), pixels);
    EXPECT_EQ(copy.GetBitsPerRow(), (30 * owner.GetBitsPerPixel() + 31) / 32 * 32);
    copy = KxImage<TypeParam>();
    EXPECT_EQ(copy.Void(), 1);
}

TEST(ImageSize, KeepsPixelsOnlyWhenNothingChanges) {
    Image image(20, 10);
    image.SetPixel(99, 3, 3);
    image.SetSize(20, 10);
    EXPECT_EQ(image.GetPixel(3, 3), 99);
    image.SetRectangleMask(0, 0, 5, 5);
    image.SetSize(7, 8);
    EXPECT_EQ(image.GetExtent(), GenericRoiExtent(0, 0, 7, 8));
    EXPECT_EQ(image.GetMaskRuns().GetNumElements(), 0u);
}

TEST(ImageSize, RefusesWhatCannotBe) {
    TraceRecorder trace;
    Image image(5, 5);
    KxImage<KxC24> color(5, 5);
    const std::tuple<KxGenericROI*, int, int, KX_ERRORS> kSizes[] = {
        {&image, 65536, 65536, KX_ERROR_ORIGIN_IMAGE_TOO_BIG},
        {&color, 40000, 40000, KX_ERROR_ORIGIN_IMAGE_TOO_BIG},
        {&image, 0x40000001, 1, KX_ERROR_ORIGIN_IMAGE_TOO_BIG},
        {&image, 5, -1, KX_ERROR_PARAMETER_1_OUT_OF_RANGE},
    };
    for (const auto& [refusing, width, height, code] : kSizes) {
        refusing->SetSize(width, height);
        EXPECT_EQ(KxGetError(), code) << width << " x " << height;
        EXPECT_EQ(refusing->GetExtent(), GenericRoiExtent(0, 0, 5, 5));
    }
    EXPECT_EQ(trace.Functions(), Names(std::size(kSizes), "KxImage::SetSize"));
}

TEST(ImageWrapping, TakesTheCallersRows) {
    std::uint8_t pixels[80] = {};
    Image image(40, 40);
    const Region region(&image, 0, 0, 30, 5);
    image.SetImagePtr(10, 6, pixels);
    EXPECT_EQ(region.GetExtent(), GenericRoiExtent(0, 0, 10, 5));
    EXPECT_EQ(image.GetBitsPerRow(), 96);
    image.SetPixel(5, 2, 3);
    EXPECT_EQ(pixels[3 * 12 + 2], 5);
    image.SetImagePtr(pixels + 8, 8 * 8);
    EXPECT_EQ(image.GetExtent(), GenericRoiExtent(0, 0, 10, 6));
    EXPECT_EQ(image.GetRowPitch(), 8);
    image.SetImagePtr(nullptr);
    EXPECT_EQ(image.Void(), 1);
    EXPECT_EQ(image.GetImagePtr(3, 3), nullptr);
}

TEST(ImageCopy, MovesTheMaskAndClonesTheTree) {
    Image image(30, 30);
    const Region region(&image, 3, 4, 5, 6);
    image.SetRectangleMask(2, 1, 10, 3);
    const std::unique_ptr<Image> copy(image.CopyTo());
    ASSERT_EQ(copy->GetMaskRuns().GetNumElements(), 3u);
    EXPECT_EQ(copy->GetMaskRuns()[1].pBeg, copy->GetImagePtr(2, 2));
    EXPECT_EQ(copy->GetMaskRuns()[1].pEnd, copy->GetImagePtr(12, 2));
    const std::unique_ptr<KxGenericROI> clone(copy->GetFirstSubROI());
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->GetExtent(), region.GetExtent());
    EXPECT_EQ(clone->GetTopParent(), copy.get());

    image.SetMaskOffsets(1);
    image.SetRectangleMask(2, 1, 10, 3);
    const std::unique_ptr<Region> twin(image.CreateROIClone(0));
    EXPECT_EQ(twin->GetMaskRuns()[0], image.GetMaskRuns()[0]) << "offsets hold wherever the pixels are";
}

TEST(ImageCopy, KeepsABufferOfItsSize) {
    Image source(20, 10), destination(20, 10);
    source.SetPixel(7, 3, 3);
    const KxBW8* pixels = destination.GetImagePtr();
    destination = source;
    EXPECT_EQ(destination.GetImagePtr(), pixels);
    EXPECT_EQ(destination.GetPixel(3, 3), 7);
}

TEST(ImageSwap, ExchangesPixelsOfTheSameSize) {
    TraceRecorder trace;
    KxImage<KxC24> a(4, 4), b(4, 4), c(5, 4);
    a.SetPixel(KxRed24, 1, 1);
    b.SetPixel(KxBlue24, 1, 1);
    KxSwapImages(&a, &b);
    KxSwapImages(&a, &c);
    EXPECT_EQ(KxGetError(), KX_ERROR_SIZE_MISMATCH);
    EXPECT_EQ(trace.Functions(), Names{"KxSwapImages ( C24)"});
    EXPECT_EQ(a.GetPixel(1, 1), KxBlue24);
    EXPECT_EQ(b.GetPixel(1, 1), KxRed24);
}

TEST(ImagePixelSize, IsSharedByItsRegionsAndNeverZero) {
    TraceRecorder trace;
    Image image(10, 10);
    Region region(&image, 0, 0, 5, 5);
    float x = 0, y = 0;
    const KxMeasurementUnit* unit = nullptr;
    region.SetResolution(4, 8, &KxUnit_mm);
    image.SetResolution(0, 2, &KxUnit_cm);
    EXPECT_EQ(KxGetError(), KX_ERROR_PIXELS_FINITE_SIZE);
    KxOk();
    image.SetPixelDimensions(0, 0, &KxUnit_cm);
    EXPECT_EQ(KxGetError(), KX_ERROR_PIXELS_FINITE_SIZE);
    EXPECT_EQ(trace.Functions(), (Names{"KxGenericImage::SetResolution", "KxImage::SetPixelDimensions"}));
    image.GetPixelDimensions(x, y, unit);
    EXPECT_EQ(std::pair(x, y), std::pair(0.25f, 0.125f));
    EXPECT_STREQ(unit->GetName(), "mm");
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
