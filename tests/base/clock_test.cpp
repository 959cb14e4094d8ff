// The clock, integer scaling, thread-local slots and recursive locks.

#include "tests/support/test.h"

namespace {

TEST(MulDiv, RoundsHalvesAwayFromZeroAndSaysWhenItCannot) {
    constexpr int kMin = INT_MIN, kMax = INT_MAX;
    const int cases[][4] = {
        {7, 1, 2, 4},      {-7, 1, 2, -4},           {7, 1, -3, -2},
        {1, 1, 3, 0},      {2, -1, -3, 1},           {5, 1, 0, -1},
        {1, 1, kMin, 0},   {kMin, kMin, kMin, kMin}, {kMax, kMax, kMax, kMax},
        {kMin, 1, -1, -1}, {kMin, kMin, 1, -1},
    };
    for (const auto& [number, numerator, denominator, result] : cases)
        EXPECT_EQ(MulDiv(number, numerator, denominator), result)
            << number << " * " << numerator << " / " << denominator;
}

TEST(Clock, CountsUpAndKnowsTheDate) {
    LARGE_INTEGER frequency, first, second;
    ASSERT_TRUE(QueryPerformanceFrequency(&frequency) && QueryPerformanceCounter(&first));
    ASSERT_TRUE(QueryPerformanceCounter(&second));
    EXPECT_TRUE(frequency.QuadPart > 0 && second.QuadPart >= first.QuadPart);
    SYSTEMTIME now;
    GetSystemTime(&now);
    using namespace std::chrono;
    const sys_days day = year{now.wYear} / now.wMonth / now.wDay;
    const auto time =
        day + hours{now.wHour} + minutes{now.wMinute} + milliseconds{1000 * now.wSecond + now.wMilliseconds};
    EXPECT_LE(abs(time - system_clock::now()), seconds{2});
    EXPECT_EQ(weekday{day}.c_encoding(), now.wDayOfWeek);
}

TEST(Tls, KeepsOneValuePerThreadAndSlot) {
    int mine = 0, other = 0;
    const DWORD slot = TlsAlloc();
    ASSERT_NE(slot, TLS_OUT_OF_INDEXES);
    EXPECT_EQ(TlsGetValue(slot), nullptr);
    EXPECT_TRUE(TlsSetValue(slot, &mine));
    std::thread([&] {
        EXPECT_EQ(TlsGetValue(slot), nullptr);
        EXPECT_TRUE(TlsSetValue(slot, &other));
    }).join();
    EXPECT_EQ(TlsGetValue(slot), &mine);
    EXPECT_TRUE(TlsFree(slot));
    for (const DWORD none : {slot, TLS_OUT_OF_INDEXES}) {
        EXPECT_FALSE(TlsFree(none));
        EXPECT_FALSE(TlsSetValue(none, &mine));
        EXPECT_EQ(TlsGetValue(none), nullptr);
    }
}

TEST(CriticalSection, LetsOneThreadInAgain) {
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    for (int entries = 0; entries < 3; ++entries) {
        for (int i = 0; i < entries; ++i) EnterCriticalSection(&section);
        std::thread([&] {
            EXPECT_EQ(TryEnterCriticalSection(&section), entries == 0);
            if (entries == 0) LeaveCriticalSection(&section);
        }).join();
        for (int i = 0; i < entries; ++i) LeaveCriticalSection(&section);
    }
    DeleteCriticalSection(&section);
}

}  // namespace
