// What files and archives may make us allocate, by the settings of the thread.

#pragma once

#include <cstdint>

#include "kalvo/frame/kxexception.h"
#include "kalvo/frame/kxthread.h"

namespace Zelkor::Kalvo {

// Throws when something of that size must not be loaded.
inline void RequireLoadable(std::uint64_t bytes, std::uint64_t pixels = 0) {
    const OzzoTLSStruct* settings = KxGetTLSPtr();
    const auto exceeds = [](std::uint64_t size, std::uint64_t most) { return most > 0 && size > most; };
    if (settings &&
        (exceeds(bytes, settings->m_un64MostBytes) || exceeds(pixels, settings->m_un64MostPixels)))
        throw Exception(KX_ERROR_INSUFFICIENT_ALLOCATION);
}

}  // namespace Zelkor::Kalvo
