// Archives that are broken or forged: each ends with its code, at a price that its size bounds, and leaves an
// object that still works.

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <ostream>

#include "kalvo/image/kximage.h"
#include "kalvo/persistence/streambytes.h"
#include "tests/support/archive_builder.h"
#include "tests/support/pixel_bytes.h"
#include "tests/support/streams.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Image = KxImage<KxBW8>;
using Region = KxROI<KxBW8>;

// Watches what a loader asks for.
struct WatchedReader : KxMemSerializer {
    explicit WatchedReader(const Bytes& bytes) { OpenReader(bytes); }

    void SerializeBytes(void* data, unsigned int size, const char* fieldName) override {
        // Fields may run into the end; blocks are measured before memory is taken for them.
        asksTooMuch |= size > 16 && size > BytesLeft(*this);
        bytesAsked += size;
        KxMemSerializer::SerializeBytes(data, size, fieldName);
    }

    bool asksTooMuch = false;
    std::uint64_t bytesAsked = 0;
};

// Loads and returns what stands in the slot. However broken an archive is, it is read about once.
KX_ERRORS Load(KxGenericROI& object, WatchedReader& reader) {
    KxOk();
    object.Load(&reader);
    EXPECT_FALSE(reader.asksTooMuch);
    EXPECT_LE(reader.bytesAsked, 2 * reader.GetBuffer().size() + 200);
    KxGenericROI::CheckParentChildrenConsistency(&object);
    return KxGetError();
}

// An image of 3 x 2 pixels from after its children.
ArchiveBuilder RestOfImage(ArchiveBuilder archive) {
    return archive.Place(0, 0, 3, 2).Pixels(8, 192, Bytes(48, 7)).PixelSizes();
}

ArchiveBuilder GoodImage() { return RestOfImage(ArchiveBuilder().Begin(34, 1).Region(47, 1, 1, 1, 1)); }

ArchiveBuilder Nested(int levels) {
    ArchiveBuilder archive;
    for (int i = 0; i <= levels; ++i) archive.Begin(i ? 47 : 34, i < levels);
    for (int i = 0; i <= levels; ++i) archive.Place(0, 0, 1, 1);
    return archive.Pixels(8, 8, {1}).PixelSizes();
}

ArchiveBuilder SizedImage(std::int64_t width, std::int64_t height, std::int64_t bitsPerPixel,
                          std::int64_t bitsPerRow) {
    return ArchiveBuilder()
        .Begin(34, 0)
        .Place(0, 0, width, height)
        .Pixels(bitsPerPixel, bitsPerRow, Bytes(48))
        .PixelSizes();
}

struct HostileArchive {
    const char* what;
    Bytes bytes;
    KX_ERRORS code;
    bool untouched = false;
};

std::ostream& operator<<(std::ostream& stream, const HostileArchive& archive) {
    return stream << archive.what;
}

