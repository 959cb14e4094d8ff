// Bitmaps drawn on a context of 1920 x 1080 pixels of 32 or 24 bits, beside copying the bytes of the result.

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "kalvo/gdi/gdi.h"
#include "canvas.h"

namespace {

void CountResult(benchmark::State& state, int bitCount) {
    state.SetBytesProcessed(state.iterations() * kWidth * kHeight * bitCount / 8);
}

void Copy(benchmark::State& state, int bitCount) {
    const Canvas canvas(Picture(bitCount, Colors::Greys));
    const Picture source(bitCount, Colors::Greys);
    for (auto _ : state) {
        std::memcpy(canvas.bits, source.pixels.data(), source.pixels.size());
        benchmark::ClobberMemory();
    }
    CountResult(state, bitCount);
}

void Draw(benchmark::State& state, int from, Colors colors, int to) {
    const Canvas canvas(Picture(to, Colors::Greys));
    Picture source(from, colors);
    for (auto _ : state) {
        SetDIBitsToDevice(canvas.hdc, 0, 0, kWidth, kHeight, 0, 0, 0, kHeight, source.pixels.data(),
                          source.Info(), DIB_RGB_COLORS);
    }
    CountResult(state, to);
}

void Zoom(benchmark::State& state, int from, int to) {
    constexpr int kSourceWidth = kWidth * 2 / 5, kSourceHeight = kHeight * 2 / 5;
    const Canvas canvas(Picture(to, Colors::Greys));
    Picture source(from, Colors::Greys, kSourceWidth, kSourceHeight);
    for (auto _ : state) {
        StretchDIBits(canvas.hdc, 0, 0, kWidth, kHeight, 0, 0, kSourceWidth, kSourceHeight,
                      source.pixels.data(), source.Info(), DIB_RGB_COLORS, SRCCOPY);
    }
    CountResult(state, to);
}

void Mix(benchmark::State& state, int from, int to, BYTE format = 0) {
    const Canvas canvas(Picture(to, Colors::Greys)), source(Picture(from, Colors::Rainbow));
    for (auto _ : state) {
        AlphaBlend(canvas.hdc, 0, 0, kWidth, kHeight, source.hdc, 0, 0, kWidth, kHeight,
                   {AC_SRC_OVER, 0, 100, format});
    }
    CountResult(state, to);
}

void Combine(benchmark::State& state, DWORD operation, int bitCount) {
    const Canvas canvas(Picture(bitCount, Colors::Greys)), source(Picture(bitCount, Colors::Greys));
    for (auto _ : state) BitBlt(canvas.hdc, 0, 0, kWidth, kHeight, source.hdc, 0, 0, operation);
    CountResult(state, bitCount);
}

void Scroll(benchmark::State& state, int bitCount) {
    const Canvas canvas(Picture(bitCount, Colors::Greys));
    for (auto _ : state) BitBlt(canvas.hdc, 1, 1, kWidth, kHeight, canvas.hdc, 0, 0, SRCCOPY);
    CountResult(state, bitCount);
}

BENCHMARK_CAPTURE(Copy, 32, 32);
BENCHMARK_CAPTURE(Draw, 1 to 32, 1, Colors::Greys, 32);
BENCHMARK_CAPTURE(Draw, 8 to 32, 8, Colors::Greys, 32);
BENCHMARK_CAPTURE(Draw, 8 to 24, 8, Colors::Greys, 24);
BENCHMARK_CAPTURE(Draw, 8 with colours to 32, 8, Colors::Rainbow, 32);
BENCHMARK_CAPTURE(Draw, 8 with colours to 24, 8, Colors::Rainbow, 24);
BENCHMARK_CAPTURE(Draw, 16 to 32, 16, Colors::Greys, 32);
BENCHMARK_CAPTURE(Draw, 24 to 32, 24, Colors::Greys, 32);
BENCHMARK_CAPTURE(Draw, 32 to 24, 32, Colors::Greys, 24);
BENCHMARK_CAPTURE(Draw, 24 to 24, 24, Colors::Greys, 24);
BENCHMARK_CAPTURE(Draw, 32 to 32, 32, Colors::Greys, 32);
BENCHMARK_CAPTURE(Zoom, 8 to 32, 8, 32);
BENCHMARK_CAPTURE(Zoom, 24 to 32, 24, 32);
BENCHMARK_CAPTURE(Zoom, 24 to 24, 24, 24);
BENCHMARK_CAPTURE(Zoom, 32 to 32, 32, 32);
BENCHMARK_CAPTURE(Mix, 32 to 32, 32, 32);
BENCHMARK_CAPTURE(Mix, 24 to 32, 24, 32);
BENCHMARK_CAPTURE(Mix, 8 to 24, 8, 24);
BENCHMARK_CAPTURE(Mix, 8 to 8, 8, 8);
BENCHMARK_CAPTURE(Mix, 32 by its own alpha to 32, 32, 32, AC_SRC_ALPHA);
BENCHMARK_CAPTURE(Mix, 32 by its own alpha to 24, 32, 24, AC_SRC_ALPHA);
BENCHMARK_CAPTURE(Combine, 32 SRCINVERT, SRCINVERT, 32);
BENCHMARK_CAPTURE(Combine, 24 SRCAND, SRCAND, 24);
BENCHMARK_CAPTURE(Combine, 1 SRCPAINT, SRCPAINT, 1);
BENCHMARK_CAPTURE(Combine, 32 DSTINVERT, DSTINVERT, 32);
BENCHMARK_CAPTURE(Combine, 32 PATCOPY, PATCOPY, 32);
BENCHMARK_CAPTURE(Combine, 32 all three, 0x00B80746, 32);
BENCHMARK_CAPTURE(Scroll, 32, 32);

}  // namespace

BENCHMARK_MAIN();
