#pragma once
// Programs run from outside, in a folder of their own.

#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "tests/support/test.h"

namespace Zelkor::Kalvo::Testing {

struct Outcome {
    int exitCode;
    std::string output;
    std::string errors;
};

class Program : public testing::Test {
protected:
    std::string Path(const std::string& name) const { return folder.File(name); }

    std::string Text(const std::string& name) const {
        const Bytes bytes = folder.Read(name);
        return {bytes.begin(), bytes.end()};
    }

    // Runs a shell command in the folder, in which `kalvo` and `view` are the programs.
    Outcome Run(const std::string& command) const {
        const std::string script = "cd '" + Path("") +
                                   "' && kalvo() { '" KALVO_PROGRAM "' \"$@\"; } && view() { '" KALVO_VIEW
                                   "' \"$@\"; } && (" +
                                   command + ") >out.log 2>err.log";
        const int status = std::system(script.c_str());
        return {WEXITSTATUS(status), Text("out.log"), Text("err.log")};
    }

    TemporaryFolder folder;
};

}  // namespace Zelkor::Kalvo::Testing
