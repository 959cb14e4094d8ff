// The system's monotonic clock counts nanoseconds; its calendar is computed here.

#include "kalvo/base/clock.h"

#include <time.h>

#include <chrono>
#include <cstdlib>

namespace {

constexpr std::int64_t kCountsPerSecond = 1'000'000'000;

}  // namespace

BOOL QueryPerformanceFrequency(LARGE_INTEGER* pFrequency) {
    timespec resolution;
    if (!pFrequency || clock_getres(CLOCK_MONOTONIC, &resolution) != 0) return 0;
    pFrequency->QuadPart = kCountsPerSecond;
    return 1;
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* pCount) {
    timespec now;
    if (!pCount || clock_gettime(CLOCK_MONOTONIC, &now) != 0) return 0;
    pCount->QuadPart = now.tv_sec * kCountsPerSecond + now.tv_nsec;
    return 1;
}

void GetSystemTime(SYSTEMTIME* pTime) {
    using namespace std::chrono;
    const auto now = floor<milliseconds>(system_clock::now());
    const auto today = floor<days>(now);
    const year_month_day date(today);
    const hh_mm_ss timeOfDay(now - today);
    pTime->wYear = static_cast<WORD>(int{date.year()});
    pTime->wMonth = static_cast<WORD>(unsigned{date.month()});
    pTime->wDayOfWeek = static_cast<WORD>(weekday(today).c_encoding());
    pTime->wDay = static_cast<WORD>(unsigned{date.day()});
    pTime->wHour = static_cast<WORD>(timeOfDay.hours().count());
    pTime->wMinute = static_cast<WORD>(timeOfDay.minutes().count());
    pTime->wSecond = static_cast<WORD>(timeOfDay.seconds().count());
    pTime->wMilliseconds = static_cast<WORD>(timeOfDay.subseconds().count());
}

int MulDiv(int n32Number, int n32Numerator, int n32Denominator) {
    if (n32Denominator == 0) return -1;
    const std::int64_t product = std::int64_t{n32Number} * n32Numerator;
    const std::int64_t divisor = std::abs(std::int64_t{n32Denominator});
    const std::int64_t magnitude = (std::abs(product) + divisor / 2) / divisor;
    const std::int64_t result = (product < 0) == (n32Denominator < 0) ? magnitude : -magnitude;
    const bool fits = result == static_cast<std::int32_t>(result);
    return fits ? static_cast<int>(result) : -1;
}
