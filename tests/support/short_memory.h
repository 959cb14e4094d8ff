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

// While it lives, allocation number `first` of this thread, counted from 0, and all after it are refused.
class FailingMemory {
public:
    explicit FailingMemory(long first);
    ~FailingMemory();
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;

    bool HasFailed() const;
};

// Blocks that this thread has taken and not given back.
long LiveBlocks();

}  // namespace Zelkor::Kalvo::Testing
