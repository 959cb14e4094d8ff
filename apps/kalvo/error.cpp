// The command `error`: what codes mean, and what to do.

#include <iostream>

#include "kalvo/frame/kxerror.h"
#include "commands.h"

namespace App {
namespace {

constexpr int kLastCode = 32767;

// Codes without a text of their own have one that says so.
bool IsKnown(int code, const std::string& text) {
    return text.find(std::to_string(code)) == std::string::npos;
}

std::string TextOf(int code) { return KxGetErrorText(static_cast<KX_ERRORS>(code)); }

void PrintRow(int code, const std::string& text) {
    const std::size_t dash = text.find(" - ");
    const std::string advice = dash == std::string::npos ? "" : text.substr(dash + 3);
    std::cout << "| " << code << " | " << text.substr(0, dash) << " | " << advice << " |\n";
}

}  // namespace

int RunError(const ErrorOptions& options) {
    for (const int code : options.codes) std::cout << code << ": " << TextOf(code) << '\n';
    if (!options.codes.empty()) return 0;
    std::cout << "| code | meaning | what to do |\n|---|---|---|\n";
    for (int code = 0; code <= kLastCode; ++code)
        if (const std::string text = TextOf(code); IsKnown(code, text)) PrintRow(code, text);
    return 0;
}

}  // namespace App
