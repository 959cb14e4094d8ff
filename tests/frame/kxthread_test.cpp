// The per-thread record from first use to thread end, the library's life cycle, and its settings.
#include "kalvo/frame/kxthread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "kalvo/frame/kxlibrary.h"
#include "kalvo/platform/cpu.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo {
namespace {

void ExpectFreshRecord(const OzzoTLSStruct& record) {
    EXPECT_EQ(record.m_eError, KX_OK);
    EXPECT_EQ(record.m_eTraceMode, KX_TRACE_MODE_MESSAGE);
    for (const KxLogicalPalette& palette : {record.m_GrayPalette, record.m_ColorPalette}) {
        EXPECT_EQ(palette.m_un16Version, 0x300);
        EXPECT_EQ(palette.m_un16NumEntries, 0);
    }
    EXPECT_EQ(record.m_hGrayPalette, nullptr);
    EXPECT_EQ(record.m_hColorPalette, nullptr);
    EXPECT_EQ(record.m_hPreviousPalette, nullptr);
    EXPECT_EQ(record.m_hImageDC, nullptr);
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

template <class Operation>
void OnAnotherThread(Operation operation) {
    std::thread(operation).join();
}

enum Reason : unsigned long { kProcessDetach, kProcessAttach, kThreadAttach, kThreadDetach };

TEST(ThreadRecord, StartsFreshWhateverOtherThreadsHold) {
    OnAnotherThread([] {
        ChangeEverything();
        OnAnotherThread([] { ExpectFreshRecord(*KxGetTLSPtr()); });
        const OzzoTLSStruct& record = *KxGetTLSPtr();
        EXPECT_EQ(record.m_eError, KX_ERROR_ALLOCATION);
        EXPECT_EQ(record.m_eTraceMode, KX_TRACE_MODE_SILENT);
        EXPECT_EQ(record.m_un32JpegQuality, 75u);
        EXPECT_EQ(record.m_un8TiffThreshold, 44) << "the low 8 bits of 300";
        EXPECT_EQ(record.m_un32TiffStripSize, 0u);
    });
}

// With a leak checker or a race checker underneath, this says more than its one expectation.
TEST(ThreadRecord, BelongsToOneOfManyThreads) {
    std::atomic<int> foreignCodes = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number)
        threads.emplace_back([number, &foreignCodes] {
            for (int i = 0; i < 1000; ++i) {
                const KX_ERRORS code{1000 * number + i};
                KxSetError(code);
                KxSetTiffThreshold(static_cast<unsigned>(i));
                if (KxGetError() != code) ++foreignCodes;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(foreignCodes, 0);
}

TEST(ThreadRecord, IsReleasedAndMadeAgain) {
    OnAnotherThread([] {
        EXPECT_EQ(DllMain(nullptr, kThreadDetach, nullptr), 1) << "a thread without a record may detach";
        ChangeEverything();
        CloseThreadLocalStorage();
        ExpectFreshRecord(*KxGetTLSPtr());
        ChangeEverything();
        DllMain(nullptr, kThreadAttach, nullptr);
        EXPECT_EQ(KxGetError(), KX_ERROR_ALLOCATION) << "attaching a thread changes nothing";
        DllMain(nullptr, kThreadDetach, nullptr);
        ExpectFreshRecord(*KxGetTLSPtr());
    });
}

TEST(ThreadRecord, IsReplacedWithoutReleasingTheEarlierOne) {
    OnAnotherThread([] {
        ChangeEverything();
        OzzoTLSStruct* earlier = KxGetTLSPtr();
        InitializeThreadLocalStorage();
        EXPECT_NE(KxGetTLSPtr(), earlier);
        ExpectFreshRecord(*KxGetTLSPtr());
        EXPECT_EQ(earlier->m_eError, KX_ERROR_ALLOCATION);
        delete earlier;
    });
}

TEST(Library, WorksAgainAfterItWasDetached) {
    ChangeEverything();
    OzzoTLSStruct* const loadingThreadRecord = KxGetTLSPtr();
    EXPECT_EQ(DllMain(nullptr, kProcessAttach, nullptr), 1);
    EXPECT_EQ(KxGetError(), KX_ERROR_ALLOCATION) << "it is attached already";

    for (int i = 0; i < 2; ++i) EXPECT_EQ(DllMain(nullptr, kProcessDetach, nullptr), 1);
    const Testing::TraceRecorder traces;
    EXPECT_EQ(KxGetTLSPtr(), nullptr);
    EXPECT_EQ(KxSetError(KX_ERROR_TIMEOUT), KX_ERROR_TIMEOUT);
    EXPECT_EQ(KxGetError(), KX_ERROR_CANNOT_TRACE);
    EXPECT_EQ(KxTraceError("f"), KX_ERROR_CANNOT_TRACE);
    EXPECT_EQ(KxTraceFullError("a", 7, "b"), KX_ERROR_CANNOT_TRACE);
    EXPECT_TRUE(traces.Boxes().empty());
    ChangeEverything();
    KxKxTraceTraceMode();
    InitializeThreadLocalStorage();
    CloseThreadLocalStorage();
    OnAnotherThread([] { EXPECT_EQ(KxGetError(), KX_ERROR_CANNOT_TRACE); });

    EXPECT_EQ(KxInternalDllMain(nullptr, kProcessAttach, nullptr), 1);
    EXPECT_EQ(KxGetTLSPtr(), loadingThreadRecord);
    ExpectFreshRecord(*loadingThreadRecord);
    OnAnotherThread([] { ExpectFreshRecord(*KxGetTLSPtr()); });
    EXPECT_EQ(KxInternalDllMain(nullptr, 99, nullptr), 1);
    EXPECT_EQ(KxGetTLSPtr(), loadingThreadRecord);
}

TEST(Library, KeepsTheLoadingThreadsStaticRecordWhenThatThreadDetaches) {
    OzzoTLSStruct* const loadingThreadRecord = KxGetTLSPtr();
    DllMain(nullptr, kThreadDetach, nullptr);
    EXPECT_NE(KxGetTLSPtr(), loadingThreadRecord);
    ExpectFreshRecord(*KxGetTLSPtr());
    DllMain(nullptr, kProcessDetach, nullptr);
    DllMain(nullptr, kProcessAttach, nullptr);
    EXPECT_EQ(KxGetTLSPtr(), loadingThreadRecord);
}

TEST(Library, TellsItsVersion) {
    EXPECT_STREQ(KxGetVersion(), "6.7.1.0");
    const std::string kVersion = KxGetVersion();
    EXPECT_EQ(std::basic_string<unsigned short>(KxGetVersionUnicode()),
              std::basic_string<unsigned short>(kVersion.begin(), kVersion.end()));
}

TEST(Library, HoldsProcessWideSettings) {
    EXPECT_EQ(KxGetRecursiveCopyBehavior(), 1);
    SetRecursiveCopyBehavior(0);
    EXPECT_EQ(KxGetRecursiveCopyBehavior(), 0);
    OnAnotherThread([] { EXPECT_EQ(GetRecursiveCopyBehavior(), 0); });
    KxSetRecursiveCopyBehavior(1);
    EXPECT_EQ(GetRecursiveCopyBehavior(), 1);

    EXPECT_EQ(KxGetMMX(), Platform::HasMmx() ? 1 : 0);
    KxSetMMX(0);
    EXPECT_EQ(KxGetMMX(), 0);
    KxSetMMX(Platform::HasMmx());
}

TEST(Library, LendsItsHeap) {
    void* block = Kalvo_Malloc(100);
    ASSERT_NE(block, nullptr);
    Kalvo_Free(block);
    Kalvo_Free(nullptr);
}

}  // namespace
}  // namespace Zelkor::Kalvo
