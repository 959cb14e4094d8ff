#pragma once
// What the processor offers beyond its baseline, as far as the library asks.

namespace Zelkor::Platform {

bool HasMmx();  // bit 23 of EDX from CPUID function 1
bool HasSha();  // the SHA extensions, with SSSE3 and SSE4.1

// These two also ask whether the operating system saves the wide registers.
bool HasAvx2();
bool HasVbmi();  // permutations of bytes, with AVX-512 for bytes

}  // namespace Zelkor::Platform
