// Records without header: size and rows of images, placements of regions.

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "kalvo/image/kximage.h"
#include "kalvo/persistence/streambytes.h"
#include "kalvo/platform/file.h"
#include "tests/support/archive_builder.h"
#include "tests/support/pixel_bytes.h"
#include "tests/support/streams.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Image = KxImage<KxBW8>;
using Region = KxROI<KxBW8>;

class PartialRecord : public testing::Test {
protected:
    TraceRecorder traces;
};

TEST_F(PartialRecord, OfAnImageHoldsSizePitchAndRows) {
    Bytes pixels(48 * 2, 0xEE);
    for (const std::size_t i : {0, 1, 2, 48, 49, 50}) pixels[i] = static_cast<std::uint8_t>(i);
    Image wide, narrow, single;
    wide.SetImagePtr(3, 2, pixels.data(), 48 * 8);
    const Bytes record = Written([&](KxSerializer& writer) { wide.PartialSerialize(&writer); });
    Bytes row0{0, 1, 2}, row1{48, 49, 50};
    row0.resize(48);
    row1.resize(48);
    EXPECT_EQ(record, Bytes(ArchiveBuilder().Numbers({3, 2, 48}).Raw(row0).Raw(row1)));

    for (Image* image : {&narrow, &wide}) {  // a pitch of 24 bytes, and the same
        std::ranges::fill(pixels, std::uint8_t{0});
        const Stream reader = ReaderOf(record);
        image->PartialSerialize(reader.get());
        EXPECT_EQ(reader->IsEOS(), 1);
        EXPECT_EQ(PixelBytes(*image), (Bytes{0, 1, 2, 48, 49, 50}));
    }
    EXPECT_EQ(narrow.GetRowPitch(), 24);

    const Stream shorter = ReaderOf(ArchiveBuilder().Numbers({3, 2, 3}).Raw({1, 2, 3, 4, 5, 6}));
    single.PartialSerialize(shorter.get());
    EXPECT_EQ(PixelBytes(single), (Bytes{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(shorter->IsEOS(), 1);
}

TEST_F(PartialRecord, OfNoVersionPadsItsRowsAsAsked) {
    Image gray(5, 2);
    KxImage<KxBW1> bits(11, 1);
    SetPixelBytes(gray, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    SetPixelBytes(bits, {0xA5, 0xC0});
    const struct {
        KxGenericROI& image;
        unsigned align;
        Bytes expected;
    } cases[] = {
        {gray, 1, ArchiveBuilder().Numbers({5, 2}).Raw({1, 2, 3, 4, 5, 6, 7, 8, 9, 10})},
        {gray, 4, ArchiveBuilder().Numbers({5, 2}).Raw({1, 2, 3, 4, 5, 0, 0, 0, 6, 7, 8, 9, 10, 0, 0, 0})},
        {bits, 1, ArchiveBuilder().Numbers({11, 1}).Raw({0xA5, 0xC0})},
        {bits, 5000, ArchiveBuilder().Numbers({11, 1}).Raw({0xA5, 0xC0}).Raw(Bytes(4998))},
    };
    for (const auto& [image, align, expected] : cases) {
        const Bytes pixels = PixelBytes(image);
        Bytes record =
            Written([&](KxSerializer& writer) { image.VersionLessPartialSerialize(&writer, align); });
        if (&image == &bits) record[9] &= 0xE0;  // what fills up the last byte means nothing
        EXPECT_EQ(record, expected);
        image.SetSize(1, 1);
        const Stream reader = ReaderOf(record);
        image.VersionLessPartialSerialize(reader.get(), align);
        EXPECT_EQ(reader->IsEOS(), 1);
        EXPECT_EQ(PixelBytes(image), pixels);
        EXPECT_EQ(CodeThrownBy([&] { image.VersionLessPartialSerialize(reader.get(), 0); }),
                  KX_ERROR_PARAMETER_2_OUT_OF_RANGE);
    }
}

TEST_F(PartialRecord, WithASizeThatCannotBeLeavesTheImage) {
    const struct {
        std::initializer_list<std::int64_t> sizeAndPitch;
        KX_ERRORS code, versionLessCode;
    } cases[] = {
        {{-1, 2, 24}, KX_ERROR_BAD_FILE_FORMAT, KX_ERROR_BAD_FILE_FORMAT},
        {{3, -1, 24}, KX_ERROR_BAD_FILE_FORMAT, KX_ERROR_BAD_FILE_FORMAT},
        {{3, 2, -24}, KX_ERROR_BAD_FILE_FORMAT, KX_ERROR_FILE_READ},
        {{3, 2, 2}, KX_ERROR_BAD_FILE_FORMAT, KX_ERROR_FILE_READ},
        {{INT_MAX / 8, 1, INT_MAX}, KX_ERROR_BAD_FILE_FORMAT, KX_ERROR_BAD_FILE_FORMAT},
        {{65536, 65536, 65536}, KX_ERROR_BAD_FILE_FORMAT, KX_ERROR_BAD_FILE_FORMAT},
        {{65535, 65535, 65536}, KX_ERROR_FILE_READ, KX_ERROR_FILE_READ},
        {{0, INT_MAX, 1}, KX_ERROR_FILE_READ, KX_OK},
        {{0, INT_MAX, 0}, KX_OK, KX_OK},
    };
    for (const auto& [numbers, code, versionLessCode] : cases) {
        const ArchiveBuilder record = ArchiveBuilder().Numbers(numbers);
        for (const bool versionLess : {false, true}) {
            Image image(1, 1);
            const auto read = [&] {
                const Stream reader = ReaderOf(record);
                versionLess ? image.VersionLessPartialSerialize(reader.get(), 1)
                            : image.PartialSerialize(reader.get());
            };
            const KX_ERRORS expected = versionLess ? versionLessCode : code;
            EXPECT_EQ(CodeThrownBy(read), expected) << testing::PrintToString(Bytes(record));
            EXPECT_EQ(image.GetWidth(), expected ? 1 : 0);
        }
    }
}

TEST_F(PartialRecord, NeedsPixels) {
    std::uint8_t pixels[16] = {};
    const Bytes record = ArchiveBuilder().Numbers({5, 3, 5}).Raw(Bytes(15));
    Image image;
    for (const bool missing : {true, false}) {
        image.SetImagePtr(5, 3, missing ? nullptr : pixels, missing ? 40 : 32);  // or one row over the next
        const Stream reader = ReaderOf(record);
        const Bytes written = Written([&](KxSerializer& writer) {
            EXPECT_EQ(CodeThrownBy([&] { image.PartialSerialize(&writer); }), KX_ERROR_IMAGE_MEMORY_ACCESS);
            EXPECT_EQ(CodeThrownBy([&] { image.VersionLessPartialSerialize(&writer, 1); }),
                      KX_ERROR_IMAGE_MEMORY_ACCESS);
        });
        EXPECT_EQ(CodeThrownBy([&] { image.PartialSerialize(reader.get()); }), KX_ERROR_IMAGE_MEMORY_ACCESS);
        EXPECT_TRUE(written.empty());
    }
}

TEST_F(PartialRecord, OfARegionIsItsPlacement) {
    Image image(20, 20);
    Region region(&image, 1, 2, 3, 4), target(&image, 0, 0, 1, 1);
    const Bytes record = Written([&](KxSerializer& writer) { region.PartialSerialize(&writer); });
    EXPECT_EQ(record, Bytes(ArchiveBuilder().Numbers({1, 2, 3, 4})));
    EXPECT_EQ(Written([&](KxSerializer& writer) { region.VersionLessPartialSerialize(&writer, 8); }), record);
    const struct {
        Bytes record;
        GenericRoiExtent expected;
        KX_ERRORS code;
    } cases[] = {
        {record, {1, 2, 3, 4}, KX_OK},
        {ArchiveBuilder().Numbers({-2, 15, 10, 10}), {0, 15, 8, 5}, KX_OK},
        {ArchiveBuilder().Numbers({21, 0, 1, 1}), {0, 0, 20, 20}, KX_ERROR_ROI_OUT_OF_PARENT},
        {ArchiveBuilder().Numbers({0, 0, INT_MIN, 4}), {0, 0, 20, 4}, KX_ERROR_PARAMETER_1_OUT_OF_RANGE},
    };
    for (const auto& [bytes, expected, code] : cases) {
        KxSetError(KX_ERROR_SIZE_MISMATCH);
        target.PartialSerialize(ReaderOf(bytes).get());
        EXPECT_EQ(KxGetError(), code);
        EXPECT_EQ(target.GetExtent(), expected);
    }
    EXPECT_EQ(target.GetParent(), &image);
}

TEST_F(PartialRecord, InAnOpenFileFailsIntoTheErrorSlot) {
    const TemporaryFolder folder;
    const Platform::File file(folder.File("records").c_str(), "w+b");
    Image image(5, 2), loaded, second(1, 1);
    SetPixelBytes(image, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    Region region(&image, 1, 1, 2, 1), target;
    KxOk();
    image.PartialSerialize(file.Get(), 1);
    image.VersionLessPartialSerialize(file.Get(), 1, 4);
    region.PartialSerialize(file.Get(), 1);
    region.VersionLessPartialSerialize(file.Get(), 1, 4);
    std::rewind(file.Get());
    loaded.PartialSerialize(file.Get(), 0);
    second.VersionLessPartialSerialize(file.Get(), 0, 4);
    target.PartialSerialize(file.Get(), 0);
    target.VersionLessPartialSerialize(file.Get(), 0, 4);
    EXPECT_EQ(KxGetError(), KX_OK);
    EXPECT_EQ(PixelBytes(loaded), PixelBytes(image));
    EXPECT_EQ(PixelBytes(second), PixelBytes(image));
    EXPECT_EQ(target.GetExtent(), region.GetExtent());
    for (KxGenericROI* object : {static_cast<KxGenericROI*>(&loaded), static_cast<KxGenericROI*>(&target)}) {
        KxOk();
        object->PartialSerialize(file.Get(), 0);
        EXPECT_EQ(KxGetError(), KX_ERROR_FILE_READ);
        KxOk();
        object->VersionLessPartialSerialize(file.Get(), 0, 1);
        EXPECT_EQ(KxGetError(), KX_ERROR_FILE_READ);
    }
    EXPECT_EQ(loaded.GetWidth(), 5);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
