// The JPEG codec: what it answers, and that it touches only the pixels and bytes it was given.

#include "tests/support/test.h"

#include "kalvo/imagefiles/jpegcodec.h"
#include "tests/support/jpeg_builder.h"

namespace Zelkor::Platform {
namespace {

using namespace Kalvo::Testing;
using Kalvo::Testing::Bytes;

constexpr int kWidth = 40, kHeight = 24, kGap = 5, kPitch = 3 * kWidth + kGap;
constexpr std::uint8_t kGuard = 0xA5;

// A record that reads a stream into rows with gaps between them, as `change` may alter it.
struct Reading {
    explicit Reading(const Bytes& jpeg, void (*change)(JPEG_CORE_PROPERTIES&) = nullptr) : stream(jpeg) {
        ijlInit(&properties);
        properties.JPGBytes = stream.data();
        properties.JPGSizeBytes = static_cast<std::uint32_t>(stream.size());
        properties.JPGWidth = properties.DIBWidth = kWidth;
        properties.JPGHeight = properties.DIBHeight = kHeight;
        properties.JPGColor = IJL_YCBCR;
        properties.DIBBytes = pixels.data();
        properties.DIBPadBytes = kGap;
        properties.DIBChannels = 3;
        properties.DIBColor = IJL_BGR;
        if (change) change(properties);
    }
    int Run(IJLIOTYPE mode = IJL_JBUFF_READWHOLEIMAGE) { return ijlRead(&properties, mode); }

