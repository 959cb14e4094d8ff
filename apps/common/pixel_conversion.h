#pragma once
// How a pixel of every file type becomes one of every other: through light on a 32-bit scale.

#include <cstdint>
#include <memory>

#include "kalvo/image/kximage.h"
#include "common/failure.h"

namespace App {

// Components from 0 (dark, clear) to 2^32 - 1 (bright, opaque). Grey light has three equal ones.
struct Light {
    std::uint32_t red;
    std::uint32_t green;
    std::uint32_t blue;
    std::uint32_t opacity = 0xFFFFFFFF;
};

// Spreads `bits` bits over 32 by repeating them, so that all ones stay all ones and `Narrow` gives them
// back.
constexpr std::uint32_t Widen(std::uint32_t value, int bits) {
    std::uint32_t wide = value << (32 - bits);
    for (int filled = bits; filled < 32; filled *= 2) wide |= wide >> filled;
    return wide;
}

// The upper `bits` bits as a number of type `Value`.
template <class Value>
constexpr Value Narrow(std::uint32_t wide, int bits) {
    return static_cast<Value>(wide >> (32 - bits));
}

// What the eye sees of the components, after the weights of the television standards.
constexpr std::uint32_t Brightness(const Light& light) {
    return static_cast<std::uint32_t>((299 * std::uint64_t{light.red} + 587 * std::uint64_t{light.green} +
                                       114 * std::uint64_t{light.blue}) /
                                      1000);
}

constexpr Light Gray(std::uint32_t value, int bits) {
    const std::uint32_t wide = Widen(value, bits);
    return {wide, wide, wide};
}

// Components of a KxC24 stand in the order red, green, blue.
constexpr Light ToLight(KxBW1 pixel) { return Gray(pixel.m_un8Value, 1); }
constexpr Light ToLight(KxBW8 pixel) { return Gray(pixel.m_Value, 8); }
constexpr Light ToLight(KxBW16 pixel) { return Gray(pixel.m_Value, 16); }
constexpr Light ToLight(KxBW32 pixel) { return Gray(pixel.m_Value, 32); }
constexpr Light ToLight(KxC15 pixel) {
    return {Widen(pixel.m_Value >> 10 & 31, 5), Widen(pixel.m_Value >> 5 & 31, 5),
            Widen(pixel.m_Value & 31, 5)};
}
constexpr Light ToLight(KxC16 pixel) {
    return {Widen(pixel.m_Value >> 11 & 31, 5), Widen(pixel.m_Value >> 5 & 63, 6),
            Widen(pixel.m_Value & 31, 5)};
}
constexpr Light ToLight(KxC24 pixel) {
    return {Widen(pixel.m_un8C0, 8), Widen(pixel.m_un8C1, 8), Widen(pixel.m_un8C2, 8)};
}
constexpr Light ToLight(KxC24A pixel) {
    return {Widen(pixel.m_un8C0, 8), Widen(pixel.m_un8C1, 8), Widen(pixel.m_un8C2, 8),
            Widen(pixel.m_un8A, 8)};
}

// Turns light into pixels; from `threshold` up, on the scale 0 to 255, a bilevel pixel is 1.
struct PixelMaker {
    int threshold;

    constexpr void Make(const Light& light, KxBW1& pixel) const {
        pixel = Narrow<int>(Brightness(light), 8) >= threshold;
    }
    constexpr void Make(const Light& light, KxBW8& pixel) const {
        pixel = Narrow<std::uint8_t>(Brightness(light), 8);
    }
    constexpr void Make(const Light& light, KxBW16& pixel) const {
        pixel = Narrow<std::uint16_t>(Brightness(light), 16);
    }
    constexpr void Make(const Light& light, KxBW32& pixel) const { pixel = Brightness(light); }
    constexpr void Make(const Light& light, KxC15& pixel) const {
        pixel = static_cast<std::uint16_t>(Narrow<int>(light.red, 5) << 10 |
                                           Narrow<int>(light.green, 5) << 5 | Narrow<int>(light.blue, 5));
    }
    constexpr void Make(const Light& light, KxC16& pixel) const {
        pixel = static_cast<std::uint16_t>(Narrow<int>(light.red, 5) << 11 |
                                           Narrow<int>(light.green, 6) << 5 | Narrow<int>(light.blue, 5));
    }
    constexpr void Make(const Light& light, KxC24& pixel) const {
        pixel = {Narrow<std::uint8_t>(light.red, 8), Narrow<std::uint8_t>(light.green, 8),
                 Narrow<std::uint8_t>(light.blue, 8)};
    }
    constexpr void Make(const Light& light, KxC24A& pixel) const {
        pixel = {Narrow<std::uint8_t>(light.red, 8), Narrow<std::uint8_t>(light.green, 8),
                 Narrow<std::uint8_t>(light.blue, 8), Narrow<std::uint8_t>(light.opacity, 8)};
    }
};

// A new image of type `To` with the pixels of `source`.
template <class To, class From>
std::unique_ptr<KxImage<To>> Convert(const KxROI<From>& source, const PixelMaker& maker) {
    const int width = source.GetWidth(), height = source.GetHeight();
    auto image = Checked([&] { return std::make_unique<KxImage<To>>(width, height); });
    To pixel;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            maker.Make(ToLight(source.GetPixel(x, y)), pixel);
            image->SetPixel(pixel, x, y);
        }
    return image;
}

}  // namespace App
