#pragma once
// A file that is read at checked offsets.

#include <array>
#include <concepts>
#include <cstdint>
#include <cstdio>
#include <span>
#include <vector>

#include "kalvo/streams/byteorder.h"

namespace Zelkor::Kalvo {

// A file open for reading, whose every access is checked against its size. Small reads that follow one
// another cost no system call of their own.
class ImageFileReader {
public:
    explicit ImageFileReader(std::FILE* stream);

    std::uint64_t Size() const { return m_size; }
    // Throws KX_ERROR_FILE_READ unless the file holds `bytes` bytes at `offset`.
    void Require(std::uint64_t offset, std::uint64_t bytes) const;
    // Fills `bytes` from `offset`; throws KX_ERROR_FILE_READ when the file ends before.
    void Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const;
    // The little-endian value at `offset`; throws like `Read`.
    template <std::integral Value>
    Value Field(std::uint64_t offset) const {
        std::array<std::uint8_t, sizeof(Value)> bytes;
        Read(offset, bytes);
        return LoadLittleEndian<Value>(bytes.data());
    }
    std::FILE* Stream() const { return m_stream; }

private:
    void ReadStream(std::uint64_t offset, std::span<std::uint8_t> bytes) const;

    std::FILE* m_stream;
    std::uint64_t m_size;
    mutable std::vector<std::uint8_t> m_window;  // the part of the file around the latest small read
    mutable std::uint64_t m_windowOffset = 0;
};

}  // namespace Zelkor::Kalvo
