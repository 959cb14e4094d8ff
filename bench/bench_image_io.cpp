// Moving a whole image: archive streams and image files, beside plain writes and copies of the same bytes.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "kalvo/image/kximage.h"
#include "kalvo/streams/kxserializer.h"

namespace {

constexpr int kWidth = 2448;  // a common five-megapixel camera
constexpr int kHeight = 2048;

template <class Pixel>
const KxImage<Pixel>& Picture() {
    static const std::unique_ptr<KxImage<Pixel>> picture = [] {
        auto made = std::make_unique<KxImage<Pixel>>(kWidth, kHeight);
        for (int y = 0; y < kHeight; ++y) {
            auto* row = static_cast<unsigned char*>(made->GetGenericImagePtr(0, y));
            for (int x = 0; x < made->GetRowPitch(); ++x) row[x] = static_cast<unsigned char>(x / 5 + y / 3);
        }
        return made;
    }();
    return *picture;
}

std::string ScratchFile(const std::string& extension) {
    return (std::filesystem::temp_directory_path() / ("kalvo-bench." + extension)).string();
}

template <class Pixel>
void CountBytes(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * Picture<Pixel>().GetImgPitch());
}

template <class Pixel>
void CopyInMemory(benchmark::State& state) {
    const auto bytes = static_cast<std::size_t>(Picture<Pixel>().GetImgPitch());
    std::vector<unsigned char> copy(bytes);
    for (auto _ : state) {
        std::memcpy(copy.data(), Picture<Pixel>().GetGenericImagePtr(0, 0), bytes);
        benchmark::ClobberMemory();
    }
    CountBytes<Pixel>(state);
}
BENCHMARK(CopyInMemory<KxBW8>);

template <class Pixel>
void CopyImage(benchmark::State& state) {
    KxImage<Pixel> copy;
    for (auto _ : state) copy = Picture<Pixel>();
    CountBytes<Pixel>(state);
}
BENCHMARK(CopyImage<KxBW8>);

template <class Pixel>
void ArchiveToMemoryAndBack(benchmark::State& state) {
    KxMemSerializer writer;
    writer.OpenWriter();
    Picture<Pixel>().Save(&writer);
    KxImage<Pixel> image;
    for (auto _ : state) {
        KxMemSerializer reader;
        reader.OpenReader(writer.GetBuffer());
        image.Load(&reader);
    }
    CountBytes<Pixel>(state);
}
BENCHMARK(ArchiveToMemoryAndBack<KxBW8>);

template <class Pixel>
void SaveFile(benchmark::State& state, const char* extension) {
    const std::string path = ScratchFile(extension);
    for (auto _ : state) Picture<Pixel>().Save(path.c_str());
    std::filesystem::remove(path);
    CountBytes<Pixel>(state);
}

template <class Pixel>
void LoadFile(benchmark::State& state, const char* extension) {
    const std::string path = ScratchFile(extension);
    Picture<Pixel>().Save(path.c_str());
    KxImage<Pixel> image;
    for (auto _ : state) image.Load(path.c_str());
    std::filesystem::remove(path);
    CountBytes<Pixel>(state);
}

template <class Pixel>
void PlainFile(benchmark::State& state, bool writing) {
    const std::string path = ScratchFile("raw");
    const auto bytes = static_cast<std::size_t>(Picture<Pixel>().GetImgPitch());
    std::vector<unsigned char> buffer(bytes);
    const auto transfer = [&](bool write) {
        std::FILE* file = std::fopen(path.c_str(), write ? "wb" : "rb");
        const std::size_t moved =
            write ? std::fwrite(buffer.data(), 1, bytes, file) : std::fread(buffer.data(), 1, bytes, file);
        if (moved != bytes) state.SkipWithError("short transfer");
        std::fclose(file);
    };
    transfer(true);
    for (auto _ : state) transfer(writing);
    std::filesystem::remove(path);
    CountBytes<Pixel>(state);
}

template <class Pixel>
void RegisterFileJobs(const std::string& pixelName, const std::vector<const char*>& extensions) {
    for (const char* extension : extensions) {
        const std::string suffix = "<" + pixelName + ">/" + extension;
        benchmark::RegisterBenchmark(("SaveFile" + suffix).c_str(), SaveFile<Pixel>, extension);
        benchmark::RegisterBenchmark(("LoadFile" + suffix).c_str(), LoadFile<Pixel>, extension);
    }
    benchmark::RegisterBenchmark(("PlainFile<" + pixelName + ">/write").c_str(), PlainFile<Pixel>, true);
    benchmark::RegisterBenchmark(("PlainFile<" + pixelName + ">/read").c_str(), PlainFile<Pixel>, false);
}

void ReadPixelsOneByOne(benchmark::State& state) {
    const KxImage<KxBW8>& image = Picture<KxBW8>();
    for (auto _ : state) {
        unsigned sum = 0;
        for (int x = 0; x < kWidth; ++x) sum += image.GetPixel(x, 7);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kWidth);
}
BENCHMARK(ReadPixelsOneByOne);

void ReadPixelsByPointer(benchmark::State& state) {
    const KxImage<KxBW8>& image = Picture<KxBW8>();
    for (auto _ : state) {
        unsigned sum = 0;
        const KxBW8* row = image.GetImagePtr(0, 7);
        for (int x = 0; x < kWidth; ++x) sum += row[x];
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kWidth);
}
BENCHMARK(ReadPixelsByPointer);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    RegisterFileJobs<KxBW8>("KxBW8", {"bmp", "tif", "jpg"});
    RegisterFileJobs<KxC24>("KxC24", {"bmp", "tif", "jpg"});
    benchmark::RunSpecifiedBenchmarks();
}