const HostileArchive kHostileArchives[] = {
    {"nothing", {}, KX_ERROR_FILE_READ, true},
    {"cut in the header", {0x4B, 34, 4}, KX_ERROR_FILE_READ, true},
    {"wrong signature", {0x4C, 34, 4, 0x4C ^ 34 ^ 4}, KX_ERROR_BAD_FILE_FORMAT, true},
    {"wrong checksum", {0x4B, 34, 4, 0}, KX_ERROR_BAD_FILE_FORMAT, true},
    {"a region instead", ArchiveBuilder().Region(47, 0, 0, 1, 1), KX_ERROR_WRONG_OBJECT_TYPE, true},
    {"a later version", ArchiveBuilder().Begin(34, 0, 5), KX_ERROR_UNSUPPORTED_FILE_VERSION, true},

    {"cut before the texts", ArchiveBuilder().Header(34), KX_ERROR_FILE_READ},
    {"a text of negative length", ArchiveBuilder().Header(34).Numbers({-1}).Raw(Bytes(99)),
     KX_ERROR_BAD_FILE_FORMAT},
    {"a text longer than the stream", ArchiveBuilder().Header(34).Numbers({INT_MAX}).Raw(Bytes(99)),
     KX_ERROR_FILE_READ},
    {"a wide text longer than the stream", ArchiveBuilder().Header(34).Numbers({0, 50}).Raw(Bytes(99)),
     KX_ERROR_FILE_READ},

    {"a negative number of children", ArchiveBuilder().Begin(34, INT_MIN).Raw(Bytes(999)),
     KX_ERROR_BAD_FILE_FORMAT},
    {"more children than fit", ArchiveBuilder().Begin(34, INT_MAX).Raw(Bytes(999)), KX_ERROR_FILE_READ},
    {"one child more than fits", ArchiveBuilder().Begin(34, 2).Raw(Bytes(143)), KX_ERROR_FILE_READ},
    {"no child where one should be", ArchiveBuilder().Begin(34, 1).Raw(Bytes(999)),
     KX_ERROR_WRONG_OBJECT_TYPE},
    {"a child of type 32", ArchiveBuilder().Begin(34, 1).Region(32, 0, 0, 1, 1), KX_ERROR_WRONG_OBJECT_TYPE},
    {"a child of type 59", ArchiveBuilder().Begin(34, 1).Region(59, 0, 0, 1, 1), KX_ERROR_WRONG_OBJECT_TYPE},
    {"a child of a later version", ArchiveBuilder().Begin(34, 1).Begin(47, 0, 5).Raw(Bytes(999)),
     KX_ERROR_UNSUPPORTED_FILE_VERSION},
    {"a child with a broken text", ArchiveBuilder().Begin(34, 1).Header(47).Numbers({-1}).Raw(Bytes(999)),
     KX_ERROR_BAD_FILE_FORMAT},
    {"a child cut short", ArchiveBuilder().Begin(34, 1).Header(47).Numbers({500}).Raw(Bytes(99)),
     KX_ERROR_FILE_READ},
    {"a child before its parent", RestOfImage(ArchiveBuilder().Begin(34, 1).Region(47, -1, 0, 1, 1)),
     KX_ERROR_BAD_FILE_FORMAT},
    {"a child of negative height", RestOfImage(ArchiveBuilder().Begin(34, 1).Region(47, 0, 0, 1, -1)),
     KX_ERROR_BAD_FILE_FORMAT},
    {"a child image that is broken",
     ArchiveBuilder().Begin(34, 1).Begin(34, 0).Place(0, 0, 9, 9).Pixels(1, 8, Bytes(999)),
     KX_ERROR_BAD_FILE_FORMAT},
    {"a grandchild of a later version, whose header then makes a child of negative origin",
     RestOfImage(ArchiveBuilder().Begin(34, 1).Begin(47, 1).Begin(47, 0, 0x85)),
     KX_ERROR_UNSUPPORTED_FILE_VERSION},
    {"a broken child whose texts are the fields of an empty image",
     ArchiveBuilder()
         .Begin(34, 1)
         .Header(47)
         .Numbers({0, 0, 0, 0, 0, 0, 0, 8, 0, 0, 0, 0, -1})
         .Raw(Bytes(99)),
     KX_ERROR_BAD_FILE_FORMAT},
    {"a grandchild of no type", ArchiveBuilder().Begin(34, 1).Begin(47, 1).Begin(99, 0).Raw(Bytes(999)),
     KX_ERROR_WRONG_OBJECT_TYPE},
    {"too many levels", Nested(1001), KX_ERROR_BAD_FILE_FORMAT},

    {"a negative width", SizedImage(-3, 2, 8, 192), KX_ERROR_BAD_FILE_FORMAT},
    {"a negative height", SizedImage(3, -2, 8, 192), KX_ERROR_BAD_FILE_FORMAT},
    {"a row of 256 MiB", SizedImage(INT_MAX / 8, 1, 8, INT_MAX - 7), KX_ERROR_BAD_FILE_FORMAT},
    {"4 GiB of pixels", SizedImage(65536, 65536, 8, 524288), KX_ERROR_BAD_FILE_FORMAT},
    {"bits of another pixel type", SizedImage(3, 2, 24, 192), KX_ERROR_BAD_FILE_FORMAT},
    {"a negative pitch", SizedImage(3, 2, 8, -192), KX_ERROR_BAD_FILE_FORMAT},
    {"a pitch shorter than a row", SizedImage(3, 2, 8, 16), KX_ERROR_BAD_FILE_FORMAT},
    {"pixels beyond the end", SizedImage(60000, 60000, 8, 480000), KX_ERROR_FILE_READ},
    {"padding beyond the end", SizedImage(0, INT_MAX, 8, 8), KX_ERROR_FILE_READ},
    {"pixel sizes cut short", ArchiveBuilder().Begin(34, 0).Place(0, 0, 0, 0).Pixels(8, 0, Bytes(55)),
     KX_ERROR_FILE_READ},
    {"an early unit number",
     ArchiveBuilder().Begin(34, 0).Place(0, 0, 0, 0).Pixels(8, 0, {}).Value(1, 7, 1, "").Raw(Bytes(99)),
     KX_ERROR_INTERNAL},
};

class HostileArchiveTest : public testing::TestWithParam<HostileArchive> {};
INSTANTIATE_TEST_SUITE_P(Archive, HostileArchiveTest, testing::ValuesIn(kHostileArchives));

