#pragma once
// The vector file: a four-byte header, the count, the elements. Integers are little-endian.

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>

#include "kalvo/base/file.h"
#include "kalvo/frame/boundary.h"
#include "kalvo/frame/loadlimits.h"
#include "kalvo/streams/archiveheader.h"
#include "kalvo/streams/byteorder.h"
#include "kalvo/vectors/kxvector.h"
#include "kalvo/vectors/vectorcore.h"

namespace Zelkor::Kalvo {

static_assert(std::endian::native == std::endian::little,
              "plain elements are exchanged as they lie in memory");

// clang-format off
template <class T> inline constexpr std::uint8_t kVectorTypeCode = 0;
template <> inline constexpr std::uint8_t kVectorTypeCode<KxBW8> = 1;
template <> inline constexpr std::uint8_t kVectorTypeCode<KxBW16> = 2;
template <> inline constexpr std::uint8_t kVectorTypeCode<KxBW32> = 3;
template <> inline constexpr std::uint8_t kVectorTypeCode<unsigned int> = 3;  // either loads the other's files
template <> inline constexpr std::uint8_t kVectorTypeCode<KxC24> = 4;
template <> inline constexpr std::uint8_t kVectorTypeCode<KxRun> = 6;
template <> inline constexpr std::uint8_t kVectorTypeCode<KxINT32> = 7;
// clang-format on

// Signature, type code, format version, and the XOR of the three.
using VectorFileHeader = std::array<std::uint8_t, 4>;

template <class T>
constexpr VectorFileHeader MakeVectorFileHeader(std::uint8_t version) {
    constexpr std::uint8_t kCode = kVectorTypeCode<T>;
    return {kArchiveSignature, kCode, version, HeaderChecksum(kCode, version)};
}

// How elements stand in a file: as they lie in memory, in every version.
template <class T>
class ElementFormat {
public:
    static constexpr std::uint8_t kNewestVersion = 1;

    explicit ElementFormat(unsigned) {}
    std::uint64_t BytesPerElement() const { return sizeof(T); }
    bool CanHold(std::span<const T>) const { return true; }
    // Returns the number of elements written.
    std::size_t Write(std::FILE* stream, std::span<const T> elements) const {
        return elements.empty() ? 0 : std::fwrite(elements.data(), sizeof(T), elements.size(), stream);
    }
    // Returns the number of whole elements read.
    std::size_t Read(std::FILE* stream, std::span<T> elements) const {
        return elements.empty() ? 0
                                : Platform::Read(stream, elements.data(), elements.size_bytes()) / sizeof(T);
    }
};

// Runs: two addresses, then x and y. An address takes 4 bytes, in version 2 it takes 8.
template <>
class ElementFormat<KxRun> {
public:
    static constexpr std::uint8_t kNewestVersion = 2;

    explicit ElementFormat(unsigned version) : m_addressBytes(version == 2 ? 8 : 4) {}
    std::uint64_t BytesPerElement() const { return 2 * m_addressBytes + 4; }
    // Whether the addresses of all runs fit.
    bool CanHold(std::span<const KxRun> runs) const;
    std::size_t Write(std::FILE* stream, std::span<const KxRun> runs) const;
    std::size_t Read(std::FILE* stream, std::span<KxRun> runs) const;

private:
    void Encode(const KxRun& run, std::uint8_t* bytes) const;
    KxRun Decode(const std::uint8_t* bytes) const;

