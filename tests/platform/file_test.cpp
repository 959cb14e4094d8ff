// Files with UTF-16 names, their size and position, and how their end is reported.
#include "kalvo/platform/file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "tests/support/temporary_folder.h"

namespace Zelkor::Platform {
namespace {

using Kalvo::Testing::TemporaryFolder;
using Units = std::basic_string<unsigned short>;

TEST(FileName, TurnsUtf16IntoUtf8) {
    const struct {
        const char* what;
        Units units;
        std::optional<std::string> utf8;
    } kNames[] = {
        {"nothing", {}, ""},
        {"one byte each", {'a', 0x7F}, "a\x7F"},
        {"two bytes", {0x80, 0x7FF}, "\xC2\x80\xDF\xBF"},
        {"three bytes",
         {0x800, 0x20AC, 0xD7FF, 0xE000, 0xFFFD},
         "\xE0\xA0\x80\xE2\x82\xAC\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBD"},
        {"surrogate pairs",
         {0xD800, 0xDC00, 0xD83D, 0xDE00, 0xDBFF, 0xDFFF},
         "\xF0\x90\x80\x80\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF"},
        {"a high surrogate alone", {'a', 0xD83D, 'b'}, std::nullopt},
        {"a high surrogate at the end", {'a', 0xD83D}, std::nullopt},
        {"a low surrogate alone", {0xDE00, 'b'}, std::nullopt},
        {"a pair the wrong way round", {0xDE00, 0xD83D}, std::nullopt},
        {"two high surrogates", {0xD83D, 0xD83D, 0xDE00}, std::nullopt},
    };
    for (const auto& name : kNames) EXPECT_EQ(Utf8FromUtf16(name.units.c_str()), name.utf8) << name.what;
}

TEST(File, OpensUtf16Names) {
    const TemporaryFolder folder;
    const Units kFolder = Kalvo::Testing::Wide(folder.File(""));
    const Units kName = kFolder + Units{0xE9, 0xD83D, 0xDE00};
    EXPECT_FALSE(File(kName.c_str(), "rb"));
    EXPECT_TRUE(File(kName.c_str(), "wb"));
    EXPECT_TRUE(std::filesystem::exists(folder.File("\xC3\xA9\xF0\x9F\x98\x80")));

    const Units kBroken = kFolder + Units{'x', 0xD83D};
    EXPECT_FALSE(File(kBroken.c_str(), "wb"));
    const Units kEmpty;
    EXPECT_FALSE(File(kEmpty.c_str(), "wb"));
    EXPECT_FALSE(File(static_cast<const unsigned short*>(nullptr), "wb"));
    EXPECT_FALSE(File(static_cast<const char*>(nullptr), "wb"));
    const std::filesystem::directory_iterator files(folder.File(""));
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST(File, HasOneOwner) {
    const TemporaryFolder folder;
    File first(folder.File("first").c_str(), "wb");
    std::fputs("text", first.Get());
    File second(folder.File("second").c_str(), "wb");
    std::FILE* stream = second.Get();
    first = std::move(second);  // closes the first file, so its text arrives
    EXPECT_EQ(folder.Read("first").size(), 4u);
    EXPECT_EQ(first.Get(), stream);
    const File third(std::move(first));
    EXPECT_EQ(third.Get(), stream);
    EXPECT_FALSE(first);
    EXPECT_TRUE(first.Close()) << "nothing left to close";
}

TEST(File, TellsWhenClosingLosesData) {
    File full("/dev/full", "wb");
    std::fputs("text", full.Get());
    EXPECT_FALSE(full.Close());
    EXPECT_FALSE(full);
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

    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::FILE* pipeEnd = fdopen(ends[0], "rb");
    EXPECT_EQ(SizeOf(pipeEnd), -1) << "a pipe has no size";
    std::fclose(pipeEnd);
    close(ends[1]);
}

}  // namespace
}  // namespace Zelkor::Platform
