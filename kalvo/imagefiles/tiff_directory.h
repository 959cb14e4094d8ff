#pragma once
// The first directory of a TIFF file: byte order, and the values of its tags wherever they stand in the file.
// What the tags mean for a picture is the reader's business.

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "kalvo/imagefiles/imagefile.h"
#include "kalvo/imagefiles/tiff.h"
#include "kalvo/streams/byteorder.h"

namespace Zelkor::Kalvo {

// Where the values of a tag stand.
struct TiffField {
    TiffType type;
    std::uint32_t count;
    std::uint64_t offset;
};

// The numbers of a tag in order, read in pieces: the strip tables of a large file are large themselves.
class TiffNumbers {
public:
    // No numbers.
    TiffNumbers() = default;
    TiffNumbers(const ImageFileReader& file, bool bigEndian, const TiffField& field);

    std::uint32_t Count() const { return m_field.count; }
    // The next number; call it at most `Count()` times.
    std::uint32_t Next();

private:
    const ImageFileReader* m_file = nullptr;
    bool m_bigEndian = false;
    TiffField m_field{};
    std::uint32_t m_next = 0;
    std::array<std::uint8_t, 4096> m_piece;
};

// A directory whose values are looked up by tag; of a tag that occurs twice, the last counts. Values of a
// type that is not asked for count as missing. Values beyond the end of the file throw KX_ERROR_FILE_READ.
class TiffDirectory {
public:
    // Throws KX_ERROR_BAD_FILE_FORMAT for anything that is no TIFF file.
    explicit TiffDirectory(const ImageFileReader& file);

    bool IsBigEndian() const { return m_bigEndian; }
    // How many directories follow one another, this one included; 65535 at the most. A link that leads back,
    // or out of the file, ends them.
    std::uint32_t CountDirectories() const;
    // All numbers of `tag`, which may be of any of the three widths.
    TiffNumbers Numbers(TiffTag tag) const;
    // The first number of `tag`.
    std::uint32_t Number(TiffTag tag, std::uint32_t ifMissing) const;
    // Numerator by denominator; 0 when it is missing or the denominator is 0.
    float Rational(TiffTag tag) const;
    // A text up to its NUL. It is cut after 256 KiB.
    std::optional<std::string> Text(TiffTag tag) const;

private:
    // The entries of the directory at `offset` begin there, and end after so many bytes.
    struct Entries {
        std::uint64_t offset;
        std::size_t bytes;
    };
    Entries EntriesAt(std::uint64_t offset) const;
    // The offset of the directory that follows; 0 after the last one.
    std::uint32_t NextAfter(const Entries& entries) const;
    std::optional<TiffField> Find(TiffTag tag, std::initializer_list<TiffType> types) const;
    // The text of a field that may be small enough to stand in its entry.
    std::string ShortText(const TiffField& field) const;
    std::string TextAt(std::uint64_t offset, std::size_t bytes) const;

    template <class Value>
    Value Load(std::span<const std::uint8_t> bytes) const {
        return Kalvo::Load<Value>(bytes.data(), m_bigEndian);
    }

    const ImageFileReader& m_file;
    bool m_bigEndian = false;
    std::uint64_t m_firstEntry = 0;       // offset in the file
    std::vector<std::uint8_t> m_entries;  // as they stand there
};

}  // namespace Zelkor::Kalvo
