// Archive streams: what the three kinds share, what each does alone, and streams of other makers.

#include "tests/support/test.h"

#include "kalvo/base/file.h"
#include "kalvo/streams/streambytes.h"

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
        if (GetParam() == kMemory) return ReaderOf(bytes);
        const std::string name = m_folder.Write("bytes", bytes);
        if (GetParam() == kNamedFile) return Stream(KxSerializer::CreateFileReader(name));
        m_file = Platform::File(name.c_str(), "rb");
        return std::make_unique<KxFilePointerSerializer>(m_file.Get(), 0);
    }

    TemporaryFolder m_folder;
    Platform::File m_file;
};
INSTANTIATE_TEST_SUITE_P(KxSerializer, EveryStream, testing::Values(kNamedFile, kBorrowedFile, kMemory));

TEST_P(EveryStream, WritesFieldsAsLittleEndianBytes) {
    const Stream writer = Writer();
    std::int32_t integer = -2;
    float real = 1.0f;
    TransferValue(*writer, integer, "integer");
    TransferValue(*writer, real, "real");
    EXPECT_TRUE(writer->IsWriting() && !writer->IsReading());
    EXPECT_EQ(writer->IsEOS(), GetParam() == kMemory);
    EXPECT_EQ(writer->GetNextObjectType(), kFailedPeek);
    EXPECT_EQ(KxGetError(), KX_ERROR_NOT_OPEN_FOR_READ);
    EXPECT_EQ(writer->GetCurrentPos(), 8u);
    Bytes written(8);
    if (writer->GetData(written.data(), 8) == 0) {
        writer->Close();
        m_file.Close();
        written = m_folder.Read("bytes");
    }
    EXPECT_EQ(written, (Bytes{0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0x80, 0x3F}));
}

TEST_P(EveryStream, ReadsToTheEndAndBackToSavedPositions) {
    const Stream reader = Reader({0xFE, 0xFF, 0xFF, 0xFF, 9});
    std::int32_t integer = 0;
    reader->PushStreamPos();
    TransferValue(*reader, integer, "integer");
    EXPECT_TRUE(reader->IsReading() && !reader->IsWriting() && !reader->IsEOS());
    EXPECT_NO_THROW(RequireBytes(*reader, 1));
    EXPECT_EQ(CodeThrownBy([&] { RequireBytes(*reader, 2); }), KX_ERROR_FILE_READ);
    reader->PushStreamPos();
    EXPECT_EQ(CodeThrownBy([&] { TransferValue(*reader, integer, "cut"); }), KX_ERROR_FILE_READ);
    EXPECT_EQ(integer, -2);
    reader->PopAndApplyStreamPos();
    reader->PushStreamPos();
    EXPECT_EQ(NextByte(*reader), 9);
    EXPECT_EQ(reader->IsEOS(), 1);
    reader->PopAndForgetStreamPos();
    EXPECT_EQ(BytesLeft(*reader), 0u);
    reader->PopAndApplyStreamPos();
    EXPECT_EQ(BytesLeft(*reader), 5u);
    EXPECT_EQ(CodeThrownBy([&] { reader->PopAndApplyStreamPos(); }), KX_ERROR_FILE_ACCESS);
    EXPECT_EQ(CodeThrownBy([&] { reader->PopAndForgetStreamPos(); }), KX_ERROR_FILE_ACCESS);
}

TEST_P(EveryStream, PeeksAtTheNextObjectAndStaysWhereItIs) {
    const std::tuple<Bytes, int, KX_ERRORS> cases[] = {
        {{0x4B, 200, 9, 0x4B ^ 200 ^ 9, 1}, 200, KX_OK},
        {{}, KxSerializer::NoObject, KX_OK},
        {{0x4C, 34, 4, 0x4C ^ 34 ^ 4}, kFailedPeek, KX_ERROR_BAD_FILE_FORMAT},
        {{0x4B, 34, 4, 0}, kFailedPeek, KX_ERROR_BAD_FILE_FORMAT},
        {{0x4B, 34, 4}, kFailedPeek, KX_ERROR_FILE_READ},
    };
    for (const auto& [bytes, type, error] : cases) {
        const Stream reader = Reader(bytes);
        KxOk();
        EXPECT_EQ(reader->GetNextObjectType(), type);
        EXPECT_EQ(KxGetError(), error);
        EXPECT_EQ(BytesLeft(*reader), bytes.size());
        EXPECT_EQ(CodeThrownBy([&] { reader->PopAndForgetStreamPos(); }), KX_ERROR_FILE_ACCESS);
    }
}

TEST(KxFileSerializer, TreatsAnExistingFileAsItsModeSays) {
    const TemporaryFolder folder;
    const auto writer = [&](const char* name, int mode) {
        const auto writerMode = static_cast<KxSerializer::FileWriterMode>(mode);
        return Stream(KxSerializer::CreateFileWriter(Wide(folder.File(name)), writerMode));
    };
    for (const auto& [mode, expected] : {std::pair(1, Bytes{3}), {2, {1, 2, 3}}, {7, {3}}}) {
        folder.Write("old", {1, 2});
        Write(*writer("old", mode), {3});
        EXPECT_EQ(folder.Read("old"), expected) << mode;
    }
    EXPECT_EQ(writer("old", KxSerializer::Append)->GetCurrentPos(), 1u);
    EXPECT_TRUE(writer("new", KxSerializer::NoOverwrite));
    EXPECT_FALSE(writer("old", KxSerializer::NoOverwrite));
    EXPECT_EQ(KxGetError(), KX_ERROR_OVERWRITE_NOT_ALLOWED);
    EXPECT_EQ(folder.Read("old"), Bytes{3});
}

