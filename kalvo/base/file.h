#pragma once
// Owning standard I/O files, opened by narrow or UTF-16 names, with 64-bit positions.

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

namespace Zelkor::Platform {

// The UTF-8 form of a UTF-16 text; nothing when it holds an unpaired surrogate.
std::optional<std::string> Utf8FromUtf16(const unsigned short* text);

// A standard I/O file that is closed when its owner goes. Signals interrupt neither its reads nor its writes.
class File {
public:
    // What becomes of an old file that is written: it is emptied when opened; or the new one is written
    // beside it and takes its name and permissions when closed, if all of it could be stored. What is no
    // regular file is always written in place.
    enum class Replacement { InPlace, WhenWhole };

    File() = default;
    // Opens `name` with an fopen mode; the file is closed when that fails, or when the name is a folder's.
    File(const char* name, const char* mode, Replacement replacement = Replacement::InPlace);
    // The same with a UTF-16 name. A null or empty name, or one that is not valid UTF-16, opens nothing.
    File(const unsigned short* name, const char* mode, Replacement replacement = Replacement::InPlace);
    File(File&& other) noexcept { swap(other); }
    File& operator=(File&& other) noexcept;
    // What would have replaced another file, and was not closed before, is gone.
    ~File();

    explicit operator bool() const { return m_stream != nullptr; }
    std::FILE* Get() const { return m_stream; }

    // Flushes and closes; false when data could not be written. A closed file stays closed.
    bool Close() noexcept;

    // A file with a part that did not end replaces nothing, and closing it fails.
    void BeginPart() { ++m_partsLeft; }
    void EndPart() { --m_partsLeft; }

    void swap(File& other) noexcept;

private:
    // Opens a file of another name that is to become this one; -1 on failure.
    int OpenBeside(const char* name, int flags);
    bool TakeTheName() noexcept;

    std::FILE* m_stream = nullptr;
    int m_partsLeft = 0;
    std::string m_folder, m_target, m_unfinished;  // empty, or what is replaced, where and by what
};

// Reads until `bytes` bytes are there or the stream has no more, whatever interrupts it; returns how many.
std::size_t Read(std::FILE* stream, void* data, std::size_t bytes);

// Current position; -1 when the stream has none.
inline std::int64_t Position(std::FILE* stream) { return ftello(stream); }

// Moves to an absolute position; false when the stream cannot.
inline bool Seek(std::FILE* stream, std::int64_t position) { return fseeko(stream, position, SEEK_SET) == 0; }

// Size of the whole file, leaving the position where it is; -1 when the stream has no size.
std::int64_t SizeOf(std::FILE* stream);

// Bytes from the current position to the end of a file of `size` bytes; nothing when the stream has no size.
std::optional<std::uint64_t> BytesLeft(std::FILE* stream, std::int64_t size);

}  // namespace Zelkor::Platform
