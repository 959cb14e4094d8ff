// Makes and releases the per-thread records.

#include "kalvo/frame/kxthread.h"

#include <atomic>
#include <new>

#include "kalvo/base/tls.h"
#include "kalvo/frame/thread_slot.h"

namespace {

constinit OzzoTLSStruct loadingThreadRecord{};
constinit DWORD recordSlot = TLS_OUT_OF_INDEXES;
constinit bool slotIsOpen = false;
constinit std::atomic<void (*)(OzzoTLSStruct&)> releasePalettes = nullptr;

void ReleaseRecord(void* record) {
    auto* released = static_cast<OzzoTLSStruct*>(record);
    if (!released) return;
    if (const auto release = releasePalettes.load()) release(*released);
    if (released != &loadingThreadRecord) delete released;
}

OzzoTLSStruct* MakeRecord() {
    OzzoTLSStruct* record = new (std::nothrow) OzzoTLSStruct{};
    if (record && TlsSetValue(recordSlot, record)) return record;
    delete record;
    return nullptr;
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

void CloseThreadSlot() {
    CloseThreadLocalStorage();
    if (slotIsOpen) TlsFree(recordSlot);
    slotIsOpen = false;
}

}  // namespace Zelkor::Kalvo

OzzoTLSStruct* KxGetTLSPtr() {
    if (!slotIsOpen) return nullptr;
    if (void* record = TlsGetValue(recordSlot)) return static_cast<OzzoTLSStruct*>(record);
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
