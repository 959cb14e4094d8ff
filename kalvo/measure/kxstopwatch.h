#pragma once
// A stopwatch for each thread.

#include "kalvo/base/kxexport.h"

/// Starts the calling thread's stopwatch.
KX_API void KxStartTiming();

/// The time since the calling thread's last `KxStartTiming`, in 1 / `n32Scale` seconds (1000: milliseconds),
/// truncated, and clamped to 32 bits. A thread that has not started measures from zero.
KX_API int KxStopTiming(int n32Scale);

/// The steps of the stopwatch in a second; 1000 when the machine has no high-resolution counter.
KX_API int KxTrueTimingResolution();