    Bytes stream;
    Bytes pixels = Bytes(kPitch * kHeight, kGuard);
    JPEG_CORE_PROPERTIES properties{};
};

TEST(JpegCodec, AnswersWhyAStreamCannotBeDecodedAndLeavesThePixelsAlone) {
    const Bytes color = MakeJpeg(3), gray = MakeJpeg(1);
    const std::size_t frame = FindSegment(color, 0xC0);
    using Record = JPEG_CORE_PROPERTIES;
    // Status, stream, what is wrong in the record, name.
    const std::tuple<int, Bytes, void (*)(Record&), const char*> kFaults[] = {
        {IJL_NULL_ARGUMENT, color, [](Record& record) { record.JPGBytes = nullptr; }, "no stream"},
        {IJL_NULL_ARGUMENT, color, [](Record& record) { record.DIBBytes = nullptr; }, "no pixels"},
        {IJL_NOT_INITIALIZED, color, [](Record& record) { record.isInitialized = false; }, "freed"},
        {IJL_NOT_A_JPEG, Changed(color, 1, {0xD9}), nullptr, "no start of image"},
        {IJL_NOT_A_JPEG, {0xFF}, nullptr, "one byte"},
        {IJL_DAMAGED_DATA, Changed(color, frame + 5, {0, 0}), nullptr, "no height"},
        {IJL_CUT_DATA, Changed(color, frame + 5, {0xFF, 0xDC, 0xFF, 0xDC}), nullptr, "65500 x 65500"},
        {IJL_CUT_DATA, Bytes(color.begin(), color.begin() + 200), nullptr, "cut in the header"},
        {IJL_UNSUPPORTED_JPEG, Changed(color, frame + 4, {12}), nullptr, "12 bits"},
        {IJL_UNSUPPORTED_JPEG, Changed(color, frame + 1, {0xC9}), nullptr, "arithmetic coding"},
        {IJL_UNSUPPORTED_COLORS, gray, nullptr, "gray as colour"},
        {IJL_UNSUPPORTED_COLORS, color, [](Record& record) { record.JPGColor = IJL_G; }, "colour as gray"},
        {IJL_UNSUPPORTED_COLORS, MakeJpeg(4), [](Record& record) { record.JPGColor = IJL_OTHER; }, "four"},
        {IJL_UNSUPPORTED_COLORS, color, [](Record& record) { record.DIBChannels = 4; }, "four bytes a pixel"},
        {IJL_UNSUPPORTED_COLORS, color, [](Record& record) { record.DIBColor = IJL_YCBCR; }, "YCbCr rows"},
        {IJL_SIZE_MISMATCH, color, [](Record& record) { record.JPGHeight = 23; }, "other stream height"},
        {IJL_SIZE_MISMATCH, color, [](Record& record) { record.DIBWidth = 39; }, "other width of rows"},
        {IJL_INVALID_ROW_PADDING, color, [](Record& record) { record.DIBPadBytes = -1; }, "rows overlap"},
        {IJL_INVALID_ROW_PADDING, color, [](Record& record) { record.DIBPadBytes = INT64_MIN; }, "far apart"},
    };
    for (const auto& [status, stream, change, name] : kFaults) {
        Reading reading(stream, change);
        EXPECT_EQ(reading.Run(), status) << name;
        EXPECT_EQ(reading.pixels, Bytes(kPitch * kHeight, kGuard)) << name;
    }
    EXPECT_EQ(Reading(color).Run(IJL_JBUFF_WRITEWHOLEIMAGE), IJL_INVALID_MODE);
    EXPECT_EQ(ijlRead(nullptr, IJL_JBUFF_READPARAMS), IJL_NULL_ARGUMENT);
}

TEST(JpegCodec, RefusesDataThatCouldOnlyBeGuessedAndEndlessScans) {
    const Bytes color = MakeJpeg(3);
    EXPECT_EQ(Reading(Bytes(color.begin(), color.end() - 40)).Run(), IJL_CUT_DATA);
    EXPECT_EQ(
        Reading(MakeJpegOfManyScans(), [](JPEG_CORE_PROPERTIES& record) { record.JPGColor = IJL_G; }).Run(),
        IJL_DAMAGED_DATA);
}

TEST(JpegCodec, FillsRowsThatRunUpwardsAndKeepsTheGapsBetweenThem) {
    Reading down(MakeJpeg(3)), up(MakeJpeg(3));
    up.properties.DIBBytes = up.pixels.data() + kPitch * (kHeight - 1);
    up.properties.DIBPadBytes = -kPitch - 3 * kWidth;
    ASSERT_EQ(std::pair(down.Run(), up.Run()), std::pair(0, 0));
    for (int y = 0; y < kHeight; ++y) {
        const auto row = down.pixels.begin() + y * kPitch;
        const auto mirrored = up.pixels.begin() + (kHeight - 1 - y) * kPitch;
        EXPECT_TRUE(std::equal(row, row + kPitch, mirrored)) << y;
        EXPECT_EQ(Bytes(row + 3 * kWidth, row + kPitch), Bytes(kGap, kGuard));
    }
}

TEST(JpegCodec, SaysThatTheBufferIsTooSmallAndNeverWritesPastIt) {
    Reading record(MakeJpeg(3));
    record.Run();
    JPEG_CORE_PROPERTIES& properties = record.properties;
    Bytes buffer(20000);
    const auto write = [&](std::size_t capacity) {
        std::fill(buffer.begin(), buffer.end(), kGuard);
        properties.JPGBytes = buffer.data();
        properties.JPGSizeBytes = static_cast<std::uint32_t>(capacity);
        return ijlWrite(&properties, IJL_JBUFF_WRITEWHOLEIMAGE);
    };
    ASSERT_EQ(write(buffer.size()), IJL_OK);
    const Bytes whole(buffer.begin(), buffer.begin() + properties.JPGSizeBytes);
    for (std::size_t capacity = 0; capacity <= whole.size(); ++capacity) {
        ASSERT_EQ(write(capacity), -28) << capacity;
        ASSERT_EQ(buffer[capacity], kGuard) << capacity;
    }
    EXPECT_EQ(write(whole.size() + 1), IJL_OK);
    EXPECT_TRUE(std::equal(whole.begin(), whole.end(), buffer.begin()));
    properties.DIBHeight = 65501;
    EXPECT_EQ(write(buffer.size()), IJL_SIZE_MISMATCH);
}

}  // namespace
}  // namespace Zelkor::Platform