TEST(KxFileSerializer, ReportsNamesThatCannotBeOpened) {
    const TemporaryFolder folder;
    for (const std::string& name : {std::string(), folder.File("no/such"), folder.File("")}) {
        KxOk();
        EXPECT_FALSE(Stream(KxSerializer::CreateFileReader(name))) << name;
        EXPECT_EQ(KxGetError(), KX_ERROR_FILE_OPEN);
        KxOk();
        EXPECT_FALSE(Stream(KxSerializer::CreateFileWriter(name))) << name;
        EXPECT_EQ(KxGetError(), KX_ERROR_FILE_OPEN);
    }
}

TEST(KxFileSerializer, OpensAnotherFileWhenTheLastOneIsClosed) {
    const TemporaryFolder folder;
    const std::string first = folder.File("first"), second = folder.File("second");
    const Stream stream(KxSerializer::CreateFileWriter(first));
    auto& file = dynamic_cast<KxFileSerializer&>(*stream);
    Write(file, {1});
    file.PushStreamPos();
    EXPECT_EQ(CodeThrownBy([&] { file.OpenWriter(first, KxSerializer::NoOverwrite); }),
              KX_ERROR_OVERWRITE_NOT_ALLOWED);
    Write(file, {2});
    file.OpenReader(Wide(first));
    EXPECT_EQ(BytesLeft(file), 2u);
    EXPECT_EQ(CodeThrownBy([&] { file.PopAndForgetStreamPos(); }), KX_ERROR_FILE_ACCESS);
    file.OpenWriter(Wide(second));
    Write(file, {3});
    file.OpenWriter(second, KxSerializer::Append);
    Write(file, {4});
    EXPECT_EQ(CodeThrownBy([&] { file.OpenReader(folder.File("none")); }), KX_ERROR_FILE_OPEN);
    EXPECT_EQ(CodeThrownBy([&] { NextByte(file); }), KX_ERROR_SERIALIZER_NOT_OPEN);
    EXPECT_EQ(folder.Read("second"), (Bytes{3, 4}));
}

TEST(KxFilePointerSerializer, WorksFromWhereALargeFileStandsAndLeavesItOpen) {
    const TemporaryFolder folder;
    const std::string name = folder.Write("sparse", {});
    constexpr std::int64_t kFar = (std::int64_t{1} << 32) + 5;
    std::filesystem::resize_file(name, kFar + 2);
    const Platform::File file(name.c_str(), "rb");
    Platform::Seek(file.Get(), kFar);
    KxFilePointerSerializer reader(file.Get(), 0);
    EXPECT_EQ(reader.GetCurrentPos(), 5u);
    EXPECT_EQ(BytesLeft(reader), 2u);
    EXPECT_EQ(reader.GetNextObjectType(), kFailedPeek);
    reader.Close();
    EXPECT_EQ(Platform::Position(file.Get()), kFar);
    KxFilePointerSerializer none(nullptr, 0);
    EXPECT_EQ(CodeThrownBy([&] { NextByte(none); }), KX_ERROR_SERIALIZER_NOT_OPEN);
}

TEST(KxFilePointerSerializer, ReadsAPipeButCannotGoBackInIt) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen("printf 'K\"\\4m'", "r"), pclose);
    KxFilePointerSerializer reader(pipe.get(), 0);
    EXPECT_NO_THROW(RequireBytes(reader, 1000));
    EXPECT_EQ(reader.IsEOS(), 0);
    EXPECT_EQ(reader.GetNextObjectType(), kFailedPeek);
    EXPECT_EQ(KxGetError(), KX_ERROR_FILE_ACCESS);
}

TEST(KxMemSerializer, CopiesItsBytesOutAndSwitchesDirection) {
    KxMemSerializer stream;
    stream.OpenWriter();
    Write(stream, {1, 2, 3});
    stream.PushStreamPos();
    Write(stream, {4, 5});
    stream.PopAndApplyStreamPos();
    stream.PushStreamPos();
    Bytes bytes(3);
    EXPECT_EQ(stream.GetData(bytes.data(), 2), 0u);
    EXPECT_EQ(KxGetError(), KX_ERROR_INSUFFICIENT_ALLOCATION);
    EXPECT_EQ(stream.GetData(bytes.data(), 3), 3u);
    EXPECT_EQ(bytes, (Bytes{1, 2, 3}));
    stream.OpenReader(stream.GetBuffer());
    EXPECT_EQ(NextByte(stream), 1);
    EXPECT_EQ(CodeThrownBy([&] { stream.PopAndForgetStreamPos(); }), KX_ERROR_FILE_ACCESS);
    stream.OpenWriter();
    EXPECT_TRUE(stream.GetBuffer().empty());
}

TEST(OtherStreams, FailInTheirOwnWayWithoutHarm) {
    CountingStream reader(false, {0x4B, 34});
    EXPECT_EQ(reader.GetNextObjectType(), kFailedPeek);
    EXPECT_EQ(KxGetError(), KX_ERROR_ARCHIVE_ACCESS);
    EXPECT_EQ(NextByte(reader), 0x4B);
    EXPECT_NO_THROW(RequireBytes(reader, 1000));
}

}  // namespace
}  // namespace Zelkor::Kalvo
