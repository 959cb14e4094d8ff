// Archive streams: what the three kinds share, what each does alone, and streams of other makers.
#include "kalvo/persistence/kxserializer.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>

#include <gtest/gtest.h>

#include "kalvo/measure/kxdimensionalvalue.h"
#include "kalvo/persistence/streambytes.h"
#include "kalvo/platform/file.h"
#include "tests/support/streams.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo {
namespace {

using namespace Testing;

constexpr auto kFailedPeek = static_cast<KxSerializer::ObjectType>(-1);

std::uint8_t NextByte(KxSerializer& stream) {
    std::uint8_t byte = 0;
    stream.SerializeBytes(&byte, 1);
    return byte;
}

void Write(KxSerializer& stream, Bytes bytes) {
    stream.SerializeBytes(bytes.data(), static_cast<unsigned>(bytes.size()));
}

// ---- What all three kinds do alike ----

enum Kind { kNamedFile, kBorrowedFile, kMemory };

class EveryStream : public testing::TestWithParam<Kind> {
protected:
    Stream Writer() {
        if (GetParam() == kMemory) return Stream(KxSerializer::CreateMemoryWriter());
        if (GetParam() == kNamedFile) return Stream(KxSerializer::CreateFileWriter(m_folder.File("bytes")));
        m_file = Platform::File(m_folder.File("bytes").c_str(), "wb");
        return std::make_unique<KxFilePointerSerializer>(m_file.Get(), 1);
    }

    Stream Reader(const Bytes& bytes) {
        if (GetParam() == kMemory)
            return Stream(
                KxSerializer::CreateMemoryReader(bytes.data(), static_cast<unsigned>(bytes.size())));
        const std::string name = m_folder.Write("bytes", bytes);
        if (GetParam() == kNamedFile) return Stream(KxSerializer::CreateFileReader(name));
        m_file = Platform::File(name.c_str(), "rb");
        return std::make_unique<KxFilePointerSerializer>(m_file.Get(), 0);
    }

    Bytes Written(KxSerializer& writer) {
        if (const auto* memory = dynamic_cast<KxMemSerializer*>(&writer)) return memory->GetBuffer();
        writer.Close();
        m_file.Close();
        return m_folder.Read("bytes");
    }