TEST_P(HostileArchiveTest, EndsWithItsCodeAndASoundObject) {
    const auto& [what, bytes, code, untouched] = GetParam();
    const TraceRecorder traces;
    Image image(4, 4);
    Region attached(&image, 1, 1, 2, 2);
    image.SetTitle("old");

    WatchedReader reader(bytes);
    EXPECT_EQ(Load(image, reader), code);
    EXPECT_EQ(BytesLeft(reader), bytes.size()) << "the stream is back at the header";
    EXPECT_EQ(image.GetWidth(), untouched ? 4 : 0);
    EXPECT_EQ(image.GetHeight(), untouched ? 4 : 0);
    EXPECT_EQ(image.Void(), !untouched);
    EXPECT_EQ(image.GetTitle() != nullptr, untouched);
    EXPECT_EQ(image.GetFirstSubROI(), untouched ? &attached : nullptr);

    WatchedReader good(GoodImage());
    EXPECT_EQ(Load(image, good), KX_OK);
    EXPECT_EQ(PixelBytes(*image.GetFirstSubROI()), Bytes{7});
}

TEST(BrokenArchive, IsRefusedWhereverItIsCut) {
    const TraceRecorder traces;
    const Bytes whole = GoodImage();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        Image image(4, 4);
        WatchedReader reader(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_EQ(Load(image, reader), KX_ERROR_FILE_READ) << size;
        EXPECT_EQ(BytesLeft(reader), size);
        EXPECT_EQ(image.GetWidth(), size < 4 ? 4 : 0);
        EXPECT_EQ(image.GetFirstSubROI(), nullptr);
    }
}

// A region has so few fields that it can go on after a broken child.
TEST(BrokenArchive, OfAChildEndsTheListOfItsParent) {
    const TraceRecorder traces;
    const Bytes bytes = ArchiveBuilder()
                            .Begin(47, 3)
                            .Region(47, 1, 1, 1, 1)
                            .Begin(47, 0, 5)
                            .Place(0, 0, 1, 1)
                            .Region(47, 2, 2, 2, 2)
                            .Place(0, 0, 4, 4);
    Region region;
    WatchedReader reader(bytes);
    EXPECT_EQ(Load(region, reader), KX_ERROR_UNSUPPORTED_FILE_VERSION);
    ASSERT_TRUE(region.GetFirstSubROI());
    EXPECT_EQ(region.GetFirstSubROI()->GetExtent(), GenericRoiExtent(1, 1, 1, 1));
    EXPECT_EQ(region.GetFirstSubROI()->GetNextSiblingROI(), nullptr);
    EXPECT_EQ(region.GetOrgX(), 0x4B | 47 << 8 | 5 << 16 | (0x4B ^ 47 ^ 5) << 24) << "the child's header";
    Image image(9, 9);
    region.Attach(&image);
    EXPECT_EQ(region.GetExtent(), GenericRoiExtent(0, 0, 9, 9));
}

// Broken children that overlap, each with a text as long as half the archive.
TEST(BrokenArchive, IsNotReadOverAndOver) {
    const TraceRecorder traces;
    constexpr int kChildren = 1000;
    ArchiveBuilder archive;
    archive.Begin(47, kChildren);
    for (int i = 0; i < kChildren; ++i)
        archive.Begin(47, 1).Header(49).Numbers({72 * kChildren, 1, 1, 0, 0, 0, 0});
    archive.Raw(Bytes(2 * 72 * kChildren, 0xFF));
    Region region;
    WatchedReader reader(archive);
    EXPECT_EQ(Load(region, reader), KX_ERROR_BAD_FILE_FORMAT);
    EXPECT_EQ(region.GetFirstSubROI(), nullptr);
}

TEST(LargeArchive, TakesTimeInProportion) {
    constexpr int kChildren = 200000;
    constexpr int kLevels = 999;
    ArchiveBuilder flat, deep;
    flat.Begin(34, kChildren);
    deep.Begin(34, 1);
    for (int i = 1; i <= kLevels; ++i) deep.Begin(47, i < kLevels ? 1 : kChildren);
    for (ArchiveBuilder* archive : {&flat, &deep})
        for (int i = 0; i < kChildren; ++i) archive->Region(47, 1, 0, 2, 2);
    for (int i = 0; i < kLevels; ++i) deep.Place(100, 100, 1, 1);  // each beyond its parent
    for (ArchiveBuilder* archive : {&flat, &deep}) {
        archive->Place(0, 0, 5, 5).Pixels(8, 40, Bytes(25)).PixelSizes();
        Image image;
        WatchedReader reader(*archive);
        EXPECT_EQ(Load(image, reader), archive == &flat ? KX_OK : KX_ERROR_ROI_OUT_OF_PARENT);
        KxGenericROI* leaf = &image;
        while (leaf->GetFirstSubROI()) leaf = leaf->GetFirstSubROI();
        int children = 0;
        for (; leaf; leaf = leaf->GetNextSiblingROI()) ++children;
        EXPECT_EQ(children, kChildren);
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
