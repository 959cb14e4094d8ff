#pragma once
// Grey images of more than 8 bits, reduced to their high bytes.

#include "kalvo/image/kximage.h"

namespace Zelkor::Kalvo {

// Fills `gray` with the high byte of every pixel of a `KxBW16` or `KxBW32` region, which must have pixels.
// Throws when there is no memory.
void ReduceToGray(const KxGenericROI& region, KxImage<KxBW8>& gray);

}  // namespace Zelkor::Kalvo
