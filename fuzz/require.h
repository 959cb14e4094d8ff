#pragma once
// How fuzzers state what must hold for every input.

#include <cstdio>
#include <cstdlib>

namespace Zelkor::Kalvo::Fuzzing {

// Ends the process, so that the fuzzing engine keeps the input.
inline void Require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

}  // namespace Zelkor::Kalvo::Fuzzing
