// Opening, closing and measuring standard I/O files.

#include "kalvo/base/file.h"

#include <sys/stat.h>

#include <algorithm>
#include <locale>
#include <utility>

namespace Zelkor::Platform {
namespace {

constexpr std::size_t kMostUtf8PerUnit = 3;  // a pair of units takes four bytes

bool IsFolder(std::FILE* stream) {
    struct stat status;
    return fstat(fileno(stream), &status) == 0 && S_ISDIR(status.st_mode);
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

File::File(const char* name, const char* mode) : m_stream(name ? std::fopen(name, mode) : nullptr) {
    // fopen takes folders for reading: nothing can be read from one, and its size is nonsense.
    if (m_stream && IsFolder(m_stream)) Close();
}

File::File(const unsigned short* name, const char* mode) {
    if (!name) return;
    if (const auto narrow = Utf8FromUtf16(name)) *this = File(narrow->c_str(), mode);
}

File& File::operator=(File&& other) noexcept {
    if (this != &other) {
        Close();
        m_stream = other.Release();
    }
    return *this;
}

bool File::Close() {
    std::FILE* stream = Release();
    return !stream || std::fclose(stream) == 0;
}

std::FILE* File::Release() { return std::exchange(m_stream, nullptr); }

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
