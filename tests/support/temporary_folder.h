#pragma once
// A folder of its own for every test that needs files; it goes with its contents.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace Zelkor::Kalvo::Testing {

using Bytes = std::vector<std::uint8_t>;

class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    // Path of a file in the folder.
    std::string File(const std::string& name) const { return (m_path / name).string(); }
    // Writes a file and returns its path.
    std::string Write(const std::string& name, const Bytes& contents) const;
    // The bytes of a file in the folder.
    Bytes Read(const std::string& name) const;

private:
    std::filesystem::path m_path;
};

// The UTF-16 form of an ASCII text.
std::basic_string<unsigned short> Wide(const std::string& text);

}  // namespace Zelkor::Kalvo::Testing
