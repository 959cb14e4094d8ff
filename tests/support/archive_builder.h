#pragma once
// Builds archives of images and regions byte by byte, right or wrong.

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "kalvo/persistence/byteorder.h"
#include "tests/support/temporary_folder.h"

namespace Zelkor::Kalvo::Testing {

class ArchiveBuilder {
public:
    operator const Bytes&() const { return m_bytes; }

    ArchiveBuilder& Header(int type, int version = 4) {
        for (const int byte : {0x4B, type, version, 0x4B ^ type ^ version})
            m_bytes.push_back(static_cast<std::uint8_t>(byte));
        return *this;
    }
    /// 32-bit numbers, signed or not.
    ArchiveBuilder& Numbers(std::initializer_list<std::int64_t> numbers) {
        for (const std::int64_t number : numbers)
            AppendLittleEndian(m_bytes, static_cast<std::uint32_t>(number));
        return *this;
    }
    ArchiveBuilder& Raw(const Bytes& bytes) {
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
        return *this;
    }
    ArchiveBuilder& Raw(std::string_view text) { return Raw(Bytes(text.begin(), text.end())); }

    /// What stands before the children: header, no texts, their number.
    ArchiveBuilder& Begin(int type, std::int64_t children, int version = 4) {
        return Header(type, version).Numbers({0, 0, 0, 0, 0, 0, 0, 0, children});
    }
    /// What stands after them: the placement, then no mask offsets and no cursor. That ends a region.
    ArchiveBuilder& Place(std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height) {
        return Numbers({x, y, width, height, 2, 0, 0, 0});
    }
    ArchiveBuilder& Region(int type, std::int64_t x, std::int64_t y, std::int64_t width,
                           std::int64_t height) {
        return Begin(type, 0).Place(x, y, width, height);
    }
    /// What an image has after that: its pixels, and one default pixel size for both directions.
    ArchiveBuilder& Pixels(std::int64_t bitsPerPixel, std::int64_t bitsPerRow, const Bytes& block) {
        return Numbers({bitsPerPixel, bitsPerRow}).Raw(block);
    }
    ArchiveBuilder& PixelSizes() { return Value(1, 0, 1, "").Value(1, 0, 1, ""); }
    /// A dimensional value in the newest layout.
    ArchiveBuilder& Value(float value, int predefined, float magnitude, std::string_view name) {
        return Number(value).Numbers({predefined}).Number(magnitude).Name(name);
    }
    ArchiveBuilder& Number(float number) { return Numbers({std::bit_cast<std::int32_t>(number)}); }
    ArchiveBuilder& Name(std::string_view name) {
        Raw(name);
        m_bytes.resize(m_bytes.size() + 16 - name.size());
        return *this;
    }

private:
    Bytes m_bytes;
};

}  // namespace Zelkor::Kalvo::Testing
