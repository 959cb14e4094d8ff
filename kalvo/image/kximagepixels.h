#pragma once
// Where the pixels of an image lie, whatever their type.

#include <cstdint>

#include "kalvo/base/kxexport.h"
#include "kalvo/base/kxmemory.h"
#include "kalvo/measure/kxdimensionalvalue.h"

namespace Zelkor::Kalvo {

/// The pixels of an image: in a buffer of its own, in one of the caller, or none.
struct KX_API ImagePixels {
    explicit ImagePixels(int n32BitsPerPixel);
    ~ImagePixels();

    Zelkor::Platform::Memory m_pBuffer;
    std::uint8_t* m_pImagePtr = nullptr;
    std::int32_t m_n32BitsPerPixel;
    std::int32_t m_n32BitsPerRow = 0;
    KxDimensionalValue m_PixelWidth;
    KxDimensionalValue m_PixelHeight;
};

}  // namespace Zelkor::Kalvo
