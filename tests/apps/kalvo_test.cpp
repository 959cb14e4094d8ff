// The program `kalvo` from outside: what it writes, says and returns.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>

#include "kalvo/kalvo.h"
#include "tests/support/temporary_folder.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

constexpr unsigned short kLoneSurrogate[] = {0xD800, 'a', 0xD83D, 0xDE00,
                                             0};  // half a pair, a, and a whole pair

struct Outcome {
    int exitCode;
    std::string output;
    std::string errors;
};

class Program : public testing::Test {
protected:
    Program() {
        KxSetTraceMode(KX_TRACE_MODE_SILENT);
        KxOk();
        // Black, white, red, and a grey whose bits fit all pixel types.
        picture.SetPixel(KxC24(0, 0, 0), 0, 0);
        picture.SetPixel(KxC24(255, 255, 255), 1, 0);
        picture.SetPixel(KxC24(255, 0, 0), 0, 1);
        picture.SetPixel(KxC24(132, 130, 132), 1, 1);
        picture.SetTitle("gr\xFCn");  // not UTF-8
        picture.SetComment(kLoneSurrogate);
        picture.SetPixelDimensions(0.1f, 0.2f, &KxUnit_mm);
        picture.Save(Path("picture.bmp").c_str());
        picture.Save(Path("picture.tif").c_str());
        SaveArchive();
        folder.Write("broken.bmp", {'B', 'M', 1, 2, 3});
        folder.Write("text.txt", Bytes(100, 'x'));
    }

    void SaveArchive() {
        KxROI<KxC24> outer(&picture, 0, 0, 2, 2), inner(&outer, 1, 0, 1, 2);
        inner.SetTitle("inner");
        const std::unique_ptr<KxSerializer> writer(KxSerializer::CreateFileWriter(Path("tree.kxa")));
        picture.Save(writer.get());
    }

    std::string Path(const std::string& name) const { return folder.File(name); }

    /// Runs the program in the folder.
    Outcome Run(const std::string& arguments) const {
        const std::string command =
            "cd '" + Path("") + "' && '" KALVO_PROGRAM "' " + arguments + " >out.log 2>err.log";
        const int status = std::system(command.c_str());
        return {WEXITSTATUS(status), Text("out.log"), Text("err.log")};
    }

    std::string Text(const std::string& name) const {
        const Bytes bytes = folder.Read(name);
        return {bytes.begin(), bytes.end()};
    }

    TemporaryFolder folder;
    KxImage<KxC24> picture{2, 2};
};

TEST_F(Program, TellsUsageFailureAndSuccessByItsExitCode) {
    const struct {
        const char* arguments;
        int exitCode;
        std::string errors;  // how they start
    } runs[] = {
        {"", 2, "kalvo: A subcommand is required"},
        {"frobnicate", 2, "kalvo: A subcommand is required"},
        {"info", 2, "kalvo: FILE is required"},
        {"convert picture.bmp out.bmp --roi garbage", 2, "kalvo: --roi"},
        {"convert picture.bmp out.bmp --roi 0,0,1", 2, "kalvo: --roi"},
        {"convert picture.bmp out.bmp --roi=0,-1,1,1", 2, "kalvo: --roi"},
        {"convert picture.bmp out.bmp --roi 0,0,0,1", 2, "kalvo: --roi"},
        {"convert picture.bmp out.bmp --type c23", 2, "kalvo: --type: c23 is none of bw1, "},
        {"convert picture.bmp out.bmp --file-type 9", 2, "kalvo: --file-type: 9 is none of "},
        {"convert picture.bmp out.bmp --quality 101", 2, "kalvo: --quality"},
        {"convert picture.bmp out.bmp --threshold 256", 2, "kalvo: --threshold"},
        {"convert picture.bmp out.bmp --strip-size -1", 2, "kalvo: Could not convert: --strip-size"},
        {"info picture.bmp missing.bmp", 1, "kalvo: missing.bmp: File could not be opened - "},
        {"info text.txt", 1, "kalvo: text.txt: Bad file format - Check file source or contents (1105)\n"},
        {"info broken.bmp", 1, "kalvo: broken.bmp: File error while reading - "},
        {"archive picture.bmp", 1, "kalvo: picture.bmp: Bad file format - "},
        {"convert picture.bmp out.xyz", 1, "kalvo: out.xyz: Missing or unsupported file extension - "},
        {"convert picture.bmp out.bmp --roi 1,1,2,1", 1, "kalvo: picture.bmp: ROI out of parent limits - "},
        {"convert picture.bmp out.tif --file-type tiff-gray", 1, "kalvo: out.tif: Color format expected - "},
        {"tour missing.jpg", 1, "kalvo: missing.jpg: File could not be opened - "},
        {"convert picture.bmp out.TIF --type BW8 --file-type tiff-gray-packbits", 0, ""},
    };
    for (const auto& run : runs) {
        const Outcome outcome = Run(run.arguments);
        EXPECT_EQ(outcome.exitCode, run.exitCode) << run.arguments;
        EXPECT_THAT(outcome.errors, StartsWith(run.errors)) << run.arguments;
        EXPECT_EQ(outcome.errors.empty(), run.exitCode == 0) << run.arguments;
    }
}

