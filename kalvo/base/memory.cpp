// Blocks come from the heap, which keeps middling ones for the next time; the system is asked to put the
// middle of large ones on huge pages. Blocks aligned to these would never be kept.

#include "kalvo/base/memory.h"

#include <sys/mman.h>

namespace Zelkor::Platform {

Memory AllocateMemory(std::size_t bytes) noexcept {
    constexpr std::uintptr_t kHugePage = std::uintptr_t{2} << 20;
    Memory block(static_cast<std::uint8_t*>(std::malloc(bytes > 0 ? bytes : 1)));
    if (!block || bytes < 2 * kHugePage) return block;
    const auto start = reinterpret_cast<std::uintptr_t>(block.get());
    const std::uintptr_t first = (start + kHugePage - 1) / kHugePage * kHugePage;
    madvise(reinterpret_cast<void*>(first), (start + bytes - first) / kHugePage * kHugePage, MADV_HUGEPAGE);
    return block;
}

}  // namespace Zelkor::Platform
