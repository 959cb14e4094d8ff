#pragma once
// The high-resolution counter, the time of day, and integer scaling without overflow.

#include <cstdint>

#include "kalvo/base/kxexport.h"
#include "kalvo/base/win32types.h"

/// A 64-bit integer, also seen as its two halves.
union LARGE_INTEGER {
    struct {
        DWORD LowPart;
        LONG HighPart;
    } u;
    std::int64_t QuadPart;
};

/// How many counts `QueryPerformanceCounter` makes in a second; the same as long as the system runs.
/// 0, with nothing stored, when there is no such counter.
KX_API BOOL QueryPerformanceFrequency(LARGE_INTEGER* pFrequency);

/// The counts since an arbitrary moment; they never step back. 0, with nothing stored, when there is no
/// counter.
KX_API BOOL QueryPerformanceCounter(LARGE_INTEGER* pCount);

/// The date and time of day now, in UTC. Sunday is day 0 of a week.
KX_API void GetSystemTime(SYSTEMTIME* pTime);

/// n32Number * n32Numerator / n32Denominator by way of 64 bits, halves rounded away from zero. -1 when the
/// result does not fit in 32 bits or the denominator is 0.
KX_API int MulDiv(int n32Number, int n32Numerator, int n32Denominator);