TEST_F(Program, TellsItsVersionAndItsCommands) {
    EXPECT_EQ(Run("--version").output, "kalvo 6.7.1\n");
    const Outcome help = Run("--help");
    EXPECT_EQ(help.exitCode, 0);
    for (const char* command : {"info", "archive", "convert", "tour"})
        EXPECT_THAT(help.output, HasSubstr(command));
}

TEST_F(Program, ConvertsEveryPixelTypeThereAndBack) {
    using Pixels = std::array<KxC24, 4>;
    const KxC24 black(0, 0, 0), white(255, 255, 255), red(255, 0, 0), gray(131, 131, 131),
        darkRed(76, 76, 76);
    const struct {
        const char* type;
        Pixels pixels;
    } conversions[] = {
        {"bw1", {black, white, black, white}},
        {"bw8", {black, white, darkRed, gray}},
        {"bw16", {black, white, darkRed, gray}},
        {"bw32", {black, white, darkRed, gray}},
        {"c15", {black, white, red, KxC24(132, 132, 132)}},
        {"c16", {black, white, red, KxC24(132, 130, 132)}},
        {"c24", {black, white, red, KxC24(132, 130, 132)}},
        {"c24a", {black, white, red, KxC24(132, 130, 132)}},
    };
    for (const auto& [type, pixels] : conversions) {
        ASSERT_EQ(Run(std::string("convert picture.bmp there.kxa --type ") + type).exitCode, 0) << type;
        EXPECT_EQ(json::parse(Run("info there.kxa --json").output)[0]["objects"][0]["type"], type);
        ASSERT_EQ(Run("convert there.kxa back.bmp --type c24").exitCode, 0) << type;
        KxImage<KxC24> back;
        back.Load(Path("back.bmp").c_str());
        const Pixels found = {back.GetPixel(0, 0), back.GetPixel(1, 0), back.GetPixel(0, 1),
                              back.GetPixel(1, 1)};
        EXPECT_EQ(found, pixels) << type;
    }
}

TEST_F(Program, LoadsBmpOf32BitsAsColor) {
    ASSERT_EQ(Run("convert picture.bmp deep.bmp --type c24a").exitCode, 0);
    EXPECT_EQ(json::parse(Run("info deep.bmp --json").output)[0]["objects"][0]["type"], "c24a");
}

TEST_F(Program, AppliesThresholdQualityAndStripSize) {
    Run("convert picture.bmp dark.bmp --type bw1 --threshold 132");
    KxImage<KxBW1> dark;
    dark.Load(Path("dark.bmp").c_str());
    EXPECT_EQ(dark.GetPixel(1, 1), 0);

    KxImage<KxBW8> gradient(64, 64);
    for (int i = 0; i < 64 * 64; ++i) gradient.SetPixel(static_cast<std::uint8_t>(i * i), i % 64, i / 64);
    gradient.Save(Path("gradient.tif").c_str());
    Run("convert gradient.tif good.jpg --quality 95");
    Run("convert gradient.tif poor.jpg --quality 10");
    EXPECT_GT(folder.Read("good.jpg").size(), 2 * folder.Read("poor.jpg").size());
    Run("convert gradient.tif one.tif --strip-size 0");
    Run("convert gradient.tif many.tif --strip-size 64");
    EXPECT_EQ(folder.Read("many.tif").size(), folder.Read("one.tif").size() + 64 * 8);
}

