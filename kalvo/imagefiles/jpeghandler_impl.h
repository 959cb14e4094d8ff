#pragma once
// What a field handler holds: two fields, each owned or lent, and a timestamp.

#include <array>
#include <cstdint>
#include <utility>

#include "kalvo/imagefiles/jpegfields.h"

namespace Zelkor::Kalvo {

// The JPEG stream of a field. It knows itself whether it owns its bytes.
class JpegField {
public:
    // No field.
    JpegField() = default;
    // Bytes of the caller; null is no field.
    JpegField(const std::uint8_t* lent, std::uint32_t size) : m_bytes(lent), m_size(size) {}
    // Bytes of its own.
    JpegField(HeapBlock owned, std::uint32_t size)
        : m_owned(std::move(owned)), m_bytes(m_owned.Bytes()), m_size(size), m_ownedSize(size) {}

    // The stream; without an address when there is none.
    FieldBytes Bytes() const { return m_bytes ? FieldBytes(m_bytes, m_size) : FieldBytes(); }
    // Whether there may be `size` bytes: who lends bytes knows how many there are.
    bool MayTakeSize(std::uint32_t size) const { return !m_owned.Bytes() || size <= m_ownedSize; }
    void SetSize(std::uint32_t size) { m_size = size; }

private:
    HeapBlock m_owned;
    const std::uint8_t* m_bytes = nullptr;
    std::uint32_t m_size = 0;
    std::uint32_t m_ownedSize = 0;
};

// The whole file as a field.
JpegField LoadFieldFile(const char* path);
// Writes the field as the whole file.
void SaveFieldFile(const JpegField& field, const char* path);

}  // namespace Zelkor::Kalvo

struct KxJpegHandler_Impl {
    static KxSerializer::ObjectType GetSerializationType() { return KxSerializer::JpegHandler; }
    static unsigned GetCurrentVersion() { return 1; }

    // Exchanges the record with the stream. A handler that cannot be read is empty.
    void Serialize(KxSerializer* stream, unsigned version);
    // The same, reading into a new object.
    void TransferFields(KxSerializer& stream);

    Zelkor::Kalvo::JpegField upField;
    Zelkor::Kalvo::JpegField downField;
    std::array<std::uint32_t, 2> timestamp{};  // kept for the caller; not archived
};
