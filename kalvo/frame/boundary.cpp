// Rethrows to find the code, so that every boundary costs a call and not a copy of the handlers.

#include "kalvo/frame/boundary.h"

#include <new>

namespace Zelkor::Kalvo {

KX_ERRORS CurrentExceptionError(KX_ERRORS unexpected) noexcept {
    try {
        throw;
    } catch (const Exception& exception) {
        return exception.GetError();
    } catch (const std::bad_alloc&) {
        return KX_ERROR_ALLOCATION;
    } catch (...) {
        return unexpected;
    }
}

void ReportCurrentException(const char* traceName, KX_ERRORS unexpected) noexcept {
    KxSetError(CurrentExceptionError(unexpected));
    if (traceName) KxTraceError(traceName);
}

}  // namespace Zelkor::Kalvo
