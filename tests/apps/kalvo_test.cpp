// The program `kalvo` from outside: what it writes, says and returns.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <set>

#include "kalvo/kalvo.h"
#include "tests/support/pixel_bytes.h"
#include "tests/support/streams.h"
#include "tests/support/temporary_folder.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

// Half a pair, a, and a whole pair.
constexpr unsigned short kLoneSurrogate[] = {0xD800, 'a', 0xD83D, 0xDE00, 0};

struct Outcome {
    int exitCode;
    std::string output;
    std::string errors;
};

// Width and height of a picture, as its file says.
std::pair<int, int> PngSize(const Bytes& file) {
    return file.size() < 24 ? std::pair(0, 0) : std::pair(file[18] << 8 | file[19], file[22] << 8 | file[23]);
}

class Program : public testing::Test {
protected:
    Program() {
        KxSetTraceMode(KX_TRACE_MODE_SILENT);
        // Black, white, red, and a grey whose bits fit all pixel types.
        SetPixelBytes(picture, {0, 0, 0, 255, 255, 255, 0, 0, 255, 132, 130, 132});
        picture.SetTitle("gr\xFCn");  // not UTF-8
        picture.SetComment(kLoneSurrogate);
        picture.SetPixelDimensions(0.1f, 0.2f, &KxUnit_mm);
        picture.Save(Path("picture.bmp").c_str());
        picture.Save(Path("picture.tif").c_str());
        KxROI<KxC24> outer(&picture, 0, 0, 2, 2), inner(&outer, 1, 0, 1, 2);
        inner.SetTitle("inner");
        picture.Save(Stream(KxSerializer::CreateFileWriter(Path("tree.kxa"))).get());
        folder.Write("text.txt", Bytes(100, 'x'));
    }

    std::string Path(const std::string& name) const { return folder.File(name); }

    // Runs the program in the folder.
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

    std::string TypeIn(const std::string& name) const {
        return json::parse(Run("info --json " + name).output)[0]["objects"][0]["type"];
    }

    TemporaryFolder folder;
    KxImage<KxC24> picture{2, 2};
};

TEST_F(Program, TellsUsageFailureAndSuccessByItsExitCode) {
    // What is run, its exit code, and how its messages start.
    const std::tuple<std::string, int, std::string> runs[] = {
        {"", 2, "kalvo: A subcommand is required"},
        {"convert picture.bmp out.bmp --roi garbage", 2, "kalvo: --roi"},
        {"convert picture.bmp out.bmp --roi=0,-1,1,1", 2, "kalvo: --roi"},
        {"convert picture.bmp out.bmp --type c23", 2, "kalvo: --type: c23 is none of bw1, "},
        {"convert picture.bmp out.bmp --file-type 9", 2, "kalvo: --file-type: 9 is none of "},
        {"convert picture.bmp out.bmp --strip-size -1", 2, "kalvo: Could not convert: --strip-size"},
        {"info picture.bmp missing.bmp", 1, "kalvo: missing.bmp: File could not be opened - "},
        {"info text.txt", 1, "kalvo: text.txt: Bad file format - Check file source or contents (1105)\n"},
        {"archive picture.bmp", 1, "kalvo: picture.bmp: Bad file format - "},
        {"convert picture.bmp out.xyz", 1, "kalvo: out.xyz: Missing or unsupported file extension - "},
        {"convert picture.bmp out.bmp --roi 1,1,2,1", 1, "kalvo: picture.bmp: ROI out of parent limits - "},
        {"convert picture.bmp out.tif --file-type tiff-gray", 1, "kalvo: out.tif: Color format expected - "},
        {"draw picture.bmp out.png --roi 0,0,1", 2, "kalvo: --roi: 0,0,1 is not X,Y,"},
        {"draw picture.bmp out.png --mask star", 2, "kalvo: --mask: star is none of "},
        {"draw picture.bmp out.png --mask ring --mask ring", 2, "kalvo: --mask: there are more "},
        {"draw picture.bmp out.png --lut gain:1,0", 2, "kalvo: --lut: gain:1,0 is neither "},
        {"draw picture.bmp out.png --lut threshold:7", 1, "kalvo: out.png: Unsupported image type - "},
        {"draw picture.bmp none/out.png", 1, "kalvo: none/out.png: "},
        {"plot picture.bmp out.png --row 0 --column 0", 2, "kalvo: "},
        {"plot picture.bmp out.png --size 0x9", 2, "kalvo: --size: 0x9 is not WIDTHxHEIGHT"},
        {"plot picture.bmp out.png --column 2", 1, "kalvo: out.png: ROI out of parent limits - "},
        {"convert picture.bmp out.TIF --type BW8 --file-type tiff-gray-packbits", 0, ""},
    };
    for (const auto& [arguments, exitCode, errors] : runs) {
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, exitCode) << arguments;
        EXPECT_THAT(outcome.errors, StartsWith(errors)) << arguments;
        EXPECT_EQ(outcome.errors.empty(), exitCode == 0) << arguments;
    }
    EXPECT_EQ(Run("--version").output, "kalvo 6.7.1\n");
    EXPECT_THAT(Run("--help").output, AllOf(HasSubstr("info"), HasSubstr("convert"), HasSubstr("tour")));
}

