#pragma once
// Pixels from and into the JPEG streams of the field handler, by way of the codec.

#include <cstdint>
#include <span>

#include "kalvo/imagefiles/heapblock.h"
#include "kalvo/imagefiles/kxjpeghandler.h"

namespace Zelkor::Kalvo {

// The bytes of a field; without an address there is no field.
using FieldBytes = std::span<const std::uint8_t>;

// There is no such field.
inline constexpr auto kErrorFieldAbsent = static_cast<KX_ERRORS>(15104);

// Decodes one field, or two into every other row; see `KxJpegHandler::DecompressToImage`.
void DecodeFields(FieldBytes upField, FieldBytes downField, KxImage<KxC24>& image,
                  KxJpegHandler::ScalingMode mode);

// A JPEG stream and its size.
struct EncodedField {
    HeapBlock block;
    std::uint32_t size = 0;
};

// Pixels of three bytes as a JPEG stream; see `KxJpegHandler::CreateJpegFromRGB24`.
EncodedField EncodeRgb24(const std::uint8_t* pixels, std::uint32_t pitchBytes, std::uint32_t width,
                         std::uint32_t height);

}  // namespace Zelkor::Kalvo
