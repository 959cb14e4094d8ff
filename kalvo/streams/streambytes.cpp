// Turns values into little-endian bytes on a stream and back, and measures what a stream still holds.

#include "kalvo/streams/streambytes.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "kalvo/base/file.h"
#include "kalvo/streams/byteorder.h"

namespace Zelkor::Kalvo {
namespace {

constexpr std::uint64_t kUnknown = std::numeric_limits<std::uint64_t>::max();
// One transfer counts its bytes in 32 bits.
constexpr std::uint64_t kLargestTransfer = std::uint64_t{1} << 30;

std::uint64_t BytesLeftInFile(std::FILE* file, std::int64_t size) {
    if (!file) return 0;
    return Platform::BytesLeft(file, size).value_or(kUnknown);
}

template <class Value>
void TransferInteger(KxSerializer& stream, Value& value, const char* fieldName) {
    std::uint8_t bytes[sizeof(Value)];
    StoreLittleEndian(bytes, value);
    stream.SerializeBytes(bytes, sizeof(bytes), fieldName);
    value = LoadLittleEndian<Value>(bytes);
}

}  // namespace

KxSerializer& RequireStream(KxSerializer* stream) {
    if (!stream) throw Exception(KX_ERROR_SERIALIZER_NOT_OPEN);
    return *stream;
}

// Knows the streams from inside.
struct StreamContents {
    static std::uint64_t BytesLeft(const KxSerializer& stream);
};

std::uint64_t StreamContents::BytesLeft(const KxSerializer& stream) {
    if (!stream.IsReading()) return 0;
    if (const auto* memory = dynamic_cast<const KxMemSerializer*>(&stream))
        return memory->m_Buffer.size() - memory->m_ReadPosition;
    if (const auto* named = dynamic_cast<const KxFileSerializer*>(&stream))
        return BytesLeftInFile(named->File(), named->m_n64FileSize);
    if (const auto* borrowed = dynamic_cast<const KxFilePointerSerializer*>(&stream))
        return BytesLeftInFile(borrowed->m_pFile, borrowed->m_n64FileSize);
    return kUnknown;
}

std::uint64_t BytesLeft(const KxSerializer& stream) { return StreamContents::BytesLeft(stream); }

void RequireBytes(const KxSerializer& stream, std::uint64_t bytes) {
    if (stream.IsReading() && BytesLeft(stream) < bytes) throw Exception(KX_ERROR_FILE_READ);
}

void TransferValue(KxSerializer& stream, std::int32_t& value, const char* fieldName) {
    TransferInteger(stream, value, fieldName);
}

void TransferValue(KxSerializer& stream, std::uint32_t& value, const char* fieldName) {
    TransferInteger(stream, value, fieldName);
}

void TransferValue(KxSerializer& stream, float& value, const char* fieldName) {
    auto bits = std::bit_cast<std::uint32_t>(value);
    TransferInteger(stream, bits, fieldName);
    value = std::bit_cast<float>(bits);
}

void TransferBlock(KxSerializer& stream, void* data, std::uint64_t bytes, const char* fieldName) {
    auto* next = static_cast<std::uint8_t*>(data);
    while (bytes > 0) {
        const auto size = static_cast<unsigned int>(std::min(bytes, kLargestTransfer));
        stream.SerializeBytes(next, size, fieldName);
        next += size;
        bytes -= size;
    }
}

}  // namespace Zelkor::Kalvo
