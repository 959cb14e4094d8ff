#pragma once
// The surface that draws on a device context.

#include "kalvo/base/win32types.h"
#include "kalvo/display/kxdrawadapter.h"

namespace Zelkor {

/// Draws on a device context, which stays the caller's. Every operation leaves the context's selected
/// objects, colours, background mode and viewport origin as they were. Failures of the context are not
/// reported.
/// @code
/// KxImage<KxC24> image(64, 48);
/// const HDC hdc = CreateCompatibleDC(nullptr);
/// const HBITMAP bitmap = CreateCompatibleBitmap(nullptr, 128, 96);
/// const HGDIOBJ ownBitmap = SelectObject(hdc, bitmap);
/// Zelkor::GDIDrawAdapter surface(hdc);
/// surface.DrawImage(&image, 2, 2, 0, 0, 0.5, Zelkor::RGBColor::Current);  // twice as large, half opaque
/// SelectObject(hdc, ownBitmap);
/// DeleteDC(hdc);
/// DeleteObject(bitmap);
/// @endcode
class KX_API GDIDrawAdapter : public DrawAdapter {
public:
    explicit GDIDrawAdapter(HDC hDC) : m_hDC(hDC) {}
    virtual ~GDIDrawAdapter() = default;

    void SetPixel(int n32X, int n32Y, const RGBColor& color, double f64Alpha) override;
    void DrawLine(int n32X0, int n32Y0, int n32X1, int n32Y1, const RGBColor& color) override;
    void DrawArc(int n32X, int n32Y, int n32Width, int n32Height, double f64StartAngle, double f64SweepAngle,
                 const RGBColor& color) override;
    void DrawRectangle(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& color) override;
    void DrawPolygon(const DrawPointList& points, const RGBColor& color) override;
    void DrawEllipse(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& color) override;
    void FillRectangle(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& lineColor,
                       const RGBColor& fillColor) override;
    void FillEllipse(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& lineColor,
                     const RGBColor& fillColor) override;
    void FillPolygon(const DrawPointList& points, const RGBColor& lineColor,
                     const RGBColor& fillColor) override;
    void DrawText(const std::string& text, int n32X, int n32Y, const RGBColor& textColor) override;
    void DrawTextWithBackground(const std::string& text, int n32X, int n32Y, const RGBColor& textColor,
                                const RGBColor& backgroundColor) override;
    /// Draws `KxBW1`, `KxBW8`, `KxBW16`, `KxBW32` (their high bytes), `KxC15`, `KxC16`, `KxC24` and `KxC24A`;
    /// nothing for other types and for void images. The upper byte of `KxC24A` is ignored.
    ///
    /// A tint counts for grey images that are not opaque; bilevel ones are not drawn with it. `KxBW16` and
    /// `KxBW32` are drawn opaque unless tinted. Without memory for a copy: `KX_ERROR_ALLOCATION`.
    void DrawImage(const KxGenericROI* pImage, float f32ZoomX, float f32ZoomY, int n32OriginX, int n32OriginY,
                   double f64Alpha, const RGBColor& tint) override;
    DrawPoint GetTextExtent(const std::string& text) override;
    /// The width of the pen selected in the context.
    int GetPenWidth() override;

private:
    HDC m_hDC;
};

}  // namespace Zelkor