    TemporaryFolder m_folder;
    Platform::File m_file;
};

INSTANTIATE_TEST_SUITE_P(KxSerializer, EveryStream, testing::Values(kNamedFile, kBorrowedFile, kMemory));

TEST_P(EveryStream, WritesFieldsOneAfterTheOtherAsLittleEndianBytes) {
    const Stream writer = Writer();
    EXPECT_EQ(writer->IsWriting(), 1);
    EXPECT_EQ(writer->IsReading(), 0);
    EXPECT_EQ(writer->IsFile(), GetParam() == kBorrowedFile);
    EXPECT_EQ(writer->IsEOS(), GetParam() == kMemory);
    std::int32_t integer = -2;
    std::uint32_t natural = 0x01020304;
    float real = 1.0f;
    TransferValue(*writer, integer, "integer");
    TransferValue(*writer, natural, "natural");
    TransferValue(*writer, real, "real");
    writer->SerializeBytes(nullptr, 0, "nothing");
    KxOk();
    EXPECT_EQ(writer->GetNextObjectType(), kFailedPeek);
    EXPECT_EQ(KxGetError(), KX_ERROR_NOT_OPEN_FOR_READ);
    EXPECT_EQ(writer->GetCurrentPos(), 12u);
    EXPECT_NO_THROW(RequireBytes(*writer, 1));
    EXPECT_EQ(Written(*writer), (Bytes{0xFE, 0xFF, 0xFF, 0xFF, 4, 3, 2, 1, 0, 0, 0x80, 0x3F}));
}

TEST_P(EveryStream, ReadsToTheEndAndNoFurther) {
    const Stream reader = Reader({0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0x80, 0x3F, 9});
    EXPECT_EQ(reader->IsReading(), 1);
    EXPECT_EQ(reader->IsWriting(), 0);
    std::int32_t integer = 0;
    float real = 0;
    EXPECT_EQ(BytesLeft(*reader), 9u);
    TransferValue(*reader, integer, "integer");
    TransferValue(*reader, real, "real");
    EXPECT_EQ(integer, -2);
    EXPECT_EQ(real, 1.0f);
    EXPECT_EQ(reader->IsEOS(), 0);
    EXPECT_NO_THROW(RequireBytes(*reader, 1));
    EXPECT_EQ(CodeThrownBy([&] { RequireBytes(*reader, 2); }), KX_ERROR_FILE_READ);

    reader->PushStreamPos();
    EXPECT_EQ(CodeThrownBy([&] { TransferValue(*reader, integer, "cut"); }), KX_ERROR_FILE_READ);
    EXPECT_EQ(integer, -2);
    reader->PopAndApplyStreamPos();
    EXPECT_EQ(NextByte(*reader), 9);
    EXPECT_EQ(reader->IsEOS(), 1);
    EXPECT_EQ(BytesLeft(*reader), 0u);
    reader->SerializeBytes(nullptr, 0);
}

TEST_P(EveryStream, KeepsSavedPositionsOnAStack) {
    const Stream reader = Reader({10, 11, 12, 13});
    reader->PushStreamPos();
    EXPECT_EQ(NextByte(*reader), 10);
    reader->PushStreamPos();
    reader->PushStreamPos();
    EXPECT_EQ(NextByte(*reader), 11);
    reader->PopAndForgetStreamPos();
    EXPECT_EQ(NextByte(*reader), 12);
    reader->PopAndApplyStreamPos();
    EXPECT_EQ(NextByte(*reader), 11);
    reader->PopAndApplyStreamPos();
    EXPECT_EQ(NextByte(*reader), 10);
    EXPECT_EQ(CodeThrownBy([&] { reader->PopAndApplyStreamPos(); }), KX_ERROR_FILE_ACCESS);
    EXPECT_EQ(CodeThrownBy([&] { reader->PopAndForgetStreamPos(); }), KX_ERROR_FILE_ACCESS);
    EXPECT_EQ(NextByte(*reader), 11);
}

TEST_P(EveryStream, PeeksAtTheNextObjectAndStaysWhereItIs) {
    const struct {
        Bytes bytes;
        KxSerializer::ObjectType type;
        KX_ERRORS error;
    } cases[] = {
        {{0x4B, 34, 4, 0x4B ^ 34 ^ 4}, KxSerializer::ImageBW8, KX_OK},
        {{0x4B, 200, 9, 0x4B ^ 200 ^ 9, 1}, static_cast<KxSerializer::ObjectType>(200), KX_OK},
        {{}, KxSerializer::NoObject, KX_OK},
        {{0x4C, 34, 4, 0x4C ^ 34 ^ 4}, kFailedPeek, KX_ERROR_BAD_FILE_FORMAT},
        {{0x4C}, kFailedPeek, KX_ERROR_BAD_FILE_FORMAT},
        {{0x4B, 34, 4, 0}, kFailedPeek, KX_ERROR_BAD_FILE_FORMAT},
        {{0x4B, 34, 4}, kFailedPeek, KX_ERROR_FILE_READ},
    };
    const TraceRecorder trace;
    for (const auto& [bytes, type, error] : cases) {
        const Stream reader = Reader(bytes);
        KxOk();
        EXPECT_EQ(reader->GetNextObjectType(), type);
        EXPECT_EQ(KxOk(), KX_OK);
        EXPECT_EQ(reader->GetNextObjectType(), type);
        EXPECT_EQ(KxGetError(), error);
        EXPECT_EQ(BytesLeft(*reader), bytes.size());
        EXPECT_EQ(CodeThrownBy([&] { reader->PopAndForgetStreamPos(); }), KX_ERROR_FILE_ACCESS);
    }
    EXPECT_TRUE(trace.Boxes().empty());
}

// ---- Named files ----

TEST(KxFileSerializer, TreatsAnExistingFileAsItsModeSays) {
    const TemporaryFolder folder;
    const struct {
        int mode;
        Bytes expected;
        unsigned position;
    } cases[] = {{0, {1, 2}, 0}, {1, {3}, 0}, {2, {1, 2, 3}, 2}, {7, {3}, 0}};
    for (const auto& [mode, expected, position] : cases) {
        for (const bool wide : {false, true}) {
            const std::string name = folder.Write("old", {1, 2});
            const auto writerMode = static_cast<KxSerializer::FileWriterMode>(mode);
            KxOk();
            const Stream writer(wide ? KxSerializer::CreateFileWriter(Wide(name), writerMode)
                                     : KxSerializer::CreateFileWriter(name, writerMode));
            EXPECT_EQ(KxGetError(), mode == 0 ? KX_ERROR_OVERWRITE_NOT_ALLOWED : KX_OK);
            ASSERT_EQ(writer == nullptr, mode == 0);
            if (writer) {
                EXPECT_EQ(writer->GetCurrentPos(), position);
                Write(*writer, {3});
                writer->Close();
            }
            EXPECT_EQ(folder.Read("old"), expected) << mode;
        }
    }
    const std::string fresh = folder.File("new");
    EXPECT_TRUE(Stream(KxSerializer::CreateFileWriter(fresh, KxSerializer::NoOverwrite)));
    EXPECT_TRUE(std::filesystem::exists(fresh));
    // What stands there but cannot be read is not overwritten either.
    std::filesystem::create_symlink(folder.File("nowhere"), folder.File("link"));
    EXPECT_FALSE(Stream(KxSerializer::CreateFileWriter(folder.File("link"), KxSerializer::NoOverwrite)));
    EXPECT_EQ(KxGetError(), KX_ERROR_FILE_OPEN);
}

TEST(KxFileSerializer, RefusesNamesThatCannotBeOpened) {
    const TemporaryFolder folder;
    const std::string parent = folder.File("");
    for (const std::string& name : {std::string(), folder.File("missing"), parent}) {
        KxOk();
        EXPECT_FALSE(Stream(KxSerializer::CreateFileReader(name))) << name;
        EXPECT_EQ(KxGetError(), KX_ERROR_FILE_OPEN);
        KxOk();
        EXPECT_FALSE(Stream(KxSerializer::CreateFileReader(Wide(name)))) << name;
        EXPECT_EQ(KxGetError(), KX_ERROR_FILE_OPEN);
    }
    const std::basic_string<unsigned short> unpaired{0xD800, 'x'};
    EXPECT_FALSE(Stream(KxSerializer::CreateFileReader(unpaired)));
    for (const auto mode : {KxSerializer::NoOverwrite, KxSerializer::Overwrite, KxSerializer::Append}) {
        for (const auto& name : {Wide(""), Wide(parent), Wide(folder.File("no/such")), unpaired}) {
            KxOk();
            EXPECT_FALSE(Stream(KxSerializer::CreateFileWriter(name, mode)));
            EXPECT_EQ(KxGetError(), KX_ERROR_FILE_OPEN);
        }
    }
}

TEST(KxFileSerializer, HasNoDirectionOnceClosed) {
    const TemporaryFolder folder;
    for (const Stream& stream : {Stream(KxSerializer::CreateFileWriter(folder.File("bytes"))),
                                 Stream(KxSerializer::CreateFileReader(folder.Write("other", {1})))}) {
        KxOk();
        stream->Close();
        stream->Close();
        EXPECT_EQ(KxGetError(), KX_OK);
        EXPECT_EQ(stream->IsReading(), 0);
        EXPECT_EQ(stream->IsWriting(), 0);
        EXPECT_EQ(CodeThrownBy([&] { NextByte(*stream); }), KX_ERROR_SERIALIZER_NOT_OPEN);
        EXPECT_EQ(stream->GetNextObjectType(), kFailedPeek);
        EXPECT_EQ(KxGetError(), KX_ERROR_NOT_OPEN_FOR_READ);
        EXPECT_EQ(stream->GetCurrentPos(), 0u);
        EXPECT_EQ(stream->IsEOS(), 1);
    }
}

TEST(KxFileSerializer, ReportsAFullDiskAtTheLatestWhenClosed) {
    const Stream writer(KxSerializer::CreateFileWriter("/dev/full"));
    if (!writer) GTEST_SKIP() << "no device that is always full";
    EXPECT_EQ(CodeThrownBy([&] { Write(*writer, Bytes(1 << 20)); }), KX_ERROR_FILE_WRITE);
    const Stream buffered(KxSerializer::CreateFileWriter("/dev/full"));
    Write(*buffered, {1});
    KxOk();
    buffered->Close();
    EXPECT_EQ(KxGetError(), KX_ERROR_FILE_CLOSE);
}

// ---- Borrowed files ----

TEST(KxFilePointerSerializer, WorksFromWhereTheFileStandsAndLeavesItOpen) {
    const TemporaryFolder folder;
    const Platform::File file(folder.Write("bytes", {1, 2, 3, 4}).c_str(), "rb");
    Platform::Seek(file.Get(), 2);
    {
        KxFilePointerSerializer reader(file.Get(), 0);
        EXPECT_EQ(reader.GetCurrentPos(), 2u);
        EXPECT_EQ(BytesLeft(reader), 2u);
        EXPECT_EQ(NextByte(reader), 3);
        reader.Close();
        KxOk();
        EXPECT_EQ(reader.GetData(nullptr, 0), 0u);
        EXPECT_EQ(KxGetError(), KX_ERROR_INVALID_OPERATION);
    }
    EXPECT_EQ(std::getc(file.Get()), 4);
}

TEST(KxFilePointerSerializer, KeepsPositionsBeyondFourGigabytes) {
    const TemporaryFolder folder;
    const std::string name = folder.Write("sparse", {1});
    constexpr std::int64_t kFar = (std::int64_t{1} << 32) + 5;
    std::filesystem::resize_file(name, kFar + 2);
    const Platform::File file(name.c_str(), "rb");
    KxFilePointerSerializer reader(file.Get(), 0);
    EXPECT_EQ(BytesLeft(reader), static_cast<std::uint64_t>(kFar) + 2);
    Platform::Seek(file.Get(), kFar);
    EXPECT_EQ(reader.GetCurrentPos(), 5u);
    reader.PushStreamPos();
    NextByte(reader);
    reader.PopAndApplyStreamPos();
    EXPECT_EQ(Platform::Position(file.Get()), kFar);
    EXPECT_EQ(reader.IsEOS(), 0);
}

TEST(KxFilePointerSerializer, ReadsAPipeButCannotGoBackInIt) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipeEnd(fdopen(ends[0], "rb"), std::fclose);
    const Bytes bytes{7, 0x4B, 34, 4, 0x4B ^ 34 ^ 4};
    ASSERT_EQ(write(ends[1], bytes.data(), bytes.size()), 5);
    close(ends[1]);
    KxFilePointerSerializer reader(pipeEnd.get(), 0);
    EXPECT_NO_THROW(RequireBytes(reader, 1000));
    EXPECT_EQ(reader.IsEOS(), 0);
    EXPECT_EQ(NextByte(reader), 7);
    EXPECT_EQ(reader.GetNextObjectType(), kFailedPeek);
    EXPECT_EQ(KxGetError(), KX_ERROR_FILE_ACCESS);
    EXPECT_EQ(reader.IsEOS(), 1);
}

