// Finds the pixel type for a file by trying, and the format for a name by its extension.
#include "image_file.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "kalvo/streams/kxserializer.h"
#include "failure.h"
#include "pixel_types.h"

namespace App {
namespace {

// Codes by which a reader says that the file is sound but wants another pixel type.
bool AsksForOtherPixelType(KX_ERRORS code) {
    return (code >= KX_ERROR_INVALID_PLANES_PER_PIXEL && code <= KX_ERROR_GRADIENT32_EXPECTED) ||
           (code >= KX_ERROR_BILEVEL_IMAGE_EXPECTED && code <= KX_ERROR_COLOR_IMAGE_EXPECTED) ||
           code == KX_ERROR_UNSUPPORTED_IMAGE_TYPE || code == KX_ERROR_UNSUPPORTED_BMP;
}

// Four bytes of a BMP pixel are a colour with opacity; KxBW32 would take them as one number.
template <class Pixel>
bool IsNaturalFor(IMAGE_FILE_TYPES format) {
    return !std::is_same_v<Pixel, KxBW32> || format != IMAGE_FILE_BMP_COLOR;
}

FileContents LoadImageFile(const std::string& path) {
    FileContents contents{.isArchive = false, .format = IMAGE_FILE_RESERVED, .objects = {}};
    KX_ERRORS refusal = KX_ERROR_BAD_FILE_FORMAT;
    ForFirstPixel<FilePixels>([&]<class Pixel>(std::type_identity<Pixel>) {
        KxOk();
        auto image = std::make_unique<KxImage<Pixel>>();
        contents.format = image->Load(path.c_str());
        if (KxFailure()) {
            refusal = KxGetError();
            return !AsksForOtherPixelType(refusal);
        }
        if (!IsNaturalFor<Pixel>(contents.format)) return false;
        contents.objects.push_back(std::move(image));
        return true;
    });
    if (contents.objects.empty()) throw Failure::Of(refusal);
    return contents;
}

// The archived types of images, and those of regions, number the pixel types in the order of `PixelTypes`.
Object MakeObject(KxSerializer::ObjectType type) {
    Object object;
    int index = 0;
    ForFirstPixel<Zelkor::Kalvo::PixelTypes>([&]<class Pixel>(std::type_identity<Pixel>) {
        if (type == KxSerializer::ImageBW1 + index) object = std::make_unique<KxImage<Pixel>>();
        if (type == KxSerializer::ROIBW1 + index) object = std::make_unique<KxROI<Pixel>>();
        return object || ++index > KxSerializer::ImageRaw96 - KxSerializer::ImageBW1;
    });
    if (!object) throw Failure::Of(KX_ERROR_WRONG_OBJECT_TYPE);
    return object;
}

FileContents LoadArchive(KxSerializer& stream) {
    FileContents contents{.isArchive = true, .format = IMAGE_FILE_RESERVED, .objects = {}};
    while (const auto type = Checked([&] { return stream.GetNextObjectType(); })) {
        Object object = MakeObject(type);
        Checked([&] { object->Load(&stream); });
        contents.objects.push_back(std::move(object));
    }
    return contents;
}

bool HasArchiveExtension(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return extension == ".kxa";
}

}  // namespace

FileContents LoadFile(const std::string& path) {
    const std::unique_ptr<KxSerializer> stream(Checked([&] { return KxSerializer::CreateFileReader(path); }));
    // No image file begins with the signature of an archive.
    if (stream->GetNextObjectType() > KxSerializer::NoObject) return LoadArchive(*stream);
    return LoadImageFile(path);
}

Object LoadImage(const std::string& path) {
    Object image = std::move(LoadFile(path).objects.front());
    if (image->IsAnROI()) throw Failure::Of(KX_ERROR_WRONG_OBJECT_TYPE);
    return image;
}

void SaveImage(KxGenericROI& image, const std::string& path, IMAGE_FILE_TYPES format) {
    if (format == IMAGE_FILE_AUTO && HasArchiveExtension(path)) {
        const std::unique_ptr<KxSerializer> stream(
            Checked([&] { return KxSerializer::CreateFileWriter(path); }));
        Checked([&] {
            image.Save(stream.get());
            stream->Close();
        });
        return;
    }
    const bool saved = ForPixel<FilePixels>(image.GetType(), [&]<class Pixel>(std::type_identity<Pixel>) {
        Checked([&] { static_cast<KxROI<Pixel>&>(image).Save(path.c_str(), format); });
    });
    if (!saved) throw Failure::Of(KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
}

}  // namespace App