TEST_F(Program, ConvertsEveryPixelTypeThereAndBack) {
    const Bytes grays{0, 0, 0, 255, 255, 255, 76, 76, 76, 131, 131, 131};
    const Bytes colors = PixelBytes(picture);
    const std::pair<std::string, Bytes> conversions[] = {
        {"bw1", {0, 0, 0, 255, 255, 255, 0, 0, 0, 255, 255, 255}},
        {"bw8", grays},
        {"bw16", grays},
        {"bw32", grays},
        {"c15", {0, 0, 0, 255, 255, 255, 0, 0, 255, 132, 132, 132}},
        {"c16", colors},
        {"c24", colors},
        {"c24a", colors},
    };
    for (const auto& [type, pixels] : conversions) {
        ASSERT_EQ(Run("convert picture.bmp there.kxa --type " + type).exitCode, 0) << type;
        EXPECT_EQ(TypeIn("there.kxa"), type);
        ASSERT_EQ(Run("convert there.kxa back.bmp --type c24").exitCode, 0) << type;
        KxImage<KxC24> back;
        back.Load(Path("back.bmp").c_str());
        EXPECT_EQ(PixelBytes(back), pixels) << type;
    }
    ASSERT_EQ(Run("convert picture.bmp deep.bmp --type c24a").exitCode, 0);
    EXPECT_EQ(TypeIn("deep.bmp"), "c24a");
}

TEST_F(Program, AppliesThresholdQualityAndStripSize) {
    Run("convert picture.bmp dark.bmp --type bw1 --threshold 132");
    KxImage<KxBW1> dark;
    dark.Load(Path("dark.bmp").c_str());
    EXPECT_EQ(dark.GetPixel(1, 1), 0);

    KxImage<KxBW8> noise(64, 64);
    FillPattern(noise, 1);
    noise.Save(Path("noise.tif").c_str());
    Run("convert noise.tif good.jpg --quality 95");
    Run("convert noise.tif poor.jpg --quality 10");
    EXPECT_GT(folder.Read("good.jpg").size(), 2 * folder.Read("poor.jpg").size());
    Run("convert noise.tif one.tif --strip-size 0");
    Run("convert noise.tif many.tif --strip-size 64");
    EXPECT_EQ(folder.Read("many.tif").size(), folder.Read("one.tif").size() + 64 * 8);
}

TEST_F(Program, CropsAndKeepsTextsAndPixelSize) {
    ASSERT_EQ(Run("convert tree.kxa part.kxa --roi 0,1,2,1").exitCode, 0);
    KxImage<KxC24> part;
    part.Load(Stream(KxSerializer::CreateFileReader(Path("part.kxa"))).get());
    ASSERT_EQ(part.GetExtent(), GenericRoiExtent(0, 0, 2, 1));
    EXPECT_EQ(PixelBytes(part), (Bytes{0, 0, 255, 132, 130, 132}));
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
    EXPECT_EQ(std::tuple(inner["x"], inner["y"], inner["width"], inner["height"]), std::tuple(1, 0, 1, 2));
    EXPECT_EQ(files[1]["error"]["code"], KX_ERROR_BAD_FILE_FORMAT);
    EXPECT_EQ(files[2]["format"], "tiff-color");
}

