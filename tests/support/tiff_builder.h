#pragma once
// Builds TIFF files byte by byte, right or wrong: strips and long values first, the directory last.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "kalvo/imagefiles/tiff.h"
#include "tests/support/temporary_folder.h"

namespace Zelkor::Kalvo::Testing {

class TiffBuilder {
public:
    using Values = std::vector<std::uint32_t>;

    // @param order  "II" or "MM"
    explicit TiffBuilder(const std::string& order = "II")
        : m_isBigEndian(order == "MM"), m_file(order.begin(), order.end()) {
        Append(m_file, kTiffMagic, 2);
        Append(m_file, 0, 4);
    }

    // Set a tag, or replace it.
    TiffBuilder& Short(TiffTag tag, const Values& values) {
        return Set(tag, TiffType::Short, values.size(), Packed(values, 2));
    }
    TiffBuilder& Long(TiffTag tag, const Values& values) {
        return Set(tag, TiffType::Long, values.size(), Packed(values, 4));
    }
    TiffBuilder& Rational(TiffTag tag, std::uint32_t numerator, std::uint32_t denominator) {
        return Set(tag, TiffType::Rational, 1, Packed({numerator, denominator}, 4));
    }
    // @param text  what is stored, with its NUL if it shall have one
    TiffBuilder& Text(TiffTag tag, const std::string& text) {
        return Set(tag, TiffType::Ascii, text.size(), Bytes(text.begin(), text.end()));
    }
    // An entry as it stands in the directory, whatever it means.
    TiffBuilder& Entry(TiffTag tag, TiffType type, std::uint32_t count, std::uint32_t value) {
        return Set(tag, type, count, Packed({value}, 4));
    }
    TiffBuilder& Without(TiffTag tag) {
        m_entries.erase(tag);
        return *this;
    }

    // Puts bytes into the file and returns their offset.
    std::uint32_t Store(const Bytes& bytes) {
        m_file.insert(m_file.end(), bytes.begin(), bytes.end());
        return static_cast<std::uint32_t>(m_file.size() - bytes.size());
    }
    // Stores bytes and adds them to the strip tables.
    TiffBuilder& Strip(const Bytes& bytes) {
        m_stripOffsets.push_back(Store(bytes));
        m_stripByteCounts.push_back(static_cast<std::uint32_t>(bytes.size()));
        return Long(TiffTag::StripOffsets, m_stripOffsets).Long(TiffTag::StripByteCounts, m_stripByteCounts);
    }

    // The file.
    operator Bytes() const {
        Bytes file = m_file;
        const Bytes directory = Packed({static_cast<std::uint32_t>(file.size())}, 4);
        std::copy(directory.begin(), directory.end(), file.begin() + 4);
        Append(file, m_entries.size(), 2);
        for (const auto& [tag, entry] : m_entries) file.insert(file.end(), entry.begin(), entry.end());
        Append(file, 0, 4);
        return file;
    }

private:
    void Append(Bytes& bytes, std::uint64_t value, int size) const {
        for (int i = 0; i < size; ++i)
            bytes.push_back(static_cast<std::uint8_t>(value >> 8 * (m_isBigEndian ? size - 1 - i : i)));
    }
    Bytes Packed(const Values& values, int size) const {
        Bytes bytes;
        for (const std::uint32_t value : values) Append(bytes, value, size);
        return bytes;
    }
    TiffBuilder& Set(TiffTag tag, TiffType type, std::size_t count, Bytes value) {
        if (value.size() > kTiffInlineBytes) value = Packed({Store(value)}, 4);
        value.resize(kTiffInlineBytes);
        Bytes& entry = m_entries[tag] = {};
        Append(entry, static_cast<std::uint16_t>(tag), 2);
        Append(entry, static_cast<std::uint16_t>(type), 2);
        Append(entry, count, 4);
        entry.insert(entry.end(), value.begin(), value.end());
        return *this;
    }

    bool m_isBigEndian;
    Bytes m_file;  // all before the directory
    std::map<TiffTag, Bytes> m_entries;
    Values m_stripOffsets, m_stripByteCounts;
};

}  // namespace Zelkor::Kalvo::Testing
