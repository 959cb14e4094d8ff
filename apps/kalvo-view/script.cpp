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

void Press(Arguments& line, Viewer& viewer) {
    int x = -1, y = -1;
    std::string button;
    if (line >> x >> y) line >> button;
    viewer.Press(x, y,
                 button == "shift"   ? Viewer::Button::Shift
                 : button == "other" ? Viewer::Button::Other
                                     : Viewer::Button::Plain);
    line.clear();
}

// How long a picture takes that follows a drag.
void Time(Arguments& line, Viewer& viewer, Scene& scene) {
    int frames = 0;
    line >> frames;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < frames; ++i) scene.Paint(viewer);
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    std::cout << time.count() / std::max(frames, 1) << " ms\n";
}

void RunLine(const std::string& command, Arguments& line, Viewer& viewer, Scene& scene) {
    int x = 0, y = 0;
    double steps = 0;
    std::string name;
    if (command == "press") {
        Press(line, viewer);
    } else if (command == "move") {
        line >> x >> y;
        viewer.Move(x, y);
    } else if (command == "release") {
        viewer.Release();
    } else if (command == "wheel") {
        line >> x >> y >> steps;
        viewer.Wheel(x, y, steps);
    } else if (command == "key") {
        line >> name;
        viewer.Key(name);
    } else if (command == "size") {
        line >> x >> y;
        viewer.Resize(std::max(x, 1), std::max(y, 1));
    } else if (command == "screenshot") {
        line >> name;
        App::SavePicture(scene.Paint(viewer), name);
    } else if (command == "print-roi") {
        std::cout << viewer.PrintRegions();
    } else if (command == "time") {
        Time(line, viewer, scene);
    } else {
        line.setstate(std::ios::failbit);
    }
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

}  // namespace View
