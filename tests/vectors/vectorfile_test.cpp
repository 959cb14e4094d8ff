// Vector files byte by byte, and what becomes of bad ones.

#include "tests/support/test.h"

#include <sys/stat.h>

#include "kalvo/vectors/vectorfile.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Grays = KxVectorTemplate<KxBW8>;
constexpr unsigned kMiB = 1 << 20;

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

// A file of bytes that declares `count` elements.
Bytes GraysFile(unsigned count, const Bytes& elements) {
    Bytes start{0x4B, 1, 1, 0x4B, 0, 0, 0, 0};
    StoreLittleEndian(start.data() + 4, count);
    return start + elements;
}

class VectorFile : public testing::Test {
protected:
    TemporaryFolder folder;
    const std::string path = folder.File("v");
    TraceRecorder traces;

    // The file of two such elements byte by byte, and vectors around the size of the chunks that runs go
    // through.
    template <class T>
    void CheckFileOf(const T& element, const Bytes& header, const Bytes& elementBytes) {
        for (const unsigned count : {1025u, 1024u, 0u, 2u}) {
            KxVectorTemplate<T> saved, loaded(7);
            for (unsigned i = 0; i < count; ++i) saved.AddElement(i == 1023 ? T() : element);
            KxSetError(KX_ERROR_SIZE_MISMATCH);
            saved.Save(path.c_str());
            loaded.Load(Wide(path).c_str());
            EXPECT_EQ(KxGetError(), KX_OK);
            EXPECT_EQ(loaded.GetMaxElements(), count);
            EXPECT_TRUE(std::ranges::equal(ElementsOf(loaded), ElementsOf(saved))) << count;
        }
        EXPECT_EQ(folder.Read("v"), (header + Bytes{2, 0, 0, 0} + elementBytes + elementBytes));
    }
};

TEST_F(VectorFile, HoldsHeaderCountAndElements) {
    CheckFileOf(KxBW8(0xA1), {0x4B, 1, 1, 0x4B}, {0xA1});
    CheckFileOf(KxBW16(0xA1A2), {0x4B, 2, 1, 0x48}, {0xA2, 0xA1});
    CheckFileOf(KxBW32(0xA1A2A3A4), {0x4B, 3, 1, 0x49}, {0xA4, 0xA3, 0xA2, 0xA1});
    CheckFileOf(0xA1A2A3A4u, {0x4B, 3, 1, 0x49}, {0xA4, 0xA3, 0xA2, 0xA1});
    CheckFileOf(KxC24(1, 2, 3), {0x4B, 4, 1, 0x4E}, {3, 2, 1});
    CheckFileOf(KxINT32(-2), {0x4B, 7, 1, 0x4D}, {0xFE, 0xFF, 0xFF, 0xFF});
    // The file of runs takes the width of its widest address.
    CheckFileOf(KxRun{Address(0xFFFFFFFF), Address(0x01020304), -2, 3}, {0x4B, 6, 1, 0x4C},
                {0xFF, 0xFF, 0xFF, 0xFF, 4, 3, 2, 1, 0xFE, 0xFF, 3, 0});
    CheckFileOf(KxRun{Address(1), Address(0x123456789A), 4, -5}, {0x4B, 6, 2, 0x4F},
                {1, 0, 0, 0, 0, 0, 0, 0, 0x9A, 0x78, 0x56, 0x34, 0x12, 0, 0, 0, 4, 0, 0xFB, 0xFF});
}

TEST_F(VectorFile, ElementsResetTheSlotAndNoneDoNot) {
    for (const unsigned count : {0u, 2u})
        for (const char* mode : {"wb", "rb"}) {
            Grays vector = MakeGrays(count);
            const Platform::File file(path.c_str(), mode);
            KxSetError(KX_ERROR_SIZE_MISMATCH);
            vector.Serialize(file.Get(), *mode == 'w');
            EXPECT_EQ(KxGetError(), count ? KX_OK : KX_ERROR_SIZE_MISMATCH) << count << mode;
        }
}

TEST_F(VectorFile, NarrowRunsRefuseWideAddressesBeforeWriting) {
    KxVectorTemplate<KxRun> runs(2);
    runs[1].pBeg = Address(std::uint64_t{1} << 32);
    const Platform::File file(path.c_str(), "wb");
    runs.Serialize(file.Get(), 1, 1);
    EXPECT_EQ(KxGetError(), KX_ERROR_UNSUPPORTED_FILE_VERSION);
    EXPECT_EQ(Platform::Position(file.Get()), 0);
}

