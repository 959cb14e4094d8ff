// Every available set of kernels against a slow, obvious reference; the portable set is one of them.

#include "tests/support/test.h"

#include "kalvo/base/cpu.h"
#include "kalvo/kernels/gatherplan.h"
#include "kalvo/kernels/kernels.h"

namespace Zelkor::Kalvo {

// Names the sets in the names of their tests.
void PrintTo(const Kernels::Table& set, std::ostream* stream) { *stream << set.name; }

namespace {

// A vector of n bytes is n bytes on the heap, so address sanitizer sees an access just outside.
using Bytes = std::vector<std::uint8_t>;

bool BitAt(const std::uint8_t* bits, std::size_t index) { return (bits[index / 8] & 0x80 >> index % 8) != 0; }

void SetBit(std::uint8_t* bits, std::size_t index, bool value) {
    const int mask = 0x80 >> index % 8;
    bits[index / 8] = static_cast<std::uint8_t>(value ? bits[index / 8] | mask : bits[index / 8] & ~mask);
}

const Kernels::Table kReference = {
    "reference",
    [](const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
        const Bytes copy(source, source + 3 * pixels);
        for (std::size_t i = 0; i < copy.size(); ++i) destination[i] = copy[i / 3 * 3 + (2 - i % 3)];
    },
    [](const std::uint8_t* bits, int firstBit, std::uint8_t* bytes, std::size_t pixels) {
        for (std::size_t i = 0; i < pixels; ++i) bytes[i] = BitAt(bits, firstBit + i) ? 255 : 0;
    },
    [](const std::uint8_t* bytes, std::uint8_t threshold, std::uint8_t* bits, std::size_t pixels) {
        for (std::size_t i = 0; i < (pixels + 7) / 8 * 8; ++i)
            SetBit(bits, i, i < pixels && bytes[i] >= threshold);
    },
    [](const std::uint8_t* source, int sourceBit, std::uint8_t* destination, int destinationBit,
       std::size_t bits) {
        for (std::size_t i = 0; i < bits; ++i)
            SetBit(destination, destinationBit + i, BitAt(source, sourceBit + i));
    },
    [](const std::uint8_t* bytes, std::size_t count) {
        const auto* end = std::find_if(bytes, bytes + count, [&](auto byte) { return byte != bytes[0]; });
        return static_cast<std::size_t>(end - bytes);
    },
    [](const std::uint8_t* bytes, std::size_t count) {
        std::size_t i = 0;
        while (i < count && !(i + 2 < count && bytes[i] == bytes[i + 1] && bytes[i] == bytes[i + 2])) ++i;
        return i;
    },
    [](const std::uint8_t* source, std::uint8_t* destination, std::size_t bytes) {
        const Bytes copy(source, source + bytes);
        std::ranges::copy(copy, destination);
    },
    [](const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
        for (std::size_t i = 0; i < 4 * pixels; ++i)
            destination[i] = i % 4 < 3 ? source[i / 4 * 3 + i % 4] : 0;
    },
    [](const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
        for (std::size_t i = 0; i < 3 * pixels; ++i) destination[i] = source[i / 3 * 4 + i % 3];
    },
    [](const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
        for (std::size_t i = 0; i < 4 * pixels; ++i) destination[i] = i % 4 < 3 ? source[i / 4] : 0;
    },
    [](std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes, std::uint8_t alpha) {
        for (std::size_t i = 0; i < bytes; ++i)
            destination[i] = static_cast<std::uint8_t>(
                std::lround((source[i] * alpha + destination[i] * (255 - alpha)) / 255.0));
    },
    Kernels::Available().front().sha1Blocks,  // checked by known digests elsewhere
    [](const Kernels::GatherPlan& plan, const std::uint8_t* source, std::uint8_t* destination) {
        for (std::size_t i = 0; i < plan.RowBytes(); ++i)
            destination[i] =
                source[plan.columns[i / plan.bytesPerPixel] * plan.bytesPerPixel + i % plan.bytesPerPixel];
    },
};

constexpr std::size_t kMaxLength = 260;

// Random, constant and run-rich bytes, enough for every case.
const std::vector<Bytes> kContents = [] {
    std::vector<Bytes> contents(3, Bytes(5 * kMaxLength, 0x80));
    std::minstd_rand random;
    std::ranges::generate(contents[0], [&] { return random() >> 8 & 0xFF; });
    std::ranges::generate(
        contents[2], [&, last = 0u]() mutable { return last = random() % 8 < 3 ? last : random() % 4 * 85; });
    return contents;
}();

std::size_t BytesForBits(int firstBit, std::size_t bits) { return bits == 0 ? 0 : (firstBit + bits + 7) / 8; }

class KernelSet : public testing::TestWithParam<Kernels::Table> {
protected:
    // Calls `run(set, source, output)` for the tested set and the reference and compares all of the output:
    // first with buffers of exactly the given sizes, then at odd addresses with guard bytes around the
    // output.
    template <class Run>
    static bool SameOutput(std::size_t sourceSize, std::size_t outputSize, Run run) {
        for (const std::size_t guard : {0, 65})
            for (const Bytes& content : kContents) {
                const Bytes source(content.begin(), content.begin() + guard + sourceSize);
                Bytes expected(kContents[0].rbegin(), kContents[0].rbegin() + guard + outputSize + guard);
                Bytes actual = expected;
                run(kReference, source.data() + guard, expected.data() + guard);
                run(GetParam(), source.data() + guard, actual.data() + guard);
                if (actual != expected) return false;
            }
        return true;
    }
};
INSTANTIATE_TEST_SUITE_P(Available, KernelSet,
                         testing::ValuesIn(Kernels::Available().begin(), Kernels::Available().end()));

TEST_P(KernelSet, ExchangesRedAndBlueInPlaceAndNot) {
    for (const bool inPlace : {false, true})
        for (std::size_t pixels = 0; pixels <= kMaxLength; ++pixels)
            ASSERT_TRUE(SameOutput(
                3 * pixels, 3 * pixels,
                [&](auto& set, auto* in, auto* out) { set.swapRedBlue(inPlace ? out : in, out, pixels); }))
                << inPlace << ", " << pixels;
}

TEST_P(KernelSet, ExpandsBitsFromAnyOffset) {
    for (int bit = 0; bit < 8; ++bit)
        for (std::size_t pixels = 0; pixels <= kMaxLength; ++pixels)
            ASSERT_TRUE(
                SameOutput(BytesForBits(bit, pixels), pixels,
                           [&](auto& set, auto* in, auto* out) { set.expandBits(in, bit, out, pixels); }))
                << bit << ", " << pixels;
}

TEST_P(KernelSet, ThresholdIncludesItsOwnValueAndPadsWithZeros) {
    for (const std::uint8_t threshold : {0, 1, 0x7F, 0x80, 0x81, 0xFF})
        for (std::size_t pixels = 0; pixels <= kMaxLength; ++pixels)
            ASSERT_TRUE(SameOutput(
                pixels, BytesForBits(0, pixels),
                [&](auto& set, auto* in, auto* out) { set.thresholdToBits(in, threshold, out, pixels); }))
                << int{threshold} << ", " << pixels;
}

TEST_P(KernelSet, CopiesBitsBetweenAnyOffsets) {
    // Some sets treat long rows differently: there, steps of 7 with 8 offsets meet every remainder.
    for (std::size_t bits = 0; bits <= 5 * kMaxLength; bits += bits < kMaxLength ? 1 : 7)
        for (int from = 0; from < 8; ++from)
            for (int to = 0; to < 8; ++to)
                ASSERT_TRUE(SameOutput(
                    BytesForBits(from, bits), BytesForBits(to, bits),
                    [&](auto& set, auto* in, auto* out) { set.copyBits(in, from, out, to, bits); }))
                    << from << ", " << to << ", " << bits;
}

TEST_P(KernelSet, MeasuresRunsAndLiterals) {
    const auto expectReference = [](const Bytes& bytes) {
        for (const auto length : {&Kernels::Table::runLength, &Kernels::Table::literalLength})
            ASSERT_EQ((GetParam().*length)(bytes.data(), bytes.size()),
                      (kReference.*length)(bytes.data(), bytes.size()));
    };
    for (std::size_t count = 0; count <= kMaxLength; ++count) {
        for (const Bytes& content : kContents)
            expectReference(Bytes(content.begin(), content.begin() + count));
        // The one place that ends the run, or the literal, everywhere in turn.
        for (std::size_t place = 0; place < count; ++place) {
            Bytes run(count, 7), literal(count);
            run[place] = 8;
            std::iota(literal.begin(), literal.end(), std::uint8_t{0});
            std::fill(literal.begin() + place, literal.begin() + std::min(place + 3, count), literal[place]);
            ASSERT_NO_FATAL_FAILURE(expectReference(run)) << count << ", " << place;
            ASSERT_NO_FATAL_FAILURE(expectReference(literal)) << count << ", " << place;
        }
    }
}

TEST_P(KernelSet, CopiesWidensNarrowsAndRepeatsPixels) {
    for (std::size_t n = 0; n <= kMaxLength; ++n) {
        ASSERT_TRUE(SameOutput(n, n, [&](auto& s, auto* in, auto* out) { s.copyBytes(in, out, n); }));
        ASSERT_TRUE(SameOutput(0, n + 9, [&](auto& s, auto*, auto* out) { s.copyBytes(out, out + 9, n); }));
        ASSERT_TRUE(SameOutput(0, n + 9, [&](auto& s, auto*, auto* out) { s.copyBytes(out + 9, out, n); }));
        ASSERT_TRUE(
            SameOutput(3 * n, 4 * n, [&](auto& s, auto* in, auto* out) { s.widen24To32(in, out, n); }));
        ASSERT_TRUE(
            SameOutput(4 * n, 3 * n, [&](auto& s, auto* in, auto* out) { s.narrow32To24(in, out, n); }));
        ASSERT_TRUE(SameOutput(n, 4 * n, [&](auto& s, auto* in, auto* out) { s.repeatTo32(in, out, n); }));
    }
}

TEST_P(KernelSet, BlendsEveryPairOfBytesAndAnyLength) {
    Bytes source(0x10000), below(0x10000);
    for (std::size_t i = 0; i < source.size(); ++i) {
        source[i] = static_cast<std::uint8_t>(i >> 8);
        below[i] = static_cast<std::uint8_t>(i);
    }
    for (const std::uint8_t alpha : {0, 1, 2, 85, 127, 128, 200, 254, 255}) {
        Bytes expected = below, actual = below;
        kReference.blendConstant(expected.data(), source.data(), source.size(), alpha);
        GetParam().blendConstant(actual.data(), source.data(), source.size(), alpha);
        ASSERT_EQ(actual, expected) << int{alpha};
    }
    for (std::size_t n = 0; n <= kMaxLength; ++n)
        ASSERT_TRUE(SameOutput(n, n, [&](auto& s, auto* in, auto* out) { s.blendConstant(out, in, n, 77); }));
}

TEST_P(KernelSet, GathersPixelsOfAnySizeIntoRowsOfAnyLengthAndDirection) {
    for (const std::size_t bytesPerPixel : {1, 2, 3, 4})
        for (const int sourceWidth : {1, 5, 15, 16, 17, 100, 260})
            for (int width = 0; width <= 260; width += width < 40 ? 1 : 11) {
                std::vector<std::int32_t> columns(width);
                for (int i = 0; i < width; ++i) columns[i] = i * sourceWidth / width;
                if (width % 2 != 0) std::ranges::reverse(columns);
                const Kernels::GatherPlan plan =
                    Kernels::MakeGatherPlan(std::move(columns), sourceWidth, bytesPerPixel);
                ASSERT_TRUE(SameOutput(bytesPerPixel * sourceWidth, plan.RowBytes(),
                                       [&](auto& s, auto* in, auto* out) { s.gatherRow(plan, in, out); }))
                    << bytesPerPixel << ", " << sourceWidth << ", " << width;
            }
}

TEST_P(KernelSet, CompressesAnyNumberOfBlocksFromAnyAddress) {
    for (const std::size_t blocks : {0, 1, 2, 5})
        for (const std::size_t offset : {0, 1, 7}) {
            const Bytes source(kContents[0].begin(), kContents[0].begin() + offset + 64 * blocks);
            std::array<std::uint32_t, 5> expected{0x89ABCDEF, 1, 2, 3, 0xFFFFFFFF}, actual = expected;
            kReference.sha1Blocks(expected.data(), source.data() + offset, blocks);
            GetParam().sha1Blocks(actual.data(), source.data() + offset, blocks);
            ASSERT_EQ(actual, expected) << blocks << ", " << offset;
        }
}

TEST(Kernels, BestSetOfTheProcessorIsActive) {
    EXPECT_EQ(Kernels::Available().front().name, std::string("portable"));
    EXPECT_EQ(Kernels::Active().name, std::string(Platform::HasAvx2()  ? "avx2"
                                                  : Platform::HasSha() ? "sha"
                                                                       : "portable"));
}

}  // namespace
}  // namespace Zelkor::Kalvo
