// Walks the strips in order, once to see that they hold the picture and once to fill the destination.

#include "kalvo/imagefiles/tiff_strips.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "kalvo/imagefiles/packbits.h"
#include "kalvo/kernels/kernels.h"

namespace Zelkor::Kalvo {
namespace {

template <class Sample>
void BigEndianToHost(std::uint8_t* samples, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, samples += sizeof(Sample))
        StoreLittleEndian(samples, LoadBigEndian<Sample>(samples));
}

void ReverseBits(std::span<std::uint8_t> bytes) {
    for (std::uint8_t& byte : bytes) {
        unsigned bits = byte;
        bits = bits >> 4 | bits << 4;
        bits = (bits & 0xCC) >> 2 | (bits & 0x33) << 2;
        bits = (bits & 0xAA) >> 1 | (bits & 0x55) << 1;
        byte = static_cast<std::uint8_t>(bits);
    }
}

// Takes the bytes of the picture in order and makes pixels of each full row. Pixels that are as wide in the
// file as in the destination are stored there at once and converted in place; only bits pass through a row of
// ours.
class PixelFiller {
public:
    PixelFiller(const TiffPicture& picture, const RegionRows& rows, int bitsPerPixel)
        : m_picture(picture),
          m_rows(rows),
          m_bitsPerPixel(bitsPerPixel),
          m_converts(picture.bits == 1 || picture.samples == 3 || (picture.bits > 8 && picture.isBigEndian)),
          m_bitRow(picture.bits == 1 ? picture.rowBytes : 0) {}

    // Where the bytes from `position` on go: as many as follow each other there, and lie in one row when rows
    // are converted.
    std::span<std::uint8_t> Room(std::uint64_t position) {
        const std::uint64_t column = position % m_picture.rowBytes;
        if (m_picture.bits == 1) return std::span(m_bitRow).subspan(column);
        std::uint8_t* row = m_rows.Row(static_cast<int>(position / m_picture.rowBytes));
        const bool isContiguous = m_rows.pitchBytes == static_cast<std::ptrdiff_t>(m_picture.rowBytes);
        if (isContiguous && !m_converts) return {row + column, m_picture.bytes - position};
        return {row + column, m_picture.rowBytes - column};
    }

    // The picture has been stored up to `position`.
    void FilledUpTo(std::uint64_t position) {
        if (m_converts && position % m_picture.rowBytes == 0)
            ConvertRow(m_rows.Row(static_cast<int>(position / m_picture.rowBytes) - 1));
    }

private:
    void ConvertRow(std::uint8_t* row) const {
        const std::size_t pixels = m_picture.width;
        if (m_picture.samples == 3)
            Kernels::Active().swapRedBlue(row, row, pixels);
        else if (m_picture.bits == 16)
            BigEndianToHost<std::uint16_t>(row, pixels);
        else if (m_picture.bits == 32)
            BigEndianToHost<std::uint32_t>(row, pixels);
        else if (m_bitsPerPixel == 8)
            Kernels::Active().expandBits(m_bitRow.data(), 0, row, pixels);
        else
            Kernels::Active().copyBits(m_bitRow.data(), 0, row, m_rows.firstBit, pixels);
    }

    const TiffPicture& m_picture;
    const RegionRows m_rows;
    const int m_bitsPerPixel;
    const bool m_converts;
    std::vector<std::uint8_t> m_bitRow;
};

// One walk over the strips. Without a filler it only counts what they hold.
class StripWalk {
public:
    StripWalk(const ImageFileReader& file, const TiffPicture& picture, PixelFiller* filler)
        : m_file(file), m_picture(picture), m_filler(filler) {}

    void Run(const TiffDirectory& directory);

private:
    void Copy(std::uint64_t offset, std::uint64_t bytes);
    void Unpack(std::uint64_t offset, std::uint64_t bytes, std::uint64_t limit);
    void Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const;
    void Advance(std::uint64_t bytes);

