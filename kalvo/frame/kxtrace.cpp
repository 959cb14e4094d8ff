// When a trace is due, and what its message box says.

#include "kalvo/frame/kxtrace.h"

#include <string>

#include "kalvo/base/messagebox.h"
#include "kalvo/frame/boundary.h"
#include "kalvo/frame/kxthread.h"

namespace {

constexpr unsigned kTaskModalExclamationOk = 0x2030;

std::string TextOf(const char* text) { return text ? text : ""; }

// Without memory for the text there is no box; the code is in the slot all the same.
template <class Compose>
void Show(const Compose& compose) {
    Zelkor::Kalvo::OrNeutral([&] {
        const std::string text = compose();
        Zelkor::Platform::MessageBoxA(text.c_str(), "KxTrace", kTaskModalExclamationOk);
    });
}

}  // namespace

void KxSetTraceMode(KX_TRACE_MODE eMode) {
    if (OzzoTLSStruct* record = KxGetTLSPtr()) record->m_eTraceMode = eMode;
}

KX_TRACE_MODE KxGetTraceMode() {
    const OzzoTLSStruct* record = KxGetTLSPtr();
    return record ? record->m_eTraceMode : KX_TRACE_MODE_SILENT;
}

KX_ERRORS KxTraceError(const char* pszFunctionName) {
    const KX_ERRORS error = KxGetError();
    const KX_TRACE_MODE mode = KxGetTraceMode();
    if (error < 1000 || (mode != KX_TRACE_MODE_MESSAGE && mode != KX_TRACE_MODE_FULL_MESSAGE)) return error;
    Show([&] { return "Function: " + TextOf(pszFunctionName) + "\n" + KxGetErrorText(error); });
    return error;
}

short KxTraceFullError(const char* pszFileName, int n32Line, const char* pszStatement) {
    const KX_ERRORS error = KxGetError();
    if (error < 1000) return static_cast<short>(error);
    const KX_TRACE_MODE mode = KxGetTraceMode();
    if (mode == (KX_TRACE_MODE_FULL_MESSAGE | KX_TRACE_MODE_CALLER_TRACE))
        Show([&] {
            return "File " + TextOf(pszFileName) + ", line " + std::to_string(n32Line) + "\n" +
                   TextOf(pszStatement) + "\n" + KxGetErrorText(error);
        });
    KxSetTraceMode(static_cast<KX_TRACE_MODE>(mode & ~KX_TRACE_MODE_CALLER_TRACE));
    return static_cast<short>(error);
}

void KxKxTraceTraceMode() {
    KxSetTraceMode(static_cast<KX_TRACE_MODE>(KxGetTraceMode() | KX_TRACE_MODE_CALLER_TRACE));
}

void TraceSilent() { KxSetTraceMode(KX_TRACE_MODE_SILENT); }
