// Archives of images and regions: their bytes, what comes back, and what refuses to.

#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "kalvo/image/kximage.h"
#include "kalvo/persistence/streambytes.h"
#include "kalvo/platform/file.h"
#include "tests/support/archive_builder.h"
#include "tests/support/pixel_bytes.h"
#include "tests/support/pixel_types.h"
#include "tests/support/streams.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Image = KxImage<KxBW8>;
using Region = KxROI<KxBW8>;
Bytes Saved(const KxGenericROI& object) {
    return Written([&](KxSerializer& writer) {
        KxOk();
        object.Save(&writer);
        EXPECT_EQ(KxGetError(), KX_OK);
    });
}

// Loads an archive that takes up the whole stream.
void LoadFrom(const Bytes& bytes, KxGenericROI& object) {
    const Stream reader = ReaderOf(bytes);
    KxOk();
    object.Load(reader.get());
    EXPECT_EQ(KxGetError(), KX_OK);
    EXPECT_EQ(BytesLeft(*reader), 0u);
    KxGenericROI::CheckParentChildrenConsistency(&object);
}

// Bytes of a buffer, padding included, that are all known.
template <class Pixel>
void FillBuffer(KxImage<Pixel>& image) {
    auto* bytes = static_cast<std::uint8_t*>(image.GetGenericImagePtr(0, 0));
    for (int i = 0; i < image.GetImgPitch(); ++i) bytes[i] = static_cast<std::uint8_t>(i * 7 + 1);
}

class Archive : public testing::Test {
protected:
    TraceRecorder traces;
};

TEST_F(Archive, OfAnImageHoldsTheseBytes) {
    Bytes pixels{1, 2, 3, 0xAA, 4, 5, 6, 0xBB};
    Image image;
    image.SetImagePtr(3, 2, pixels.data());
    image.SetTitle("abc");
    image.SetComment("");
    const unsigned short omega[] = {0x3A9, 0};
    image.SetTitle(omega);
    image.SetPixelDimensions(0.5f, 2.0f, &KxUnit_inch);
    Region child(&image, 1, 0, 2, 1);
    child.SetMaskOffsets(1);

    const Bytes expected =
        ArchiveBuilder()
            .Raw({0x4B, 34, 4, 0x4B ^ 34 ^ 4})
            .Numbers({0, 0, 0, 0, 0, 0, 3})
            .Raw("abc")
            .Numbers({1})
            .Raw({0xA9, 3})
            .Numbers({1})
            .Raw({0x4B, 47, 4, 0x4B ^ 47 ^ 4})
            .Numbers({0, 0, 0, 0, 0, 0, 0, 0, 0})  // texts and children of the child
            .Numbers({1, 0, 2, 1, KX_COLOR_SYSTEM_GRAY_LEVEL, 1, 0, 0})
            .Numbers({0, 0, 3, 2, KX_COLOR_SYSTEM_GRAY_LEVEL, 0, 0, 0})
            .Numbers({8, 32})
            .Raw({1, 2, 3, 0xAA, 4, 5, 6, 0xBB})
            .Raw({0, 0, 0, 0x40, 0, 0, 0, 0, 0xA9, 0x13, 0xD0, 0x3C})  // height 2, not predefined, 0.0254
            .Name("inch")
            .Raw({0, 0, 0, 0x3F, 0, 0, 0, 0, 0xA9, 0x13, 0xD0, 0x3C})
            .Name("inch");
    EXPECT_EQ(Saved(image), expected);
    EXPECT_EQ(Saved(Image()).size(), 4u + 8 * 4 + 4 + 5 * 4 + 3 * 4 + 2 * 4 + 2 * 28);
}

// In the order of their object types.
using ArchivedPixelTypes = std::tuple<KxBW1, KxBW8, KxBW16, KxBW32, KxC15, KxC16, KxC24, KxYUY2, KxC24A,
                                      KxSubPixel64, KxComplex64, KxRaw32, KxRaw96>;

