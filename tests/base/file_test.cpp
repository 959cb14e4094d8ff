// Files with UTF-16 names, their size and position, and how their end is reported.

#include "tests/support/test.h"

#include "kalvo/base/file.h"

namespace Zelkor::Platform {
namespace {

using Kalvo::Testing::TemporaryFolder;
using Units = std::basic_string<unsigned short>;

TEST(FileName, TurnsUtf16IntoUtf8) {
    EXPECT_EQ(Utf8FromUtf16(Units{'a', 0x7F, 0x80, 0x7FF}.c_str()), "a\x7F\xC2\x80\xDF\xBF");
    EXPECT_EQ(Utf8FromUtf16(Units{0x800, 0xD7FF, 0xE000, 0xFFFD}.c_str()),
              "\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBD");
    EXPECT_EQ(Utf8FromUtf16(Units{0xD800, 0xDC00, 0xDBFF, 0xDFFF}.c_str()),
              "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
    // Surrogates alone, at the end, the wrong way round, one too many.
    for (const Units& broken :
         {Units{'a', 0xD83D, 'b'}, {'a', 0xD83D}, {0xDE00, 0xD83D}, {0xD83D, 0xD83D, 0xDE00}})
        EXPECT_EQ(Utf8FromUtf16(broken.c_str()), std::nullopt) << testing::PrintToString(broken);
}

TEST(File, OpensUtf16Names) {
    const TemporaryFolder folder;
    const Units kName = Kalvo::Testing::Wide(folder.File("")) + Units{0xE9, 0xD83D, 0xDE00};
    EXPECT_FALSE(File(kName.c_str(), "rb"));
    EXPECT_TRUE(File(kName.c_str(), "wb"));
    EXPECT_TRUE(std::filesystem::exists(folder.File("\xC3\xA9\xF0\x9F\x98\x80")));
    EXPECT_FALSE(File((kName + Units{0xD83D}).c_str(), "wb"));
    EXPECT_FALSE(File(Units().c_str(), "wb"));
    EXPECT_FALSE(File(static_cast<const unsigned short*>(nullptr), "wb"));
    EXPECT_FALSE(File(static_cast<const char*>(nullptr), "wb"));
}

TEST(File, ClosesItsStreamOnceAndTellsWhenThatLosesData) {
    const TemporaryFolder folder;
    File first(folder.File("first").c_str(), "wb"), full("/dev/full", "wb");
    std::fputs("text", first.Get());
    std::fputs("text", full.Get());
    first = std::move(full);  // closes the first file, so its text arrives
    EXPECT_EQ(folder.Read("first").size(), 4u);
    EXPECT_TRUE(full.Close()) << "nothing left to close";
    EXPECT_FALSE(first.Close());
    EXPECT_FALSE(first);
}

TEST(File, ReplacesAnotherWhenItIsWhole) {
    namespace files = std::filesystem;
    const TemporaryFolder folder;
    const std::string link = folder.File("link"), old = folder.Write("old", {'o'});
    files::create_symlink("old", link);
    files::permissions(old, files::perms::owner_read | files::perms::owner_write);
    for (const bool isWhole : {false, true}) {
        File file(link.c_str(), "w+b", File::Replacement::WhenWhole);
        std::fputs("new", file.Get());
        EXPECT_EQ(folder.Read("old").size(), 1u);
        EXPECT_TRUE(!isWhole || file.Close());
    }
    EXPECT_EQ(folder.Read("link").size(), 3u);
    EXPECT_TRUE(files::is_symlink(link));
    EXPECT_EQ(files::status(old).permissions(), files::perms::owner_read | files::perms::owner_write);
    EXPECT_EQ(std::distance(files::directory_iterator(folder.File("")), {}), 2);
    EXPECT_FALSE(File("/dev/full", "wb", File::Replacement::WhenWhole).Get() == nullptr);
    EXPECT_FALSE(File(folder.File("").c_str(), "wb", File::Replacement::WhenWhole));
}

TEST(File, MeasuresItselfWithoutMoving) {
    const TemporaryFolder folder;
    const File file(folder.Write("ten", Kalvo::Testing::Bytes(10, 'x')).c_str(), "r+b");
    EXPECT_TRUE(Seek(file.Get(), 4));
    EXPECT_EQ(SizeOf(file.Get()), 10);
    EXPECT_EQ(Position(file.Get()), 4);
    EXPECT_TRUE(Seek(file.Get(), std::int64_t{5} << 30)) << "positions beyond 32 bits";
    EXPECT_EQ(std::fputc('y', file.Get()), 'y');
    EXPECT_EQ(SizeOf(file.Get()), (std::int64_t{5} << 30) + 1) << "bytes still buffered count";
    EXPECT_FALSE(Seek(file.Get(), -1));
}

}  // namespace
}  // namespace Zelkor::Platform
