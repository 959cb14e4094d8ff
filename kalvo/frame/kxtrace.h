#pragma once
// Announcing failures in a message box.

#include <cstdint>

#include "kalvo/frame/kxerror.h"

/// What the trace functions show on the calling thread. Any other value is silent.
enum KX_TRACE_MODE : std::int32_t {
    KX_TRACE_MODE_MESSAGE = 0,       ///< a box for every failure; every thread starts so
    KX_TRACE_MODE_SILENT = 1,        ///< nothing is shown
    KX_TRACE_MODE_FULL_MESSAGE = 2,  ///< as MESSAGE; the caller's own trace may replace a box
    KX_TRACE_MODE_CALLER_TRACE =
        4,  ///< flag on top of 0 or 2: the caller will report the next failure itself
};

/// Sets the calling thread's trace mode.
KX_API void KxSetTraceMode(KX_TRACE_MODE eMode);

/// The calling thread's trace mode.
KX_API KX_TRACE_MODE KxGetTraceMode();

/// Announces the failure in the error slot, if there is one and the trace mode is 0 or 2: a box that names
/// the function and the error text. Every operation of the library calls this with its own name.
/// @return the code in the slot
KX_API KX_ERRORS KxTraceError(const char* pszFunctionName);

/// Announces the failure in the error slot with the caller's source file, line and statement, if the mode is
/// `KX_TRACE_MODE_FULL_MESSAGE` with the caller flag set. A failure clears the flag in any case.
/// @return the code in the slot
KX_API short KxTraceFullError(const char* pszFileName, int n32Line, const char* pszStatement);

/// Sets the caller flag: the library stays silent until the caller's `KxTraceFullError`.
KX_API void KxKxTraceTraceMode();

/// Makes the calling thread silent: `KxSetTraceMode(KX_TRACE_MODE_SILENT)`.
extern "C" KX_API void TraceSilent();
