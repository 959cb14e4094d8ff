#pragma once
// Fields on an archive stream: fixed-width little-endian values, large blocks, and what a stream still holds.

#include <cstdint>

#include "kalvo/streams/kxserializer.h"

namespace Zelkor::Kalvo {

// The stream that a caller handed over. Throws KX_ERROR_SERIALIZER_NOT_OPEN when there is none.
KxSerializer& RequireStream(KxSerializer* stream);

// Bytes that a stream still has to read; 0 when it is not reading, the largest value when it cannot tell: a
// pipe, or a stream of another maker.
std::uint64_t BytesLeft(const KxSerializer& stream);

// Throws KX_ERROR_FILE_READ when a reading stream holds fewer than `bytes` more bytes.
void RequireBytes(const KxSerializer& stream, std::uint64_t bytes);

// Exchanges one 32-bit integer (or 32-bit enumeration) with the stream.
void TransferValue(KxSerializer& stream, std::int32_t& value, const char* fieldName);
void TransferValue(KxSerializer& stream, std::uint32_t& value, const char* fieldName);
// Exchanges one 32-bit float.
void TransferValue(KxSerializer& stream, float& value, const char* fieldName);
// Exchanges a block of any size as it lies in memory.
void TransferBlock(KxSerializer& stream, void* data, std::uint64_t bytes, const char* fieldName);

}  // namespace Zelkor::Kalvo
