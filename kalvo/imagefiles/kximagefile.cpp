// The exported edge of image files: free functions and members, for narrow and UTF-16 paths. All they do is
// name their pixel type and hand on to the codecs.

#include "kalvo/imagefiles/kximagefile.h"

#include <iterator>
#include <memory>
#include <string>
#include <type_traits>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/kxtrace.h"
#include "kalvo/frame/outputfile.h"
#include "kalvo/image/regionclass.h"
#include "kalvo/imagefiles/imagefile.h"

using namespace Zelkor::Kalvo;

namespace {

// The names under which an operation is traced.
struct TraceNames {
    const char* narrow;
    const char* wide;

    const char* For(const char*) const { return narrow; }
    const char* For(const unsigned short*) const { return wide; }
};

#define KX_NAMES(name) \
    { name, name " ( Unicode)" }
// The row of a pixel type is its number; those after the last row have no files.
constexpr struct {
    TraceNames load;
    TraceNames save;
} kTraceNames[] = {
    {KX_NAMES("KxROIBW1::Load"), KX_NAMES("KxImageBW1::Save")},
    {KX_NAMES("KxROIBW8::Load"), KX_NAMES("KxROIBW8::Save")},
    {KX_NAMES("KxImageBW16::Load"), KX_NAMES("KxROIBW16::Save")},
    {KX_NAMES("KxImageBW32::Load"), KX_NAMES("KxROIBW32::Save")},
    {KX_NAMES("KxImageC15::Load"), KX_NAMES("KxROIC15::Save")},
    {KX_NAMES("KxImageC16::Load"), KX_NAMES("KxROIC16::Save")},
    {KX_NAMES("KxImageC24::Load"), KX_NAMES("KxROIC24::Save")},
    {KX_NAMES("KxImageC24A::Load"), KX_NAMES("KxROIC24A::Save")},
};
#undef KX_NAMES

template <class Pixel>
constexpr bool kInFiles = PixelTraits<Pixel>::kImageType < std::ssize(kTraceNames);

// What a file of that pixel type loads into: a bilevel file only into an image.
template <class Pixel>
using Loadable = std::conditional_t<std::is_same_v<Pixel, KxBW1>, KxImage<KxBW1>, KxROI<Pixel>>;

// What follows the last dot of a name, in lower case; empty unless it is three characters.
template <class Character>
std::string ExtensionOf(const Character* name) {
    std::string extension;
    bool hasDot = false;
    for (; *name; ++name) {
        const bool isAscii = *name > 0 && *name < 0x80;
        const char character = isAscii ? static_cast<char>(*name) : '?';
        if (character == '.') {
            hasDot = true;
            extension.clear();
        } else if (hasDot) {
            const bool isUpper = character >= 'A' && character <= 'Z';
            extension.push_back(isUpper ? static_cast<char>(character + ('a' - 'A')) : character);
        }
    }
    return extension.size() == 3 ? extension : std::string();
}

// An image file that was found, opened and inspected.
class ImageFile {
public:
    template <class Character>
    explicit ImageFile(const Character* path)
        : m_file(path, "rb"), m_reader(Opened(m_file)), m_inspected(Inspect(m_reader)) {}

    const InspectedFile& Inspected() const { return *m_inspected; }
    const InspectedFile::Header& Header() const { return m_inspected->GetHeader(); }

private:
    static std::FILE* Opened(const Zelkor::Platform::File& file) {
        if (!file) throw Exception(KX_ERROR_FILE_OPEN);
        return file.Get();
    }

    const Zelkor::Platform::File m_file;
    const ImageFileReader m_reader;
    const std::unique_ptr<InspectedFile> m_inspected;
};

template <class Character>
void LoadFile(KX_IMAGE_TYPES type, KxGenericROI* pRegion, const Character* path, short& n16FileType) {
    AtBoundary(kTraceNames[type].load.For(path), [&] {
        if (!pRegion) throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);
        const ImageFile file(path);
        Load(file.Inspected(), *pRegion);
        n16FileType = static_cast<short>(file.Header().type);
        KxOk();
    });
}

