// The error texts: the wording that is easy to "correct" by mistake, and which codes have a text at all.
#include "kalvo/frame/errortable.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "kalvo/frame/kxerror_codes.h"

namespace Zelkor::Kalvo {
namespace {

std::vector<ErrorText> AllErrorTexts() {
    std::vector<ErrorText> rows;
    for (const auto table : {LibraryErrorTexts(), SiblingErrorTexts(), AcquisitionErrorTexts()}) {
        rows.insert(rows.end(), table.begin(), table.end());
    }
    std::ranges::sort(rows, {}, &ErrorText::code);
    return rows;
}

TEST(ErrorTable, KeepsTheWordingOfThePublishedTexts) {
    constexpr ErrorText kPublished[] = {
        {KX_OK, "Success"},
        {KX_WARNING_IMAGE_LIMITS_REACHED, "Image limits reached"},
        {KX_ERROR_INVALID_DEPTH, "Invalid depth ( bits per pixel) - Check type compatibility"},
        {KX_ERROR_INVALID_DATA_SIZE, "Inalvid data size - Check type compatibility"},
        {KX_ERROR_PARAMETER_10_OUT_OF_RANGE, "Parameter 10 out of range - See Reference Manual"},
        {KX_ERROR_BW1_EXPECTED,
         "1 bit black & white ( BW1) image expected - Check image type or file contents"},
        {KX_ERROR_NEEDS_SPECIALIZATION,
         "Template call needs specialization  - Please contact Technical Support"},
        {KX_ERROR_UNDEFINED_PROPERTY, "This is property is undefined and may not be accessed."},
        {KX_ERROR_WRONG_OBJECT_TYPE,
         "The archive does not contain the correct object type - Check your archiving routines please."},
        {KX_ERROR_ARCHIVE_ACCESS, "An unexpected error occured during archive access."},
        {KX_ERROR_INSUFFICIENT_ALLOCATION, "Unsufficient memory allocation - Contact Technical Support"},
        {KX_ERROR_SIZE_MISMATCH, "Images not of the same size - Adjust image size( s)"},
        {KX_ERROR_CORRUPTED_HIERARCHY,
         "The hierarchy of ROI has been corrupted (inconsistent parent/daughters relationship) - "
         "Contact Technical Support"},
        {KX_ERROR_ALIGNED_ROI_BIT_INDEX, "First bit index of an aligned ROI must be 0. Use an aligned ROI"},
        {KX_ERROR_CONTOUR_FULL, "Maximum pixels in countour reached - Contact Technical Support"},
        {KX_ERROR_CANNOT_TRACE,
         "Cannot trace errors because of a system failure - Contact Technical Support"},
    };
    for (const auto& [code, text] : kPublished) EXPECT_STREQ(FindErrorText(code), text) << code;
}

TEST(ErrorTable, HasTextsForExactlyTheAssignedCodes) {
    struct Run {
        std::int32_t first, last;
    };
    constexpr Run kRuns[] = {
        {0, 0},         {101, 103},     {106, 107},     {1000, 1000},   {1002, 1036},   {1050, 1053},
        {1100, 1116},   {1150, 1153},   {1200, 1210},   {1212, 1216},   {1301, 1304},   {1350, 1353},
        {1400, 1423},   {1450, 1451},   {1500, 1502},   {1504, 1505},   {1601, 1616},   {1700, 1704},
        {1800, 1806},   {2200, 2200},   {2500, 2500},   {3000, 3017},   {4001, 4001},   {5000, 5004},
        {6000, 6007},   {6500, 6508},   {7000, 7004},   {8001, 8006},   {9000, 9002},   {10008, 10021},
        {10501, 10509}, {11001, 11010}, {12001, 12200}, {13001, 13011}, {14001, 14300}, {32765, 32767}};
    std::vector<std::int32_t> assigned;
    for (const auto& run : kRuns) {
        for (std::int32_t code = run.first; code <= run.last; ++code) assigned.push_back(code);
    }
    std::vector<std::int32_t> present;
    for (const auto& row : AllErrorTexts()) present.push_back(row.code);
    EXPECT_EQ(present, assigned);
}

TEST(ErrorTable, FindsEveryRowAndNothingInTheGaps) {
    for (const auto& [code, text] : AllErrorTexts()) EXPECT_EQ(FindErrorText(code), text) << code;

    constexpr std::int32_t kWithoutText[] = {INT32_MIN, -1,    1,     100,   104,   105,      108,   999,
                                             1001,      1037,  1211,  1300,  1503,  1600,     1807,  2199,
                                             3018,      10007, 11011, 12000, 12201, 14000,    14301, 15000,
                                             15101,     15104, 32764, 32768, 40000, INT32_MAX};
    for (const auto code : kWithoutText) EXPECT_EQ(FindErrorText(code), nullptr) << code;
}

// Each text must fit one line of a message box and widen to UTF-16 byte by byte.
TEST(ErrorTable, HoldsDistinctShortPrintableLines) {
    std::set<std::string_view> texts;
    for (const auto& row : AllErrorTexts()) {
        const std::string_view text = row.text;
        EXPECT_FALSE(text.empty()) << row.code;
        EXPECT_LT(text.size(), 128u) << row.code;
        EXPECT_TRUE(std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; })) << row.code;
        EXPECT_TRUE(texts.insert(text).second) << row.code << " repeats: " << text;
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo
