#pragma once
// Marks what the shared library exports; everything else is hidden.

#define KX_API __attribute__((visibility("default")))
