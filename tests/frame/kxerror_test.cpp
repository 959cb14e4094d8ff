// The error slot, the texts of its codes, and how exceptions end in it.

#include "tests/support/test.h"

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/checkedsize.h"

namespace Zelkor::Kalvo::Testing {
namespace {

TEST(ErrorSlot, CountsFailuresFrom1000Up) {
    for (const int code : {INT32_MIN, -1, 0, 999, 1000, 32767, INT32_MAX}) {
        EXPECT_EQ(KxSetError(KX_ERRORS{code}), code);
        EXPECT_EQ(KxGetError(), code);
        EXPECT_EQ(KxSuccess(), code < 1000 ? 1 : 0) << code;
        EXPECT_EQ(KxFailure(), code < 1000 ? 0 : 1) << code;
    }
    EXPECT_EQ(KxOk(), KX_OK);
    EXPECT_EQ(KxGetError(), KX_OK);
}

TEST(ErrorText, NamesUnknownCodesAs16BitNumbers) {
    for (const auto& [code, text] : {std::pair{0, "Success"},
                                     {1211, "Unknown error code: 1211"},
                                     {40000, "Unknown error code: -25536"},
                                     {-1, "Unknown error code: -1"}}) {
        KxSetError(KX_ERRORS{code});
        const char* narrow = KxGetErrorText();
        std::thread([] { KxGetErrorText(KX_ERRORS{1211}); }).join();  // has a text of its own
        EXPECT_STREQ(narrow, text);
        EXPECT_EQ(KxGetErrorTextUnicode(), Wide(text));
    }
}

TEST(Boundary, TurnsExceptionsIntoCodesAndTraces) {
    const std::pair<void (*)(), KX_ERRORS> kOperations[] = {
        {[] { throw Exception(KX_ERROR_ORIGIN_IMAGE_TOO_SMALL); }, KX_ERROR_ORIGIN_IMAGE_TOO_SMALL},
        {[] { throw std::bad_alloc(); }, KX_ERROR_ALLOCATION},
        {[] { throw 1; }, KX_ERROR_ARCHIVE_ACCESS},
        {[] { CheckedSize(std::uint64_t{1} << 62, 2); }, KX_ERROR_BAD_FILE_FORMAT},
        {[] { CheckedSize(UINT64_MAX, UINT64_MAX, KX_ERROR_ALLOCATION); }, KX_ERROR_ALLOCATION},
    };
    for (const auto& [operation, code] : kOperations) {
        const TraceRecorder traces;
        AtBoundary("KxThing::Do", operation, KX_ERROR_ARCHIVE_ACCESS);
        EXPECT_EQ(KxGetError(), code);
        AtBoundary(nullptr, operation);  // without a name nothing is traced
        EXPECT_EQ(traces.Functions(), Names{"KxThing::Do"});
    }
    KxSetError(KX_WARNING_IMAGE_LIMITS_REACHED);
    EXPECT_EQ(AtBoundary("KxThing::Do", [] { return 7; }), 7);
    EXPECT_EQ(KxGetError(), KX_WARNING_IMAGE_LIMITS_REACHED) << "success leaves the slot alone";
    EXPECT_EQ(AtBoundary(nullptr, []() -> int { throw Exception(KX_ERROR_INTERNAL); }), 0);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