TEST_F(VectorFile, RefusesForeignHeadersAndKeepsTheVector) {
    const std::tuple<const char*, Bytes, KX_ERRORS> kFiles[] = {
        {"16-bit elements", {0x4B, 2, 1, 0x48, 1, 0, 0, 0, 42}, KX_ERROR_BAD_FILE_FORMAT},
        {"version 2, which only runs have", {0x4B, 1, 2, 0x48, 1, 0, 0, 0, 42}, KX_ERROR_BAD_FILE_FORMAT},
        {"version 0", {0x4B, 1, 0, 0x4A, 1, 0, 0, 0, 42}, KX_ERROR_BAD_FILE_FORMAT},
        {"wrong checksum", {0x4B, 1, 1, 0x4A, 1, 0, 0, 0, 42}, KX_ERROR_BAD_FILE_FORMAT},
        {"wrong signature", {0x4A, 1, 1, 0x4A, 1, 0, 0, 0, 42}, KX_ERROR_BAD_FILE_FORMAT},
        {"cut in the header", {0x4B, 1, 1}, KX_ERROR_FILE_READ},
        {"cut in the count", {0x4B, 1, 1, 0x4B, 1, 0, 0}, KX_ERROR_FILE_READ},
    };
    Grays vector = MakeGrays(3);
    for (const auto& [what, contents, code] : kFiles) {
        vector.Load(folder.Write("v", contents).c_str());
        EXPECT_EQ(KxGetError(), code) << what;
        EXPECT_EQ(BytesOf(vector), (Bytes{1, 8, 15})) << what;
    }
}

TEST_F(VectorFile, BelievesACountOnlyAsFarAsTheFileBearsItOut) {
    const std::tuple<unsigned, unsigned, KX_ERRORS> kFiles[] = {
        {kMiB, 0, KX_ERROR_FILE_READ},
        {kMiB + 1, 0, KX_ERROR_ALLOCATION},
        {16 * 100000, 100000, KX_ERROR_FILE_READ},
        {16 * 100000 + 1, 100000, KX_ERROR_ALLOCATION},
        {0xFFFFFFFF, 100000, KX_ERROR_ALLOCATION},
        {5, 2, KX_ERROR_FILE_READ},       // zeros replace what the vector held
        {2 * kMiB, 2 * kMiB + 1, KX_OK},  // what follows the last element is ignored
    };
    for (const auto& [declared, present, code] : kFiles) {
        Grays vector = MakeGrays(5);
        Bytes elements(present, 3);
        vector.Load(folder.Write("v", GraysFile(declared, elements)).c_str());
        EXPECT_EQ(KxGetError(), code) << declared;
        elements.resize(code == KX_ERROR_ALLOCATION ? 0 : declared);
        EXPECT_TRUE(BytesOf(vector) == elements) << declared;
        EXPECT_EQ(vector.GetMaxElements(), code == KX_ERROR_ALLOCATION ? 5 : declared) << "memory was taken";
    }
}

// A pipe does not tell how much it holds.
TEST_F(VectorFile, IsReadFromAPipe) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    for (const auto& [delivered, kept, code] :
         {std::tuple(20 * kMiB, 20 * kMiB, KX_OK), {10u, kMiB, KX_ERROR_FILE_READ}}) {
        Bytes elements = BytesOf(MakeGrays(delivered));
        std::thread writer([&] { folder.Write("v", GraysFile(20 * kMiB, elements)); });
        Grays vector;
        vector.Load(path.c_str());
        writer.join();
        EXPECT_EQ(KxGetError(), code);
        elements.resize(kept);
        EXPECT_TRUE(BytesOf(vector) == elements);
    }
}

TEST_F(VectorFile, ReportsWhereSavingAndLoadingFail) {
    const std::tuple<std::string, std::string, unsigned, KX_ERRORS> kFailures[] = {
        {folder.File("missing/v"), "KxVector::Save", 1, KX_ERROR_FILE_OPEN},
        {folder.File("missing/v"), "KxVector::Load", 1, KX_ERROR_FILE_OPEN},
        // Takes what the stream buffers and refuses the rest.
        {"/dev/full", "KxVector::Save", 1, KX_ERROR_FILE_CLOSE},
        {"/dev/full", "KxVector::Save", kMiB, KX_ERROR_FILE_WRITE},
    };
    for (const auto& [name, function, count, code] : kFailures) {
        const TraceRecorder recorder;
        Grays vector = MakeGrays(count);
        const bool saves = function == "KxVector::Save";
        saves ? vector.Save(name.c_str()) : vector.Load(name.c_str());
        saves ? vector.Save(Wide(name).c_str()) : vector.Load(Wide(name).c_str());
        EXPECT_EQ(KxGetError(), code) << name;
        EXPECT_EQ(recorder.Functions(), (std::vector{function, function + " ( Unicode)"}));
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
