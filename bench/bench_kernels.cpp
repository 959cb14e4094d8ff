// The byte kernels of every available instruction set, beside the loop over pixels one would write instead.

#include "kalvo/kernels/kernels.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

namespace Zelkor::Kalvo {
namespace {

bool BitAt(const std::uint8_t* bits, std::size_t index) {
    return (bits[index / 8] >> (7 - index % 8) & 1) != 0;
}

void SetBit(std::uint8_t* bits, std::size_t index, bool value) {
    const auto mask = static_cast<std::uint8_t>(0x80 >> index % 8);
    bits[index / 8] = static_cast<std::uint8_t>(value ? bits[index / 8] | mask : bits[index / 8] & ~mask);
}

const Kernels::Table kPlainLoops = {
    "plain",
    [](const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
        for (std::size_t i = 0; i < 3 * pixels; i += 3) {
            const std::uint8_t first = source[i];
            destination[i + 1] = source[i + 1];
            destination[i] = source[i + 2];
            destination[i + 2] = first;
        }
    },
    [](const std::uint8_t* bits, int firstBit, std::uint8_t* bytes, std::size_t pixels) {
        for (std::size_t i = 0; i < pixels; ++i) bytes[i] = BitAt(bits, firstBit + i) ? 255 : 0;
    },
    [](const std::uint8_t* bytes, std::uint8_t threshold, std::uint8_t* bits, std::size_t pixels) {
        for (std::size_t i = 0; i < pixels; ++i) SetBit(bits, i, bytes[i] >= threshold);
    },
    [](const std::uint8_t* source, int sourceBit, std::uint8_t* destination, int destinationBit,
       std::size_t bits) {
        for (std::size_t i = 0; i < bits; ++i) {
            SetBit(destination, destinationBit + i, BitAt(source, sourceBit + i));
        }
    },
    [](const std::uint8_t* bytes, std::size_t count) {
        std::size_t length = 0;
        while (length < count && bytes[length] == bytes[0]) ++length;
        return length;
    },
    [](const std::uint8_t* bytes, std::size_t count) {
        std::size_t i = 0;
        while (i + 2 < count && (bytes[i] != bytes[i + 1] || bytes[i] != bytes[i + 2])) ++i;
        return i + 2 < count ? i : count;
    },
    [](const std::uint8_t* source, std::uint8_t* destination, std::size_t bytes) {
        std::memmove(destination, source, bytes);
    },
    [](const std::uint8_t* table, const std::uint8_t* source, std::uint8_t* destination, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) destination[i] = table[source[i]];
    },
    [](const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
        for (std::size_t i = 0; i < pixels; ++i) {
            for (std::size_t k = 0; k < 3; ++k) destination[4 * i + k] = source[3 * i + k];
            destination[4 * i + 3] = 0;
        }
    },
    [](const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
        for (std::size_t i = 0; i < pixels; ++i) {
            for (std::size_t k = 0; k < 3; ++k) destination[3 * i + k] = source[4 * i + k];
        }
    },
    [](const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
        for (std::size_t i = 0; i < 3 * pixels; ++i) destination[i] = source[i / 3];
    },
    [](const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
        for (std::size_t i = 0; i < pixels; ++i) {
            for (std::size_t k = 0; k < 3; ++k) destination[4 * i + k] = source[i];
            destination[4 * i + 3] = 0;
        }
    },
    [](const std::uint8_t* words, int wordBytes, std::uint8_t* bytes, std::size_t count) {
        const auto step = static_cast<std::size_t>(wordBytes);
        for (std::size_t i = 0; i < count; ++i) bytes[i] = words[step * i + step - 1];
    },
    [](std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes, std::uint8_t alpha) {
        for (std::size_t i = 0; i < bytes; ++i) {
            destination[i] =
                static_cast<std::uint8_t>((source[i] * alpha + destination[i] * (255 - alpha) + 127) / 255);
        }
    },
    Kernels::Available().front().sha1Blocks,
    Kernels::Available().front().gatherRow,
};

// A job works on a row whose wider side has `size` bytes; one byte more is there for bit offsets.
struct Job {
    const char* name;
    void (*run)(const Kernels::Table& kernels, std::uint8_t* source, std::uint8_t* output, std::size_t size);
};

constexpr Job kJobs[] = {
    {"swapRedBlue", [](auto& k, auto* from, auto* to, auto size) { k.swapRedBlue(from, to, size / 3); }},
    {"swapRedBlueInPlace", [](auto& k, auto* row, auto*, auto size) { k.swapRedBlue(row, row, size / 3); }},
    {"expandBits", [](auto& k, auto* from, auto* to, auto size) { k.expandBits(from, 3, to, size); }},
    {"thresholdToBits",
     [](auto& k, auto* from, auto* to, auto size) { k.thresholdToBits(from, 128, to, size); }},
    {"copyBits", [](auto& k, auto* from, auto* to, auto size) { k.copyBits(from, 3, to, 5, 8 * size); }},
    {"runLength",
     [](auto& k, auto*, auto* row, auto size) { benchmark::DoNotOptimize(k.runLength(row, size)); }},
    {"literalLength",
     [](auto& k, auto* row, auto*, auto size) { benchmark::DoNotOptimize(k.literalLength(row, size)); }},
    {"copyBytes", [](auto& k, auto* from, auto* to, auto size) { k.copyBytes(from, to, size); }},
    {"widen24To32", [](auto& k, auto* from, auto* to, auto size) { k.widen24To32(from, to, size / 4); }},
    {"narrow32To24", [](auto& k, auto* from, auto* to, auto size) { k.narrow32To24(from, to, size / 4); }},
    {"lookUp", [](auto& k, auto* from, auto* to, auto size) { k.lookUp(from, from, to, size); }},
    {"repeatTo24", [](auto& k, auto* from, auto* to, auto size) { k.repeatTo24(from, to, size / 3); }},
    {"repeatTo32", [](auto& k, auto* from, auto* to, auto size) { k.repeatTo32(from, to, size / 4); }},
    {"lastBytes", [](auto& k, auto* from, auto* to, auto size) { k.lastBytes(from, 2, to, size / 2); }},
    {"blendConstant", [](auto& k, auto* from, auto* to, auto size) { k.blendConstant(to, from, size, 77); }},
};

void Measure(benchmark::State& state, const Job& job, const Kernels::Table& kernels) {
    const auto size = static_cast<std::size_t>(state.range(0));
    std::vector<std::uint8_t> source(size + 1), output(size + 1);
    // Without three equal bytes in a row; the output, all 0, is one run.
    for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<std::uint8_t>(i * i * 37 >> 3);
    for (auto _ : state) {
        job.run(kernels, source.data(), output.data(), size);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * size));
}

void RegisterAll() {
    std::vector<Kernels::Table> sets = {kPlainLoops};
    for (const Kernels::Table& kernels : Kernels::Available()) sets.push_back(kernels);
    for (const Job& job : kJobs) {
        for (const Kernels::Table& kernels : sets) {
            benchmark::RegisterBenchmark(
                (std::string(job.name) + "/" + kernels.name).c_str(),
                [&job, kernels](benchmark::State& state) { Measure(state, job, kernels); })
                ->Arg(4 << 10)
                ->Arg(1 << 20);
        }
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    Zelkor::Kalvo::RegisterAll();
    benchmark::RunSpecifiedBenchmarks();
}
