// Mixing pixels of two surfaces: all in one proportion, or each in its own.

#include <cstring>
#include <vector>

#include "kalvo/kernels/kernels.h"
#include "kalvo/raster/blit.h"
#include "kalvo/raster/blitrows.h"

namespace Zelkor::Platform {
namespace {

// Calls mix(row, pixels, count) with pixels of `form` and those of a source, count of both. Destinations of
// another layout have them in a row beside.
template <class Mix>
void MixRows(const Surface& destination, const Surface& source, const BlitAxis& columns, const BlitAxis& rows,
             PixelLayout layout, Mix&& mix) {
    const std::ptrdiff_t bytesPerPixel = BytesPerPixel(layout);
    Surface form;
    form.layout = layout;
    RowConverter toMixed(destination, form), fromMixed(form, destination);
    std::vector<std::uint8_t> mixed;
    ForEachSpan(destination, source, columns, rows, form,
                [&](int y, int x0, int x1, const std::uint8_t* pixels, int pixelsX) {
                    std::uint8_t* const row = destination.Row(y);
                    const auto count = static_cast<std::size_t>(x1 - x0);
                    pixels += bytesPerPixel * pixelsX;
                    if (destination.layout == layout) return mix(row + bytesPerPixel * x0, pixels, count);
                    mixed.resize(bytesPerPixel * count);
                    toMixed.Convert(row, x0, mixed.data(), 0, x1 - x0);
                    mix(mixed.data(), pixels, count);
                    fromMixed.Convert(mixed.data(), 0, row, x0, x1 - x0);
                });
}

// Two components in 16 bits each, times factor / 255, rounded.
constexpr std::uint32_t Times(std::uint32_t pair, std::uint32_t factor) {
    const std::uint32_t product = pair * factor + 0x00800080;
    return (product + (product >> 8 & 0x00FF00FF)) >> 8 & 0x00FF00FF;
}

constexpr std::uint32_t SumUpTo255(std::uint32_t a, std::uint32_t b) {
    const std::uint32_t sum = a + b;
    return (sum | (sum >> 8 & 0x00010001) * 0xFF) & 0x00FF00FF;
}

void MixPremultiplied(std::uint8_t* destination, const std::uint8_t* source, std::size_t count,
                      std::uint8_t alpha) {
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t s, d;
        std::memcpy(&s, source + 4 * i, 4);
        std::memcpy(&d, destination + 4 * i, 4);
        const std::uint32_t sEven = Times(s & 0x00FF00FF, alpha), sOdd = Times(s >> 8 & 0x00FF00FF, alpha);
        const std::uint32_t rest = 255 - (sOdd >> 16);
        d = SumUpTo255(sEven, Times(d & 0x00FF00FF, rest)) |
            SumUpTo255(sOdd, Times(d >> 8 & 0x00FF00FF, rest)) << 8;
        std::memcpy(destination + 4 * i, &d, 4);
    }
}

}  // namespace

void Blend(const Surface& destination, const Surface& source, const BlitAxis& columns, const BlitAxis& rows,
           std::uint8_t alpha) {
    // Components of whole bytes mix where they are, others in a row of 24 bits.
    const PixelLayout layout =
        BytesPerPixel(destination.layout) >= 3 ? destination.layout : PixelLayout::Bgr24;
    MixRows(destination, source, columns, rows, layout,
            [&](std::uint8_t* row, const std::uint8_t* pixels, std::size_t count) {
                Kernels::Active().blendConstant(row, pixels, BytesPerPixel(layout) * count, alpha);
            });
}

void BlendPremultiplied(const Surface& destination, const Surface& source, const BlitAxis& columns,
                        const BlitAxis& rows, std::uint8_t alpha) {
    MixRows(destination, source, columns, rows, PixelLayout::Bgrx32,
            [&](std::uint8_t* row, const std::uint8_t* pixels, std::size_t count) {
                MixPremultiplied(row, pixels, count, alpha);
            });
}

}  // namespace Zelkor::Platform
