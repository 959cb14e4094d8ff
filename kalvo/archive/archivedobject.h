#pragma once
// What all archived objects share: the header before the record, and the way back when a transfer fails.

#include <cstdint>

#include "kalvo/frame/boundary.h"
#include "kalvo/streams/streambytes.h"
#include "kalvo/streams/streamposition.h"

namespace Zelkor::Kalvo {

/// Writes the header of an archived object.
void WriteHeader(KxSerializer& stream, KxSerializer::ObjectType type, unsigned version);

/// Exchanges one byte with the stream.
std::uint8_t TransferByte(KxSerializer& stream, std::uint8_t value, const char* fieldName);

/// Reads the header of `object` and returns the version of its record. Throws when another object or a later
/// version stands there.
template <class Object>
unsigned ReadHeader(KxSerializer& stream, Object& object) {
    if (TransferByte(stream, 0, "fileSig") != kArchiveSignature) throw Exception(KX_ERROR_BAD_FILE_FORMAT);
    const std::uint8_t type = TransferByte(stream, 0, "objType");
    if (type != object.GetSerializationType()) throw Exception(KX_ERROR_WRONG_OBJECT_TYPE);
    const std::uint8_t version = TransferByte(stream, 0, "objVersion");
    if (version > object.GetCurrentVersion()) throw Exception(KX_ERROR_UNSUPPORTED_FILE_VERSION);
    if (TransferByte(stream, 0, "checkSum") != (kArchiveSignature ^ type ^ version))
        throw Exception(KX_ERROR_BAD_FILE_FORMAT);
    return version;
}

/// Writes header and record. A failure takes the stream back, and ends in the error slot and a trace.
template <class Object>
void SaveObject(KxSerializer* stream, Object& object, const char* traceName) {
    const auto save = [&] {
        StreamRewinder rewinder(*stream);
        if (!stream->IsWriting()) throw Exception(KX_ERROR_NOT_OPEN_FOR_WRITE);
        WriteHeader(*stream, object.GetSerializationType(), object.GetCurrentVersion());
        object.Serialize(stream, object.GetCurrentVersion());
        rewinder.Keep();
    };
    AtBoundary(traceName, save, KX_ERROR_ARCHIVE_ACCESS);
}

/// Reads header and record; the same failures.
template <class Object>
void LoadObject(KxSerializer* stream, Object& object, const char* traceName) {
    const auto load = [&] {
        StreamRewinder rewinder(*stream);
        if (!stream->IsReading()) throw Exception(KX_ERROR_NOT_OPEN_FOR_READ);
        object.Serialize(stream, ReadHeader(*stream, object));
        rewinder.Keep();
    };
    AtBoundary(traceName, load, KX_ERROR_ARCHIVE_ACCESS);
}

}  // namespace Zelkor::Kalvo
