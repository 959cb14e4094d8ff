// Headers of archived objects, byte by byte.

#include "kalvo/streams/archiveheader.h"

#include "kalvo/streams/streamposition.h"

namespace Zelkor::Kalvo {
namespace {

std::uint8_t TransferByte(KxSerializer& stream, std::uint8_t value, const char* fieldName) {
    stream.SerializeBytes(&value, 1, fieldName);
    return value;
}

}  // namespace

void WriteHeader(KxSerializer& stream, KxSerializer::ObjectType type, unsigned version) {
    TransferByte(stream, kArchiveSignature, "fileSig");
    TransferByte(stream, static_cast<std::uint8_t>(type), "objType");
    TransferByte(stream, static_cast<std::uint8_t>(version), "objVersion");
    TransferByte(stream, HeaderChecksum(type, version), "checkSum");
}

KxSerializer::ObjectType ReadObjectType(KxSerializer& stream) {
    if (TransferByte(stream, 0, "fileSig") != kArchiveSignature) throw Exception(KX_ERROR_BAD_FILE_FORMAT);
    return static_cast<KxSerializer::ObjectType>(TransferByte(stream, 0, "objType"));
}

unsigned ReadObjectVersion(KxSerializer& stream) { return TransferByte(stream, 0, "objVersion"); }

void ReadChecksum(KxSerializer& stream, KxSerializer::ObjectType type, unsigned version) {
    if (TransferByte(stream, 0, "checkSum") != HeaderChecksum(type, version))
        throw Exception(KX_ERROR_BAD_FILE_FORMAT);
}

KxSerializer::ObjectType PeekObjectType(KxSerializer& stream) {
    StreamRewinder rewinder(stream);
    if (!stream.IsReading()) throw Exception(KX_ERROR_NOT_OPEN_FOR_READ);
    if (stream.IsEOS()) {
        rewinder.Keep();
        return KxSerializer::NoObject;
    }
    const KxSerializer::ObjectType type = ReadObjectType(stream);
    ReadChecksum(stream, type, ReadObjectVersion(stream));
    rewinder.Rewind();
    return type;
}

}  // namespace Zelkor::Kalvo
