// Files of vectors whatever their elements, and the bytes of runs, exchanged in chunks.

#include "kalvo/vectors/vectorfile.h"

#include "kalvo/frame/outputfile.h"

namespace Zelkor::Kalvo {
namespace {

constexpr std::size_t kRunsPerChunk = 1024;
constexpr std::size_t kBytesPerWidestRun = 20;

using Chunk = std::array<std::uint8_t, kRunsPerChunk * kBytesPerWidestRun>;

// Type code and version of a file are those of `newest`, or the version is older.
bool IsReadable(const VectorFileHeader& header, const VectorFileHeader& newest) {
    const auto [signature, code, version, checksum] = header;
    return signature == newest[0] && code == newest[1] && version >= 1 && version <= newest[2] &&
           checksum == HeaderChecksum(code, version);
}

// Runs the vector's own member, which resets the slot only when it has elements.
void Exchange(const StoredVector& stored, std::FILE* stream, int writing, unsigned version) {
    KxOk();
    ThrowWhatItStores([&] { stored.exchange(stored.vector, stream, writing, version); });
}

bool FitsIn32Bits(const void* address) { return reinterpret_cast<std::uintptr_t>(address) <= UINT32_MAX; }

}  // namespace

template <class Character>
void SaveVectorFile(const Character* path, const char* traceName, const VectorFileHeader& header,
                    const StoredVector& stored) noexcept {
    AtBoundary(traceName, [&] {
        Platform::File file = OpenOutputFile(path, "wb");
        WriteBytes(file.Get(), header);
        Exchange(stored, file.Get(), 1, header[2]);
        if (!file.Close()) throw Exception(KX_ERROR_FILE_CLOSE);
    });
}

template <class Character>
void LoadVectorFile(const Character* path, const char* traceName, const VectorFileHeader& newest,
                    const StoredVector& stored) noexcept {
    AtBoundary(traceName, [&] {
        Platform::File file(path, "rb");
        if (!file) throw Exception(KX_ERROR_FILE_OPEN);
        const VectorFileHeader header = ReadBytes<4>(file.Get());
        if (!IsReadable(header, newest)) throw Exception(KX_ERROR_BAD_FILE_FORMAT);
        Exchange(stored, file.Get(), 0, header[2]);
        if (!file.Close()) throw Exception(KX_ERROR_FILE_CLOSE);
    });
}

template void SaveVectorFile(const char*, const char*, const VectorFileHeader&, const StoredVector&) noexcept;
template void SaveVectorFile(const unsigned short*, const char*, const VectorFileHeader&,
                             const StoredVector&) noexcept;
template void LoadVectorFile(const char*, const char*, const VectorFileHeader&, const StoredVector&) noexcept;
template void LoadVectorFile(const unsigned short*, const char*, const VectorFileHeader&,
                             const StoredVector&) noexcept;

bool ElementFormat<KxRun>::CanHold(std::span<const KxRun> runs) const {
    return m_addressBytes == 8 || std::ranges::all_of(runs, [](const KxRun& run) {
               return FitsIn32Bits(run.pBeg) && FitsIn32Bits(run.pEnd);
           });
}

std::size_t ElementFormat<KxRun>::Write(std::FILE* stream, std::span<const KxRun> runs) const {
    Chunk chunk;
    std::size_t written = 0;
    while (written < runs.size()) {
        const std::size_t count = std::min(kRunsPerChunk, runs.size() - written);
        for (std::size_t i = 0; i < count; ++i)
            Encode(runs[written + i], chunk.data() + i * BytesPerElement());
        const std::size_t accepted = std::fwrite(chunk.data(), BytesPerElement(), count, stream);
        written += accepted;
        if (accepted < count) break;
    }
    return written;
}

std::size_t ElementFormat<KxRun>::Read(std::FILE* stream, std::span<KxRun> runs) const {
    Chunk chunk;
    std::size_t read = 0;
    while (read < runs.size()) {
        const std::size_t count = std::min(kRunsPerChunk, runs.size() - read);
        const std::size_t delivered =
            Platform::Read(stream, chunk.data(), BytesPerElement() * count) / BytesPerElement();
        for (std::size_t i = 0; i < delivered; ++i)
            runs[read + i] = Decode(chunk.data() + i * BytesPerElement());
        read += delivered;
        if (delivered < count) break;
    }
    return read;
}

void ElementFormat<KxRun>::Encode(const KxRun& run, std::uint8_t* bytes) const {
    for (const void* address : {run.pBeg, run.pEnd}) {
        const auto bits = reinterpret_cast<std::uintptr_t>(address);
        if (m_addressBytes == 8)
            StoreLittleEndian(bytes, std::uint64_t{bits});
        else
            StoreLittleEndian(bytes, static_cast<std::uint32_t>(bits));
        bytes += m_addressBytes;
    }
    StoreLittleEndian(bytes, run.n16X);
    StoreLittleEndian(bytes + 2, run.n16Y);
}

KxRun ElementFormat<KxRun>::Decode(const std::uint8_t* bytes) const {
    const auto addressAt = [&](const std::uint8_t* field) {
        const std::uint64_t bits = m_addressBytes == 8 ? LoadLittleEndian<std::uint64_t>(field)
                                                       : LoadLittleEndian<std::uint32_t>(field);
        return reinterpret_cast<void*>(static_cast<std::uintptr_t>(bits));
    };
    const std::uint8_t* position = bytes + 2 * m_addressBytes;
    return {addressAt(bytes), addressAt(bytes + m_addressBytes), LoadLittleEndian<std::int16_t>(position),
            LoadLittleEndian<std::int16_t>(position + 2)};
}

}  // namespace Zelkor::Kalvo
