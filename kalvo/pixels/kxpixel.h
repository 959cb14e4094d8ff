#pragma once
// The fifteen pixel types, the value types that travel with them, and the numbers that describe each type.

#include <cstdint>
#include <ostream>

#include "kalvo/base/kxexport.h"

/// Base of the pixel types that hold one plain value: they convert from it and to it, so that
/// `image.SetPixel(128, x, y)` and `int v = image.GetPixel(x, y)` read naturally.
template <class Value>
struct KxPlainPixel {
    using ValueType = Value;

    Value m_Value;  ///< the plain value; not set by the default constructor

    KxPlainPixel() = default;
    constexpr KxPlainPixel(Value value) : m_Value(value) {}
    constexpr operator Value() const { return m_Value; }
};

/// One bit, passed by value as 0 or 1. In a row there are eight pixels to a byte, the leftmost in the most
/// significant bit.
struct KX_API KxBW1 {
    std::uint8_t m_un8Value;  ///< 0 or 1; not set by the default constructor

    KxBW1() = default;
    constexpr KxBW1(int n32Value) : m_un8Value(n32Value != 0) {}
    constexpr operator std::uint8_t() const { return m_un8Value; }
};

/// Unsigned 8-bit grey value.
struct KX_API KxBW8 : KxPlainPixel<std::uint8_t> {
    using KxPlainPixel::KxPlainPixel;
};

/// Unsigned 16-bit grey value.
struct KX_API KxBW16 : KxPlainPixel<std::uint16_t> {
    using KxPlainPixel::KxPlainPixel;
};

/// Unsigned 32-bit grey value.
struct KX_API KxBW32 : KxPlainPixel<std::uint32_t> {
    using KxPlainPixel::KxPlainPixel;
};

/// Three components of 5 bits in one word: masks 0x7C00, 0x03E0, 0x001F; bit 15 is unused.
struct KX_API KxC15 : KxPlainPixel<std::uint16_t> {
    using KxPlainPixel::KxPlainPixel;
};

/// Three components of 5, 6 and 5 bits in one word: masks 0xF800, 0x07E0, 0x001F.
struct KX_API KxC16 : KxPlainPixel<std::uint16_t> {
    using KxPlainPixel::KxPlainPixel;
};

/// Three unsigned 8-bit components. An image in the RGB colour system holds blue, green, red in memory order.
struct KX_API KxC24 {
    std::uint8_t m_un8C2;  ///< first byte in memory
    std::uint8_t m_un8C1;
    std::uint8_t m_un8C0;

    KxC24() = default;
    constexpr KxC24(std::uint8_t un8C0, std::uint8_t un8C1, std::uint8_t un8C2)
        : m_un8C2(un8C2), m_un8C1(un8C1), m_un8C0(un8C0) {}
    friend constexpr bool operator==(const KxC24& left, const KxC24& right) {
        return left.m_un8C0 == right.m_un8C0 && left.m_un8C1 == right.m_un8C1 &&
               left.m_un8C2 == right.m_un8C2;
    }
    friend constexpr bool operator!=(const KxC24& left, const KxC24& right) { return !(left == right); }
};

/// Four unsigned 8-bit planes.
struct KX_API KxC24A {
    std::uint8_t m_un8C2;  ///< first byte in memory
    std::uint8_t m_un8C1;
    std::uint8_t m_un8C0;
    std::uint8_t m_un8A;

    KxC24A() = default;
    constexpr KxC24A(std::uint8_t un8C0, std::uint8_t un8C1, std::uint8_t un8C2, std::uint8_t un8A)
        : m_un8C2(un8C2), m_un8C1(un8C1), m_un8C0(un8C0), m_un8A(un8A) {}
    friend constexpr bool operator==(const KxC24A& left, const KxC24A& right) {
        return left.m_un8C0 == right.m_un8C0 && left.m_un8C1 == right.m_un8C1 &&
               left.m_un8C2 == right.m_un8C2 && left.m_un8A == right.m_un8A;
    }
    friend constexpr bool operator!=(const KxC24A& left, const KxC24A& right) { return !(left == right); }
};

/// Luminance and chroma of one pixel. In a row each pair of pixels takes four bytes: Y0, U, Y1, V.
struct KX_API KxYUY2 {
    std::uint8_t m_un8Y;
    std::uint8_t m_un8U;
    std::uint8_t m_un8V;

    KxYUY2() = default;
    constexpr KxYUY2(std::uint8_t un8Y, std::uint8_t un8U, std::uint8_t un8V)
        : m_un8Y(un8Y), m_un8U(un8U), m_un8V(un8V) {}
    friend constexpr bool operator==(const KxYUY2& left, const KxYUY2& right) {
        return left.m_un8Y == right.m_un8Y && left.m_un8U == right.m_un8U && left.m_un8V == right.m_un8V;
    }
    friend constexpr bool operator!=(const KxYUY2& left, const KxYUY2& right) { return !(left == right); }
};

/// 32-bit IEEE float.
struct KX_API KxFLOAT32 : KxPlainPixel<float> {
    using KxPlainPixel::KxPlainPixel;
};

