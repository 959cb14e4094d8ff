#pragma once
// Little-endian values in byte buffers, written and read one by one.

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace Zelkor::Kalvo {

template <std::integral Value>
constexpr void StoreLittleEndian(std::uint8_t* bytes, Value value) {
    auto bits = static_cast<std::make_unsigned_t<Value>>(value);
    for (std::size_t i = 0; i < sizeof(Value); ++i)
        bytes[i] = static_cast<std::uint8_t>(std::uint64_t{bits} >> (8 * i));
}

template <std::integral Value>
constexpr Value LoadLittleEndian(const std::uint8_t* bytes) {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < sizeof(Value); ++i) bits |= std::uint64_t{bytes[i]} << (8 * i);
    return static_cast<Value>(bits);
}

template <std::integral Value>
constexpr Value LoadBigEndian(const std::uint8_t* bytes) {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < sizeof(Value); ++i) bits = bits << 8 | bytes[i];
    return static_cast<Value>(bits);
}

template <std::integral Value>
constexpr Value Load(const std::uint8_t* bytes, bool isBigEndian) {
    return isBigEndian ? LoadBigEndian<Value>(bytes) : LoadLittleEndian<Value>(bytes);
}

template <std::integral Value>
void AppendLittleEndian(std::vector<std::uint8_t>& bytes, Value value) {
    bytes.resize(bytes.size() + sizeof(Value));
    StoreLittleEndian(bytes.data() + bytes.size() - sizeof(Value), value);
}

}  // namespace Zelkor::Kalvo
