// The error texts: the wording that is easy to "correct" by mistake, and which codes have a text at all.

#include "tests/support/test.h"

#include "kalvo/frame/errortable.h"

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
        {KX_ERROR_INVALID_DATA_SIZE, "Inalvid data size - Check type compatibility"},
        {KX_ERROR_BW1_EXPECTED,
         "1 bit black & white ( BW1) image expected - Check image type or file contents"},
        {KX_ERROR_NEEDS_SPECIALIZATION,
         "Template call needs specialization  - Please contact Technical Support"},
        {KX_ERROR_UNDEFINED_PROPERTY, "This is property is undefined and may not be accessed."},
        {KX_ERROR_ARCHIVE_ACCESS, "An unexpected error occured during archive access."},
        {KX_ERROR_INSUFFICIENT_ALLOCATION, "Unsufficient memory allocation - Contact Technical Support"},
        {KX_ERROR_SIZE_MISMATCH, "Images not of the same size - Adjust image size( s)"},
        {KX_ERROR_CONTOUR_FULL, "Maximum pixels in countour reached - Contact Technical Support"},
    };
    for (const auto& [code, text] : kPublished) EXPECT_STREQ(FindErrorText(code), text) << code;
}

TEST(ErrorTable, HasTextsForExactlyTheAssignedCodes) {
    constexpr std::pair<int, int> kRuns[] = {
        {0, 0},         {101, 103},     {106, 107},     {1000, 1000},   {1002, 1036},   {1050, 1053},
        {1100, 1116},   {1150, 1153},   {1200, 1210},   {1212, 1216},   {1301, 1304},   {1350, 1353},
        {1400, 1423},   {1450, 1451},   {1500, 1502},   {1504, 1505},   {1601, 1616},   {1700, 1704},
        {1800, 1806},   {2200, 2200},   {2500, 2500},   {3000, 3017},   {4001, 4001},   {5000, 5004},
        {6000, 6007},   {6500, 6508},   {7000, 7004},   {8001, 8006},   {9000, 9002},   {10008, 10021},
        {10501, 10509}, {11001, 11010}, {12001, 12200}, {13001, 13011}, {14001, 14300}, {32765, 32767}};
    std::vector<int> assigned, present;
    for (auto [code, last] : kRuns)
        for (; code <= last; ++code) assigned.push_back(code);
    for (const auto& row : AllErrorTexts()) present.push_back(row.code);
    EXPECT_EQ(present, assigned);
    for (const auto& [code, text] : AllErrorTexts()) EXPECT_EQ(FindErrorText(code), text) << code;
    for (const int code : {INT32_MIN, -1, 1, 999, 1211, 12201, 32768, INT32_MAX})
        EXPECT_EQ(FindErrorText(code), nullptr) << code;
}

// Each text must fit one line of a message box and widen to UTF-16 byte by byte.
TEST(ErrorTable, HoldsDistinctShortPrintableLines) {
    std::set<std::string_view> texts;
    for (const auto& [code, line] : AllErrorTexts()) {
        const std::string_view text = line;
        EXPECT_TRUE(!text.empty() && text.size() < 128) << code;
        EXPECT_TRUE(std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; })) << code;
        EXPECT_TRUE(texts.insert(text).second) << code << " repeats: " << text;
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo
