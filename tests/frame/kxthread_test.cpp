// The per-thread record from first use to thread end, the library's life cycle, and its settings.

#include "tests/support/test.h"

#include "kalvo/frame/thread_slot.h"

namespace Zelkor::Kalvo::Testing {
namespace {

void ExpectFreshRecord(const OzzoTLSStruct& record) {
    EXPECT_EQ(record.m_eError, KX_OK);
    EXPECT_EQ(record.m_eTraceMode, KX_TRACE_MODE_MESSAGE);
    for (const KxLogicalPalette& palette : {record.m_GrayPalette, record.m_ColorPalette}) {
        EXPECT_EQ(palette.m_un16Version, 0x300);
        EXPECT_EQ(palette.m_un16NumEntries, 0);
    }
    EXPECT_FALSE(record.m_hGrayPalette || record.m_hColorPalette || record.m_hPreviousPalette ||
                 record.m_hImageDC);
    EXPECT_EQ(record.m_un32JpegQuality, 50u);
    EXPECT_EQ(record.m_un8TiffThreshold, 128);
    EXPECT_EQ(record.m_un32TiffStripSize, 8192u);
}

void ChangeEverything() {
    KxSetError(KX_ERROR_ALLOCATION);
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    KxSetJpegQuality(75);
    KxSetTiffThreshold(300);
    KxSetTiffStripSize(0);
}

TEST(ThreadRecord, StartsFreshWhateverOtherThreadsHold) {
    std::thread([] {
        ChangeEverything();
        std::thread([] { ExpectFreshRecord(*KxGetTLSPtr()); }).join();
        const OzzoTLSStruct& record = *KxGetTLSPtr();
        EXPECT_EQ(record.m_eError, KX_ERROR_ALLOCATION);
        EXPECT_EQ(record.m_un8TiffThreshold, 44) << "the low 8 bits of 300";
    }).join();
}

TEST(ThreadRecord, IsReleasedAndMadeAgain) {
    std::thread([] {
        EXPECT_EQ(DllMain(nullptr, kThreadDetach, nullptr), 1) << "a thread without a record may detach";
        ChangeEverything();
        CloseThreadLocalStorage();
        ExpectFreshRecord(*KxGetTLSPtr());
        ChangeEverything();
        DllMain(nullptr, kThreadDetach, nullptr);
        ExpectFreshRecord(*KxGetTLSPtr());
        OzzoTLSStruct* earlier = KxGetTLSPtr();
        InitializeThreadLocalStorage();
        EXPECT_NE(KxGetTLSPtr(), earlier);
        delete earlier;  // replaced without being released
    }).join();
}

TEST(ThreadRecord, StartsWithTheFailureThatFoundNoMemoryForIt) {
    const auto failureAfter = [](auto operation) {
        KX_ERRORS failure = KX_OK;
        std::thread([&] {
            {
                const ShortMemory shortage;
                operation();
                EXPECT_EQ(KxGetTLSPtr(), nullptr);
                EXPECT_EQ(KxGetError(), KX_ERROR_CANNOT_TRACE);
            }
            failure = KxGetError();
            KxOk();
            ExpectFreshRecord(*KxGetTLSPtr());
        }).join();
        return failure;
    };
    EXPECT_EQ(failureAfter([] { KxSetError(KX_ERROR_SIZE_MISMATCH); }), KX_ERROR_SIZE_MISMATCH);
    EXPECT_EQ(failureAfter([] { KxSetError(static_cast<KX_ERRORS>(INT_MIN)); }), INT_MIN);
    EXPECT_EQ(failureAfter([] { KxSetJpegQuality(75); }), KX_ERROR_CANNOT_TRACE) << "the quality is lost";
    EXPECT_EQ(failureAfter([] { KxSetJpegQuality(75), KxOk(); }), KX_OK);
}

TEST(Library, WorksAgainAfterItWasDetached) {
    ChangeEverything();
    OzzoTLSStruct* const loadingThreadRecord = KxGetTLSPtr();
    DllMain(nullptr, kProcessAttach, nullptr);
    EXPECT_EQ(KxGetError(), KX_ERROR_ALLOCATION) << "it is attached already";

    for (int i = 0; i < 2; ++i) EXPECT_EQ(DllMain(nullptr, kProcessDetach, nullptr), 1);
    const TraceRecorder traces;
    EXPECT_EQ(KxGetTLSPtr(), nullptr);
    ChangeEverything();
    EXPECT_EQ(KxGetError(), KX_ERROR_CANNOT_TRACE);
    EXPECT_EQ(KxTraceError("f"), KX_ERROR_CANNOT_TRACE);
    EXPECT_EQ(KxTraceFullError("a", 7, "b"), KX_ERROR_CANNOT_TRACE);
    EXPECT_TRUE(traces.Boxes().empty());
    KxKxTraceTraceMode();
    InitializeThreadLocalStorage();
    CloseThreadLocalStorage();
    std::thread([] { EXPECT_EQ(KxGetError(), KX_ERROR_CANNOT_TRACE); }).join();

    EXPECT_EQ(KxInternalDllMain(nullptr, kProcessAttach, nullptr), 1);
    EXPECT_EQ(KxGetTLSPtr(), loadingThreadRecord);
    ExpectFreshRecord(*loadingThreadRecord);
    DllMain(nullptr, kThreadDetach, nullptr);
    EXPECT_NE(KxGetTLSPtr(), loadingThreadRecord) << "its static record is kept, not released";
    DllMain(nullptr, kProcessDetach, nullptr);
    DllMain(nullptr, kProcessAttach, nullptr);
    EXPECT_EQ(KxGetTLSPtr(), loadingThreadRecord);
}

TEST(Library, TellsItsVersion) {
    EXPECT_STREQ(KxGetVersion(), "6.7.1.0");
    EXPECT_EQ(KxGetVersionUnicode(), Wide("6.7.1.0"));
}

TEST(Library, HoldsProcessWideSettings) {
    SetRecursiveCopyBehavior(0);
    std::thread([] { EXPECT_EQ(KxGetRecursiveCopyBehavior(), 0); }).join();
    KxSetRecursiveCopyBehavior(1);
    EXPECT_EQ(GetRecursiveCopyBehavior(), 1);
    const int mmx = KxGetMMX();
    KxSetMMX(0);
    EXPECT_EQ(KxGetMMX(), 0);
    KxSetMMX(mmx);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
