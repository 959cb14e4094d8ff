// Regions: attaching, placing, pixel access, copying.

#include "kalvo/image/kxroi.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <climits>
#include <memory>

#include "kalvo/frame/kxlibrary.h"
#include "kalvo/image/kximage.h"
#include "tests/support/pixel_types.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Image = KxImage<KxBW8>;
using Region = KxROI<KxBW8>;
using Functions = std::vector<std::string>;

struct Placement {
    const char* name;
    GenericRoiExtent asked;
    GenericRoiExtent result;
    KX_ERRORS code;
    Functions traces;
};

class RegionPlacement : public testing::TestWithParam<Placement> {};

TEST_P(RegionPlacement, ClipsToTheParent) {
    TraceRecorder trace;
    KxOk();
    Image image(100, 100);
    Region region(&image, 1, 1, 50, 50);
    const GenericRoiExtent& asked = GetParam().asked;
    region.SetPlacement(asked.m_n32OrgX, asked.m_n32OrgY, asked.m_n32Width, asked.m_n32Height);
    EXPECT_EQ(region.GetExtent(), GetParam().result);
    EXPECT_EQ(KxGetError(), GetParam().code);
    EXPECT_EQ(trace.Functions(), GetParam().traces);
    KxOk();
}

INSTANTIATE_TEST_SUITE_P(
    KxROI, RegionPlacement,
    testing::Values(Placement{"inside", {10, 20, 30, 40}, {10, 20, 30, 40}, KX_OK, {}},
                    Placement{"left and above are cut off", {-5, -3, 20, 20}, {0, 0, 15, 17}, KX_OK, {}},
                    Placement{"right is clipped", {90, 0, 20, 20}, {90, 0, 10, 20}, KX_OK, {}},
                    Placement{"largest size", {1, 2, INT_MAX, INT_MAX}, {1, 2, 99, 98}, KX_OK, {}},
                    Placement{"right of the parent",
                              {120, 0, 20, 20},
                              {0, 0, 100, 100},
                              KX_ERROR_ROI_OUT_OF_PARENT,
                              {"KxROI::SetWidth"}},
                    Placement{"below the parent",
                              {0, INT_MAX, 20, 20},
                              {0, 0, 100, 100},
                              KX_ERROR_ROI_OUT_OF_PARENT,
                              {"KxROI::SetHeight"}},
                    Placement{"wholly left of the parent",
                              {INT_MIN, 0, 20, 20},
                              {0, 0, 50, 20},
                              KX_ERROR_PARAMETER_1_OUT_OF_RANGE,
                              {"KxROI::SetWidth"}},
                    Placement{"negative height",
                              {0, 0, 20, -1},
                              {0, 0, 20, 50},
                              KX_ERROR_PARAMETER_1_OUT_OF_RANGE,
                              {"KxROI::SetHeight"}}),
    [](const auto& testInfo) {
        std::string name = testInfo.param.name;
        std::replace(name.begin(), name.end(), ' ', '_');
        return name;
    });

