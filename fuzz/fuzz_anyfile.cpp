// Files of any format by name: described, made into an image, loaded over one that has regions, and saved; a
// file that was saved is loaded and saved again.

#include <sys/mman.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "kalvo/frame/kxtrace.h"
#include "kalvo/image/kximage.h"
#include "kalvo/imagefiles/kximagefile.h"
#include "fuzz/require.h"

namespace {

using namespace Zelkor::Kalvo;
using Fuzzing::Require;

// A file in memory that has a name.
class NamedFile {
public:
    NamedFile() : m_descriptor(memfd_create("file", 0)) {}
    ~NamedFile() { close(m_descriptor); }
    NamedFile(const NamedFile&) = delete;
    NamedFile& operator=(const NamedFile&) = delete;

    std::string Name() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }
    void Fill(const std::uint8_t* bytes, std::size_t count) const {
        Require(pwrite(m_descriptor, bytes, count, 0) == static_cast<ssize_t>(count), "the disk is well");
    }
    std::string Contents() const {
        std::string contents(static_cast<std::size_t>(lseek(m_descriptor, 0, SEEK_END)), '\0');
        Require(
            pread(m_descriptor, contents.data(), contents.size(), 0) == static_cast<ssize_t>(contents.size()),
            "the disk is well");
        return contents;
    }

private:
    int m_descriptor;
};

// Whatever is said of a file without reading its pixels is true when they are read.
void CheckDescription(const KxGenericROI& image, const std::string& name) {
    short type = 0;
    unsigned pages = 0;
    const std::unique_ptr<KxGenericROI> described(KxDescribeImage(name.c_str(), type, pages));
    Require(described && KxSuccess() && pages > 0, "what can be loaded can be described");
    Require(described->GetWidth() == image.GetWidth() && described->GetHeight() == image.GetHeight(),
            "a description tells the size");
}

template <class Pixel>
void CheckSaving(KxImage<Pixel>& image) {
    image.SetResolution(1, 1, &KxUnitNone);  // others are rounded
    // Short texts that are none may be taken for where a text stands.
    const char* const none = nullptr;
    image.SetTitle(none);
    image.SetAuthor(none);
    image.SetComment(none);
    image.SetDate(none);
    for (int type = IMAGE_FILE_TIFF_BILEVEL; type <= IMAGE_FILE_BMP_COLOR; ++type) {
        const NamedFile first, second;
        if (KxSaveImage(&image, first.Name().c_str(), type) != KX_OK) continue;
        KxImage<Pixel> loaded;
        short loadedType = 0;
        // A colour of 16 bits is written as it is, and may be one of 15 when it is read.
        if (KxLoadImage(&loaded, first.Name().c_str(), loadedType) != KX_OK) continue;
        Require(KxSaveImage(&loaded, second.Name().c_str(), loadedType) == KX_OK, "what was loaded is saved");
        Require(loadedType != type || first.Contents() == second.Contents(), "saving again changes nothing");
    }
}

template <class Pixel>
void Check(const NamedFile& file) {
    KxImage<Pixel> image(9, 7);
    KxROI<Pixel> region(&image, 1, 1, 5, 5), child(&region, 2, 2, 9, 9);
    short type = 0;
    const bool isLoaded = KxLoadImage(&image, file.Name().c_str(), type) == KX_OK;
    KxGenericROI::CheckParentChildrenConsistency(&image);
    Require(region.GetParent() == &image && child.GetParent() == &region, "loading keeps the regions");
    if (isLoaded) CheckSaving(image);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    const NamedFile file;
    file.Fill(bytes, count);
    const std::unique_ptr<KxGenericROI> image(KxGenericROI::CreateImageFromFile(file.Name().c_str()));
    Require(!image == !KxSuccess(), "a failure has a code");
    if (image) CheckDescription(*image, file.Name());
    Check<KxBW1>(file);
    Check<KxBW8>(file);
    Check<KxBW16>(file);
    Check<KxC24>(file);
    return 0;
}
