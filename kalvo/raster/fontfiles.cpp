// Asks Fontconfig for the files of a kind of letters.

#include "kalvo/raster/fontfiles.h"

#include <fontconfig/fontconfig.h>

#include <cstring>
#include <memory>
#include <new>

namespace Zelkor::Platform {
namespace {

struct Destroy {
    void operator()(FcConfig* config) const { FcConfigDestroy(config); }
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
    void operator()(FcFontSet* set) const { FcFontSetSortDestroy(set); }
};
using ConfigOwner = std::unique_ptr<FcConfig, Destroy>;
using PatternOwner = std::unique_ptr<FcPattern, Destroy>;
using FontSetOwner = std::unique_ptr<FcFontSet, Destroy>;

void AddFamily(FcPattern* pattern, const char* name) {
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(name));
}

PatternOwner PatternOf(const FaceStyle& style, FcConfig* config) {
    PatternOwner pattern(FcPatternCreate());
    if (!pattern) throw std::bad_alloc();
    const std::string name(style.name.data(), strnlen(style.name.data(), style.name.size()));
    if (!name.empty()) AddFamily(pattern.get(), name.c_str());
    // Fontconfig itself adds a sans serif where no other kind is named.
    if (style.family == FaceFamily::Serif) AddFamily(pattern.get(), "serif");
    if (style.family == FaceFamily::FixedPitch) AddFamily(pattern.get(), "monospace");
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, style.isBold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern.get(), FC_SLANT, style.isItalic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    FcConfigSubstitute(config, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    return pattern;
}

}  // namespace

std::vector<FontFile> FindFontFiles(const FaceStyle& style) {
    constexpr std::size_t kMostFiles = 8;
    std::vector<FontFile> files;
    const ConfigOwner config(FcInitLoadConfigAndFonts());
    if (!config) return files;
    const PatternOwner pattern = PatternOf(style, config.get());
    FcResult result = FcResultNoMatch;
    const FontSetOwner fonts(FcFontSort(config.get(), pattern.get(), FcFalse, nullptr, &result));
    for (int i = 0; fonts && i < fonts->nfont && files.size() < kMostFiles; ++i) {
        FcBool isScalable = FcFalse;
        FcChar8* path = nullptr;
        int index = 0;
        FcPatternGetBool(fonts->fonts[i], FC_SCALABLE, 0, &isScalable);
        FcPatternGetInteger(fonts->fonts[i], FC_INDEX, 0, &index);
        if (isScalable && FcPatternGetString(fonts->fonts[i], FC_FILE, 0, &path) == FcResultMatch)
            files.push_back({reinterpret_cast<const char*>(path), index});
    }
    return files;
}

}  // namespace Zelkor::Platform
