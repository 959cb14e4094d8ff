// The tree of regions: walks, totals, texts, checks, dumps.

#include "tests/support/test.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Image = KxImage<KxBW8>;
using Region = KxROI<KxBW8>;

TEST(RegionTree, WalksParentsBeforeChildrenInListOrder) {
    Image image(100, 100);
    Region a(&image, 0, 0, 50, 50), b(&image, 50, 0, 50, 50), a1(&a, 5, 5, 10, 10), a2(&a, 5, 5, 10, 10);
    KxGenericROI* root = &image;
    std::vector<KxGenericROI*> met;
    for (KxGenericROI* node = root->GetFirstSubROI(); node; node = node->GetNextROI(root))
        met.push_back(node);
    EXPECT_EQ(met, (std::vector<KxGenericROI*>{&a, &a1, &a2, &b}));
    EXPECT_EQ(a2.GetNextROI(&a), &b) << "a walk inside a subtree goes on into the following siblings";
    EXPECT_EQ(static_cast<const KxGenericROI&>(b).GetNextROI(root), nullptr);
}

TEST(RegionTree, AddsOriginsUpToTheTopImage) {
    TraceRecorder trace;
    Image image(100, 80);
    Region outer(&image, 10, 20, 60, 50), inner(&outer, 5, 7, 20, 20), detached;
    EXPECT_EQ(inner.GetTotalOrgX(), 15);
    EXPECT_EQ(inner.GetTotalOrgY(), 27);
    EXPECT_EQ(inner.GetTotalWidth(), 100);
    EXPECT_EQ(detached.GetTotalWidth(), 0);
    EXPECT_EQ(KxGetError(), KX_ERROR_ROI_HAS_NO_PARENT);
    EXPECT_EQ(trace.Functions(), (Names{"KxROI::GetTopParent", "KxROI::GetTotalWidth"}));
}

TEST(RegionTexts, AreKeptApartInTheirTwoForms) {
    Region region;
    const auto wide = Wide("wide title");
    region.SetTitle("title");
    region.SetTitle(wide.c_str());
    EXPECT_STREQ(region.GetTitle(), "title");
    region.SetTitle(region.GetTitle());
    EXPECT_STREQ(region.GetTitle(), "title") << "setting a text to itself must not free it first";
    region.SetTitle(static_cast<const char*>(nullptr));
    EXPECT_EQ(region.GetTitle(), nullptr);
    EXPECT_EQ(region.GetTitleUnicode(), std::basic_string<unsigned short>(wide));
}

TEST(RegionChecks, StoreAndReturnTheirCodes) {
    TraceRecorder trace;
    Image tall(10, 20), wide(20, 10), twin(20, 10);
    KxImage<KxBW16> deep(20, 10);
    EXPECT_EQ(wide.SameSize(&tall), KX_ERROR_SIZE_MISMATCH);
    EXPECT_TRUE(trace.Boxes().empty()) << "a size mismatch is not traced";
    EXPECT_EQ(wide.SameSize(&twin), 0);
    EXPECT_EQ(wide.SameDepth(&deep), KX_ERROR_DEPTH_MISMATCH);
    EXPECT_EQ(deep.PermittedDepth(2 | 4), 0);
    EXPECT_EQ(deep.PermittedDepth(2 | 8), KX_ERROR_INVALID_DEPTH);
    EXPECT_EQ(wide.PermittedDataType(2), KX_ERROR_INVALID_DATA_TYPE);
    EXPECT_EQ(trace.Functions(),
              (Names{"KxROI::SameDepth", "KxROI::PermittedDepth", "KxROI::PermittedDataType"}));
    EXPECT_EQ(wide.SameSizeDepthType(&deep, 2, 1), KX_ERROR_DEPTH_MISMATCH);
    EXPECT_EQ(trace.Functions().back(), "KxROI::SameSizeDepthType");
}

struct BreakableRegion : Region {
    using Region::Region;
    void SetLinks(KxGenericROI* parent, KxGenericROI* sibling, KxGenericROI* child) {
        m_pParent = parent;
        m_pSibling = sibling;
        m_pFirstSubROI = child;
    }
};

TEST(RegionTreeDeathTest, StopsOnABrokenLink) {
    Image image(100, 100), other(10, 10);
    Region sound(&image, 0, 0, 50, 50), grandchild(&sound, 0, 0, 10, 10);
    BreakableRegion child(&image, 0, 0, 50, 50), last(&image, 0, 0, 50, 50);
    EXPECT_EQ(KxGenericROI::DoesContainChild(&image, &child), 1);
    EXPECT_EQ(KxGenericROI::DoesContainChild(&image, &grandchild), 0);
    KxGenericROI::CheckParentChildrenConsistency(&image);
    const std::tuple<const char*, BreakableRegion*, KxGenericROI*, KxGenericROI*, KxGenericROI*> kFaults[] = {
        {"another parent", &child, &other, &last, nullptr},
        {"the list leads to its beginning", &last, &image, &sound, nullptr},
        {"the list leads into its middle", &last, &image, &child, nullptr},
        {"the list ends in a circle of one", &last, &image, &last, nullptr},
    };
    for (const auto& [fault, broken, parent, sibling, first] : kFaults) {
        const auto breakLinks = [&] { broken->SetLinks(parent, sibling, first); };
        const auto inDescendants = [&] { KxGenericROI::CheckParentChildrenConsistency(&image); };
        const auto inList = [&] { KxGenericROI::DoesContainChild(&image, &sound); };
        EXPECT_DEATH((breakLinks(), inDescendants()), "CheckParentChildrenConsistency") << fault;
        EXPECT_DEATH((breakLinks(), inList()), "DoesContainChild(.|\n)*parent/daughters") << fault;
    }
    BreakableRegion upper, lower;
    const auto makeCircle = [&] {
        upper.SetLinks(&lower, nullptr, &lower);
        lower.SetLinks(&upper, nullptr, &upper);
        KxGenericROI::CheckParentChildrenConsistency(&upper);
    };
    EXPECT_DEATH(makeCircle(), "CheckParentChildrenConsistency") << "parents and children in a circle";
}

TEST(RegionDump, WritesFieldsAndChildren) {
    Image image(100, 100);
    Region region(&image, 1, 2, 30, 40), child(&region, 0, 0, 5, 5);
    region.SetTitle("a title");
    std::ostringstream stream, address;
    stream << static_cast<KxGenericROI&>(region);
    address << static_cast<void*>(&region);
    const std::string dump = stream.str();
    EXPECT_TRUE(
        dump.starts_with("+--------------------------------+\n| DUMPING KxGenericROI [subclass] |\n"
                         "+--------------------------------+\nDumping KxGenericROI( " +
                         address.str() + ") : \nm_pszAuthorASCII = NULL\n"));
    EXPECT_TRUE(dump.ends_with("( KxROI<Pixel>( " + address.str() +
                               ") : m_bMaskOffsets = FALSEm_n32CursorX = 0m_n32CursorY = 0)"));
    for (const char* line :
         {"\nm_pszTitleASCII = a title\n", "\nDumping children : \n  Dumping KxGenericROI( ",
          "\n  Dumping children :  <NO CHILDREN TO DUMP>\n", "\n  ( KxROI<Pixel>( ",
          "m_n32OrgX = 1\nm_n32OrgY = 2\nm_n32Height = 40\nm_n32Width = 30\n"
          "m_eColorSystem = KX_COLOR_SYSTEM_GRAY_LEVEL\n"})
        EXPECT_NE(dump.find(line), std::string::npos) << line;
    EXPECT_THROW(image.DumpToStream(stream, 0), int);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
