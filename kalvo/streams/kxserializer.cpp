// What all archive streams share: forwarding to the stream itself, and peeking at the next object.

#include "kalvo/streams/kxserializer.h"

#include <optional>

#include "kalvo/frame/boundary.h"
#include "kalvo/streams/streambytes.h"
#include "kalvo/streams/streamposition.h"

using namespace Zelkor::Kalvo;

namespace {

std::uint8_t ReadByte(KxSerializer& stream, const char* fieldName) {
    std::uint8_t byte = 0;
    stream.SerializeBytes(&byte, 1, fieldName);
    return byte;
}

KxSerializer::ObjectType ReadHeader(KxSerializer& stream) {
    if (ReadByte(stream, "fileSig") != kArchiveSignature) throw Exception(KX_ERROR_BAD_FILE_FORMAT);
    const std::uint8_t type = ReadByte(stream, "objType");
    const std::uint8_t version = ReadByte(stream, "objVersion");
    const std::uint8_t checksum = ReadByte(stream, "checkSum");
    if (checksum != (kArchiveSignature ^ type ^ version)) throw Exception(KX_ERROR_BAD_FILE_FORMAT);
    return static_cast<KxSerializer::ObjectType>(type);
}

}  // namespace

KxSerializer::~KxSerializer() = default;

KxSerializer::ObjectType KxSerializer::GetNextObjectType() { return m_pImplementation->GetNextObjectType(); }

void KxSerializer::Close() { m_pImplementation->Close(); }

int KxSerializer::IsFile() const { return 0; }

unsigned int KxSerializer::GetData(unsigned char*, unsigned int) {
    KxSetError(KX_ERROR_INVALID_OPERATION);
    return 0;
}

unsigned int KxSerializer::GetCurrentPos() {
    KxSetError(KX_ERROR_INVALID_OPERATION);
    return 0;
}

void KxSerializer::SerializeBytes(void* pData, unsigned int un32Size, const char* pszFieldName) {
    m_pImplementation->SerializeBytes(pData, un32Size, pszFieldName);
}

int KxSerializer::IsReading() const { return m_pImplementation->IsReading(); }

int KxSerializer::IsWriting() const { return m_pImplementation->IsWriting(); }

int KxSerializer::IsEOS() const { return m_pImplementation->IsEOS(); }

void KxSerializer::PushStreamPos() { m_pImplementation->PushStreamPos(); }

void KxSerializer::PopAndForgetStreamPos() { m_pImplementation->PopAndForgetStreamPos(); }

void KxSerializer::PopAndApplyStreamPos() { m_pImplementation->PopAndApplyStreamPos(); }

KxSerializer::ObjectType KxOpaqueSerializer::GetNextObjectType() {
    const auto peek = [this]() -> std::optional<ObjectType> {
        StreamRewinder rewinder(*this);
        if (!IsReading()) throw Exception(KX_ERROR_NOT_OPEN_FOR_READ);
        if (IsEOS()) {
            rewinder.Keep();
            return NoObject;
        }
        const ObjectType eType = ReadHeader(*this);
        rewinder.Rewind();
        return eType;
    };
    return AtBoundary(nullptr, peek, KX_ERROR_ARCHIVE_ACCESS).value_or(static_cast<ObjectType>(-1));
}

void KxOpaqueSerializer::Close() {}

int KxOpaqueSerializer::IsReading() const { return !IsWriting(); }
