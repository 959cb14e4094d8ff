#pragma once
// Locks that a thread may enter again while it is inside.

#include <pthread.h>

#include "kalvo/base/win32types.h"

/// A lock in the caller's memory. It must not be copied or moved between initialising and deleting it.
struct CRITICAL_SECTION {
    pthread_mutex_t m_Mutex;
};

/// Makes the lock usable; once, before any other call.
inline void InitializeCriticalSection(CRITICAL_SECTION* pSection) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&pSection->m_Mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

/// Waits until no other thread is inside, and enters. Each entry needs a `LeaveCriticalSection`.
inline void EnterCriticalSection(CRITICAL_SECTION* pSection) { pthread_mutex_lock(&pSection->m_Mutex); }

/// Enters, unless another thread is inside: then it returns 0 at once.
inline BOOL TryEnterCriticalSection(CRITICAL_SECTION* pSection) {
    return pthread_mutex_trylock(&pSection->m_Mutex) == 0;
}

/// Takes back one entry of the calling thread.
inline void LeaveCriticalSection(CRITICAL_SECTION* pSection) { pthread_mutex_unlock(&pSection->m_Mutex); }

/// Ends the use of a lock that no thread is inside of.
inline void DeleteCriticalSection(CRITICAL_SECTION* pSection) { pthread_mutex_destroy(&pSection->m_Mutex); }
