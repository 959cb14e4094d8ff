#pragma once
// Thread-local slots with a release at thread end.

#include <pthread.h>

namespace Zelkor::Platform {

using TlsSlot = pthread_key_t;

/// Makes a slot that is empty in every thread; false when the system has none left.
/// @param release  called with a thread's value when that thread ends, unless the value is null
inline bool TlsAlloc(TlsSlot& slot, void (*release)(void*)) {
    return pthread_key_create(&slot, release) == 0;
}

/// The calling thread's value; null when it has set none.
inline void* TlsGetValue(TlsSlot slot) { return pthread_getspecific(slot); }

/// Stores the calling thread's value; false when there is no memory for it.
inline bool TlsSetValue(TlsSlot slot, void* value) { return pthread_setspecific(slot, value) == 0; }

/// Gives the slot back. The threads' values are not released.
inline void TlsFree(TlsSlot slot) { pthread_key_delete(slot); }

}  // namespace Zelkor::Platform