TEST_F(Program, CropsAndKeepsTextsAndPixelSize) {
    ASSERT_EQ(Run("convert tree.kxa part.kxa --roi 0,1,2,1").exitCode, 0);
    const std::unique_ptr<KxSerializer> reader(KxSerializer::CreateFileReader(Path("part.kxa")));
    KxImage<KxC24> part;
    part.Load(reader.get());
    ASSERT_EQ(part.GetExtent(), GenericRoiExtent(0, 0, 2, 1));
    EXPECT_EQ(part.GetPixel(0, 0), KxC24(255, 0, 0));
    EXPECT_STREQ(part.GetTitle(), "gr\xFCn");
    EXPECT_EQ(std::basic_string_view(part.GetCommentUnicode()), std::basic_string_view(kLoneSurrogate));
    float width, height;
    const KxMeasurementUnit* unit;
    part.GetPixelDimensions(width, height, unit);
    EXPECT_EQ(std::tuple(width, height, std::string(unit->GetName())), std::tuple(0.1f, 0.2f, "mm"));
}

TEST_F(Program, DescribesFilesAsJsonWhateverTheirTexts) {
    const Outcome outcome = Run("info --json tree.kxa text.txt picture.tif");
    EXPECT_EQ(outcome.exitCode, 1);
    const json files = json::parse(outcome.output);
    ASSERT_EQ(files.size(), 3u);

    const json& image = files[0]["objects"][0];
    EXPECT_EQ(files[0]["format"], "archive");
    EXPECT_EQ(image["texts"],
              json::parse(R"({"title": "gr\ufffdn", "commentUnicode": "\ufffda\ud83d\ude00"})"));
    EXPECT_EQ(image["pixelSize"], json::parse(R"({"width": 0.1, "height": 0.2, "unit": "mm"})"));
    const json& inner = image["regions"][0]["regions"][0];
    EXPECT_EQ(inner["object"], "region");
    EXPECT_EQ(std::tuple(inner["x"], inner["y"], inner["width"], inner["height"]), std::tuple(1, 0, 1, 2));

    EXPECT_EQ(files[1]["error"]["code"], KX_ERROR_BAD_FILE_FORMAT);
    EXPECT_EQ(files[2]["format"], "tiff-color");
    EXPECT_EQ(files[2]["fileType"], IMAGE_FILE_TIFF_COLOR);
}

TEST_F(Program, PrintsTheTreeOfAnArchive) {
    EXPECT_EQ(Run("archive tree.kxa").output,
              "tree.kxa\n"
              "  image c24, 2 x 2 pixels, pixel size 0.1 x 0.2 mm, title \"gr\uFFFDn\", "
              "commentUnicode \"\uFFFDa\U0001F600\"\n"
              "    region c24 at (0, 0), 2 x 2 pixels\n"
              "      region c24 at (1, 0), 1 x 2 pixels, title \"inner\"\n");
}

TEST_F(Program, TakesAPictureOnTheTour) {
    KxImage<KxC24> photo(80, 60);
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 80; ++x) {
            const auto shade = static_cast<std::uint8_t>(3 * x);
            photo.SetPixel(KxC24(shade, static_cast<std::uint8_t>(4 * y), 128), x, y);
        }
    photo.Save(Path("photo.jpg").c_str());
    const Outcome outcome = Run("tour photo.jpg --output files");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.output << outcome.errors;
    EXPECT_THAT(outcome.output, HasSubstr("\n23 checks passed, 0 failed; files in files\n"));
    EXPECT_EQ(Run("archive files/tour.kxa").exitCode, 0);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
