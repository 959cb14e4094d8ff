// The bytes of the header of an archived object.

#include "kalvo/archive/archivedobject.h"

namespace Zelkor::Kalvo {

std::uint8_t TransferByte(KxSerializer& stream, std::uint8_t value, const char* fieldName) {
    stream.SerializeBytes(&value, 1, fieldName);
    return value;
}

void WriteHeader(KxSerializer& stream, KxSerializer::ObjectType type, unsigned version) {
    const auto typeByte = static_cast<std::uint8_t>(type);
    const auto versionByte = static_cast<std::uint8_t>(version);
    TransferByte(stream, kArchiveSignature, "fileSig");
    TransferByte(stream, typeByte, "objType");
    TransferByte(stream, versionByte, "objVersion");
    TransferByte(stream, kArchiveSignature ^ typeByte ^ versionByte, "checkSum");
}

}  // namespace Zelkor::Kalvo
