// Known digests, messages in pieces, the folded form.

#include "tests/support/test.h"

namespace {

void Append(CSHA1& digest, std::string_view text) {
    digest.Update(reinterpret_cast<const unsigned char*>(text.data()), static_cast<unsigned>(text.size()));
}

std::string Finish(CSHA1& digest) {
    unsigned char hash[20];
    digest.Final();
    digest.GetHash(hash);
    std::ostringstream text;
    for (const int byte : hash) text << std::hex << std::setw(2) << std::setfill('0') << byte;
    return text.str();
}

std::string DigestOf(std::string_view message) {
    CSHA1 digest;
    Append(digest, message);
    return Finish(digest);
}

TEST(Sha1, GivesTheDigestsOfTheStandard) {
    EXPECT_EQ(DigestOf({}), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
    CSHA1 abc;
    Append(abc, "abc");
    EXPECT_EQ(Finish(abc), "a9993e364706816aba3e25717850c26c9cd0d89d");
    unsigned folded = 0;
    abc.Get32BitHash(&folded);
    EXPECT_EQ(folded, 0x9787CBD1u);
    EXPECT_EQ(DigestOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "84983e441c3bd26ebaae4aa1f95129e5e54670f1");
    EXPECT_EQ(DigestOf(std::string(1000000, 'a')), "34aa973cd4c4daa4f61eeb2bdbad27316534016f");
}

TEST(Sha1, TakesMessagesInPiecesOfAnySize) {
    std::string message;
    for (int length = 0; length <= 300; message += static_cast<char>(7 * length++))
        for (const int piece : {1, 7, 63, 64, 65, 128}) {
            CSHA1 digest;
            digest.Update(nullptr, 0);
            for (int i = 0; i < length; i += piece)
                Append(digest, std::string_view(message).substr(i, piece));
            ASSERT_EQ(Finish(digest), DigestOf(message)) << length << ", " << piece;
        }
}

TEST(Sha1, CountsBitsBeyond32Bits) {
    const std::string megabyte(1 << 20, '\0');
    CSHA1 digest;
    for (int i = 0; i < 513; ++i) Append(digest, megabyte);
    EXPECT_EQ(Finish(digest), "56b0894b2b968f40e7a5e9240d242c19f7c56b70");
}

}  // namespace
