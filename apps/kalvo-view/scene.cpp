// Everything is drawn by the library.

#include "scene.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "kalvo/display/kxgdidrawadapter.h"
#include "kalvo/display/kxpixelvector.h"
#include "kalvo/measure/kxangle.h"
#include "kalvo/transforms/kxcolorhistogram.h"
#include "kalvo/transforms/kxrelief.h"
#include "common/components.h"
#include "common/failure.h"
#include "common/pixel_conversion.h"
#include "common/plots.h"
#include "common/region.h"
#include "common/space.h"
#include "common/trees.h"

namespace View {
namespace {

using Zelkor::GDIDrawAdapter;
using Zelkor::RGBColor;

constexpr KxC24A kBackground(56, 56, 60, 255);
constexpr RGBColor kInk(235, 235, 235), kPaper(30, 30, 34);
constexpr int kMargin = 6, kLineHeight = 17;
constexpr double kValueZoom = 44;          // from which pixel values are written into pixels
constexpr double kCountedPixels = 250000;  // of a histogram that keeps in step with the mouse
constexpr int kSpacePixels = 512;          // along the longer side of what is seen in space
constexpr int kPanelWidth = 420, kPlotHeight = 220;

// The tables that the user steps through; none for 0.
std::unique_ptr<KxBW8Vector> MakeTable(std::size_t number) {
    if (number == 0) return nullptr;
    auto table = std::make_unique<KxBW8Vector>();
    switch (number) {
    case 1:  // negative
        table->SetupGainOffset(-1, 255, 1);
        break;
    case 2:  // more contrast
        table->SetupGainOffset(2, -127, 1);
        break;
    case 3:  // brighter shadows
        table->SetupGainOffset(1, 0, 0.5f);
        break;
    default:
        table->SetupThreshold(128, 0, 255);
    }
    return table;
}

// The part of an image that panels are about: the selected region, or all of it.
Extent PartOf(const Viewer& viewer) {
    const KxGenericROI& image = viewer.Current().Image();
    const Region* region = viewer.Selected();
    return region ? Extent(region->GetTotalOrgX(), region->GetTotalOrgY(), region->GetWidth(),
                           region->GetHeight())
                  : Extent(0, 0, image.GetWidth(), image.GetHeight());
}

// Calls `draw(part)` with a part of an image as a region, which is gone afterwards.
template <class Draw>
void WithPart(KxGenericROI& image, const Extent& extent, const Draw& draw) {
    App::WithPixels<KxImage>(image, [&]<class Pixel>(KxImage<Pixel>& typed) {
        KxROI<Pixel> part;
        App::AttachPart(part, typed, extent);
        draw(part);
    });
}

// Writes the components of every pixel that is seen into it.
void WriteValues(HDC context, const KxGenericROI& image, const Transform& transform, int width, int height) {
    const auto first = [](double edge) { return std::max(static_cast<int>(std::floor(edge)), 0); };
    const int right = std::min(static_cast<int>(transform.ToImageX(width)) + 1, image.GetWidth());
    const int bottom = std::min(static_cast<int>(transform.ToImageY(height)) + 1, image.GetHeight());
    const auto edge = [&](int pixels) { return static_cast<LONG>(pixels * transform.zoom); };
    SetBkMode(context, TRANSPARENT);
    for (int y = first(transform.ToImageY(0)); y < bottom; ++y)
        for (int x = first(transform.ToImageX(0)); x < right; ++x) {
            std::string text;
            for (const double value : App::Components(image, x, y)) {
                char number[32];
                std::snprintf(number, sizeof number, "%s%.0f", text.empty() ? "" : "\n", value);
                text += number;
            }
            const COLORREF under = GetPixel(context, edge(x) + 1, edge(y) + 1);
            const int light = GetRValue(under) * 3 + GetGValue(under) * 6 + GetBValue(under);
            const int lines = 1 + static_cast<int>(std::ranges::count(text, '\n'));
            SetTextColor(context, light < 1280 ? RGB(255, 255, 255) : RGB(0, 0, 0));
            RECT box{edge(x), edge(y), edge(x + 1), edge(y + 1)};
            box.top += std::max((box.bottom - box.top - lines * kLineHeight) / 2, LONG{0});
            DrawTextA(context, text.c_str(), -1, &box, DT_CENTER);
        }
}

// A part of an image in a size that makes a dense relief and can be turned in step with the mouse.
template <class To>
std::unique_ptr<KxImage<To>> Sampled(KxGenericROI& image, const Extent& part) {
    const double step = std::max({1, part.m_n32Width, part.m_n32Height}) / static_cast<double>(kSpacePixels);
    const auto size = [step](int pixels) { return std::max(static_cast<int>(pixels / step), 1); };
    auto sampled = std::make_unique<KxImage<To>>(size(part.m_n32Width), size(part.m_n32Height));
    constexpr App::PixelMaker kMaker{.threshold = 128};
    App::WithPixels<KxImage>(image, [&](const auto& typed) {
        To pixel;
        for (int y = 0; y < sampled->GetHeight(); ++y)
            for (int x = 0; x < sampled->GetWidth(); ++x) {
                kMaker.Make(App::ToLight(typed.GetPixel(part.m_n32OrgX + static_cast<int>(x * step),
                                                        part.m_n32OrgY + static_cast<int>(y * step))),
                            pixel);
                sampled->SetPixel(pixel, x, y);
            }
    });
    return sampled;
}

}  // namespace

App::Canvas& Scene::Paint(const Viewer& viewer) {
    const int width = viewer.Width(), height = viewer.Height();
    if (!m_canvas || m_canvas->Image().GetWidth() != width || m_canvas->Image().GetHeight() != height)
        for (auto* canvas : {&m_canvas, &m_spare}) *canvas = std::make_unique<App::Canvas>(width, height);
    for (int y = 0; y < height; ++y) std::fill_n(m_canvas->Image().GetImagePtr(0, y), width, kBackground);
    const Look& look = viewer.GetLook();
    if (look.mode != Look::Plain) {
        PaintSpace(viewer);
    } else if (look.isSplit) {
        PaintPane(viewer.Current(), viewer, 0, width / 2);
        PaintPane(viewer.Next(), viewer, width / 2, width - width / 2);
    } else {
        PaintPane(viewer.Current(), viewer, 0, width);
    }
    if (look.showsPanel) PaintPanel(viewer);
    if (look.showsHelp) PaintHelp();
    GDIDrawAdapter surface(m_canvas->Context());
    surface.FillRectangle(0, height - kLineHeight - 3, width, kLineHeight + 3, kPaper, kPaper);
    surface.DrawText(viewer.Status(), kMargin, height - kLineHeight - 1, kInk);
    return *m_canvas;
}

void Scene::PaintPane(Document& document, const Viewer& viewer, int left, int width) {
    const HDC context = m_canvas->Context();
    const App::SavedContext saved(context);
    const Transform& transform = viewer.GetTransform();
    IntersectClipRect(context, left, 0, left + width, viewer.Height());
    SetViewportOrgEx(context, left + transform.panX, transform.panY, nullptr);
    const auto zoom = static_cast<float>(transform.zoom);
    const bool isGrey = document.Shown().GetType() == KX_IMAGE_BW8;
    const auto table = MakeTable(isGrey ? viewer.GetLook().table : 0);
    App::DrawPixels(context, document.Shown(), zoom, table.get());
    if (transform.zoom >= kValueZoom)
        WriteValues(context, document.Image(), transform, width, viewer.Height());
    const bool hasRegions = document.Image().GetFirstSubROI();
    if (hasRegions)
        App::DrawRegions(*m_canvas, *m_spare, document.Image(),
                         {.zoom = zoom, .selected = viewer.Selected()});
}

void Scene::PaintSpace(const Viewer& viewer) {
    const Extent part = PartOf(viewer);
    KxGenericROI& image = viewer.Current().Shown();
    const auto colors = Sampled<KxC24>(image, part);
    const App::PictureSize size{viewer.Width(), viewer.Height()};
    KxImage<KxC24> picture(size.width, size.height);
    const float a = viewer.GetLook().angleA, b = viewer.GetLook().angleB;
    App::Checked([&] {
        if (viewer.GetLook().mode == Look::Cube) {
            const float scale =
                App::FittingScale(App::Turned({App::kLevels, App::kLevels, App::kLevels}, {a, b}), size);
            KxRenderColorHistogram(colors.get(), &picture, a, b, scale, scale, scale);
        } else {
            const App::Box box = App::ReliefBox(*colors);
            const float scale = App::FittingScale(App::Turned(box, {a, b}), size);
            KxRender3D(colors.get(), Sampled<KxBW8>(image, part).get(), &picture, KxToRadians(a),
                       KxToRadians(b), scale, scale, scale * box.depth / App::kLevels,
                       scale > 2   ? 9
                       : scale > 1 ? 4
                                   : 1);
        }
        picture.Draw(m_canvas->Context(), 1, 1);
    });
}

// At the right edge, histogram above profile.
void Scene::PaintPanel(const Viewer& viewer) {
    const Extent part = PartOf(viewer);
    const int left = std::max(viewer.Width() - kPanelWidth, 0);
    const double pixels = double{1} * part.m_n32Width * part.m_n32Height;
    App::DrawOnContext(m_canvas->Context(), [&](const App::Paper& paper) {
        WithPart(viewer.Current().Shown(), part, [&](KxGenericROI& region) {
            App::DrawHistogram(paper, {left, 0, kPanelWidth, kPlotHeight}, region,
                               std::max(1, static_cast<int>(std::sqrt(pixels / kCountedPixels))));
        });
        const Extent row(part.m_n32OrgX, part.m_n32OrgY + part.m_n32Height / 2, part.m_n32Width, 1);
        WithPart(viewer.Current().Shown(), row, [&](KxGenericROI& region) {
            App::DrawProfile(paper, {left, kPlotHeight, kPanelWidth, kPlotHeight}, region);
        });
    });
}

void Scene::PaintHelp() {
    GDIDrawAdapter surface(m_canvas->Context());
    const auto lines = Viewer::Help();
    int keysWidth = 0, helpWidth = 0;
    for (const auto& [keys, help] : lines) {
        keysWidth = std::max(keysWidth, static_cast<int>(surface.GetTextExtent(keys).x));
        helpWidth = std::max(helpWidth, static_cast<int>(surface.GetTextExtent(help).x));
    }
    const auto height = kLineHeight * static_cast<int>(lines.size());
    const int keysLeft = 2 * kMargin, helpLeft = keysLeft + keysWidth + 2 * kMargin;
    surface.FillRectangle(kMargin, kMargin, helpLeft + helpWidth, height + 2 * kMargin, kPaper, kPaper);
    int y = 2 * kMargin;
    for (const auto& [keys, help] : lines) {
        surface.DrawText(keys, keysLeft, y, RGBColor(255, 210, 90));
        surface.DrawText(help, helpLeft, y, kInk);
        y += kLineHeight;
    }
}

}  // namespace View
