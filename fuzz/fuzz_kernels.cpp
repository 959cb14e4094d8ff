// Every set of kernels against slow, obvious loops, on rows of any length at any address, guard bytes around
// them.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <random>
#include <vector>

#include "kalvo/kernels/gatherplan.h"
#include "kalvo/kernels/kernels.h"
#include "fuzz/byte_source.h"
#include "fuzz/require.h"

namespace Zelkor::Kalvo {
namespace {

using Fuzzing::ByteSource;
using Fuzzing::Require;
using Bytes = std::vector<std::uint8_t>;

bool BitAt(const std::uint8_t* bits, std::size_t index) { return (bits[index / 8] & 0x80 >> index % 8) != 0; }

void SetBit(std::uint8_t* bits, std::size_t index, bool value) {
    const int mask = 0x80 >> index % 8;
    bits[index / 8] = static_cast<std::uint8_t>(value ? bits[index / 8] | mask : bits[index / 8] & ~mask);
}

// Noise, one byte alone, or runs.
Bytes MakeBytes(ByteSource& choices, std::size_t count) {
    std::minstd_rand noise(choices.Word());
    const int kind = choices.Between(0, 2);
    std::uint8_t last = 0x80;
    Bytes bytes(count);
    for (std::uint8_t& byte : bytes) {
        if (kind == 0) last = static_cast<std::uint8_t>(noise() >> 8);
        if (kind == 2 && noise() % 8 >= 3) last = static_cast<std::uint8_t>(noise() % 4 * 85);
        byte = last;
    }
    return bytes;
}

// Runs an operation of every set, and the slow one, on equal buffers between guard bytes.
template <class Run, class Slow>
void Compare(ByteSource& choices, std::size_t sourceBytes, std::size_t outputBytes, const char* what, Run run,
             Slow slow) {
    const std::size_t guard = choices.Either() ? 0 : 65;
    const Bytes source = MakeBytes(choices, guard + sourceBytes);
    const Bytes before = MakeBytes(choices, guard + outputBytes + guard);
    Bytes expected = before;
    slow(source.data() + guard, expected.data() + guard);
    for (const Kernels::Table& set : Kernels::Available()) {
        Bytes actual = before;
        run(set, source.data() + guard, actual.data() + guard);
        Require(actual == expected, what);
    }
}

void CheckPixels(ByteSource& choices, std::size_t n) {
    const bool inPlace = choices.Either();
    Compare(
        choices, 3 * n, 3 * n, "swapRedBlue",
        [&](auto& set, auto* in, auto* out) { set.swapRedBlue(inPlace ? out : in, out, n); },
        [&](auto* in, auto* out) {
            const std::uint8_t* from = inPlace ? out : in;
            const Bytes copy(from, from + 3 * n);
            for (std::size_t i = 0; i < copy.size(); ++i) out[i] = copy[i / 3 * 3 + (2 - i % 3)];
        });
    Compare(
        choices, 3 * n, 4 * n, "widen24To32",
        [&](auto& set, auto* in, auto* out) { set.widen24To32(in, out, n); },
        [&](auto* in, auto* out) {
            for (std::size_t i = 0; i < 4 * n; ++i) out[i] = i % 4 < 3 ? in[i / 4 * 3 + i % 4] : 0;
        });
    Compare(
        choices, 4 * n, 3 * n, "narrow32To24",
        [&](auto& set, auto* in, auto* out) { set.narrow32To24(in, out, n); },
        [&](auto* in, auto* out) {
            for (std::size_t i = 0; i < 3 * n; ++i) out[i] = in[i / 3 * 4 + i % 3];
        });
    Compare(
        choices, n, 4 * n, "repeatTo32", [&](auto& set, auto* in, auto* out) { set.repeatTo32(in, out, n); },
        [&](auto* in, auto* out) {
            for (std::size_t i = 0; i < 4 * n; ++i) out[i] = i % 4 < 3 ? in[i / 4] : 0;
        });
    Compare(
        choices, n, 3 * n, "repeatTo24", [&](auto& set, auto* in, auto* out) { set.repeatTo24(in, out, n); },
        [&](auto* in, auto* out) {
            for (std::size_t i = 0; i < 3 * n; ++i) out[i] = in[i / 3];
        });
    const int wordBytes = choices.Either() ? 2 : 4;
    const auto step = static_cast<std::size_t>(wordBytes);
    Compare(
        choices, step * n, n, "lastBytes",
        [&](auto& set, auto* in, auto* out) { set.lastBytes(in, wordBytes, out, n); },
        [&](auto* in, auto* out) {
            for (std::size_t i = 0; i < n; ++i) out[i] = in[step * i + step - 1];
        });
}

void CheckBytes(ByteSource& choices, std::size_t n) {
    const int from = choices.Between(0, 9), to = choices.Between(0, 9);
    Compare(
        choices, 0, n + 9, "copyBytes, overlapping",
        [&](auto& set, auto*, auto* out) { set.copyBytes(out + from, out + to, n); },
        [&](auto*, auto* out) {
            const Bytes copy(out + from, out + from + n);
            std::ranges::copy(copy, out + to);
        });
    const Bytes table = MakeBytes(choices, 256);
    Compare(
        choices, n, n, "lookUp",
        [&](auto& set, auto* in, auto* out) { set.lookUp(table.data(), in, out, n); },
        [&](auto* in, auto* out) {
            for (std::size_t i = 0; i < n; ++i) out[i] = table[in[i]];
        });
    const std::uint8_t alpha = choices.Byte();
    Compare(
        choices, n, n, "blendConstant",
        [&](auto& set, auto* in, auto* out) { set.blendConstant(out, in, n, alpha); },
        [&](auto* in, auto* out) {
            for (std::size_t i = 0; i < n; ++i)
                out[i] =
                    static_cast<std::uint8_t>(std::lround((in[i] * alpha + out[i] * (255 - alpha)) / 255.0));
        });
    const Bytes bytes = MakeBytes(choices, n);
    const auto differs = [&](std::uint8_t byte) { return byte != bytes.front(); };
    const auto run = static_cast<std::size_t>(std::ranges::find_if(bytes, differs) - bytes.begin());
    std::size_t literal = 0;
    const auto startsRun = [&](std::size_t i) {
        return i + 2 < n && bytes[i] == bytes[i + 1] && bytes[i] == bytes[i + 2];
    };
    while (literal < n && !startsRun(literal)) ++literal;
    for (const Kernels::Table& set : Kernels::Available()) {
        Require(set.runLength(bytes.data(), n) == run, "runLength");
        Require(set.literalLength(bytes.data(), n) == literal, "literalLength");
    }
}

void CheckBits(ByteSource& choices, std::size_t n) {
    const int from = choices.Between(0, 7), to = choices.Between(0, 7);
    const auto bytesFor = [n](int firstBit) {
        return n == 0 ? 0 : (static_cast<std::size_t>(firstBit) + n + 7) / 8;
    };
    const auto first = static_cast<std::size_t>(from), target = static_cast<std::size_t>(to);
    Compare(
        choices, bytesFor(from), n, "expandBits",
        [&](auto& set, auto* in, auto* out) { set.expandBits(in, from, out, n); },
        [&](auto* in, auto* out) {
            for (std::size_t i = 0; i < n; ++i) out[i] = BitAt(in, first + i) ? 255 : 0;
        });
    const std::uint8_t threshold = choices.Byte();
    Compare(
        choices, n, bytesFor(0), "thresholdToBits",
        [&](auto& set, auto* in, auto* out) { set.thresholdToBits(in, threshold, out, n); },
        [&](auto* in, auto* out) {
            for (std::size_t i = 0; i < (n + 7) / 8 * 8; ++i) SetBit(out, i, i < n && in[i] >= threshold);
        });
    Compare(
        choices, bytesFor(from), bytesFor(to), "copyBits",
        [&](auto& set, auto* in, auto* out) { set.copyBits(in, from, out, to, n); },
        [&](auto* in, auto* out) {
            for (std::size_t i = 0; i < n; ++i) SetBit(out, target + i, BitAt(in, first + i));
        });
}

void CheckGather(ByteSource& choices, std::size_t n) {
    const auto bytesPerPixel = static_cast<std::size_t>(choices.Between(1, 4));
    const int width = choices.Between(1, 260);
    std::vector<std::int32_t> columns(n);
    for (std::size_t i = 0; i < n; ++i)
        columns[i] = static_cast<std::int32_t>(i * static_cast<std::size_t>(width) / n);
    if (choices.Either()) std::ranges::reverse(columns);
    const auto plan = Kernels::MakeGatherPlan(std::move(columns), width, bytesPerPixel);
    Compare(
        choices, bytesPerPixel * static_cast<std::size_t>(width), plan.RowBytes(), "gatherRow",
        [&](auto& set, auto* in, auto* out) { set.gatherRow(plan, in, out); },
        [&](auto* in, auto* out) {
            for (std::size_t i = 0; i < plan.RowBytes(); ++i)
                out[i] = in[static_cast<std::size_t>(plan.columns[i / bytesPerPixel]) * bytesPerPixel +
                            i % bytesPerPixel];
        });
}

// By known digests the portable set is checked elsewhere.
void CheckSha1(ByteSource& choices, std::size_t n) {
    const std::size_t offset = n % 8, blocks = n / 8 % 8;
    const Bytes source = MakeBytes(choices, offset + 64 * blocks);
    std::array<std::uint32_t, 5> state{};
    for (std::uint32_t& word : state) word = choices.Word();
    std::array<std::uint32_t, 5> expected = state;
    Kernels::Available().front().sha1Blocks(expected.data(), source.data() + offset, blocks);
    for (const Kernels::Table& set : Kernels::Available()) {
        std::array<std::uint32_t, 5> actual = state;
        set.sha1Blocks(actual.data(), source.data() + offset, blocks);
        Require(actual == expected, "sha1Blocks");
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    using namespace Zelkor::Kalvo;
    ByteSource choices(bytes, count);
    const auto length =
        static_cast<std::size_t>(choices.OneIn(4) ? choices.Between(0, 5000) : choices.Between(0, 260));
    for (const auto check : {CheckPixels, CheckBytes, CheckBits, CheckGather, CheckSha1})
        check(choices, length);
    return 0;
}
