#pragma once
// The SHA-1 message digest of FIPS 180-1.

#include <cstdint>

#include "kalvo/base/kxexport.h"

/// Computes the digest of a message that comes in pieces: `Update` for each piece, `Final`, and then the
/// result. `Reset` starts the next message. Objects may be copied at any time; nothing here fails.
/// @code
/// CSHA1 sha1;
/// sha1.Update(reinterpret_cast<const unsigned char*>("abc"), 3);
/// sha1.Final();
/// unsigned char hash[20];
/// sha1.GetHash(hash);
/// @endcode
class KX_API CSHA1 {
public:
    CSHA1();
    CSHA1(const CSHA1&) = default;
    CSHA1& operator=(const CSHA1&) = default;
    /// Leaves no state in memory.
    ~CSHA1();

    /// Starts a message. The result of the last one stays.
    void Reset();
    /// Appends `un32Length` bytes, which may be 0, to the message.
    void Update(const unsigned char* pun8Data, unsigned int un32Length);
    /// Ends the message and computes its digest.
    void Final();

    /// Copies the 20 bytes of the digest; zeros before the first `Final`.
    void GetHash(unsigned char* pun8Hash) const;
    /// The digest folded to 32 bits: the little-endian words at bytes 0, 8 and 14, combined by exclusive or.
    void Get32BitHash(unsigned int* pun32Hash) const;

private:
    std::uint32_t m_State[5];
    std::uint64_t m_un64BitCount;
    std::uint8_t m_Buffer[64] = {};  // input that does not make a block yet
    std::uint8_t m_Digest[20] = {};
};
