#pragma once
// Thread-local slots: one pointer per slot and thread.

#include <pthread.h>

#include "kalvo/base/win32types.h"

/// What `TlsAlloc` returns when the system has no slot left.
inline constexpr DWORD TLS_OUT_OF_INDEXES = 0xFFFFFFFF;

namespace Zelkor::Platform {

/// Makes a slot as `TlsAlloc` does, with an owner for its values.
/// @param release  called with a thread's value when that thread ends, unless the value is null
inline DWORD AllocateReleasingSlot(void (*release)(void*)) {
    pthread_key_t slot;
    return pthread_key_create(&slot, release) == 0 ? DWORD{slot} : TLS_OUT_OF_INDEXES;
}

}  // namespace Zelkor::Platform

/// Makes a slot that is null in every thread; `TLS_OUT_OF_INDEXES` when there is none left.
inline DWORD TlsAlloc() { return Zelkor::Platform::AllocateReleasingSlot(nullptr); }

/// The calling thread's value in a slot; null when it has set none, or when there is no such slot.
inline void* TlsGetValue(DWORD un32Slot) { return pthread_getspecific(un32Slot); }

/// Stores the calling thread's value, which stays the caller's. 0 when there is no such slot, or no memory.
inline BOOL TlsSetValue(DWORD un32Slot, void* pValue) { return pthread_setspecific(un32Slot, pValue) == 0; }

/// Gives a slot back; the threads' values are not released. 0 when there is no such slot.
inline BOOL TlsFree(DWORD un32Slot) { return pthread_key_delete(un32Slot) == 0; }
