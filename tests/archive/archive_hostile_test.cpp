// Archives that are broken or forged: each ends with its code, at a price that its size bounds, and leaves an
// object that still works.

#include "tests/support/test.h"

#include "kalvo/streams/streambytes.h"
#include "tests/support/archive_builder.h"

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

// An image of 3 x 2 pixels with one child.
Bytes ImageWith(const Bytes& child) {
    return Join({Begin(34, 1), child, Place(0, 0, 3, 2), Pixels(8, 192, Bytes(48, 7))});
}

Bytes SizedImage(std::int64_t width, std::int64_t height, std::int64_t bitsPerPixel,
                 std::int64_t bitsPerRow) {
    return Join({Begin(34, 0), Place(0, 0, width, height), Pixels(bitsPerPixel, bitsPerRow, Bytes(48))});
}

struct HostileArchive {
    const char* what;
    Bytes bytes;
    KX_ERRORS code;
    bool untouched = false;
};

constexpr bool kUntouched = true;
const Bytes kMuch(999);
const HostileArchive kHostileArchives[] = {
    {"wrong signature", {0x4C, 34, 4, 0x4C ^ 34 ^ 4}, KX_ERROR_BAD_FILE_FORMAT, kUntouched},
    {"wrong checksum", {0x4B, 34, 4, 0}, KX_ERROR_BAD_FILE_FORMAT, kUntouched},
    {"a region instead", Leaf(47, 0, 0, 1, 1), KX_ERROR_WRONG_OBJECT_TYPE, kUntouched},
    {"later version", Begin(34, 0, 5), KX_ERROR_UNSUPPORTED_FILE_VERSION, kUntouched},

    {"text of negative length", Join({Header(34), Numbers({-1}), kMuch}), KX_ERROR_BAD_FILE_FORMAT},
    {"text beyond the end", Join({Header(34), Numbers({INT_MAX}), kMuch}), KX_ERROR_FILE_READ},
    {"wide text beyond the end", Join({Header(34), Numbers({0, 500}), kMuch}), KX_ERROR_FILE_READ},

    {"4 billion children", Join({Begin(34, -1), kMuch}), KX_ERROR_WRONG_OBJECT_TYPE},
    {"children to the end", Join({Begin(34, INT_MAX), Leaf(47, 0, 0, 1, 1)}), KX_ERROR_WRONG_OBJECT_TYPE},
    {"half a header of a child", Join({Begin(34, 1), {0x4B, 47}}), KX_ERROR_FILE_READ},
    {"child of type 32", ImageWith(Leaf(32, 0, 0, 1, 1)), KX_ERROR_WRONG_OBJECT_TYPE},
    {"child of type 59", ImageWith(Leaf(59, 0, 0, 1, 1)), KX_ERROR_WRONG_OBJECT_TYPE},
    {"child of a later version", ImageWith(Begin(47, 0, 5)), KX_ERROR_UNSUPPORTED_FILE_VERSION},
    {"child with a broken text", ImageWith(Join({Header(47), Numbers({-1})})), KX_ERROR_BAD_FILE_FORMAT},
    {"child beyond the end", ImageWith(Join({Header(47), Numbers({500})})), KX_ERROR_FILE_READ},
    {"child before its parent", ImageWith(Leaf(47, -1, 0, 1, 1)), KX_ERROR_BAD_FILE_FORMAT},
    {"child of negative height", ImageWith(Leaf(47, 0, 0, 1, -1)), KX_ERROR_BAD_FILE_FORMAT},
    {"broken child image", ImageWith(SizedImage(9, 9, 1, 192)), KX_ERROR_BAD_FILE_FORMAT},
    {"grandchild of no type", ImageWith(Join({Begin(47, 1), Begin(99, 0)})), KX_ERROR_WRONG_OBJECT_TYPE},
    // The header of a broken grandchild then makes a child of negative origin, ...
    {"grandchild of a later version", ImageWith(Join({Begin(47, 1), Begin(47, 0, 0x85)})),
     KX_ERROR_UNSUPPORTED_FILE_VERSION},
    // ... and the texts of a broken child could be all the other fields of an empty image.
    {"broken child that suits its parent",
     ImageWith(Join({Header(47), Numbers({0, 0, 0, 0, 0, 0, 0, 8, 0, 0, 0, 0, 0, -1}), Bytes(99)})),
     KX_ERROR_BAD_FILE_FORMAT},

    {"negative width", SizedImage(-3, 2, 8, 192), KX_ERROR_BAD_FILE_FORMAT},
    {"negative height", SizedImage(3, -2, 8, 192), KX_ERROR_BAD_FILE_FORMAT},
    {"row of 256 MiB", SizedImage(INT_MAX / 8, 1, 8, INT_MAX - 7), KX_ERROR_BAD_FILE_FORMAT},
    {"4 GiB of pixels", SizedImage(65536, 65536, 8, 524288), KX_ERROR_BAD_FILE_FORMAT},
    {"bits of another pixel type", SizedImage(3, 2, 24, 192), KX_ERROR_BAD_FILE_FORMAT},
    {"negative pitch", SizedImage(0, 2, 8, -1), KX_ERROR_BAD_FILE_FORMAT},
    {"pitch shorter than a row", SizedImage(3, 2, 8, 16), KX_ERROR_BAD_FILE_FORMAT},
    {"pixels beyond the end", SizedImage(60000, 60000, 8, 480000), KX_ERROR_FILE_READ},
    {"padding beyond the end", SizedImage(0, INT_MAX, 8, 8), KX_ERROR_FILE_READ},
    {"unit number where none may be",
     Join({Begin(34, 0), Place(0, 0, 0, 0), Numbers({8, 0}), Dimension(1, Numbers({7}), 1, ""), kMuch}),
     KX_ERROR_INTERNAL},
};

