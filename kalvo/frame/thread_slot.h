#pragma once
// The thread-local slot behind the per-thread records, opened and closed with the library.

namespace Zelkor::Kalvo {

/// Makes the slot and gives the calling thread the static record. Does nothing when the slot exists.
void OpenThreadSlot();

/// Releases the calling thread's record and gives the slot back; from then on no thread has a record. Does
/// nothing when there is no slot.
void CloseThreadSlot();

}  // namespace Zelkor::Kalvo
