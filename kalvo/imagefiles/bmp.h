#pragma once
// The numbers of the BMP format that its reader and its writer share.

#include <array>
#include <cstdint>

namespace Zelkor::Kalvo {

inline constexpr std::uint32_t kBmpFileHeaderBytes = 14;
inline constexpr std::uint32_t kBmpInfoHeaderBytes = 40;
inline constexpr std::uint32_t kBmpUncompressed = 0;
inline constexpr std::uint32_t kBmpBitFields = 3;

// Red, green and blue of pixels in one word; they follow the info header of a bit-field file.
using BmpMasks = std::array<std::uint32_t, 3>;
inline constexpr BmpMasks kBmpMasks555{0x7C00, 0x03E0, 0x001F};
inline constexpr BmpMasks kBmpMasks565{0xF800, 0x07E0, 0x001F};

// Distance between rows in the file: they are padded to whole 32-bit words.
constexpr std::uint64_t BmpStrideBytes(std::uint64_t bitsPerRow) { return (bitsPerRow + 31) / 32 * 4; }

}  // namespace Zelkor::Kalvo