TEST_F(Archive, HasATypeForEveryClassOfObject) {
    int type = 33;
    const auto check = [&](auto pixel) {
        EXPECT_EQ(KxImage<decltype(pixel)>().GetSerializationType(), type);
        EXPECT_EQ(KxROI<decltype(pixel)>().GetSerializationType(), type + 13);
        EXPECT_EQ(KxImage<decltype(pixel)>().GetCurrentVersion(), 4u);
        ++type;
    };
    std::apply([&](auto... pixels) { (check(pixels), ...); }, ArchivedPixelTypes());
    EXPECT_EQ(type, 46);
}

template <class Pixel>
class ArchiveOf : public Archive {};
TYPED_TEST_SUITE(ArchiveOf, AsTypes<ArchivedPixelTypes>::Types);

TYPED_TEST(ArchiveOf, BringsBackImagesAndRegions) {
    KxImage<TypeParam> image(37, 5);
    FillBuffer(image);
    image.SetTitle("title");
    image.SetAuthor(Wide("author").c_str());
    image.SetMaskOffsets(1);
    image.SetPixelDimensions(0.5f, 0.25f, &KxUnit_mm);
    KxROI<TypeParam> outer(&image, 3, 1, 20, 4), inner(&outer, 2, 1, 5, 2), second(&image, 0, 0, 1, 1);
    inner.SetDate("today");
    const Bytes archive = Saved(image);

    KxImage<TypeParam> loaded(9, 9);
    KxROI<TypeParam> foreign(&loaded, 1, 1, 2, 2);
    loaded.SetComment("old");
    loaded.SetRectangleMask(0, 0, 2, 2);
    for (int round = 0; round < 2; ++round) {
        LoadFrom(archive, loaded);
        EXPECT_EQ(PixelBytes(loaded), PixelBytes(image));
        EXPECT_STREQ(loaded.GetTitle(), "title");
        EXPECT_EQ(loaded.GetAuthorUnicode(), Wide("author"));
        EXPECT_EQ(loaded.GetAuthor(), nullptr);
        EXPECT_EQ(loaded.GetComment(), nullptr);
        EXPECT_EQ(loaded.GetMaskOffsets(), 1);
        EXPECT_EQ(loaded.GetMaskRuns().GetNumElements(), 0u);
        float width = 0, height = 0;
        const KxMeasurementUnit* unit = nullptr;
        loaded.GetPixelDimensions(width, height, unit);
        EXPECT_EQ(std::pair(width, height), std::pair(0.5f, 0.25f));
        EXPECT_STREQ(unit->GetName(), "mm");

        const auto* first = dynamic_cast<KxROI<TypeParam>*>(loaded.GetFirstSubROI());
        ASSERT_TRUE(first);
        EXPECT_EQ(first->GetExtent(), outer.GetExtent());
        EXPECT_EQ(PixelBytes(*first), PixelBytes(outer));
        EXPECT_STREQ(first->GetFirstSubROI()->GetDate(), "today");
        EXPECT_EQ(first->GetFirstSubROI()->GetExtent(), inner.GetExtent());
        EXPECT_EQ(first->GetNextSiblingROI()->GetExtent(), second.GetExtent());
        EXPECT_EQ(Saved(loaded), archive);
    }
    EXPECT_EQ(foreign.GetParent(), nullptr) << "children of the caller are let go";
    EXPECT_EQ(foreign.GetExtent(), GenericRoiExtent(1, 1, 2, 2));

    const Bytes ofRegion = Saved(outer);
    LoadFrom(ofRegion, second);
    EXPECT_EQ(second.GetParent(), nullptr);
    EXPECT_EQ(image.GetFirstSubROI()->GetNextSiblingROI(), nullptr);
    EXPECT_EQ(second.GetExtent(), outer.GetExtent());
    EXPECT_EQ(Saved(second), ofRegion);
}

