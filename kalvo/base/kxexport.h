#pragma once
// Marks what the shared library exports; everything else is hidden.

#define KX_API __attribute__((visibility("default")))

#if __cplusplus < 201703L
#error "the headers of kalvo need C++17 or later (-std=c++17)"
#endif
