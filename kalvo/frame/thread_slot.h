#pragma once
// The thread-local slot behind the per-thread records, opened and closed with the library.

#include "kalvo/frame/kxerror_codes.h"

struct OzzoTLSStruct;

namespace Zelkor::Kalvo {

// What `KxInternalDllMain` is told.
enum LifeCycleReason : unsigned long { kProcessDetach = 0, kProcessAttach = 1, kThreadDetach = 3 };

// Has `release` delete the palettes of each record that ends; until somebody says so, no record has any.
void ReleasePalettesWith(void (*release)(OzzoTLSStruct& record));

// Makes the slot and gives the calling thread the static record. Does nothing when the slot exists.
void OpenThreadSlot();

// Keeps the failure of a calling thread whose record finds no memory; the record starts with it once it
// does.
void KeepFailure(KX_ERRORS error);

// Releases the calling thread's record and gives the slot back; from then on no thread has a record. Does
// nothing when there is no slot.
void CloseThreadSlot();

}  // namespace Zelkor::Kalvo
