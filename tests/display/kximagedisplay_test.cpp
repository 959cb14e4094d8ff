// The drawing members of regions, the older display functions, masks, and images lent out to draw into.

#include "tests/support/test.h"

#include "tests/support/picture.h"

namespace Zelkor::Kalvo {
namespace {

using namespace Testing;
using Platform::CountGdiObjects;

TEST(DrawMember, HandsTheRegionToTheSurfaceWithWholePans) {
    KxImage<KxFLOAT64> image(4, 4);
    KxROI<KxFLOAT64> region(&image, 1, 1, 2, 2);
    const TraceRecorder traces;
    NotingSurface surface(nullptr);
    image.Draw(&surface, 1.5f, 0, 2.7f, -2.7f);
    region.Draw(&surface, -1, 2, 1e30f, std::nanf(""));
    region.KxGenericROI::Draw(&surface, 1, 1, 2.5f, -2.5f);
    EXPECT_EQ(surface.calls,
              (NotingSurface::Calls{
                  {64, 1.5, 0, 2, -2, 1, 1}, {64, -1, 2, INT32_MAX, 0, 1, 1}, {64, 1, 1, 3, -3, 1, 1}}));
    surface.fails = true;
    image.Draw(&surface, 1, 1, 0, 0);
    region.Draw(&surface, 1, 1, 0, 0);
    EXPECT_EQ(traces.Functions(), (Names{"KxImage::Draw", "KxROI::Draw"}));
    EXPECT_EQ(KxGetError(), KX_ERROR_ALLOCATION);
    KxOk();
}

template <class Pixel>
struct InWindow : testing::Test {
    // In traces the wider greys are images, and the colours have no overload for images.
    static std::string Name(bool isImage) {
        constexpr const char* kNames[] = {"BW1", "BW8", "BW16", "BW32", "C15", "C16", "C24", "C24A"};
        constexpr int type = PixelTraits<Pixel>::kImageType;
        const bool saysImage = type == 2 || type == 3 || (isImage && type < 2);
        return std::string("KxDrawImageInWindow ( ") + kNames[type] + (saysImage ? " Image)" : " ROI)");
    }
    const std::string imageName = Name(true), regionName = Name(false);
    Screen screen;
    TraceRecorder traces;
    KxImage<Pixel> image{21, 13}, empty;
    KxROI<Pixel> region{&image, 5, 2, 9, 10}, detached;

