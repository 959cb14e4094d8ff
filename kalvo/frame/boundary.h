#pragma once
// The edges of the library: what is thrown inside becomes a code in the error slot and a trace, and what code
// of the caller stored there is thrown inside. No other file catches exceptions.

#include <type_traits>
#include <utility>

#include "kalvo/frame/kxerror.h"
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

// Runs `operation` and returns its result, or the neutral one when it throws: for edges that tell no reason.
template <class Operation>
auto OrNeutral(Operation&& operation) noexcept -> std::invoke_result_t<Operation> {
    try {
        return std::forward<Operation>(operation)();
    } catch (...) {
    }
    return std::invoke_result_t<Operation>();
}

// Runs `operation` and returns the code of what it throws; KX_OK when it throws nothing.
template <class Operation>
KX_ERRORS ErrorOf(Operation&& operation, KX_ERRORS unexpected = KX_ERROR_INTERNAL) noexcept {
    try {
        std::forward<Operation>(operation)();
    } catch (...) {
        return CurrentExceptionError(unexpected);
    }
    return KX_OK;
}

// Runs `operation`, which calls a virtual member that the caller's class may have replaced: those tell their
// failures in the slot. Throws what it stores there, unless that is `harmless`; when it stores nothing the
// slot is as before.
template <class Operation>
void ThrowWhatItStores(Operation&& operation, KX_ERRORS harmless = KX_OK) {
    const KX_ERRORS earlier = KxGetError();
    KxOk();
    std::forward<Operation>(operation)();
    if (KxSuccess())
        KxSetError(earlier);
    else if (KxGetError() != harmless)
        throw Exception(KxGetError());
}

// Stores `error` and traces it: a failure that needs no unwinding.
inline void Report(KX_ERRORS error, const char* traceName) {
    KxSetError(error);
    KxTraceError(traceName);
}

}  // namespace Zelkor::Kalvo
