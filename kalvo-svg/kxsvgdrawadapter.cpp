// A pixel of a device context is a square of size 1 here, so lines run through the middles of pixels.

#include "kalvo-svg/kxsvgdrawadapter.h"

#include <png.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <sstream>
#include <vector>

#include "kalvo/display/kxgdidrawadapter.h"
#include "kalvo/display/kximagedisplay.h"
#include "kalvo/frame/kxerror.h"
#include "kalvo/gdi/gdi.h"
#include "kalvo/image/kximage.h"

namespace Zelkor {
namespace {

constexpr int kFontPixels = 13;
constexpr int kTextMargin = 4;  // that a line of text has to the right of its advance

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        switch (character) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += static_cast<unsigned char>(character) < ' ' ? ' ' : character;
        }
    }
    return escaped;
}

std::string Base64(const std::vector<std::uint8_t>& bytes) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(bytes.size() - i, 3);
        std::uint32_t group = 0;
        for (std::size_t j = 0; j < 3; ++j) group = group << 8 | (j < count ? bytes[i + j] : 0u);
        for (std::size_t j = 0; j < 4; ++j) text += j <= count ? kDigits[group >> (18 - 6 * j) & 63] : '=';
    }
    return text;
}

// What a device context makes of an image: rows of blue, green and red.
KxImage<KxC24> Drawn(const KxGenericROI& image) {
    KxImage<KxC24> drawn(image.GetWidth(), image.GetHeight());
    const HDC context = KxOpenImageDC(&drawn);
    GDIDrawAdapter(context).DrawImage(&image, 1, 1, 0, 0, 1, RGBColor::Current);
    KxCloseImageDC(&drawn, context);
    return drawn;
}

std::vector<std::uint8_t> Png(KxImage<KxC24>& image) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(image.GetWidth());
    png.height = static_cast<png_uint_32>(image.GetHeight());
    png.format = PNG_FORMAT_BGR;
    std::vector<std::uint8_t> bytes(PNG_IMAGE_PNG_SIZE_MAX(png));
    png_alloc_size_t size = bytes.size();
    const int isWritten = png_image_write_to_memory(&png, bytes.data(), &size, 0, image.GetImagePtr(),
                                                    image.GetRowPitch(), nullptr);
    bytes.resize(isWritten ? size : 0);
    return bytes;
}

bool IsGray(KX_IMAGE_TYPES type) {
    return type == KX_IMAGE_BW8 || type == KX_IMAGE_BW16 || type == KX_IMAGE_BW32;
}

// White becomes the tint, darker greys become darker tints.
void Tint(KxImage<KxC24>& image, const RGBColor& tint) {
    const auto scaled = [](int grey, int component) {
        return static_cast<std::uint8_t>(grey * component / 255);
    };
    for (int y = 0; y < image.GetHeight(); ++y)
        for (int x = 0; x < image.GetWidth(); ++x) {
            const int grey = image.GetPixel(x, y).m_un8C0;
            image.SetPixel(
                {scaled(grey, tint.m_n32Red), scaled(grey, tint.m_n32Green), scaled(grey, tint.m_n32Blue)}, x,
                y);
        }
}

// A context that knows how wide texts are.
class Ruler {
public:
    Ruler() : m_context(CreateCompatibleDC(nullptr)) {}
    ~Ruler() { DeleteDC(m_context); }
    Ruler(const Ruler&) = delete;
    Ruler& operator=(const Ruler&) = delete;

    DrawPoint Extent(const std::string& text) const { return GDIDrawAdapter(m_context).GetTextExtent(text); }

private:
    HDC m_context;
};

}  // namespace

struct SvgDrawAdapter::Contents {
    int width, height;
    RGBColor pen = RGBColor::Black, brush = RGBColor::White;
    int penWidth = 1;
    std::ostringstream elements = {};
    Ruler ruler = {};

    // "rgb(1,2,3)"
    static std::string Color(const RGBColor& color, const RGBColor& current) {
        const RGBColor& shown = color == RGBColor::Current ? current : color;
        return "\"rgb(" + std::to_string(shown.m_n32Red & 255) + "," +
               std::to_string(shown.m_n32Green & 255) + "," + std::to_string(shown.m_n32Blue & 255) + ")\"";
    }
    std::string Line(const RGBColor& color) const {
        return " stroke=" + Color(color, pen) + " stroke-width=\"" + std::to_string(penWidth) + "\"";
    }
    std::string Outline(const RGBColor& color) const { return Line(color) + " fill=\"none\""; }
    std::string Filling(const RGBColor& lineColor, const RGBColor& fillColor) const {
        return Line(lineColor) + " fill=" + Color(fillColor, brush);
    }

