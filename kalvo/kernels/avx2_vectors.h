#pragma once
// What the AVX2 kernels share: 32 bytes at a time, and the twin that does the ends of rows.

#include <immintrin.h>

#include "kalvo/kernels/kernels.h"
#include "kalvo/kernels/target_region.h"

KX_TARGET_BEGIN("avx2")

namespace Zelkor::Kernels::Avx2 {

inline const Table& Portable() { return Available().front(); }

inline __m256i Load(const std::uint8_t* bytes) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

inline void Store(std::uint8_t* bytes, __m256i vector) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes), vector);
}

}  // namespace Zelkor::Kernels::Avx2

KX_TARGET_END
