// The exact code that rows become, and decoding in pieces of any size.

#include "kalvo/persistence/packbits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

namespace Zelkor::Kalvo {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Bytes Equal(std::size_t count, std::uint8_t value = 7) { return Bytes(count, value); }

// No two neighbours are equal.
Bytes Counting(std::size_t count) {
    Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});
    return bytes;
}

struct Example {
    const char* name;
    Bytes plain;
    Bytes packed;
};

const Example kExamples[] = {
    {"nothing", {}, {}},
    {"one byte", {9}, {0, 9}},
    {"two equal bytes are copied", {9, 9}, {1, 9, 9}},
    {"three equal bytes are a run", {9, 9, 9}, {254, 9}},
    {"pairs stay in a literal", {1, 2, 2, 3, 4, 4}, {5, 1, 2, 2, 3, 4, 4}},
    {"literal, run, literal", {1, 2, 5, 5, 5, 5, 3}, {1, 1, 2, 253, 5, 0, 3}},
    {"longest run", Equal(128), {129, 7}},
    {"what is left of a run is too short for another", Equal(130) + Bytes{8}, {129, 7, 2, 7, 7, 8}},
    {"what is left of a run is another", Equal(131), {129, 7, 254, 7}},
    {"longest literal", Counting(128), Bytes{127} + Counting(128)},
    {"literal that goes on", Counting(129), Bytes{127} + Counting(128) + Bytes{0, 129}},
    {"run just behind a longest literal", Counting(128) + Equal(3),
     Bytes{127} + Counting(128) + Bytes{254, 7}},
    {"run just before the end of one", Counting(127) + Equal(3), Bytes{126} + Counting(127) + Bytes{254, 7}},
};

// Decodes with input and output cut into pieces of those sizes.
Bytes Decode(const Bytes& packed, std::size_t inputPiece, std::size_t outputPiece, std::size_t wanted) {
    PackBitsDecoder decoder;
    Bytes plain;
    for (std::size_t start = 0; start < packed.size(); start += inputPiece) {
        std::span<const std::uint8_t> piece(packed);
        piece = piece.subspan(start, std::min(inputPiece, packed.size() - start));
        for (std::size_t count = outputPiece; count == outputPiece && plain.size() < wanted;) {
            Bytes room(std::min(outputPiece, wanted - plain.size()));
            count = decoder.Decode(piece, room.data(), room.size());
            plain.insert(plain.end(), room.begin(), room.begin() + count);
        }
    }
    return plain;
}

TEST(PackBits, PacksLongRunsAndCopiesTheRest) {
    for (const Example& example : kExamples) {
        Bytes packed;
        AppendPackBits(packed, example.plain);
        EXPECT_EQ(packed, example.packed) << example.name;
    }
}

TEST(PackBits, DecodesPiecesOfAnySize) {
    Bytes plain, packed;
    for (const Example& example : kExamples) plain = plain + example.plain;
    AppendPackBits(packed, plain);
    for (const std::size_t inputPiece : {1, 2, 129, 100000}) {
        for (const std::size_t outputPiece : {1, 3, 128, 100000})
            EXPECT_EQ(Decode(packed, inputPiece, outputPiece, plain.size()), plain);
    }
    std::span<const std::uint8_t> rest(packed);
    EXPECT_EQ(PackBitsDecoder().Decode(rest, nullptr, plain.size() + 1), plain.size());
}

TEST(PackBits, DecodesOddInput) {
    EXPECT_EQ(Decode({128, 128, 0, 4, 128, 255, 6, 128}, 1, 8, 10), (Bytes{4, 6, 6}));  // -128 means nothing
    EXPECT_EQ(Decode({3, 1, 2}, 8, 8, 10), (Bytes{1, 2}));                              // cut in a literal
    EXPECT_EQ(Decode({0, 1, 250}, 8, 8, 10), (Bytes{1}));                               // cut in a run
}

}  // namespace
}  // namespace Zelkor::Kalvo
