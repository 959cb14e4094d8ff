#pragma once
// The fixed English texts of the error codes, one sorted table per origin of the codes. Texts for
// codes that have none are made where they are asked for.

#include <algorithm>
#include <cstdint>
#include <functional>
#include <span>

namespace Zelkor::Kalvo {

struct ErrorText {
    std::int32_t code;
    const char* text;  // 7-bit ASCII, one line
};

// The text search bisects, so the codes must rise from row to row; thus none stands twice.
constexpr bool HasRisingCodes(std::span<const ErrorText> table) {
    return std::ranges::adjacent_find(table, std::ranges::greater_equal{}, &ErrorText::code) == table.end();
}

std::span<const ErrorText> LibraryErrorTexts() noexcept;      // codes of KX_ERRORS
std::span<const ErrorText> SiblingErrorTexts() noexcept;      // codes of the analysis libraries
std::span<const ErrorText> AcquisitionErrorTexts() noexcept;  // codes of the acquisition library

// The text of the code from whichever table holds it, or nullptr; it lives as long as the program.
const char* FindErrorText(std::int32_t code) noexcept;

}  // namespace Zelkor::Kalvo
