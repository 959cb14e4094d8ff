#pragma once
// An image file that is looked at, and the regions on it.

#include <memory>
#include <string>

#include "common/image_file.h"
#include "regions.h"

namespace View {

class Document {
public:
    // Loads a file of any format, and the regions from the archive beside it. Throws the failure.
    explicit Document(const std::string& path);

    const std::string& Path() const { return m_path; }
    KxGenericROI& Image() const { return *m_image; }
    // What is drawn: the image, or its first bytes as greys where the library cannot draw its pixels.
    KxGenericROI& Shown() const { return m_bytes ? *m_bytes : *m_image; }
    Regions& GetRegions() { return *m_regions; }

    // Writes image and regions to the archive beside the file, and returns its name. Throws the failure.
    std::string Save() const;

private:
    std::string ArchivePath() const;
    void LoadRegions();

    std::string m_path;
    App::Object m_image, m_bytes;
    std::unique_ptr<Regions> m_regions;
};

}  // namespace View