TEST_F(Program, PrintsTheTreeOfAnArchive) {
    EXPECT_EQ(Run("archive tree.kxa").output,
              "tree.kxa\n"
              "  image c24, 2 x 2 pixels, pixel size 0.1 x 0.2 mm, title \"gr\uFFFDn\", "
              "commentUnicode \"\uFFFDa\U0001F600\"\n"
              "    region c24 at (0, 0), 2 x 2 pixels\n"
              "      region c24 at (1, 0), 1 x 2 pixels, title \"inner\"\n");
}

TEST_F(Program, InterlacesFieldsInEverySize) {
    const auto writeField = [&](const char* name, int height, std::uint8_t gray) {
        KxImage<KxBW8> field(20, height);
        SetPixelBytes(field, Bytes(20 * height, gray));
        field.Save(Path(name).c_str());
    };
    writeField("up.jpg", 8, 200);
    writeField("down.jpg", 8, 40);
    writeField("taller.jpg", 9, 40);
    const std::pair<std::string, GenericRoiExtent> sizes[] = {{"", {0, 0, 20, 16}},
                                                              {" --scale HALF", {0, 0, 10, 8}},
                                                              {" --scale quarter", {0, 0, 5, 4}},
                                                              {" --scale 3", {0, 0, 3, 2}}};
    for (const auto& [scale, extent] : sizes) {
        ASSERT_EQ(Run("fields up.jpg down.jpg frame.bmp" + scale).exitCode, 0) << scale;
        KxImage<KxC24> frame;
        frame.Load(Path("frame.bmp").c_str());
        EXPECT_EQ(frame.GetExtent(), extent);
        EXPECT_EQ(frame.GetPixel(2, 0), KxC24(200, 200, 200));
        EXPECT_EQ(frame.GetPixel(2, 1), KxC24(40, 40, 40));
    }
    EXPECT_EQ(Run("fields up.jpg taller.jpg frame.bmp").errors,
              "kalvo: up.jpg and taller.jpg: Unknown error code: 14991 (14991)\n");
    EXPECT_THAT(Run("fields up.jpg text.bmp frame.bmp").errors,
                StartsWith("kalvo: text.bmp: File could not be"));
    EXPECT_EQ(Run("fields up.jpg down.jpg frame.bmp --scale third").exitCode, 2);
}

TEST_F(Program, DrawsPictures) {
    KxImage<KxBW8> noise(60, 40);
    FillPattern(noise, 1);
    noise.Save(Path("noise.tif").c_str());
    const auto draw = [&](const std::string& arguments) {
        const Outcome outcome = Run("draw " + arguments.substr(0, arguments.find(' ')) + " out.png" +
                                    arguments.substr(arguments.find(' ')));
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        return folder.Read("out.png");
    };
    const Bytes plain = draw("noise.tif ");
    EXPECT_EQ(PngSize(plain), std::pair(60, 40));
    EXPECT_EQ(PngSize(draw("noise.tif --zoom 2.5")), std::pair(150, 100));
    EXPECT_EQ(draw("noise.tif --lut gain:1,0,1"), plain);
    // Each of these adds to the one before it, or replaces it.
    const std::string drawings[] = {"noise.tif ",
                                    "noise.tif --lut threshold:100",
                                    "noise.tif --roi 10,10,30,20",
                                    "noise.tif --roi 10,10,30,20 --handles",
                                    "noise.tif --roi 10,10,30,20 --handles --mask ellipse",
                                    "noise.tif --roi 10,10,30,20 --handles --mask ring",
                                    "noise.tif --roi 10,10,30,20 --roi 0,0,5,5 --mask rect --mask ring",
                                    "noise.tif --mask ring"};
    std::set<Bytes> pictures;
    for (const std::string& drawing : drawings) EXPECT_TRUE(pictures.insert(draw(drawing)).second) << drawing;
    EXPECT_NE(draw("tree.kxa "), draw("picture.bmp ")) << "regions of an archive are framed";
}

