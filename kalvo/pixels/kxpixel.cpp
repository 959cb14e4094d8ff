// Named colours, names of colour systems, and the text forms of the value types.

#include "kalvo/pixels/kxpixel.h"

#include <iterator>

#include "kalvo/pixels/pixeldispatch.h"

namespace {

using namespace Zelkor::Kalvo;

#define KX_COUNT(Pixel) +1
#define KX_IS_LISTED(Pixel) \
    &&IndexOfPixel<Pixel>(std::type_identity<PixelTypes>()) < std::tuple_size_v<PixelTypes>
static_assert(0 KX_FOR_EACH_PIXEL(KX_COUNT) == std::tuple_size_v<PixelTypes>);
static_assert(true KX_FOR_EACH_PIXEL(KX_IS_LISTED));
#undef KX_COUNT
#undef KX_IS_LISTED

}  // namespace

constinit const KxC24 KxBlack24(0, 0, 0);
constinit const KxC24 KxRed24(0, 0, 255);
constinit const KxC24 KxGreen24(0, 255, 0);
constinit const KxC24 KxBlue24(255, 0, 0);
constinit const KxC24 KxCyan24(255, 255, 0);
constinit const KxC24 KxMagenta24(255, 0, 255);
constinit const KxC24 KxYellow24(0, 255, 255);
constinit const KxC24 KxWhite24(255, 255, 255);
constinit const KxC24 KxGray24(128, 128, 128);

std::ostream& operator<<(std::ostream& stream, const KxRun& run) {
    return stream << "( KxRun : pBeg =" << run.pBeg << " pEnd =" << run.pEnd << " n16X =" << run.n16X
                  << " n16Y =" << run.n16Y << ")";
}

std::ostream& operator<<(std::ostream& stream, const KxC24& pixel) {
    return stream << "( KxC24 : m_un8C2 =" << pixel.m_un8C2 << " m_un8C1 =" << pixel.m_un8C1
                  << " m_un8C0 =" << pixel.m_un8C0 << ")";
}

std::ostream& operator<<(std::ostream& stream, const KxColor& color) {
    return stream << "( KxColor : X =" << color.X << " Y =" << color.Y << " Z =" << color.Z << ")";
}

namespace Zelkor::Kalvo {

const char* ColorSystemName(KX_COLOR_SYSTEM eColorSystem) {
    static constexpr const char* kNames[] = {
        "KX_COLOR_SYSTEM_UNKNOWN",    "KX_COLOR_SYSTEM_NONE",    "KX_COLOR_SYSTEM_BILEVEL",
        "KX_COLOR_SYSTEM_GRAY_LEVEL", "KX_COLOR_SYSTEM_XYZ",     "KX_COLOR_SYSTEM_RGB",
        "KX_COLOR_SYSTEM_LAB",        "KX_COLOR_SYSTEM_LUV",     "KX_COLOR_SYSTEM_YUV",
        "KX_COLOR_SYSTEM_YIQ",        "KX_COLOR_SYSTEM_LCH",     "KX_COLOR_SYSTEM_ISH",
        "KX_COLOR_SYSTEM_LSH",        "KX_COLOR_SYSTEM_VSH",     "KX_COLOR_SYSTEM_YSH",
        "KX_COLOR_SYSTEM_LABELIZED",  "KX_COLOR_SYSTEM_GRADIENT"};
    constexpr int kFirst = KX_COLOR_SYSTEM_UNKNOWN;
    const std::int64_t index = std::int64_t{eColorSystem} - kFirst;
    if (index < 0 || index >= std::int64_t{std::size(kNames)}) return "KX_COLOR_SYSTEM : <UNKNOWN>";
    return kNames[index];
}

}  // namespace Zelkor::Kalvo
