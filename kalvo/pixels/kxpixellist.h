#pragma once
// The only lists of pixel types: for explicit instantiation (X macros) and for compile-time loops (tuples).

#include <tuple>

#include "kalvo/pixels/kxpixel.h"

// Types that image files hold.
#define KX_FOR_EACH_FILE_PIXEL(X) X(KxBW1) X(KxBW8) X(KxBW16) X(KxBW32) X(KxC15) X(KxC16) X(KxC24) X(KxC24A)

// Types that only archives hold.
#define KX_FOR_EACH_ARCHIVE_ONLY_PIXEL(X) X(KxYUY2) X(KxSubPixel64) X(KxComplex64) X(KxRaw32) X(KxRaw96)

// Types that stay in memory.
#define KX_FOR_EACH_MEMORY_ONLY_PIXEL(X) X(KxFLOAT32) X(KxFLOAT64)

#define KX_FOR_EACH_PIXEL(X) \
    KX_FOR_EACH_FILE_PIXEL(X) KX_FOR_EACH_ARCHIVE_ONLY_PIXEL(X) KX_FOR_EACH_MEMORY_ONLY_PIXEL(X)

// Types whose images exchange their buffers.
#define KX_FOR_EACH_SWAPPABLE_PIXEL(X) X(KxBW8) X(KxBW16) X(KxC15) X(KxC16) X(KxC24) X(KxC24A)

// Types whose images are resampled; a rescaled image takes over the buffer of another.
#define KX_FOR_EACH_RESIZABLE_PIXEL(X) KX_FOR_EACH_SWAPPABLE_PIXEL(X)

namespace Zelkor::Kalvo {

/// Those that archives hold, in the order of the object types that they give them.
using ArchivedPixelTypes = std::tuple<KxBW1, KxBW8, KxBW16, KxBW32, KxC15, KxC16, KxC24, KxYUY2, KxC24A,
                                      KxSubPixel64, KxComplex64, KxRaw32, KxRaw96>;

/// All of them.
using PixelTypes = decltype(std::tuple_cat(ArchivedPixelTypes(), std::tuple<KxFLOAT32, KxFLOAT64>()));

}  // namespace Zelkor::Kalvo
