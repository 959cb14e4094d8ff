// The exact code that rows become, and decoding in pieces of any size.

#include "tests/support/test.h"

#include "kalvo/imagefiles/packbits.h"

namespace Zelkor::Kalvo {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Decodes input that comes in pieces of one size into room for at most `roomBytes`.
Bytes Decode(const Bytes& packed, std::size_t pieceBytes, std::size_t roomBytes) {
    PackBitsDecoder decoder;
    Bytes plain, room(roomBytes);
    for (std::size_t start = 0; start < packed.size(); start += pieceBytes) {
        auto piece = std::span(packed).subspan(start, std::min(pieceBytes, packed.size() - start));
        while (const std::size_t count = decoder.Decode(piece, room.data(), roomBytes))
            plain.insert(plain.end(), room.begin(), room.begin() + count);
    }
    return plain;
}

void ExpectCode(const Bytes& plain, const Bytes& packed) {
    Bytes result;
    AppendPackBits(result, plain);
    EXPECT_EQ(result, packed);
    for (const std::size_t pieceBytes : {1, 2, 129, 1000})
        for (const std::size_t roomBytes : {1, 3, 128, 1000})
            EXPECT_EQ(Decode(packed, pieceBytes, roomBytes), plain);
}

TEST(PackBits, PacksLongRunsAndCopiesTheRest) {
    ExpectCode({9}, {0, 9});
    ExpectCode({9, 9, 9}, {254, 9});
    ExpectCode({1, 2, 2, 3, 4, 4}, {5, 1, 2, 2, 3, 4, 4});  // pairs stay in a literal
    ExpectCode({1, 2, 5, 5, 5, 5, 3}, {1, 1, 2, 253, 5, 0, 3});
    ExpectCode(Bytes(130, 7), {129, 7, 1, 7, 7});  // what is left of a run is too short for another
    ExpectCode(Bytes(131, 7), {129, 7, 254, 7});
}

TEST(PackBits, CutsLiteralsAfter128Bytes) {
    Bytes plain(129);
    std::iota(plain.begin(), plain.end(), std::uint8_t{1});
    Bytes packed = plain;
    packed.insert(packed.end() - 1, 0);
    packed.insert(packed.begin(), 127);
    ExpectCode(plain, packed);
}

TEST(PackBits, DecodesOddInput) {
    EXPECT_EQ(Decode({128, 128, 0, 4, 128, 255, 6, 128}, 1, 8), (Bytes{4, 6, 6}));  // -128 means nothing
    EXPECT_EQ(Decode({3, 1, 2}, 8, 8), (Bytes{1, 2}));                              // cut in a literal
    EXPECT_EQ(Decode({0, 1, 250}, 8, 8), (Bytes{1}));                               // cut in a run
}

}  // namespace
}  // namespace Zelkor::Kalvo
