// Cuts a message into blocks and pads its end; a kernel does the rounds.

#include "kalvo/measure/kxsha1.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "kalvo/kernels/kernels.h"

namespace {

constexpr std::size_t kBlockSize = 64;
constexpr std::size_t kLengthOffset = kBlockSize - 8;  // where the bit count stands in the last block

void StoreBigEndian(std::uint8_t* bytes, std::uint32_t word) {
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<std::uint8_t>(word >> (24 - 8 * i));
}

std::uint32_t LoadLittleEndian(const std::uint8_t* bytes) {
    return bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
           std::uint32_t{bytes[3]} << 24;
}

// A plain memset of an object that dies is optimised away.
void Wipe(void* memory, std::size_t size) {
    std::memset(memory, 0, size);
    asm volatile("" : : "r"(memory) : "memory");
}

}  // namespace

CSHA1::CSHA1() { Reset(); }

CSHA1::~CSHA1() {
    Wipe(m_State, sizeof m_State);
    Wipe(m_Buffer, sizeof m_Buffer);
}

void CSHA1::Reset() {
    constexpr std::uint32_t kInitial[] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
    std::ranges::copy(kInitial, m_State);
    m_un64BitCount = 0;
}

void CSHA1::Update(const unsigned char* pun8Data, unsigned int un32Length) {
    if (un32Length == 0) return;
    const Zelkor::Kernels::Table& kernels = Zelkor::Kernels::Active();
    const std::size_t buffered = m_un64BitCount / 8 % kBlockSize;
    m_un64BitCount += std::uint64_t{un32Length} * 8;
    std::span<const unsigned char> rest(pun8Data, un32Length);
    if (buffered > 0) {
        const std::size_t head = std::min(kBlockSize - buffered, rest.size());
        std::memcpy(m_Buffer + buffered, rest.data(), head);
        rest = rest.subspan(head);
        if (buffered + head < kBlockSize) return;
        kernels.sha1Blocks(m_State, m_Buffer, 1);
    }
    const std::size_t blocks = rest.size() / kBlockSize;
    kernels.sha1Blocks(m_State, rest.data(), blocks);
    rest = rest.subspan(blocks * kBlockSize);
    std::ranges::copy(rest, m_Buffer);
}

void CSHA1::Final() {
    const std::uint64_t bitCount = m_un64BitCount;
    const std::size_t buffered = bitCount / 8 % kBlockSize;
    std::uint8_t padding[kBlockSize + 8] = {0x80};
    const std::size_t zerosEnd = buffered < kLengthOffset ? kLengthOffset : kLengthOffset + kBlockSize;
    const std::size_t length = zerosEnd - buffered;
    StoreBigEndian(padding + length, static_cast<std::uint32_t>(bitCount >> 32));
    StoreBigEndian(padding + length + 4, static_cast<std::uint32_t>(bitCount));
    Update(padding, static_cast<unsigned>(length + 8));
    for (int i = 0; i < 5; ++i) StoreBigEndian(m_Digest + 4 * i, m_State[i]);
    std::ranges::fill(m_State, 0);
    std::ranges::fill(m_Buffer, 0);
    m_un64BitCount = 0;
}

void CSHA1::GetHash(unsigned char* pun8Hash) const { std::ranges::copy(m_Digest, pun8Hash); }

void CSHA1::Get32BitHash(unsigned int* pun32Hash) const {
    *pun32Hash =
        LoadLittleEndian(m_Digest) ^ LoadLittleEndian(m_Digest + 8) ^ LoadLittleEndian(m_Digest + 14);
}
