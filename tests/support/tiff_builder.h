#pragma once
// Builds TIFF files byte by byte, right or wrong: strips first, then long values, the directory last.

#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "kalvo/persistence/tiff.h"
#include "tests/support/temporary_folder.h"

namespace Zelkor::Kalvo::Testing {

class TiffBuilder {
public:
    /// @param order  "II" or "MM"
    explicit TiffBuilder(const std::string& order = "II") : m_isBigEndian(order == "MM") {
        m_file.assign(order.begin(), order.end());
        Append(m_file, kTiffMagic, 2);
        Append(m_file, 0, 4);
    }

    /// Set a tag, or replace it.
    TiffBuilder& Byte(TiffTag tag, std::initializer_list<std::uint32_t> values) {
        return Numbers(tag, TiffType::Byte, values, 1);
    }
    TiffBuilder& Short(TiffTag tag, std::initializer_list<std::uint32_t> values) {
        return Numbers(tag, TiffType::Short, values, 2);
    }
    TiffBuilder& Long(TiffTag tag, std::initializer_list<std::uint32_t> values) {
        return Numbers(tag, TiffType::Long, values, 4);
    }
    TiffBuilder& Rational(TiffTag tag, std::uint32_t numerator, std::uint32_t denominator) {
        Long(tag, {numerator, denominator});
        m_fields[tag].type = TiffType::Rational;
        m_fields[tag].count = 1;
        return *this;
    }
    TiffBuilder& Text(TiffTag tag, const std::string& text) {
        m_fields[tag] = {TiffType::Ascii, static_cast<std::uint32_t>(text.size() + 1),
                         Bytes(text.c_str(), text.c_str() + text.size() + 1)};
        return *this;
    }
    /// An entry as it stands in the directory, whatever it means.
    TiffBuilder& Entry(TiffTag tag, TiffType type, std::uint32_t count, std::uint32_t value) {
        m_fields[tag] = {type, count, {}};
        Append(m_fields[tag].values, value, 4);
        return *this;
    }
    TiffBuilder& Without(TiffTag tag) {
        m_fields.erase(tag);
        return *this;
    }
    /// Puts bytes into the file and returns their offset.
    std::uint32_t Store(const Bytes& bytes) {
        const auto offset = static_cast<std::uint32_t>(m_file.size());
        m_file.insert(m_file.end(), bytes.begin(), bytes.end());
        return offset;
    }
    /// Stores bytes and adds them to the strip tables.
    TiffBuilder& Strip(const Bytes& bytes) {
        m_stripOffsets.push_back(Store(bytes));
        m_stripByteCounts.push_back(static_cast<std::uint32_t>(bytes.size()));
        Numbers(TiffTag::StripOffsets, TiffType::Long, m_stripOffsets, 4);
        return Numbers(TiffTag::StripByteCounts, TiffType::Long, m_stripByteCounts, 4);
    }

    /// The file.
    operator Bytes() const {
        Bytes file = m_file;
        std::map<TiffTag, std::uint32_t> offsets;
        for (const auto& [tag, field] : m_fields) {
            offsets[tag] = static_cast<std::uint32_t>(file.size());
            if (field.values.size() > kTiffInlineBytes)
                file.insert(file.end(), field.values.begin(), field.values.end());
        }
        Bytes directoryOffset;
        Append(directoryOffset, file.size(), 4);
        std::copy(directoryOffset.begin(), directoryOffset.end(), file.begin() + 4);
        Append(file, m_fields.size(), 2);
        for (const auto& [tag, field] : m_fields) {
            Append(file, static_cast<std::uint16_t>(tag), 2);
            Append(file, static_cast<std::uint16_t>(field.type), 2);
            Append(file, field.count, 4);
            Bytes value = field.values;
            if (value.size() > kTiffInlineBytes) Append(value = {}, offsets[tag], 4);
            value.resize(kTiffInlineBytes);
            file.insert(file.end(), value.begin(), value.end());
        }
        Append(file, 0, 4);
        return file;
    }

private:
    struct Field {
        TiffType type;
        std::uint32_t count;
        Bytes values;
    };

    void Append(Bytes& bytes, std::uint64_t value, int size) const {
        for (int i = 0; i < size; ++i)
            bytes.push_back(static_cast<std::uint8_t>(value >> 8 * (m_isBigEndian ? size - 1 - i : i)));
    }
    TiffBuilder& Numbers(TiffTag tag, TiffType type, const std::vector<std::uint32_t>& values, int size) {
        m_fields[tag] = {type, static_cast<std::uint32_t>(values.size()), {}};
        for (const std::uint32_t value : values) Append(m_fields[tag].values, value, size);
        return *this;
    }

    bool m_isBigEndian;
    Bytes m_file;
    std::map<TiffTag, Field> m_fields;
    std::vector<std::uint32_t> m_stripOffsets;
    std::vector<std::uint32_t> m_stripByteCounts;
};

}  // namespace Zelkor::Kalvo::Testing
