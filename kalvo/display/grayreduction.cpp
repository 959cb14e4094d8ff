// Takes the high byte of wide grey pixels.

#include "kalvo/display/grayreduction.h"

#include <climits>
#include <cstring>

#include "kalvo/frame/kxexception.h"
#include "kalvo/image/imagecore.h"
#include "kalvo/image/regionrows.h"

namespace Zelkor::Kalvo {
namespace {

// Words are loaded as bytes, since wrapped buffers may start anywhere.
template <class Word>
void TakeHighBytes(const ConstRegionRows& wide, const RegionRows& gray) {
    for (int y = 0; y < wide.height; ++y) {
        const std::uint8_t* from = wide.Row(y);
        std::uint8_t* to = gray.Row(y);
        for (int x = 0; x < wide.width; ++x) {
            Word word;
            std::memcpy(&word, from + sizeof word * static_cast<std::size_t>(x), sizeof word);
            to[x] = static_cast<std::uint8_t>(word >> (CHAR_BIT * (sizeof word - 1)));
        }
    }
}

}  // namespace

void ReduceToGray(const KxGenericROI& region, KxImage<KxBW8>& gray) {
    ImageCore::Resize(gray, region.GetWidth(), region.GetHeight());
    const auto takeHighBytes =
        region.GetBitsPerPixel() == 16 ? TakeHighBytes<std::uint16_t> : TakeHighBytes<std::uint32_t>;
    takeHighBytes(RowsOf(region), RowsOf(gray));
}

}  // namespace Zelkor::Kalvo