TEST_F(Program, PlotsProfilesAndHistograms) {
    const auto plot = [&](const std::string& arguments) {
        const Outcome outcome = Run("plot picture.bmp out.png " + arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        return folder.Read("out.png");
    };
    EXPECT_EQ(PngSize(plot("")), std::pair(800, 400));
    EXPECT_EQ(PngSize(plot("--size 300x200 --row 1")), std::pair(300, 200));
    EXPECT_EQ(plot("--histogram"), plot(""));
    EXPECT_EQ(plot("--column 1"), plot("--column 0 --roi 1,0,1,2"));
    EXPECT_NE(plot("--row 0"), plot("--row 1"));
    for (const char* type : {"bw1", "bw8", "bw16", "bw32", "c15", "c16", "c24a"}) {
        Run("convert picture.bmp typed.kxa --type " + std::string(type));
        for (const char* kind : {"--row 0", "--histogram"})
            EXPECT_EQ(Run("plot typed.kxa out.png " + std::string(kind)).exitCode, 0) << type << kind;
    }
}

TEST_F(Program, ResizesAndTellsTheNewPixelSize) {
    ASSERT_EQ(Run("resize tree.kxa out.kxa --size 4x1").exitCode, 0);
    KxImage<KxC24> result;
    result.Load(Stream(KxSerializer::CreateFileReader(Path("out.kxa"))).get());
    EXPECT_EQ(PixelBytes(result), (Bytes{0, 0, 0, 0, 0, 0, 255, 255, 255, 255, 255, 255}));
    EXPECT_STREQ(result.GetTitle(), "gr\xFCn");
    float width, height;
    const KxMeasurementUnit* unit;
    result.GetPixelDimensions(width, height, unit);
    EXPECT_EQ(std::tuple(width, height), std::tuple(0.05f, 0.4f));

    ASSERT_EQ(Run("resize picture.bmp out.bmp --scale 2,0.5").exitCode, 0);
    KxImage<KxC24> scaled;
    scaled.Load(Path("out.bmp").c_str());
    EXPECT_TRUE(SamePixels(scaled, result));
    for (const std::string type : {"bw1", "bw8", "bw16", "bw32", "c15", "c16", "c24", "c24a"}) {
        Run("convert picture.bmp typed.kxa --type " + type);
        const Outcome outcome = Run("resize typed.kxa out.kxa --scale 3");
        if (type == "bw1" || type == "bw32")
            EXPECT_THAT(outcome.errors, HasSubstr("Images of type " + type + " cannot be resized (1418)"));
        else
            EXPECT_EQ(std::pair(outcome.exitCode, TypeIn("out.kxa")), std::pair(0, type));
    }
}

TEST_F(Program, RendersReliefsAndColorCubes) {
    KxImage<KxC24> photo(40, 30);
    FillPattern(photo, 1);
    photo.Save(Path("photo.bmp").c_str());
    Run("convert photo.bmp gray.tif --type bw8");
    const auto render = [&](const std::string& arguments) {
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << arguments << ": " << outcome.errors;
        return folder.Read("out.bmp");
    };
    const std::string fromAbove = " out.bmp --angles 0,0 --scale 1,1,0 --point 1 --size 40x30";
    EXPECT_EQ(render("relief photo.bmp" + fromAbove), folder.Read("photo.bmp"));
    EXPECT_EQ(render("relief photo.bmp --heights gray.tif" + fromAbove), folder.Read("photo.bmp"));
    EXPECT_EQ(render("relief gray.tif" + fromAbove),
              (Run("convert gray.tif gray.bmp"), folder.Read("gray.bmp")));
    EXPECT_EQ(render("relief photo.bmp out.bmp --angles -40,15"), render("relief photo.bmp out.bmp"));
    EXPECT_NE(render("relief photo.bmp out.bmp --angles 40,15"), render("relief photo.bmp out.bmp"));
    EXPECT_EQ(Run("relief photo.bmp out.bmp --heights picture.bmp").exitCode, 1);

    const Bytes cube = render("histogram3d photo.bmp out.bmp");
    EXPECT_EQ(
        cube,
        render("histogram3d photo.bmp out.bmp --coordinates photo.bmp --angles -155,35 --size 600x600"));
    EXPECT_NE(cube, render("histogram3d photo.bmp out.bmp --coordinates gray.tif"));
    EXPECT_EQ(Run("histogram3d photo.bmp out.bmp --size 600").exitCode, 2);
}

TEST_F(Program, TakesAPictureOnTheTour) {
    KxImage<KxC24> photo(80, 60);
    FillPattern(photo, 1);
    photo.Save(Path("photo.jpg").c_str());
    const Outcome outcome = Run("tour photo.jpg --output files");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.output << outcome.errors;
    for (const char* name : {"files/regions.png", "files/histogram.png", "files/profile.png"})
        EXPECT_GT(PngSize(folder.Read(name)).first, 0) << name;
    EXPECT_THAT(outcome.output, HasSubstr("\n28 checks passed, 0 failed; files in files\n"));
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
