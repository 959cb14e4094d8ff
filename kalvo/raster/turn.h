#pragma once
// What is drawn at an angle: lines of text, each in a frame of its own whose x runs along the line and whose
// y runs down from it.

#include "kalvo/raster/lines.h"

namespace Zelkor::Platform {

// How such a frame lies on a surface. It turns about its origin, a corner of pixels.
class Turn {
public:
    Turn() = default;
    explicit Turn(int tenthsOfDegree);  // counter-clockwise, any number

    // Of its angle, times 2^16. Whole quarters are exact.
    int Cosine() const { return m_cosine; }
    int Sine() const { return m_sine; }
    bool IsNone() const { return m_cosine == kOne; }

    // How far a place in the frame lies from its origin on the surface, in whole pixels.
    Position Offset(Position place) const;

    static constexpr int kOne = 1 << 16;

private:
    int m_cosine = kOne;
    int m_sine = 0;
};

// Paints the pixels whose centres are in a box of the frame at `origin`.
void PaintTurnedBox(const Surface& surface, Position origin, const Turn& turn, const Box& box,
                    RawPixel pixel);

}  // namespace Zelkor::Platform