TEST_F(Archive, OfFloatPixelsDoesNotExist) {
    const KxImage<KxFLOAT32> image;
    const KxROI<KxFLOAT64> region;
    KxImage<KxFLOAT64> target(3, 3);
    const Bytes archive = Saved(Image());
    for (const KxGenericROI* object :
         {static_cast<const KxGenericROI*>(&image), static_cast<const KxGenericROI*>(&region)}) {
        EXPECT_TRUE(Written([&](KxSerializer& writer) { object->Save(&writer); }).empty());
        EXPECT_EQ(KxGetError(), KX_ERROR_NEEDS_SPECIALIZATION);
    }
    KxOk();
    const Stream reader = ReaderOf(archive);
    target.Load(reader.get());
    EXPECT_EQ(KxGetError(), KX_ERROR_NEEDS_SPECIALIZATION);
    EXPECT_EQ(BytesLeft(*reader), archive.size());
    EXPECT_EQ(target.GetWidth(), 3);
}

TEST_F(Archive, KeepsTextsOfAnyLength) {
    const std::string longText(70000, 'x');
    Region region;
    region.SetAuthor("a\xE9");
    region.SetComment("");
    region.SetComment(Wide(longText).c_str());
    region.SetTitle(longText.c_str());
    Region loaded;
    loaded.SetComment("old");
    loaded.SetDate("old");
    LoadFrom(Saved(region), loaded);
    EXPECT_STREQ(loaded.GetAuthor(), "a\xE9");
    EXPECT_EQ(loaded.GetComment(), nullptr);
    EXPECT_EQ(loaded.GetCommentUnicode(), Wide(longText));
    EXPECT_EQ(loaded.GetDate(), nullptr);
    EXPECT_EQ(loaded.GetTitle(), longText);
}

// An image that holds an image with a region, and a chain of regions, beside the versions and pixel types.
TEST_F(Archive, RebuildsChildrenOfEveryKind) {
    const Bytes archive = ArchiveBuilder()
                              .Begin(34, 2)
                              .Begin(39, 1)
                              .Region(52, 1, 0, 1, 2)
                              .Numbers({7, 7, 2, 2, KX_COLOR_SYSTEM_RGB, 0, 0, 0})
                              .Pixels(24, 192, Bytes(48, 9))
                              .PixelSizes()
                              .Begin(47, 1, 0)
                              .Begin(47, 1, 3)
                              .Region(46, 2, 0, 1, 1)
                              .Place(0, 0, 4, 4)
                              .Place(5, 5, 5, 3)
                              .Numbers({0, 0, 10, 8, KX_COLOR_SYSTEM_LABELIZED, 0, 0, 0})
                              .Pixels(8, 192, Bytes(24 * 8, 5))
                              .PixelSizes();
    Image image;
    LoadFrom(archive, image);
    EXPECT_EQ(image.GetColorSystem(), KX_COLOR_SYSTEM_LABELIZED);
    auto* color = dynamic_cast<KxImage<KxC24>*>(image.GetFirstSubROI());
    ASSERT_TRUE(color);
    EXPECT_EQ(color->GetExtent(), GenericRoiExtent(0, 0, 2, 2));
    EXPECT_EQ(color->GetPixel(1, 1), KxC24(9, 9, 9));
    EXPECT_EQ(color->GetColorSystem(), KX_COLOR_SYSTEM_GRAY_LEVEL)
        << "what the parent held when it was linked";
    EXPECT_EQ(dynamic_cast<KxROI<KxC24>*>(color->GetFirstSubROI())->GetPixel(0, 1), KxC24(9, 9, 9));
    auto* region = dynamic_cast<Region*>(color->GetNextSiblingROI());
    ASSERT_TRUE(region);
    EXPECT_EQ(region->GetNextSiblingROI(), nullptr);
    EXPECT_EQ(region->GetFirstSubROI()->GetFirstSubROI()->GetType(), KX_IMAGE_BW1);
    EXPECT_EQ(region->GetFirstSubROI()->GetFirstSubROI()->GetTotalOrgX(), 7);

    Image again;
    LoadFrom(Saved(image), again);
    EXPECT_EQ(Saved(again), Saved(image));

    Region foreign(region, 0, 0, 1, 1);
    LoadFrom(Saved(Image()), image);  // ends and frees all that the tree owns: address sanitizer watches
    EXPECT_EQ(foreign.GetParent(), nullptr);
    EXPECT_EQ(image.GetFirstSubROI(), nullptr);
}

