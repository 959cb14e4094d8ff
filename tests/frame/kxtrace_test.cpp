// When the trace functions show a box, and what it says.

#include "tests/support/test.h"

namespace Zelkor::Kalvo::Testing {
namespace {

class Trace : public testing::Test {
protected:
    Trace() { KxSetError(KX_ERROR_ORIGIN_IMAGE_TOO_SMALL); }
    ~Trace() override {
        KxSetTraceMode(KX_TRACE_MODE_MESSAGE);
        KxOk();
    }
    TraceRecorder traces;
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
    constexpr int kMessage = KX_TRACE_MODE_MESSAGE, kSilent = KX_TRACE_MODE_SILENT,
                  kFull = KX_TRACE_MODE_FULL_MESSAGE, kCaller = KX_TRACE_MODE_CALLER_TRACE;
    constexpr int kWarning = 999, kFailure = 1000;
    // Mode and code; boxes of the short form; boxes of the full form, and the mode it leaves.
    const std::tuple<int, int, unsigned, unsigned, int> kCases[] = {
        {kMessage, kFailure, 1, 0, kMessage},
        {kMessage, kWarning, 0, 0, kMessage},
        {kMessage, -1, 0, 0, kMessage},
        {kSilent, kFailure, 0, 0, kSilent},
        {kFull, kFailure, 1, 0, kFull},
        {3, kFailure, 0, 0, 3},
        {kMessage + kCaller, kFailure, 0, 0, kMessage},
        {kFull + kCaller, kFailure, 0, 1, kFull},
        {kFull + kCaller, kWarning, 0, 0, kFull + kCaller},
        {256, kFailure, 0, 0, 256},
    };
    for (const auto& [mode, code, boxes, fullBoxes, modeAfter] : kCases) {
        const TraceRecorder recorder;
        KxSetTraceMode(KX_TRACE_MODE{mode});
        KxSetError(KX_ERRORS{code});
        EXPECT_EQ(KxTraceError("f"), code);
        EXPECT_EQ(recorder.Boxes().size(), boxes) << mode;
        EXPECT_EQ(KxTraceFullError("a", 7, "b"), code);
        EXPECT_EQ(recorder.Boxes().size(), boxes + fullBoxes) << mode;
        EXPECT_EQ(KxGetTraceMode(), modeAfter) << mode;
    }
}

TEST_F(Trace, IsSilencedByName) {
    TraceSilent();
    EXPECT_EQ(KxGetTraceMode(), KX_TRACE_MODE_SILENT);
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
}  // namespace Zelkor::Kalvo::Testing
