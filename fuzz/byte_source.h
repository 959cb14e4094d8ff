#pragma once
// Choices made from the bytes of an input, so that a fuzzing engine can steer them. After the last byte every
// choice is the first one.

#include <cstddef>
#include <cstdint>

namespace Zelkor::Kalvo::Fuzzing {

class ByteSource {
public:
    ByteSource(const std::uint8_t* bytes, std::size_t count) : m_next(bytes), m_end(bytes + count) {}

    std::uint8_t Byte() { return m_next == m_end ? std::uint8_t{0} : *m_next++; }
    std::uint32_t Word() {
        std::uint32_t word = 0;
        for (int i = 0; i < 4; ++i) word = word << 8 | Byte();
        return word;
    }
    // A number from `low` to `high`; small ranges take one byte.
    int Between(int low, int high) {
        const std::int64_t count = std::int64_t{high} - low + 1;
        return static_cast<int>(low + (count <= 256 ? Byte() : Word()) % count);
    }
    bool Either() { return Between(0, 1) == 1; }
    bool OneIn(int count) { return Between(0, count - 1) == 0; }

private:
    const std::uint8_t* m_next;
    const std::uint8_t* m_end;
};

}  // namespace Zelkor::Kalvo::Fuzzing
