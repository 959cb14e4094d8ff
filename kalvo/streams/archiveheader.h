#pragma once
// The four bytes before the record of every archived object: signature, type, version, and the exclusive or
// of the three.

#include <cstdint>

#include "kalvo/streams/kxserializer.h"

namespace Zelkor::Kalvo {

inline constexpr std::uint8_t kArchiveSignature = 0x4B;

constexpr std::uint8_t HeaderChecksum(unsigned type, unsigned version) {
    return static_cast<std::uint8_t>(kArchiveSignature ^ type ^ version);
}

// Writes a header.
void WriteHeader(KxSerializer& stream, KxSerializer::ObjectType type, unsigned version);

// A header is read in these three steps, between which the reader may refuse the object.

// Throws KX_ERROR_BAD_FILE_FORMAT when no object begins here.
KxSerializer::ObjectType ReadObjectType(KxSerializer& stream);
unsigned ReadObjectVersion(KxSerializer& stream);
// Throws KX_ERROR_BAD_FILE_FORMAT when the checksum is not that of `type` and `version`.
void ReadChecksum(KxSerializer& stream, KxSerializer::ObjectType type, unsigned version);

// Reads a header and goes back to it; NoObject at the end of the stream. Throws KX_ERROR_NOT_OPEN_FOR_READ,
// KX_ERROR_BAD_FILE_FORMAT and what the stream throws.
KxSerializer::ObjectType PeekObjectType(KxSerializer& stream);

}  // namespace Zelkor::Kalvo
