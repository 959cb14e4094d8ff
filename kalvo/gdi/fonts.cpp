// Fonts: making them, and what they turn out to be on this machine.

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "kalvo/gdi/objects.h"
#include "kalvo/raster/glyphs.h"

namespace Zelkor::Platform {
namespace {

TEXTMETRICA MetricsOf(const LOGFONTA& font, const SizedFace& face) {
    const FaceMetrics metrics = face.Metrics();
    TEXTMETRICA result{};
    result.tmHeight = face.LineHeight();
    result.tmAscent = face.Baseline();
    result.tmDescent = face.LineHeight() - face.Baseline();
    result.tmInternalLeading = metrics.internalLeading;
    result.tmExternalLeading = metrics.externalLeading;
    result.tmAveCharWidth = metrics.averageWidth;
    result.tmMaxCharWidth = metrics.greatestWidth;
    result.tmWeight = metrics.isBold ? FW_BOLD : FW_NORMAL;
    result.tmDigitizedAspectX = result.tmDigitizedAspectY = 1;
    result.tmFirstChar = result.tmBreakChar = ' ';
    result.tmLastChar = 0xFF;
    result.tmItalic = font.lfItalic;
    result.tmUnderlined = font.lfUnderline;
    result.tmStruckOut = font.lfStrikeOut;
    result.tmPitchAndFamily = static_cast<BYTE>((font.lfPitchAndFamily & 0xF0) | TMPF_VECTOR | TMPF_TRUETYPE |
                                                (metrics.hasFixedPitch ? 0 : TMPF_FIXED_PITCH));
    result.tmCharSet = font.lfCharSet;
    return result;
}

}  // namespace
}  // namespace Zelkor::Platform

using namespace Zelkor::Platform;

HFONT CreateFontA(int n32Height, int n32Width, int n32Escapement, int n32Orientation, int n32Weight,
                  DWORD un32Italic, DWORD un32Underline, DWORD un32StrikeOut, DWORD un32CharSet,
                  DWORD un32OutPrecision, DWORD un32ClipPrecision, DWORD un32Quality,
                  DWORD un32PitchAndFamily, const char* pszFaceName) {
    LOGFONTA font{};
    font.lfHeight = n32Height;
    font.lfWidth = n32Width;
    font.lfEscapement = n32Escapement;
    font.lfOrientation = n32Orientation;
    font.lfWeight = n32Weight;
    font.lfItalic = un32Italic != 0;
    font.lfUnderline = un32Underline != 0;
    font.lfStrikeOut = un32StrikeOut != 0;
    font.lfCharSet = static_cast<BYTE>(un32CharSet);
    font.lfOutPrecision = static_cast<BYTE>(un32OutPrecision);
    font.lfClipPrecision = static_cast<BYTE>(un32ClipPrecision);
    font.lfQuality = static_cast<BYTE>(un32Quality);
    font.lfPitchAndFamily = static_cast<BYTE>(un32PitchAndFamily);
    if (pszFaceName) std::string_view(pszFaceName).copy(font.lfFaceName, sizeof font.lfFaceName - 1);
    return CreateFontIndirectA(&font);
}

HFONT CreateFontIndirectA(const LOGFONTA* pFont) {
    if (!pFont) return nullptr;
    LOGFONTA font = *pFont;
    font.lfFaceName[sizeof font.lfFaceName - 1] = 0;
    return OrNeutral([&] { return static_cast<HFONT>(Register(std::make_unique<Font>(font))); });
}

BOOL GetTextMetricsA(HDC hDC, TEXTMETRICA* pMetrics) {
    const Context* context = Find<Context>(hDC);
    if (!context || !pMetrics) return 0;
    return OrNeutral([&] {
        const LOGFONTA& font = context->font->logical;
        const auto face = FindFace(font);
        if (face) *pMetrics = MetricsOf(font, *face);
        return BOOL{face != nullptr};
    });
}

int GetTextFaceA(HDC hDC, int n32Size, char* pszName) {
    const Context* context = Find<Context>(hDC);
    if (!context || (pszName && n32Size < 1)) return 0;
    return OrNeutral([&] {
        const auto face = FindFace(context->font->logical);
        if (!face) return 0;
        const std::string name = face->Metrics().name;
        const int whole = static_cast<int>(name.size()) + 1;
        if (!pszName) return whole;
        const int written = std::min(whole, n32Size);
        std::memcpy(pszName, name.data(), static_cast<std::size_t>(written - 1));
        pszName[written - 1] = 0;
        return written;
    });
}
