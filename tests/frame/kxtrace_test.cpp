// When the trace functions show a box, and what it says.
#include "kalvo/frame/kxtrace.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>

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

    std::size_t CountOfBoxes() const { return traces.Boxes().size(); }

    Testing::TraceRecorder traces;
};

TEST_F(Trace, ShowsFunctionAndText) {
    EXPECT_EQ(KxTraceError("KxImage::SetSize"), KX_ERROR_ORIGIN_IMAGE_TOO_SMALL);
    ASSERT_EQ(CountOfBoxes(), 1u);
    EXPECT_EQ(traces.Boxes()[0].text,
              "Function: KxImage::SetSize\nOrigin image too small - Use a larger image");
    EXPECT_EQ(traces.Boxes()[0].caption, "KxTrace");
    EXPECT_EQ(traces.Boxes()[0].style, 0x2030u);
}

TEST_F(Trace, ShowsFailuresInModes0And2Only) {
    for (const int mode : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 256}) {
        KxSetTraceMode(KX_TRACE_MODE{mode});
        EXPECT_EQ(KxGetTraceMode(), mode);
        const std::size_t before = CountOfBoxes();
        for (const int code : {1000, 999, 107, 0, -1}) {
            KxSetError(KX_ERRORS{code});
            EXPECT_EQ(KxTraceError("f"), code);
        }
        EXPECT_EQ(CountOfBoxes() - before, mode == 0 || mode == 2 ? 1u : 0u) << mode;
    }
}

TEST_F(Trace, LetsTheCallerReportOnceWithItsSource) {
    KxSetTraceMode(KX_TRACE_MODE_FULL_MESSAGE);
    KxKxTraceTraceMode();
    EXPECT_EQ(KxTraceError("KxImage::SetSize"), KX_ERROR_ORIGIN_IMAGE_TOO_SMALL);
    EXPECT_EQ(CountOfBoxes(), 0u);
    EXPECT_EQ(KxTraceFullError("a", 7, "b"), 1405);
    ASSERT_EQ(CountOfBoxes(), 1u);
    EXPECT_EQ(traces.Boxes()[0].text, "File a, line 7\nb\nOrigin image too small - Use a larger image");
    EXPECT_EQ(traces.Boxes()[0].caption, "KxTrace");
    EXPECT_EQ(traces.Boxes()[0].style, 0x2030u);
    EXPECT_EQ(KxGetTraceMode(), KX_TRACE_MODE_FULL_MESSAGE);
}

TEST_F(Trace, ClearsTheCallerFlagOnFailuresOnly) {
    const struct {
        int mode, code, modeAfter;
        std::size_t boxes;
    } kCalls[] = {
        {4, 1000, 0, 0}, {5, 1000, 1, 0}, {6, 1000, 2, 1}, {7, 1000, 3, 0},
        {2, 1000, 2, 0}, {0, 1000, 0, 0}, {6, 999, 6, 0},  {4, 0, 4, 0},
    };
    for (const auto& call : kCalls) {
        const Testing::TraceRecorder recorder;
        KxSetTraceMode(KX_TRACE_MODE{call.mode});
        KxSetError(KX_ERRORS{call.code});
        EXPECT_EQ(KxTraceFullError("a", 7, "b"), call.code);
        EXPECT_EQ(KxGetTraceMode(), call.modeAfter) << call.mode;
        EXPECT_EQ(recorder.Boxes().size(), call.boxes) << call.mode;
    }
    KxSetError(KX_ERRORS{40000});
    EXPECT_EQ(KxTraceFullError("a", 7, "b"), -25536);
}

TEST_F(Trace, ModeBelongsToItsThread) {
    TraceSilent();
    EXPECT_EQ(KxGetTraceMode(), KX_TRACE_MODE_SILENT);
    std::thread([] {
        EXPECT_EQ(KxGetTraceMode(), KX_TRACE_MODE_MESSAGE);
        KxSetTraceMode(KX_TRACE_MODE_FULL_MESSAGE);
    }).join();
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
}  // namespace Zelkor::Kalvo