    void SetUp() override { FillPattern(image, 3); }
    void TearDown() override { KxOk(); }
};
TYPED_TEST_SUITE(InWindow, FilePixels);

TYPED_TEST(InWindow, ReportsWhatItCannotDrawAndElseOnlyGreysTouchTheError) {
    KxDrawImageInWindow(&this->detached, this->screen.hdc, 1, 1);
    EXPECT_EQ(KxGetError(), KX_ERROR_ROI_HAS_NO_PARENT);
    KxDrawImageInWindow(&this->empty, this->screen.hdc, 1, 1);
    EXPECT_EQ(this->screen.Marks(), 0);
    KxDrawImageInWindow(&this->region, this->screen.hdc, 1, 1);
    constexpr bool isGray = PixelTraits<TypeParam>::kColorSystem == KX_COLOR_SYSTEM_GRAY_LEVEL;
    EXPECT_EQ(KxGetError(), isGray ? KX_OK : KX_ERROR_IMAGE_MEMORY_ACCESS);
    EXPECT_EQ(this->traces.Functions(), (Names{"KxROI::GetTopParent", this->regionName, this->imageName}));
}

using Tables = InWindow<KxBW8>;

TEST_F(Tables, GiveGreyValuesTheirColours) {
    KxBW8Vector grays;
    KxC24Vector colors;
    grays.SetupGainOffset(-1, 255, 1);
    for (int k = 0; k < 256; ++k) colors.AddElement({static_cast<std::uint8_t>(k), 9, 7});
    const auto draw = [&](auto& drawn) {
        drawn.Draw(screen.hdc, &grays, 2, 0);
        for (int i = 0; KxSuccess() && i < 9; ++i)
            EXPECT_EQ(screen(2 * i + 1, 2 * i), ShownGray(255u - drawn.GetPixel(i, i)));
        drawn.Draw(screen.hdc, &colors, 2, 0);
        for (int i = 0; KxSuccess() && i < 9; ++i)
            EXPECT_EQ(screen(2 * i + 1, 2 * i), RGB(drawn.GetPixel(i, i), 9, 7));
        screen.Clear();
        return KxGetError();
    };
    EXPECT_EQ(draw(image) + draw(region), KX_OK);
    empty.Draw(screen.hdc, &grays, 1, 1);
    EXPECT_TRUE(KxSuccess() && traces.Boxes().empty());
    EXPECT_EQ(KxDrawImageInWindow(&empty, screen.hdc, 1, 1), 1400);

    grays.SetNumElements(255);
    colors.AddElement({});
    for (const KX_ERRORS error : {draw(image), draw(region)})
        EXPECT_EQ(error, KX_ERROR_VECTOR_NUMBER_OF_ELEMENTS);
    KxImage<KxC24> color(4, 4);
    color.Draw(screen.hdc, &colors, 1, 1);
    static_cast<KxROI<KxC24>&>(color).Draw(screen.hdc, &grays, 1, 1);
    EXPECT_EQ(KxGetError(), KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    EXPECT_EQ(traces.Functions(),
              (Names{imageName, imageName, "KxImageBW8::Draw ( Gray Scale)", imageName,
                     "KxImageBW8::Draw ( Color Scale)", regionName, "KxROIBW8::Draw ( Gray Scale)",
                     regionName, "KxROIBW8::Draw ( Color Scale)", "KxImage::Draw", "KxROI::Draw"}));
}

TEST(ImageInWindow, MakesOnePaletteOfAKindForTheThread) {
    const HDC device = Platform::CreatePaletteDC(256, 4);
    const auto state = StateOf(device);
    const int objects = CountGdiObjects();
    std::thread([&] {
        const OzzoTLSStruct& record = *KxGetTLSPtr();
        KxImage<KxBW8> gray(1, 1);
        KxImage<KxC15> color(2, 2);
        KxC24Vector blues;
        for (int k = 0; k < 256; ++k) blues.AddElement({0, 0, static_cast<std::uint8_t>(k)});
        gray.SetPixel(128, 0, 0);
        KxDrawImageInWindow(&gray, device, &blues, 1, 1);
        EXPECT_EQ(GetPixel(device, 0, 0), RGB(0, 0, 128));
        KxDrawImageInWindow(&gray, device, 1, 1);
        KxDrawImageInWindow(&color, device, 1, 1);
        const auto& entries = record.m_GrayPalette.m_Entries;
        for (const auto& [i, blue] : {std::pair{0, 128}, {1, 64}, {2, 192}, {254, 255}, {255, 0}})
            EXPECT_EQ(entries[i].peBlue, blue) << i;
        EXPECT_EQ(record.m_ColorPalette.m_un16NumEntries, 216);
        EXPECT_EQ(CountGdiObjects(), objects + 2);
    }).join();
    EXPECT_EQ(CountGdiObjects(), objects) << "the palettes go with the thread";
    EXPECT_EQ(StateOf(device), state);
    DeleteDC(device);
}

template <class Pixel>
struct ImageDC : testing::Test {};
using LentPixels = testing::Types<KxBW8, KxC24>;
TYPED_TEST_SUITE(ImageDC, LentPixels);

TYPED_TEST(ImageDC, HoldsACopyUntilItIsClosed) {
    const TraceRecorder traces;
    const int objects = CountGdiObjects();
    KxImage<TypeParam> owned(10, 7), wrapped, empty, taller(10, 9);
    std::vector<std::uint8_t> buffer(37 * 6, 0xEE);
    wrapped.SetImagePtr(10, 6, buffer.data(), 37 * 8);
    FillPattern(taller, 1);
    const Bytes tallerBytes = PixelBytes(taller);
    for (KxImage<TypeParam>* image : {&owned, &wrapped}) {
        FillPattern(*image, 4);
        Bytes bytes = PixelBytes(*image);
        const HDC first = KxOpenImageDC(image), second = KxOpenImageDC(image);
        for (int x = 0; x < 10; ++x) EXPECT_EQ(GetPixel(second, x, 5), ShownColor(image->GetPixel(x, 5)));
        EXPECT_NE(GetPixel(second, image->GetRowPitch() / image->GetColPitch() - 1, 0), CLR_INVALID);
        SetPixel(first, 9, 0, ShownGray(7));
        SetPixel(second, 0, 5, ShownGray(8));
        KxCloseImageDC(&taller, second);
        EXPECT_EQ(KxGetError(), KX_ERROR_WINDOWS) << "it has too few rows, and stays open";
        EXPECT_EQ(PixelBytes(*image), bytes);
        KxCloseImageDC(image, nullptr);
        std::fill_n(bytes.begin() + 5 * 10 * image->GetColPitch(), image->GetColPitch(), std::uint8_t{8});
        EXPECT_EQ(PixelBytes(*image), bytes);
        KxCloseImageDC(image, first);
        EXPECT_EQ(ShownColor(image->GetPixel(9, 0)), ShownGray(7)) << "the first can still be closed";
        KxCloseImageDC(image, nullptr);
        EXPECT_EQ(KxOpenImageDC(&empty), nullptr);
    }
    EXPECT_EQ(PixelBytes(taller), tallerBytes);
    EXPECT_EQ(buffer[36] & buffer.back(), 0xEE) << "between the rows";
    EXPECT_EQ(CountGdiObjects(), objects);
    const Names names = traces.Functions();
    EXPECT_EQ(std::ranges::count(names, "KxCloseImageDC") * 10 + std::ranges::count(names, "KxOpenImageDC"),
              42);
    KxOk();
}

}  // namespace
}  // namespace Zelkor::Kalvo
