// Records without header: size and rows of images, placements of regions.

#include "tests/support/test.h"

#include "kalvo/base/file.h"
#include "tests/support/archive_builder.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Image = KxImage<KxBW8>;
using Region = KxROI<KxBW8>;

class PartialRecord : public testing::Test {
protected:
    TraceRecorder traces;
};

TEST_F(PartialRecord, OfAnImageHoldsSizePitchAndRows) {
    Bytes pixels(48 * 2, 0xEE), gap(45, 0xEE);
    Image wide, narrow;
    wide.SetImagePtr(3, 2, pixels.data(), 48 * 8);
    SetPixelBytes(wide, {1, 2, 3, 4, 5, 6});
    const Bytes record = Written([&](KxSerializer& writer) { wide.PartialSerialize(&writer); });
    EXPECT_EQ(record, Join({Numbers({3, 2, 48}), {1, 2, 3}, gap, {4, 5, 6}, gap}));

    const Bytes dense = Join({Numbers({3, 2, 3}), {1, 2, 3, 4, 5, 6}});
    for (const Bytes& bytes : {record, dense}) {
        for (Image* image : {&narrow, &wide}) {  // of 24 and 48 bytes a row
            SetPixelBytes(*image, Bytes(6));
            const Stream reader = ReaderOf(bytes);
            image->PartialSerialize(reader.get());
            EXPECT_EQ(reader->IsEOS(), 1);
            EXPECT_EQ(PixelBytes(*image), (Bytes{1, 2, 3, 4, 5, 6}));
        }
        CountingStream counted(false, bytes);
        wide.PartialSerialize(&counted);
        EXPECT_EQ(counted.transfers.size(), 3u + 2) << "one transfer a row";
    }
    EXPECT_EQ(narrow.GetRowPitch(), 24);
    EXPECT_EQ(wide.GetRowPitch(), 48) << "an image that has the size keeps its buffer";
}