bool HasPixels(const KxGenericROI& region) {
    return !region.Void() && region.GetWidth() > 0 && region.GetHeight() > 0;
}

// Nothing is created before type and source are known to be right.
template <class Character>
void SaveFile(SampleFormat format, const KxGenericROI* pRegion, const Character* path, int fileType) {
    AtBoundary(kTraceNames[format.type].save.For(path), [&] {
        if (!path) throw Exception(KX_ERROR_FILE_OPEN);
        const IMAGE_FILE_TYPES type = ChooseFileType(format.type, fileType, ExtensionOf(path));
        if (!pRegion || !HasPixels(*pRegion)) throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);
        const SaveSource source{*pRegion, format, RowsOf(*pRegion), ResolutionOf(*pRegion)};
        Zelkor::Platform::File file = OpenOutputFile(path, "w+b");
        WriteImageFile(file.Get(), source, type);
        if (!file.Close()) throw Exception(KX_ERROR_FILE_WRITE);
        KxOk();
    });
}

template <class Pixel, class Character>
IMAGE_FILE_TYPES LoadMember(KxROI<Pixel>& region, const Character* path) {
    if constexpr (kInFiles<Pixel>) {
        if (auto* loadable = dynamic_cast<Loadable<Pixel>*>(&region)) {
            short fileType = IMAGE_FILE_RESERVED;
            LoadFile(PixelTraits<Pixel>::kImageType, loadable, path, fileType);
            return static_cast<IMAGE_FILE_TYPES>(fileType);
        }
    }
    Report(KX_ERROR_UNSUPPORTED_IMAGE_TYPE, kInFiles<Pixel> ? "KxROI::Load" : "KxImage::Load");
    return IMAGE_FILE_RESERVED;
}

template <class Pixel, class Character>
void SaveMember(const KxROI<Pixel>& region, const Character* path, IMAGE_FILE_TYPES fileType) {
    if constexpr (kInFiles<Pixel>)
        SaveFile(FormatOf<Pixel>(), &region, path, fileType);
    else
        Report(KX_ERROR_UNSUPPORTED_IMAGE_TYPE, "KxImage::Save");
}

// The types that `CreateImageFromFile` tries. One that lacks memory might have taken the file, so no further
// one is tried then.
constexpr KX_IMAGE_TYPES kTriedTypes[] = {KX_IMAGE_BW1, KX_IMAGE_BW8, KX_IMAGE_BW16, KX_IMAGE_BW32,
                                          KX_IMAGE_C24, KX_IMAGE_C15, KX_IMAGE_C16};

KxGenericROI* LoadFirst(const InspectedFile& file) {
    KX_ERRORS refusal = KX_OK;
    for (const KX_IMAGE_TYPES type : kTriedTypes) {
        std::unique_ptr<KxGenericROI> image;
        refusal = ErrorOf([&] {
            image.reset(FindImageClass(type)->make().region);
            Load(file, *image);
        });
        if (!refusal) {
            KxOk();
            return image.release();
        }
        if (refusal == KX_ERROR_ALLOCATION || refusal == KX_ERROR_INSUFFICIENT_ALLOCATION) break;
    }
    throw Exception(refusal);
}

std::unique_ptr<KxGenericROI> MakeWithoutPixels(KX_IMAGE_TYPES type, int width, int height) {
    const UntypedRegion made = FindImageClass(type)->make();
    std::unique_ptr<KxGenericROI> image(made.region);
    ImageCore::Wrap(*made.region, *made.pixels, width, height, nullptr, 0);
    return image;
}

template <class Character>
KxGenericROI* DescribeFile(const char* traceName, const Character* path, short& n16FileType,
                           unsigned int& un32Pages) {
    return AtBoundary(traceName, [&] {
        const ImageFile file(path);
        const InspectedFile::Header& header = file.Header();
        const KX_IMAGE_TYPES type = NaturalTypeOf(header.layout);
        RequireFit(file.Inspected(), type);
        auto image = MakeWithoutPixels(type, static_cast<int>(header.width), static_cast<int>(header.height));
        Describe(file.Inspected(), *image);
        n16FileType = static_cast<short>(header.type);
        un32Pages = file.Inspected().CountPages();
        KxOk();
        return image.release();
    });
}

