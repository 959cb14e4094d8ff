#pragma once
// The calling thread's error slot and the texts of its codes.

#include "kalvo/base/kxexport.h"
#include "kalvo/frame/kxerror_codes.h"

/// Every operation that fails stores a code in the error slot of the calling thread and returns normally.
/// Codes below 1000 are successes (0) and warnings, codes from 1000 up are failures. Nothing clears the slot
/// but `KxOk`, `KxSetError(KX_OK)` and the operations that say so: a failure stays visible until then.

/// Resets the slot to `KX_OK` and returns it.
KX_API KX_ERRORS KxOk();

/// Stores `eError` in the slot and returns it.
KX_API KX_ERRORS KxSetError(KX_ERRORS eError);

/// The code in the slot; `KX_ERROR_CANNOT_TRACE` as long as there is no memory for this thread's record. A
/// failure stored meanwhile is kept, and in the slot once there is.
KX_API KX_ERRORS KxGetError();

/// 1 when the slot holds no failure (code below 1000), else 0.
KX_API int KxSuccess();

/// 1 when the slot holds a failure (code 1000 or above), else 0.
KX_API int KxFailure();

/// The fixed English text of `eError`, or "Unknown error code: " and the code as a signed 16-bit number.
/// The returned text belongs to the library; that of an unknown code lasts until this thread asks for the
/// next one.
KX_API const char* KxGetErrorText(KX_ERRORS eError);

/// The text of the code in the slot.
KX_API const char* KxGetErrorText();

/// The text of `eError` in UTF-16, in a buffer that this thread's next call overwrites.
KX_API const unsigned short* KxGetErrorTextUnicode(KX_ERRORS eError);

/// The UTF-16 text of the code in the slot.
KX_API const unsigned short* KxGetErrorTextUnicode();
