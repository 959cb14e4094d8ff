// Writes TIFF files: header, directory and its values, then the rows in strips.

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <map>
#include <span>
#include <vector>

#include "kalvo/base/file.h"
#include "kalvo/frame/checkedsize.h"
#include "kalvo/frame/kxthread.h"
#include "kalvo/imagefiles/imagefile.h"
#include "kalvo/imagefiles/packbits.h"
#include "kalvo/imagefiles/tiff.h"
#include "kalvo/kernels/kernels.h"
#include "kalvo/streams/byteorder.h"

namespace Zelkor::Kalvo {
namespace {

using Bytes = std::vector<std::uint8_t>;
using StripByteCounts = std::vector<std::uint32_t>;

constexpr std::uint32_t kMaxFileBytes = std::numeric_limits<std::uint32_t>::max();  // offsets have 32 bits
constexpr std::size_t kChunkBytes = 64 * 1024;

// How the picture lies in the file.
struct Layout {
    std::uint32_t width;
    std::uint32_t height;
    std::uint16_t samples;
    std::uint16_t bits;  // of a sample
    bool isPacked;
    std::uint64_t rowBytes;
    std::uint32_t rowsPerStrip;

    std::uint32_t Strips() const { return (height - 1) / rowsPerStrip + 1; }
    std::uint32_t RowsIn(std::uint32_t strip) const {
        return std::min(rowsPerStrip, height - strip * rowsPerStrip);
    }
};

Layout LayoutFor(const SaveSource& source, IMAGE_FILE_TYPES type, std::uint32_t stripBytes) {
    if (source.rows.width <= 0 || source.rows.height <= 0) throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);
    const bool isBilevel = type == IMAGE_FILE_TIFF_BILEVEL || type == IMAGE_FILE_TIFF_BILEVEL_PACKBITS;
    Layout layout{};
    layout.width = static_cast<std::uint32_t>(source.rows.width);
    layout.height = static_cast<std::uint32_t>(source.rows.height);
    layout.samples = type == IMAGE_FILE_TIFF_COLOR ? 3 : 1;
    layout.bits = isBilevel ? 1 : static_cast<std::uint16_t>(source.format.bits);
    layout.isPacked = type == IMAGE_FILE_TIFF_BILEVEL_PACKBITS || type == IMAGE_FILE_TIFF_GRAY_PACKBITS;
    layout.rowBytes = (std::uint64_t{layout.width} * layout.samples * layout.bits + 7) / 8;
    const auto rowsThatFit = static_cast<std::uint32_t>(stripBytes / layout.rowBytes);
    layout.rowsPerStrip = stripBytes == 0 ? layout.height : std::max(rowsThatFit, 1u);

    const std::uint64_t bytes = CheckedSize(layout.rowBytes, layout.height, KX_ERROR_FILE_WRITE);
    if (bytes > kMaxFileBytes) throw Exception(KX_ERROR_FILE_WRITE);
    return layout;
}

// The values of a tag as they stand in the file.
struct Field {
    TiffType type;
    std::uint32_t count;
    Bytes values;

