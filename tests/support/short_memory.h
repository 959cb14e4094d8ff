#pragma once
// Shortages of memory, for what is asked of `operator new`.

#include <cstddef>

namespace Zelkor::Kalvo::Testing {

// While it lives, blocks of so many bytes or more are refused to `new (std::nothrow)`, on every thread.
class ShortMemory {
public:
    explicit ShortMemory(std::size_t bytes = 0);
    ~ShortMemory();
    ShortMemory(const ShortMemory&) = delete;
    ShortMemory& operator=(const ShortMemory&) = delete;
};

}  // namespace Zelkor::Kalvo::Testing
