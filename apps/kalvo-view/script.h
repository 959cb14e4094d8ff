#pragma once
// What a user does, read from a file.

#include <istream>

#include "scene.h"

namespace View {

// Runs a script, a command a line: "press X Y [shift|other]", "move X Y", "release", "wheel X Y STEPS", "key
// NAME", "size WIDTH HEIGHT", "screenshot FILE", "print-roi", "time FRAMES"; "#" begins a comment. Throws a
// failure that names the line.
void RunScript(std::istream& script, Viewer& viewer, Scene& scene);

}  // namespace View