    bool IsInline() const { return values.size() <= kTiffInlineBytes; }
    // In the data area, where values start at even offsets.
    std::size_t DataBytes() const { return IsInline() ? 0 : values.size() + values.size() % 2; }
};

// Files want their tags in ascending order.
using Directory = std::map<TiffTag, Field>;

template <class Number>
Field Numbers(TiffType type, const std::vector<Number>& numbers) {
    Field field{type, static_cast<std::uint32_t>(numbers.size()), {}};
    field.values.reserve(numbers.size() * sizeof(Number));
    for (const Number number : numbers) AppendLittleEndian(field.values, number);
    return field;
}

Field Short(std::uint16_t number) { return Numbers<std::uint16_t>(TiffType::Short, {number}); }

Field Long(std::uint32_t number) { return Numbers<std::uint32_t>(TiffType::Long, {number}); }

Field Text(const char* text) {
    const std::size_t bytes = std::strlen(text) + 1;
    return {TiffType::Ascii, static_cast<std::uint32_t>(bytes), Bytes(text, text + bytes)};
}

// Keeps the most bits that fit, over a power of two.
Field Rational(float number) {
    constexpr std::uint32_t kLimit = 2147483647;
    constexpr double kLargest = std::numeric_limits<std::uint32_t>::max();
    double numerator = number > 0 ? std::min<double>(number, kLargest) : 0;
    std::uint32_t denominator = 1;
    for (; numerator < kLimit && denominator < kLimit; denominator *= 2) numerator *= 2;
    Field field =
        Numbers<std::uint32_t>(TiffType::Rational, {static_cast<std::uint32_t>(numerator), denominator});
    field.count = 1;
    return field;
}

// Where the data area starts: right after the directory.
std::uint64_t DataOffset(const Directory& directory) {
    return kTiffHeaderBytes + 2 + directory.size() * kTiffEntryBytes + 4;
}

// Where the first strip starts.
std::uint64_t HeadBytes(const Directory& directory) {
    std::uint64_t bytes = DataOffset(directory);
    for (const auto& [tag, field] : directory) bytes += field.DataBytes();
    return bytes;
}

// What is too long for its entry, in the order of the format: arrays, rationals, texts. Notes where each is.
Bytes MakeDataArea(const Directory& directory, std::map<TiffTag, std::uint32_t>& offsets) {
    static constexpr std::array<TiffType, 2> kGroups[] = {
        {TiffType::Short, TiffType::Long}, {TiffType::Rational}, {TiffType::Ascii}};
    Bytes data;
    for (const auto& group : kGroups)
        for (const auto& [tag, field] : directory) {
            if (field.IsInline() || std::ranges::find(group, field.type) == group.end()) continue;
            offsets[tag] = static_cast<std::uint32_t>(DataOffset(directory) + data.size());
            data.insert(data.end(), field.values.begin(), field.values.end());
            data.resize(data.size() + data.size() % 2);
        }
    return data;
}

Bytes Assemble(const Directory& directory) {
    std::map<TiffTag, std::uint32_t> offsets;
    const Bytes data = MakeDataArea(directory, offsets);
    Bytes head{'I', 'I'};
    head.reserve(HeadBytes(directory));
    AppendLittleEndian(head, kTiffMagic);
    AppendLittleEndian(head, static_cast<std::uint32_t>(kTiffHeaderBytes));
    AppendLittleEndian(head, static_cast<std::uint16_t>(directory.size()));
    for (const auto& [tag, field] : directory) {
        AppendLittleEndian(head, static_cast<std::uint16_t>(tag));
        AppendLittleEndian(head, static_cast<std::uint16_t>(field.type));
        AppendLittleEndian(head, field.count);
        if (field.IsInline()) {
            head.insert(head.end(), field.values.begin(), field.values.end());
            head.resize(head.size() + kTiffInlineBytes - field.values.size());
        } else {
            AppendLittleEndian(head, offsets[tag]);
        }
    }
    AppendLittleEndian(head, std::uint32_t{0});  // no further directory
    head.insert(head.end(), data.begin(), data.end());
    return head;
}

// Everything before the strips. Its size depends on how many byte counts there are, not on their values.
Bytes MakeHead(const SaveSource& source, const Layout& layout, const StripByteCounts& byteCounts) {
    Directory directory;
    directory[TiffTag::ImageWidth] = Long(layout.width);
    directory[TiffTag::ImageLength] = Long(layout.height);
    directory[TiffTag::BitsPerSample] = Numbers(TiffType::Short, std::vector(layout.samples, layout.bits));
    directory[TiffTag::Compression] = Short(layout.isPacked ? kTiffPackBits : kTiffUncompressed);
    directory[TiffTag::PhotometricInterpretation] = Short(layout.samples == 3 ? kTiffRgb : kTiffBlackIsZero);
    directory[TiffTag::SamplesPerPixel] = Short(layout.samples);
    const bool isShort = layout.rowsPerStrip <= std::numeric_limits<std::uint16_t>::max();
    directory[TiffTag::RowsPerStrip] =
        isShort ? Short(static_cast<std::uint16_t>(layout.rowsPerStrip)) : Long(layout.rowsPerStrip);
    for (const TiffText& text : kTiffTexts)
        if (const char* value = (source.region.*text.get)()) directory[text.tag] = Text(value);

    const bool isInch = source.resolution.unit == &KxUnit_inch;
    const bool hasUnit = source.resolution.unit != &KxUnitNone;
    const FileResolution resolution =
        hasUnit && !isInch ? source.resolution.In(KxUnit_cm) : source.resolution;
    directory[TiffTag::XResolution] = Rational(resolution.x);
    directory[TiffTag::YResolution] = Rational(resolution.y);
    directory[TiffTag::ResolutionUnit] = Short(isInch ? kTiffInch : hasUnit ? kTiffCentimetre : kTiffNoUnit);

    directory[TiffTag::StripByteCounts] = Numbers(TiffType::Long, byteCounts);
    // The offsets take as much room as the byte counts, so these stand in for them until the room is known.
    directory[TiffTag::StripOffsets] = directory[TiffTag::StripByteCounts];
    std::uint64_t offset = HeadBytes(directory);
    std::vector<std::uint32_t> offsets;
    offsets.reserve(byteCounts.size());
    for (const std::uint32_t bytes : byteCounts) {
        offsets.push_back(static_cast<std::uint32_t>(offset));
        offset += bytes;
    }
    if (offset > kMaxFileBytes) throw Exception(KX_ERROR_FILE_WRITE);
    directory[TiffTag::StripOffsets] = Numbers(TiffType::Long, offsets);
    return Assemble(directory);
}

// Makes a row of the file from a row of the region. The bits that fill up the last byte must be 0 before.
void EncodeRow(const SaveSource& source, const Layout& layout, std::uint8_t threshold, int y,
               std::uint8_t* bytes) {
    const std::uint8_t* row = source.rows.Row(y);
    if (layout.samples == 3)
        Kernels::Active().swapRedBlue(row, bytes, layout.width);
    else if (layout.bits == source.format.bits)
        Kernels::Active().copyBits(row, source.rows.firstBit, bytes, 0,
                                   std::size_t{layout.width} * layout.bits);
    else
        Kernels::Active().thresholdToBits(row, threshold, bytes, layout.width);
}

// Writes the rows in chunks of at least 64 KiB. The byte counts become those of packed strips.
void WriteStrips(std::FILE* stream, const SaveSource& source, const Layout& layout, std::uint8_t threshold,
                 StripByteCounts& byteCounts) {
    Bytes chunk;
    Bytes row(layout.isPacked ? layout.rowBytes : 0);
    std::uint64_t packedBytes = 0;
    int y = 0;
    for (std::uint32_t strip = 0; strip < byteCounts.size(); ++strip) {
        std::uint64_t stripBytes = 0;
        for (std::uint32_t left = layout.RowsIn(strip); left != 0; --left, ++y) {
            const std::size_t start = chunk.size();
            if (layout.isPacked) {
                EncodeRow(source, layout, threshold, y, row.data());
                AppendPackBits(chunk, row);
            } else {
                chunk.resize(start + layout.rowBytes);
                EncodeRow(source, layout, threshold, y, chunk.data() + start);
            }
            stripBytes += chunk.size() - start;
            if (chunk.size() < kChunkBytes) continue;
            WriteBytes(stream, chunk);
            chunk.clear();
        }
        byteCounts[strip] = static_cast<std::uint32_t>(stripBytes);
        packedBytes += stripBytes;
        if (packedBytes > kMaxFileBytes) throw Exception(KX_ERROR_FILE_WRITE);
    }
    WriteBytes(stream, chunk);
}

}  // namespace

