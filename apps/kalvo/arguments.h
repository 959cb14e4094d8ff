#pragma once
// Values on the command line, read or refused.

#include <CLI/CLI.hpp>

#include <map>
#include <string>
#include <vector>

#include "kalvo/display/kxpixelvector.h"
#include "kalvo/image/kxroiextent.h"
#include "common/canvas.h"

namespace App {

// "X,Y,WIDTH,HEIGHT" with a size of at least 1 x 1.
Zelkor::Kalvo::GenericRoiExtent ToRegion(const std::vector<int>& numbers);
Zelkor::Kalvo::GenericRoiExtent ToRegion(const std::string& text);
// "WIDTHxHEIGHT" of a picture.
PictureSize ToSize(const std::string& text);
// "threshold:LEVEL" or "gain:GAIN,OFFSET,GAMMA" as a lookup table.
KxBW8Vector ToTable(const std::string& text);

// Takes one of the names, in any case, or the number that a name stands for.
template <class Value>
CLI::Validator OneOf(const std::map<std::string, Value>& names) {
    std::string list;
    for (const auto& [name, value] : names) list += (list.empty() ? "" : ", ") + name;
    const auto toNumber = [names, list](std::string& text) -> std::string {
        for (const auto& [name, value] : names) {
            const std::string number = std::to_string(static_cast<int>(value));
            if (CLI::detail::to_lower(text) != name && text != number) continue;
            text = number;
            return {};
        }
        return text + " is none of " + list;
    };
    return CLI::Validator(toNumber, list);
}

}  // namespace App
