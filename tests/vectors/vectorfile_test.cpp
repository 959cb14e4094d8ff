// Vector files byte by byte, and what becomes of bad ones.
#include "kalvo/vectors/vectorfile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <thread>
#include <vector>

#include "kalvo/frame/kxerror.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo {
namespace {

using namespace Testing;
using Grays = KxVectorTemplate<KxBW8>;
using Integers = KxVectorTemplate<unsigned int>;
using Runs = KxVectorTemplate<KxRun>;
using Names = std::vector<std::string>;

Grays MakeGrays(unsigned count) {
    Grays vector(count);
    for (unsigned i = 0; i < count; ++i) vector[i] = static_cast<std::uint8_t>(i * 7 + 1);
    return vector;
}

void* Address(std::uint64_t bits) { return reinterpret_cast<void*>(bits); }

Bytes BytesOf(const Grays& vector) {
    return {vector.GetDataPtr(), vector.GetDataPtr() + vector.GetNumElements()};
}

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

class VectorFile : public testing::Test {
protected:
    TemporaryFolder folder;
    TraceRecorder traces;
};

// The file of two such elements byte by byte, and vectors around the size of the chunks that runs go through.
template <class T>
void CheckFileOf(const T& element, const Bytes& header, const Bytes& elementBytes) {
    const TemporaryFolder folder;
    const std::string kPath = folder.File("v");
    for (const unsigned count : {2u, 0u, 1u, 1023u, 1024u, 1025u, 3000u}) {
        SCOPED_TRACE(testing::Message() << "type code " << int{header[1]} << ", " << count << " elements");
        KxVectorTemplate<T> saved;
        for (unsigned i = 0; i < count; ++i) saved.AddElement(i == 1023 ? T() : element);
        KxSetError(KX_ERROR_SIZE_MISMATCH);
        saved.Save(kPath.c_str());
        EXPECT_EQ(KxGetError(), KX_OK);
        const Bytes kCount{2, 0, 0, 0};
        if (count == 2) {
            EXPECT_EQ(folder.Read("v"), header + kCount + elementBytes + elementBytes);
        }

        KxVectorTemplate<T> loaded(7);
        KxSetError(KX_ERROR_SIZE_MISMATCH);
        loaded.Load(Wide(kPath).c_str());
        EXPECT_EQ(KxGetError(), KX_OK);
        EXPECT_EQ(loaded.GetMaxElements(), count);
        EXPECT_TRUE(std::ranges::equal(ElementsOf(loaded), ElementsOf(saved)));
    }
}

TEST_F(VectorFile, HoldsHeaderCountAndElements) {
    CheckFileOf(KxBW8(0xA1), {0x4B, 1, 1, 0x4B}, {0xA1});
    CheckFileOf(KxBW16(0xA1A2), {0x4B, 2, 1, 0x48}, {0xA2, 0xA1});
    CheckFileOf(KxBW32(0xA1A2A3A4), {0x4B, 3, 1, 0x49}, {0xA4, 0xA3, 0xA2, 0xA1});
    CheckFileOf(0xA1A2A3A4u, {0x4B, 3, 1, 0x49}, {0xA4, 0xA3, 0xA2, 0xA1});
    CheckFileOf(KxC24(1, 2, 3), {0x4B, 4, 1, 0x4E}, {3, 2, 1});
    CheckFileOf(KxINT32(-2), {0x4B, 7, 1, 0x4D}, {0xFE, 0xFF, 0xFF, 0xFF});
    CheckFileOf(KxRun{Address(0xFFFFFFFF), Address(0x01020304), -2, 3}, {0x4B, 6, 1, 0x4C},
                {0xFF, 0xFF, 0xFF, 0xFF, 4, 3, 2, 1, 0xFE, 0xFF, 3, 0});
}

TEST_F(VectorFile, OfRunsTakesTheWidthOfItsAddresses) {
    Runs saved;
    saved.AddElement({Address(1), Address(0x123456789A), 4, -5});
    saved.Save(folder.File("v").c_str());
    const Bytes kAddresses{1, 0, 0, 0, 0, 0, 0, 0, 0x9A, 0x78, 0x56, 0x34, 0x12, 0, 0, 0};
    EXPECT_EQ(folder.Read("v"), (Bytes{0x4B, 6, 2, 0x4F, 1, 0, 0, 0} + kAddresses + Bytes{4, 0, 0xFB, 0xFF}));
    Runs loaded;
    loaded.Load(folder.File("v").c_str());
    EXPECT_EQ(KxGetError(), KX_OK);
    ASSERT_EQ(loaded.GetNumElements(), 1u);
    EXPECT_EQ(loaded[0], saved[0]);
}

TEST_F(VectorFile, NarrowRunsRefuseWideAddressesBeforeWriting) {
    for (const auto address : {&KxRun::pBeg, &KxRun::pEnd})
        for (const unsigned version : {0u, 1u, 3u}) {
            Runs runs(2);
            runs[1].*address = Address(std::uint64_t{1} << 32);
            const Platform::File file(folder.File("v").c_str(), "wb");
            runs.Serialize(file.Get(), 1, version);
            EXPECT_EQ(KxGetError(), KX_ERROR_UNSUPPORTED_FILE_VERSION) << version;
            EXPECT_EQ(Platform::Position(file.Get()), 0) << version;
        }
    EXPECT_TRUE(traces.Boxes().empty()) << "the caller traces";
}

TEST_F(VectorFile, RefusesForeignHeadersAndKeepsTheVector) {
    const Bytes kBody = {1, 0, 0, 0, 42};
    const struct {
        const char* what;
        Bytes contents;
        KX_ERRORS code;
    } kFiles[] = {
        {"16-bit elements", Bytes{0x4B, 2, 1, 0x48} + kBody, KX_ERROR_BAD_FILE_FORMAT},
        {"version 2, which only runs have", Bytes{0x4B, 1, 2, 0x48} + kBody, KX_ERROR_BAD_FILE_FORMAT},
        {"version 0", Bytes{0x4B, 1, 0, 0x4A} + kBody, KX_ERROR_BAD_FILE_FORMAT},
        {"wrong checksum", Bytes{0x4B, 1, 1, 0x4A} + kBody, KX_ERROR_BAD_FILE_FORMAT},
        {"wrong signature", Bytes{0x4A, 1, 1, 0x4A} + kBody, KX_ERROR_BAD_FILE_FORMAT},
        {"cut in the header", {0x4B, 1, 1}, KX_ERROR_FILE_READ},
        {"cut in the count", {0x4B, 1, 1, 0x4B, 1, 0, 0}, KX_ERROR_FILE_READ},
    };
    Grays vector = MakeGrays(3);
    for (const auto& file : kFiles) {
        vector.Load(folder.Write("v", file.contents).c_str());
        EXPECT_EQ(KxGetError(), file.code) << file.what;
        EXPECT_EQ(BytesOf(vector), (Bytes{1, 8, 15})) << file.what;
    }
    EXPECT_EQ(traces.Functions(), Names(std::size(kFiles), "KxVector::Load"));

    Runs runs;
    runs.Load(folder.Write("v", Bytes{0x4B, 6, 3, 0x4E, 0, 0, 0, 0}).c_str());
    EXPECT_EQ(KxGetError(), KX_ERROR_BAD_FILE_FORMAT);
    vector.Load(folder.Write("v", Bytes{0x4B, 1, 1, 0x4B} + kBody + Bytes{99}).c_str());
    EXPECT_EQ(KxGetError(), KX_OK) << "bytes after the last element are ignored";
    EXPECT_EQ(BytesOf(vector), (Bytes{42}));
}

TEST_F(VectorFile, LoadsBetween32BitTypes) {
    KxVectorTemplate<KxBW32> saved(1);
    saved[0] = 77;
    saved.Save(folder.File("v").c_str());
    Integers loaded;
    loaded.Load(folder.File("v").c_str());
    EXPECT_EQ(KxGetError(), KX_OK);
    EXPECT_EQ(loaded.GetElement(0), 77u);
}

TEST_F(VectorFile, CutShortFillsUpWithZeros) {
    Integers vector(5);
    std::ranges::fill(ElementsOf(vector), 9u);  // the buffer has the right size and is used again
    vector.Load(folder.Write("v", {0x4B, 3, 1, 0x49, 5, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 3}).c_str());
    EXPECT_EQ(KxGetError(), KX_ERROR_FILE_READ);
    EXPECT_EQ(traces.Functions(), Names{"KxVector::Load"});
    ASSERT_EQ(vector.GetNumElements(), 5u);
    EXPECT_EQ(vector[0], 1u);
    EXPECT_EQ(vector[1], 2u);
    for (const unsigned i : {2u, 3u, 4u}) EXPECT_EQ(vector[i], 0u) << i;
}

TEST_F(VectorFile, BelievesACountOnlyAsFarAsTheFileBearsItOut) {
    constexpr unsigned kMiB = 1 << 20;
    const struct {
        unsigned declared, present;
        KX_ERRORS code;
    } kFiles[] = {
        {kMiB, 0, KX_ERROR_FILE_READ},
        {kMiB + 1, 0, KX_ERROR_ALLOCATION},
        {kMiB + 1, 1, KX_ERROR_ALLOCATION},
        {16 * 100000, 100000, KX_ERROR_FILE_READ},
        {16 * 100000 + 1, 100000, KX_ERROR_ALLOCATION},
        {0xFFFFFFFF, 100000, KX_ERROR_ALLOCATION},
        {2 * kMiB, 2 * kMiB, KX_OK},
    };
    for (const auto& file : kFiles) {
        Bytes contents{0x4B, 1, 1, 0x4B, 0, 0, 0, 0};
        StoreLittleEndian(contents.data() + 4, file.declared);
        Grays vector;
        vector.Load(folder.Write("v", contents + Bytes(file.present, 3)).c_str());
        EXPECT_EQ(KxGetError(), file.code) << file.declared;
        const unsigned expected = file.code == KX_ERROR_ALLOCATION ? 0 : file.declared;
        EXPECT_EQ(vector.GetNumElements(), expected) << file.declared;
        EXPECT_EQ(vector.GetMaxElements(), expected) << "a forged count takes no memory";
    }
}

// A pipe does not tell how much it holds.
TEST_F(VectorFile, IsReadFromAPipe) {
    constexpr unsigned kMany = 20 << 20;
    const struct {
        unsigned declared, delivered, expected;
        KX_ERRORS code;
    } kPipes[] = {
        {10, 10, 10, KX_OK},
        {kMany, kMany, kMany, KX_OK},
        {kMany, 10, 1 << 20, KX_ERROR_FILE_READ},
        {10, 9, 10, KX_ERROR_FILE_READ},
    };
    const std::string kName = folder.File("pipe");
    ASSERT_EQ(mkfifo(kName.c_str(), 0600), 0);
    for (const auto& pipe : kPipes) {
        const Bytes sent = BytesOf(MakeGrays(pipe.delivered));
        std::thread writer([&] {
            const Platform::File file(kName.c_str(), "wb");
            std::array<std::uint8_t, 8> start{0x4B, 1, 1, 0x4B};
            StoreLittleEndian(start.data() + 4, pipe.declared);
            WriteBytes(file.Get(), start);
            std::fwrite(sent.data(), 1, sent.size(), file.Get());
        });
        Grays vector;
        vector.Load(kName.c_str());
        writer.join();
        EXPECT_EQ(KxGetError(), pipe.code);
        Bytes expected = sent;
        expected.resize(pipe.expected);
        EXPECT_TRUE(BytesOf(vector) == expected);
    }
}

TEST_F(VectorFile, FollowsAnotherOnOneStream) {
    const Platform::File file(folder.File("v").c_str(), "w+b");
    Grays first = MakeGrays(5000);
    Grays second = MakeGrays(3);
    first.Serialize(file.Get(), 1);
    second.Serialize(file.Get(), 1);
    std::rewind(file.Get());
    Grays firstBack;
    Grays secondBack;
    firstBack.Serialize(file.Get(), 0);
    secondBack.Serialize(file.Get(), 0);
    EXPECT_EQ(KxGetError(), KX_OK);
    EXPECT_EQ(BytesOf(firstBack), BytesOf(first));
    EXPECT_EQ(BytesOf(secondBack), BytesOf(second));
}

TEST_F(VectorFile, ReportsWhereSavingAndLoadingFail) {
    const std::string kNowhere = folder.File("missing/v");
    const std::string kFull = "/dev/full";  // takes what the stream buffers and refuses the rest
    const struct {
        std::string path;
        bool save;
        unsigned count;
        KX_ERRORS code;
    } kFailures[] = {
        {kNowhere, true, 1, KX_ERROR_FILE_OPEN},
        {kNowhere, false, 1, KX_ERROR_FILE_OPEN},
        {kFull, true, 1, KX_ERROR_FILE_CLOSE},
        {kFull, true, 1 << 20, KX_ERROR_FILE_WRITE},
    };
    for (const auto& failure : kFailures) {
        const TraceRecorder recorder;
        Grays vector = MakeGrays(failure.count);
        const auto wide = Wide(failure.path);
        failure.save ? vector.Save(failure.path.c_str()) : vector.Load(failure.path.c_str());
        EXPECT_EQ(KxGetError(), failure.code) << failure.path;
        failure.save ? vector.Save(wide.c_str()) : vector.Load(wide.c_str());
        EXPECT_EQ(KxGetError(), failure.code) << failure.path;
        const std::string name = failure.save ? "KxVector::Save" : "KxVector::Load";
        EXPECT_EQ(recorder.Functions(), (Names{name, name + " ( Unicode)"}));
        EXPECT_EQ(vector.GetNumElements(), failure.count);
    }
}

TEST_F(VectorFile, GoesThroughTheVirtualExchange) {
    struct Failing : Grays {
        void Serialize(std::FILE* stream, int writing, unsigned version) override {
            Grays::Serialize(stream, writing, version);
            if (version == 1) KxSetError(KX_ERROR_INVALID_MODE);
        }
    } vector;
    vector.Save(folder.File("v").c_str());
    EXPECT_EQ(KxGetError(), KX_ERROR_INVALID_MODE);
    vector.Load(folder.File("v").c_str());
    EXPECT_EQ(KxGetError(), KX_ERROR_INVALID_MODE);
    EXPECT_EQ(traces.Functions(), (Names{"KxVector::Save", "KxVector::Load"}));
}

}  // namespace
}  // namespace Zelkor::Kalvo
