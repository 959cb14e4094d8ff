#pragma once
// Owning standard I/O files, opened by narrow or UTF-16 names, with 64-bit positions.

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

namespace Zelkor::Platform {

// The UTF-8 form of a UTF-16 text; nothing when it holds an unpaired surrogate.
std::optional<std::string> Utf8FromUtf16(const unsigned short* text);

// A standard I/O file that is closed when its owner goes.
class File {
public:
    File() = default;
    // Opens `name` with an fopen mode; the file is closed when that fails, or when the name is a folder's.
    File(const char* name, const char* mode);
    // The same with a UTF-16 name. A null or empty name, or one that is not valid UTF-16, opens nothing.
    File(const unsigned short* name, const char* mode);
    File(File&& other) noexcept : m_stream(other.Release()) {}
    File& operator=(File&& other) noexcept;
    ~File() { Close(); }

    explicit operator bool() const { return m_stream != nullptr; }
    std::FILE* Get() const { return m_stream; }

    // Flushes and closes; false when data could not be written. A closed file stays closed.
    bool Close();
    // Gives the stream away without closing it.
    std::FILE* Release();

private:
    std::FILE* m_stream = nullptr;
};

// Current position; -1 when the stream has none.
inline std::int64_t Position(std::FILE* stream) { return ftello(stream); }

// Moves to an absolute position; false when the stream cannot.
inline bool Seek(std::FILE* stream, std::int64_t position) { return fseeko(stream, position, SEEK_SET) == 0; }

// Size of the whole file, leaving the position where it is; -1 when the stream has no size.
std::int64_t SizeOf(std::FILE* stream);

// Bytes from the current position to the end of a file of `size` bytes; nothing when the stream has no size.
std::optional<std::uint64_t> BytesLeft(std::FILE* stream, std::int64_t size);

}  // namespace Zelkor::Platform
