// Loading and saving whatever the contents or the name of a file ask for.

#include "common/image_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <iterator>

#include "kalvo/imagefiles/kximagefile.h"
#include "kalvo/streams/kxserializer.h"
#include "common/failure.h"
#include "common/input_file.h"
#include "common/output_file.h"
#include "common/pixel_conversion.h"
#include "common/pixel_types.h"
#include "common/png_file.h"

namespace App {
namespace {

// The extensions of the formats, the first of which new names get.
const std::array<std::vector<std::string>, 5> kExtensions = {
    {{".bmp"}, {".tif", ".tiff"}, {".jpg", ".jpeg"}, {".png"}, {".kxa"}}};

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

FileContents LoadArchive(const std::string& path) {
    const std::unique_ptr<KxSerializer> stream(Checked([&] { return KxSerializer::CreateFileReader(path); }));
    FileContents contents{.isArchive = true};
    while (const auto type = Checked([&] { return stream->GetNextObjectType(); })) {
        Object object = MakeObject(type);
        Checked([&] { object->Load(stream.get()); });
        contents.objects.push_back(std::move(object));
    }
    return contents;
}

FileContents ReadFile(const std::string& path, FileContents (*readImageFile)(const std::string&),
                      Object (*readPng)(const std::string&)) {
    const InputFile file(path);
    if (file.GetContent() == Content::Archive) return LoadArchive(file.Path());
    if (file.GetContent() == Content::Image) return readImageFile(file.Path());
    FileContents contents{.isPng = true};
    contents.objects.push_back(readPng(file.Path()));
    return contents;
}

bool HasText(const KxGenericROI& image) {
    return image.GetTitle() || image.GetAuthor() || image.GetComment() || image.GetDate();
}

bool HasWideText(const KxGenericROI& image) {
    return image.GetTitleUnicode() || image.GetAuthorUnicode() || image.GetCommentUnicode() ||
           image.GetDateUnicode();
}

// What the format does not keep of the image: "texts and regions".
std::string LossesOf(const KxGenericROI& image, Format format) {
    std::string losses;
    const auto add = [&](bool isLost, const char* what) {
        if (isLost) losses += (losses.empty() ? "" : " and ") + std::string(what);
    };
    const bool keepsTexts = format == Format::Tiff || format == Format::Png;
    add((HasText(image) && !keepsTexts) || HasWideText(image), "texts");
    add(image.GetFirstSubROI() != nullptr, "regions");
    return losses;
}

void SaveArchive(KxGenericROI& image, const std::string& path) {
    const std::unique_ptr<KxSerializer> stream(Checked([&] { return KxSerializer::CreateFileWriter(path); }));
    Checked([&] {
        image.Save(stream.get());
        stream->Close();
    });
}

void SaveImageFile(KxGenericROI& image, const std::string& path, IMAGE_FILE_TYPES layout) {
    const bool saved = ForPixel<FilePixels>(image.GetType(), [&]<class Pixel>(std::type_identity<Pixel>) {
        Checked([&] { static_cast<KxROI<Pixel>&>(image).Save(path.c_str(), layout); });
    });
    if (!saved) throw Failure::Of(KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
}

// PNG has no pixels of 5 or 6 bits; of 32 bits of grey it keeps 16.
void SaveAsPng(KxGenericROI& image, const std::string& path) {
    constexpr PixelMaker kMaker{.threshold = 128};
    if (image.GetType() == KX_IMAGE_BW32)
        return SavePng(*Convert<KxBW16>(static_cast<KxROI<KxBW32>&>(image), kMaker), path);
    if (image.GetType() == KX_IMAGE_C15)
        return SavePng(*Convert<KxC24>(static_cast<KxROI<KxC15>&>(image), kMaker), path);
    if (image.GetType() == KX_IMAGE_C16)
        return SavePng(*Convert<KxC24>(static_cast<KxROI<KxC16>&>(image), kMaker), path);
    SavePng(image, path);
}

}  // namespace

FileContents LoadFile(const std::string& path) { return ReadFile(path, LoadImageFile, LoadPng); }

FileContents DescribeFile(const std::string& path) { return ReadFile(path, DescribeImageFile, DescribePng); }

Object LoadImage(const std::string& path) {
    FileContents contents = LoadFile(path);
    Object image = std::move(contents.objects.front());
    if (image->IsAnROI()) throw Failure::Of(KX_ERROR_WRONG_OBJECT_TYPE);
    if (contents.pages > 1)
        Note(path, "only the first of " + std::to_string(contents.pages) + " pages is read");
    if (contents.objects.size() > 1)
        Note(path, "only the first of " + std::to_string(contents.objects.size()) + " objects is read");
    return image;
}

std::string SmallExtension(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return extension;
}

Format FormatOf(const std::string& path) {
    const std::string extension = SmallExtension(path);
    const auto holds = [&](const std::vector<std::string>& names) {
        return std::ranges::find(names, extension) != names.end();
    };
    const auto found = std::ranges::find_if(kExtensions, holds);
    if (found == kExtensions.end()) throw Failure::Of(KX_ERROR_FILE_EXTENSION);
    return static_cast<Format>(std::distance(kExtensions.begin(), found));
}

const std::string& ExtensionOf(Format format) {
    return kExtensions[static_cast<std::size_t>(format)].front();
}

void SaveImage(KxGenericROI& image, const std::string& path, const SaveOptions& options) {
    const bool isChosen = options.layout != IMAGE_FILE_AUTO;
    const Format byLayout = options.layout <= IMAGE_FILE_TIFF_COLOR_PACKBITS ? Format::Tiff
                            : options.layout <= IMAGE_FILE_BMP_COLOR         ? Format::Bmp
                                                                             : Format::Jpeg;
    const Format format = options.format ? *options.format : isChosen ? byLayout : FormatOf(path);
    OutputFile output(path, ExtensionOf(format));
    if (format == Format::Archive)
        SaveArchive(image, output.Path());
    else if (format == Format::Png)
        SaveAsPng(image, output.Path());
    else
        SaveImageFile(image, output.Path(), options.layout);
    output.Commit();
    if (format == Format::Archive) return;
    if (const std::string losses = LossesOf(image, format); !losses.empty())
        Note(path, "the format does not keep " + losses);
}

}  // namespace App
