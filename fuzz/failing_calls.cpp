// The real functions are those with leading underscores, or the next ones that the loader knows.

#include "fuzz/failing_calls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace Zelkor::Kalvo::Fuzzing {
namespace {

struct State {
    bool isArmed = false, stays = false, hasFailed = false;
    Fault fault = Fault::NoMemory;
    long callsLeft = 0;
};
thread_local constinit State state;
std::atomic<long> liveBlocks, liveBytes, mostBytes;

// Whether a call that some faults can meet fails now.
bool Fails(std::initializer_list<Fault> faults) {
    if (!state.isArmed) return false;
    bool canMeet = false;
    for (const Fault fault : faults) canMeet |= fault == state.fault;
    if (!canMeet || state.callsLeft-- > 0 || (state.hasFailed && !state.stays)) return false;
    state.hasFailed = true;
    errno = state.fault == Fault::FullDisk ? ENOSPC : state.fault == Fault::Interrupted ? EINTR : EIO;
    return true;
}

template <class Function>
Function* Real(Function*, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

void* Counted(void* block) {
    if (!block) return nullptr;
    ++liveBlocks;
    const long bytes = liveBytes += static_cast<long>(malloc_usable_size(block));
    if (bytes > mostBytes) mostBytes = bytes;
    return block;
}

void Uncount(void* block) {
    if (!block) return;
    --liveBlocks;
    liveBytes -= static_cast<long>(malloc_usable_size(block));
}

}  // namespace

FailingCalls::FailingCalls(Fault fault, long first, bool stays) {
    state = {true, stays, false, fault, first};
}

FailingCalls::~FailingCalls() { state.isArmed = false; }

bool FailingCalls::HasFailed() { return state.hasFailed; }

long LiveBlocks() { return liveBlocks; }

void StartCountingBytes() {
    liveBytes = 0;
    mostBytes = 0;
}

long MostBytes() { return mostBytes; }

}  // namespace Zelkor::Kalvo::Fuzzing

using namespace Zelkor::Kalvo::Fuzzing;

extern "C" {

void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
void __libc_free(void*);

void* malloc(std::size_t bytes) {
    if (Fails({Fault::NoMemory})) return nullptr;
    return Counted(__libc_malloc(bytes));
}

void* calloc(std::size_t count, std::size_t bytes) {
    if (Fails({Fault::NoMemory})) return nullptr;
    return Counted(__libc_calloc(count, bytes));
}

void* realloc(void* block, std::size_t bytes) {
    if (Fails({Fault::NoMemory})) return nullptr;
    const auto before = static_cast<long>(block ? malloc_usable_size(block) : 0);
    void* const moved = __libc_realloc(block, bytes);
    if (!moved) return nullptr;
    liveBlocks -= block != nullptr;
    liveBytes -= before;
    return Counted(moved);
}

void* aligned_alloc(std::size_t alignment, std::size_t bytes) {
    if (Fails({Fault::NoMemory})) return nullptr;
    return Counted(__libc_memalign(alignment, bytes));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t bytes) {
    *block = aligned_alloc(alignment, bytes);
    return *block ? 0 : ENOMEM;
}

void free(void* block) {
    Uncount(block);
    __libc_free(block);
}

int open(const char* name, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const auto mode = va_arg(arguments, mode_t);
    va_end(arguments);
    if (Fails({Fault::BrokenDisk, Fault::Interrupted})) return -1;
    return openat(AT_FDCWD, name, flags, mode);
}

int close(int descriptor) {
    static const auto real = Real(&close, "close");
    const bool fails = Fails({Fault::BrokenDisk, Fault::FullDisk});
    const int error = errno;
    const int result = real(descriptor);
    if (!fails) return result;
    errno = error;
    return -1;
}

ssize_t write(int descriptor, const void* data, std::size_t bytes) {
    static const auto real = Real(&write, "write");
    if (!Fails({Fault::BrokenDisk, Fault::FullDisk, Fault::ShortWrite, Fault::Interrupted}))
        return real(descriptor, data, bytes);
    return state.fault == Fault::ShortWrite ? real(descriptor, data, (bytes + 1) / 2) : -1;
}

off64_t lseek64(int descriptor, off64_t offset, int origin) noexcept {
    static const auto real = reinterpret_cast<off64_t (*)(int, off64_t, int)>(dlsym(RTLD_NEXT, "lseek64"));
    return Fails({Fault::BrokenDisk}) ? -1 : real(descriptor, offset, origin);
}

int fsync(int descriptor) {
    static const auto real = Real(&fsync, "fsync");
    return Fails({Fault::BrokenDisk, Fault::FullDisk, Fault::Interrupted}) ? -1 : real(descriptor);
}

int rename(const char* from, const char* to) noexcept {
    static const auto real = reinterpret_cast<int (*)(const char*, const char*)>(dlsym(RTLD_NEXT, "rename"));
    return Fails({Fault::BrokenDisk, Fault::FullDisk}) ? -1 : real(from, to);
}

// Streams that only read call the kernel past us, so the calls of the library fail instead.
std::size_t fread(void* data, std::size_t size, std::size_t count, std::FILE* stream) {
    static const auto real = Real(&fread, "fread");
    if (!Fails({Fault::BrokenDisk, Fault::Interrupted})) return real(data, size, count, stream);
    const int error = errno;
    const std::size_t done = real(data, size, count / 2, stream);
    stream->_flags |= 0x20;  // what ferror sees
    errno = error;
    return done;
}

int fseeko(std::FILE* stream, off_t offset, int origin) {
    static const auto real = Real(&fseeko, "fseeko");
    return Fails({Fault::BrokenDisk}) ? -1 : real(stream, offset, origin);
}
}
