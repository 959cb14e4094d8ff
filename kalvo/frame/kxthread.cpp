// Makes and releases the per-thread records, from the loading of the library to its unloading.

#include "kalvo/frame/kxthread.h"

#include <atomic>
#include <cstdint>
#include <new>

#include "kalvo/base/tls.h"
#include "kalvo/frame/kxlibrary.h"
#include "kalvo/frame/thread_slot.h"

namespace {

constinit OzzoTLSStruct loadingThreadRecord{};
constinit DWORD recordSlot = TLS_OUT_OF_INDEXES;
constinit bool slotIsOpen = false;
constinit std::atomic<void (*)(OzzoTLSStruct&)> releasePalettes = nullptr;

// A thread's slot holds nothing, its record, or the failure of a thread whose record found no memory: an odd
// number, which is no record's address. So a failure needs no memory to be kept.

void* SlotValueOf(KX_ERRORS failure) {
    return reinterpret_cast<void*>(std::uintptr_t{static_cast<std::uint32_t>(failure)} << 1 | 1);
}

bool IsFailure(const void* value) { return reinterpret_cast<std::uintptr_t>(value) & 1; }

OzzoTLSStruct* RecordIn(void* value) {
    return IsFailure(value) ? nullptr : static_cast<OzzoTLSStruct*>(value);
}

KX_ERRORS FailureIn(const void* value) {
    const auto code = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(value) >> 1);
    return IsFailure(value) ? static_cast<KX_ERRORS>(code) : KX_OK;
}

void ReleaseRecord(void* value) {
    OzzoTLSStruct* const record = RecordIn(value);
    if (!record) return;
    if (const auto release = releasePalettes.load()) release(*record);
    if (record != &loadingThreadRecord) delete record;
}

OzzoTLSStruct* MakeRecord() {
    void* const previous = TlsGetValue(recordSlot);
    OzzoTLSStruct* const record = new (std::nothrow) OzzoTLSStruct{};
    if (record && TlsSetValue(recordSlot, record)) {
        record->m_eError = FailureIn(previous);
        return record;
    }
    delete record;
    if (!previous) Zelkor::Kalvo::KeepFailure(KX_ERROR_CANNOT_TRACE);
    return nullptr;
}

// Before any static constructor, ours or those of the programs and libraries that link against this one. Both
// stand here, where whatever can fail needs them, so that no static link leaves them out.
__attribute__((constructor(101))) void OnLoad() {
    KxInternalDllMain(nullptr, Zelkor::Kalvo::kProcessAttach, nullptr);
}

__attribute__((destructor(101))) void OnUnload() {
    KxInternalDllMain(nullptr, Zelkor::Kalvo::kProcessDetach, nullptr);
}

}  // namespace

namespace Zelkor::Kalvo {

void ReleasePalettesWith(void (*release)(OzzoTLSStruct& record)) { releasePalettes = release; }

void OpenThreadSlot() {
    if (slotIsOpen) return;
    recordSlot = Platform::AllocateReleasingSlot(ReleaseRecord);
    slotIsOpen = recordSlot != TLS_OUT_OF_INDEXES;
    if (!slotIsOpen) return;
    loadingThreadRecord = OzzoTLSStruct{};
    TlsSetValue(recordSlot, &loadingThreadRecord);
}

void KeepFailure(KX_ERRORS error) {
    if (slotIsOpen && !RecordIn(TlsGetValue(recordSlot))) TlsSetValue(recordSlot, SlotValueOf(error));
}

void CloseThreadSlot() {
    CloseThreadLocalStorage();
    if (slotIsOpen) TlsFree(recordSlot);
    slotIsOpen = false;
}

}  // namespace Zelkor::Kalvo

OzzoTLSStruct* KxGetTLSPtr() {
    if (!slotIsOpen) return nullptr;
    if (OzzoTLSStruct* record = RecordIn(TlsGetValue(recordSlot))) return record;
    return MakeRecord();
}

void InitializeThreadLocalStorage() {
    if (slotIsOpen) MakeRecord();
}

void CloseThreadLocalStorage() {
    if (!slotIsOpen) return;
    ReleaseRecord(TlsGetValue(recordSlot));
    TlsSetValue(recordSlot, nullptr);
}