TEST(RegionSetters, MoveAndSizeOneAxis) {
    TraceRecorder trace;
    KxOk();
    Image image(100, 80);
    Region region(&image, 10, 10, 30, 30);
    region.SetOrgX(-4);
    EXPECT_EQ(region.GetExtent(), GenericRoiExtent(0, 10, 26, 30));
    region.SetOrgY(70);
    EXPECT_EQ(region.GetExtent(), GenericRoiExtent(0, 70, 26, 10));
    region.SetWidth(-1);
    EXPECT_EQ(region.GetWidth(), 26);
    EXPECT_EQ(KxGetError(), KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
    region.SetOrgX(-27);
    EXPECT_EQ(region.GetExtent(), GenericRoiExtent(0, 0, 100, 80));
    EXPECT_EQ(KxGetError(), KX_ERROR_ROI_OUT_OF_PARENT);
    EXPECT_EQ(trace.Functions(), (Functions{"KxROI::SetWidth", "KxROI::SetOrgX"}));

    KxOk();
    Region detached;
    detached.SetPlacement(500, 600, 70000, 3);
    EXPECT_EQ(detached.GetExtent(), GenericRoiExtent(500, 600, 70000, 3))
        << "nothing clips a detached region";
    EXPECT_EQ(KxGetError(), KX_OK);
}

TEST(RegionSetters, AreRefusedOnImages) {
    TraceRecorder trace;
    Image image(100, 80);
    image.SetOrgX(1);
    image.SetOrgY(1);
    image.SetWidth(1);
    image.SetHeight(1);
    image.SetPlacement(1, 1, 1, 1);
    image.Detach();
    image.Attach(nullptr);
    EXPECT_EQ(KxGetError(), KX_ERROR_CANNOT_APPLY_TO_IMAGE);
    EXPECT_EQ(image.GetExtent(), GenericRoiExtent(0, 0, 100, 80));
    EXPECT_EQ(trace.Functions(),
              (Functions{"KxROI::SetOrgX", "KxROI::SetOrgY", "KxROI::SetWidth", "KxROI::SetHeight",
                         "KxROI::SetPlacement", "KxROI::Detach", "KxROI::Attach"}));
    KxOk();
}

TEST(RegionSetters, ClipChildrenToAShrinkingParent) {
    Image image(100, 100);
    Region region(&image, 0, 0, 60, 60), child(&region, 10, 0, 30, 30), grandchild(&child, 5, 0, 25, 25);
    region.SetWidth(25);
    EXPECT_EQ(child.GetExtent(), GenericRoiExtent(10, 0, 15, 30));
    EXPECT_EQ(grandchild.GetExtent(), GenericRoiExtent(5, 0, 10, 25));
    TraceRecorder trace;
    region.SetWidth(8);
    EXPECT_EQ(child.GetExtent(), GenericRoiExtent(0, 0, 8, 60))
        << "a child that lost its place covers its parent";
    EXPECT_EQ(grandchild.GetExtent(), GenericRoiExtent(5, 0, 3, 25));
    EXPECT_EQ(KxGetError(), KX_ERROR_ROI_OUT_OF_PARENT);
    KxOk();
}

TEST(RegionAttach, ClipsTakesTheColoursAndAppends) {
    Image image(100, 80);
    image.SetColorSystem(KX_COLOR_SYSTEM_LABELIZED);
    Region first, second, third;
    first.SetSize(500, 500);
    for (Region* region : {&first, &second, &third}) region->Attach(&image);
    EXPECT_EQ(first.GetExtent(), GenericRoiExtent(0, 0, 100, 80));
    EXPECT_EQ(first.GetColorSystem(), KX_COLOR_SYSTEM_LABELIZED);
    EXPECT_EQ(image.GetFirstSubROI(), &first);
    first.Detach();
    EXPECT_EQ(image.GetFirstSubROI(), &second);
    EXPECT_EQ(second.GetNextSiblingROI(), &third);
    EXPECT_EQ(first.GetParent(), nullptr);
    EXPECT_EQ(first.GetNextSiblingROI(), nullptr);
}

TEST(RegionAttach, RefusesASecondParentAndCircles) {
    TraceRecorder trace;
    KxOk();
    Image image(100, 80);
    Region root, child(&root, 0, 0, 0, 0);
    child.Attach(&image);
    EXPECT_EQ(KxGetError(), KX_ERROR_ROI_HAS_PARENT);
    root.Attach(&child);
    EXPECT_EQ(KxGetError(), KX_ERROR_CANNOT_MODIFY_ROI);
    root.Attach(&root);
    EXPECT_EQ(root.GetParent(), nullptr);
    EXPECT_EQ(trace.Functions(), (Functions{"KxROI::Attach", "KxROI::Attach", "KxROI::Attach"}));

    KxOk();
    Region lost;
    lost.SetPlacement(200, 0, 10, 10);
    lost.Attach(&image);
    EXPECT_EQ(lost.GetExtent(), GenericRoiExtent(0, 0, 100, 80));
    EXPECT_EQ(KxGetError(), KX_ERROR_ROI_OUT_OF_PARENT);
    KxOk();
}

TEST(RegionLifetime, LeavesAndReleasesItsTree) {
    struct Counted : Region {
        explicit Counted(int& alive) : m_alive(alive) { ++m_alive; }
        ~Counted() override { --m_alive; }
        int& m_alive;
    };
    int alive = 0;
    Region kept;
    {
        Image image(10, 10);
        { Region gone(&image, 0, 0, 5, 5); }
        EXPECT_EQ(image.GetFirstSubROI(), nullptr);
        kept.Attach(&image);
        Region* parent = &kept;
        for (int level = 0; level < 3; ++level) {
            auto* owned = new Counted(alive);
            owned->SetAllocated();
            owned->Attach(parent);
            parent = owned;
        }
    }
    EXPECT_EQ(kept.GetParent(), nullptr);
    EXPECT_EQ(alive, 3) << "what was not handed over to the tree stays";
    {
        Image image(10, 10);
        static_cast<Region*>(kept.GetFirstSubROI())->Detach();
        kept.Attach(&image);
        auto* owned = new Counted(alive);
        owned->SetAllocated();
        owned->Attach(&image);
        EXPECT_EQ(alive, 4);
    }
    EXPECT_EQ(alive, 3);
}

TEST(RegionPixels, AreThoseOfTheImage) {
    Image image(100, 80);
    Region region(&image, 10, 20, 10, 30), inner(&region, 1, 2, 5, 5);
    image.SetPixel(77, 13, 22);
    EXPECT_EQ(region.GetPixel(3, 2), 77);
    EXPECT_EQ(inner.GetPixel(2, 0), 77);
    inner.SetPixel(200, 4, 4);
    const int value = image.GetPixel(15, 26);
    EXPECT_EQ(value, 200);
    EXPECT_EQ(inner.GetImagePtr(1, 1), image.GetImagePtr(12, 23));
    EXPECT_EQ(static_cast<const Region&>(inner).GetGenericImagePtr(1, 1), image.GetGenericImagePtr(12, 23));
    EXPECT_EQ(region.GetRowPitch(), 120);
    EXPECT_EQ(region.GetSkip(), 110);
    EXPECT_EQ(region.GetImgPitch(), 120 * 30);
    EXPECT_EQ(region.GetColPitch(), 1);
    EXPECT_EQ(region.Void(), 0);
    EXPECT_TRUE(IsPointerInROI(region.GetImagePtr(0, 29), &region));
    EXPECT_FALSE(IsPointerInROI(region.GetImagePtr(9, 3) + 1, &region));
    EXPECT_FALSE(IsPointerInROI(nullptr, &region));
}

TEST(RegionPixels, ReportWhatADetachedRegionLacks) {
    TraceRecorder trace;
    KxOk();
    Region region;
    region.SetSize(10, 10);
    EXPECT_EQ(region.GetImagePtr(), nullptr);
    region.NotVoid();
    EXPECT_EQ(KxGetError(), KX_ERROR_IMAGE_MEMORY_ACCESS);
    EXPECT_TRUE(trace.Boxes().empty());
    EXPECT_EQ(region.GetSkip(), 0);
    EXPECT_EQ(region.GetRowPitch(), 0);
    float x = 5, y = 6;
    const KxMeasurementUnit* unit = nullptr;
    region.GetResolution(x, y, unit);
    region.SetPixelDimensions(1, 1, &KxUnit_mm);
    EXPECT_EQ(x, 5);
    EXPECT_EQ(KxGetError(), KX_ERROR_ROI_HAS_NO_PARENT);
    EXPECT_EQ(trace.Functions(), (Functions{"KxROI::GetTopParent", "KxROI::GetSkip", "KxROI::GetTopParent",
                                            "KxROI::GetTopParent", "KxROI::GetResolution",
                                            "KxROI::GetTopParent", "KxROI::SetPixelDimensions"}));
    KxOk();
}

template <class Pixel>
class PixelAccess : public testing::Test {};
TYPED_TEST_SUITE(PixelAccess, AllPixels);

TYPED_TEST(PixelAccess, StoresAndReadsWithoutTouchingNeighbours) {
    KxImage<TypeParam> image(24, 5);
    std::memset(image.GetGenericImagePtr(0, 0), 0xA5, static_cast<std::size_t>(image.GetImgPitch()));
    KxImage<TypeParam> before;
    image.CopyTo(&before);
    KxROI<TypeParam> region(&image, 4, 1, 16, 3);
    for (unsigned seed : {0x11u, 0x40u}) {
        const TypeParam value = SamplePixel<TypeParam>(seed);
        region.SetPixel(value, 6, 2);
        EXPECT_TRUE(SameBytes(region.GetPixel(6, 2), value));
        EXPECT_TRUE(SameBytes(image.GetPixel(10, 3), value));
    }
    EXPECT_EQ(image.GetType(), PixelTraits<TypeParam>::kImageType);
    EXPECT_EQ(region.GetBitsPerPixelCode(), PixelTraits<TypeParam>::kBitsPerPixelCode);
    EXPECT_EQ(region.GetColorSystem(), PixelTraits<TypeParam>::kColorSystem);
    // Two pixels of YUY2 share their chroma.
    const int last = std::is_same_v<TypeParam, KxYUY2> ? 11 : 10;
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 24; ++x)
            if (y != 3 || x < (last == 11 ? 9 : 10) || x > last) {
                EXPECT_TRUE(SameBytes(image.GetPixel(x, y), before.GetPixel(x, y))) << x << ", " << y;
            }
}