    std::size_t m_addressBytes;
};

template <class T>
constexpr VectorFileHeader NewestHeader() {
    return MakeVectorFileHeader<T>(ElementFormat<T>::kNewestVersion);
}

template <class T>
std::span<T> ElementsOf(const KxVectorTemplate<T>& vector) {
    return {vector.GetDataPtr(), vector.GetNumElements()};
}

// The header of the oldest version that can hold the elements.
template <class T>
VectorFileHeader HeaderFor(const KxVectorTemplate<T>& vector) {
    return MakeVectorFileHeader<T>(ElementFormat<T>(1).CanHold(ElementsOf(vector)) ? 1 : 2);
}

// A vector without its type, and the member that exchanges its elements with a stream.
struct StoredVector {
    void* vector;
    void (*exchange)(void* vector, std::FILE* stream, int writing, unsigned version);
};

// What `KxVectorTemplate::Save` and `Load` do, for paths of either kind.
template <class Character>
void SaveVectorFile(const Character* path, const char* traceName, const VectorFileHeader& header,
                    const StoredVector& stored) noexcept;
template <class Character>
void LoadVectorFile(const Character* path, const char* traceName, const VectorFileHeader& newest,
                    const StoredVector& stored) noexcept;

template <std::size_t kBytes>
void WriteBytes(std::FILE* stream, const std::array<std::uint8_t, kBytes>& bytes) {
    if (std::fwrite(bytes.data(), 1, kBytes, stream) != kBytes) throw Exception(KX_ERROR_FILE_WRITE);
}

template <std::size_t kBytes>
std::array<std::uint8_t, kBytes> ReadBytes(std::FILE* stream) {
    std::array<std::uint8_t, kBytes> bytes;
    if (Platform::Read(stream, bytes.data(), kBytes) != kBytes) throw Exception(KX_ERROR_FILE_READ);
    return bytes;
}

// Writes count and elements; nothing when the version cannot hold them.
template <class T>
void WriteElements(std::FILE* stream, const KxVectorTemplate<T>& vector, unsigned version) {
    const ElementFormat<T> format(version);
    const std::span<const T> elements = ElementsOf(vector);
    if (!format.CanHold(elements)) throw Exception(KX_ERROR_UNSUPPORTED_FILE_VERSION);
    std::array<std::uint8_t, 4> count;
    StoreLittleEndian(count.data(), vector.GetNumElements());
    WriteBytes(stream, count);
    if (format.Write(stream, elements) != elements.size()) throw Exception(KX_ERROR_FILE_WRITE);
}

// Bytes that a count may declare when `present` bytes are known to exist. A file cut short keeps its count,
// but a forged count of 4 GiB must cost a comparison, not memory.
constexpr std::uint64_t BelievableBytes(std::uint64_t present) {
    return std::max<std::uint64_t>(1 << 20, present > UINT64_MAX / 16 ? UINT64_MAX : 16 * present);
}

// Gives the vector exactly `count` elements, keeping those it has.
template <class T>
void Resize(KxVectorTemplate<T>& vector, unsigned count) {
    if (const KX_ERRORS failure = ErrorOf([&] { VectorCore<T>::SetCapacity(vector, count); })) {
        vector.Empty();
        throw Exception(failure);
    }
    VectorCore<T>::SetCount(vector, count);
}

// Replaces the elements by those of the stream. When it ends early the missing ones are zero.
template <class T>
void ReadElements(std::FILE* stream, KxVectorTemplate<T>& vector, unsigned version) {
    const ElementFormat<T> format(version);
    const std::uint64_t elementBytes = format.BytesPerElement();
    const auto declared = LoadLittleEndian<std::uint32_t>(ReadBytes<4>(stream).data());
    const std::optional<std::uint64_t> left = Platform::BytesLeft(stream, Platform::SizeOf(stream));
    vector.Empty();
    RequireLoadable(declared * std::uint64_t{sizeof(T)});
    if (left && declared * elementBytes > BelievableBytes(*left)) throw Exception(KX_ERROR_ALLOCATION);

    // One round for a file. A pipe is believed as far as its deliveries bear it out.
    std::uint64_t read = 0;
    do {
        const std::uint64_t believable = BelievableBytes(left.value_or(read * elementBytes)) / elementBytes;
        Resize(vector, static_cast<unsigned>(std::min<std::uint64_t>(declared, believable)));
        read += format.Read(stream, ElementsOf(vector).subspan(read));
    } while (read == vector.GetNumElements() && read < declared);
    if (read == declared) return;
    std::ranges::fill(ElementsOf(vector).subspan(read), T());
    throw Exception(KX_ERROR_FILE_READ);
}

}  // namespace Zelkor::Kalvo