/// 64-bit IEEE float.
struct KX_API KxFLOAT64 : KxPlainPixel<double> {
    using KxPlainPixel::KxPlainPixel;
};

/// A complex number of two 32-bit floats.
struct KX_API KxComplex64 {
    float m_f32Real;
    float m_f32Imaginary;

    friend constexpr bool operator==(const KxComplex64& left, const KxComplex64& right) {
        return left.m_f32Real == right.m_f32Real && left.m_f32Imaginary == right.m_f32Imaginary;
    }
    friend constexpr bool operator!=(const KxComplex64& left, const KxComplex64& right) {
        return !(left == right);
    }
};

/// A position with subpixel fractions, or 64 plain bits.
union KX_API KxSubPixel64 {
    std::uint64_t m_un64Bits;
    std::int32_t m_n32Position[2];  ///< x, then y
};

/// 32 uninterpreted bits.
struct KX_API KxRaw32 : KxPlainPixel<std::uint32_t> {
    using KxPlainPixel::KxPlainPixel;
};

/// 96 uninterpreted bits.
struct KX_API KxRaw96 {
    std::uint32_t m_un32Bits[3];

    friend constexpr bool operator==(const KxRaw96& left, const KxRaw96& right) {
        return left.m_un32Bits[0] == right.m_un32Bits[0] && left.m_un32Bits[1] == right.m_un32Bits[1] &&
               left.m_un32Bits[2] == right.m_un32Bits[2];
    }
    friend constexpr bool operator!=(const KxRaw96& left, const KxRaw96& right) { return !(left == right); }
};

/// A signed 32-bit integer: an element of integer vectors, not a pixel of images.
struct KX_API KxINT32 : KxPlainPixel<std::int32_t> {
    using KxPlainPixel::KxPlainPixel;
};

/// A horizontal run of pixels. Its coordinates have 16 bits and wrap beyond column or row 32767; there, go by
/// the addresses. A run of `KxBW1` starts at the byte that holds its first bit and counts a byte for each
/// pixel: pEnd - pBeg is its length all the same, but pEnd is no address.
struct KX_API KxRun {
    void* pBeg;         ///< first pixel of the run, or its byte offset in offset mode
    void* pEnd;         ///< the pixel after the last one
    std::int16_t n16X;  ///< column of the first pixel
    std::int16_t n16Y;  ///< row

    friend constexpr bool operator==(const KxRun& left, const KxRun& right) {
        return left.pBeg == right.pBeg && left.pEnd == right.pEnd && left.n16X == right.n16X &&
               left.n16Y == right.n16Y;
    }
    friend constexpr bool operator!=(const KxRun& left, const KxRun& right) { return !(left == right); }
};

/// The three components of a colour in any colour system.
struct KX_API KxColor {
    float X;
    float Y;
    float Z;

    KxColor() = default;
    constexpr KxColor(float x, float y, float z) : X(x), Y(y), Z(z) {}
};

/// Tells the pixel type of a region at run time. Value 8 belongs to no type.
enum KX_IMAGE_TYPES : std::int32_t {
    KX_IMAGE_BW1 = 0,
    KX_IMAGE_BW8 = 1,
    KX_IMAGE_BW16 = 2,
    KX_IMAGE_BW32 = 3,
    KX_IMAGE_C15 = 4,
    KX_IMAGE_C16 = 5,
    KX_IMAGE_C24 = 6,
    KX_IMAGE_C24A = 7,
    KX_IMAGE_SUBPIXEL64 = 9,
    KX_IMAGE_COMPLEX64 = 10,
    KX_IMAGE_RAW32 = 11,
    KX_IMAGE_RAW96 = 12,
    KX_IMAGE_YUY2 = 13,
    KX_IMAGE_FLOAT32 = 14,
    KX_IMAGE_FLOAT64 = 15,
};

/// What the components of a pixel mean.
enum KX_COLOR_SYSTEM : std::int32_t {
    KX_COLOR_SYSTEM_UNKNOWN = -1,
    KX_COLOR_SYSTEM_NONE = 0,
    KX_COLOR_SYSTEM_BILEVEL = 1,
    KX_COLOR_SYSTEM_GRAY_LEVEL = 2,
    KX_COLOR_SYSTEM_XYZ = 3,
    KX_COLOR_SYSTEM_RGB = 4,
    KX_COLOR_SYSTEM_LAB = 5,
    KX_COLOR_SYSTEM_LUV = 6,
    KX_COLOR_SYSTEM_YUV = 7,
    KX_COLOR_SYSTEM_YIQ = 8,
    KX_COLOR_SYSTEM_LCH = 9,
    KX_COLOR_SYSTEM_ISH = 10,
    KX_COLOR_SYSTEM_LSH = 11,
    KX_COLOR_SYSTEM_VSH = 12,
    KX_COLOR_SYSTEM_YSH = 13,
    KX_COLOR_SYSTEM_LABELIZED = 14,
    KX_COLOR_SYSTEM_GRADIENT = 15,
};

