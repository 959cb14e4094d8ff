// The compression function of SHA-1 in plain C++.

#include "kalvo/kernels/kernels.h"

#include <bit>

namespace Zelkor::Kernels::Sha1Portable {
namespace {

std::uint32_t LoadBigEndian(const std::uint8_t* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 |
           bytes[3];
}

std::uint32_t Choose(std::uint32_t x, std::uint32_t y, std::uint32_t z) { return z ^ (x & (y ^ z)); }
std::uint32_t Parity(std::uint32_t x, std::uint32_t y, std::uint32_t z) { return x ^ y ^ z; }
std::uint32_t Majority(std::uint32_t x, std::uint32_t y, std::uint32_t z) { return (x & y) | (z & (x | y)); }

// The last sixteen words of the message schedule, which is all that the next one needs.
class Schedule {
public:
    explicit Schedule(const std::uint8_t* block) {
        for (int i = 0; i < 16; ++i) m_words[i] = LoadBigEndian(block + 4 * i);
    }

    std::uint32_t Word(int round) {
        std::uint32_t& word = m_words[round % 16];
        if (round >= 16)
            word = std::rotl(
                m_words[(round + 13) % 16] ^ m_words[(round + 8) % 16] ^ m_words[(round + 2) % 16] ^ word, 1);
        return word;
    }

private:
    std::uint32_t m_words[16];
};

struct Digest {
    std::uint32_t a, b, c, d, e;

    // Twenty rounds that mix with the same function and constant.
    template <auto kMix, std::uint32_t kConstant>
    void Mix(Schedule& schedule, int firstRound) {
        for (int round = firstRound; round < firstRound + 20; ++round) {
            const std::uint32_t next = std::rotl(a, 5) + kMix(b, c, d) + e + kConstant + schedule.Word(round);
            e = d;
            d = c;
            c = std::rotl(b, 30);
            b = a;
            a = next;
        }
    }
};

void Sha1Blocks(std::uint32_t* state, const std::uint8_t* blocks, std::size_t count) {
    for (; count > 0; --count, blocks += 64) {
        Schedule schedule(blocks);
        Digest digest{state[0], state[1], state[2], state[3], state[4]};
        digest.Mix<Choose, 0x5A827999>(schedule, 0);
        digest.Mix<Parity, 0x6ED9EBA1>(schedule, 20);
        digest.Mix<Majority, 0x8F1BBCDC>(schedule, 40);
        digest.Mix<Parity, 0xCA62C1D6>(schedule, 60);
        state[0] += digest.a;
        state[1] += digest.b;
        state[2] += digest.c;
        state[3] += digest.d;
        state[4] += digest.e;
    }
}

}  // namespace

void Install(Table& kernels) { kernels.sha1Blocks = Sha1Blocks; }

}  // namespace Zelkor::Kernels::Sha1Portable
