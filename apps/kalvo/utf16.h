#pragma once
// UTF-16 texts of images for a terminal.

#include <string>

namespace App {

// The UTF-8 form; a surrogate without its other half becomes U+FFFD.
std::string Utf8FromUtf16(const unsigned short* text);

}  // namespace App
