// Reliefs: what is seen of them, and what is refused. The formulas are checked by fuzz/fuzz_views.cpp.

#include "tests/support/test.h"

namespace Zelkor::Kalvo::Testing {
namespace {

constexpr std::uint8_t kBack = 128;

TEST(Relief, SeenFromAboveIsTheImageAndFromTheSideHidesRows) {
    KxImage<KxBW8> source(1, 2), target(1, 2);
    SetPixelBytes(source, {7, 9});
    KxRender3D(&source, &target, 0, 0, 1, 1, 0, 1);
    EXPECT_EQ(PixelBytes(target), (Bytes{7, 9}));
    KxRender3D(&source, &target, -90, 0, 1, 1, 0, 1);  // both on one place, the last row in front
    EXPECT_EQ(PixelBytes(target), (Bytes{kBack, 9}));
    KxRender3D(&source, &target, 90, 0, 1, 1, 0, 1);
    EXPECT_EQ(PixelBytes(target), (Bytes{kBack, 7}));
}

TEST(Relief, RefusesWhatItCannotDrawAfterFillingTheBackground) {
    KxImage<KxBW8> gray(4, 4), small(4, 3), noGray, grayTarget(4, 4);
    KxImage<KxC24> color(4, 4), noColor, colorTarget(4, 4);
    const auto draw = [](auto*... images) {
        return [=](int size) { KxRender3D(images..., 0, 0, 1, 1, 1, size); };
    };
    const std::tuple<std::function<void(int)>, int, KX_ERRORS, KxGenericROI*> cases[] = {
        {draw(&noGray, &grayTarget), 2, KX_ERROR_IMAGE_MEMORY_ACCESS, &grayTarget},
        {draw(&gray, &noGray), 1, KX_ERROR_IMAGE_MEMORY_ACCESS, &noGray},
        {draw(&gray, &grayTarget), 2, KX_ERROR_PARAMETER_8_OUT_OF_RANGE, &grayTarget},
        {draw(&noColor, &gray, &colorTarget), 1, KX_ERROR_IMAGE_MEMORY_ACCESS, &colorTarget},
        {draw(&color, &noGray, &colorTarget), 1, KX_ERROR_IMAGE_MEMORY_ACCESS, &colorTarget},
        {draw(&color, &gray, &noColor), 1, KX_ERROR_IMAGE_MEMORY_ACCESS, &noColor},
        {draw(&color, &small, &colorTarget), 1, KX_ERROR_SIZE_MISMATCH, &colorTarget},
        {draw(&color, &gray, &colorTarget), 0, KX_ERROR_PARAMETER_8_OUT_OF_RANGE, &colorTarget},
    };
    for (const auto& [render, size, code, target] : cases) {
        const TraceRecorder traces;
        FillPattern(*target, 1);
        render(size);
        EXPECT_EQ(KxGetError(), code);
        const bool isGray = target->GetType() == KX_IMAGE_BW8;
        EXPECT_EQ(traces.Functions().at(0), isGray ? "KxRender3D ( Gray level)" : "KxRender3D ( Color)");
        const Bytes bytes = PixelBytes(*target);
        EXPECT_EQ(bytes, Bytes(bytes.size(), kBack));
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
