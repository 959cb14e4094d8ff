// The default message box writes one line to the standard error stream: a production line must never wait
// for somebody to press OK.

#include "kalvo/base/messagebox.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <string>

namespace Zelkor::Platform {
namespace {

int WriteLineToStandardError(const char* text, const char* caption, unsigned) {
    std::string line = std::string(caption) + ": " + text;
    std::replace(line.begin(), line.end(), '\n', ' ');
    std::fprintf(stderr, "%s\n", line.c_str());
    return kMessageBoxOk;
}

constinit std::atomic<MessageBoxHandler> currentHandler = WriteLineToStandardError;

}  // namespace

MessageBoxHandler SetMessageBoxHandler(MessageBoxHandler handler) {
    return currentHandler.exchange(handler ? handler : WriteLineToStandardError);
}

int MessageBoxA(const char* text, const char* caption, unsigned style) {
    return currentHandler.load()(text, caption, style);
}

}  // namespace Zelkor::Platform