// Keeps the calling thread from showing traces.
class TraceSilence {
public:
    TraceSilence() : m_previous(KxGetTraceMode()) { KxSetTraceMode(KX_TRACE_MODE_SILENT); }
    ~TraceSilence() { KxSetTraceMode(m_previous); }
    TraceSilence(const TraceSilence&) = delete;
    TraceSilence& operator=(const TraceSilence&) = delete;

private:
    KX_TRACE_MODE m_previous;
};

}  // namespace

// Plain overloads, so that images, derived objects and null pointers convert.
#define KX_DEFINE(Pixel)                                                                            \
    short KxLoadImage(Loadable<Pixel>* pROI, const char* pszPath, short& n16FileType) {             \
        LoadFile(PixelTraits<Pixel>::kImageType, pROI, pszPath, n16FileType);                       \
        return static_cast<short>(KxGetError());                                                    \
    }                                                                                               \
    void KxLoadImage(Loadable<Pixel>* pROI, const unsigned short* pwszPath, short& n16FileType) {   \
        LoadFile(PixelTraits<Pixel>::kImageType, pROI, pwszPath, n16FileType);                      \
    }                                                                                               \
    short KxSaveImage(const KxROI<Pixel>* pROI, const char* pszPath, short n16FileType) {           \
        SaveFile(FormatOf<Pixel>(), pROI, pszPath, n16FileType);                                    \
        return static_cast<short>(KxGetError());                                                    \
    }                                                                                               \
    void KxSaveImage(const KxROI<Pixel>* pROI, const unsigned short* pwszPath, short n16FileType) { \
        SaveFile(FormatOf<Pixel>(), pROI, pwszPath, n16FileType);                                   \
    }
KX_FOR_EACH_FILE_PIXEL(KX_DEFINE)
#undef KX_DEFINE

template <class Pixel>
IMAGE_FILE_TYPES KxROI<Pixel>::Load(const char* pszPath) {
    return LoadMember(*this, pszPath);
}

template <class Pixel>
IMAGE_FILE_TYPES KxROI<Pixel>::Load(const unsigned short* pwszPath) {
    return LoadMember(*this, pwszPath);
}

template <class Pixel>
void KxROI<Pixel>::Save(const char* pszPath, IMAGE_FILE_TYPES eFileType) const {
    SaveMember(*this, pszPath, eFileType);
}

template <class Pixel>
void KxROI<Pixel>::Save(const unsigned short* pwszPath, IMAGE_FILE_TYPES eFileType) const {
    SaveMember(*this, pwszPath, eFileType);
}

#define KX_INSTANTIATE(Pixel)                                                     \
    template KX_API IMAGE_FILE_TYPES KxROI<Pixel>::Load(const char*);             \
    template KX_API IMAGE_FILE_TYPES KxROI<Pixel>::Load(const unsigned short*);   \
    template KX_API void KxROI<Pixel>::Save(const char*, IMAGE_FILE_TYPES) const; \
    template KX_API void KxROI<Pixel>::Save(const unsigned short*, IMAGE_FILE_TYPES) const;
KX_FOR_EACH_PIXEL(KX_INSTANTIATE)
#undef KX_INSTANTIATE

KxGenericROI* KxGenericROI::CreateImageFromFile(const char* pszPath) {
    const TraceSilence silence;
    return AtBoundary(nullptr, [&] { return LoadFirst(ImageFile(pszPath).Inspected()); });
}

KxGenericROI* KxDescribeImage(const char* pszPath, short& n16FileType, unsigned int& un32Pages) {
    return DescribeFile("KxDescribeImage", pszPath, n16FileType, un32Pages);
}

KxGenericROI* KxDescribeImage(const unsigned short* pwszPath, short& n16FileType, unsigned int& un32Pages) {
    return DescribeFile("KxDescribeImage ( Unicode)", pwszPath, n16FileType, un32Pages);
}
