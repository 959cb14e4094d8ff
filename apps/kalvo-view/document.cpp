// The archive beside an image has its name with the extension ".kxa".

#include "document.h"

#include <filesystem>

#include "common/components.h"
#include "common/pixel_types.h"

namespace View {
namespace {

namespace files = std::filesystem;

// The first byte of every pixel as a grey.
App::Object BytesOf(const KxGenericROI& image) {
    auto bytes = std::make_unique<KxImage<KxBW8>>(image.GetWidth(), image.GetHeight());
    for (int y = 0; y < image.GetHeight(); ++y)
        for (int x = 0; x < image.GetWidth(); ++x)
            bytes->SetPixel(static_cast<int>(App::Components(image, x, y).front()) & 255, x, y);
    return bytes;
}

}  // namespace

Document::Document(const std::string& path) : m_path(path), m_image(App::LoadImage(path)) {
    const bool isDrawn = App::ForPixel<App::FilePixels>(m_image->GetType(), [](auto) {});
    if (!isDrawn) m_bytes = BytesOf(*m_image);
    m_regions = std::make_unique<Regions>(*m_image);
    LoadRegions();
}

std::string Document::ArchivePath() const { return files::path(m_path).replace_extension(".kxa").string(); }

void Document::LoadRegions() {
    if (m_image->GetFirstSubROI() || ArchivePath() == m_path || !files::exists(ArchivePath())) return;
    const App::Object archived = App::LoadImage(ArchivePath());
    if (archived->GetWidth() == m_image->GetWidth() && archived->GetHeight() == m_image->GetHeight())
        m_regions->AddCopies(*archived);
}

std::string Document::Save() const {
    App::SaveImage(*m_image, ArchivePath(), {.format = App::Format::Archive});
    return ArchivePath();
}

}  // namespace View
