#pragma once
// A shortage of memory, for what the library asks of `new (std::nothrow)`.

#include <cstddef>

namespace Zelkor::Kalvo::Testing {

// While it lives, blocks of so many bytes or more are refused, on every thread.
class ShortMemory {
public:
    explicit ShortMemory(std::size_t bytes = 0);
    ~ShortMemory();
    ShortMemory(const ShortMemory&) = delete;
    ShortMemory& operator=(const ShortMemory&) = delete;
};

}  // namespace Zelkor::Kalvo::Testing
