// Finds the pixel type for a file by its description, and the format for a name by its extension.

#include "image_file.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "kalvo/imagefiles/kximagefile.h"
#include "kalvo/streams/kxserializer.h"
#include "failure.h"
#include "pixel_types.h"

namespace App {
namespace {

FileContents DescribeImageFile(const std::string& path) {
    FileContents contents;
    short format = IMAGE_FILE_RESERVED;
    contents.objects.emplace_back(
        Checked([&] { return KxDescribeImage(path.c_str(), format, contents.pages); }));
    contents.format = static_cast<IMAGE_FILE_TYPES>(format);
    return contents;
}

FileContents LoadImageFile(const std::string& path) {
    FileContents contents = DescribeImageFile(path);
    Object& object = contents.objects.front();
    ForPixel<FilePixels>(object->GetType(), [&]<class Pixel>(std::type_identity<Pixel>) {
        auto image = std::make_unique<KxImage<Pixel>>();
        Checked([&] { image->Load(path.c_str()); });
        object = std::move(image);
    });
    return contents;
}

// The archived types of images, and those of regions, number the pixel types in the order of their list.
Object MakeObject(KxSerializer::ObjectType type) {
    Object object;
    int index = 0;
    ForFirstPixel<Zelkor::Kalvo::ArchivedPixelTypes>([&]<class Pixel>(std::type_identity<Pixel>) {
        if (type == KxSerializer::ImageBW1 + index) object = std::make_unique<KxImage<Pixel>>();
        if (type == KxSerializer::ROIBW1 + index) object = std::make_unique<KxROI<Pixel>>();
        ++index;
        return object != nullptr;
    });
    if (!object) throw Failure::Of(KX_ERROR_WRONG_OBJECT_TYPE);
    return object;
}

FileContents LoadArchive(KxSerializer& stream) {
    FileContents contents{.isArchive = true};
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

// No image file begins with the signature of an archive.
FileContents ReadFile(const std::string& path, FileContents (*readImageFile)(const std::string&)) {
    const std::unique_ptr<KxSerializer> stream(Checked([&] { return KxSerializer::CreateFileReader(path); }));
    const bool isArchive = stream->GetNextObjectType() > KxSerializer::NoObject;
    return isArchive ? LoadArchive(*stream) : readImageFile(path);
}

}  // namespace

FileContents LoadFile(const std::string& path) { return ReadFile(path, LoadImageFile); }

FileContents DescribeFile(const std::string& path) { return ReadFile(path, DescribeImageFile); }

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
