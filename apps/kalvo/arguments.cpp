// Reads regions, sizes and tables.

#include "arguments.h"

#include <cstdio>

namespace App {
namespace {

// Whether a text was read to its end.
bool IsAll(const std::string& text, int length) { return static_cast<std::size_t>(length) == text.size(); }

}  // namespace

Zelkor::Kalvo::GenericRoiExtent ToRegion(const std::vector<int>& numbers) {
    if (numbers[0] < 0 || numbers[1] < 0)
        throw CLI::ValidationError("--roi", "the origin must not be negative");
    if (numbers[2] < 1 || numbers[3] < 1)
        throw CLI::ValidationError("--roi", "the size must be at least 1,1");
    return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

Zelkor::Kalvo::GenericRoiExtent ToRegion(const std::string& text) {
    std::vector<int> numbers(4);
    int length = 0;
    if (std::sscanf(text.c_str(), "%9d,%9d,%9d,%9d%n", &numbers[0], &numbers[1], &numbers[2], &numbers[3],
                    &length) != 4 ||
        !IsAll(text, length))
        throw CLI::ValidationError("--roi", text + " is not X,Y,WIDTH,HEIGHT");
    return ToRegion(numbers);
}

PictureSize ToSize(const std::string& text) {
    PictureSize size;
    int length = 0;
    if (std::sscanf(text.c_str(), "%5dx%5d%n", &size.width, &size.height, &length) != 2 ||
        !IsAll(text, length) || size.width < 1 || size.height < 1)
        throw CLI::ValidationError("--size", text + " is not WIDTHxHEIGHT");
    return size;
}

KxBW8Vector ToTable(const std::string& text) {
    KxBW8Vector table;
    int level = 0, length = 0;
    float gain = 1, offset = 0, gamma = 1;
    if (std::sscanf(text.c_str(), "threshold:%3d%n", &level, &length) == 1 && IsAll(text, length) &&
        level >= 0 && level <= 255)
        table.SetupThreshold(static_cast<std::uint8_t>(level), 0, 255);
    else if (std::sscanf(text.c_str(), "gain:%f,%f,%f%n", &gain, &offset, &gamma, &length) == 3 &&
             IsAll(text, length))
        table.SetupGainOffset(gain, offset, gamma);
    else
        throw CLI::ValidationError("--lut", text + " is neither threshold:LEVEL nor gain:GAIN,OFFSET,GAMMA");
    return table;
}

}  // namespace App