    void Rectangle(int x, int y, int boxWidth, int boxHeight, const std::string& style) {
        elements << "<rect x=\"" << x + 0.5 << "\" y=\"" << y + 0.5 << "\" width=\"" << boxWidth
                 << "\" height=\"" << boxHeight << '"' << style << "/>\n";
    }
    void Ellipse(int x, int y, int boxWidth, int boxHeight, const std::string& style) {
        elements << "<ellipse cx=\"" << x + (boxWidth + 1) / 2.0 << "\" cy=\"" << y + (boxHeight + 1) / 2.0
                 << "\" rx=\"" << boxWidth / 2.0 << "\" ry=\"" << boxHeight / 2.0 << '"' << style << "/>\n";
    }
    void Polygon(const DrawPointList& points, const std::string& style) {
        elements << "<polygon points=\"";
        for (int i = 0; i < points.GetCount(); ++i)
            elements << std::trunc(points[i].x) + 0.5 << ',' << std::trunc(points[i].y) + 0.5 << ' ';
        elements << '"' << style << "/>\n";
    }
    void Text(const std::string& text, int x, int y, const RGBColor& color) {
        const double middle = x + (ruler.Extent(text).x + kTextMargin) / 2;
        std::istringstream lines(text);
        double top = y;
        for (std::string line; std::getline(lines, line);) {
            const DrawPoint extent = ruler.Extent(line);
            if (line.empty()) continue;
            elements << "<text x=\"" << middle << "\" y=\"" << top + extent.y * 4 / 5 << "\" textLength=\""
                     << extent.x << "\" fill=" << Color(color, RGBColor::Black) << ">" << Escaped(line)
                     << "</text>\n";
            top += extent.y;
        }
    }
};

SvgDrawAdapter::SvgDrawAdapter(int n32Width, int n32Height)
    : m_pContents(new Contents{std::max(n32Width, 1), std::max(n32Height, 1)}) {}

SvgDrawAdapter::~SvgDrawAdapter() = default;

void SvgDrawAdapter::SetPen(const RGBColor& color, int n32Width) {
    m_pContents->pen = color;
    m_pContents->penWidth = std::max(n32Width, 1);
}

void SvgDrawAdapter::SetBrush(const RGBColor& color) { m_pContents->brush = color; }

std::string SvgDrawAdapter::GetDocument() const {
    const std::string width = std::to_string(m_pContents->width),
                      height = std::to_string(m_pContents->height);
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" width=\"" +
           width + "\" height=\"" + height + "\" viewBox=\"0 0 " + width + " " + height +
           "\" stroke-linecap=\"square\" font-family=\"DejaVu Sans,sans-serif\" font-size=\"" +
           std::to_string(kFontPixels) + "\" text-anchor=\"middle\">\n" + m_pContents->elements.str() +
           "</svg>\n";
}

void SvgDrawAdapter::Save(const char* pszPath) const {
    std::FILE* const file = pszPath ? std::fopen(pszPath, "wb") : nullptr;
    if (!file) {
        KxSetError(KX_ERROR_FILE_OPEN);
        return;
    }
    const std::string document = GetDocument();
    const bool isWritten = std::fwrite(document.data(), 1, document.size(), file) == document.size();
    if (std::fclose(file) != 0 || !isWritten) KxSetError(KX_ERROR_FILE_WRITE);
}

void SvgDrawAdapter::SetPixel(int n32X, int n32Y, const RGBColor& color, double f64Alpha) {
    m_pContents->elements << "<rect x=\"" << n32X << "\" y=\"" << n32Y
                          << "\" width=\"1\" height=\"1\" fill=" << Contents::Color(color, m_pContents->pen)
                          << " fill-opacity=\"" << std::clamp(f64Alpha, 0.0, 1.0) << "\"/>\n";
}

void SvgDrawAdapter::DrawLine(int n32X0, int n32Y0, int n32X1, int n32Y1, const RGBColor& color) {
    m_pContents->elements << "<path d=\"M" << n32X0 + 0.5 << ' ' << n32Y0 + 0.5 << 'L' << n32X1 + 0.5 << ' '
                          << n32Y1 + 0.5 << '"' << m_pContents->Outline(color) << "/>\n";
}

