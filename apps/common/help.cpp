// What goes into a file or a pipe keeps its lines.

#include "common/help.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <limits>
#include <sstream>

namespace App {
namespace {

std::size_t OutputWidth() {
    winsize size{};
    if (isatty(STDOUT_FILENO) && !ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) && size.ws_col > 0)
        return size.ws_col;
    return std::numeric_limits<std::size_t>::max();
}

}  // namespace

void PrintHelp(const std::string& help) {
    const std::size_t width = OutputWidth();
    const std::string indent(width > 2 * kDescriptionColumn ? kDescriptionColumn : 0, ' ');
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);) {
        while (line.size() > width) {
            const std::size_t space = line.rfind(' ', width);
            const std::size_t first = line.find_first_not_of(' ');
            if (space == std::string::npos || space <= std::max(first, indent.size())) break;
            std::cout << line.substr(0, space) << '\n';
            line = indent + line.substr(space + 1);
        }
        std::cout << line << '\n';
    }
}

}  // namespace App
