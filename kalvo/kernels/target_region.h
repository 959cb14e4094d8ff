#pragma once
// KX_TARGET_BEGIN("avx2") ... KX_TARGET_END compiles every function between them, lambdas included, for that
// instruction set. Includes go before the region: what headers define must stay in the baseline.

#define KX_PRAGMA(text) _Pragma(#text)

#if defined(__clang__)
#define KX_TARGET_BEGIN(isa) \
    KX_PRAGMA(clang attribute push(__attribute__((target(isa))), apply_to = function))
#define KX_TARGET_END KX_PRAGMA(clang attribute pop)
#else
#define KX_TARGET_BEGIN(isa)    \
    KX_PRAGMA(GCC push_options) \
    KX_PRAGMA(GCC target(isa))
#define KX_TARGET_END KX_PRAGMA(GCC pop_options)
#endif
