// The program `kalvo-view`: by scripts without a window, and in a window.

#include "tests/apps/program.h"

namespace Zelkor::Kalvo::Testing {
namespace {

// A dark image of 64 x 64 pixels, and a white one. A window of 640 x 640 shows ten pixels for one.
class Viewer : public Program {
protected:
    Viewer() {
        for (const auto& [name, value] : {std::pair("dark.bmp", 40), {"white.bmp", 255}}) {
            KxImage<KxBW8> image(64, 64);
            for (int i = 0; i < 64 * 64; ++i) image.SetPixel(value, i % 64, i / 64);
            image.Save(Path(name).c_str());
        }
    }

    Outcome RunScript(const std::string& script) const {
        folder.Write("script", Bytes(script.begin(), script.end()));
        return Run("view dark.bmp white.bmp --size 640x640 --script script");
    }
};

const std::string kDraw = "press 100 200 shift\nmove 299 399\nrelease\n";  // 10,20,20,20
const std::string kChild = kDraw + "press 150 250 shift\nmove 199 299\nrelease\n";

// What is done, and the regions after it.
const std::pair<std::string, const char*> kScripts[] = {
    {kDraw, "10,20,20,20\n"},
    {"key d\npress 299 399\nmove 100 200\nrelease\n", "10,20,20,20\n"},
    {kChild, "10,20,20,20\n  15,25,5,5\n"},
    {kDraw + "press 150 250 shift\nmove 500 600\nrelease\n", "10,20,20,20\n  15,25,15,15\n"},
    {"press 100 200 shift\nrelease\n", ""},
    {"press 700 200 shift\nmove 300 300\nrelease\n", ""},
    // Moved and resized by its handles, aborted, and as far as the parent reaches.
    {kDraw + "press 150 300\nmove 170 310\nrelease\n", "12,21,20,20\n"},
    {kDraw + "press 100 300\nmove 50 300\nrelease\n", "5,20,25,20\n"},
    {kDraw + "press 300 400\nmove 330 390\nkey escape\nmove 0 0\nrelease\n", "10,20,20,20\n"},
    {kChild + "press 175 275\nmove 600 275\nrelease\n", "10,20,20,20\n  25,25,5,5\n"},
    // Keys.
    {kDraw + "key left\nkey shift+down\n", "9,30,20,20\n"},
    {kDraw + "key shift+left\nkey shift+left\nkey u\nkey ctrl+y\n", "0,20,20,20\n"},
    {kChild + "key tab\nkey delete\nkey u\n", "10,20,20,20\n  15,25,5,5\n"},
    {kChild + "key delete\n", "10,20,20,20\n"},
    {kChild + "key u\nkey u\n", ""},
    {kDraw +
         "key return\nkey 3\nkey ,\nkey 4\nkey ,\nkey 9\nkey backspace\nkey 5\nkey ,\nkey 6\nkey return\n",
     "3,4,5,6\n"},
    // The point under the mouse stays where it is; so does the other file.
    {"wheel 100 200 3\nwheel 100 200 -2\n" + kDraw, "10,20,16,16\n"},
    {"press 300 300\nmove 400 300\nrelease\n" + kDraw, "0,20,20,20\n"},
    {kDraw + "key n\n", ""},
    {kDraw + "key n\nkey p\n", "10,20,20,20\n"},
    {kDraw + "key s\nkey delete\nkey r\n", "10,20,20,20\n"},
};

TEST_F(Viewer, PlacesRegionsByMouseAndKeys) {
    for (const auto& [script, regions] : kScripts) {
        std::filesystem::remove(Path("dark.kxa"));
        const Outcome outcome = RunScript(script + "print-roi\n");
        EXPECT_EQ(outcome.output, regions) << script << outcome.errors;
    }
    EXPECT_EQ(RunScript("press 100 200\nmoove\n").exitCode, 1);
}

// What is done, and the colour that a pixel of the window then has.
const std::tuple<std::string, const char*, const char*> kPictures[] = {
    {"", "320,320", "40 40 40"},
    {kDraw, "100,250", "255 60 40"},
    {kDraw + "key m\n", "200,300", "136 49 40"},
    {kDraw + "key m\nkey m\n", "200,300", "40 40 40"},
    {"key l\n", "320,320", "215 215 215"},
    {"key n\n", "320,320", "255 255 255"},
    {"key x\n", "480,320", "255 255 255"},
    {"key h\n", "630,10", "255 255 255"},
    {"key ?\n", "8,8", "30 30 34"},
    {"key t\n", "5,5", "128 128 128"},
    {"key 1\nkey -\nkey -\n", "340,340", "56 56 60"},
};

TEST_F(Viewer, ShowsWhatIsAskedFor) {
    for (const auto& [script, pixel, color] : kPictures) {
        RunScript(script + "screenshot shot.png\n");
        EXPECT_EQ(Run("kalvo pixel shot.png " + std::string(pixel)).output,
                  pixel + (": " + std::string(color)) + "\n")
            << script;
    }
}

// Through a real window: its frame is seen, then the program is left.
TEST_F(Viewer, WorksInAWindow) {
    const std::string drive =
        "id=$(xdotool search --sync --onlyvisible --name 'dark.bmp' | tail -1)\n"
        "xdotool mousemove --window $id 100 200 keydown shift mousedown 1 mousemove --window $id 200 300 "
        "mousemove --window $id 299 399 mouseup 1 keyup shift key shift+Right\n"
        "until import -window $id shot.png && kalvo pixel shot.png 200,250 | grep -q '255 60 40'\n"
        "do sleep 0.05; done\n"
        "xdotool mousemove --window $id 350 300 click 4 key q\n";
    const std::string kalvo = "kalvo() { '" KALVO_PROGRAM "' \"$@\"; }\n";
    const std::string text =
        kalvo + "'" KALVO_VIEW "' dark.bmp --size 640x640 --print-roi & " + drive + "wait\n";
    folder.Write("drive.sh", Bytes(text.begin(), text.end()));
    const Outcome outcome = Run("timeout 30 xvfb-run --auto-servernum bash drive.sh");
    EXPECT_EQ(outcome.output, "20,20,20,20\n") << outcome.errors;
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
