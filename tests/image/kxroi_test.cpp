// Regions: attaching, placing, pixel access, copying.

#include "tests/support/test.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Image = KxImage<KxBW8>;
using Region = KxROI<KxBW8>;

TEST(RegionPlacement, IsClippedToTheParent) {
    const std::tuple<GenericRoiExtent, GenericRoiExtent, KX_ERRORS, Names> kPlacements[] = {
        {{10, 20, 30, 40}, {10, 20, 30, 40}, KX_OK, {}},
        {{-5, -3, 20, 20}, {0, 0, 15, 17}, KX_OK, {}},
        {{90, 0, 20, 20}, {90, 0, 10, 20}, KX_OK, {}},
        {{1, 2, INT_MAX, INT_MAX}, {1, 2, 99, 98}, KX_OK, {}},
        // Right of the parent, below it, wholly left of it, negative height.
        {{120, 0, 20, 20}, {0, 0, 100, 100}, KX_ERROR_ROI_OUT_OF_PARENT, {"KxROI::SetWidth"}},
        {{0, INT_MAX, 20, 20}, {0, 0, 100, 100}, KX_ERROR_ROI_OUT_OF_PARENT, {"KxROI::SetHeight"}},
        {{INT_MIN, 0, 20, 20}, {0, 0, 50, 20}, KX_ERROR_PARAMETER_1_OUT_OF_RANGE, {"KxROI::SetWidth"}},
        {{0, 0, 20, -1}, {0, 0, 20, 50}, KX_ERROR_PARAMETER_1_OUT_OF_RANGE, {"KxROI::SetHeight"}},
        {{0, 101, 20, -1},
         {0, 0, 100, 100},
         KX_ERROR_PARAMETER_1_OUT_OF_RANGE,
         {"KxROI::SetHeight", "KxROI::SetHeight"}},
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
    Image image(100, 80);
    Region region(&image, 10, 10, 30, 30);
    region.SetOrgX(-4);
    EXPECT_EQ(TreeOf(region), "0 10 26 30");
    ExpectFailure(KX_ERROR_ROI_OUT_OF_PARENT, {"KxROI::SetOrgX"}, [&] { region.SetOrgX(-27); });
    EXPECT_EQ(TreeOf(region), "0 0 100 80");
}

TEST(RegionSetters, AreRefusedOnImages) {
    Image image(100, 80);
    const Names traced{"KxROI::SetOrgX",      "KxROI::SetOrgY", "KxROI::SetWidth", "KxROI::SetHeight",
                       "KxROI::SetPlacement", "KxROI::Detach",  "KxROI::Attach",   "KxROI::CopyTo"};
    ExpectFailure(KX_ERROR_CANNOT_APPLY_TO_IMAGE, traced, [&] {
        image.SetOrgX(1);
        image.SetOrgY(1);
        image.SetWidth(1);
        image.SetHeight(1);
        image.SetPlacement(1, 1, 1, 1);
        image.Detach();
        image.Attach(nullptr);
        static_cast<Region&>(image) = Region();
    });
    EXPECT_EQ(TreeOf(image), "0 0 100 80");
}

TEST(RegionAttach, ClipsTakesTheColoursAndAppends) {
    Image image(100, 80);
    image.SetColorSystem(KX_COLOR_SYSTEM_LABELIZED);
    Region first, second, third;
    first.SetSize(500, 500);
    for (Region* region : {&first, &second, &third}) region->Attach(&image);
    EXPECT_EQ(TreeOf(image), "0 0 100 80 (0 0 100 80, 0 0 0 0, 0 0 0 0)");
    EXPECT_EQ(first.GetColorSystem(), KX_COLOR_SYSTEM_LABELIZED);
    first.Detach();
    EXPECT_EQ(first.GetParent(), nullptr);
    EXPECT_EQ(image.GetFirstSubROI(), &second);
}

TEST(RegionAttach, RefusesASecondParentAndCircles) {
    Image image(100, 80);
    Region root, child(&root, 0, 0, 0, 0);
    ExpectFailure(KX_ERROR_ROI_HAS_PARENT, {"KxROI::Attach"}, [&] { child.Attach(&image); });
    for (Region* descendant : {&child, &root})
        ExpectFailure(KX_ERROR_CANNOT_MODIFY_ROI, {"KxROI::Attach"}, [&] { root.Attach(descendant); });
    EXPECT_EQ(root.GetParent(), nullptr);
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
        for (Region* parent : {static_cast<Region*>(&image), &kept}) {
            auto* owned = new Counted(alive);
            owned->SetAllocated();
            owned->Attach(parent);
        }
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
    Region region;
    region.SetSize(10, 10);
    EXPECT_EQ(region.GetImagePtr(), nullptr);
    ExpectFailure(KX_ERROR_IMAGE_MEMORY_ACCESS, {}, [&] { region.NotVoid(); });
    ExpectFailure(KX_ERROR_ROI_HAS_NO_PARENT, {"KxROI::GetTopParent", "KxROI::GetSkip"},
                  [&] { EXPECT_EQ(region.GetSkip(), 0); });
    ExpectFailure(KX_ERROR_ROI_HAS_NO_PARENT, {"KxROI::GetTopParent", "KxROI::SetPixelDimensions"},
                  [&] { region.SetPixelDimensions(1, 1, &KxUnit_mm); });
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
    EXPECT_EQ(TreeOf(destination), "10 10 40 40");
    EXPECT_EQ(child.GetParent(), nullptr) << "children of the destination are detached";
    EXPECT_STREQ(destination.GetTitle(), "source");
    EXPECT_EQ(destination.GetMaskRuns().GetNumElements(), 5u);
    EXPECT_EQ(second.GetFirstSubROI(), nullptr);
}

TEST(RegionCopy, LeavesTheTreeOfItsSourceAndAttachesClonesFromTheLeavesUp) {
    Image image(100, 100);
    Region source(&image, 10, 10, 40, 40), child(&source, 1, 2, 20, 20), second(&source, 5, 5, 5, 5);
    Region grandchild(&child, 3, 4, 5, 5);
    source.SetColorSystem(KX_COLOR_SYSTEM_LAB);
    child.SetColorSystem(KX_COLOR_SYSTEM_LUV);
    const char* const kTree = "10 10 40 40 (1 2 20 20 (3 4 5 5), 5 5 5 5)";
    KxSetRecursiveCopyBehavior(0);
    EXPECT_EQ(TreeOf(Region(source)), "10 10 40 40");
    KxSetRecursiveCopyBehavior(1);
    Region copy(source);
    EXPECT_EQ(TreeOf(copy), kTree);
    EXPECT_EQ(TreeOf(source), kTree);
    EXPECT_EQ(source.GetFirstSubROI(), &child);
    const std::unique_ptr<KxGenericROI> clone(copy.GetFirstSubROI()), other(clone->GetNextSiblingROI());
    const std::unique_ptr<KxGenericROI> grandclone(clone->GetFirstSubROI());
    EXPECT_EQ(clone->GetColorSystem(), KX_COLOR_SYSTEM_LAB) << "of its new parent";
    EXPECT_EQ(grandclone->GetColorSystem(), KX_COLOR_SYSTEM_LUV) << "of its parent before that was attached";

    source.CopyTo(&child, 1);  // a child of the source takes its place beside it
    const std::unique_ptr<KxGenericROI> twin(child.GetFirstSubROI());
    EXPECT_EQ(child.GetParent(), &image);
    EXPECT_EQ(TreeOf(child), "10 10 40 40 (5 5 5 5)");
    EXPECT_EQ(grandchild.GetParent(), nullptr);
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
    const TraceRecorder trace;
    Image image(100, 100);
    Region outer(&image, 60, 0, 40, 30), inner(&outer, 30, 20, 10, 10), beside(&image, 10, 90, 10, 10);
    Region below(&beside, 5, 5, 5, 5), clipped(&below, 1, 1, 4, 4);
    image.SetSize(50, 80);
    EXPECT_EQ(TreeOf(image), "0 0 50 80 (0 0 50 80 (30 20 10 10), 0 0 50 80 (5 5 5 5 (1 1 4 4)))");
    EXPECT_EQ(trace.Functions(), (Names{"KxROI::SetWidth", "KxROI::SetHeight"}));
    beside.SetWidth(8);
    EXPECT_EQ(TreeOf(beside), "0 0 8 80 (5 5 3 5 (1 1 2 4))");
    beside.SetWidth(3);
    EXPECT_EQ(TreeOf(beside), "0 0 3 80 (0 0 3 80 (1 1 2 4))") << "it lost its place and covers its parent";
    EXPECT_EQ(KxGetError(), KX_ERROR_ROI_OUT_OF_PARENT);
}

TEST(RegionTree, KeepsTheOrderOfSiblingsThatComeAndGo) {
    Image image(10, 10);
    std::deque<Region> regions(5);
    for (int i = 0; i < 5; ++i) {
        regions[i].SetPlacement(i, 0, 1, 1);
        regions[i].Attach(&image);
    }
    const std::pair<int, const char*> kRemoved[] = {{0, "1234"}, {4, "1230"}, {2, "1304"}, {1, "3042"}};
    Region* previous = nullptr;
    for (const auto& [index, names] : kRemoved) {
        regions[index].Detach();
        if (previous) previous->Attach(&image);
        previous = &regions[index];
        std::string order;
        for (const KxGenericROI* node = image.GetFirstSubROI(); node; node = node->GetNextSiblingROI())
            order += static_cast<char>('0' + node->GetOrgX());
        EXPECT_EQ(order, names);
    }
}

// Trees may be deep while stacks are small.
TEST(RegionTree, IsUsedOnASmallStack) {
    RunOnSmallStack([] {
        Image image(100, 100);
        std::deque<Region> regions;
        Region* parent = &image;
        for (int level = 0; level < 1000; ++level) parent = &regions.emplace_back(parent, 0, 0, 100, 100);
        image.SetSize(50, 60);
        std::ostringstream dump;
        regions.front().DumpToStream(dump, 0);
        EXPECT_GT(dump.str().size(), 1000u * 1000);
        KxGenericROI::CheckParentChildrenConsistency(&image);
        EXPECT_EQ(parent->GetExtent(), GenericRoiExtent(0, 0, 50, 60));
        EXPECT_EQ(parent->GetImagePtr(3, 4), image.GetImagePtr(3, 4));
        std::unique_ptr<KxGenericROI> node(regions.front().CopyTo());
        int levels = 0;
        for (; node; node.reset(node->GetFirstSubROI())) ++levels;
        EXPECT_EQ(levels, 1000);
    });
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
