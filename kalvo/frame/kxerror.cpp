// The error slot and the lookup of texts. The texts themselves stand in the tables.

#include "kalvo/frame/kxerror.h"

#include <cstddef>
#include <cstdio>

#include "kalvo/frame/errortable.h"
#include "kalvo/frame/kxthread.h"
#include "kalvo/frame/thread_slot.h"

KX_ERRORS KxOk() { return KxSetError(KX_OK); }

KX_ERRORS KxSetError(KX_ERRORS eError) {
    if (OzzoTLSStruct* record = KxGetTLSPtr())
        record->m_eError = eError;
    else
        Zelkor::Kalvo::KeepFailure(eError);
    return eError;
}

KX_ERRORS KxGetError() {
    const OzzoTLSStruct* record = KxGetTLSPtr();
    return record ? record->m_eError : KX_ERROR_CANNOT_TRACE;
}

int KxSuccess() { return KxGetError() < 1000; }

int KxFailure() { return !KxSuccess(); }

const char* KxGetErrorText(KX_ERRORS eError) {
    if (const char* text = Zelkor::Kalvo::FindErrorText(eError)) return text;
    thread_local char unknownCodeText[76];
    std::snprintf(unknownCodeText, sizeof unknownCodeText, "Unknown error code: %hd",
                  static_cast<short>(eError));
    return unknownCodeText;
}

const char* KxGetErrorText() { return KxGetErrorText(KxGetError()); }

const unsigned short* KxGetErrorTextUnicode(KX_ERRORS eError) {
    constexpr std::size_t kUnits = 256;
    thread_local unsigned short wideText[kUnits];
    const char* text = KxGetErrorText(eError);
    std::size_t length = 0;
    for (; text[length] && length < kUnits - 1; ++length)
        wideText[length] = static_cast<unsigned short>(static_cast<signed char>(text[length]));
    wideText[length] = 0;
    return wideText;
}

const unsigned short* KxGetErrorTextUnicode() { return KxGetErrorTextUnicode(KxGetError()); }
