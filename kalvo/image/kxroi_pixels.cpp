// Single pixels of regions: their typed addresses, and the cells that hold bilevel and YUY2 pixels.

#include <cstdint>
#include <functional>
#include <type_traits>

#include "kalvo/frame/boundary.h"
#include "kalvo/image/kxroi.h"

using namespace Zelkor::Kalvo;

namespace {

// How one pixel is read and stored, given the region that holds it.
template <class Pixel>
struct PixelCell {
    static Pixel Get(const KxROI<Pixel>& region, int x, int y) { return *region.GetImagePtr(x, y); }
    static void Set(KxROI<Pixel>& region, Pixel value, int x, int y) { *region.GetImagePtr(x, y) = value; }
};

template <>
struct PixelCell<KxBW1> {
    static std::uint8_t Mask(const KxROI<KxBW1>& region, int x, int y) {
        return static_cast<std::uint8_t>(0x80 >> region.GetBitIndex(x, y));
    }
    static KxBW1 Get(const KxROI<KxBW1>& region, int x, int y) {
        return *static_cast<const std::uint8_t*>(region.GetGenericImagePtr(x, y)) & Mask(region, x, y);
    }
    static void Set(KxROI<KxBW1>& region, KxBW1 value, int x, int y) {
        auto& byte = *static_cast<std::uint8_t*>(region.GetGenericImagePtr(x, y));
        const std::uint8_t mask = Mask(region, x, y);
        byte = static_cast<std::uint8_t>(value.m_un8Value ? byte | mask : byte & ~mask);
    }
};

// Two pixels share four bytes Y0 U Y1 V, and pairs are counted from the left edge of the top image.
template <>
struct PixelCell<KxYUY2> {
    static KxYUY2 Get(const KxROI<KxYUY2>& region, int x, int y) {
        const int column = x + region.GetTotalOrgX();
        const auto* cell = static_cast<const std::uint8_t*>(region.GetGenericImagePtr(x, y));
        const auto mean = [](int a, int b) { return static_cast<std::uint8_t>((a + b) / 2); };
        if (column % 2 == 0) return {cell[0], cell[1], cell[3]};
        if (column < region.GetTotalWidth() - 1)
            return {cell[0], mean(cell[-1], cell[3]), mean(cell[1], cell[5])};
        return {cell[0], cell[-1], cell[1]};
    }
    static void Set(KxROI<KxYUY2>& region, KxYUY2 value, int x, int y) {
        if (x < 0 || x >= region.GetWidth() || y < 0 || y >= region.GetHeight()) return;
        auto* cell = static_cast<std::uint8_t*>(region.GetGenericImagePtr(x, y));
        cell[0] = value.m_un8Y;
        if ((x + region.GetTotalOrgX()) % 2 != 0) return;
        cell[1] = value.m_un8U;
        cell[3] = value.m_un8V;
    }
};

// The typed address of a pixel; pairs of YUY2 pixels cannot be addressed one by one.
template <class Pixel, class Region>
auto TypedPixelAddress(Region& region, int x, int y) {
    using Address = std::conditional_t<std::is_const_v<Region>, const Pixel*, Pixel*>;
    if constexpr (std::is_same_v<Pixel, KxYUY2>) {
        Report(KX_ERROR_UNSUPPORTED_IMAGE_TYPE, "KxROI::GetImagePtr ( YUY2)");
        return Address();
    } else {
        return static_cast<Address>(region.GetGenericImagePtr(x, y));
    }
}

}  // namespace

template <class Pixel>
const Pixel* KxROI<Pixel>::GetImagePtr(int n32X, int n32Y) const {
    return TypedPixelAddress<Pixel>(*this, n32X, n32Y);
}

template <class Pixel>
Pixel* KxROI<Pixel>::GetImagePtr(int n32X, int n32Y) {
    return TypedPixelAddress<Pixel>(*this, n32X, n32Y);
}

template <class Pixel>
Pixel KxROI<Pixel>::GetPixel(int n32X, int n32Y) const {
    return PixelCell<Pixel>::Get(*this, n32X, n32Y);
}

template <class Pixel>
void KxROI<Pixel>::SetPixel(Pixel value, int n32X, int n32Y) {
    PixelCell<Pixel>::Set(*this, value, n32X, n32Y);
}

namespace Zelkor::Kalvo {

int IsPointerInROI(const KxBW8* pPixel, KxROI<KxBW8>* pROI) {
    for (int y = 0; y < pROI->GetHeight(); ++y) {
        const KxBW8* row = pROI->GetImagePtr(0, y);
        if (row && !std::less<>()(pPixel, row) && std::less<>()(pPixel, row + pROI->GetWidth())) return 1;
    }
    return 0;
}

}  // namespace Zelkor::Kalvo

#define KX_INSTANTIATE(Pixel)                                               \
    template KX_API const Pixel* KxROI<Pixel>::GetImagePtr(int, int) const; \
    template KX_API Pixel* KxROI<Pixel>::GetImagePtr(int, int);             \
    template KX_API Pixel KxROI<Pixel>::GetPixel(int, int) const;           \
    template KX_API void KxROI<Pixel>::SetPixel(Pixel, int, int);
KX_FOR_EACH_PIXEL(KX_INSTANTIATE)
#undef KX_INSTANTIATE