TEST_F(Archive, KeepsChildrenInsideTheirParent) {
    const struct {
        int type;
        GenericRoiExtent stored, expected;
        KX_ERRORS code;
    } cases[] = {
        {47, {2, 3, 4, 4}, {2, 3, 4, 4}, KX_OK},
        {47, {5, 5, INT_MAX, INT_MAX}, {5, 5, 5, 3}, KX_OK},
        {47, {10, 8, 1, 1}, {10, 8, 0, 0}, KX_OK},
        {47, {11, 0, 1, 1}, {0, 0, 10, 8}, KX_ERROR_ROI_OUT_OF_PARENT},
        {47, {3, INT_MAX, INT_MAX, 1}, {0, 0, 10, 8}, KX_ERROR_ROI_OUT_OF_PARENT},
        // Wider pixels than those of the parent reach no further than its rows do.
        {48, {4, 0, 6, 8}, {4, 0, 3, 8}, KX_OK},
        {58, {0, 0, 10, 8}, {0, 0, 0, 8}, KX_OK},
        {46, {0, 0, 10, 8}, {0, 0, 10, 8}, KX_OK},
    };
    for (const auto& [type, stored, expected, code] : cases) {
        const Bytes archive =
            ArchiveBuilder()
                .Begin(34, 1)
                .Begin(type, 1)
                .Region(type, 0, 0, INT_MAX, 7)
                .Place(stored.m_n32OrgX, stored.m_n32OrgY, stored.m_n32Width, stored.m_n32Height)
                .Place(0, 0, 10, 8)
                .Pixels(8, 80, Bytes(80))
                .PixelSizes();
        Image image;
        const Stream reader = ReaderOf(archive);
        KxOk();
        image.Load(reader.get());
        EXPECT_EQ(KxGetError(), code);
        EXPECT_EQ(reader->IsEOS(), 1);
        KxGenericROI* child = image.GetFirstSubROI();
        EXPECT_EQ(child->GetExtent(), expected);
        EXPECT_EQ(child->GetFirstSubROI()->GetExtent(),
                  GenericRoiExtent(0, 0, child->GetWidth(), std::min(child->GetHeight(), 7)));
        child->SetSize(10, 8);
        EXPECT_EQ(child->GetWidth(), expected.m_n32Width == 4 ? 8 : expected.m_n32Width);
    }
    EXPECT_TRUE(traces.Boxes().empty());
}

TEST_F(Archive, OfAnEarlierVersionHoldsEarlierPixelSizes) {
    for (const int version : {0, 1, 2, 3, 4, 5}) {
        ArchiveBuilder archive;
        archive.Begin(34, 0, version).Place(0, 0, 1, 1).Pixels(8, 8, {42});
        for (const float value : {3.0f, 4.0f}) {
            archive.Number(value);
            if (version == 3) archive.Numbers({77});  // an early unit number, which is ignored
            if (version == 4) archive.Numbers({0});
            archive.Number(0.25f).Name("quarter");
        }
        Image image(2, 2);
        if (version == 5) {
            const Stream reader = ReaderOf(archive);
            image.Load(reader.get());
            EXPECT_EQ(KxGetError(), KX_ERROR_UNSUPPORTED_FILE_VERSION);
            EXPECT_EQ(image.GetWidth(), 2);
            continue;
        }
        LoadFrom(archive, image);
        float width = 0, height = 0;
        const KxMeasurementUnit* unit = nullptr;
        image.GetPixelDimensions(width, height, unit);
        EXPECT_EQ(std::pair(width, height), std::pair(4.0f, 3.0f)) << version;
        EXPECT_STREQ(unit->GetName(), "quarter");
        EXPECT_EQ(unit->GetMagnitude(), 0.25f);
        EXPECT_EQ(image.GetPixel(0, 0), 42);
    }
}

