// Takes the place of the allocation functions in every test program that makes memory short.

#include "tests/support/short_memory.h"

#include <atomic>
#include <cstdint>
#include <new>

namespace {
std::atomic<std::size_t> refusedBytes = SIZE_MAX;
}

void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return bytes >= refusedBytes ? nullptr : ::operator new(bytes);
}

void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    return bytes >= refusedBytes ? nullptr : ::operator new[](bytes);
}

namespace Zelkor::Kalvo::Testing {

ShortMemory::ShortMemory(std::size_t bytes) { refusedBytes = bytes; }

ShortMemory::~ShortMemory() { refusedBytes = SIZE_MAX; }

}  // namespace Zelkor::Kalvo::Testing
