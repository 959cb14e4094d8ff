// Drawing a histogram with axes and labels, beside its curve alone in plain lines.

#include <benchmark/benchmark.h>

#include <cmath>

#include "kalvo/display/kxpixelvector.h"
#include "kalvo/gdi/gdi.h"

namespace {

constexpr int kWidth = 800;
constexpr int kHeight = 400;

class Screen {
public:
    Screen() : m_context(CreateCompatibleDC(nullptr)) {
        BITMAPINFO info{};
        info.bmiHeader = {sizeof info.bmiHeader, kWidth, -kHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* pixels = nullptr;
        m_bitmap = CreateDIBSection(m_context, &info, DIB_RGB_COLORS, &pixels);
        SelectObject(m_context, m_bitmap);
    }
    ~Screen() {
        DeleteDC(m_context);
        DeleteObject(m_bitmap);
    }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    HDC Context() const { return m_context; }

private:
    HDC m_context;
    HBITMAP m_bitmap;
};

KxBW32Vector Histogram() {
    KxBW32Vector histogram;
    for (int i = 0; i < 256; ++i)
        histogram.AddElement(static_cast<std::uint32_t>(10000 * std::exp(-(i - 90) * (i - 90) / 900.0)));
    return histogram;
}

void DrawHistogram(benchmark::State& state) {
    const Screen screen;
    KxBW32Vector histogram = Histogram();
    for (auto _ : state) histogram.Draw(screen.Context(), kWidth, kHeight, 0, 0);
}
BENCHMARK(DrawHistogram)->Unit(benchmark::kMicrosecond);

void DrawAxesDirectly(benchmark::State& state) {
    const Screen screen;
    KxBW32Vector histogram = Histogram();
    histogram.SetYRange(0, 10000);
    for (auto _ : state) histogram.DrawAnnotations(screen.Context(), kWidth, kHeight, 0, 0, "Index", "Value");
}
BENCHMARK(DrawAxesDirectly)->Unit(benchmark::kMicrosecond);

void DrawCurveInPlainLines(benchmark::State& state) {
    const Screen screen;
    KxBW32Vector histogram = Histogram();
    histogram.Draw(screen.Context(), kWidth, kHeight, 0, 0);
    for (auto _ : state) {
        MoveToEx(screen.Context(), histogram.XView(0), histogram.YView(histogram[0]), nullptr);
        for (unsigned i = 1; i < histogram.GetNumElements(); ++i)
            LineTo(screen.Context(), histogram.XView(i), histogram.YView(histogram[i]));
    }
}
BENCHMARK(DrawCurveInPlainLines)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
