#pragma once
// Finds the face that a font asks for, and makes the pixels of its characters: black or nothing, hinted to
// the grid. Both are kept for all contexts and threads, within bounds.

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "kalvo/base/win32types.h"
#include "kalvo/raster/fontfiles.h"
#include "kalvo/raster/turn.h"

struct FT_FaceRec_;

namespace Zelkor::Platform {

// Pixels x0 <= x < x1 of a row, counted from the pen's place on the baseline; y grows downwards.
struct GlyphRun {
    std::int16_t y;
    std::int16_t x0;
    std::int16_t x1;
};

struct Glyph {
    int advance = 0;                               // how far the pen moves
    int left = 0, top = 0, right = 0, bottom = 0;  // the box around all runs
    std::vector<GlyphRun> runs;
};

struct FaceSize {
    int height = 0;      // as in LOGFONTA, but not 0 and within bounds
    int width = 0;       // of the average letter; 0: as it is drawn
    int escapement = 0;  // tenths of a degree, counter-clockwise

    bool operator==(const FaceSize&) const = default;
};

// What is of interest apart from drawing; lengths are in pixels.
struct FaceMetrics {
    std::string name;         // of the family
    int internalLeading = 0;  // what a line has above the em square
    int externalLeading = 0;  // what should stay free between lines
    int averageWidth = 0;
    int greatestWidth = 0;
    bool isBold = false;
    bool hasFixedPitch = false;
};

// A face of letters at a size. Any number of threads may use it at once.
class SizedFace {
public:
    // The first of the files that can be used; null when none can.
    static std::shared_ptr<SizedFace> Open(const std::vector<FontFile>& files, const FaceStyle& style,
                                           const FaceSize& size);

    // In pixels, counted downwards from the top of a line.
    int Baseline() const { return m_baseline; }
    int LineHeight() const { return m_lineHeight; }
    int Underline() const { return m_underline; }
    int StrikeOut() const { return m_baseline - m_baseline / 3; }
    int RuleThickness() const { return m_ruleThickness; }

    // Where lines run; glyphs are turned already. All lengths are those of an upright line.
    const Turn& Direction() const { return m_direction; }

    FaceMetrics Metrics() const;

    // A character's glyph, or the box that the face has for missing ones. It lives as long as the face, or
    // stands in `spare` when the face already keeps all it may.
    const Glyph& Find(char32_t character, Glyph& spare);

    bool IsFull() const { return m_isFull.load(std::memory_order_relaxed); }

private:
    struct CloseFace {
        void operator()(FT_FaceRec_* face) const;
    };
    using FaceOwner = std::unique_ptr<FT_FaceRec_, CloseFace>;

    SizedFace(FaceOwner face, const FaceStyle& style, const Turn& direction);
    static FaceOwner OpenFile(const FontFile& file, const FaceSize& size);
    Glyph Render(char32_t character) const;

    const FaceOwner m_face;
    const Turn m_direction;
    const bool m_emboldens;  // the style asks for what the face itself doesn't have
    const bool m_slants;
    int m_baseline = 0;
    int m_lineHeight = 0;
    int m_underline = 0;
    int m_ruleThickness = 1;
    std::mutex m_mutex;  // guards the face and the map; the table is for reading without it
    std::unordered_map<char32_t, Glyph> m_glyphs;
    std::array<std::atomic<const Glyph*>, 256> m_firstGlyphs{};
    std::size_t m_cost = 0;
    std::atomic<bool> m_isFull = false;
};

// The face that serves a font: its own, or the one most like it. Null when the machine has none at all.
std::shared_ptr<SizedFace> FindFace(const LOGFONTA& font);

}  // namespace Zelkor::Platform
