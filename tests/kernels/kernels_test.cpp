// Bit kernels and blending of every available set against the portable one, at every length and offset. All
// kernels are checked against slow rules by fuzz/fuzz_kernels.cpp.

#include "tests/support/test.h"

#include "kalvo/base/cpu.h"
#include "kalvo/kernels/kernels.h"

// Names the sets in the names of their tests.
namespace Zelkor::Kernels {
void PrintTo(const Table& set, std::ostream* stream) { *stream << set.name; }
}  // namespace Zelkor::Kernels

namespace Zelkor::Kalvo {
namespace {

// A vector of n bytes is n bytes on the heap, so address sanitizer sees an access just outside.
using Bytes = std::vector<std::uint8_t>;

const Kernels::Table& kPortable = Kernels::Available().front();
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
                run(kPortable, source.data() + guard, expected.data() + guard);
                run(GetParam(), source.data() + guard, actual.data() + guard);
                if (actual != expected) return false;
            }
        return true;
    }
};
INSTANTIATE_TEST_SUITE_P(Available, KernelSet,
                         testing::ValuesIn(Kernels::Available().begin() + 1, Kernels::Available().end()));

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

TEST_P(KernelSet, BlendsEveryPairOfBytesAndAnyLength) {
    Bytes source(0x10000), below(0x10000);
    for (std::size_t i = 0; i < source.size(); ++i) {
        source[i] = static_cast<std::uint8_t>(i >> 8);
        below[i] = static_cast<std::uint8_t>(i);
    }
    for (const std::uint8_t alpha : {0, 1, 2, 85, 127, 128, 200, 254, 255}) {
        Bytes expected = below, actual = below;
        kPortable.blendConstant(expected.data(), source.data(), source.size(), alpha);
        GetParam().blendConstant(actual.data(), source.data(), source.size(), alpha);
        ASSERT_EQ(actual, expected) << int{alpha};
    }
    for (std::size_t n = 0; n <= kMaxLength; ++n)
        ASSERT_TRUE(SameOutput(n, n, [&](auto& s, auto* in, auto* out) { s.blendConstant(out, in, n, 77); }));
}

TEST(Kernels, BestSetOfTheProcessorIsActive) {
    EXPECT_EQ(Kernels::Available().front().name, std::string("portable"));
    EXPECT_EQ(Kernels::Active().name, std::string(Platform::HasVbmi()   ? "vbmi"
                                                  : Platform::HasAvx2() ? "avx2"
                                                  : Platform::HasSha()  ? "sha"
                                                                        : "portable"));
}

}  // namespace
}  // namespace Zelkor::Kalvo
