// One line after the other.

#include "script.h"

#include <chrono>
#include <iostream>
#include <map>
#include <sstream>

#include "common/failure.h"

namespace View {
namespace {

using Arguments = std::istringstream;

void Press(Arguments& line, Viewer& viewer, Scene&) {
    int x, y;
    std::string button;
    if (!(line >> x >> y)) return;
    line >> button;
    viewer.Press(x, y,
                 button == "shift"   ? Viewer::Button::Shift
                 : button == "other" ? Viewer::Button::Other
                                     : Viewer::Button::Plain);
    line.clear();  // the button may be missing
}

void Time(Arguments& line, Viewer& viewer, Scene& scene) {
    int frames = 0;
    line >> frames;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < frames; ++i) scene.Paint(viewer);
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    std::cout << time.count() / std::max(frames, 1) << " ms\n";
}

const struct {
    const char *command, *arguments, *help;
    void (*run)(Arguments& line, Viewer& viewer, Scene& scene);
} kCommands[] = {
    {"press", "X Y [shift|other]", "press the left button (with Shift held), or another one", Press},
    {"move", "X Y", "move the mouse",
     [](Arguments& line, Viewer& viewer, Scene&) {
         int x = 0, y = 0;
         line >> x >> y;
         viewer.Move(x, y);
     }},
    {"release", "", "release the button", [](Arguments&, Viewer& viewer, Scene&) { viewer.Release(); }},
    {"wheel", "X Y STEPS", "turn the wheel at a point, upwards or, by negative steps, downwards",
     [](Arguments& line, Viewer& viewer, Scene&) {
         int x = 0, y = 0;
         double steps = 0;
         line >> x >> y >> steps;
         viewer.Wheel(x, y, steps);
     }},
    {"key", "NAME", "press a key by its name in the list above",
     [](Arguments& line, Viewer& viewer, Scene&) {
         std::string name;
         line >> name;
         viewer.Key(name);
     }},
    {"size", "WIDTH HEIGHT", "change the size of the window",
     [](Arguments& line, Viewer& viewer, Scene&) {
         int width = 0, height = 0;
         line >> width >> height;
         viewer.Resize(std::max(width, 1), std::max(height, 1));
     }},
    {"screenshot", "FILE", "save the picture",
     [](Arguments& line, Viewer& viewer, Scene& scene) {
         std::string name;
         line >> name;
         App::SavePicture(scene.Paint(viewer), name);
     }},
    {"print-roi", "", "print the regions",
     [](Arguments&, Viewer& viewer, Scene&) { std::cout << viewer.PrintRegions(); }},
    {"time", "COUNT", "draw the picture that often, and print how long one takes", Time},
};

void RunLine(const std::string& command, Arguments& line, Viewer& viewer, Scene& scene) {
    for (const auto& known : kCommands)
        if (command == known.command) return known.run(line, viewer, scene);
    line.setstate(std::ios::failbit);
}

}  // namespace

void RunScript(std::istream& script, Viewer& viewer, Scene& scene) {
    std::string text, command;
    for (int number = 1; std::getline(script, text); ++number) {
        Arguments line(text.substr(0, text.find('#')));
        if (!(line >> command)) continue;
        RunLine(command, line, viewer, scene);
        if (!line)
            throw App::Failure{"line " + std::to_string(number) + " of the script is not understood: " + text,
                               KX_ERROR_PARAMETERS_OUT_OF_RANGE};
    }
}

std::vector<std::pair<std::string, std::string>> ScriptHelp() {
    std::vector<std::pair<std::string, std::string>> lines;
    for (const auto& [command, arguments, help, run] : kCommands)
        lines.emplace_back(std::string(command) + " " + arguments, help);
    return lines;
}

}  // namespace View
