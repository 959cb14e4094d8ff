// Faces and glyphs: opening a file at a size, glyphs as runs of pixels, what is kept.

#include "kalvo/raster/glyphs.h"

#include <ft2build.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H

namespace Zelkor::Platform {
namespace {

constexpr int kBoldFrom = 600;
constexpr int kDefaultHeight = 16;
constexpr int kLargestHeight = 1000;
constexpr int kWidestEm = 4000;

// What a face keeps, in runs of 6 bytes; a glyph counts as some runs more than it has.
constexpr std::size_t kMostKept = 1 << 17;
constexpr std::size_t kCostOfGlyph = 24;

// Lengths in FreeType have 6 binary places.
constexpr int kPixel = 64;
int Rounded(FT_Pos length) { return static_cast<int>((length + kPixel / 2) >> 6); }

bool Succeeded(FT_Error error) {
    if (error == FT_Err_Out_Of_Memory) throw std::bad_alloc();
    return error == FT_Err_Ok;
}

// Opening and closing files need a lock, using the faces doesn't. All of it stays until the process ends:
// threads may draw as long as it lives.
struct FreeType {
    FreeType() {
        if (FT_Init_FreeType(&library) != FT_Err_Ok) library = nullptr;
    }
    static FreeType& Instance() {
        static FreeType& instance = *new FreeType;
        return instance;
    }

    FT_Library library = nullptr;
    std::mutex mutex;
};

// Sizes

int LineHeightOf(FT_Face face) {
    return std::max(1, Rounded(face->size->metrics.ascender - face->size->metrics.descender));
}

// In units of the outlines.
int AverageWidthOf(FT_Face face) {
    const auto* table = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    return table && table->xAvgCharWidth > 0 ? table->xAvgCharWidth : std::max(1, face->units_per_EM / 2);
}

// Letters are as wide as the em is high, or so wide that their average is `width`.
bool SetEm(FT_Face face, int em, int width) {
    const std::int64_t across = width ? std::int64_t{width} * face->units_per_EM / AverageWidthOf(face) : em;
    return Succeeded(FT_Set_Pixel_Sizes(face,
                                        static_cast<FT_UInt>(std::clamp<std::int64_t>(across, 1, kWidestEm)),
                                        static_cast<FT_UInt>(em)));
}

// The largest size whose line is no higher; hinting may round the first guess up.
bool SetLineHeight(FT_Face face, int height, int width) {
    const int unitsOfLine = face->ascender - face->descender;
    const int guess = unitsOfLine > 0 ? height * face->units_per_EM / unitsOfLine + 1 : height;
    int em = std::clamp(guess, 1, kLargestHeight);
    while (SetEm(face, em, width)) {
        if (em == 1 || LineHeightOf(face) <= height) return true;
        --em;
    }
    return false;
}

// Glyphs

// A vertical stroke becomes a whole number of pixels wider, so that all of them look alike.
void Embolden(FT_GlyphSlot slot) {
    const FT_Pos strength = std::max(1, slot->face->size->metrics.x_ppem / 24) * kPixel;
    FT_Outline_EmboldenXY(&slot->outline, strength, 0);
    slot->advance.x += strength;
}

void Slant(FT_GlyphSlot slot) {
    const FT_Matrix shear{0x10000, 0x3600, 0, 0x10000};  // about 12 degrees
    FT_Outline_Transform(&slot->outline, &shear);
}

void Rotate(FT_GlyphSlot slot, const Turn& turn) {
    const FT_Matrix rotation{turn.Cosine(), -turn.Sine(), turn.Sine(), turn.Cosine()};
    FT_Outline_Transform(&slot->outline, &rotation);
}

void CollectRuns(const FT_Bitmap& bitmap, Glyph& glyph) {
    for (int row = 0; row < static_cast<int>(bitmap.rows); ++row) {
        const unsigned char* bits = bitmap.buffer + static_cast<std::ptrdiff_t>(row) * bitmap.pitch;
        const auto isSet = [bits](int x) { return (bits[x >> 3] >> (7 - (x & 7)) & 1) != 0; };
        const int width = static_cast<int>(bitmap.width);
        for (int x = 0; x < width;) {
            const int begin = x;
            const bool isInk = isSet(x);
            while (x < width && isSet(x) == isInk) ++x;
            if (isInk)
                glyph.runs.push_back({static_cast<std::int16_t>(glyph.top + row),
                                      static_cast<std::int16_t>(glyph.left + begin),
                                      static_cast<std::int16_t>(glyph.left + x)});
        }
    }
}

FaceFamily FamilyOf(unsigned pitchAndFamily) {
    constexpr unsigned kPitch = 3, kFixed = 1, kFamily = 0xF0, kRoman = 0x10, kModern = 0x30;
    if ((pitchAndFamily & kPitch) == kFixed || (pitchAndFamily & kFamily) == kModern)
        return FaceFamily::FixedPitch;
    return (pitchAndFamily & kFamily) == kRoman ? FaceFamily::Serif : FaceFamily::SansSerif;
}

// Keeps the values of the keys that were asked for last.
template <class Key, class Value, std::size_t kMost>
class RecentlyUsed {
public:
    // The value of a key, in the first place; null when it isn't kept.
    Value* Find(const Key& key) {
        const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                        [&](const auto& entry) { return entry.first == key; });
        if (found == m_entries.end()) return nullptr;
        std::rotate(m_entries.begin(), found, found + 1);
        return &m_entries.front().second;
    }

