#pragma once
// Files that are written whole or not at all.

#include <string>

namespace App {

// Whether files that exist may be replaced; they may unless the user says otherwise.
void ForbidReplacing();

// Keeps interrupted runs from leaving unfinished files behind.
void RemoveUnfinishedFilesWhenInterrupted();

// A file on its way. It is written beside its target, flushed, and moved there, so that the target is the old
// file or the new one, whatever happens. Targets that are no regular files, and "-" for the standard output,
// get the bytes when all are there.
class OutputFile {
public:
    // Throws when nothing can be written there. `extension` with its dot ends the name of the unfinished
    // file.
    OutputFile(const std::string& target, const std::string& extension);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Where to write.
    const std::string& Path() const { return m_path; }
    // Moves what was written to the target. Throws when that fails; the target is the old one then.
    void Commit();

private:
    void Replace();
    void CopyTo(int descriptor);

    std::string m_target;  // the file itself where the name is a link to it
    std::string m_path;
    bool m_isReplaced = true;  // else the target is written in place
    int m_slot = -1;           // among the unfinished files
};

}  // namespace App
