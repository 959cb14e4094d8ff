#pragma once
// The surface that everything is drawn on: colours, points, and the operations that a surface offers.

#include <string>

#include "kalvo/base/kxexport.h"

class KxGenericROI;

namespace Zelkor {

/// A colour of three components of 0 to 255.
class KX_API RGBColor {
public:
    int m_n32Red;
    int m_n32Green;
    int m_n32Blue;

    constexpr RGBColor(int n32Red, int n32Green, int n32Blue)
        : m_n32Red(n32Red), m_n32Green(n32Green), m_n32Blue(n32Blue) {}
    friend constexpr bool operator==(const RGBColor& left, const RGBColor& right) {
        return left.m_n32Red == right.m_n32Red && left.m_n32Green == right.m_n32Green &&
               left.m_n32Blue == right.m_n32Blue;
    }
    friend constexpr bool operator!=(const RGBColor& left, const RGBColor& right) { return !(left == right); }

    /// No colour: the surface uses its own current pen, brush, text or background colour.
    static const RGBColor Current;
    static const RGBColor Black;
    static const RGBColor White;
    static const RGBColor Gray;
    static const RGBColor Red;
    static const RGBColor Blue;
};

/// A position, or a width and a height, in pixels.
struct DrawPoint {
    double x;
    double y;
};

/// A growable list of points.
class KX_API DrawPointList {
public:
    /// An empty list with room for `n32Capacity` points.
    explicit DrawPointList(int n32Capacity = 32);
    ~DrawPointList();
    DrawPointList(const DrawPointList&) = delete;
    DrawPointList& operator=(const DrawPointList&) = delete;

    /// Appends a point. Without memory: `KX_ERROR_ALLOCATION`, and the list stays as it was.
    void Add(const DrawPoint& point);
    int GetCount() const { return m_n32Count; }
    /// Point `n32Index`. Throws `Zelkor::Kalvo::Exception` with `KX_ERROR_PARAMETER_1_OUT_OF_RANGE` outside
    /// 0 to count - 1.
    DrawPoint& operator[](int n32Index);
    const DrawPoint& operator[](int n32Index) const;

private:
    bool Reserve(int capacity);

    DrawPoint* m_pPoints = nullptr;
    int m_n32Count = 0;
    int m_n32Capacity = 0;
};

/// A surface to draw on. Coordinates are pixels, y grows downwards. A shape of a width and a height covers
/// x to x + width and y to y + height inclusive. `RGBColor::Current` stands for the surface's own colour.
///
/// `GDIDrawAdapter` draws on a device context; callers may derive their own. A surface is used by one thread
/// at a time and never deleted through a pointer to this base.
/// @code
/// const auto drawCross = [](Zelkor::DrawAdapter& surface, int x, int y) {
///     surface.DrawLine(x - 5, y, x + 5, y, Zelkor::RGBColor::Red);
///     surface.DrawLine(x, y - 5, x, y + 5, Zelkor::RGBColor::Red);
/// };
/// Zelkor::GDIDrawAdapter surface(CreateCompatibleDC(nullptr));
/// drawCross(surface, 20, 20);
/// @endcode
struct KX_API DrawAdapter {
    // The order of the virtual operations is part of the binary interface.

    /// Mixes `color` into a pixel: 0 leaves it, 1 replaces it.
    virtual void SetPixel(int n32X, int n32Y, const RGBColor& color, double f64Alpha) = 0;
    /// A line with both end points.
    virtual void DrawLine(int n32X0, int n32Y0, int n32X1, int n32Y1, const RGBColor& color) = 0;
    /// A part of the outline of an ellipse. Angles are radians from the positive x axis towards positive y.
    virtual void DrawArc(int n32X, int n32Y, int n32Width, int n32Height, double f64StartAngle,
                         double f64SweepAngle, const RGBColor& color) = 0;
    virtual void DrawRectangle(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& color) = 0;
    virtual void DrawPolygon(const DrawPointList& points, const RGBColor& color) = 0;
    virtual void DrawEllipse(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& color) = 0;
    virtual void FillRectangle(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& lineColor,
                               const RGBColor& fillColor) = 0;
    virtual void FillEllipse(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& lineColor,
                             const RGBColor& fillColor) = 0;
    virtual void FillPolygon(const DrawPointList& points, const RGBColor& lineColor,
                             const RGBColor& fillColor) = 0;
    /// Lines of text, separated by "\n", with their top-left corner at (x, y). A surface may cut what does
    /// not fit the rectangle of `GetTextExtent`: letters that reach beyond their advance, and the lower part
    /// of lines that follow empty ones, which add no height.
    virtual void DrawText(const std::string& text, int n32X, int n32Y, const RGBColor& textColor) = 0;
    /// The same on a filled rectangle.
    virtual void DrawTextWithBackground(const std::string& text, int n32X, int n32Y,
                                        const RGBColor& textColor, const RGBColor& backgroundColor) = 0;
    /// A region with its top-left corner at (originX, originY).
    /// @param f32ZoomY   0 for the same as `f32ZoomX`
    /// @param f64Alpha   1 opaque, less lets the surface shine through
    /// @param tint       what white becomes in grey images that are not opaque
    virtual void DrawImage(const KxGenericROI* pImage, float f32ZoomX, float f32ZoomY, int n32OriginX,
                           int n32OriginY, double f64Alpha, const RGBColor& tint) = 0;
    /// Width and height of lines of text.
    virtual DrawPoint GetTextExtent(const std::string& text) = 0;
    virtual int GetPenWidth() = 0;

protected:
    ~DrawAdapter() = default;
};

}  // namespace Zelkor