    Value& Add(const Key& key, Value value) {
        if (m_entries.size() == kMost) m_entries.pop_back();
        return m_entries.emplace(m_entries.begin(), key, std::move(value))->second;
    }

private:
    std::vector<std::pair<Key, Value>> m_entries;
};

class FaceCache {
public:
    std::shared_ptr<SizedFace> Find(const FaceStyle& style, const FaceSize& size) {
        const std::lock_guard lock(m_mutex);
        const Key key{style, size};
        std::shared_ptr<SizedFace>* known = m_faces.Find(key);
        if (!known) return m_faces.Add(key, SizedFace::Open(FilesFor(style), style, size));
        // Whoever draws with the full one goes on; those who come get one that keeps what they need.
        if (*known && (*known)->IsFull()) *known = SizedFace::Open(FilesFor(style), style, size);
        return *known;
    }

private:
    struct Key {
        FaceStyle style;
        FaceSize size;
        bool operator==(const Key&) const = default;
    };

    const std::vector<FontFile>& FilesFor(const FaceStyle& style) {
        if (const auto* known = m_files.Find(style)) return *known;
        return m_files.Add(style, FindFontFiles(style));
    }

    static constexpr std::size_t kMostEntries = 32;
    std::mutex m_mutex;
    RecentlyUsed<FaceStyle, std::vector<FontFile>, kMostEntries> m_files;
    RecentlyUsed<Key, std::shared_ptr<SizedFace>, kMostEntries> m_faces;
};

}  // namespace

void SizedFace::CloseFace::operator()(FT_Face face) const {
    const std::lock_guard lock(FreeType::Instance().mutex);
    FT_Done_Face(face);
}

SizedFace::FaceOwner SizedFace::OpenFile(const FontFile& file, const FaceSize& size) {
    FreeType& freeType = FreeType::Instance();
    if (!freeType.library) return nullptr;
    FaceOwner face;
    {
        const std::lock_guard lock(freeType.mutex);
        FT_Face opened = nullptr;
        if (!Succeeded(FT_New_Face(freeType.library, file.path.c_str(), file.index, &opened))) return nullptr;
        face.reset(opened);
    }
    const int height = size.height;
    const bool isSized =
        FT_IS_SCALABLE(face.get()) &&
        (height < 0 ? SetEm(face.get(), -height, size.width) : SetLineHeight(face.get(), height, size.width));
    return isSized ? std::move(face) : nullptr;
}

std::shared_ptr<SizedFace> SizedFace::Open(const std::vector<FontFile>& files, const FaceStyle& style,
                                           const FaceSize& size) {
    for (const FontFile& file : files) {
        if (FaceOwner face = OpenFile(file, size))
            return std::shared_ptr<SizedFace>(new SizedFace(std::move(face), style, Turn(size.escapement)));
    }
    return nullptr;
}