TEST(BrokenArchive, EndsWithItsCodeAndASoundObject) {
    const TraceRecorder traces;
    for (const auto& [what, bytes, code, untouched] : kHostileArchives) {
        SCOPED_TRACE(what);
        Image image(4, 4);
        Region attached(&image, 1, 1, 2, 2);
        image.SetTitle("old");
        WatchedReader reader(bytes);
        EXPECT_EQ(Load(image, reader), code);
        EXPECT_EQ(BytesLeft(reader), bytes.size()) << "the stream is back at the header";
        EXPECT_EQ(TreeOf(image), untouched ? "0 0 4 4 (1 1 2 2)" : "0 0 0 0");
        EXPECT_EQ(image.Void(), !untouched);
        EXPECT_EQ(image.GetTitle() != nullptr, untouched);
        WatchedReader good(ImageWith(Leaf(47, 1, 1, 1, 1)));
        EXPECT_EQ(Load(image, good), KX_OK);
        EXPECT_EQ(PixelBytes(*image.GetFirstSubROI()), Bytes{7});
    }
}

TEST(BrokenArchive, IsRefusedWhereverItIsCut) {
    const TraceRecorder traces;
    const Bytes whole = ImageWith(Leaf(47, 1, 1, 1, 1));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        Image image(4, 4);
        WatchedReader reader(Bytes(whole.data(), whole.data() + size));
        const bool endsBeforeChild = size == Begin(34, 1).size();
        EXPECT_EQ(Load(image, reader), endsBeforeChild ? KX_ERROR_WRONG_OBJECT_TYPE : KX_ERROR_FILE_READ)
            << size;
        EXPECT_EQ(BytesLeft(reader), size);
        EXPECT_EQ(image.GetWidth(), size < 4 ? 4 : 0);
        EXPECT_EQ(image.GetFirstSubROI(), nullptr);
    }
}

// A region has so few fields that it can go on after a broken child, whatever number of children it declares.
TEST(BrokenArchive, OfAChildEndsTheListOfItsParent) {
    const TraceRecorder traces;
    Region region;
    WatchedReader reader(Join({Begin(47, -1), Leaf(47, 1, 1, 1, 1), Begin(47, 0, 5), Place(0, 0, 1, 1),
                               Leaf(47, 2, 2, 2, 2), Place(0, 0, 4, 4)}));
    EXPECT_EQ(Load(region, reader), KX_ERROR_UNSUPPORTED_FILE_VERSION);
    ASSERT_TRUE(region.GetFirstSubROI());
    EXPECT_EQ(region.GetFirstSubROI()->GetNextSiblingROI(), nullptr);
    EXPECT_EQ(region.GetOrgX(), LoadLittleEndian<std::int32_t>(Header(47, 5).data()));
    Image image(9, 9);
    region.Attach(&image);
    EXPECT_EQ(region.GetExtent(), GenericRoiExtent(0, 0, 9, 9));
}

// Memory runs out when a position is saved: before the object, to look at its child, and before the child.
TEST(BrokenArchive, IsNotBlamedForAStreamThatFails) {
    struct FailingReader : WatchedReader {
        using WatchedReader::WatchedReader;
        void PushStreamPos() override {
            if (--pushesLeft == 0) throw std::bad_alloc();
            WatchedReader::PushStreamPos();
        }
        int pushesLeft = 0;
    };
    const TraceRecorder traces;
    for (const int push : {1, 2, 3}) {
        FailingReader reader(ImageWith(Leaf(47, 1, 1, 1, 1)));
        reader.pushesLeft = push;
        Image image;
        EXPECT_EQ(Load(image, reader), KX_ERROR_ALLOCATION) << push;
        EXPECT_EQ(image.GetFirstSubROI(), nullptr);
    }
}

// Far origins would add up beyond 32 bits.
TEST(BrokenArchive, OfRegionsOutsideTheirParentIsMended) {
    Region region;
    WatchedReader reader(Join({Begin(47, 1), Begin(47, 1), Leaf(47, INT_MAX, 0, 1, 1),
                               Place(INT_MAX, 0, INT_MAX, 1), Place(INT_MAX, INT_MAX, 5, 4)}));
    EXPECT_EQ(Load(region, reader), KX_ERROR_ROI_OUT_OF_PARENT);
    EXPECT_EQ(TreeOf(region), "2147483647 2147483647 5 4 (0 0 5 4 (0 0 5 4))");
}

// Broken children that overlap, each with a text as long as half the archive.
TEST(BrokenArchive, IsNotReadOverAndOver) {
    const TraceRecorder traces;
    constexpr int kChildren = 1000;
    Bytes archive = Begin(47, kChildren);
    for (int i = 0; i < kChildren; ++i)
        archive = Join({archive, Begin(47, 1), Header(49), Numbers({72 * kChildren, 1, 1, 0, 0, 0, 0})});
    Region region;
    WatchedReader reader(Join({archive, Bytes(2 * 72 * kChildren, 0xFF)}));
    EXPECT_EQ(Load(region, reader), KX_ERROR_BAD_FILE_FORMAT);
    EXPECT_EQ(region.GetFirstSubROI(), nullptr);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