TEST(KxFilePointerSerializer, RefusesEveryTransferWithoutAFile) {
    for (const int writing : {0, 1}) {
        KxFilePointerSerializer stream(nullptr, writing);
        EXPECT_EQ(CodeThrownBy([&] { NextByte(stream); }), KX_ERROR_SERIALIZER_NOT_OPEN);
        EXPECT_EQ(stream.GetCurrentPos(), 0u);
        EXPECT_EQ(stream.IsEOS(), 1);
        EXPECT_EQ(BytesLeft(stream), 0u);
    }
}

// ---- Memory ----

TEST(KxMemSerializer, CopiesItsBytesOutAndIn) {
    const Stream writer(KxSerializer::CreateMemoryWriter());
    Write(*writer, {1, 2, 3});
    Bytes bytes(3);
    KxOk();
    EXPECT_EQ(writer->GetData(bytes.data(), 2), 0u);
    EXPECT_EQ(KxGetError(), KX_ERROR_INSUFFICIENT_ALLOCATION);
    EXPECT_EQ(writer->GetData(bytes.data(), 3), 3u);
    EXPECT_EQ(bytes, (Bytes{1, 2, 3}));
    const Stream reader(KxSerializer::CreateMemoryReader(bytes.data(), 3));
    bytes[0] = 9;
    EXPECT_EQ(NextByte(*reader), 1);
    EXPECT_EQ(Stream(KxSerializer::CreateMemoryReader(nullptr, 0))->IsEOS(), 1);
}

