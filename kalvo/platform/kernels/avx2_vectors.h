// What the AVX2 kernels share: 32 bytes at a time, and the twin that does the ends of rows.
#pragma once

#include <immintrin.h>

#include "kalvo/platform/kernels/kernels.h"
#include "kalvo/platform/kernels/target_region.h"

KX_TARGET_BEGIN("avx2")

namespace Zelkor::Kalvo::Avx2 {

inline const Kernels& Portable() { return AvailableKernels().front(); }

inline __m256i Load(const std::uint8_t* bytes) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

inline void Store(std::uint8_t* bytes, __m256i vector) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes), vector);
}

}  // namespace Zelkor::Kalvo::Avx2

KX_TARGET_END