TEST_F(Archive, RefusalRewindsTheStreamAndLeavesTheObject) {
    const TemporaryFolder folder;
    Image image(4, 4);
    image.SetTitle("kept");
    const Bytes archive = Saved(KxImage<KxC24>());
    const std::string name = folder.Write("archive", archive);
    const Platform::File file(name.c_str(), "rb");
    Stream readers[] = {ReaderOf(archive), Stream(KxSerializer::CreateFileReader(name)),
                        std::make_unique<KxFilePointerSerializer>(file.Get(), 0)};
    for (const Stream& reader : readers) {
        KxOk();
        image.Load(reader.get());
        EXPECT_EQ(KxGetError(), KX_ERROR_WRONG_OBJECT_TYPE);
        KxOk();
        image.Save(reader.get());
        EXPECT_EQ(KxGetError(), KX_ERROR_NOT_OPEN_FOR_WRITE);
        EXPECT_EQ(BytesLeft(*reader), archive.size());
        EXPECT_STREQ(image.GetTitle(), "kept");
        EXPECT_EQ(image.GetWidth(), 4);
        KxImage<KxC24> color;
        color.Load(reader.get());
        EXPECT_EQ(reader->IsEOS(), 1);
        // Every object took its saved position off the stack again.
        EXPECT_EQ(CodeThrownBy([&] { reader->PopAndForgetStreamPos(); }), KX_ERROR_FILE_ACCESS);
    }
    KxMemSerializer writer;
    writer.OpenWriter();
    image.Load(&writer);
    EXPECT_EQ(KxGetError(), KX_ERROR_NOT_OPEN_FOR_READ);
    EXPECT_STREQ(image.GetTitle(), "kept");
    EXPECT_EQ(traces.Functions().back(), "KxImage::Load");
    KxSetError(KX_ERROR_SIZE_MISMATCH);
    image.Save(&writer);
    EXPECT_EQ(KxGetError(), KX_ERROR_SIZE_MISMATCH) << "success leaves the slot alone";
}

TEST_F(Archive, KeepsThePitchOfWrappedBuffers) {
    Bytes pixels(48 * 3);
    for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<std::uint8_t>(i);
    const Bytes rows{0, 1, 2, 3, 4, 48, 49, 50, 51, 52, 96, 97, 98, 99, 100};
    const Bytes upwards{96, 97, 98, 99, 100, 48, 49, 50, 51, 52, 0, 1, 2, 3, 4};
    const struct {
        std::size_t first;
        int bitsPerRow;
        Bytes expected;
        std::size_t blockBytes;
    } cases[] = {{0, 48 * 8, rows, 48 * 3}, {96, -48 * 8, upwards, 48 * 3}, {0, 48 * 8 + 4, rows, 48 * 3}};
    for (const auto& [first, bitsPerRow, expected, blockBytes] : cases) {
        Image image, loaded;
        image.SetImagePtr(5, 3, &pixels[first], bitsPerRow);
        const Bytes archive = Saved(image);
        EXPECT_EQ(archive.size(), Saved(Image()).size() + blockBytes);
        LoadFrom(archive, loaded);
        EXPECT_EQ(loaded.GetRowPitch(), 24);
        EXPECT_EQ(PixelBytes(loaded), expected);
    }
    // Without pixels, or with one row over the next, there is nothing to save.
    Image image;
    for (const bool missing : {true, false}) {
        image.SetImagePtr(5, 3, missing ? nullptr : pixels.data(), missing ? 40 : 32);
        KxOk();
        Written([&](KxSerializer& writer) { image.Save(&writer); });
        EXPECT_EQ(KxGetError(), KX_ERROR_IMAGE_MEMORY_ACCESS);
    }
}

