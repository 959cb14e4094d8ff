#pragma once
// Finds the files of a kind of letters on this machine.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "kalvo/base/win32types.h"

namespace Zelkor::Platform {

// What letters look like when the machine does not have those of the name.
enum class FaceFamily : std::uint8_t { SansSerif, Serif, FixedPitch };

// What tells one kind of face from another, whatever its size. The name is padded with zeros.
struct FaceStyle {
    std::array<char, sizeof LOGFONTA::lfFaceName> name{};
    FaceFamily family = FaceFamily::SansSerif;
    bool isBold = false;
    bool isItalic = false;

    bool operator==(const FaceStyle&) const = default;
};

struct FontFile {
    std::string path;
    int index = 0;  // of the face in the file
};

// The files with outlines that come nearest, the best one first. What Fontconfig knows is loaded for this and
// let go: that takes some milliseconds, but styles are few, and fonts installed later are found.
std::vector<FontFile> FindFontFiles(const FaceStyle& style);

}  // namespace Zelkor::Platform
