// Regions: attaching, placing, pixel access, copying.

#include "tests/support/test.h"

#include <pthread.h>

namespace Zelkor::Kalvo::Testing {
namespace {

using Image = KxImage<KxBW8>;
using Region = KxROI<KxBW8>;
using Functions = std::vector<std::string>;

TEST(RegionPlacement, IsClippedToTheParent) {
    const std::tuple<GenericRoiExtent, GenericRoiExtent, KX_ERRORS, Functions> kPlacements[] = {
        {{10, 20, 30, 40}, {10, 20, 30, 40}, KX_OK, {}},
        {{-5, -3, 20, 20}, {0, 0, 15, 17}, KX_OK, {}},
        {{90, 0, 20, 20}, {90, 0, 10, 20}, KX_OK, {}},
        {{1, 2, INT_MAX, INT_MAX}, {1, 2, 99, 98}, KX_OK, {}},
        // Right of the parent, below it, wholly left of it, negative height.
        {{120, 0, 20, 20}, {0, 0, 100, 100}, KX_ERROR_ROI_OUT_OF_PARENT, {"KxROI::SetWidth"}},
        {{0, INT_MAX, 20, 20}, {0, 0, 100, 100}, KX_ERROR_ROI_OUT_OF_PARENT, {"KxROI::SetHeight"}},
        {{INT_MIN, 0, 20, 20}, {0, 0, 50, 20}, KX_ERROR_PARAMETER_1_OUT_OF_RANGE, {"KxROI::SetWidth"}},
        {{0, 0, 20, -1}, {0, 0, 20, 50}, KX_ERROR_PARAMETER_1_OUT_OF_RANGE, {"KxROI::SetHeight"}},
    };
    for (const auto& [asked, result, code, functions] : kPlacements) {
        const TraceRecorder trace;
        KxOk();
        Image image(100, 100);
        Region region(&image, 1, 1, 50, 50);
        region.SetPlacement(asked.m_n32OrgX, asked.m_n32OrgY, asked.m_n32Width, asked.m_n32Height);
        EXPECT_EQ(region.GetExtent(), result) << asked.m_n32OrgX << ", " << asked.m_n32OrgY;
        EXPECT_EQ(KxGetError(), code);
        EXPECT_EQ(trace.Functions(), functions);
    }
    Region detached;
    detached.SetPlacement(500, 600, 70000, 3);
    EXPECT_EQ(detached.GetExtent(), GenericRoiExtent(500, 600, 70000, 3)) << "nothing clips it";
}

TEST(RegionSetters, MoveOneAxis) {
    TraceRecorder trace;
    Image image(100, 80);
    Region region(&image, 10, 10, 30, 30);
    region.SetOrgX(-4);
    EXPECT_EQ(region.GetExtent(), GenericRoiExtent(0, 10, 26, 30));
    region.SetOrgX(-27);
    EXPECT_EQ(region.GetExtent(), GenericRoiExtent(0, 0, 100, 80));
    EXPECT_EQ(KxGetError(), KX_ERROR_ROI_OUT_OF_PARENT);
    EXPECT_EQ(trace.Functions(), Functions{"KxROI::SetOrgX"});
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
    EXPECT_EQ(trace.Functions(),
              (Functions{"KxROI::SetOrgX", "KxROI::SetOrgY", "KxROI::SetWidth", "KxROI::SetHeight",
                         "KxROI::SetPlacement", "KxROI::Detach", "KxROI::Attach"}));
    KxOk();
    static_cast<Region&>(image) = Region();
    EXPECT_EQ(KxGetError(), KX_ERROR_CANNOT_APPLY_TO_IMAGE);
    EXPECT_EQ(image.GetExtent(), GenericRoiExtent(0, 0, 100, 80));
}

TEST(RegionSetters, ClipChildrenToAShrinkingParent) {
    TraceRecorder trace;
    Image image(100, 100);
    Region region(&image, 0, 0, 60, 60), child(&region, 10, 0, 30, 30), grandchild(&child, 5, 0, 25, 25);
    region.SetWidth(25);
    EXPECT_EQ(child.GetExtent(), GenericRoiExtent(10, 0, 15, 30));
    EXPECT_EQ(grandchild.GetExtent(), GenericRoiExtent(5, 0, 10, 25));
    region.SetWidth(8);
    EXPECT_EQ(child.GetExtent(), GenericRoiExtent(0, 0, 8, 60)) << "it lost its place and covers its parent";
    EXPECT_EQ(grandchild.GetExtent(), GenericRoiExtent(5, 0, 3, 25));
    EXPECT_EQ(KxGetError(), KX_ERROR_ROI_OUT_OF_PARENT);
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
    EXPECT_EQ(first.GetParent(), nullptr);
    EXPECT_EQ(image.GetFirstSubROI(), &second);
    EXPECT_EQ(second.GetNextSiblingROI(), &third);
}

TEST(RegionAttach, RefusesASecondParentAndCircles) {
    TraceRecorder trace;
    Image image(100, 80);
    Region root, child(&root, 0, 0, 0, 0);
    child.Attach(&image);
    EXPECT_EQ(KxGetError(), KX_ERROR_ROI_HAS_PARENT);
    for (Region* descendant : {&child, &root}) {
        root.Attach(descendant);
        EXPECT_EQ(KxGetError(), KX_ERROR_CANNOT_MODIFY_ROI);
        EXPECT_EQ(root.GetParent(), nullptr);
    }
    EXPECT_EQ(trace.Functions(), Functions(3, "KxROI::Attach"));
}

TEST(RegionLifetime, LeavesAndReleasesItsTree) {
    struct Counted : Region {
        explicit Counted(int& alive) : m_alive(alive) { ++m_alive; }
        ~Counted() override { --m_alive; }
        int& m_alive;
    };
    int alive = 0;
    Region kept;
    const auto adopt = [&](Region& parent) {
        auto* owned = new Counted(alive);
        owned->SetAllocated();
        owned->Attach(&parent);
    };
    {
        Image image(10, 10);
        { Region gone(&image, 0, 0, 5, 5); }
        EXPECT_EQ(image.GetFirstSubROI(), nullptr);
        kept.Attach(&image);
        adopt(image);
        adopt(kept);
        EXPECT_EQ(alive, 2);
    }
    EXPECT_EQ(kept.GetParent(), nullptr);
    EXPECT_EQ(alive, 1) << "what was not handed over to the tree stays";
}

TEST(RegionPixels, AreThoseOfTheImage) {
    Image image(100, 80);
    Region region(&image, 10, 20, 10, 30), inner(&region, 1, 2, 5, 5);
    inner.SetPixel(200, 4, 3);
    EXPECT_EQ(image.GetPixel(15, 25), KxBW8(200));
    EXPECT_EQ(inner.GetImagePtr(1, 1), image.GetImagePtr(12, 23));
    EXPECT_EQ(region.GetRowPitch(), 120);
    EXPECT_EQ(region.GetSkip(), 110);
    EXPECT_TRUE(IsPointerInROI(region.GetImagePtr(0, 29), &region));
    EXPECT_FALSE(IsPointerInROI(region.GetImagePtr(9, 3) + 1, &region));
}

TEST(RegionPixels, ReportWhatADetachedRegionLacks) {
    TraceRecorder trace;
    Region region;
    region.SetSize(10, 10);
    EXPECT_EQ(region.GetImagePtr(), nullptr);
    region.NotVoid();
    EXPECT_EQ(KxGetError(), KX_ERROR_IMAGE_MEMORY_ACCESS);
    EXPECT_EQ(region.GetSkip(), 0);
    region.SetPixelDimensions(1, 1, &KxUnit_mm);
    EXPECT_EQ(KxGetError(), KX_ERROR_ROI_HAS_NO_PARENT);
    EXPECT_EQ(trace.Functions(), (Functions{"KxROI::GetTopParent", "KxROI::GetSkip", "KxROI::GetTopParent",
                                            "KxROI::SetPixelDimensions"}));
}

template <class Pixel>
class PixelAccess : public testing::Test {};
TYPED_TEST_SUITE(PixelAccess, AllPixels);

TYPED_TEST(PixelAccess, StoresAndReadsWithoutTouchingNeighbours) {
    KxImage<TypeParam> image(24, 5);
    std::memset(image.GetGenericImagePtr(0, 0), 0xA5, static_cast<std::size_t>(image.GetImgPitch()));
    const KxImage<TypeParam> before = image;
    KxROI<TypeParam> region(&image, 4, 1, 16, 3);
    for (const unsigned seed : {0x11u, 0x40u}) {
        const TypeParam value = SamplePixel<TypeParam>(seed);
        region.SetPixel(value, 6, 2);
        EXPECT_TRUE(SameBytes(region.GetPixel(6, 2), value));
        EXPECT_TRUE(SameBytes(image.GetPixel(10, 3), value));
    }
    // Two pixels of YUY2 share their chroma.
    const int shared = std::is_same_v<TypeParam, KxYUY2> ? 1 : 0;
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 24; ++x)
            if (y != 3 || std::abs(x - 10) > shared) {
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
    std::memset(row, 0xFF, 48);
    region.SetPixel(0, 10, 0);
    EXPECT_EQ(row[1], 0xFB);
    EXPECT_EQ(region.GetSkip(), (192 - 20) / 8);
    image.SetImagePtr(row, 100);
    KxROI<KxBW1> odd(&image, 0, 0, 25, 1);
    EXPECT_EQ(odd.GetSkip(), (100 - 25) / 8) << "rows need not be whole bytes";
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
    EXPECT_EQ(trace.Functions().front(), "KxROI::GetImagePtr ( YUY2)");
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
}

TEST(RegionCopy, ClonesChildrenAsTheSettingSays) {
    Image image(100, 100);
    Region source(&image, 10, 10, 40, 40), child(&source, 1, 2, 20, 20), grandchild(&child, 3, 4, 5, 5);
    KxSetRecursiveCopyBehavior(0);
    EXPECT_EQ(Region(source).GetFirstSubROI(), nullptr);
    KxSetRecursiveCopyBehavior(1);
    Region deep(source);
    const std::unique_ptr<KxGenericROI> clone(deep.GetFirstSubROI());
    ASSERT_TRUE(clone && clone.get() != &child);
    EXPECT_EQ(clone->GetExtent(), child.GetExtent());
    const std::unique_ptr<KxGenericROI> grandclone(clone->GetFirstSubROI());
    ASSERT_NE(grandclone, nullptr);
    EXPECT_EQ(grandclone->GetExtent(), grandchild.GetExtent());
    EXPECT_EQ(source.GetFirstSubROI(), &child);
}

TEST(RegionCopy, LeavesTheTreeOfItsSourceAndAttachesClonesFromTheLeavesUp) {
    Image image(100, 100);
    Region source(&image, 10, 10, 40, 40), child(&source, 1, 2, 20, 20), second(&source, 5, 5, 5, 5);
    Region grandchild(&child, 3, 4, 5, 5);
    source.SetColorSystem(KX_COLOR_SYSTEM_LAB);
    child.SetColorSystem(KX_COLOR_SYSTEM_LUV);
    Region copy(&image, 0, 0, 1, 1);
    source.CopyTo(&copy, 1);
    EXPECT_EQ(source.GetFirstSubROI(), &child);
    EXPECT_EQ(child.GetNextSiblingROI(), &second);
    EXPECT_EQ(second.GetNextSiblingROI(), nullptr);
    const std::unique_ptr<KxGenericROI> clone(copy.GetFirstSubROI()), other(clone->GetNextSiblingROI());
    const std::unique_ptr<KxGenericROI> grandclone(clone->GetFirstSubROI());
    EXPECT_EQ(clone->GetColorSystem(), KX_COLOR_SYSTEM_LAB) << "of its new parent";
    EXPECT_EQ(grandclone->GetColorSystem(), KX_COLOR_SYSTEM_LUV) << "of its parent before that was attached";
    EXPECT_EQ(other->GetExtent(), second.GetExtent());

    source.CopyTo(&child, 1);  // a child of the source takes its place beside it
    EXPECT_EQ(child.GetParent(), &image);
    EXPECT_EQ(child.GetExtent(), source.GetExtent());
    EXPECT_EQ(grandchild.GetParent(), nullptr);
    const std::unique_ptr<KxGenericROI> twin(child.GetFirstSubROI());
    EXPECT_EQ(twin->GetExtent(), second.GetExtent());
    EXPECT_EQ(twin->GetNextSiblingROI(), nullptr);
}

struct UnclippedRegion : Region {
    using Region::Region;
    void ShrinkUnclipped(int width) { m_n32Width = width; }
};

TEST(RegionAttach, ToNothingClipsTheChildrenAllTheSame) {
    UnclippedRegion region;
    region.SetSize(20, 20);
    Region child(&region, 5, 5, 10, 10);
    region.ShrinkUnclipped(8);
    region.Attach(nullptr);
    EXPECT_EQ(child.GetExtent(), GenericRoiExtent(5, 5, 3, 10));
}

// A region that lost its place takes the width of its parent before the height, with its children each time.
TEST(RegionLayout, ResetsWhatLiesBeyondFromTheOutsideIn) {
    TraceRecorder trace;
    Image image(100, 100);
    Region outer(&image, 60, 0, 40, 30), inner(&outer, 30, 20, 10, 10), beside(&image, 10, 90, 10, 10);
    Region below(&beside, 5, 5, 5, 5);
    image.SetSize(50, 80);
    EXPECT_EQ(outer.GetExtent(), GenericRoiExtent(0, 0, 50, 80));
    EXPECT_EQ(inner.GetExtent(), GenericRoiExtent(30, 20, 10, 10));
    EXPECT_EQ(beside.GetExtent(), GenericRoiExtent(0, 0, 50, 80));
    EXPECT_EQ(below.GetExtent(), GenericRoiExtent(5, 5, 5, 5));
    EXPECT_EQ(trace.Functions(), (Functions{"KxROI::SetWidth", "KxROI::SetHeight"}));
    EXPECT_EQ(KxGetError(), KX_ERROR_ROI_OUT_OF_PARENT);
}

TEST(RegionTree, KeepsTheOrderOfSiblingsThatComeAndGo) {
    Image image(10, 10);
    std::deque<Region> regions(5);
    for (Region& region : regions) region.Attach(&image);
    const auto order = [&] {
        std::string names;
        for (const KxGenericROI* node = image.GetFirstSubROI(); node; node = node->GetNextSiblingROI())
            for (std::size_t i = 0; i < regions.size(); ++i)
                if (node == &regions[i]) names += static_cast<char>('0' + i);
        return names;
    };
    const std::pair<int, const char*> kRemoved[] = {{0, "1234"}, {4, "1230"}, {2, "1304"}, {1, "3042"}};
    int previous = -1;
    for (const auto& [index, names] : kRemoved) {
        regions[static_cast<std::size_t>(index)].Detach();
        if (previous >= 0) regions[static_cast<std::size_t>(previous)].Attach(&image);
        EXPECT_EQ(order(), names);
        previous = index;
    }
}

// Trees may be deep while stacks are small.
TEST(RegionTree, IsUsedOnASmallStack) {
    const auto work = [](void*) -> void* {
        Image image(100, 100);
        std::deque<Region> regions;
        Region* parent = &image;
        for (int level = 0; level < 1000; ++level) parent = &regions.emplace_back(parent, 0, 0, 100, 100);
        image.SetSize(50, 60);
        std::ostringstream dump;
        regions.front().DumpToStream(dump, 0);
        KxGenericROI::CheckParentChildrenConsistency(&image);
        const std::unique_ptr<Region> copy(regions.front().CopyTo());
        int levels = 1;
        for (const KxGenericROI* node = copy->GetFirstSubROI(); node; node = node->GetFirstSubROI()) ++levels;
        for (KxGenericROI* node = copy->GetFirstSubROI(); node;) {
            KxGenericROI* const below = node->GetFirstSubROI();
            delete node;
            node = below;
        }
        const bool isRight = levels == 1000 && parent->GetExtent() == GenericRoiExtent(0, 0, 50, 60) &&
                             parent->GetImagePtr(3, 4) == image.GetImagePtr(3, 4) &&
                             dump.str().size() > 1000 * 1000;
        return isRight ? parent : nullptr;
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 64 * 1024);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, work, nullptr), 0);
    void* result = nullptr;
    pthread_join(thread, &result);
    pthread_attr_destroy(&attributes);
    EXPECT_NE(result, nullptr);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
