// Images, masks, plots and shapes drawn on contexts, whatever the numbers: pixels against slow rules, and
// contexts left as they were.

#include <climits>
#include <cmath>
#include <cstring>
#include <tuple>
#include <vector>

#include "kalvo/kalvo.h"
#include "fuzz/byte_source.h"
#include "fuzz/require.h"
#include "tests/support/pixel_bytes.h"

namespace Zelkor::Kalvo::Fuzzing {
namespace {

using Testing::FillPattern;

constexpr COLORREF kPaper = RGB(10, 200, 90);
constexpr int kWidth = 70, kHeight = 60;

// A section of 32 bits filled with paper, in a context of its own.
struct Sheet {
    Sheet() {
        BITMAPINFO info{{40, kWidth, -kHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0}, {}};
        bitmap = CreateDIBSection(hdc, &info, DIB_RGB_COLORS, &bits);
        SelectObject(hdc, bitmap);
        for (int i = 0; i < kWidth * kHeight; ++i)
            static_cast<DWORD*>(bits)[i] =
                GetRValue(kPaper) << 16 | GetGValue(kPaper) << 8 | GetBValue(kPaper);
    }
    ~Sheet() { DeleteDC(hdc), DeleteObject(bitmap); }
    Sheet(const Sheet&) = delete;

    COLORREF operator()(int x, int y) const { return GetPixel(hdc, x, y); }

