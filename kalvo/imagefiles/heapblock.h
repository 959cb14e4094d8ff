#pragma once
// Bytes of the C heap: they grow without being initialised, and may be given to a caller who frees them.

#include <cstdint>
#include <cstdlib>
#include <memory>

#include "kalvo/frame/kxexception.h"

namespace Zelkor::Kalvo {

class HeapBlock {
public:
    // Changes the size, keeping the bytes. Throws KX_ERROR_ALLOCATION, with the block unchanged.
    // @param size  in bytes, at least 1
    void Resize(std::uint64_t size) {
        void* moved = std::realloc(m_bytes.get(), size);
        if (!moved) throw Exception(KX_ERROR_ALLOCATION);
        static_cast<void>(m_bytes.release());
        m_bytes.reset(static_cast<std::uint8_t*>(moved));
    }

    // The bytes; null until the first `Resize`.
    std::uint8_t* Bytes() const { return m_bytes.get(); }
    // Gives the bytes away; `free` takes them.
    std::uint8_t* Release() { return m_bytes.release(); }

private:
    struct Free {
        void operator()(std::uint8_t* bytes) const { std::free(bytes); }
    };

    std::unique_ptr<std::uint8_t, Free> m_bytes;
};

}  // namespace Zelkor::Kalvo
