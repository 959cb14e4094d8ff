// Resampling: foreign buffers, destinations, and what is refused. Which pixels are taken is checked by
// fuzz/fuzz_views.cpp.

#include "tests/support/test.h"

namespace Zelkor::Kalvo::Testing {
namespace {

TEST(ResizeRegion, TakesUpsideDownRowsOfForeignBuffers) {
    Bytes pixels{1, 2, 3, 4, 5, 6, 7, 8};
    KxImage<KxBW8> image, destination(2, 4);
    image.SetImagePtr(2, 2, &pixels[4], -32);
    KxResize(&image, &destination);
    EXPECT_EQ(PixelBytes(destination), (Bytes{5, 6, 5, 6, 1, 2, 1, 2}));
}

TEST(ResizeRegion, RefusesRegionsWithoutPixels) {
    const TraceRecorder traces;
    KxImage<KxBW8> image(3, 3), empty;
    KxROI<KxBW8> detached, flat(&image, 3, 0, 0, 3);
    FillPattern(image, 1);
    const Bytes pixels = PixelBytes(image);
    for (const auto& [source, destination] : {std::pair<KxROI<KxBW8>*, KxROI<KxBW8>*>(&empty, &image),
                                              {&image, &empty},
                                              {&detached, &image},
                                              {&flat, &image}}) {
        KxOk();
        KxResize(source, destination);
        EXPECT_EQ(KxGetError(), KX_ERROR_IMAGE_MEMORY_ACCESS);
    }
    EXPECT_EQ(PixelBytes(image), pixels);
    EXPECT_EQ(traces.Functions(), Names(4, "KxResize"));
    KxResize(&image, &flat);
    EXPECT_EQ(KxGetError(), KX_OK);
}

TEST(Rescale, RoundsTheSizeAndReplacesPixelsWhateverTheDestinationWas) {
    KxImage<KxBW8> source(5, 5), own(2, 2), wrapped;
    Bytes foreign(9, 7), pixels(25);
    for (int i = 0; i < 25; ++i) pixels[i] = static_cast<std::uint8_t>(i);
    SetPixelBytes(source, pixels);
    wrapped.SetImagePtr(3, 3, foreign.data(), 24);
    KxROI<KxBW8> child(&own, 1, 1, 1, 1);
    own.SetRectangleMask(0, 0, 1, 1);
    const Bytes half{0, 1, 3, 5, 6, 8, 15, 16, 18};
    for (KxImage<KxBW8>* destination : {&own, &wrapped}) {
        ImgRescale(&source, destination, 0.5f, 0.5f);
        EXPECT_EQ(KxGetError(), KX_OK);
        EXPECT_EQ(destination->GetExtent(), GenericRoiExtent(0, 0, 3, 3));
        EXPECT_EQ(PixelBytes(*destination), half);
    }
    EXPECT_EQ(foreign, Bytes(9, 7));
    EXPECT_EQ(own.GetMaskRuns().GetNumElements(), 0u);
    EXPECT_EQ(child.GetPixel(0, 0), 6);
    ImgRescale(&source, 0.5f, 0.5f);
    EXPECT_EQ(PixelBytes(source), half);
    ImgRescale(&source, nullptr, 2, 1.2f);
    EXPECT_EQ(source.GetExtent(), GenericRoiExtent(0, 0, 6, 4));
    EXPECT_EQ(source.GetPixel(5, 3), 18);
}

TEST(Rescale, KeepsAMaskOfOffsetsForTheSameSizeAndLeavesNoErrorOfClippedChildren) {
    const TraceRecorder quiet;
    KxImage<KxBW8> source(6, 4), destination(6, 4);
    for (const int offsets : {1, 0}) {
        destination.SetMaskOffsets(offsets);
        destination.SetRectangleMask(1, 1, 3, 2);
        ImgRescale(&source, &destination, 1, 1);
        EXPECT_EQ(destination.GetMaskRuns().GetNumElements(), offsets ? 2u : 0u);
    }
    KxROI<KxBW8> beyond(&destination, 5, 0, 1, 1);
    ImgRescale(&source, &destination, 0.5f, 0.5f);
    EXPECT_EQ(KxGetError(), KX_OK);
    EXPECT_EQ(beyond.GetExtent(), GenericRoiExtent(0, 0, 3, 2));
}

TEST(Rescale, RefusesImpossibleSizesAndKeepsTheDestination) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    KxImage<KxC24> source(4, 4), empty, destination(2, 1);
    SetPixelBytes(destination, {1, 2, 3, 4, 5, 6});
    const std::tuple<KxImage<KxC24>*, float, float, KX_ERRORS, Names> cases[] = {
        {&empty, 1.f, 1.f, KX_ERROR_IMAGE_MEMORY_ACCESS, {"ImgRescale"}},
        {&source, 0.1f, 0.1f, KX_ERROR_IMAGE_MEMORY_ACCESS, {"KxResize", "ImgRescale"}},
        {&source, 1.f, -1.f, KX_ERROR_IMAGE_MEMORY_ACCESS, {"KxResize", "ImgRescale"}},
        {&source,
         std::numeric_limits<float>::quiet_NaN(),
         1.f,
         KX_ERROR_IMAGE_MEMORY_ACCESS,
         {"KxResize", "ImgRescale"}},
        {&source, 1.f, kInfinity, KX_ERROR_ORIGIN_IMAGE_TOO_BIG, {"ImgRescale"}},
        {&source, 536870912.f, 1.f, KX_ERROR_ORIGIN_IMAGE_TOO_BIG, {"ImgRescale"}},
        {&source, 536870848.f, 1.f, KX_ERROR_ORIGIN_IMAGE_TOO_BIG, {"KxImage::SetSize", "ImgRescale"}},
    };
    for (const auto& [from, scaleX, scaleY, code, names] : cases) {
        const TraceRecorder traces;
        ImgRescale(from, &destination, scaleX, scaleY);
        EXPECT_EQ(KxGetError(), code) << scaleX << ", " << scaleY;
        EXPECT_EQ(traces.Functions(), names) << scaleX << ", " << scaleY;
        EXPECT_EQ(PixelBytes(destination), (Bytes{1, 2, 3, 4, 5, 6}));
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