    const ImageFileReader& m_file;
    const TiffPicture& m_picture;
    PixelFiller* m_filler;
    std::uint64_t m_position = 0;  // in the bytes of the picture
};

void StripWalk::Run(const TiffDirectory& directory) {
    TiffNumbers offsets = directory.Numbers(TiffTag::StripOffsets);
    TiffNumbers byteCounts = directory.Numbers(TiffTag::StripByteCounts);

    // A strip may be padded beyond its last row, so the rows per strip count; but not when they contradict
    // the number of strips.
    const bool isPlausible = std::uint64_t{m_picture.rowsPerStrip} * m_picture.strips >= m_picture.height;
    const std::uint64_t stripRows = isPlausible ? m_picture.rowsPerStrip : m_picture.height;
    const std::uint64_t stripBytes =
        std::min<std::uint64_t>(stripRows, m_picture.height) * m_picture.rowBytes;

    std::uint64_t bytesRead = 0;
    for (std::uint32_t strip = 0; strip < m_picture.strips && m_position < m_picture.bytes; ++strip) {
        const std::uint64_t offset = offsets.Next();
        const std::uint64_t declared = byteCounts.Count() != 0 ? byteCounts.Next() : m_picture.bytes;
        const std::uint64_t limit = std::min(stripBytes, m_picture.bytes - m_position);
        // The last strip may be shorter than others and declare as much, so plain rows are counted.
        const std::uint64_t bytes =
            m_picture.isPacked ? declared : std::min(declared - declared % m_picture.rowBytes, limit);
        m_file.Require(offset, bytes);
        // Strips that all lie on the same bytes could make a small file take ages, and any amount of memory.
        bytesRead += bytes;
        if (bytesRead > m_file.Size()) throw Exception(KX_ERROR_FILE_READ);

        if (m_picture.isPacked)
            Unpack(offset, bytes, limit);
        else
            Copy(offset, bytes);
    }
    if (m_position < m_picture.bytes) throw Exception(KX_ERROR_FILE_READ);
}

void StripWalk::Copy(std::uint64_t offset, std::uint64_t bytes) {
    if (!m_filler) return Advance(bytes);
    while (bytes != 0) {
        std::span<std::uint8_t> room = m_filler->Room(m_position);
        room = room.first(std::min<std::uint64_t>(room.size(), bytes));
        Read(offset, room);
        offset += room.size();
        bytes -= room.size();
        Advance(room.size());
    }
}

void StripWalk::Unpack(std::uint64_t offset, std::uint64_t bytes, std::uint64_t limit) {
    PackBitsDecoder decoder;
    std::array<std::uint8_t, 16384> buffer;
    while (bytes != 0 && limit != 0) {
        const auto piece = std::span(buffer).first(std::min<std::uint64_t>(buffer.size(), bytes));
        Read(offset, piece);
        offset += piece.size();
        bytes -= piece.size();

        std::span<const std::uint8_t> packed = piece;
        while (limit != 0) {
            const std::span<std::uint8_t> room =
                m_filler ? m_filler->Room(m_position) : std::span<std::uint8_t>();
            const std::uint64_t wanted = m_filler ? std::min<std::uint64_t>(room.size(), limit) : limit;
            const std::size_t produced = decoder.Decode(packed, room.data(), wanted);
            limit -= produced;
            Advance(produced);
            if (produced < wanted) break;
        }
    }
}

void StripWalk::Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
    m_file.Read(offset, bytes);
    if (m_picture.hasReversedBits) ReverseBits(bytes);
}

void StripWalk::Advance(std::uint64_t bytes) {
    m_position += bytes;
    if (m_filler && bytes != 0) m_filler->FilledUpTo(m_position);
}

}  // namespace

void RequireStrips(const ImageFileReader& file, const TiffDirectory& directory, const TiffPicture& picture) {
    StripWalk(file, picture, nullptr).Run(directory);
}

void ReadStrips(const ImageFileReader& file, const TiffDirectory& directory, const TiffPicture& picture,
                const RegionRows& rows, int bitsPerPixel) {
    PixelFiller filler(picture, rows, bitsPerPixel);
    StripWalk(file, picture, &filler).Run(directory);
}

}  // namespace Zelkor::Kalvo
