#pragma once
// Vectors of pixels: profiles, histograms and lookup tables that plot themselves.

#include "kalvo/display/kxplot.h"
#include "kalvo/vectors/kxvector.h"

namespace Zelkor {
class RGBColor;
}

/// What the three grey vectors share. See `KxVectorTemplate` for the elements and their file, and `KxPlot`
/// for the axes.
template <class Pixel>
class KX_API KxGrayVectorTemplate : public KxVectorTemplate<Pixel>, public KxPlot {
public:
    /// An empty vector with room for `un32MaxElements` elements. Its plots take their vertical range from the
    /// elements. Without memory: `KX_ERROR_ALLOCATION`, and no room.
    /// @param bUnsigned  how plots read the elements: as unsigned numbers, or (0) as two's-complement ones
    explicit KxGrayVectorTemplate(unsigned int un32MaxElements = 0, int bUnsigned = 1);

    int GetUnsigned() const { return m_bUnsigned; }
    void SetUnsigned(int bUnsigned) { m_bUnsigned = bUnsigned; }

    /// The mean index of elements `un32First` to `un32Last` (0xFFFFFFFF: the last one), weighted with the
    /// elements as unsigned numbers; 0 when all are 0. Sums and products wrap at 32 bits. Failures give 0:
    /// `KX_ERROR_VECTOR_NUMBER_OF_ELEMENTS` (an empty vector), `KX_ERROR_PARAMETER_1_OUT_OF_RANGE`,
    /// `KX_ERROR_PARAMETER_2_OUT_OF_RANGE`, `KX_ERROR_PARAMETERS_OUT_OF_RANGE` (first after last).
    float WeightedMoment(unsigned int un32First, unsigned int un32Last) const;
    /// The same.
    float WeighedMoment(unsigned int un32First, unsigned int un32Last) const {
        return WeightedMoment(un32First, un32Last);
    }

    /// Plots the elements over their indices as one curve in the current pen of the surface. The rectangle is
    /// in pixels; fractions are cut off.
    void Draw(Zelkor::DrawAdapter* pSurface, float f32Width, float f32Height, float f32X, float f32Y);
    void Draw(HDC hDC, float f32Width, float f32Height, float f32X, float f32Y);

private:
    std::int32_t m_bUnsigned;
};

extern template class KxGrayVectorTemplate<KxBW8>;
extern template class KxGrayVectorTemplate<KxBW16>;
extern template class KxGrayVectorTemplate<KxBW32>;

/// A vector of 8-bit grey values; with 256 elements also a lookup table for drawing.
/// @code
/// KxImage<KxBW8> image(64, 48);
/// KxBW8Vector brighter;
/// brighter.SetupGainOffset(1.5f, 10, 1);
/// image.Draw(CreateCompatibleDC(nullptr), &brighter, 1, 1);  // shown through the table
/// @endcode
class KX_API KxBW8Vector : public KxGrayVectorTemplate<KxBW8> {
public:
    using KxGrayVectorTemplate::KxGrayVectorTemplate;

    /// Fills 256 elements: `below` for indices below `threshold`, `above` from there on. Without memory:
    /// `KX_ERROR_ALLOCATION`, the vector is unchanged. The same holds below.
    void SetupThreshold(KxBW8 threshold, KxBW8 below, KxBW8 above);
    /// Fills 256 elements with index x gain + offset, cut off to an integer of 0 to 255. A gamma other than 1
    /// makes it a power curve: below 1 before gain and offset, above 1 after them.
    void SetupGainOffset(float f32Gain, float f32Offset, float f32Gamma);
};

/// A vector of 16-bit grey values.
class KX_API KxBW16Vector : public KxGrayVectorTemplate<KxBW16> {
public:
    using KxGrayVectorTemplate::KxGrayVectorTemplate;
};

/// A vector of 32-bit grey values, for instance a histogram.
class KX_API KxBW32Vector : public KxGrayVectorTemplate<KxBW32> {
public:
    using KxGrayVectorTemplate::KxGrayVectorTemplate;
};

/// A vector of colours; with 256 elements also a lookup table for drawing.
class KX_API KxC24Vector : public KxVectorTemplate<KxC24>, public KxPlot {
public:
    /// An empty vector with room for `un32MaxElements` elements, as for grey ones.
    explicit KxC24Vector(unsigned int un32MaxElements = 0);

    /// Plots three curves: `m_un8C0` in `color0`, then `m_un8C1` in `color1`, then `m_un8C2` in `color2`.
    void Draw(Zelkor::DrawAdapter* pSurface, float f32Width, float f32Height, float f32X, float f32Y,
              const Zelkor::RGBColor& color0, const Zelkor::RGBColor& color1, const Zelkor::RGBColor& color2);
    /// The same in the colours of three pens; null stands for the current pen.
    void Draw(HDC hDC, float f32Width, float f32Height, float f32X, float f32Y, void* hPen0, void* hPen1,
              void* hPen2);
};

/// A vector of signed integers. It has axes, but does not draw itself.
class KX_API KxINT32Vector : public KxVectorTemplate<KxINT32>, public KxPlot {
public:
    /// An empty vector with room for `un32MaxElements` elements, as for grey ones.
    explicit KxINT32Vector(unsigned int un32MaxElements = 0);
};
