// Pixel vectors as curves of a plot.

#include <algorithm>
#include <type_traits>

#include "kalvo/display/kxdrawadapter.h"
#include "kalvo/display/kxgdidrawadapter.h"
#include "kalvo/display/kxpixelvector.h"
#include "kalvo/frame/boundary.h"
#include "kalvo/frame/roundtoint.h"
#include "kalvo/gdi/gdi.h"

using namespace Zelkor::Kalvo;
using Zelkor::DrawAdapter;
using Zelkor::RGBColor;

namespace {

// Lines between `count` values, over their indices.
template <class ValueAt>
void DrawCurve(const KxPlot& plot, DrawAdapter& surface, unsigned count, const RGBColor& color,
               const ValueAt& valueAt) {
    if (count == 0) return;
    int x = plot.XView(0), y = plot.YView(valueAt(0));
    for (unsigned i = 1; i < count; ++i) {
        const int nextX = plot.XView(i), nextY = plot.YView(valueAt(i));
        surface.DrawLine(x, y, nextX, nextY, color);
        x = nextX;
        y = nextY;
    }
}

// The least and the most of 0 and the elements, read as numbers of that type.
template <class Number, class Pixel>
std::pair<Number, Number> RangeOf(const Pixel* elements, unsigned count) {
    Number least = 0, most = 0;
    for (unsigned i = 0; i < count; ++i) {
        const auto value = static_cast<Number>(elements[i].m_Value);
        least = std::min(least, value);
        most = std::max(most, value);
    }
    return {least, most};
}

void DrawIndexAndValue(KxPlot& plot, DrawAdapter& surface, float width, float height, float x, float y) {
    plot.DrawAnnotations(&surface, TruncateToInt(width), TruncateToInt(height), TruncateToInt(x),
                         TruncateToInt(y), "Index", "Value");
}

RGBColor ColorOfPen(void* pen) {
    LOGPEN description{};
    if (!pen || !GetObjectA(pen, sizeof description, &description)) return RGBColor::Current;
    const COLORREF color = description.lopnColor;
    return {GetRValue(color), GetGValue(color), GetBValue(color)};
}

}  // namespace

template <class Pixel>
void KxGrayVectorTemplate<Pixel>::Draw(DrawAdapter* pSurface, float f32Width, float f32Height, float f32X,
                                       float f32Y) {
    using Unsigned = typename Pixel::ValueType;
    using Signed = std::make_signed_t<Unsigned>;
    AtBoundary("KxVector::Draw", [&] {
        const Pixel* elements = this->GetDataPtr();
        const unsigned count = this->GetNumElements();
        const auto drawAs = [&]<class Number>(std::type_identity<Number>) {
            FitXRange(count);
            if (m_bAutoYRange) {
                const auto [least, most] = RangeOf<Number>(elements, count);
                FitYRange(least, most);
            }
            DrawIndexAndValue(*this, *pSurface, f32Width, f32Height, f32X, f32Y);
            DrawCurve(*this, *pSurface, count, RGBColor::Current,
                      [&](unsigned i) { return static_cast<Number>(elements[i].m_Value); });
        };
        if (m_bUnsigned)
            drawAs(std::type_identity<Unsigned>());
        else
            drawAs(std::type_identity<Signed>());
    });
}

template <class Pixel>
void KxGrayVectorTemplate<Pixel>::Draw(HDC hDC, float f32Width, float f32Height, float f32X, float f32Y) {
    Zelkor::GDIDrawAdapter surface(hDC);
    Draw(&surface, f32Width, f32Height, f32X, f32Y);
}

void KxC24Vector::Draw(DrawAdapter* pSurface, float f32Width, float f32Height, float f32X, float f32Y,
                       const RGBColor& color0, const RGBColor& color1, const RGBColor& color2) {
    AtBoundary("KxVector::Draw", [&] {
        const KxC24* elements = GetDataPtr();
        const unsigned count = GetNumElements();
        FitXRange(count);
        if (m_bAutoYRange) {
            int most = 0;
            for (unsigned i = 0; i < count; ++i)
                most = std::max<int>({most, elements[i].m_un8C0, elements[i].m_un8C1, elements[i].m_un8C2});
            FitYRange(0, most);
        }
        DrawIndexAndValue(*this, *pSurface, f32Width, f32Height, f32X, f32Y);
        DrawCurve(*this, *pSurface, count, color0, [&](unsigned i) { return elements[i].m_un8C0; });
        DrawCurve(*this, *pSurface, count, color1, [&](unsigned i) { return elements[i].m_un8C1; });
        DrawCurve(*this, *pSurface, count, color2, [&](unsigned i) { return elements[i].m_un8C2; });
    });
}

void KxC24Vector::Draw(HDC hDC, float f32Width, float f32Height, float f32X, float f32Y, void* hPen0,
                       void* hPen1, void* hPen2) {
    Zelkor::GDIDrawAdapter surface(hDC);
    Draw(&surface, f32Width, f32Height, f32X, f32Y, ColorOfPen(hPen0), ColorOfPen(hPen1), ColorOfPen(hPen2));
}

#define KX_INSTANTIATE(Pixel)                                                                         \
    template KX_API void KxGrayVectorTemplate<Pixel>::Draw(DrawAdapter*, float, float, float, float); \
    template KX_API void KxGrayVectorTemplate<Pixel>::Draw(HDC, float, float, float, float);
KX_INSTANTIATE(KxBW8)
KX_INSTANTIATE(KxBW16)
KX_INSTANTIATE(KxBW32)
#undef KX_INSTANTIATE
