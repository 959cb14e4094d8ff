// UTF-16 to UTF-8.

#include "utf16.h"

#include <cstdint>

namespace App {
namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;

constexpr bool IsHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void AppendUtf8(std::string& text, std::uint32_t character) {
    const auto tail = [&](int shift) { text += static_cast<char>(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | character >> 6);
        tail(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0 | character >> 12);
        tail(6), tail(0);
    } else {
        text += static_cast<char>(0xF0 | character >> 18);
        tail(12), tail(6), tail(0);
    }
}

}  // namespace

std::string Utf8FromUtf16(const unsigned short* text) {
    std::string result;
    while (*text) {
        std::uint32_t character = *text++;
        if (IsHighSurrogate(character) && IsLowSurrogate(*text))
            character = 0x10000 + (character - 0xD800) * 0x400 + (*text++ - 0xDC00u);
        else if (IsHighSurrogate(character) || IsLowSurrogate(character))
            character = kReplacement;
        AppendUtf8(result, character);
    }
    return result;
}

}  // namespace App
