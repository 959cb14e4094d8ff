// Takes the place of the allocation that can be refused in every test program that makes memory short.

#include "tests/support/short_memory.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> refusedBytes = SIZE_MAX;

void* Allocate(std::size_t bytes) noexcept { return std::malloc(bytes ? bytes : 1); }

}  // namespace

void* operator new(std::size_t bytes) {
    if (void* block = Allocate(bytes)) return block;
    throw std::bad_alloc();
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return bytes >= refusedBytes ? nullptr : Allocate(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t& refusable) noexcept {
    return operator new(bytes, refusable);
}
void* operator new[](std::size_t bytes) { return operator new(bytes); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace Zelkor::Kalvo::Testing {

ShortMemory::ShortMemory(std::size_t bytes) { refusedBytes = bytes; }

ShortMemory::~ShortMemory() { refusedBytes = SIZE_MAX; }

}  // namespace Zelkor::Kalvo::Testing
