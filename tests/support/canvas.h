#pragma once
// A surface with memory of its own. Its rows are some bytes apart, in either order, so that tests see what a
// drawing does beside the pixels it should.

#include <algorithm>
#include <string>
#include <vector>

#include "kalvo/raster/surface.h"

namespace Zelkor::Platform {

class Canvas {
public:
    Canvas(int width, int height, PixelLayout layout = PixelLayout::Indexed8, bool isBottomUp = false,
           std::uint8_t fill = 0)
        : m_fill(fill),
          m_pitch(static_cast<std::size_t>(width * BitsPerPixel(layout) + 7) / 8 + kPadding),
          m_memory(m_pitch * static_cast<std::size_t>(height), fill) {
        const auto pitch = static_cast<std::ptrdiff_t>(m_pitch);
        m_surface = {m_memory.data(), pitch, width, height, layout, m_blackAndWhite};
        if (isBottomUp) m_surface.topRow += pitch * (height - 1), m_surface.pitchBytes = -pitch;
    }
    Canvas(const Canvas&) = delete;

    const Surface& View() const { return m_surface; }
    RawPixel operator()(int x, int y) const { return ReadPixel(m_surface, x, y); }

    // What rule(x, y) says of each pixel: ' ' for 0, '#' for 1, 'o' for 2, '+' for others.
    template <class Rule>
    std::string Picture(Rule&& rule) const {
        std::string picture;
        for (int y = 0; y < m_surface.height; ++y, picture += '\n')
            for (int x = 0; x < m_surface.width; ++x) picture += " #o+"[std::min<RawPixel>(rule(x, y), 3)];
        return picture;
    }

    // The pixels, and an '!' for every byte between the rows that changed.
    std::string Picture() const {
        std::string picture = Picture(*this);
        for (std::size_t i = 0; i < m_memory.size(); ++i)
            if (i % m_pitch >= m_pitch - kPadding && m_memory[i] != m_fill) picture += '!';
        return picture;
    }

private:
    static constexpr std::size_t kPadding = 3;

    std::uint8_t m_fill;
    std::size_t m_pitch;
    std::vector<std::uint8_t> m_memory;
    std::vector<RGBQUAD> m_blackAndWhite{{0, 0, 0, 0}, {255, 255, 255, 0}};
    Surface m_surface;
};

}  // namespace Zelkor::Platform