/// Named colours. Their bytes stand the other way round than those of RGB images: `KxRed24` paints such an
/// image blue. Write `KxC24(255, 0, 0)` for red.
extern KX_API const KxC24 KxBlack24;
extern KX_API const KxC24 KxRed24;
extern KX_API const KxC24 KxGreen24;
extern KX_API const KxC24 KxBlue24;
extern KX_API const KxC24 KxCyan24;
extern KX_API const KxC24 KxMagenta24;
extern KX_API const KxC24 KxYellow24;
extern KX_API const KxC24 KxWhite24;
extern KX_API const KxC24 KxGray24;

/// Writes the fields by name; pointers as addresses, the components of a `KxC24` as characters.
KX_API std::ostream& operator<<(std::ostream& stream, const KxRun& run);
KX_API std::ostream& operator<<(std::ostream& stream, const KxC24& pixel);
KX_API std::ostream& operator<<(std::ostream& stream, const KxColor& color);

namespace Zelkor::Kalvo {

/// The enumerator of a colour system as text, "KX_COLOR_SYSTEM : <UNKNOWN>" for any other value.
KX_API const char* ColorSystemName(KX_COLOR_SYSTEM eColorSystem);

/// The numbers of one pixel type.
template <int kBitsPerPixelOfType, int kPlanes, short kBitsCode, KX_IMAGE_TYPES kType,
          KX_COLOR_SYSTEM kColors>
struct PixelNumbers {
    static constexpr int kBitsPerPixel = kBitsPerPixelOfType;
    static constexpr int kPlanesPerPixel = kPlanes;
    static constexpr short kBitsPerPixelCode = kBitsCode;  ///< one bit per storage width
    static constexpr short kDataType = 1;                  ///< one bit per data type; all pixels share one
    static constexpr KX_IMAGE_TYPES kImageType = kType;
    static constexpr KX_COLOR_SYSTEM kColorSystem = kColors;
};

/// What the templates need to know of a pixel type.
template <class Pixel>
struct PixelTraits;

// clang-format off
template <> struct PixelTraits<KxBW1>        : PixelNumbers< 1, 1,  1, KX_IMAGE_BW1,        KX_COLOR_SYSTEM_BILEVEL> {};
template <> struct PixelTraits<KxBW8>        : PixelNumbers< 8, 1,  2, KX_IMAGE_BW8,        KX_COLOR_SYSTEM_GRAY_LEVEL> {};
template <> struct PixelTraits<KxBW16>       : PixelNumbers<16, 1,  4, KX_IMAGE_BW16,       KX_COLOR_SYSTEM_GRAY_LEVEL> {};
template <> struct PixelTraits<KxBW32>       : PixelNumbers<32, 1,  8, KX_IMAGE_BW32,       KX_COLOR_SYSTEM_GRAY_LEVEL> {};
template <> struct PixelTraits<KxC15>        : PixelNumbers<16, 3,  4, KX_IMAGE_C15,        KX_COLOR_SYSTEM_RGB> {};
template <> struct PixelTraits<KxC16>        : PixelNumbers<16, 3,  4, KX_IMAGE_C16,        KX_COLOR_SYSTEM_RGB> {};
template <> struct PixelTraits<KxC24>        : PixelNumbers<24, 3, 32, KX_IMAGE_C24,        KX_COLOR_SYSTEM_RGB> {};
template <> struct PixelTraits<KxC24A>       : PixelNumbers<32, 4,  8, KX_IMAGE_C24A,       KX_COLOR_SYSTEM_RGB> {};
template <> struct PixelTraits<KxSubPixel64> : PixelNumbers<64, 1, 16, KX_IMAGE_SUBPIXEL64, KX_COLOR_SYSTEM_NONE> {};
template <> struct PixelTraits<KxComplex64>  : PixelNumbers<64, 1, 16, KX_IMAGE_COMPLEX64,  KX_COLOR_SYSTEM_GRAY_LEVEL> {};
template <> struct PixelTraits<KxRaw32>      : PixelNumbers<32, 1,  8, KX_IMAGE_RAW32,      KX_COLOR_SYSTEM_NONE> {};
template <> struct PixelTraits<KxRaw96>      : PixelNumbers<96, 1, 64, KX_IMAGE_RAW96,      KX_COLOR_SYSTEM_NONE> {};
template <> struct PixelTraits<KxYUY2>       : PixelNumbers<16, 3,  4, KX_IMAGE_YUY2,       KX_COLOR_SYSTEM_YUV> {};
template <> struct PixelTraits<KxFLOAT32>    : PixelNumbers<32, 1,  8, KX_IMAGE_FLOAT32,    KX_COLOR_SYSTEM_GRAY_LEVEL> {};
template <> struct PixelTraits<KxFLOAT64>    : PixelNumbers<64, 1, 16, KX_IMAGE_FLOAT64,    KX_COLOR_SYSTEM_GRAY_LEVEL> {};
// clang-format on

}  // namespace Zelkor::Kalvo
