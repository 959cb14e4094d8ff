// Looks at a file before the library does: the system's reasons are better than a code.

#include "common/input_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string_view>

#include "common/failure.h"

namespace App {
namespace {

constexpr char kArchiveSignature = 0x4B;

struct Descriptor {
    explicit Descriptor(int opened) : number(opened) {}
    ~Descriptor() {
        if (number > STDIN_FILENO) close(number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number;
};

// The first bytes as a person can read them.
std::string Shown(std::string_view start) {
    std::string text;
    for (const char byte : start.substr(0, 8)) {
        char hex[8];
        std::snprintf(hex, sizeof hex, text.empty() ? "%02x" : " %02x", static_cast<unsigned char>(byte));
        text += hex;
    }
    return text;
}

Content ContentOf(std::string_view start) {
    const auto begins = [&](std::string_view signature) { return start.starts_with(signature); };
    if (begins("\x89PNG")) return Content::Png;
    if (begins("II") || begins("MM") || begins("BM") || begins("\xFF\xD8")) return Content::Image;
    if (start.size() >= 4 && start[0] == kArchiveSignature && (start[0] ^ start[1] ^ start[2]) == start[3])
        return Content::Archive;
    throw Failure{"is neither BMP, TIFF, JPEG, PNG nor an archive; it begins with " + Shown(start),
                  KX_ERROR_BAD_FILE_FORMAT};
}

}  // namespace

bool IsReadable(const std::string& path) {
    try {
        const InputFile file(path);
        return true;
    } catch (const Failure&) {
        return false;
    }
}

InputFile::InputFile(const std::string& path) : m_path(path) {
    const Descriptor file(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status;
    if (file.number < 0 || fstat(file.number, &status) != 0)
        throw Failure::OfSystem("cannot be opened", KX_ERROR_FILE_OPEN);
    if (S_ISDIR(status.st_mode)) throw Failure{"is a folder", KX_ERROR_FILE_OPEN};
    if (path == "-" || !S_ISREG(status.st_mode)) ReadIntoMemory(file.number);

    std::array<char, 16> start;
    const ssize_t count = pread(m_memory < 0 ? file.number : m_memory, start.data(), start.size(), 0);
    if (count < 0) throw Failure::OfSystem("cannot be read", KX_ERROR_FILE_READ);
    if (count == 0) throw Failure{"is empty", KX_ERROR_FILE_READ};
    m_content = ContentOf({start.data(), static_cast<std::size_t>(count)});
}

InputFile::~InputFile() {
    if (m_memory >= 0) close(m_memory);
}

void InputFile::ReadIntoMemory(int descriptor) {
    m_memory = memfd_create("input", MFD_CLOEXEC);
    if (m_memory < 0) throw Failure::OfSystem("cannot be kept in memory", KX_ERROR_ALLOCATION);
    m_path = "/proc/self/fd/" + std::to_string(m_memory);
    std::array<char, 1 << 16> buffer;
    for (ssize_t count; (count = read(descriptor, buffer.data(), buffer.size())) != 0;)
        if (count < 0 || write(m_memory, buffer.data(), static_cast<std::size_t>(count)) != count)
            throw Failure::OfSystem("cannot be read", KX_ERROR_FILE_READ);
}

}  // namespace App
