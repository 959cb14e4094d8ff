#pragma once
// PackBits, the byte-wise run-length code of TIFF: a count byte n from 0 to 127 is followed by n + 1 bytes to
// copy, one from -127 to -1 by a byte to repeat 1 - n times, and -128 means nothing.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Zelkor::Kalvo {

// Appends the packed form of `bytes`, at most 1/128 longer than they are. Three or more equal bytes become a
// run, all others are copied.
void AppendPackBits(std::vector<std::uint8_t>& packed, std::span<const std::uint8_t> bytes);

// Decodes packed bytes that come, and are asked for, in pieces of any size.
class PackBitsDecoder {
public:
    // Takes what it needs from the front of `packed` to produce `count` bytes.
    // @param bytes  receives them; null to count only
    // @return the number of bytes produced; less than `count` only when `packed` is used up
    std::size_t Decode(std::span<const std::uint8_t>& packed, std::uint8_t* bytes, std::size_t count);

private:
    enum class State { Literal, RunWithoutValue, Run };

    State m_state = State::Literal;
    std::size_t m_left = 0;  // bytes still to come from the current count byte
    std::uint8_t m_value = 0;
};

}  // namespace Zelkor::Kalvo