SizedFace::SizedFace(FaceOwner face, const FaceStyle& style, const Turn& direction)
    : m_face(std::move(face)),
      m_direction(direction),
      m_emboldens(style.isBold && !(m_face->style_flags & FT_STYLE_FLAG_BOLD)),
      m_slants(style.isItalic && !(m_face->style_flags & FT_STYLE_FLAG_ITALIC)) {
    const FT_Size_Metrics& metrics = m_face->size->metrics;
    m_baseline = Rounded(metrics.ascender);
    m_lineHeight = LineHeightOf(m_face.get());
    const auto scaled = [&](int units) { return Rounded(FT_MulFix(units, metrics.y_scale)); };
    m_ruleThickness = std::max(1, scaled(m_face->underline_thickness));
    m_underline = m_baseline + std::max(1, scaled(-m_face->underline_position));
}

Glyph SizedFace::Render(char32_t character) const {
    Glyph glyph;
    if (!Succeeded(FT_Load_Char(m_face.get(), character, FT_LOAD_TARGET_MONO | FT_LOAD_NO_BITMAP)))
        return glyph;
    FT_GlyphSlot slot = m_face->glyph;
    if (slot->format != FT_GLYPH_FORMAT_OUTLINE) return glyph;
    if (m_emboldens && slot->outline.n_points > 0) Embolden(slot);
    if (m_slants) Slant(slot);
    if (!m_direction.IsNone()) Rotate(slot, m_direction);
    glyph.advance = std::max(0, Rounded(slot->advance.x));
    // This fails for outlines that leave the range of a bitmap's coordinates, 16 bits.
    if (!Succeeded(FT_Render_Glyph(slot, FT_RENDER_MODE_MONO))) return glyph;
    glyph.left = slot->bitmap_left;
    glyph.top = -slot->bitmap_top;
    glyph.right = glyph.left + static_cast<int>(slot->bitmap.width);
    glyph.bottom = glyph.top + static_cast<int>(slot->bitmap.rows);
    CollectRuns(slot->bitmap, glyph);
    return glyph;
}

FaceMetrics SizedFace::Metrics() const {
    const FT_Size_Metrics& metrics = m_face->size->metrics;
    const auto across = [&](int units) { return Rounded(FT_MulFix(units, metrics.x_scale)); };
    FaceMetrics result;
    result.name = m_face->family_name ? m_face->family_name : "";
    result.internalLeading = std::max(0, m_lineHeight - metrics.y_ppem);
    result.externalLeading = std::max(0, Rounded(metrics.height) - m_lineHeight);
    result.averageWidth = std::max(1, across(AverageWidthOf(m_face.get())));
    result.greatestWidth = std::max(result.averageWidth, across(m_face->max_advance_width));
    result.isBold = m_emboldens || (m_face->style_flags & FT_STYLE_FLAG_BOLD) != 0;
    result.hasFixedPitch = FT_IS_FIXED_WIDTH(m_face.get()) != 0;
    return result;
}

const Glyph& SizedFace::Find(char32_t character, Glyph& spare) {
    const bool isFirst = character < m_firstGlyphs.size();
    if (isFirst) {
        if (const Glyph* known = m_firstGlyphs[character].load(std::memory_order_acquire)) return *known;
    }
    const std::lock_guard lock(m_mutex);
    if (const auto known = m_glyphs.find(character); known != m_glyphs.end()) return known->second;
    spare = Render(character);
    if (IsFull()) return spare;
    m_cost += spare.runs.size() + kCostOfGlyph;
    m_isFull.store(m_cost >= kMostKept, std::memory_order_relaxed);
    spare.runs.shrink_to_fit();
    const Glyph& kept = m_glyphs.emplace(character, std::move(spare)).first->second;
    if (isFirst) m_firstGlyphs[character].store(&kept, std::memory_order_release);
    return kept;
}

std::shared_ptr<SizedFace> FindFace(const LOGFONTA& font) {
    static FaceCache& cache = *new FaceCache;
    FaceStyle style{.family = FamilyOf(font.lfPitchAndFamily),
                    .isBold = font.lfWeight >= kBoldFrom,
                    .isItalic = font.lfItalic != 0};
    std::copy_n(font.lfFaceName, strnlen(font.lfFaceName, style.name.size()), style.name.begin());
    const int height = std::clamp(font.lfHeight, -kLargestHeight, kLargestHeight);
    const int width = std::clamp(font.lfWidth, -kLargestHeight, kLargestHeight);
    return cache.Find(style, {height ? height : kDefaultHeight, std::abs(width), font.lfEscapement % 3600});
}

}  // namespace Zelkor::Platform