TEST(BilevelPixels, AreBitsFromTheLeftAtAnyOffset) {
    KxImage<KxBW1> image(40, 2);
    auto* row = static_cast<std::uint8_t*>(image.GetGenericImagePtr(0, 0));
    std::memset(row, 0, 48);
    KxROI<KxBW1> region(&image, 3, 0, 20, 2);
    region.SetPixel(2, 10, 0);
    EXPECT_EQ(row[1], 0x04);
    EXPECT_EQ(region.GetPixel(10, 0), 1);
    EXPECT_EQ(region.GetBitIndex(10, 0), 5u);
    std::memset(row, 0xFF, 48);
    region.SetPixel(0, 10, 0);
    EXPECT_EQ(row[1], 0xFB);
    EXPECT_EQ(region.GetColPitch(), 0);
    EXPECT_EQ(region.GetSkip(), (192 - 20) / 8);
}

TEST(Yuy2Pixels, ShareTheirChromaInPairs) {
    TraceRecorder trace;
    std::uint8_t row[] = {10, 100, 20, 200, 30, 110, 40, 210, 50, 120, 60, 220};
    KxImage<KxYUY2> image;
    image.SetImagePtr(6, 1, row, 96);
    EXPECT_EQ(image.GetPixel(2, 0), KxYUY2(30, 110, 210));
    EXPECT_EQ(image.GetPixel(1, 0), KxYUY2(20, 105, 205)) << "odd columns take the mean of both pairs";
    EXPECT_EQ(image.GetPixel(5, 0), KxYUY2(60, 120, 220)) << "the last column has one pair";
    KxROI<KxYUY2> region(&image, 1, 0, 4, 1);
    EXPECT_EQ(region.GetPixel(1, 0), KxYUY2(30, 110, 210)) << "pairs are counted in the image";
    region.SetPixel(KxYUY2(1, 2, 3), 0, 0);
    EXPECT_EQ(row[2], 1);
    EXPECT_EQ(row[1], 100);
    region.SetPixel(KxYUY2(1, 2, 3), 4, 0);
    EXPECT_EQ(row[10], 60) << "outside the region nothing is stored";

    EXPECT_EQ(region.GetImagePtr(0, 0), nullptr);
    EXPECT_EQ(KxGetError(), KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    EXPECT_EQ(region.Void(), 1);
    EXPECT_NE(region.GetGenericImagePtr(0, 0), nullptr);
    EXPECT_EQ(trace.Functions().front(), "KxROI::GetImagePtr ( YUY2)");
    KxOk();
}

TEST(RegionCopy, TakesThePlaceOfItsSource) {
    Image first(100, 100), second(50, 50);
    Region source(&first, 10, 10, 40, 40), destination(&second, 1, 1, 5, 5), child(&destination, 0, 0, 2, 2);
    source.SetTitle("source");
    source.SetRectangleMask(0, 0, 5, 5);
    destination = source;
    EXPECT_EQ(destination.GetParent(), &first);
    EXPECT_EQ(destination.GetExtent(), source.GetExtent());
    EXPECT_EQ(child.GetParent(), nullptr) << "children of the destination are detached";
    EXPECT_STREQ(destination.GetTitle(), "source");
    EXPECT_EQ(destination.GetMaskRuns().GetNumElements(), 5u);
    EXPECT_EQ(second.GetFirstSubROI(), nullptr);
    KxGenericROI::CheckParentChildrenConsistency(&first);
}

TEST(RegionCopy, ClonesChildrenAsTheSettingSays) {
    Image image(100, 100);
    Region source(&image, 10, 10, 40, 40), child(&source, 1, 2, 20, 20), grandchild(&child, 3, 4, 5, 5);
    KxSetRecursiveCopyBehavior(0);
    Region flat(source);
    EXPECT_EQ(flat.GetFirstSubROI(), nullptr);
    KxSetRecursiveCopyBehavior(1);
    Region deep(source);
    std::unique_ptr<KxGenericROI> clone(deep.GetFirstSubROI());
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(clone.get(), &child);
    EXPECT_EQ(clone->GetExtent(), child.GetExtent());
    std::unique_ptr<KxGenericROI> grandclone(clone->GetFirstSubROI());
    ASSERT_NE(grandclone, nullptr);
    EXPECT_EQ(grandclone->GetExtent(), grandchild.GetExtent());
    EXPECT_EQ(source.GetFirstSubROI(), &child);
    EXPECT_EQ(child.GetNextSiblingROI(), nullptr);

    std::unique_ptr<Region> made(source.CopyTo(nullptr, 0));
    EXPECT_EQ(made->GetParent(), &image);
    EXPECT_EQ(source.CopyTo(&source, 1), &source);
}

TEST(RegionCopy, NeverPutsARegionIntoAnImage) {
    TraceRecorder trace;
    Image image(100, 100), other(10, 10);
    Region region(&image, 0, 0, 80, 80);
    static_cast<Region&>(other) = region;
    EXPECT_EQ(KxGetError(), KX_ERROR_CANNOT_APPLY_TO_IMAGE);
    EXPECT_EQ(other.GetExtent(), GenericRoiExtent(0, 0, 10, 10));
    KxOk();
}

// Trees may be deep while stacks are small.
TEST(RegionTree, IsLaidOutAndReleasedOnASmallStack) {
    const auto work = [](void*) -> void* {
        Image image(100, 100);
        std::vector<std::unique_ptr<Region>> regions;
        Region* parent = &image;
        for (int level = 0; level < 1000; ++level) {
            regions.push_back(std::make_unique<Region>(parent, 0, 0, 100, 100));
            parent = regions.back().get();
        }
        image.SetSize(50, 60);
        return parent->GetExtent() == GenericRoiExtent(0, 0, 50, 60) ? parent : nullptr;
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 128 * 1024);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, work, nullptr), 0);
    void* result = nullptr;
    pthread_join(thread, &result);
    pthread_attr_destroy(&attributes);
    EXPECT_NE(result, nullptr);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
