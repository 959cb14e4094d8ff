// The program `kalvo` from outside: what it writes, says and returns.

#include "tests/apps/program.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

namespace Zelkor::Kalvo::Testing {
namespace {

using nlohmann::json;
using testing::HasSubstr;

// Half a pair, a, and a whole pair.
constexpr unsigned short kLoneSurrogate[] = {0xD800, 'a', 0xD83D, 0xDE00, 0};

// A folder with an image of 2 x 2 pixels as BMP, TIFF, JPEG and archive, a grey one of noise, and other
// files.
class KalvoProgram : public Program {
protected:
    KalvoProgram() {
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
        FillPattern(noise, 1);
        noise.Save(Path("noise.tif").c_str());
        for (const char* name : {"photo.jpg", "up.jpg", "label.bmp"}) noise.Save(Path(name).c_str());
        folder.Write("text.txt", Bytes(100, 'x'));
        folder.Write("empty", {});
        std::filesystem::create_directory(Path("out"));
    }

    KxImage<KxC24> picture{2, 2};
    KxImage<KxBW8> noise{64, 64};
};

// What is run, its exit code, and what its messages or, without any, its output hold.
const std::tuple<const char*, int, const char*> kRuns[] = {
    {"kalvo", 2, "A subcommand is required"},
    {"kalvo -V", 0, "kalvo 6.7.1\n"},
    {"kalvo help convert", 0, "kalvo convert photo.jpg photo.png"},
    {"kalvo convert picture.bmp out.bmp --roi garbage", 2, "--roi"},
    {"kalvo convert picture.bmp out.bmp --roi=0,-1,1,1", 2, "--roi"},
    {"kalvo convert picture.bmp out.bmp --type c23", 2, "c23 is none of bw1, "},
    {"kalvo draw picture.bmp out.png --lut gain:1,0", 2, "gain:1,0 is neither "},
    {"kalvo draw picture.bmp out.png --mask ring --mask ring", 2, "more masks than regions"},
    {"kalvo plot picture.bmp out.png --size 0x9", 2, "0x9 is not WIDTHxHEIGHT"},
    {"kalvo info picture.bmp missing.bmp", 1,
     "kalvo: missing.bmp: cannot be opened: No such file or directory (1102)"},
    {"kalvo info out", 1, "kalvo: out: is a folder"},
    {"kalvo info empty", 1, "kalvo: empty: is empty"},
    {"kalvo info text.txt", 1, "is neither BMP, TIFF, JPEG, PNG nor an archive; it begins with 78 78"},
    {"kalvo info \"$(printf 'a\\nb')\"", 1, "kalvo: a\\x0ab: "},
    {"kalvo archive picture.bmp", 1, "picture.bmp: Bad file format"},
    {"kalvo convert picture.bmp out.xyz", 1, "out.xyz: the name has no extension that tells a format"},
    {"kalvo convert picture.bmp a.bmp --roi 1,1,2,1", 1, "picture.bmp: the part reaches beyond the image"},
    {"kalvo convert picture.bmp a.tif --file-type tiff-gray", 1, "try --type bw8"},
    {"kalvo convert picture.bmp none/a.png", 1, "none/a.png: cannot be written: No such file or directory"},
    {"kalvo convert picture.bmp /dev/full --format bmp", 1, "/dev/full: cannot be written: No space left"},
    {"kalvo convert picture.bmp noise.tif empty --format png", 1, "empty: is no folder for several files"},
    {"kalvo --no-clobber convert picture.bmp empty --format png", 1, "exists already"},
    {"kalvo pixel picture.bmp 0,2", 1, "0,2 lies outside of 2 x 2 pixels"},
    {"kalvo fields up.jpg picture.bmp a.bmp", 1, "the JPEG codec fails"},
    {"kalvo resize noise.tif a.tif --scale 2 && kalvo convert a.tif a.tif --type bw1 && kalvo resize a.tif "
     "b.tif --scale 2",
     1, "Images of type bw1 cannot be resized"},
    // What works.
    {"kalvo pixel picture.tif 0,1 1,1", 0, "0,1: 255 0 0\n1,1: 132 130 132\n"},
    {"kalvo compare picture.bmp picture.tif", 0, "the same\n"},
    {"kalvo compare picture.bmp noise.tif", 1, "different kinds: c24, 2 x 2 and bw8, 64 x 64 pixels\n"},
    {"kalvo convert picture.bmp - --format png | kalvo compare - picture.bmp", 0, "the same\n"},
    {"kalvo convert noise.tif n.PNG && kalvo convert n.PNG n.tiff && kalvo compare n.tiff noise.tif", 0,
     "the same\n"},
    {"kalvo convert noise.tif noise.tif && kalvo compare noise.tif label.bmp", 0, "the same\n"},
    {"kalvo convert tree.kxa lost.bmp", 0,
     "tree.kxa: its regions are left out\nkalvo: lost.bmp: the format does not keep texts\n"},
    {"kalvo info --stats label.bmp", 0, "levels          0 to 255"},
    {"kalvo convert picture.bmp label.bmp missing out --format tiff; ls out", 0, "2 converted, 1 failed"},
    {"kalvo batch . all --format kxa --type bw8", 0, "converted, 0 failed\n"},
    {"kalvo archive tree.kxa", 0,
     "tree.kxa\n  image c24, 2 x 2 pixels, pixel size 0.1 x 0.2 mm, title \"gr\uFFFDn\", "
     "commentUnicode \"\uFFFDa\U0001F600\"\n    region c24 at (0, 0), 2 x 2 pixels\n"
     "      region c24 at (1, 0), 1 x 2 pixels, title \"inner\"\n"},
    {"kalvo convert noise.tif good.jpg && kalvo convert noise.tif poor.jpg --quality 10 && "
     "test $(stat -c %s good.jpg) -gt $((2 * $(stat -c %s poor.jpg)))",
     0, ""},
    {"kalvo relief photo.jpg a.bmp --angles 0,0 --scale 1,1,0 --point 1 --size 64x64 && kalvo compare a.bmp "
     "photo.jpg",
     0, "the same\n"},
    {"kalvo histogram3d picture.bmp a.png --size 80x60 && kalvo info a.png", 0, "80 x 60 pixels"},
    {"kalvo plot noise.tif a.png && kalvo info a.png", 0, "800 x 400 pixels"},
    {"kalvo plot noise.tif a.png --size 1x1 && kalvo info a.png", 0, "1 x 1 pixels"},
    {"kalvo plot picture.bmp a.SVG --row 1 && grep -o '>[a-z0-9]*<' a.SVG | tr -d '\\n<'", 0,
     ">0>50>100>150>200>250>300>0>1>level>column>blue>green>red"},
    {"kalvo draw tree.kxa a.svg --zoom 20 --roi 0,0,1,1 && grep -c '<image' a.svg", 0, "1\n"},
    {"kalvo draw tree.kxa out/none/a.svg", 1, "out/none/a.svg: cannot be written: No such file or directory"},
    {"kalvo draw tree.kxa a.png --zoom 20 --handles --roi 0,0,1,1 --mask ring && kalvo info a.png", 0,
     "40 x 40 pixels"},
    {"kalvo fields up.jpg photo.jpg a.bmp --scale half && kalvo info a.bmp", 0, "32 x 64 pixels"},
    {"kalvo resize tree.kxa a.kxa --size 4x1 && kalvo info a.kxa", 0, "pixel size      0.05 x 0.4"},
    {"printf 'source %s\nt() { COMP_WORDS=(%s \"$@\"); COMP_CWORD=$#; _kalvo; echo \"${COMPREPLY[@]}\"; }\nt "
     "co\nt draw "
     "--z\nt convert --type c\n' " KALVO_COMPLETION " " KALVO_PROGRAM " >t.sh && bash t.sh",
     0, "compare convert\n--zoom\nc15 c16 c24 c24a\n"},
    {"for byte in 85 170; do MALLOC_PERTURB_=$byte kalvo tour photo.jpg --output $byte >/dev/null; done && "
     "diff -r 85 170",
     0, ""},  // whatever the heap held before
    {"kalvo error 1414", 0, "1414: ROI out of parent limits - Resize to fit in image\n"},
    {"kalvo error >codes && tail -n +5 " KALVO_ERROR_CODES " | diff codes -", 0, ""},
    {"kalvo tour photo.jpg --output files", 0, "28 checks passed, 0 failed; files in files"},
};

TEST_F(KalvoProgram, DoesAndSaysWhatTheTableTells) {
    for (const auto& [command, exitCode, text] : kRuns) {
        const Outcome outcome = Run(command);
        EXPECT_EQ(outcome.exitCode, exitCode) << command << '\n' << outcome.errors;
        EXPECT_THAT(outcome.errors + outcome.output, HasSubstr(text)) << command;
    }
}

TEST_F(KalvoProgram, RunsTheExamplesOfItsHelp) {
    const std::string verbs =
        Run("kalvo --help | sed -n '/Subcommands/,/Examples/p' | awk '/^  [a-z]/ {print $1}'").output;
    std::istringstream lines(verbs);
    for (std::string verb; std::getline(lines, verb);) {
        const std::string examples =
            Run("kalvo " + verb + " --help | sed -n '/^Examples:/,$p' | grep '^  kalvo " + verb + " '")
                .output;
        EXPECT_NE(examples, "") << verb;
        std::istringstream commands(examples);
        for (std::string command; std::getline(commands, command);)
            EXPECT_EQ(Run(command).exitCode, 0) << command << '\n' << Text("err.log");
    }
}

TEST_F(KalvoProgram, ConvertsEveryPixelTypeThereAndBack) {
    const char* const grays = "0 0 0 255 255 255 76 76 76 131 131 131";
    const char* const colors = "0 0 0 255 255 255 255 0 0 132 130 132";
    const std::pair<std::string, const char*> conversions[] = {
        {"bw1", "0 0 0 255 255 255 0 0 0 255 255 255"},   {"bw8", grays},  {"bw16", grays}, {"bw32", grays},
        {"c15", "0 0 0 255 255 255 255 0 0 132 132 132"}, {"c16", colors}, {"c24", colors}, {"c24a", colors}};
    for (const auto& [type, pixels] : conversions)
        EXPECT_EQ(Run("kalvo convert picture.bmp there.kxa --type " + type +
                      " && kalvo convert there.kxa back.bmp --type c24 && "
                      "kalvo pixel back.bmp 0,0 1,0 0,1 1,1 | sed 's/.*: //' | tr '\\n' ' '")
                      .output,
                  pixels + std::string(" "))
            << type;
}

TEST_F(KalvoProgram, DescribesFilesAsJsonWhateverTheirTexts) {
    const Outcome outcome = Run("kalvo info --json tree.kxa text.txt picture.tif");
    EXPECT_EQ(outcome.exitCode, 1);
    const json files = json::parse(outcome.output);
    const json& image = files.at(0)["objects"][0];
    EXPECT_EQ(files[0]["format"], "archive");
    EXPECT_EQ(image["texts"],
              json::parse(R"({"title": "gr\ufffdn", "commentUnicode": "\ufffda\ud83d\ude00"})"));
    EXPECT_EQ(image["pixelSize"], json::parse(R"({"width": 0.1, "height": 0.2, "unit": "mm"})"));
    EXPECT_EQ(image["regions"][0]["regions"][0]["x"], 1);
    EXPECT_EQ(files[1]["error"]["code"], KX_ERROR_BAD_FILE_FORMAT);
    EXPECT_EQ(files[2]["schema"], "kalvo-info-1");
    EXPECT_EQ(files[2]["format"], "tiff-color");
}

TEST_F(KalvoProgram, WritesArchivesThatAReaderByTheDocumentationReads) {
    for (const std::string type : {"bw1", "bw16", "c15", "c24a", "tree"}) {
        Run("kalvo convert tree.kxa " + type + ".kxa --type " + type);
        json written = json::parse(Run("kalvo archive --json " + type + ".kxa").output).at(0)["objects"][0];
        const json read =
            json::parse(Run("python3 " KALVO_ARCHIVE_READER " " + type + ".kxa").output)["objects"][0];
        written.erase("resolution");
        json merged = read;
        merged.merge_patch(written);
        EXPECT_EQ(merged, read) << type;
        EXPECT_FALSE(read["pixels"].get<std::string>().empty());
    }
}

// The old file or the new one, with the old one's permissions, and nothing beside it.
TEST_F(KalvoProgram, WritesFilesWholeOrNotAtAll) {
    const Bytes old = folder.Read("label.bmp");
    chmod(Path("label.bmp").c_str(), 0640);
    const char* const failing[] = {
        "ulimit -f 1; trap '' XFSZ; kalvo convert picture.bmp label.bmp --type c24 && kalvo resize noise.tif "
        "label.bmp --scale 9",
        "mkfifo pipe; (kalvo convert - label.bmp <pipe & pid=$!; exec 3>pipe; sleep 0.1; kill $pid; wait "
        "$pid)"};
    EXPECT_NE(Run(std::string("cp label.bmp kept.bmp; ") + failing[0]).exitCode, 0);
    EXPECT_NE(Run(failing[1]).exitCode, 0);
    EXPECT_EQ(Run("ls -A | grep -c '^.kalvo'").output, "0\n");
    EXPECT_EQ(Run("ln -s label.bmp link.bmp && kalvo convert picture.bmp link.bmp && test -h link.bmp && "
                  "stat -c %a label.bmp")
                  .output,
              "640\n");
    EXPECT_NE(folder.Read("label.bmp"), old);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
