#pragma once
// Sizes of memory, multiplied in 64 bits without wrapping.

#include <cstdint>

#include "kalvo/frame/kxexception.h"

namespace Zelkor::Kalvo {

// a * b; throws `error` when the product does not fit in 63 bits.
inline std::uint64_t CheckedSize(std::uint64_t a, std::uint64_t b,
                                 KX_ERRORS error = KX_ERROR_BAD_FILE_FORMAT) {
    std::uint64_t product = 0;
    if (__builtin_mul_overflow(a, b, &product) || product >> 63) throw Exception(error);
    return product;
}

}  // namespace Zelkor::Kalvo
