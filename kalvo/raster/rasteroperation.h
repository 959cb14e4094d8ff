#pragma once
// Ternary raster operations: what pixels become of a pattern, a source and themselves, bit by bit.

#include <cstddef>
#include <cstdint>

namespace Zelkor::Platform {

class RasterOperation {
public:
    // Bit 4p + 2s + d of `table` is what bits p, s and d of pattern, source and destination become.
    explicit constexpr RasterOperation(std::uint8_t table) : m_table(table) {}

    constexpr bool UsesPattern() const { return ((m_table >> 4 ^ m_table) & 0x0F) != 0; }
    constexpr bool UsesSource() const { return ((m_table >> 2 ^ m_table) & 0x33) != 0; }
    constexpr bool CopiesSource() const { return m_table == 0xCC; }

    // What is left of one that uses no source: bit 2p + d is what bits p and d become.
    constexpr unsigned WithoutSource() const { return (m_table & 3u) | (m_table >> 2 & 12u); }

    // Of rows of bytes, without overlap. A row that is not used may be any.
    void Apply(const std::uint8_t* pattern, const std::uint8_t* source, std::uint8_t* destination,
               std::size_t bytes) const;

private:
    std::uint8_t m_table;
};

}  // namespace Zelkor::Platform
