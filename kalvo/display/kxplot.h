#pragma once
// Axes of a plot: the ranges, the area they are shown in, and how values become pixels.

#include <cstdint>

#include "kalvo/base/kxexport.h"
#include "kalvo/base/win32types.h"

namespace Zelkor {
struct DrawAdapter;
namespace Kalvo {
class PlotCanvas;
}
}  // namespace Zelkor

/// The axes that every pixel vector draws itself on. Value space has x to the right and y upwards; pixels of
/// a surface have y downwards.
/// @code
/// KxBW8Vector profile;
/// for (int x = 0; x < 100; ++x) profile.AddElement(x * x / 50);
/// profile.SetYRange(0, 255);
/// profile.Draw(CreateCompatibleDC(nullptr), 400, 300, 0, 0);
/// @endcode
class KX_API KxPlot {
public:
    /// Fixes the vertical range. Fails with `KX_ERROR_PARAMETERS_OUT_OF_RANGE`, and keeps range and mode,
    /// unless the second limit is greater than the first.
    void SetYRange(int n32YMin, unsigned int un32YMax);
    /// Lets every drawing of a vector take the range from its elements.
    void SetAutoYRange() { m_bAutoYRange = 1; }

    /// The pixel column of x, and the pixel row of y, in the area of the last drawing.
    int XView(double f64X) const;
    int YView(double f64Y) const;

    /// Draws axes with arrows, a grid in steps of 1, 2 or 5 times a power of ten, labels and titles in black,
    /// and lays out the area within them. A null title is an empty one.
    /// @param n32Width, n32Height  size in pixels of the rectangle for all of it; below 0 means 0
    /// @param n32X, n32Y           its top-left corner
    void DrawAnnotations(Zelkor::DrawAdapter* pSurface, int n32Width, int n32Height, int n32X, int n32Y,
                         const char* pszXTitle, const char* pszYTitle);
    /// The same directly on a context, in its font and text colour, with labels placed by text alignment.
    /// Selected objects, modes and alignment of the context are put back.
    void DrawAnnotations(HDC hDC, int n32Width, int n32Height, int n32X, int n32Y, const char* pszXTitle,
                         const char* pszYTitle);

protected:
    /// Makes the horizontal range that of the indices of a vector, at least 1 long.
    void FitXRange(unsigned int un32NumElements);
    /// Makes the vertical range that of some values, at least 1 high.
    void FitYRange(double f64Least, double f64Most);

    double m_f64XMin = 0;
    double m_f64XMax = 1;
    double m_f64YMin = 0;
    double m_f64YMax = 1;
    std::int32_t m_n32Left = 0;
    std::int32_t m_n32Right = 0;
    std::int32_t m_n32Bottom = 0;
    std::int32_t m_n32Top = 0;
    std::int32_t m_bAutoYRange = 0;

private:
    void DrawAnnotations(Zelkor::Kalvo::PlotCanvas& canvas, int n32Width, int n32Height, int n32X, int n32Y,
                         const char* pszXTitle, const char* pszYTitle);
};