TEST_F(Archive, LeavesAnOpenFileBehindTheObject) {
    const TemporaryFolder folder;
    const Platform::File file(folder.File("archive").c_str(), "w+b");
    constexpr std::int64_t kFar = (std::int64_t{1} << 32) + 5;
    Image image(7, 3), loaded;
    FillBuffer(image);
    Region child(&image, 1, 1, 2, 2);
    KxROI<KxC24> region, loadedRegion;
    region.SetPlacement(1, 2, 3, 4);

    std::filesystem::resize_file(folder.File("archive"), kFar);
    Platform::Seek(file.Get(), kFar);
    KxOk();
    image.Save(file.Get());
    region.Save(file.Get());
    const std::int64_t end = Platform::Position(file.Get());
    EXPECT_EQ(static_cast<std::size_t>(end - kFar), Saved(image).size() + Saved(region).size());
    Platform::Seek(file.Get(), kFar);
    loadedRegion.Load(file.Get());
    EXPECT_EQ(KxGetError(), KX_ERROR_WRONG_OBJECT_TYPE);
    KxOk();
    EXPECT_EQ(Platform::Position(file.Get()), kFar);
    loaded.Load(file.Get());
    loadedRegion.Load(file.Get());
    EXPECT_EQ(KxGetError(), KX_OK);
    EXPECT_EQ(Platform::Position(file.Get()), end);
    EXPECT_EQ(Saved(loaded), Saved(image));
    EXPECT_EQ(loadedRegion.GetExtent(), region.GetExtent());

    loaded.Load(static_cast<std::FILE*>(nullptr));
    EXPECT_EQ(KxGetError(), KX_ERROR_SERIALIZER_NOT_OPEN);
}

// ---- Streams of other makers, and direct use ----

TEST_F(Archive, GoesThroughStreamsOfOtherMakers) {
    Image image(30, 40), loaded;
    FillBuffer(image);
    image.SetTitle("title");
    Region child(&image, 1, 1, 2, 2), grandchild(&child, 0, 0, 1, 1);
    CountingStream writer(true);
    image.Save(&writer);
    EXPECT_EQ(writer.bytes, Saved(image));
    EXPECT_EQ(std::ranges::count(writer.transfers, std::pair(image.GetGenericImagePtr(0, 0), 48u * 40)), 1)
        << "the pixels are moved once, from where they are";

    CountingStream reader(false, writer.bytes);
    KxOk();
    loaded.Load(&reader);
    EXPECT_EQ(KxGetError(), KX_OK);
    EXPECT_EQ(Saved(loaded), writer.bytes);
    EXPECT_TRUE(reader.saved.empty());
    EXPECT_EQ(std::ranges::count(reader.transfers, std::pair(loaded.GetGenericImagePtr(0, 0), 48u * 40)), 1);

    // How much such a stream holds is unknown: a forged length is believed as far as the stream delivers.
    const Bytes cases[] = {
        ArchiveBuilder().Header(34).Numbers({INT_MAX}).Raw(Bytes(1000)),
        ArchiveBuilder().Begin(34, 0).Place(0, 0, 9000, 9000).Pixels(8, 72000, Bytes(9)),
        Bytes(writer.bytes.begin(), writer.bytes.end() - 1),
    };
    for (const Bytes& bytes : cases) {
        CountingStream cut(false, bytes);
        KxOk();
        loaded.Load(&cut);
        EXPECT_EQ(KxGetError(), KX_ERROR_ARCHIVE_ACCESS);
        EXPECT_LE(cut.transfers.back().second, 9000u * 9000u) << "a text is read in pieces";
        EXPECT_EQ(loaded.GetWidth(), 0);
        EXPECT_EQ(loaded.GetFirstSubROI(), nullptr);
        EXPECT_EQ(cut.next, 0u);
        EXPECT_TRUE(cut.saved.empty());
    }
}

