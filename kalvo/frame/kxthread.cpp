// Makes and releases the per-thread records.

#include "kalvo/frame/kxthread.h"

#include <new>

#include "kalvo/frame/thread_slot.h"
#include "kalvo/platform/tls.h"

namespace {

using namespace Zelkor::Platform;

constinit OzzoTLSStruct loadingThreadRecord{};
TlsSlot recordSlot;
constinit bool slotIsOpen = false;

void ReleaseRecord(void* record) {
    if (record != &loadingThreadRecord) delete static_cast<OzzoTLSStruct*>(record);
}

OzzoTLSStruct* MakeRecord() {
    OzzoTLSStruct* record = new (std::nothrow) OzzoTLSStruct{};
    if (record && TlsSetValue(recordSlot, record)) return record;
    delete record;
    return nullptr;
}

}  // namespace

namespace Zelkor::Kalvo {

void OpenThreadSlot() {
    if (slotIsOpen) return;
    slotIsOpen = TlsAlloc(recordSlot, ReleaseRecord);
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
