#pragma once
// Where memory for pixels comes from.

#include <cstddef>

#include "kalvo/base/kxmemory.h"

namespace Zelkor::Platform {

// A block that is not initialised; null when there is none. Large ones lie on huge pages where the system has
// them: touching fresh memory page by page costs as much as filling it.
Memory AllocateMemory(std::size_t bytes) noexcept;

}  // namespace Zelkor::Platform