TEST_F(PartialRecord, OfNoVersionPadsItsRowsAsAsked) {
    Bytes buffer(16, 0xEE);
    Image gray;
    gray.SetImagePtr(5, 2, buffer.data());
    KxImage<KxBW1> bits(11, 1);
    SetPixelBytes(gray, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    SetPixelBytes(bits, {0xA5, 0xC0});
    const struct {
        KxGenericROI& image;
        unsigned align;
        Bytes expected;
    } cases[] = {
        {gray, 4, Join({Numbers({5, 2}), buffer})},
        {gray, 1, Join({Numbers({5, 2}), {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}})},
        {gray, 32, Join({Numbers({5, 2}), {1, 2, 3, 4, 5}, Bytes(27), {6, 7, 8, 9, 10}, Bytes(27)})},
        {bits, 1, Join({Numbers({11, 1}), {0xA5, 0xC0}})},
        {bits, 5000, Join({Numbers({11, 1}), {0xA5, 0xC0}, Bytes(4998)})},
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
        Bytes sizeAndPitch;
        KX_ERRORS code, versionLessCode;
    } cases[] = {
        {Numbers({-1, 2, 24}), KX_ERROR_BAD_FILE_FORMAT, KX_ERROR_BAD_FILE_FORMAT},
        {Numbers({3, -1, 24}), KX_ERROR_BAD_FILE_FORMAT, KX_ERROR_BAD_FILE_FORMAT},
        {Numbers({3, 2, -24}), KX_ERROR_BAD_FILE_FORMAT, KX_ERROR_FILE_READ},
        {Numbers({3, 2, 2}), KX_ERROR_BAD_FILE_FORMAT, KX_ERROR_FILE_READ},
        {Numbers({INT_MAX / 8, 1, INT_MAX}), KX_ERROR_BAD_FILE_FORMAT, KX_ERROR_BAD_FILE_FORMAT},
        {Numbers({65536, 65536, 65536}), KX_ERROR_BAD_FILE_FORMAT, KX_ERROR_BAD_FILE_FORMAT},
        {Numbers({65535, 65535, 65536}), KX_ERROR_FILE_READ, KX_ERROR_FILE_READ},
        {Numbers({0, INT_MAX, 1}), KX_ERROR_FILE_READ, KX_OK},
        {Numbers({0, INT_MAX, 0}), KX_OK, KX_OK},
    };
    for (const auto& [record, code, versionLessCode] : cases) {
        for (const bool versionLess : {false, true}) {
            Image image(1, 1);
            const Stream reader = ReaderOf(record);
            const KX_ERRORS expected = versionLess ? versionLessCode : code;
            EXPECT_EQ(CodeThrownBy([&] {
                          versionLess ? image.VersionLessPartialSerialize(reader.get(), 1)
                                      : image.PartialSerialize(reader.get());
                      }),
                      expected)
                << testing::PrintToString(record);
            EXPECT_EQ(image.GetWidth(), expected ? 1 : 0);
        }
    }
}

TEST_F(PartialRecord, NeedsPixels) {
    std::uint8_t pixels[16] = {};
    Image image;
    for (const bool missing : {true, false}) {
        image.SetImagePtr(5, 3, missing ? nullptr : pixels, missing ? 40 : 32);  // or one row over the next
        KxMemSerializer writer;
        writer.OpenWriter();
        const Stream reader = ReaderOf(Join({Numbers({5, 3, 5}), Bytes(15)}));
        for (KxSerializer* stream : {reader.get(), static_cast<KxSerializer*>(&writer)})
            EXPECT_EQ(CodeThrownBy([&] { image.PartialSerialize(stream); }), KX_ERROR_IMAGE_MEMORY_ACCESS);
        EXPECT_EQ(CodeThrownBy([&] { image.VersionLessPartialSerialize(&writer, 1); }),
                  KX_ERROR_IMAGE_MEMORY_ACCESS);
        EXPECT_TRUE(writer.GetBuffer().empty());
    }
}

TEST_F(PartialRecord, OfARegionIsItsPlacement) {
    Image image(20, 20);
    Region region(&image, 1, 2, 3, 4), target(&image, 0, 0, 1, 1);
    const Bytes record = Written([&](KxSerializer& writer) { region.PartialSerialize(&writer); });
    EXPECT_EQ(record, Numbers({1, 2, 3, 4}));
    EXPECT_EQ(Written([&](KxSerializer& writer) { region.VersionLessPartialSerialize(&writer, 8); }), record);
    const struct {
        Bytes record;
        GenericRoiExtent expected;
        KX_ERRORS code;
    } cases[] = {
        {record, {1, 2, 3, 4}, KX_OK},
        {Numbers({-2, 15, 10, 10}), {0, 15, 8, 5}, KX_OK},
        {Numbers({21, 0, 1, 1}), {0, 0, 20, 20}, KX_ERROR_ROI_OUT_OF_PARENT},
        {Numbers({0, 0, INT_MIN, 4}), {0, 0, 20, 4}, KX_ERROR_PARAMETER_1_OUT_OF_RANGE},
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
    Image image(5, 2), imageBack;
    FillPattern(image, 1);
    Region region(&image, 1, 1, 2, 1), regionBack;
    for (const bool versionLess : {true, false}) {  // the shorter record first
        const auto exchange = [&](KxGenericROI& object, int writing) {
            KxOk();
            versionLess ? object.VersionLessPartialSerialize(file.Get(), writing, 4)
                        : object.PartialSerialize(file.Get(), writing);
            return KxGetError();
        };
        std::rewind(file.Get());
        EXPECT_TRUE(exchange(image, 1) == KX_OK && exchange(region, 1) == KX_OK);
        std::rewind(file.Get());
        EXPECT_TRUE(exchange(imageBack, 0) == KX_OK && exchange(regionBack, 0) == KX_OK);
        EXPECT_EQ(regionBack.GetExtent(), region.GetExtent());
        for (KxGenericROI* object : {static_cast<Region*>(&imageBack), &regionBack})
            EXPECT_EQ(exchange(*object, 0), KX_ERROR_FILE_READ);
        EXPECT_TRUE(SamePixels(imageBack, image));
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
