#pragma once
// A surface that writes what is drawn on it as a picture of lines: files for reports.

#include <memory>
#include <string>

#include <kalvo/display/kxdrawadapter.h>

namespace Zelkor {

/// Draws into a document of scalable vector graphics, where the device context of `GDIDrawAdapter` has
/// pixels: shapes, texts and images lie at the same places. Needs the library `kalvo-svg`
/// (`find_package(kalvo COMPONENTS svg)`, `kalvo::svg`). Functions without memory leave
/// `KX_ERROR_ALLOCATION`, and what they were to draw is missing.
/// @code
/// KxImage<KxBW8> part;
/// part.Load("part.tif");
/// KxROI<KxBW8> label(&part, 40, 20, 160, 60);
/// Zelkor::SvgDrawAdapter surface(part.GetWidth(), part.GetHeight());
/// part.Draw(&surface, 1, 1, 0, 0);
/// surface.SetPen(Zelkor::RGBColor::Red, 2);
/// label.DrawFrame(&surface, KX_FRAME_POSITION_INSIDE, 1, 1, 1, 0, 0);
/// surface.Save("report.svg");
/// @endcode
class KX_API SvgDrawAdapter final : public DrawAdapter {
public:
    /// An empty picture of that size in pixels.
    SvgDrawAdapter(int n32Width, int n32Height);
    ~SvgDrawAdapter();
    SvgDrawAdapter(const SvgDrawAdapter&) = delete;
    SvgDrawAdapter& operator=(const SvgDrawAdapter&) = delete;

    /// What `RGBColor::Current` stands for from now on, and how wide all lines are: black and 1 pixel at
    /// first.
    void SetPen(const RGBColor& color, int n32Width = 1);
    /// What `RGBColor::Current` fills with from now on: white at first.
    void SetBrush(const RGBColor& color);

    /// The document with all that was drawn so far.
    std::string GetDocument() const;
    /// Writes the document to a file: `KX_ERROR_FILE_OPEN` or `KX_ERROR_FILE_WRITE`.
    void Save(const char* pszPath) const;

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
    /// Images are embedded as they are; pixels stay squares at any size.
    void DrawImage(const KxGenericROI* pImage, float f32ZoomX, float f32ZoomY, int n32OriginX, int n32OriginY,
                   double f64Alpha, const RGBColor& tint) override;
    DrawPoint GetTextExtent(const std::string& text) override;
    int GetPenWidth() override;

private:
    struct Contents;
    std::unique_ptr<Contents> m_pContents;
};

}  // namespace Zelkor
