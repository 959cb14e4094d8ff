#pragma once
// Grey images of more than 8 bits, reduced to their high bytes.

#include "kalvo/image/kximage.h"

namespace Zelkor::Kalvo {

// Fills `gray` with the high byte of every pixel of a `KxBW16` or `KxBW32` region, which must have pixels.
// Throws when there is no memory.
void ReduceToGray(const KxGenericROI& region, KxImage<KxBW8>& gray);

// Gives an image the size of a region, throwing the code that the image reported when it can't.
void SetTemporarySize(KxGenericROI& image, const KxGenericROI& region);

}  // namespace Zelkor::Kalvo