TEST(KxMemSerializer, SwitchesDirectionAndDropsWhatItHeld) {
    KxMemSerializer stream;
    EXPECT_EQ(stream.IsReading() && stream.IsEOS(), 1);
    stream.OpenWriter();
    Write(stream, {5, 6});
    stream.PushStreamPos();
    Write(stream, {7});
    stream.PopAndApplyStreamPos();
    EXPECT_EQ(stream.IsEOS(), 1);
    Write(stream, {8});
    EXPECT_EQ(stream.GetBuffer(), (Bytes{5, 6, 7, 8}));
    stream.PushStreamPos();

    stream.OpenReader(stream.GetBuffer());
    EXPECT_EQ(NextByte(stream), 5);
    EXPECT_EQ(stream.GetCurrentPos(), 4u);
    EXPECT_EQ(CodeThrownBy([&] { stream.PopAndForgetStreamPos(); }), KX_ERROR_FILE_ACCESS);
    Bytes tooMany(4, 99);
    EXPECT_EQ(CodeThrownBy([&] { stream.SerializeBytes(tooMany.data(), 4, ""); }), KX_ERROR_FILE_READ);
    EXPECT_EQ(tooMany, Bytes(4, 99));
    EXPECT_EQ(NextByte(stream), 6);
    stream.OpenWriter();
    EXPECT_TRUE(stream.GetBuffer().empty());
}

