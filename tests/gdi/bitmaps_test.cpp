// Bitmaps: how they are made and described, which headers make none, what operations and bits of two colours
// mean. What each pixel must be is checked by fuzz/fuzz_bitmaps.cpp.

#include "tests/support/section.h"

#include "kalvo/raster/surface.h"

namespace Zelkor::Platform {
namespace {

using Kalvo::Testing::Section;

BITMAPINFOHEADER Header(LONG width, LONG height, int bits, DWORD compression, DWORD size = 40,
                        WORD planes = 1) {
    return {size, width, height, planes, static_cast<WORD>(bits), compression, 0, 0, 0, 0, 0};
}

TEST(GdiBitmaps, NamedOperationsAreWhatTheySay) {
    const struct {
        DWORD code;
        DWORD (*combine)(DWORD p, DWORD s, DWORD d);
    } cases[] = {{SRCCOPY, [](DWORD, DWORD s, DWORD) { return s; }},
                 {SRCPAINT, [](DWORD, DWORD s, DWORD d) { return s | d; }},
                 {SRCAND, [](DWORD, DWORD s, DWORD d) { return s & d; }},
                 {SRCINVERT, [](DWORD, DWORD s, DWORD d) { return s ^ d; }},
                 {SRCERASE, [](DWORD, DWORD s, DWORD d) { return s & ~d; }},
                 {NOTSRCCOPY, [](DWORD, DWORD s, DWORD) { return ~s; }},
                 {NOTSRCERASE, [](DWORD, DWORD s, DWORD d) { return ~(s | d); }},
                 {MERGECOPY, [](DWORD p, DWORD s, DWORD) { return p & s; }},
                 {MERGEPAINT, [](DWORD, DWORD s, DWORD d) { return ~s | d; }},
                 {PATCOPY, [](DWORD p, DWORD, DWORD) { return p; }},
                 {PATPAINT, [](DWORD p, DWORD s, DWORD d) { return p | ~s | d; }},
                 {PATINVERT, [](DWORD p, DWORD, DWORD d) { return p ^ d; }},
                 {DSTINVERT, [](DWORD, DWORD, DWORD d) { return ~d; }},
                 {BLACKNESS, [](DWORD, DWORD, DWORD) { return DWORD{0}; }},
                 {WHITENESS, [](DWORD, DWORD, DWORD) { return ~DWORD{0}; }}};
    for (const auto& [code, combine] : cases)
        EXPECT_EQ(code >> 16, combine(0xF0, 0xCC, 0xAA) & 0xFF) << std::hex << code;
}

TEST(GdiBitmaps, BitsOfDeviceBitmapsAreTextAndBackground) {
    constexpr COLORREF kText = RGB(255, 0, 0), kBack = RGB(0, 0, 255);
    const std::uint8_t stripes[] = {0xA0, 0, 0x50, 0};
    const Section target(4, 4);
    SetTextColor(target.hdc, kText);
    SetBkColor(target.hdc, kBack);
    const HDC bits = CreateCompatibleDC(target.hdc), others = CreateCompatibleDC(target.hdc);
    const HBITMAP bitmap = CreateBitmap(4, 2, 1, 1, stripes), copy = CreateCompatibleBitmap(bits, 4, 2);
    SelectObject(bits, bitmap);
    SelectObject(others, copy);
    constexpr COLORREF kWhite = RGB(255, 255, 255);
    const auto row = [&](HDC hdc, int y) {
        std::string names;
        for (int x = 0; x < 4; ++x) {
            const COLORREF color = GetPixel(hdc, x, y);
            names += color == kText    ? 'T'
                     : color == kBack  ? 'B'
                     : color == kWhite ? 'w'
                     : color == 0      ? '.'
                                       : '?';
        }
        return names;
    };
    EXPECT_TRUE(BitBlt(target.hdc, 0, 0, 4, 2, bits, 0, 0, SRCCOPY));
    EXPECT_EQ(row(target.hdc, 0), "BTBT");
    EXPECT_EQ(row(target.hdc, 1), "TBTB");
    EXPECT_TRUE(BitBlt(others, 0, 0, 4, 2, bits, 0, 0, NOTSRCCOPY)) << "bits as they are";
    EXPECT_EQ(row(others, 0), ".w.w");
    for (const WORD depth : {8, 16, 24, 32}) {  // background colours that the source has only nearly
        const HDC source = CreateCompatibleDC(nullptr);
        const HBITMAP colored = CreateBitmap(4, 1, 1, depth, nullptr);
        SelectObject(source, colored);
        SetBkColor(source, RGB(254, 1, 0));
        for (int x = 0; x < 4; ++x) SetPixel(source, x, 0, x == 2 ? RGB(254, 1, 0) : RGB(0, 255, x));
        EXPECT_TRUE(StretchBlt(bits, 3, 0, -4, 1, source, 0, 0, 4, 1, SRCCOPY));
        EXPECT_EQ(row(bits, 0), ".w..") << depth;
        for (const HGDIOBJ object : {HGDIOBJ{source}, HGDIOBJ{colored}}) DeleteObject(object);
    }
    for (const HGDIOBJ object : {HGDIOBJ{bits}, HGDIOBJ{others}, HGDIOBJ{bitmap}, HGDIOBJ{copy}})
        EXPECT_TRUE(DeleteObject(object));
}

TEST(GdiBitmaps, AreMadeLikeThoseOfContexts) {
    const HDC device = CreatePaletteDC(3, 3), plain = CreateCompatibleDC(device);
    const Section target(5, 5, 8);
    const struct {
        HBITMAP bitmap;
        LONG width, height, pitch;
        WORD bits;
    } cases[] = {{CreateCompatibleBitmap(device, 5, 2), 5, 2, 6, 8},
                 {CreateCompatibleBitmap(plain, 17, 2), 17, 2, 4, 1},
                 {CreateCompatibleBitmap(target.hdc, 5, 2), 5, 2, 6, 8},
                 {CreateCompatibleBitmap(target.hdc, 5, 0), 1, 1, 2, 1},
                 {CreateCompatibleBitmap(nullptr, 5, 2), 5, 2, 20, 32},
                 {CreateBitmap(3, 2, 1, 24, nullptr), 3, 2, 10, 24},
                 {CreateBitmap(3, 2, 1, 16, nullptr), 3, 2, 6, 16}};
    for (const auto& c : cases) {
        BITMAP description{};
        EXPECT_EQ(GetObject(c.bitmap, sizeof description, &description), int{sizeof description});
        EXPECT_EQ(description.bmWidth, c.width);
        EXPECT_EQ(description.bmHeight, c.height);
        EXPECT_EQ(description.bmWidthBytes, c.pitch);
        EXPECT_EQ(description.bmBitsPixel, c.bits);
        EXPECT_TRUE(DeleteObject(c.bitmap));
    }
    EXPECT_FALSE(CreateBitmap(1, 1, 2, 1, nullptr) || CreateBitmap(0, 1, 1, 1, nullptr) ||
                 CreateBitmap(1, 1, 1, 4, nullptr) || CreateBitmap(INT_MAX, INT_MAX, 1, 32, nullptr) ||
                 CreateCompatibleBitmap(plain, -1, 1));
    EXPECT_EQ(GetNearestColor(device, RGB(190, 190, 190)), RGB(192, 192, 192));

    RGBQUAD colors[3] = {{1, 2, 3, 0}, {4, 5, 6, 0}, {7, 8, 9, 0}}, read[3]{};
    EXPECT_EQ(SetDIBColorTable(target.hdc, 254, 3, colors), 2u);
    EXPECT_EQ(GetDIBColorTable(target.hdc, 253, 2, read), 2u);
    EXPECT_EQ(BgrFromEntry(read[1]), BgrFromEntry(colors[0]));
    EXPECT_EQ(GetNearestColor(target.hdc, RGB(6, 5, 4)), RGB(6, 5, 4));
    EXPECT_EQ(SetDIBColorTable(target.hdc, 256, 1, colors), 0u);
    EXPECT_EQ(SetDIBColorTable(device, 0, 1, colors), 0u);
    EXPECT_TRUE(DeleteDC(plain) && DeleteDC(device));
}

TEST(GdiBitmaps, HeadersThatMakeNoBitmapAreRefused) {
    const BITMAPINFOHEADER bad[] = {
        Header(4, 4, 32, BI_RGB, 39),
        Header(4, 4, 32, BI_RGB, 40, 0),
        Header(0, 4, 32, BI_RGB),
        Header(-4, 4, 32, BI_RGB),
        Header(4, 0, 32, BI_RGB),
        Header(4, INT_MIN, 32, BI_RGB),
        Header(INT_MAX, -INT_MAX, 32, 0),
        Header(4, 4, 0, BI_RGB),
        Header(4, 4, 4, BI_RGB),
        Header(4, 4, 33, BI_RGB),
        Header(4, 4, 32, 1),
        Header(4, 4, 24, BI_BITFIELDS),
        Header(4, 4, 32, BI_BITFIELDS),  // all masks are 0
    };
    const Section target(4, 4, 8, 7);
    std::uint8_t pixels[64]{};
    const auto expectRefused = [&](BITMAPINFO* info, UINT usage, std::size_t number) {
        void* bits = pixels;
        EXPECT_EQ(CreateDIBSection(nullptr, info, usage, &bits), nullptr) << number;
        EXPECT_EQ(bits, nullptr) << number;
        EXPECT_FALSE(SetDIBits(nullptr, target.bitmap, 0, 4, pixels, info, usage) ||
                     GetDIBits(nullptr, target.bitmap, 0, 4, pixels, info, usage) ||
                     SetDIBitsToDevice(target.hdc, 0, 0, 4, 4, 0, 0, 0, 4, pixels, info, usage) ||
                     StretchDIBits(target.hdc, 0, 0, 4, 4, 0, 0, 4, 4, pixels, info, usage, SRCCOPY))
            << number;
    };
    for (std::size_t number = 0; number < std::size(bad); ++number) {
        BITMAPINFO info[4]{};
        info->bmiHeader = bad[number];
        expectRefused(info, DIB_RGB_COLORS, number);
    }
    expectRefused(nullptr, DIB_RGB_COLORS, 100);
    BITMAPINFO good[4]{};
    good->bmiHeader = Header(4, 4, 32, BI_RGB);
    expectRefused(good, 1, 101);
    EXPECT_FALSE(SetDIBits(nullptr, nullptr, 0, 4, pixels, good, 0) ||
                 SetDIBits(nullptr, target.bitmap, 4, 1, pixels, good, 0) ||
                 SetDIBits(nullptr, target.bitmap, 0, 4, nullptr, good, 0) ||
                 StretchDIBits(nullptr, 0, 0, 4, 4, 0, 0, 4, 4, pixels, good, 0, SRCCOPY));
    EXPECT_EQ(target.Count(RGB(7, 7, 7)), 16);
}

TEST(GdiBitmaps, SectionsStartBlackAndGetDIBitsDescribesThem) {
    for (const int bits : {1, 8, 16, 24, 32, 565}) {
        struct {
            BITMAPINFOHEADER header;
            DWORD masks[256];
        } info{Header(13, -7, bits == 565 ? 16 : bits, bits == 565 ? BI_BITFIELDS : BI_RGB),
               {0xF800, 0x7E0, 0x1F}};
        void* pixels = nullptr;
        const HBITMAP bitmap = CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO*>(&info), 0, &pixels);
        BITMAP description{};
        ASSERT_NE(GetObjectA(bitmap, sizeof description, &description), 0);
        EXPECT_EQ(description.bmBits, pixels);
        auto expected = info.header;
        expected.biHeight = 7;
        expected.biSizeImage = (13u * expected.biBitCount + 31) / 32 * 4 * 7;
        const std::vector<std::uint8_t> black(expected.biSizeImage);
        EXPECT_EQ(std::memcmp(pixels, black.data(), black.size()), 0);
        BITMAPINFO asked{Header(0, 0, 0, 0), {}};
        EXPECT_NE(GetDIBits(nullptr, bitmap, 0, 0, nullptr, &asked, DIB_RGB_COLORS), 0);
        EXPECT_EQ(std::memcmp(&asked.bmiHeader, &expected, sizeof expected), 0) << bits;
        EXPECT_NE(DeleteObject(bitmap), 0);
    }
}

}  // namespace
}  // namespace Zelkor::Platform