void WriteTiff(std::FILE* stream, const SaveSource& source, IMAGE_FILE_TYPES type) {
    const OzzoTLSStruct* settings = KxGetTLSPtr();
    if (!settings) throw Exception(KX_ERROR_ALLOCATION);
    const Layout layout = LayoutFor(source, type, settings->m_un32TiffStripSize);

    StripByteCounts byteCounts(layout.Strips());
    for (std::uint32_t strip = 0; strip < byteCounts.size(); ++strip)
        byteCounts[strip] = static_cast<std::uint32_t>(layout.RowsIn(strip) * layout.rowBytes);
    WriteBytes(stream, MakeHead(source, layout, byteCounts));

    const bool isContiguous = source.rows.pitchBytes == static_cast<std::ptrdiff_t>(layout.rowBytes);
    if (isContiguous && layout.samples == 1 && layout.bits >= 8 && !layout.isPacked) {
        WriteBytes(stream, std::span(source.rows.first, layout.rowBytes * layout.height));
        return;
    }
    WriteStrips(stream, source, layout, settings->m_un8TiffThreshold, byteCounts);
    if (!layout.isPacked) return;

    // How long packed strips are is known only now: the head is written once more, over the first one.
    if (!Platform::Seek(stream, 0)) throw Exception(KX_ERROR_FILE_WRITE);
    WriteBytes(stream, MakeHead(source, layout, byteCounts));
}

}  // namespace Zelkor::Kalvo
