// Readings of the high-resolution counter, or of the time of day where there is none. The last start, in any
// thread, decides for all which of them counts.

#include "kalvo/measure/kxstopwatch.h"

#include <algorithm>
#include <atomic>
#include <limits>

#include "kalvo/base/clock.h"
#include "kalvo/frame/kxthread.h"

namespace {

// Counts per second; 0 while the time of day is in use.
constinit std::atomic<std::int64_t> counterFrequency = 0;

// 0 when there is no counter.
std::int64_t QueryFrequency() {
    LARGE_INTEGER frequency;
    return QueryPerformanceFrequency(&frequency) ? frequency.QuadPart : 0;
}

void Read(KxTimeReading& reading, bool useCounter) {
    if (!useCounter) return GetSystemTime(&reading.m_SystemTime);
    LARGE_INTEGER count;
    if (QueryPerformanceCounter(&count)) reading.m_n64Counter = count.QuadPart;
}

// Months are of unequal length, so the days of one month are as far as this goes.
std::int64_t Milliseconds(const SYSTEMTIME& time) {
    return (((time.wDay * std::int64_t{24} + time.wHour) * 60 + time.wMinute) * 60 + time.wSecond) * 1000 +
           time.wMilliseconds;
}

long double ElapsedSeconds(const KxTimeReading& start, const KxTimeReading& stop, std::int64_t frequency) {
    if (frequency > 0) return static_cast<long double>(stop.m_n64Counter - start.m_n64Counter) / frequency;
    return (Milliseconds(stop.m_SystemTime) - Milliseconds(start.m_SystemTime)) / 1000.0L;
}

}  // namespace

void KxStartTiming() {
    OzzoTLSStruct* const record = KxGetTLSPtr();
    if (!record) return;
    const std::int64_t frequency = QueryFrequency();
    counterFrequency.store(frequency, std::memory_order_relaxed);
    Read(record->m_StartTime, frequency > 0);
}

int KxStopTiming(int n32Scale) {
    using Limits = std::numeric_limits<int>;
    OzzoTLSStruct* const record = KxGetTLSPtr();
    if (!record) return 0;
    const std::int64_t frequency = counterFrequency.load(std::memory_order_relaxed);
    Read(record->m_StopTime, frequency > 0);
    const long double elapsed = ElapsedSeconds(record->m_StartTime, record->m_StopTime, frequency) * n32Scale;
    return static_cast<int>(std::clamp<long double>(elapsed, Limits::min(), Limits::max()));
}

int KxTrueTimingResolution() {
    const std::int64_t frequency = QueryFrequency();
    return frequency > 0 ? static_cast<int>(frequency) : 1000;
}
