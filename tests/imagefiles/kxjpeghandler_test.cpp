// The JPEG field handler: interlaced decoding, field files, archives, and what must be refused.

#include "tests/support/test.h"

#include "kalvo/imagefiles/jpeghandler_impl.h"
#include "tests/support/jpeg_builder.h"

namespace Zelkor::Kalvo {
namespace {

using namespace Testing;

Bytes FieldOf(unsigned width, unsigned height) {
    return MakeJpeg(3, [=](j_compress_ptr info) { info->image_width = width, info->image_height = height; });
}

KX_ERRORS Decode(Bytes up, Bytes down, KxImage<KxC24>& image, int mode = KxJpegHandler::FullSize) {
    KxJpegHandler handler;
    const auto addressOf = [](Bytes& field) { return field.empty() ? nullptr : field.data(); };
    handler.SetBuffers(addressOf(up), static_cast<unsigned>(up.size()), addressOf(down),
                       static_cast<unsigned>(down.size()));
    const auto scaling = static_cast<KxJpegHandler::ScalingMode>(mode);
    return CodeThrownBy([&] { handler.DecompressToImage(image, scaling); });
}

// What a handler archives.
Bytes Archived(const KxJpegHandler& handler) {
    return Written([&](KxSerializer& stream) { handler.Save(&stream); });
}

Bytes Record(const Bytes& up, const Bytes& down) {
    Bytes bytes{0x4B, 59, 1, 0x4B ^ 59 ^ 1};
    for (const Bytes& field : {up, down}) {
        for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<std::uint8_t>(field.size() >> 8 * i));
        bytes.insert(bytes.end(), field.begin(), field.end());
    }
    return bytes;
}

class JpegHandler : public testing::Test {
protected:
    KxJpegHandler handler;
    TemporaryFolder folder;
    TraceRecorder traces;
};

TEST_F(JpegHandler, InterlacesTwoFieldsInEverySize) {
    const Bytes up = FieldOf(641, 481), down = MakeJpeg(3, [](j_compress_ptr info) {
                                            info->image_width = 641, info->image_height = 481;
                                            jpeg_set_quality(info, 5, TRUE);
                                            jpeg_simple_progression(info);
                                        });
    constexpr int kSizes[][2] = {{641, 481}, {321, 241}, {161, 121}, {81, 61}};
    for (int mode = 0; mode < 4; ++mode) {
        const auto [width, height] = kSizes[mode];
        // The image wraps a buffer with gaps between its rows.
        const int pitch = 3 * width + 7;
        Bytes buffer(pitch * 2 * height, 0xA5);
        KxImage<KxC24> whole, upper, lower;
        whole.SetImagePtr(width, 2 * height, buffer.data(), 8 * pitch);
        ASSERT_EQ(Decode(up, down, whole, mode), KX_OK);
        ASSERT_EQ(Decode(up, {}, upper, mode), KX_OK);
        ASSERT_EQ(Decode(down, {}, lower, mode), KX_OK);
        ASSERT_EQ(upper.GetExtent(), GenericRoiExtent(0, 0, width, height));
        EXPECT_FALSE(SamePixels(upper, lower));
        for (int y = 0; y < height; ++y) {
            KxROI<KxC24> even(&whole, 0, 2 * y, width, 1), odd(&whole, 0, 2 * y + 1, width, 1);
            ASSERT_TRUE(SamePixels(even, KxROI<KxC24>(&upper, 0, y, width, 1))) << y;
            ASSERT_TRUE(SamePixels(odd, KxROI<KxC24>(&lower, 0, y, width, 1))) << y;
        }
        for (std::size_t i = 0; i < buffer.size(); ++i)
            ASSERT_TRUE(i % pitch < 3u * width || buffer[i] == 0xA5) << i;
    }
}

TEST_F(JpegHandler, DecodesGrayFieldsIntoBlueGreenAndRed) {
    KxImage<KxC24> image;
    ASSERT_EQ(Decode(MakeJpeg(1), {}, image), KX_OK);
    const auto gray = image.GetPixel(30, 3).m_un8C0;
    EXPECT_NEAR(gray, 90, 3);
    EXPECT_EQ(image.GetPixel(30, 3), KxC24(gray, gray, gray));
}

TEST_F(JpegHandler, RefusesFieldsAndKeepsTheImageUsable) {
    const Bytes good = MakeJpeg(3), small = FieldOf(39, 24), tall = FieldOf(40, 26);
    const auto endingWith = [&](std::uint8_t last) { return Changed(good, good.size() - 1, {last}); };
    Bytes cut(good.begin(), good.end() - 60);
    cut.insert(cut.end(), {0xFF, 0xD9});
    const std::tuple<int, Bytes, Bytes, int, const char*> kRefused[] = {
        {15104, {}, good, 0, "no first field"},
        {15103, {0xFF, 0xD8, 0, 0, 0, 0xFF, 0xD9}, {}, 0, "7 bytes"},
        {15103, good, {0xFF, 0xD8, 0, 0, 0, 0xFF, 0xD9}, 0, "7 bytes in the second field"},
        {15102, Changed(good, 1, {0xD9}), {}, 0, "bad start"},
        {15102, endingWith(0xD8), {}, 0, "bad end"},
        {15101, good, Changed(good, 1, {0xD9}), 0, "bad start of the second field"},
        {15102, good, endingWith(0xD8), 0, "bad end of the second field"},
        {15000 - 5, {0xFF, 0xD8, 0xFF, 0xD8, 0, 0, 0xFF, 0xD9}, {}, 0, "nothing inside"},
        {15000 - 6, cut, {}, 0, "cut"},
        {15000 - 8, MakeJpeg(4), {}, 0, "four channels"},
        {15000 - 8, good, MakeJpeg(1), 0, "gray after colour"},
        {15000 - 9, good, small, 1, "second field narrower, of different size when halved only"},
        {15000 - 9, good, tall, 0, "second field taller"},
        {KX_ERROR_PARAMETER_2_OUT_OF_RANGE, good, {}, 4, "mode 4"},
        {KX_ERROR_PARAMETER_2_OUT_OF_RANGE, good, {}, -1, "mode -1"},
    };
    KxImage<KxC24> image;
    for (const auto& [code, up, down, mode, name] : kRefused) {
        EXPECT_EQ(Decode(up, down, image, mode), code) << name;
        EXPECT_EQ(Decode(good, good, image), KX_OK) << name;
    }
    KxImage<KxC24> hollow;
    hollow.SetImagePtr(40, 24, nullptr);
    EXPECT_EQ(Decode(good, {}, hollow), KX_ERROR_IMAGE_MEMORY_ACCESS);
    Bytes pixels(40 * 24 * 3);
    hollow.SetImagePtr(40, 24, pixels.data(), 8 * 119);
    EXPECT_EQ(Decode(good, {}, hollow), KX_ERROR_IMAGE_MEMORY_ACCESS) << "rows overlap";
}

TEST_F(JpegHandler, RefusesToDecodeOverItsOwnFields) {
    Bytes memory(6000);
    const Bytes field = MakeJpeg(3);
    for (const std::size_t offset : {std::size_t{0}, 5760 - field.size()}) {
        std::copy(field.begin(), field.end(), memory.begin() + offset);
        KxImage<KxC24> image;
        image.SetImagePtr(80, 24, memory.data(), 8 * 240);
        handler.SetBuffers(memory.data() + offset, static_cast<unsigned>(field.size()), nullptr, 0);
        const auto decode = [&] { handler.DecompressToImage(image, KxJpegHandler::FullSize); };
        EXPECT_EQ(CodeThrownBy(decode), KX_ERROR_IMAGES_OVERLAP);
        image.SetImagePtr(80, 24, memory.data() + 23 * 240, 8 * -240);
        EXPECT_EQ(CodeThrownBy(decode), KX_ERROR_IMAGES_OVERLAP) << "rows run upwards";
    }
}

TEST_F(JpegHandler, MovesFieldsToAndFromFilesAndOwnsOnlyWhatItLoaded) {
    Bytes lentUp = FieldOf(16, 16), lentDown = FieldOf(24, 16);
    const Bytes loaded = MakeJpeg(3);
    const std::string path = folder.Write("field.jpg", loaded), copy = folder.File("copy.jpg");
    EXPECT_EQ(CodeThrownBy([&] { handler.SaveFJfif(copy); }), 15104);
    handler.SetBuffers(lentUp.data(), 400, lentDown.data(), static_cast<unsigned>(lentDown.size()));
    handler.UpdateSizeAndTimestamp(static_cast<unsigned>(lentUp.size()),
                                   static_cast<unsigned>(lentDown.size()), 1, 2);
    handler.LoadSJfif(path);
    handler.SaveFJfif(copy);
    EXPECT_EQ(folder.Read("copy.jpg"), lentUp);
    handler.SaveSJfif(copy.c_str());
    EXPECT_EQ(folder.Read("copy.jpg"), loaded);

    const auto size = static_cast<unsigned>(loaded.size());
    EXPECT_EQ(CodeThrownBy([&] { handler.UpdateSizeAndTimestamp(0, size + 1, 0, 0); }),
              KX_ERROR_INVALID_DATA_SIZE);
    folder.Write("empty.jpg", {});
    for (const std::string& bad : {folder.File("empty.jpg"), folder.File("missing.jpg"), folder.File("")})
        EXPECT_EQ(CodeThrownBy([&] { handler.LoadFJfif(bad); }), KX_ERROR_FILE_OPEN);
    EXPECT_EQ(CodeThrownBy([&] { handler.LoadFJfif(nullptr); }), KX_ERROR_FILE_OPEN);
    EXPECT_EQ(Archived(handler), Record(lentUp, loaded)) << "failures change nothing";
    handler.LoadFJfif(path.c_str());
    handler.SetBuffers(nullptr, 7, lentDown.data(), 4);
    EXPECT_EQ(Archived(handler), Record({}, Bytes(lentDown.begin(), lentDown.begin() + 4)));
}

TEST_F(JpegHandler, IsArchivedByteForByteThroughEveryFormOfFileAndStream) {
    Bytes up = MakeJpeg(3), down(3 << 20, 0x5A);  // longer than what is read at a time
    handler.SetBuffers(up.data(), static_cast<unsigned>(up.size()), down.data(),
                       static_cast<unsigned>(down.size()));
    const Bytes expected = Record(up, down);
    ASSERT_EQ(Archived(handler), expected);
    const auto check = [&](const auto& name) {
        KxOk();
        KxJpegHandler loaded;
        handler.Save(name);
        loaded.Load(name);
        EXPECT_EQ(KxGetError(), KX_OK);
        EXPECT_TRUE(Archived(loaded) == expected);
    };
    const std::string path = folder.File("fields.kxa");
    check(path.c_str());
    check(path);
    check(Wide(path).c_str());
    check(Wide(path));
    EXPECT_TRUE(folder.Read("fields.kxa") == expected);
    std::FILE* file = std::tmpfile();
    handler.Save(file);
    std::rewind(file);
    handler.Load(file);
    EXPECT_EQ(std::ftell(file), std::ssize(expected));
    std::fclose(file);
    EXPECT_TRUE(Archived(handler) == expected);

    KxJpegHandler_Impl held{.upField = {}, .downField = {}, .timestamp = {1, 2}};
    held.Serialize(ReaderOf(Bytes(8)).get(), 1);
    EXPECT_EQ(held.timestamp, (std::array<std::uint32_t, 2>{}));
}

TEST_F(JpegHandler, RefusesBadArchivesAndTakesTheStreamBack) {
    const Bytes whole = Record({1, 2, 3}, {4, 5});
    const Bytes forged = Changed(whole, 11, {0xFF, 0xFF, 0xFF, 0xFF});
    // Code, archive, and whether the handler is emptied.
    const std::tuple<KX_ERRORS, Bytes, bool> kBad[] = {
        {KX_ERROR_FILE_READ, {}, false},
        {KX_ERROR_BAD_FILE_FORMAT, Changed(whole, 3, {0}), false},
        {KX_ERROR_WRONG_OBJECT_TYPE, Changed(whole, 1, {39}), false},
        {KX_ERROR_UNSUPPORTED_FILE_VERSION, Changed(whole, 2, {2}), false},
        {KX_ERROR_FILE_READ, Bytes(whole.begin(), whole.end() - 1), true},
        {KX_ERROR_FILE_READ, forged, true},
    };
    for (const auto& [code, archive, isEmptied] : kBad) {
        handler.Load(ReaderOf(whole).get());
        const Stream stream = ReaderOf(archive);
        handler.Load(stream.get());
        EXPECT_EQ(KxGetError(), code);
        EXPECT_EQ(Archived(handler), isEmptied ? Record({}, {}) : whole);
        EXPECT_EQ(stream->IsEOS(), archive.empty());
    }
    EXPECT_EQ(traces.Functions(), Names(std::size(kBad), "KxJpegHandler::Load"));
    handler.Save(ReaderOf(whole).get());
    EXPECT_EQ(std::pair(KxGetError(), traces.Functions().back()),
              std::pair(KX_ERROR_NOT_OPEN_FOR_WRITE, std::string("KxJpegHandler::Save")));
    handler.Save(static_cast<KxSerializer*>(nullptr));
    EXPECT_EQ(KxGetError(), KX_ERROR_SERIALIZER_NOT_OPEN);
    // A stream that cannot tell its length is asked for a little at a time.
    CountingStream unknown(false, forged);
    handler.Load(&unknown);
    EXPECT_EQ(KxGetError(), KX_ERROR_ARCHIVE_ACCESS);
    EXPECT_LE(unknown.transfers.back().second, 1u << 20);
}

TEST_F(JpegHandler, EncodesRgbRowsAndRefusesHostileSizes) {
    constexpr unsigned kWidth = 33, kHeight = 9, kPitch = 3 * kWidth + 5;
    Bytes pixels(kPitch * kHeight, 250);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        if (i % kPitch < 3 * kWidth) pixels[i] = static_cast<std::uint8_t>(i % kPitch % 3 * 60 + 20);
    unsigned char* jpeg = nullptr;
    unsigned size = 0;
    KxJpegHandler::CreateJpegFromRGB24(jpeg, size, pixels.data(), kPitch, kWidth, kHeight, 0);
    KxImage<KxC24> image;
    EXPECT_EQ(Decode(Bytes(jpeg, jpeg + size), {}, image), KX_OK);
    std::free(jpeg);
    ASSERT_EQ(image.GetExtent(), GenericRoiExtent(0, 0, kWidth, kHeight));
    const KxC24 last = image.GetPixel(kWidth - 1, kHeight - 1);
    EXPECT_NEAR(last.m_un8C0, 20, 4);
    EXPECT_NEAR(last.m_un8C1, 80, 4);
    EXPECT_NEAR(last.m_un8C2, 140, 4);

    const std::tuple<int, const std::uint8_t*, unsigned, unsigned, unsigned> kHostile[] = {
        {KX_ERROR_INVALID_DATA_SIZE, pixels.data(), kPitch, kWidth, 0},
        {KX_ERROR_INVALID_DATA_SIZE, pixels.data(), 2, 1, 1},
        {KX_ERROR_INVALID_DATA_SIZE, pixels.data(), UINT_MAX, UINT_MAX, UINT_MAX},
        {15000 - 1, nullptr, kPitch, kWidth, kHeight},
        {15000 - 9, pixels.data(), kPitch, 0, kHeight},
        {15000 - 9, pixels.data(), kPitch, kWidth, 65501},
        {15000 - 9, pixels.data(), kPitch, UINT_MAX, 1},
        {15000 - 10, pixels.data(), 3 * kWidth - 1, kWidth, kHeight},
    };
    for (const auto& [code, first, pitch, width, height] : kHostile) {
        jpeg = pixels.data();
        const auto encode = [&, p = first, pitchBytes = pitch, w = width, h = height] {
            KxJpegHandler::CreateJpegFromRGB24(jpeg, size, p, pitchBytes, w, h, 0);
        };
        EXPECT_EQ(CodeThrownBy(encode), code) << width << " x " << height;
        EXPECT_TRUE(!jpeg && size == 0);
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo
