// Pixel types as the formats rely on them: sizes, memory order, numbers, texts.

#include "tests/support/test.h"

namespace Zelkor::Kalvo {
namespace {

using ThreeBytes = std::array<std::uint8_t, 3>;

// Bytes of a value, bits and planes of a pixel in a row, code of the bits, image type, colour system.
using Numbers = std::array<int, 6>;

// In the order of PixelTypes.
constexpr Numbers kNumbers[] = {
    {1, 1, 1, 1, 0, 1},      // KxBW1
    {1, 8, 1, 2, 1, 2},      // KxBW8
    {2, 16, 1, 4, 2, 2},     // KxBW16
    {4, 32, 1, 8, 3, 2},     // KxBW32
    {2, 16, 3, 4, 4, 4},     // KxC15
    {2, 16, 3, 4, 5, 4},     // KxC16
    {3, 24, 3, 32, 6, 4},    // KxC24
    {3, 16, 3, 4, 13, 7},    // KxYUY2: Y, U, V as a value, 16 bits in a row
    {4, 32, 4, 8, 7, 4},     // KxC24A
    {8, 64, 1, 16, 9, 0},    // KxSubPixel64
    {8, 64, 1, 16, 10, 2},   // KxComplex64
    {4, 32, 1, 8, 11, 0},    // KxRaw32
    {12, 96, 1, 64, 12, 0},  // KxRaw96
    {4, 32, 1, 8, 14, 2},    // KxFLOAT32
    {8, 64, 1, 16, 15, 2},   // KxFLOAT64
};

template <std::size_t kIndex>
void CheckPixelType() {
    using Pixel = std::tuple_element_t<kIndex, PixelTypes>;
    using Traits = PixelTraits<Pixel>;
    constexpr Numbers kActual = {sizeof(Pixel),           Traits::kBitsPerPixel,
                                 Traits::kPlanesPerPixel, Traits::kBitsPerPixelCode,
                                 Traits::kImageType,      Traits::kColorSystem};
    EXPECT_EQ(kActual, kNumbers[kIndex]) << "pixel type " << kIndex;
    EXPECT_TRUE(std::is_trivially_copyable_v<Pixel> && std::is_trivially_default_constructible_v<Pixel>)
        << "rows are copied as bytes: pixel type " << kIndex;
}

TEST(Pixel, TypesHaveTheirNumbers) {
    static_assert(std::tuple_size_v<PixelTypes> == std::size(kNumbers));
    [&]<std::size_t... kIndex>(std::index_sequence<kIndex...>) { (CheckPixelType<kIndex>(), ...); }
    (std::make_index_sequence<std::size(kNumbers)>());
}

TEST(Pixel, PlainTypesPassForTheirValues) {
    EXPECT_EQ(KxBW8(200) + 100, 300);
    for (const int value : {0, 1, 2, 256, -1}) EXPECT_EQ(KxBW1(value), value == 0 ? 0 : 1) << value;
}

TEST(Pixel, ColorsAreStoredLastComponentFirst) {
    EXPECT_EQ(std::bit_cast<ThreeBytes>(KxC24(1, 2, 3)), (ThreeBytes{3, 2, 1}));
    EXPECT_EQ(std::bit_cast<std::uint32_t>(KxC24A(1, 2, 3, 4)), 0x04010203u);
    EXPECT_EQ(std::bit_cast<ThreeBytes>(KxYUY2(1, 2, 3)), (ThreeBytes{1, 2, 3}));
    EXPECT_EQ(std::bit_cast<ThreeBytes>(KxRed24), (ThreeBytes{255, 0, 0}));
    EXPECT_EQ(std::bit_cast<ThreeBytes>(KxYellow24), (ThreeBytes{255, 255, 0}));
    EXPECT_EQ(std::bit_cast<ThreeBytes>(KxCyan24), (ThreeBytes{0, 255, 255}));
}

std::string TextOf(const auto& value) { return (std::ostringstream() << value << '.').str(); }

TEST(Pixel, ValuesPrintTheirFieldsByName) {
    const auto address = [](std::uintptr_t bits) { return reinterpret_cast<void*>(bits); };
    EXPECT_EQ(TextOf(KxRun{address(0x1F0), address(0x2A0), -3, 400}),
              "( KxRun : pBeg =0x1f0 pEnd =0x2a0 n16X =-3 n16Y =400).");
    EXPECT_EQ(TextOf(KxC24('c', 'b', 'a')), "( KxC24 : m_un8C2 =a m_un8C1 =b m_un8C0 =c).");
    EXPECT_EQ(TextOf(KxColor(0.5f, -2.0f, 1e10f)), "( KxColor : X =0.5 Y =-2 Z =1e+10).");
    EXPECT_STREQ(ColorSystemName(KX_COLOR_SYSTEM{-1}), "KX_COLOR_SYSTEM_UNKNOWN");
    EXPECT_STREQ(ColorSystemName(KX_COLOR_SYSTEM{15}), "KX_COLOR_SYSTEM_GRADIENT");
    for (const int other : {16, -2, INT32_MAX, INT32_MIN})
        EXPECT_STREQ(ColorSystemName(KX_COLOR_SYSTEM{other}), "KX_COLOR_SYSTEM : <UNKNOWN>") << other;
}

}  // namespace
}  // namespace Zelkor::Kalvo
