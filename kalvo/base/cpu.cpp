// Asks the processor; those of other families have none of these extensions.

#include "kalvo/base/cpu.h"

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

namespace Zelkor::Platform {

#if defined(__x86_64__) || defined(__i386__)

bool HasMmx() {
    unsigned eax, ebx, ecx, edx;
    return __get_cpuid(1, &eax, &ebx, &ecx, &edx) != 0 && (edx & bit_MMX) != 0;
}

bool HasSha() {
    constexpr unsigned kShuffles = bit_SSSE3 | bit_SSE4_1;
    unsigned eax, ebx, ecx, edx;
    return __get_cpuid(1, &eax, &ebx, &ecx, &edx) != 0 && (ecx & kShuffles) == kShuffles &&
           __get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) != 0 && (ebx & bit_SHA) != 0;
}

bool HasAvx2() {
    __builtin_cpu_init();  // we may be asked while libraries load, before the compiler's own constructor has
                           // run
    return __builtin_cpu_supports("avx2") != 0;
}

bool HasVbmi() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx512vbmi") != 0 && __builtin_cpu_supports("avx512bw") != 0;
}

#else

bool HasMmx() { return false; }

bool HasSha() { return false; }

bool HasAvx2() { return false; }

bool HasVbmi() { return false; }

#endif

}  // namespace Zelkor::Platform
