#pragma once
// Files that are read, or refused with the reason why they cannot be.

#include <string>

namespace App {

// What stands in a file, by its first bytes.
enum class Content { Image, Png, Archive };

// Whether a file can be read here; nothing is thrown.
bool IsReadable(const std::string& path);

// A file that was found to be readable. "-" is the standard input; pipes are read into memory first.
class InputFile {
public:
    // Throws what is wrong: that there is no such file, that it is a folder, empty, or of no known content.
    explicit InputFile(const std::string& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    // A name under which the library can open it.
    const std::string& Path() const { return m_path; }
    Content GetContent() const { return m_content; }

private:
    void ReadIntoMemory(int descriptor);

    std::string m_path;
    Content m_content = Content::Image;
    int m_memory = -1;
};

}  // namespace App
