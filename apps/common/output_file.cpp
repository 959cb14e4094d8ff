// Temporary files beside their targets, and what becomes of them.

#include "common/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

#include "common/failure.h"

namespace App {
namespace {

namespace files = std::filesystem;

bool mayReplace = true;

// Unfinished files as a signal handler can read them: plain memory, a slot is taken while its flag is set.
constexpr int kMostUnfinished = 4;
std::array<std::array<char, PATH_MAX>, kMostUnfinished> unfinished;
std::array<volatile std::sig_atomic_t, kMostUnfinished> isUnfinished{};

void RemoveUnfinishedFiles(int signal) {
    for (int i = 0; i < kMostUnfinished; ++i)
        if (isUnfinished[static_cast<std::size_t>(i)]) unlink(unfinished[static_cast<std::size_t>(i)].data());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

int Remember(const std::string& path) {
    for (std::size_t i = 0; i < unfinished.size(); ++i) {
        if (isUnfinished[i] || path.size() >= PATH_MAX) continue;
        std::memcpy(unfinished[i].data(), path.c_str(), path.size() + 1);
        isUnfinished[i] = 1;
        return static_cast<int>(i);
    }
    return -1;
}

// A descriptor that is closed with its owner.
struct Descriptor {
    explicit Descriptor(int opened) : number(opened) {}
    ~Descriptor() {
        if (number >= 0) close(number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number;
};

void WriteAll(int descriptor, const char* bytes, std::size_t count) {
    while (count > 0) {
        const ssize_t written = write(descriptor, bytes, count);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) throw Failure::OfSystem("cannot be written", KX_ERROR_FILE_WRITE);
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
}

// Everything that was written is on the disk before a name leads to it.
void Flush(const std::string& path, int flags) {
    const Descriptor file(open(path.c_str(), flags));
    if (file.number < 0 || fsync(file.number) != 0)
        throw Failure::OfSystem("cannot be written", KX_ERROR_FILE_WRITE);
}

}  // namespace

void ForbidReplacing() { mayReplace = false; }

void RemoveUnfinishedFilesWhenInterrupted() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, RemoveUnfinishedFiles);
}

OutputFile::OutputFile(const std::string& target, const std::string& extension) : m_target(target) {
    std::error_code error;
    const files::file_status status = files::status(target, error);
    if (target != "-" && files::is_directory(status)) throw Failure{"is a folder", KX_ERROR_FILE_OPEN};
    if (target != "-" && files::exists(status) && !mayReplace)
        throw Failure{"exists already and is not to be replaced", KX_ERROR_FILE_OPEN};
    m_isReplaced = target != "-" && (!files::exists(status) || files::is_regular_file(status));
    files::path folder = files::temp_directory_path(error);
    if (m_isReplaced) {
        if (files::exists(status)) {
            m_target = files::canonical(target, error).string();
            if (access(m_target.c_str(), W_OK) != 0)
                throw Failure::OfSystem("cannot be written", KX_ERROR_FILE_OPEN);
        }
        folder = files::path(m_target).parent_path();
    }
    m_path = ((folder.empty() ? "." : folder) / (".kalvo-XXXXXX" + extension)).string();
    const int created = mkstemps(m_path.data(), static_cast<int>(extension.size()));
    if (created < 0) throw Failure::OfSystem("cannot be written", KX_ERROR_FILE_OPEN);
    const Descriptor file(created);
    m_slot = Remember(m_path);
    struct stat old;
    const mode_t mask = umask(0);
    umask(mask);
    const bool hasOld = m_isReplaced && stat(m_target.c_str(), &old) == 0;
    fchmod(file.number, hasOld ? old.st_mode & 07777 : 0666 & ~mask);
}

OutputFile::~OutputFile() {
    if (!m_path.empty()) unlink(m_path.c_str());
    if (m_slot >= 0) isUnfinished[static_cast<std::size_t>(m_slot)] = 0;
}

void OutputFile::Commit() {
    if (m_isReplaced) return Replace();
    if (m_target == "-") {
        std::fflush(stdout);
        return CopyTo(STDOUT_FILENO);
    }
    const Descriptor target(open(m_target.c_str(), O_WRONLY));
    if (target.number < 0) throw Failure::OfSystem("cannot be written", KX_ERROR_FILE_OPEN);
    CopyTo(target.number);
}

void OutputFile::Replace() {
    Flush(m_path, O_RDWR);
    if (rename(m_path.c_str(), m_target.c_str()) != 0)
        throw Failure::OfSystem("cannot be replaced", KX_ERROR_FILE_WRITE);
    m_path.clear();
    const files::path folder = files::path(m_target).parent_path();
    Flush(folder.empty() ? "." : folder.string(), O_RDONLY | O_DIRECTORY);
}

void OutputFile::CopyTo(int descriptor) {
    const Descriptor source(open(m_path.c_str(), O_RDONLY));
    std::vector<char> buffer(1 << 16);
    for (ssize_t count; (count = read(source.number, buffer.data(), buffer.size())) != 0;) {
        if (count < 0) throw Failure::OfSystem("cannot be read back", KX_ERROR_FILE_READ);
        WriteAll(descriptor, buffer.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace App