void SvgDrawAdapter::DrawArc(int n32X, int n32Y, int n32Width, int n32Height, double f64StartAngle,
                             double f64SweepAngle, const RGBColor& color) {
    if (std::abs(f64SweepAngle) >= 2 * std::numbers::pi)
        return DrawEllipse(n32X, n32Y, n32Width, n32Height, color);
    const double radiusX = n32Width / 2.0, radiusY = n32Height / 2.0;
    const auto point = [&](double angle) {
        std::ostringstream text;
        text << n32X + radiusX + 0.5 + std::cos(angle) * radiusX << ' '
             << n32Y + radiusY + 0.5 + std::sin(angle) * radiusY;
        return text.str();
    };
    m_pContents->elements << "<path d=\"M" << point(f64StartAngle) << 'A' << radiusX << ' ' << radiusY
                          << " 0 " << (std::abs(f64SweepAngle) > std::numbers::pi) << ' '
                          << (f64SweepAngle > 0) << ' ' << point(f64StartAngle + f64SweepAngle) << '"'
                          << m_pContents->Outline(color) << "/>\n";
}

void SvgDrawAdapter::DrawRectangle(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& color) {
    m_pContents->Rectangle(n32X, n32Y, n32Width, n32Height, m_pContents->Outline(color));
}

void SvgDrawAdapter::DrawPolygon(const DrawPointList& points, const RGBColor& color) {
    m_pContents->Polygon(points, m_pContents->Outline(color));
}

void SvgDrawAdapter::DrawEllipse(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& color) {
    m_pContents->Ellipse(n32X, n32Y, n32Width, n32Height, m_pContents->Outline(color));
}

void SvgDrawAdapter::FillRectangle(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& lineColor,
                                   const RGBColor& fillColor) {
    m_pContents->Rectangle(n32X, n32Y, n32Width, n32Height, m_pContents->Filling(lineColor, fillColor));
}

void SvgDrawAdapter::FillEllipse(int n32X, int n32Y, int n32Width, int n32Height, const RGBColor& lineColor,
                                 const RGBColor& fillColor) {
    m_pContents->Ellipse(n32X, n32Y, n32Width, n32Height, m_pContents->Filling(lineColor, fillColor));
}

void SvgDrawAdapter::FillPolygon(const DrawPointList& points, const RGBColor& lineColor,
                                 const RGBColor& fillColor) {
    m_pContents->Polygon(points, m_pContents->Filling(lineColor, fillColor));
}

void SvgDrawAdapter::DrawText(const std::string& text, int n32X, int n32Y, const RGBColor& textColor) {
    m_pContents->Text(text, n32X, n32Y, textColor);
}

void SvgDrawAdapter::DrawTextWithBackground(const std::string& text, int n32X, int n32Y,
                                            const RGBColor& textColor, const RGBColor& backgroundColor) {
    const DrawPoint extent = GetTextExtent(text);
    m_pContents->elements << "<rect x=\"" << n32X << "\" y=\"" << n32Y << "\" width=\""
                          << extent.x + kTextMargin << "\" height=\"" << extent.y + 2
                          << "\" fill=" << Contents::Color(backgroundColor, m_pContents->brush) << "/>\n";
    DrawText(text, n32X, n32Y, textColor);
}

void SvgDrawAdapter::DrawImage(const KxGenericROI* pImage, float f32ZoomX, float f32ZoomY, int n32OriginX,
                               int n32OriginY, double f64Alpha, const RGBColor& tint) {
    if (!pImage || pImage->Void() || pImage->GetWidth() <= 0 || pImage->GetHeight() <= 0) return;
    const bool isTinted = !(tint == RGBColor::Current) && f64Alpha != 1;
    const KX_IMAGE_TYPES type = const_cast<KxGenericROI*>(pImage)->GetType();
    if (isTinted && type == KX_IMAGE_BW1) return;
    KxImage<KxC24> drawn = Drawn(*pImage);
    if (isTinted && IsGray(type)) Tint(drawn, tint);
    const auto zoomed = [](int pixels, float zoom) { return std::trunc(static_cast<float>(pixels) * zoom); };
    m_pContents->elements << "<image x=\"" << n32OriginX << "\" y=\"" << n32OriginY << "\" width=\""
                          << zoomed(pImage->GetWidth(), f32ZoomX) << "\" height=\""
                          << zoomed(pImage->GetHeight(), f32ZoomY == 0 ? f32ZoomX : f32ZoomY)
                          << "\" opacity=\"" << std::clamp(f64Alpha, 0.0, 1.0)
                          << "\" preserveAspectRatio=\"none\" style=\"image-rendering:pixelated\" "
                             "xlink:href=\"data:image/png;base64,"
                          << Base64(Png(drawn)) << "\"/>\n";
}

DrawPoint SvgDrawAdapter::GetTextExtent(const std::string& text) { return m_pContents->ruler.Extent(text); }

int SvgDrawAdapter::GetPenWidth() { return m_pContents->penWidth; }

}  // namespace Zelkor
