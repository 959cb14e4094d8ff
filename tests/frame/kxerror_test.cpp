// The error slot, the texts of its codes, and how exceptions end in it.
#include "kalvo/frame/kxerror.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <thread>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/checkedsize.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo {
namespace {

std::string Narrow(const unsigned short* text) {
    std::string narrow;
    for (; *text; ++text) narrow.push_back(static_cast<char>(*text));
    return narrow;
}

TEST(ErrorSlot, HoldsACodeUntilItIsReset) {
    EXPECT_EQ(KxSetError(KX_ERROR_SIZE_MISMATCH), KX_ERROR_SIZE_MISMATCH);
    EXPECT_EQ(KxFailure(), 1);
    EXPECT_EQ(KxGetError(), KX_ERROR_SIZE_MISMATCH);
    EXPECT_STREQ(KxGetErrorText(), "Images not of the same size - Adjust image size( s)");
    EXPECT_EQ(Narrow(KxGetErrorTextUnicode()), KxGetErrorText());
    EXPECT_EQ(KxOk(), KX_OK);
    EXPECT_EQ(KxGetError(), KX_OK);
    EXPECT_STREQ(KxGetErrorText(), "Success");
}

TEST(ErrorSlot, CountsFailuresFrom1000Up) {
    for (const int code : {INT32_MIN, -1, 0, 106, 999, 1000, 1403, 32767, INT32_MAX}) {
        KxSetError(KX_ERRORS{code});
        EXPECT_EQ(KxSuccess(), code < 1000 ? 1 : 0) << code;
        EXPECT_EQ(KxFailure(), code < 1000 ? 0 : 1) << code;
    }
    KxOk();
}

TEST(ErrorText, NamesUnknownCodesAs16BitNumbers) {
    for (const auto& [code, text] : {std::pair{1211, "Unknown error code: 1211"},
                                     {40000, "Unknown error code: -25536"},
                                     {15101, "Unknown error code: 15101"},
                                     {-1, "Unknown error code: -1"}}) {
        EXPECT_STREQ(KxGetErrorText(KX_ERRORS{code}), text);
        EXPECT_EQ(Narrow(KxGetErrorTextUnicode(KX_ERRORS{code})), text);
    }
}

TEST(ErrorText, OfOneThreadIsNotOverwrittenByAnother) {
    const char* text = KxGetErrorText(KX_ERRORS{1211});
    const unsigned short* wideText = KxGetErrorTextUnicode(KX_OK);
    std::thread([] {
        KxGetErrorText(KX_ERRORS{40000});
        KxGetErrorTextUnicode(KX_ERROR_INTERNAL);
    }).join();
    EXPECT_STREQ(text, "Unknown error code: 1211");
    EXPECT_EQ(Narrow(wideText), "Success");
}

TEST(Boundary, TurnsExceptionsIntoCodesAndTraces) {
    const struct {
        void (*operation)();
        KX_ERRORS code;
    } kOperations[] = {
        {[] { throw Exception(KX_ERROR_ORIGIN_IMAGE_TOO_SMALL); }, KX_ERROR_ORIGIN_IMAGE_TOO_SMALL},
        {[] { throw std::bad_alloc(); }, KX_ERROR_ALLOCATION},
        {[] { throw std::runtime_error("other"); }, KX_ERROR_ARCHIVE_ACCESS},
        {[] { throw 1; }, KX_ERROR_ARCHIVE_ACCESS},
        {[] { CheckedSize(std::uint64_t{1} << 62, 2); }, KX_ERROR_BAD_FILE_FORMAT},
        {[] { CheckedSize(UINT64_MAX, UINT64_MAX, KX_ERROR_ALLOCATION); }, KX_ERROR_ALLOCATION},
    };
    for (const auto& [operation, code] : kOperations) {
        const Testing::TraceRecorder traces;
        KxOk();
        AtBoundary("KxThing::Do", operation, KX_ERROR_ARCHIVE_ACCESS);
        EXPECT_EQ(KxGetError(), code);
        EXPECT_EQ(traces.Functions(), std::vector<std::string>{"KxThing::Do"});
        AtBoundary(nullptr, operation);
        EXPECT_EQ(traces.Boxes().size(), 1u) << "without a name nothing is traced";
    }
    EXPECT_EQ(AtBoundary(nullptr, []() -> int { throw Exception(KX_ERROR_INTERNAL); }), 0);
    KxSetError(KX_WARNING_IMAGE_LIMITS_REACHED);
    EXPECT_EQ(AtBoundary("KxThing::Do", [] { return 7; }), 7);
    EXPECT_EQ(KxGetError(), KX_WARNING_IMAGE_LIMITS_REACHED) << "success leaves the slot alone";
    KxOk();
}

TEST(Exception, CarriesItsCodeAndText) {
    const Exception exception(KX_ERROR_ORIGIN_IMAGE_TOO_SMALL);
    const Zelkor::Exception& base = exception;
    EXPECT_STREQ(base.What(), "Origin image too small - Use a larger image");
    EXPECT_EQ(Exception(exception).GetError(), KX_ERROR_ORIGIN_IMAGE_TOO_SMALL);
}

}  // namespace
}  // namespace Zelkor::Kalvo
