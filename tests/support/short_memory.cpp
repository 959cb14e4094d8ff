// Takes the place of the allocation functions in every test program that makes memory short.

#include "tests/support/short_memory.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr long kNever = std::numeric_limits<long>::max();
std::atomic<std::size_t> refusedBytes = SIZE_MAX;
thread_local long allocationsLeft = kNever;
thread_local bool hasFailed = false;
thread_local long liveBlocks = 0;

void* Allocate(std::size_t bytes) noexcept {
    if (allocationsLeft == 0) {
        hasFailed = true;
        return nullptr;
    }
    if (allocationsLeft != kNever) --allocationsLeft;
    void* block = std::malloc(bytes ? bytes : 1);
    liveBlocks += block != nullptr;
    return block;
}

void* AllocateOrThrow(std::size_t bytes) {
    if (void* block = Allocate(bytes)) return block;
    throw std::bad_alloc();
}

void Free(void* block) noexcept {
    liveBlocks -= block != nullptr;
    std::free(block);
}

}  // namespace

void* operator new(std::size_t bytes) { return AllocateOrThrow(bytes); }
void* operator new[](std::size_t bytes) { return AllocateOrThrow(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return bytes >= refusedBytes ? nullptr : Allocate(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    return bytes >= refusedBytes ? nullptr : Allocate(bytes);
}
void operator delete(void* block) noexcept { Free(block); }
void operator delete[](void* block) noexcept { Free(block); }
void operator delete(void* block, std::size_t) noexcept { Free(block); }
void operator delete[](void* block, std::size_t) noexcept { Free(block); }

namespace Zelkor::Kalvo::Testing {

ShortMemory::ShortMemory(std::size_t bytes) { refusedBytes = bytes; }

ShortMemory::~ShortMemory() { refusedBytes = SIZE_MAX; }

FailingMemory::FailingMemory(long first) {
    hasFailed = false;
    allocationsLeft = first;
}

FailingMemory::~FailingMemory() { allocationsLeft = kNever; }

bool FailingMemory::HasFailed() const { return hasFailed; }

long LiveBlocks() { return liveBlocks; }

}  // namespace Zelkor::Kalvo::Testing
