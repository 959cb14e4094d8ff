// How time grows with the size of what is done: the last lines of each group tell the order.

#include <benchmark/benchmark.h>

#include <deque>
#include <memory>

#include "kalvo/kalvo.h"

namespace {

using Image = KxImage<KxBW8>;
using Region = KxROI<KxBW8>;

// Regions come, are found by walking, and go in the order they came.
void Siblings(benchmark::State& state) {
    Image image(100, 100);
    for (auto _ : state) {
        std::deque<Region> regions;
        for (int i = 0; i < state.range(0); ++i) regions.emplace_back(&image, i % 90, 0, 10, 10);
        int found = 0;
        for (auto* region = image.GetFirstSubROI(); region; region = region->GetNextSiblingROI()) ++found;
        benchmark::DoNotOptimize(found);
        while (!regions.empty()) regions.pop_front();
    }
    state.SetComplexityN(state.range(0));
}

void Depth(benchmark::State& state) {
    Image image(100, 100);
    for (auto _ : state) {
        std::deque<Region> regions;
        for (int i = 0; i < state.range(0); ++i)
            regions.emplace_back(i == 0 ? static_cast<Region*>(&image) : &regions.back(), 0, 0, 100, 100);
        image.SetSize(100, 100);
        while (!regions.empty()) regions.pop_back();
    }
    state.SetComplexityN(state.range(0));
}

void Listeners(benchmark::State& state) {
    struct Counter final : Zelkor::IListener {
        void Listen(Zelkor::IBroadcaster*) override { ++count; }
        int count = 0;
    };
    for (auto _ : state) {
        Zelkor::Kalvo::GenericRoiExtentWithBroadcast extent;
        std::deque<Counter> listeners(static_cast<std::size_t>(state.range(0)));
        for (Counter& listener : listeners) extent.AddListener(&listener);
        extent.Broadcast();
        for (Counter& listener : listeners) extent.RemoveListener(&listener);
    }
    state.SetComplexityN(state.range(0));
}

void Runs(benchmark::State& state) {
    const auto side = static_cast<int>(state.range(0));
    Image image(side, side);
    for (auto _ : state) image.SetEllipseMask(0, 0, 0, 0);
    state.SetComplexityN(state.range(0));
}

void ArchiveChildren(benchmark::State& state) {
    Image image(8, 8);
    std::deque<Region> regions;
    for (int i = 0; i < state.range(0); ++i) regions.emplace_back(&image, i % 8, 0, 1, 1);
    for (auto _ : state) {
        KxMemSerializer writer, reader;
        writer.OpenWriter();
        image.Save(&writer);
        reader.OpenReader(writer.GetBuffer());
        Image loaded;
        loaded.Load(&reader);
        benchmark::DoNotOptimize(loaded.GetFirstSubROI());
    }
    state.SetComplexityN(state.range(0));
}

void VectorElements(benchmark::State& state) {
    for (auto _ : state) {
        KxC24Vector vector;
        for (int i = 0; i < state.range(0); ++i) vector.AddElement(KxC24(1, 2, 3));
        benchmark::DoNotOptimize(vector.GetNumElements());
    }
    state.SetComplexityN(state.range(0));
}

void PlotElements(benchmark::State& state) {
    KxBW32Vector vector;
    for (int i = 0; i < state.range(0); ++i) vector.AddElement(i * 2654435761u >> 8);
    const HDC context = CreateCompatibleDC(nullptr);
    const HBITMAP bitmap = CreateBitmap(800, 400, 1, 32, nullptr);
    const HGDIOBJ previous = SelectObject(context, bitmap);
    for (auto _ : state) vector.Draw(context, 800, 400, 0, 0);
    SelectObject(context, previous);
    DeleteObject(bitmap);
    DeleteDC(context);
    state.SetComplexityN(state.range(0));
}

// Four sizes each.
void InFours(benchmark::internal::Benchmark* benchmark, int first) {
    benchmark->RangeMultiplier(8)->Range(first, first * 512)->Complexity()->Unit(benchmark::kMillisecond);
}

const int kRegistered = [] {
    InFours(benchmark::RegisterBenchmark("siblings", Siblings), 512);
    InFours(benchmark::RegisterBenchmark("depth", Depth), 128);
    InFours(benchmark::RegisterBenchmark("listeners", Listeners), 512);
    InFours(benchmark::RegisterBenchmark("runs of an ellipse, by its side", Runs), 16);
    InFours(benchmark::RegisterBenchmark("archive children", ArchiveChildren), 512);
    InFours(benchmark::RegisterBenchmark("vector elements", VectorElements), 20000);
    InFours(benchmark::RegisterBenchmark("plot elements", PlotElements), 20000);
    return 0;
}();

}  // namespace

BENCHMARK_MAIN();