// ---- Streams of other makers ----

TEST(OtherStreams, CarryAnObjectThroughTheBaseClass) {
    CountingStream writer(true);
    KxSerializer* stream = &writer;
    EXPECT_EQ(dynamic_cast<CountingStream*>(stream), &writer);
    KxDimensionalValue(2.5f, &KxUnit_inch).Serialize(stream);
    EXPECT_EQ(writer.transfers.size(), 4u);

    CountingStream reader(false, writer.bytes);
    KxDimensionalValue value;
    value.Serialize(&reader);
    EXPECT_EQ(value.GetValue(), 2.5f);
    EXPECT_STREQ(value.GetUnit()->GetName(), "inch");
    EXPECT_EQ(reader.IsEOS(), 1);
}

TEST(OtherStreams, FailInTheirOwnWayWithoutHarm) {
    CountingStream reader(false, {0x4B, 34});
    KxSerializer& stream = reader;
    KxOk();
    EXPECT_EQ(stream.GetNextObjectType(), kFailedPeek);
    EXPECT_EQ(KxGetError(), KX_ERROR_ARCHIVE_ACCESS);
    EXPECT_EQ(NextByte(stream), 0x4B);
    EXPECT_NO_THROW(RequireBytes(stream, 1000));
    KxOk();
    EXPECT_EQ(stream.GetCurrentPos(), 0u);
    EXPECT_EQ(KxGetError(), KX_ERROR_INVALID_OPERATION);
}

TEST(OtherStreams, GetLargeBlocksInSeveralTransfers) {
    CountingStream stream(true);
    constexpr std::uint64_t kGigabyte = std::uint64_t{1} << 30;
    // The pages of the first transfer are never touched, so they cost no memory.
    const auto block = std::make_unique_for_overwrite<std::uint8_t[]>(kGigabyte + 3);
    std::fill_n(block.get() + kGigabyte, 3, std::uint8_t{7});
    TransferBlock(stream, block.get(), kGigabyte + 3, "block");
    TransferBlock(stream, nullptr, 0, "nothing");
    const decltype(stream.transfers) expected{{block.get(), kGigabyte}, {block.get() + kGigabyte, 3u}};
    EXPECT_EQ(stream.transfers, expected);
    EXPECT_EQ(stream.bytes, Bytes(3, 7));
}

}  // namespace
}  // namespace Zelkor::Kalvo
