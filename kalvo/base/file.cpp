// Opening, closing, replacing and measuring standard I/O files.

#include "kalvo/base/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <locale>
#include <memory>
#include <utility>

namespace Zelkor::Platform {
namespace {

constexpr std::size_t kMostUtf8PerUnit = 3;  // a pair of units takes four bytes

// Repeats a system call that a signal interrupts.
template <class Call>
auto Uninterrupted(const Call& call) {
    for (;;)
        if (const auto result = call(); result != -1 || errno != EINTR) return result;
}

int DescriptorOf(void* cookie) { return static_cast<int>(reinterpret_cast<std::intptr_t>(cookie)); }

// A standard I/O stream loses what it has buffered when a write is interrupted: we write below it. What only
// reads is left to the stream, which reads large blocks to where they belong.
constexpr cookie_io_functions_t kUninterrupted = {
    .read = [](void* cookie, char* data, std::size_t bytes) -> ssize_t {
        return Uninterrupted([&] { return read(DescriptorOf(cookie), data, bytes); });
    },
    .write = [](void* cookie, const char* data, std::size_t bytes) -> ssize_t {
        std::size_t written = 0;
        while (written < bytes) {
            const ssize_t count =
                Uninterrupted([&] { return write(DescriptorOf(cookie), data + written, bytes - written); });
            if (count <= 0) break;
            written += static_cast<std::size_t>(count);
        }
        return static_cast<ssize_t>(written);
    },
    .seek = [](void* cookie, off64_t* position, int origin) -> int {
        const off64_t reached = lseek64(DescriptorOf(cookie), *position, origin);
        if (reached >= 0) *position = reached;
        return reached >= 0 ? 0 : -1;
    },
    .close = [](void* cookie) -> int { return close(DescriptorOf(cookie)); },
};

// The flags of `open` for a mode of `fopen`; -1 for a mode that is none.
int FlagsOf(const char* mode) {
    const int access = std::strchr(mode, '+') ? O_RDWR : *mode == 'r' ? O_RDONLY : O_WRONLY;
    const int exclusive = std::strchr(mode, 'x') ? O_EXCL : 0;
    switch (*mode) {
    case 'r':
        return access | O_CLOEXEC;
    case 'w':
        return access | O_CREAT | O_TRUNC | exclusive | O_CLOEXEC;
    case 'a':
        return access | O_CREAT | O_APPEND | exclusive | O_CLOEXEC;
    default:
        return -1;
    }
}

int Open(const char* name, int flags) {
    return Uninterrupted([&] { return open(name, flags, 0666); });
}

bool IsFolder(int descriptor) {
    struct stat status;
    return fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

// Makes sure that what was written stays when the power fails.
bool Sync(const char* name, int flags) {
    const int descriptor = Open(name, flags);
    if (descriptor < 0) return false;
    const bool isStored = Uninterrupted([&] { return fsync(descriptor); }) == 0;
    close(descriptor);
    return isStored;
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

}  // namespace

std::optional<std::string> Utf8FromUtf16(const unsigned short* text) {
    std::u16string units;
    for (; *text; ++text) units.push_back(static_cast<char16_t>(*text));
    std::u8string bytes(units.size() * kMostUtf8PerUnit, u8'\0');

    using Converter = std::codecvt<char16_t, char8_t, std::mbstate_t>;
    std::mbstate_t state{};
    const char16_t* unitsEnd = units.data();
    char8_t* bytesEnd = bytes.data();
    const auto outcome = std::use_facet<Converter>(std::locale::classic())
                             .out(state, units.data(), units.data() + units.size(), unitsEnd, bytes.data(),
                                  bytes.data() + bytes.size(), bytesEnd);
    if (outcome != Converter::ok || unitsEnd != units.data() + units.size()) return std::nullopt;
    return std::string(bytes.data(), bytesEnd);
}

File::File(const char* name, const char* mode, Replacement replacement) {
    const int flags = name ? FlagsOf(mode) : -1;
    if (flags < 0) return;
    const bool isReplaced = replacement == Replacement::WhenWhole && (flags & O_TRUNC) && !(flags & O_EXCL);
    const int descriptor = isReplaced ? OpenBeside(name, flags) : Open(name, flags);
    if (descriptor < 0) return;
    // Folders can be opened for reading, but nothing can be read from one, and its size is nonsense.
    if (!IsFolder(descriptor)) {
        const char plainMode[] = {*mode, std::strchr(mode, '+') ? '+' : '\0', '\0'};
        m_stream =
            (flags & O_ACCMODE) == O_RDONLY
                ? fdopen(descriptor, plainMode)
                : fopencookie(reinterpret_cast<void*>(std::intptr_t{descriptor}), plainMode, kUninterrupted);
    }
    if (!m_stream) close(descriptor);
}

File::File(const unsigned short* name, const char* mode, Replacement replacement) {
    if (!name) return;
    if (const auto narrow = Utf8FromUtf16(name)) *this = File(narrow->c_str(), mode, replacement);
}

int File::OpenBeside(const char* name, int flags) {
    struct stat old;
    const bool isOld = stat(name, &old) == 0;
    if (isOld ? !S_ISREG(old.st_mode) : errno != ENOENT) return Open(name, flags);
    if (isOld && access(name, W_OK) != 0) return -1;
    // Of a link, the file that it leads to.
    const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(name, nullptr), &std::free);
    m_target = resolved ? resolved.get() : name;
    m_folder = FolderOf(m_target);
    static std::atomic<unsigned> count = 0;
    int descriptor;
    do {
        m_unfinished = m_folder + ".kalvo-" + std::to_string(getpid()) + '-' + std::to_string(count++);
        descriptor = Open(m_unfinished.c_str(), flags | O_EXCL);
    } while (descriptor < 0 && errno == EEXIST);  // left behind by another process of that number
    if (descriptor < 0) m_unfinished.clear();
    if (descriptor >= 0 && isOld) fchmod(descriptor, old.st_mode & 07777);
    return descriptor;
}

File& File::operator=(File&& other) noexcept {
    File(std::move(other)).swap(*this);
    return *this;
}

File::~File() {
    if (m_stream) std::fclose(m_stream);
    if (!m_unfinished.empty()) unlink(m_unfinished.c_str());
}

void File::swap(File& other) noexcept {
    std::swap(m_stream, other.m_stream);
    std::swap(m_partsLeft, other.m_partsLeft);
    m_folder.swap(other.m_folder);
    m_target.swap(other.m_target);
    m_unfinished.swap(other.m_unfinished);
}

bool File::Close() noexcept {
    File closing;
    swap(closing);
    std::FILE* const stream = std::exchange(closing.m_stream, nullptr);
    if (!stream) return true;
    const bool isWhole = !std::ferror(stream) && closing.m_partsLeft == 0;
    const bool isStored = std::fclose(stream) == 0;
    return isStored && (closing.m_unfinished.empty() || (isWhole && closing.TakeTheName()));
}

bool File::TakeTheName() noexcept {
    if (!Sync(m_unfinished.c_str(), O_RDWR | O_CLOEXEC) ||
        std::rename(m_unfinished.c_str(), m_target.c_str()) != 0)
        return false;
    m_unfinished.clear();
    return Sync(m_folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

std::size_t Read(std::FILE* stream, void* data, std::size_t bytes) {
    auto* const next = static_cast<std::uint8_t*>(data);
    std::size_t done = 0;
    for (;;) {
        errno = 0;
        done += std::fread(next + done, 1, bytes - done, stream);
        if (done == bytes || !std::ferror(stream) || errno != EINTR) return done;
        std::clearerr(stream);
    }
}

std::int64_t SizeOf(std::FILE* stream) {
    const std::int64_t position = Position(stream);
    if (position < 0 || fseeko(stream, 0, SEEK_END) != 0) return -1;
    const std::int64_t size = Position(stream);
    return Seek(stream, position) ? size : -1;
}

std::optional<std::uint64_t> BytesLeft(std::FILE* stream, std::int64_t size) {
    if (size < 0) return std::nullopt;
    return static_cast<std::uint64_t>(std::max<std::int64_t>(size - Position(stream), 0));
}

}  // namespace Zelkor::Platform
