#pragma once
// Rows of pixels from one layout and colour table into another.

#include <array>
#include <optional>
#include <span>
#include <vector>

#include "kalvo/raster/surface.h"

namespace Zelkor::Platform {

// How many bytes a pixel takes in a row of whole bytes; a pixel of one bit takes one there, 0 or 255.
constexpr int BytesPerPixel(PixelLayout layout) { return (BitsPerPixel(layout) + 7) / 8; }

// Copies pixels of one layout as they are. Where pixels are whole bytes, the rows may overlap.
void CopyPixels(PixelLayout layout, const std::uint8_t* source, int sourceX, std::uint8_t* destination,
                int destinationX, int count);

// Finds the nearest entry of a colour table, and remembers the last colours met: pictures repeat theirs, and
// comparing with 256 entries is slow.
class NearestColors {
public:
    // 1 stands for `matched` alone, and 0 for everything else, when there is such a colour.
    NearestColors(std::span<const RGBQUAD> colors, std::optional<RawPixel> matched);
    unsigned IndexOf(RawPixel bgr);

private:
    unsigned Search(RawPixel bgr) const;

    std::span<const RGBQUAD> m_colors;
    std::optional<RawPixel> m_matched;
    std::vector<std::uint32_t> m_met;  // colour << 8 | index, at a place that follows from the colour
};

// Knows what each pixel of a source becomes in a destination, so that rows cost no search. Both surfaces'
// colours must outlive it.
class RowConverter {
public:
    RowConverter(const Surface& source, const Surface& destination);

    // Whether pixels stay as they are.
    bool Copies() const { return m_copies; }

    // Takes `count` pixels from `sourceX` on and stores them from `destinationX` on.
    void Convert(const std::uint8_t* source, int sourceX, std::uint8_t* destination, int destinationX,
                 int count);

    // The same with source pixels of whole bytes, as `BytesPerPixel` says.
    void ConvertBytes(const std::uint8_t* pixels, std::uint8_t* destination, int destinationX, int count);

    // Of indexed sources: what each byte becomes, and the low bytes of that.
    struct Table {
        std::vector<RawPixel> pixels;
        std::array<std::uint8_t, 256> bytes;
    };

    // Pixels are on their way as words of 32 bits, 0x00RRGGBB, or from indexed sources as what to store:
    // bytes for indexed destinations, else words of 16 or 32 bits.
    using Load = void(const Table& table, const std::uint8_t* pixels, std::uint8_t* loaded, int count);

    // How indices are found.
    struct Encoding {
        NearestColors nearest;       // from direct colours
        std::uint8_t threshold = 1;  // the least byte that becomes the bit 1
    };
    using Store = void(Encoding& encoding, const std::uint8_t* loaded, std::uint8_t* row, int x, int count);

private:
    void FillTable(const Surface& source, const Surface& destination);

    PixelLayout m_source;
    bool m_copies;
    bool m_expands = false;  // bits to bytes of 0 and 255
    Table m_table;
    Encoding m_encoding;
    int m_bytesStored;  // in a pixel of the destination, at least 1
    Load* m_load;       // null where what is to be stored is there already
    Store* m_store;     // null where what was loaded is what is stored
};

}  // namespace Zelkor::Platform
