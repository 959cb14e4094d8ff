// When the trace functions show a box, and what it says.
#include "kalvo/frame/kxtrace.h"

#include <gtest/gtest.h>

#include <tuple>

#include "kalvo/frame/kxerror.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo {
namespace {

class Trace : public testing::Test {
protected:
    Trace() { KxSetError(KX_ERROR_ORIGIN_IMAGE_TOO_SMALL); }
    ~Trace() override {
        KxSetTraceMode(KX_TRACE_MODE_MESSAGE);
        KxOk();
    }
    Testing::TraceRecorder traces;
};

TEST_F(Trace, ShowsFunctionOrSourceAndText) {
    EXPECT_EQ(KxTraceError("KxImage::SetSize"), KX_ERROR_ORIGIN_IMAGE_TOO_SMALL);
    KxSetTraceMode(KX_TRACE_MODE_FULL_MESSAGE);
    KxKxTraceTraceMode();
    KxTraceError("KxImage::SetSize");  // shows nothing: the caller reports, once
    EXPECT_EQ(KxTraceFullError("a", 7, "b"), KX_ERROR_ORIGIN_IMAGE_TOO_SMALL);
    EXPECT_EQ(KxGetTraceMode(), KX_TRACE_MODE_FULL_MESSAGE);
    ASSERT_EQ(traces.Boxes().size(), 2u);
    EXPECT_EQ(traces.Boxes()[0].text,
              "Function: KxImage::SetSize\nOrigin image too small - Use a larger image");
    EXPECT_EQ(traces.Boxes()[1].text, "File a, line 7\nb\nOrigin image too small - Use a larger image");
    for (const auto& box : traces.Boxes()) {
        EXPECT_EQ(box.caption, "KxTrace");
        EXPECT_EQ(box.style, 0x2030u);
    }
}

TEST_F(Trace, ShowsFailuresAsTheModeSays) {
    // Mode and code; boxes of the short form; boxes of the full form, and the mode it leaves.
    const std::tuple<int, int, unsigned, unsigned, int> kCases[] = {
        {0, 1000, 1, 0, 0}, {0, 999, 0, 0, 0},  {0, -1, 0, 0, 0},   {1, 1000, 0, 0, 1},
        {2, 1000, 1, 0, 2}, {3, 1000, 0, 0, 3}, {4, 1000, 0, 0, 0}, {5, 1000, 0, 0, 1},
        {6, 1000, 0, 1, 2}, {7, 1000, 0, 0, 3}, {6, 999, 0, 0, 6},  {256, 1000, 0, 0, 256},
    };
    for (const auto& [mode, code, boxes, fullBoxes, modeAfter] : kCases) {
        const Testing::TraceRecorder recorder;
        KxSetTraceMode(KX_TRACE_MODE{mode});
        KxSetError(KX_ERRORS{code});
        EXPECT_EQ(KxTraceError("f"), code);
        EXPECT_EQ(recorder.Boxes().size(), boxes) << mode;
        EXPECT_EQ(KxTraceFullError("a", 7, "b"), code);
        EXPECT_EQ(recorder.Boxes().size(), boxes + fullBoxes) << mode;
        EXPECT_EQ(KxGetTraceMode(), modeAfter) << mode;
    }
}

TEST_F(Trace, WithoutAHandlerGoesToStandardErrorInOneLine) {
    const Platform::MessageBoxHandler recorder = Platform::SetMessageBoxHandler(nullptr);
    testing::internal::CaptureStderr();
    KxTraceError("KxImage::SetSize");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "KxTrace: Function: KxImage::SetSize Origin image too small - Use a larger image\n");
    Platform::SetMessageBoxHandler(recorder);
}

}  // namespace
}  // namespace Zelkor::Kalvo
