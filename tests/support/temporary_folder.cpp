#include "tests/support/temporary_folder.h"

#include <stdlib.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace Zelkor::Kalvo::Testing {

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kalvo-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder: " + pattern);
    m_path = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string TemporaryFolder::Write(const std::string& name, const Bytes& contents) const {
    std::ofstream file(m_path / name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(contents.data()), static_cast<std::streamsize>(contents.size()));
    return File(name);
}

Bytes TemporaryFolder::Read(const std::string& name) const {
    std::ifstream file(m_path / name, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

std::basic_string<unsigned short> Wide(const std::string& text) {
    return std::basic_string<unsigned short>(text.begin(), text.end());
}

}  // namespace Zelkor::Kalvo::Testing
