// The clock, integer scaling, thread-local slots and recursive locks.
#include "kalvo/platform/clock.h"

#include <gtest/gtest.h>

#include <climits>
#include <thread>
#include <tuple>

#include "kalvo/platform/criticalsection.h"
#include "kalvo/platform/tls.h"

namespace {

TEST(MulDiv, RoundsHalvesAwayFromZeroAndSaysWhenItCannot) {
    const std::tuple<int, int, int, int> cases[] = {
        {7, 1, 2, 4},
        {-7, 1, 2, -4},
        {7, -1, -2, 4},
        {7, 1, -3, -2},
        {1, 1, 3, 0},
        {2, 1, 3, 1},
        {12, 96, 72, 16},
        {5, 1, 0, -1},
        {0, 0, 0, -1},
        {1, 1, INT_MIN, 0},
        {INT_MIN, INT_MIN, INT_MIN, INT_MIN},
        {INT_MAX, INT_MAX, INT_MAX, INT_MAX},
        {INT_MIN, 1, -1, -1},
        {INT_MAX, 2, 1, -1},
        {INT_MIN, INT_MIN, 1, -1},
    };
    for (const auto& [number, numerator, denominator, result] : cases)
        EXPECT_EQ(MulDiv(number, numerator, denominator), result)
            << number << " * " << numerator << " / " << denominator;
}

TEST(Clock, CountsUpAndKnowsTheDate) {
    LARGE_INTEGER frequency, first, second;
    ASSERT_TRUE(QueryPerformanceFrequency(&frequency) && QueryPerformanceCounter(&first));
    ASSERT_TRUE(QueryPerformanceCounter(&second));
    EXPECT_GT(frequency.QuadPart, 0);
    EXPECT_GE(second.QuadPart, first.QuadPart);
    EXPECT_FALSE(QueryPerformanceCounter(nullptr));
    SYSTEMTIME now;
    std::time_t before = std::time(nullptr);
    GetSystemTime(&now);
    std::tm date{};
    date.tm_year = now.wYear - 1900;
    date.tm_mon = now.wMonth - 1;
    date.tm_mday = now.wDay;
    date.tm_hour = now.wHour;
    date.tm_min = now.wMinute;
    date.tm_sec = now.wSecond;
    EXPECT_NEAR(static_cast<double>(timegm(&date) - before), 1, 1);
    EXPECT_EQ(date.tm_wday, now.wDayOfWeek);
    EXPECT_LT(now.wMilliseconds, 1000);
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
    const auto canEnter = [&] {
        BOOL entered = 0;
        std::thread([&] {
            entered = TryEnterCriticalSection(&section);
            if (entered) LeaveCriticalSection(&section);
        }).join();
        return entered;
    };
    EnterCriticalSection(&section);
    EXPECT_TRUE(TryEnterCriticalSection(&section));
    LeaveCriticalSection(&section);
    EXPECT_FALSE(canEnter());
    LeaveCriticalSection(&section);
    EXPECT_TRUE(canEnter());
    DeleteCriticalSection(&section);
}

}  // namespace
