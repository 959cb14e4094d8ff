#pragma once
// What all archived objects share: the header before the record, and the way back when a transfer fails.

#include "kalvo/frame/boundary.h"
#include "kalvo/streams/archiveheader.h"
#include "kalvo/streams/streambytes.h"
#include "kalvo/streams/streamposition.h"

namespace Zelkor::Kalvo {

// Reads the header of `object` and returns the version of its record. Throws when another object or a later
// version stands there.
template <class Object>
unsigned ReadHeader(KxSerializer& stream, Object& object) {
    const KxSerializer::ObjectType type = ReadObjectType(stream);
    if (type != object.GetSerializationType()) throw Exception(KX_ERROR_WRONG_OBJECT_TYPE);
    const unsigned version = ReadObjectVersion(stream);
    if (version > object.GetCurrentVersion()) throw Exception(KX_ERROR_UNSUPPORTED_FILE_VERSION);
    ReadChecksum(stream, type, version);
    return version;
}

// Writes header and record. A failure takes the stream back, and ends in the error slot and a trace.
template <class Object>
void SaveObject(KxSerializer* pSerializer, Object& object, const char* traceName) {
    const auto save = [&] {
        KxSerializer& stream = RequireStream(pSerializer);
        StreamRewinder rewinder(stream);
        if (!stream.IsWriting()) throw Exception(KX_ERROR_NOT_OPEN_FOR_WRITE);
        WriteHeader(stream, object.GetSerializationType(), object.GetCurrentVersion());
        object.Serialize(&stream, object.GetCurrentVersion());
        rewinder.Keep();
    };
    AtBoundary(traceName, save, KX_ERROR_ARCHIVE_ACCESS);
}

// Reads header and record; the same failures.
template <class Object>
void LoadObject(KxSerializer* pSerializer, Object& object, const char* traceName) {
    const auto load = [&] {
        KxSerializer& stream = RequireStream(pSerializer);
        StreamRewinder rewinder(stream);
        if (!stream.IsReading()) throw Exception(KX_ERROR_NOT_OPEN_FOR_READ);
        object.Serialize(&stream, ReadHeader(stream, object));
        rewinder.Keep();
    };
    AtBoundary(traceName, load, KX_ERROR_ARCHIVE_ACCESS);
}

}  // namespace Zelkor::Kalvo
