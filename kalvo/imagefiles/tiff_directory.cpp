// Finds tags in the directory and reads their values at checked offsets.

#include "kalvo/imagefiles/tiff_directory.h"

#include <algorithm>
#include <unordered_set>

#include "kalvo/frame/boundary.h"

namespace Zelkor::Kalvo {
namespace {

constexpr std::size_t kMaxTextBytes = 256 * 1024;

constexpr std::size_t SizeOf(TiffType type) {
    switch (type) {
    case TiffType::Byte:
    case TiffType::Ascii:
        return 1;
    case TiffType::Short:
        return 2;
    case TiffType::Long:
        return 4;
    case TiffType::Rational:
        return 8;
    }
    return 0;
}

// Whether all of it, but a NUL at its end, is printable ASCII.
bool IsPlainText(std::span<const std::uint8_t> text) {
    return !text.empty() && text.back() == 0 &&
           std::ranges::all_of(text.first(text.size() - 1),
                               [](int byte) { return byte >= ' ' && byte <= '~'; });
}

}  // namespace

TiffNumbers::TiffNumbers(const ImageFileReader& file, bool bigEndian, const TiffField& field)
    : m_file(&file), m_bigEndian(bigEndian), m_field(field) {
    file.Require(field.offset, SizeOf(field.type) * std::uint64_t{field.count});
}

std::uint32_t TiffNumbers::Next() {
    const std::size_t size = SizeOf(m_field.type);
    const std::size_t perPiece = m_piece.size() / size;
    const std::size_t index = m_next++ % perPiece;
    if (index == 0) {
        const std::size_t numbers = std::min<std::size_t>(perPiece, m_field.count - (m_next - 1));
        m_file->Read(m_field.offset + std::uint64_t{m_next - 1} * size,
                     std::span(m_piece).first(numbers * size));
    }
    const std::uint8_t* bytes = m_piece.data() + index * size;
    switch (m_field.type) {
    case TiffType::Short:
        return Load<std::uint16_t>(bytes, m_bigEndian);
    case TiffType::Long:
        return Load<std::uint32_t>(bytes, m_bigEndian);
    default:
        return *bytes;
    }
}

TiffDirectory::TiffDirectory(const ImageFileReader& file) : m_file(file) {
    std::array<std::uint8_t, kTiffHeaderBytes> header;
    file.Read(0, header);
    m_bigEndian = header[0] == 'M';
    const bool hasByteOrder = header[0] == header[1] && (header[0] == 'I' || header[0] == 'M');
    if (!hasByteOrder || Load<std::uint16_t>(std::span(header).subspan(2)) != kTiffMagic)
        throw Exception(KX_ERROR_BAD_FILE_FORMAT);

    const Entries entries = EntriesAt(Load<std::uint32_t>(std::span(header).subspan(4)));
    m_firstEntry = entries.offset;
    m_entries.resize(entries.bytes);
    file.Read(m_firstEntry, m_entries);
}

TiffDirectory::Entries TiffDirectory::EntriesAt(std::uint64_t offset) const {
    std::array<std::uint8_t, 2> count;
    m_file.Read(offset, count);
    const Entries entries{offset + count.size(), Load<std::uint16_t>(count) * kTiffEntryBytes};
    m_file.Require(entries.offset, entries.bytes);
    return entries;
}

std::uint32_t TiffDirectory::NextAfter(const Entries& entries) const {
    std::array<std::uint8_t, 4> offset;
    m_file.Read(entries.offset + entries.bytes, offset);
    return Load<std::uint32_t>(offset);
}

std::uint32_t TiffDirectory::CountDirectories() const {
    constexpr std::size_t kMost = 65535;
    std::unordered_set<std::uint64_t> found;
    const auto follow = [&] {
        Entries entries{m_firstEntry, m_entries.size()};
        while (found.insert(entries.offset).second && found.size() < kMost) {
            const std::uint32_t next = NextAfter(entries);
            if (next == 0) break;
            entries = EntriesAt(next);
        }
    };
    // A file that is cut, or written by a program that left out the last link, has had its last directory.
    if (ErrorOf(follow) == KX_ERROR_ALLOCATION) throw Exception(KX_ERROR_ALLOCATION);
    return static_cast<std::uint32_t>(found.size());
}

std::optional<TiffField> TiffDirectory::Find(TiffTag tag, std::initializer_list<TiffType> types) const {
    const std::span<const std::uint8_t> entries(m_entries);
    for (std::size_t end = entries.size(); end != 0; end -= kTiffEntryBytes) {
        const auto entry = entries.subspan(end - kTiffEntryBytes, kTiffEntryBytes);
        if (TiffTag{Load<std::uint16_t>(entry)} != tag) continue;

        TiffField field{TiffType{Load<std::uint16_t>(entry.subspan(2))},
                        Load<std::uint32_t>(entry.subspan(4)), 0};
        if (field.count == 0 || std::ranges::find(types, field.type) == types.end()) return std::nullopt;
        const bool isInline = SizeOf(field.type) * std::uint64_t{field.count} <= kTiffInlineBytes;
        field.offset =
            isInline ? m_firstEntry + end - kTiffInlineBytes : Load<std::uint32_t>(entry.subspan(8));
        return field;
    }
    return std::nullopt;
}

TiffNumbers TiffDirectory::Numbers(TiffTag tag) const {
    const auto field = Find(tag, {TiffType::Byte, TiffType::Short, TiffType::Long});
    return field ? TiffNumbers(m_file, m_bigEndian, *field) : TiffNumbers();
}

std::uint32_t TiffDirectory::Number(TiffTag tag, std::uint32_t ifMissing) const {
    TiffNumbers numbers = Numbers(tag);
    return numbers.Count() != 0 ? numbers.Next() : ifMissing;
}

float TiffDirectory::Rational(TiffTag tag) const {
    const auto field = Find(tag, {TiffType::Rational});
    if (!field) return 0;
    std::array<std::uint8_t, 8> value;
    m_file.Read(field->offset, value);
    const double numerator = Load<std::uint32_t>(value);
    const double denominator = Load<std::uint32_t>(std::span(value).subspan(4));
    return denominator != 0 ? static_cast<float>(numerator / denominator) : 0;
}

std::optional<std::string> TiffDirectory::Text(TiffTag tag) const {
    const auto field = Find(tag, {TiffType::Ascii});
    if (!field) return std::nullopt;
    if (field->count <= kTiffInlineBytes) return ShortText(*field);
    m_file.Require(field->offset, field->count);
    return TextAt(field->offset, std::min<std::size_t>(field->count, kMaxTextBytes));
}

std::string TiffDirectory::ShortText(const TiffField& field) const {
    std::array<std::uint8_t, kTiffInlineBytes> value;
    m_file.Read(field.offset, value);

    // A text this short belongs in its entry, but there are writers that put its offset there. We believe in
    // an offset when the entry itself is no text and a text of exactly this length stands in that place.
    if (!IsPlainText(std::span(value).first(field.count))) {
        const std::uint64_t offset = Load<std::uint32_t>(value);
        if (offset + field.count <= m_file.Size()) {
            std::string text = TextAt(offset, field.count);
            if (text.size() == field.count - 1) return text;
        }
    }
    return TextAt(field.offset, field.count);
}

std::string TiffDirectory::TextAt(std::uint64_t offset, std::size_t bytes) const {
    std::vector<std::uint8_t> text(bytes);
    m_file.Read(offset, text);
    return std::string(text.begin(), std::ranges::find(text, 0));
}

}  // namespace Zelkor::Kalvo
