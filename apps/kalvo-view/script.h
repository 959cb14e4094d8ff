#pragma once
// What a user does, read from a file.

#include <istream>

#include "scene.h"

namespace View {

// Runs a script, a command a line; "#" begins a comment. Throws a failure that names the line.
void RunScript(std::istream& script, Viewer& viewer, Scene& scene);

// Every command with its arguments, and what it does.
std::vector<std::pair<std::string, std::string>> ScriptHelp();

}  // namespace View
