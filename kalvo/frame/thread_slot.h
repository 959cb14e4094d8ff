#pragma once
// The thread-local slot behind the per-thread records, opened and closed with the library.

struct OzzoTLSStruct;

namespace Zelkor::Kalvo {

/// Has `release` delete the palettes of each record that ends; until somebody says so, no record has any.
void ReleasePalettesWith(void (*release)(OzzoTLSStruct& record));

/// Makes the slot and gives the calling thread the static record. Does nothing when the slot exists.
void OpenThreadSlot();

/// Releases the calling thread's record and gives the slot back; from then on no thread has a record. Does
/// nothing when there is no slot.
void CloseThreadSlot();

}  // namespace Zelkor::Kalvo
