#pragma once
// Memory for pixels.

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace Zelkor::Platform {

/// Gives a block of memory back.
struct FreeMemory {
    void operator()(std::uint8_t* block) const noexcept { std::free(block); }
};
/// A block of memory and its owner.
using Memory = std::unique_ptr<std::uint8_t[], FreeMemory>;

}  // namespace Zelkor::Platform
