// Converts rows of pixels. A row goes in pieces through words of 32 bits: one loop per layout loads them and
// one stores them, instead of a loop for every pair. What a table makes of bytes mostly is what is stored.

#include "kalvo/raster/convert.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "kalvo/kernels/kernels.h"
#include "kalvo/raster/pixelaccess.h"

namespace Zelkor::Platform {
namespace {

constexpr int kPiece = 512;  // pixels; a piece of words stays in the nearest cache

// Loading

// Eight pixels are stored at a time. Measured: single ones look to the processor as if they might change the
// table that it reads next, and take up to four times as long, depending on where the table is.
template <class Word>
void LookUp(const RowConverter::Table& table, const std::uint8_t* pixels, std::uint8_t* words, int count) {
    constexpr int kGroup = 8;
    int i = 0;
    const auto lookUp = [&](int size) {
        Word group[kGroup];
        for (int k = 0; k < size; ++k) group[k] = static_cast<Word>(table.pixels[pixels[i + k]]);
        std::memcpy(words + sizeof(Word) * static_cast<std::size_t>(i), group,
                    sizeof(Word) * static_cast<std::size_t>(size));
    };
    for (; i <= count - kGroup; i += kGroup) lookUp(kGroup);
    lookUp(count - i);
}

void LookUpBytes(const RowConverter::Table& table, const std::uint8_t* pixels, std::uint8_t* bytes,
                 int count) {
    Kernels::Active().lookUp(table.bytes.data(), pixels, bytes, static_cast<std::size_t>(count));
}

using Repeat = void (*Kernels::Table::*)(const std::uint8_t* source, std::uint8_t* destination,
                                         std::size_t pixels);

// For tables whose entry k is the grey k.
template <Repeat kRepeat>
void LoadGreys(const RowConverter::Table&, const std::uint8_t* pixels, std::uint8_t* stored, int count) {
    (Kernels::Active().*kRepeat)(pixels, stored, static_cast<std::size_t>(count));
}

// For tables of greys.
template <Repeat kRepeat, int kBytes>
void LookUpGreys(const RowConverter::Table& table, const std::uint8_t* pixels, std::uint8_t* stored,
                 int count) {
    std::array<std::uint8_t, kPiece> greys;
    for (int done = 0, width; done < count; done += width) {
        width = std::min(count - done, kPiece);
        LookUpBytes(table, pixels + done, greys.data(), width);
        LoadGreys<kRepeat>(table, greys.data(), stored + std::ptrdiff_t{kBytes} * done, width);
    }
}

template <RawPixel (*kBgrFromWord)(unsigned)>
void LoadWords16(const RowConverter::Table&, const std::uint8_t* pixels, std::uint8_t* words, int count) {
    for (int i = 0; i < count; ++i)
        Bgrx32Access::Store(words, i, kBgrFromWord(Word16Access::Read(pixels, i)));
}

void Load24(const RowConverter::Table&, const std::uint8_t* pixels, std::uint8_t* words, int count) {
    Kernels::Active().widen24To32(pixels, words, static_cast<std::size_t>(count));
}

// Storing. From indexed sources the table has made the pixels what is stored.

unsigned As555(NearestColors&, RawPixel bgr) { return Bgr555(bgr); }
unsigned As565(NearestColors&, RawPixel bgr) { return Bgr565(bgr); }
unsigned AsIndices(NearestColors& nearest, RawPixel bgr) { return nearest.IndexOf(bgr); }

using Encode = unsigned(NearestColors& nearest, RawPixel pixel);

template <class Access, Encode kEncode>
void StoreAs(RowConverter::Encoding& encoding, const std::uint8_t* words, std::uint8_t* row, int x,
             int count) {
    for (int i = 0; i < count; ++i)
        Access::Store(row, x + i, kEncode(encoding.nearest, Bgrx32Access::Read(words, i)));
}

void StoreBytesAsBits(RowConverter::Encoding& encoding, const std::uint8_t* bytes, std::uint8_t* row, int x,
                      int count) {
    std::array<std::uint8_t, kPiece / 8> bits;
    const auto pixels = static_cast<std::size_t>(count);
    Kernels::Active().thresholdToBits(bytes, encoding.threshold, bits.data(), pixels);
    Kernels::Active().copyBits(bits.data(), 0, row + x / 8, x % 8, pixels);
}

void StoreWordsAsBits(RowConverter::Encoding& encoding, const std::uint8_t* words, std::uint8_t* row, int x,
                      int count) {
    std::array<std::uint8_t, kPiece> indices;
    StoreAs<Indexed8Access, AsIndices>(encoding, words, indices.data(), 0, count);
    StoreBytesAsBits(encoding, indices.data(), row, x, count);
}

void Store24(RowConverter::Encoding&, const std::uint8_t* words, std::uint8_t* row, int x, int count) {
    Kernels::Active().narrow32To24(words, row + 3 * static_cast<std::ptrdiff_t>(x),
                                   static_cast<std::size_t>(count));
}

// By layout, of the source or of the destination.

RowConverter::Load* const kLoadsOfDirect[] = {
    nullptr, nullptr, LoadWords16<BgrFrom555>, LoadWords16<BgrFrom565>, Load24, nullptr};
RowConverter::Load* const kLoadsForIndexed[] = {LookUpBytes,           LookUpBytes,
                                                LookUp<std::uint16_t>, LookUp<std::uint16_t>,
                                                LookUp<std::uint32_t>, LookUp<std::uint32_t>};
RowConverter::Store* const kStoresFromIndexed[] = {StoreBytesAsBits, nullptr, nullptr,
                                                   nullptr,          Store24, nullptr};
RowConverter::Store* const kStoresFromDirect[] = {StoreWordsAsBits,
                                                  StoreAs<Indexed8Access, AsIndices>,
                                                  StoreAs<Word16Access, As555>,
                                                  StoreAs<Word16Access, As565>,
                                                  Store24,
                                                  nullptr};

template <class Entry>
Entry ForLayout(Entry const (&entries)[6], PixelLayout layout) {
    return entries[static_cast<int>(layout)];
}

bool HaveSamePixels(const Surface& source, const Surface& destination) {
    return source.layout == destination.layout &&
           (!IsIndexed(source.layout) ||
            std::ranges::equal(source.colors, destination.colors, {}, BgrFromEntry, BgrFromEntry));
}

bool NeedsNearest(const Surface& source, const Surface& destination) {
    return IsIndexed(destination.layout) && !IsIndexed(source.layout);
}

// What makes pixels of three or four bytes by a table of greys, if it is one.
RowConverter::Load* GreyLoadOf(const RowConverter::Table& table, int bytes) {
    bool isRamp = true;
    for (unsigned i = 0; i < table.pixels.size(); ++i) {
        const unsigned grey = table.bytes[i];
        if (table.pixels[i] != PackBgr(grey, grey, grey)) return nullptr;
        isRamp = isRamp && grey == i;
    }
    using Kernels::Table;
    if (bytes == 3) return isRamp ? LoadGreys<&Table::repeatTo24> : LookUpGreys<&Table::repeatTo24, 3>;
    return isRamp ? LoadGreys<&Table::repeatTo32> : LookUpGreys<&Table::repeatTo32, 4>;
}

// The byte from which a table says 1, if it says 0 before.
std::optional<std::uint8_t> StepOf(std::span<const RawPixel> table) {
    const auto step = std::ranges::find(table, RawPixel{1});
    if (step == table.end() || std::find(step, table.end(), RawPixel{0}) != table.end()) return std::nullopt;
    return static_cast<std::uint8_t>(step - table.begin());
}

}  // namespace

void CopyPixels(PixelLayout layout, const std::uint8_t* source, int sourceX, std::uint8_t* destination,
                int destinationX, int count) {
    if (layout == PixelLayout::Bits1) {
        Kernels::Active().copyBits(source + sourceX / 8, sourceX % 8, destination + destinationX / 8,
                                   destinationX % 8, static_cast<std::size_t>(count));
    } else {
        const std::ptrdiff_t bytes = BytesPerPixel(layout);
        Kernels::Active().copyBytes(source + bytes * sourceX, destination + bytes * destinationX,
                                    static_cast<std::size_t>(bytes * count));
    }
}

constexpr unsigned kMetBits = 12;

// Black is right at any place, so with it no place is ever empty.
NearestColors::NearestColors(std::span<const RGBQUAD> colors, std::optional<RawPixel> matched)
    : m_colors(colors), m_matched(matched) {
    if (!colors.empty()) m_met.assign(1u << kMetBits, Search(0));
}

unsigned NearestColors::Search(RawPixel bgr) const {
    return m_matched ? bgr == *m_matched : NearestEntry(m_colors, bgr);
}

unsigned NearestColors::IndexOf(RawPixel bgr) {
    std::uint32_t& met = m_met[bgr * 0x9E3779B1u >> (32 - kMetBits)];
    if (met >> 8 != bgr) met = bgr << 8 | Search(bgr);
    return met & 0xFF;
}

RowConverter::RowConverter(const Surface& source, const Surface& destination)
    : m_source(source.layout),
      m_copies(HaveSamePixels(source, destination)),
      m_encoding{
          NearestColors(NeedsNearest(source, destination) ? destination.colors : std::span<const RGBQUAD>(),
                        destination.matched)},
      m_bytesStored(BytesPerPixel(destination.layout)),
      m_load(ForLayout(kLoadsOfDirect, source.layout)),
      m_store(ForLayout(kStoresFromDirect, destination.layout)) {
    if (!IsIndexed(source.layout)) return;
    FillTable(source, destination);
    m_load = ForLayout(kLoadsForIndexed, destination.layout);
    m_store = ForLayout(kStoresFromIndexed, destination.layout);
    if (m_bytesStored >= 3) {
        if (Load* const load = GreyLoadOf(m_table, m_bytesStored)) {
            m_load = load;
            m_store = nullptr;
        }
    }
    if (destination.layout == PixelLayout::Bits1) {
        if (const auto step = StepOf(m_table.pixels)) {
            m_encoding.threshold = *step;
            m_load = nullptr;
        }
    }
    m_expands = source.layout == PixelLayout::Bits1 && destination.layout == PixelLayout::Indexed8 &&
                m_table.pixels.front() == 0 && m_table.pixels.back() == 0xFF;
}

void RowConverter::FillTable(const Surface& source, const Surface& destination) {
    m_table.pixels.resize(256);
    const auto pixelOf = [&](std::size_t index) {
        const RawPixel bgr = BgrFromRaw(source, static_cast<RawPixel>(index));
        return destination.matched ? bgr == *destination.matched : RawFromBgr(destination, bgr);
    };
    if (source.layout == PixelLayout::Bits1) {
        // Nothing meets the entries between; like this, black and white make a ramp.
        for (unsigned grey = 1; grey < 255; ++grey) m_table.pixels[grey] = PackBgr(grey, grey, grey);
        m_table.pixels.front() = pixelOf(0);
        m_table.pixels.back() = pixelOf(1);
    } else {
        for (std::size_t i = 0; i < m_table.pixels.size(); ++i) m_table.pixels[i] = pixelOf(i);
    }
    std::ranges::transform(m_table.pixels, m_table.bytes.begin(),
                           [](RawPixel pixel) { return static_cast<std::uint8_t>(pixel); });
}

void RowConverter::Convert(const std::uint8_t* source, int sourceX, std::uint8_t* destination,
                           int destinationX, int count) {
    if (m_copies) {
        CopyPixels(m_source, source, sourceX, destination, destinationX, count);
    } else if (m_expands) {
        Kernels::Active().expandBits(source + sourceX / 8, sourceX % 8, destination + destinationX,
                                     static_cast<std::size_t>(count));
    } else if (m_source != PixelLayout::Bits1) {
        ConvertBytes(source + static_cast<std::ptrdiff_t>(BytesPerPixel(m_source)) * sourceX, destination,
                     destinationX, count);
    } else {
        std::array<std::uint8_t, kPiece> bytes;
        for (int done = 0, pixels; done < count; done += pixels) {
            pixels = std::min(count - done, kPiece);
            const int x = sourceX + done;
            Kernels::Active().expandBits(source + x / 8, x % 8, bytes.data(),
                                         static_cast<std::size_t>(pixels));
            ConvertBytes(bytes.data(), destination, destinationX + done, pixels);
        }
    }
}

void RowConverter::ConvertBytes(const std::uint8_t* pixels, std::uint8_t* destination, int destinationX,
                                int count) {
    if (m_copies && m_source != PixelLayout::Bits1)
        return CopyPixels(m_source, pixels, 0, destination, destinationX, count);
    if (!m_store)
        return m_load(m_table, pixels,
                      destination + static_cast<std::ptrdiff_t>(m_bytesStored) * destinationX, count);
    std::array<std::uint8_t, 4 * kPiece> piece;
    for (int done = 0, width; done < count; done += width) {
        width = std::min(count - done, kPiece);
        const std::uint8_t* loaded = pixels + static_cast<std::ptrdiff_t>(BytesPerPixel(m_source)) * done;
        if (m_load) {
            m_load(m_table, loaded, piece.data(), width);
            loaded = piece.data();
        }
        m_store(m_encoding, loaded, destination, destinationX + done, width);
    }
}

}  // namespace Zelkor::Platform