TEST_F(Archive, RecordCanBeExchangedWithoutItsHeader) {
    Image image(6, 6);
    FillBuffer(image);
    Region region(&image, 2, 2, 3, 3), child(&region, 1, 1, 1, 1), sibling(&image, 0, 0, 2, 2);
    const Bytes record = Written([&](KxSerializer& writer) { region.Serialize(&writer, 4); });
    const Bytes archive = Saved(region);
    EXPECT_EQ(record, Bytes(archive.begin() + 4, archive.end()));

    sibling.Serialize(ReaderOf(record).get(), 4);
    EXPECT_EQ(sibling.GetParent(), nullptr) << "a region that is read leaves its tree";
    EXPECT_EQ(region.GetNextSiblingROI(), nullptr);
    EXPECT_EQ(Saved(sibling), archive);
    KxGenericROI::CheckParentChildrenConsistency(&image);

    const Bytes cut(record.begin(), record.end() - 1);
    EXPECT_EQ(CodeThrownBy([&] { sibling.Serialize(ReaderOf(cut).get(), 4); }), KX_ERROR_FILE_READ);
    EXPECT_EQ(sibling.GetFirstSubROI(), nullptr);
    sibling.Attach(&image);
    EXPECT_EQ(sibling.GetExtent(), GenericRoiExtent(0, 0, 0, 0));
    KxGenericROI::CheckParentChildrenConsistency(&image);
}

// ---- Deep trees ----

// Runs an operation on a thread whose stack is no larger than small threads have.
void RunOnSmallStack(std::function<void()> operation) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, std::max<std::size_t>(PTHREAD_STACK_MIN, 64 * 1024));
    const auto run = [](void* argument) -> void* {
        (*static_cast<std::function<void()>*>(argument))();
        return nullptr;
    };
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &operation), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

TEST_F(Archive, NestsAThousandLevelsOnAnyThread) {
    RunOnSmallStack([] {
        for (const int levels : {1000, 1001}) {
            const KX_ERRORS saving = levels == 1000 ? KX_OK : KX_ERROR_FILE_WRITE;
            const KX_ERRORS loading = levels == 1000 ? KX_OK : KX_ERROR_BAD_FILE_FORMAT;
            auto image = std::make_unique<Image>(9, 9);
            Region* innermost = image.get();
            ArchiveBuilder archive;
            archive.Begin(34, 1);
            for (int level = 1; level <= levels; ++level) {
                auto* region = new Region(innermost, 0, 0, 9, 9);
                region->SetAllocated();
                innermost = region;
                archive.Begin(47, level < levels);
            }
            for (int level = 0; level <= levels; ++level) archive.Place(0, 0, 9, 9);
            archive.Pixels(8, 72, Bytes(81)).PixelSizes();

            KxMemSerializer writer;
            writer.OpenWriter();
            KxOk();
            image->Save(&writer);
            EXPECT_EQ(KxGetError(), saving);
            image.reset();

            Image loaded(3, 3);
            const Stream reader = ReaderOf(archive);
            KxOk();
            loaded.Load(reader.get());
            EXPECT_EQ(KxGetError(), loading);
            EXPECT_EQ(BytesLeft(*reader), loading ? Bytes(archive).size() : 0);
            int depth = 0;
            for (KxGenericROI* node = loaded.GetFirstSubROI(); node; node = node->GetFirstSubROI()) ++depth;
            EXPECT_EQ(depth, loading ? 0 : 1000);
            KxGenericROI::CheckParentChildrenConsistency(&loaded);
            LoadFrom(Saved(Image()), loaded);
        }
    });
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