    const HDC hdc = CreateCompatibleDC(nullptr);
    HBITMAP bitmap = nullptr;
    void* bits = nullptr;
};

// The colour that a device shows for a pixel.
COLORREF Shown(int red, int green, int blue) {
    return RGB(static_cast<BYTE>(red), static_cast<BYTE>(green), static_cast<BYTE>(blue));
}
COLORREF ShownGray(unsigned level) { return level * 0x010101; }
int Widen5(int bits) { return bits % 32 << 3 | bits % 32 >> 2; }
COLORREF ShownColor(KxBW1 pixel) { return ShownGray(pixel * 255u); }
COLORREF ShownColor(KxBW8 pixel) { return ShownGray(pixel); }
COLORREF ShownColor(KxBW16 pixel) { return ShownGray(pixel >> 8); }
COLORREF ShownColor(KxBW32 pixel) { return ShownGray(pixel >> 24); }
COLORREF ShownColor(KxC15 v) { return Shown(Widen5(v >> 10), Widen5(v >> 5), Widen5(v)); }
COLORREF ShownColor(KxC16 v) { return Shown(Widen5(v >> 11), (v >> 5 & 63) << 2 | (v >> 9 & 3), Widen5(v)); }
COLORREF ShownColor(KxC24 pixel) { return Shown(pixel.m_un8C0, pixel.m_un8C1, pixel.m_un8C2); }
COLORREF ShownColor(KxC24A pixel) { return Shown(pixel.m_un8C0, pixel.m_un8C1, pixel.m_un8C2); }

// `alpha` of 255 parts of `over` on the paper.
COLORREF OnPaper(COLORREF over, int alpha) {
    const auto mix = [alpha](int s, int d) { return (s * alpha + d * (255 - alpha) + 127) / 255; };
    return Shown(mix(GetRValue(over), GetRValue(kPaper)), mix(GetGValue(over), GetGValue(kPaper)),
                 mix(GetBValue(over), GetBValue(kPaper)));
}

// Requires the pixels of `region` as `colorOf` says, zoomed, with their corner at (left, top), and paper.
template <class Pixel, class ColorOf>
void RequirePicture(const Sheet& sheet, const KxROI<Pixel>& region, float zoomX, float zoomY, int left,
                    int top, const ColorOf& colorOf) {
    const int width = static_cast<int>(static_cast<float>(region.GetWidth()) * zoomX);
    const int height =
        static_cast<int>(static_cast<float>(region.GetHeight()) * (zoomY == 0 ? zoomX : zoomY));
    for (int n = 0; n < kWidth * kHeight; ++n) {
        const int i = n % kWidth - left, j = n / kWidth - top;
        COLORREF expected = kPaper;
        if (i >= 0 && j >= 0 && i < width && j < height)
            expected =
                colorOf(region.GetPixel(i * region.GetWidth() / width, j * region.GetHeight() / height));
        Require(sheet(i + left, j + top) == expected, "an image shows every pixel zoomed and blended");
    }
}

// An image of its own rows or on a caller's, maybe upwards, and a part of it.
template <class Pixel>
void CheckImage(ByteSource& source) {
    const Sheet sheet;
    KxImage<Pixel> image(29, 16);
    const int rowBytes = (29 * image.GetBitsPerPixel() + 7) / 8,
              pitch = rowBytes / 4 * 4 + 4 + int{alignof(Pixel)};
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(pitch * 15 + rowBytes));
    const int kind = source.Between(0, 2);
    if (kind == 1) image.SetImagePtr(29, 16, buffer.data(), pitch * 8);
    if (kind == 2) image.SetImagePtr(29, 16, buffer.data() + pitch * 15, -pitch * 8);
    FillPattern(image, source.Word());
    KxROI<Pixel> outer(&image, source.Between(0, 12), source.Between(0, 7), source.Between(1, 29),
                       source.Between(1, 16)),
        inner(&outer, 0, 0, source.Between(1, 29), source.Between(1, 16));
    KxROI<Pixel>* const shown[] = {&image, &outer, &inner};
    KxROI<Pixel>& region = *shown[source.Between(0, 2)];
    constexpr float kZooms[][2] = {{1, 1}, {1, 0}, {2, 0}, {1.4f, .55f}, {.3f, 3}, {1.5f, 0}};
    const auto& [zoomX, zoomY] = kZooms[source.Between(0, 5)];
    constexpr double kAlphas[] = {1.0, 1.5, 0.4, 0.0};  // 0 stands for the older function, opaque
    const double alpha = kAlphas[source.Between(0, 3)];
    constexpr bool isReduced = std::is_same_v<Pixel, KxBW16> || std::is_same_v<Pixel, KxBW32>;
    constexpr bool isGray = PixelTraits<Pixel>::kColorSystem == KX_COLOR_SYSTEM_GRAY_LEVEL;
    const int left = source.Between(-30, 60), top = source.Between(-20, 50);
    if (source.OneIn(4)) {  // tinted when it is a grey that is not opaque
        GDIDrawAdapter(sheet.hdc).DrawImage(&region, zoomX, zoomY, left, top, 0.5, RGBColor(200, 3, 99));
        return RequirePicture(sheet, region, zoomX, zoomY, left, top, [&](Pixel pixel) {
            const COLORREF color = ShownColor(pixel);
            const auto tinted = [&](int full) { return static_cast<int>(GetRValue(color) * full / 255.0); };
            if (std::is_same_v<Pixel, KxBW1>) return kPaper;
            return OnPaper(isGray ? Shown(tinted(200), tinted(3), tinted(99)) : color, 127);
        });
    }
    SetViewportOrgEx(sheet.hdc, alpha > 0 ? left - 4 : left, alpha > 0 ? top + 3 : top, nullptr);
    if (alpha > 0)
        GDIDrawAdapter(sheet.hdc).DrawImage(&region, zoomX, zoomY, 4, -3, alpha, RGBColor::Current);
    else
        KxDrawImageInWindow(&region, sheet.hdc, zoomX, zoomY);
    SetViewportOrgEx(sheet.hdc, 0, 0, nullptr);
    const int parts = alpha == 0.4 && !isReduced ? 102 : 255;
    RequirePicture(sheet, region, zoomX, zoomY, left, top,
                   [&](Pixel pixel) { return OnPaper(ShownColor(pixel), parts); });
}

float AnyFloat(ByteSource& source, float least, float most) {
    constexpr float kAbsurd[] = {1e30f, -1e30f, 1e38f, INFINITY, NAN, 0};
    if (source.OneIn(16)) return kAbsurd[source.Between(0, 5)];
    return least + (most - least) * static_cast<float>(source.Byte()) / 255;
}

template <class Pixel>
void CheckMask(ByteSource& source) {
    const Sheet sheet;
    KxImage<Pixel> image(40, 30);
    KxROI<Pixel> part(&image, 11, 4, 17, 15), *masked = source.Either() ? &part : &image;
    masked->SetMaskOffsets(source.Either());
    const int maskX = source.Between(0, 8), maskY = source.Between(0, 8), width = source.Between(1, 9),
              height = source.Between(1, 7);
    masked->SetRectangleMask(maskX, maskY, width, height);
    const float zoomX = AnyFloat(source, 0.2f, 3), zoomY = AnyFloat(source, 0.2f, 3);
    const float panX = AnyFloat(source, -9, 9), panY = AnyFloat(source, -9, 9);
    masked->DrawMask(sheet.hdc, zoomX, zoomY, panX, panY);
    for (const float number : {zoomX, zoomY, panX, panY})
        if (!(std::abs(number) < 1000)) return;  // that it ends is enough
    const auto edge = [](int at, float pan, float zoom) {
        return std::floor((static_cast<float>(at) + pan) * zoom);
    };
    const int x = masked->GetTotalOrgX() + maskX, y = masked->GetTotalOrgY() + maskY;
    const float down = zoomY == 0 ? zoomX : zoomY, left = edge(x, panX, zoomX), top = edge(y, panY, down);
    const float right = edge(x + width, panX, zoomX), bottom = edge(y + height, panY, down);
    for (int n = 0; n < kWidth * kHeight; ++n) {
        const auto i = static_cast<float>(n % kWidth), j = static_cast<float>(n / kWidth);
        Require((sheet(n % kWidth, n / kWidth) == 0) == (i >= left && i < right && j >= top && j < bottom),
                "a mask is drawn as spans of its pixels");
    }
}

auto StateOf(HDC hdc) {
    POINT origin{};
    GetViewportOrgEx(hdc, &origin);
    return std::tuple(GetCurrentObject(hdc, OBJ_PEN), GetCurrentObject(hdc, OBJ_BRUSH),
                      GetCurrentObject(hdc, OBJ_FONT), GetCurrentObject(hdc, OBJ_BITMAP), GetTextColor(hdc),
                      GetBkColor(hdc), GetBkMode(hdc), GetTextAlign(hdc), origin.x, origin.y);
}

int AnyNumber(ByteSource& source) {
    constexpr int kExtremes[] = {INT_MIN, INT_MIN + 1, -1000000, 1000000, INT_MAX - 1, INT_MAX};
    return source.OneIn(6) ? kExtremes[source.Between(0, 5)] : source.Between(-90, 90);
}

void CheckEveryOperation(ByteSource& source) {
    const Sheet sheet;
    const HDC palette = Platform::CreatePaletteDC(30, 30), devices[] = {sheet.hdc, palette, nullptr};
    const HDC hdc = devices[source.Between(0, 2)];
    KxImage<KxBW8> gray(5, 5);
    KxImage<KxBW32> wide(5, 5);
    KxImage<KxC16> color(5, 5);
    KxGenericROI* const images[] = {&gray, &wide, &color};
    for (KxGenericROI* image : images) FillPattern(*image, source.Word());
    SetViewportOrgEx(hdc, source.Between(-9, 9), source.Between(-9, 9), nullptr);
    SetTextColor(hdc, RGB(255, 0, 0));
    const auto state = StateOf(hdc);
    const int objects = Platform::CountGdiObjects();
    {
        GDIDrawAdapter drawn(hdc);
        for (int calls = 0; calls < 12; ++calls) {
            const int n = AnyNumber(source), m = AnyNumber(source), w = AnyNumber(source),
                      h = AnyNumber(source);
            const double number = AnyFloat(source, -2, 9);
            const RGBColor paint = source.Either() ? RGBColor::Current : RGBColor::Red;
            DrawPointList points;
            for (const DrawPoint& point : {DrawPoint{number, double(m)}, {double(n), number}, {9, 9}})
                points.Add(point);
            KxGenericROI* const image = images[source.Between(0, 2)];
            switch (source.Between(0, 12)) {
            case 0:
                drawn.SetPixel(n, m, paint, number);
                break;
            case 1:
                drawn.DrawLine(n, m, w, h, paint);
                break;
            case 2:
                drawn.DrawArc(n, m, w, h, number, number, paint);
                break;
            case 3:
                drawn.DrawRectangle(n, m, w, h, paint);
                break;
            case 4:
                drawn.DrawPolygon(points, paint);
                break;
            case 5:
                drawn.DrawEllipse(n, m, w, h, paint);
                break;
            case 6:
                drawn.FillRectangle(n, m, w, h, paint, paint);
                break;
            case 7:
                drawn.FillEllipse(n, m, w, h, paint, paint);
                break;
            case 8:
                drawn.FillPolygon(points, paint, paint);
                break;
            case 9:
                drawn.DrawText("two\nlines", n, m, paint);
                break;
            case 10:
                drawn.DrawTextWithBackground("text", n, m, paint, paint);
                break;
            case 11:
                drawn.DrawImage(image, static_cast<float>(number), 2, n, m, 1, paint);
                break;
            default:
                drawn.DrawImage(image, 1, 1, n, m, number, paint);
            }
        }
    }
    Require(StateOf(hdc) == state && Platform::CountGdiObjects() == objects,
            "contexts and objects are left as they were");
    DeleteDC(palette);
}

void CheckPlot(ByteSource& source) {
    const Sheet sheet;
    KxBW32Vector vector;
    for (int i = source.Between(0, 40); i > 0; --i) vector.AddElement(source.Word());
    vector.SetUnsigned(source.Either());
    if (source.OneIn(4)) vector.SetYRange(AnyNumber(source), static_cast<unsigned>(AnyNumber(source)));
    const float width = AnyFloat(source, 0, 400), height = AnyFloat(source, 0, 300);
    vector.Draw(sheet.hdc, width, height, AnyFloat(source, -50, 50), AnyFloat(source, -50, 50));
    vector.Draw(sheet.hdc, width, height, 0, 0);
    if (!(width >= 0 && width < 1000 && height >= 0 && height < 1000) || vector.GetNumElements() == 0) return;
    Require(vector.XView(0) >= 0 && vector.XView(vector.GetNumElements() - 1) <= static_cast<int>(width),
            "a plot stays in its box");
}

template <class Pixel>
constexpr void (*kImageChecks[])(ByteSource&) = {CheckImage<Pixel>, CheckImage<Pixel>, CheckMask<Pixel>};

void CheckAny(ByteSource& source) {
    const int kind = source.Between(0, 9);
    if (kind == 0) return CheckPlot(source);
    if (kind <= 2) return CheckEveryOperation(source);
    const int check = source.Between(0, 2);
    switch (source.Between(0, 7)) {
    case 0:
        return kImageChecks<KxBW1>[check](source);
    case 1:
        return kImageChecks<KxBW8>[check](source);
    case 2:
        return kImageChecks<KxBW16>[check](source);
    case 3:
        return kImageChecks<KxBW32>[check](source);
    case 4:
        return kImageChecks<KxC15>[check](source);
    case 5:
        return kImageChecks<KxC16>[check](source);
    case 6:
        return kImageChecks<KxC24>[check](source);
    default:
        return kImageChecks<KxC24A>[check](source);
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    using namespace Zelkor::Kalvo::Fuzzing;
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    ByteSource source(bytes, count);
    CheckAny(source);
    return 0;
}
