#pragma once
// The edge of the library: what is thrown inside becomes a code in the error slot and a trace.

#include <type_traits>
#include <utility>

#include "kalvo/frame/kxexception.h"
#include "kalvo/frame/kxtrace.h"

namespace Zelkor::Kalvo {

// The code of the exception being handled: its own, 1303 when memory ran out, `unexpected` for any other.
KX_ERRORS CurrentExceptionError(KX_ERRORS unexpected) noexcept;

// Stores the code of the exception being handled, then traces under `traceName` unless that is null.
void ReportCurrentException(const char* traceName, KX_ERRORS unexpected) noexcept;

// Runs `operation` and returns its result. When it throws, the code is stored and traced, and the neutral
// result (0, null, false) returned.
template <class Operation>
auto AtBoundary(const char* traceName, Operation&& operation,
                KX_ERRORS unexpected = KX_ERROR_INTERNAL) noexcept -> std::invoke_result_t<Operation> {
    try {
        return std::forward<Operation>(operation)();
    } catch (...) {
        ReportCurrentException(traceName, unexpected);
    }
    return std::invoke_result_t<Operation>();
}

// As `AtBoundary`, for an operation that traces its own name inside another: the exception goes on.
template <class Operation>
auto AtTracePoint(const char* traceName, Operation&& operation) -> std::invoke_result_t<Operation> {
    try {
        return std::forward<Operation>(operation)();
    } catch (...) {
        ReportCurrentException(traceName, KX_ERROR_INTERNAL);
        throw;
    }
}

// Stores `error` and traces it: a failure that needs no unwinding.
inline void Report(KX_ERRORS error, const char* traceName) {
    KxSetError(error);
    KxTraceError(traceName);
}

}  // namespace Zelkor::Kalvo
