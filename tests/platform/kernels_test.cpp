// Every available set of kernels against a slow, obvious reference; the portable set is one of them.
#include "kalvo/platform/kernels/kernels.h"

#include "kalvo/platform/cpu.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace Zelkor::Kalvo {
namespace {

// A vector of n bytes is n bytes on the heap, so address sanitizer sees an access just outside.
using Bytes = std::vector<std::uint8_t>;

bool BitAt(const std::uint8_t* bits, std::size_t index) {
    return (bits[index / 8] & 0x80 >> index % 8) != 0;
}

void SetBit(std::uint8_t* bits, std::size_t index, bool value) {
    const int mask = 0x80 >> index % 8;
    bits[index / 8] = static_cast<std::uint8_t>(value ? bits[index / 8] | mask : bits[index / 8] & ~mask);
}

const Kernels kReference = {
    "reference",
    [](const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
        const Bytes copy(source, source + 3 * pixels);
        for (std::size_t i = 0; i < copy.size(); ++i) destination[i] = copy[i / 3 * 3 + (2 - i % 3)];
    },
    [](const std::uint8_t* bits, int firstBit, std::uint8_t* bytes, std::size_t pixels) {
        for (std::size_t i = 0; i < pixels; ++i) bytes[i] = BitAt(bits, firstBit + i) ? 255 : 0;
    },
    [](const std::uint8_t* bytes, std::uint8_t threshold, std::uint8_t* bits, std::size_t pixels) {
        for (std::size_t i = 0; i < (pixels + 7) / 8 * 8; ++i) {
            SetBit(bits, i, i < pixels && bytes[i] >= threshold);
        }
    },
    [](const std::uint8_t* source, int sourceBit, std::uint8_t* destination, int destinationBit,
       std::size_t bits) {
        for (std::size_t i = 0; i < bits; ++i) {
            SetBit(destination, destinationBit + i, BitAt(source, sourceBit + i));
        }
    },
    [](const std::uint8_t* bytes, std::size_t count) {
        const auto* end = std::find_if(bytes, bytes + count, [&](auto byte) { return byte != bytes[0]; });
        return static_cast<std::size_t>(end - bytes);
    },
    [](const std::uint8_t* bytes, std::size_t count) {
        const Bytes copy(bytes, bytes + count);
        std::size_t i = 0;
        while (i < count && !(i + 2 < count && copy[i] == copy[i + 1] && copy[i] == copy[i + 2])) ++i;
        return i;
    },
};

constexpr std::size_t kMaxLength = 260;

// Random, constant and run-rich bytes, enough for every case.
const std::vector<Bytes> kContents = [] {
    std::vector<Bytes> contents(3, Bytes(4 * kMaxLength, 0x80));
    std::minstd_rand random;
    std::generate(contents[0].begin(), contents[0].end(), [&] { return random() >> 8 & 0xFF; });
    std::generate(contents[2].begin(), contents[2].end(),
                  [&, last = 0u]() mutable { return last = random() % 8 < 3 ? last : random() % 4 * 85; });
    return contents;
}();

// Calls `run(kernels, source, output)` for `kernels` and the reference and compares all of the output: first
// with buffers of exactly the given sizes, then at odd addresses with guard bytes around the output.
template <class Run>
bool SameOutput(const Kernels& kernels, std::size_t sourceSize, std::size_t outputSize, Run run) {
    for (const std::size_t guard : {0, 65}) {
        for (const Bytes& content : kContents) {
            const Bytes source(content.begin(), content.begin() + guard + sourceSize);
            Bytes expected(kContents[0].rbegin(), kContents[0].rbegin() + guard + outputSize + guard);
            Bytes actual = expected;
            run(kReference, source.data() + guard, expected.data() + guard);
            run(kernels, source.data() + guard, actual.data() + guard);
            if (actual != expected) return false;
        }
    }
    return true;
}

class KernelSet : public testing::TestWithParam<Kernels> {};
const std::vector<Kernels> kSets(AvailableKernels().begin(), AvailableKernels().end());
INSTANTIATE_TEST_SUITE_P(Available, KernelSet, testing::ValuesIn(kSets),
                         [](const auto& set) { return std::string(set.param.name); });

TEST_P(KernelSet, ExchangesRedAndBlueInPlaceAndNot) {
    for (std::size_t pixels = 0; pixels <= kMaxLength; ++pixels) {
        ASSERT_TRUE(SameOutput(
            GetParam(), 3 * pixels, 3 * pixels,
            [&](auto& kernels, auto* source, auto* output) { kernels.swapRedBlue(source, output, pixels); }))
            << pixels;
        ASSERT_TRUE(SameOutput(GetParam(), 0, 3 * pixels, [&](auto& kernels, auto*, auto* output) {
            kernels.swapRedBlue(output, output, pixels);
        })) << pixels;
    }
}

std::size_t BytesForBits(int firstBit, std::size_t bits) {
    return bits == 0 ? 0 : (firstBit + bits + 7) / 8;
}

TEST_P(KernelSet, ExpandsBitsFromAnyOffset) {
    for (int firstBit = 0; firstBit < 8; ++firstBit) {
        for (std::size_t pixels = 0; pixels <= kMaxLength; ++pixels) {
            ASSERT_TRUE(SameOutput(GetParam(), BytesForBits(firstBit, pixels), pixels,
                                   [&](auto& kernels, auto* source, auto* output) {
                                       kernels.expandBits(source, firstBit, output, pixels);
                                   }))
                << firstBit << ", " << pixels;
        }
    }
}

TEST_P(KernelSet, ThresholdIncludesItsOwnValueAndPadsWithZeros) {
    for (const std::uint8_t threshold : {0, 1, 0x7F, 0x80, 0x81, 0xFF}) {
        for (std::size_t pixels = 0; pixels <= kMaxLength; ++pixels) {
            ASSERT_TRUE(SameOutput(GetParam(), pixels, BytesForBits(0, pixels),
                                   [&](auto& kernels, auto* source, auto* output) {
                                       kernels.thresholdToBits(source, threshold, output, pixels);
                                   }))
                << int{threshold} << ", " << pixels;
        }
    }
}

TEST_P(KernelSet, CopiesBitsBetweenAnyOffsets) {
    // Some sets treat long rows differently: there, steps of 7 with 8 offsets meet every remainder.
    for (std::size_t bits = 0; bits <= 5 * kMaxLength; bits += bits < kMaxLength ? 1 : 7) {
        for (int offsets = 0; offsets < 64; ++offsets) {
            const int sourceBit = offsets / 8, destinationBit = offsets % 8;
            ASSERT_TRUE(SameOutput(GetParam(), BytesForBits(sourceBit, bits),
                                   BytesForBits(destinationBit, bits),
                                   [&](auto& kernels, auto* source, auto* output) {
                                       kernels.copyBits(source, sourceBit, output, destinationBit, bits);
                                   }))
                << sourceBit << ", " << destinationBit << ", " << bits;
        }
    }
}

TEST_P(KernelSet, MeasuresRunsAndLiterals) {
    const auto expectReference = [](const Bytes& bytes) {
        ASSERT_EQ(GetParam().runLength(bytes.data(), bytes.size()),
                  kReference.runLength(bytes.data(), bytes.size()));
        ASSERT_EQ(GetParam().literalLength(bytes.data(), bytes.size()),
                  kReference.literalLength(bytes.data(), bytes.size()));
    };
    for (std::size_t count = 0; count <= kMaxLength; ++count) {
        for (const Bytes& content : kContents) {
            expectReference(Bytes(content.begin(), content.begin() + count));
        }
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

TEST(Kernels, BestSetOfTheProcessorIsActive) {
    const std::string expected = Platform::HasAvx2() ? "avx2" : "portable";
    EXPECT_EQ(AvailableKernels().front().name, std::string("portable"));
    EXPECT_EQ(ActiveKernels().name, expected);
    EXPECT_EQ(ActiveKernels().copyBits, AvailableKernels().back().copyBits);
}

}  // namespace
}  // namespace Zelkor::Kalvo
