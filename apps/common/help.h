#pragma once
// Help that fits the terminal.

#include <string>

namespace App {

// Where descriptions of options begin.
constexpr int kDescriptionColumn = 28;

// Prints the help of a command line, with lines broken where a terminal ends.
void PrintHelp(const std::string& help);

}  // namespace App
