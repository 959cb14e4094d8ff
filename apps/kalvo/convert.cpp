// The commands `convert` and `batch`.

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <set>

#include "kalvo/frame/kxlibrary.h"
#include "kalvo/measure/kxunit.h"
#include "commands.h"
#include "common/failure.h"
#include "common/image_file.h"
#include "common/input_file.h"
#include "common/pixel_conversion.h"
#include "common/pixel_types.h"
#include "common/region.h"

namespace App {
namespace {

namespace files = std::filesystem;
using Extent = Zelkor::Kalvo::GenericRoiExtent;

void CopyTexts(const KxGenericROI& from, KxGenericROI& to) {
    to.SetTitle(from.GetTitle());
    to.SetTitle(from.GetTitleUnicode());
    to.SetAuthor(from.GetAuthor());
    to.SetAuthor(from.GetAuthorUnicode());
    to.SetDate(from.GetDate());
    to.SetDate(from.GetDateUnicode());
    to.SetComment(from.GetComment());
    to.SetComment(from.GetCommentUnicode());
}

void CopyPixelSize(const KxGenericROI& from, KxGenericROI& to) {
    float width, height;
    const KxMeasurementUnit* unit;
    from.GetPixelDimensions(width, height, unit);
    KxMeasurementUnit copy(*unit);
    to.SetPixelDimensions(width, height, &copy);
}

// A new image of the wanted type with the pixels of a rectangle of `image`, its texts and its pixel size.
template <class From>
Object ConvertPart(KxImage<From>& image, const ConvertOptions& options) {
    const auto part = options.region.value_or(Extent(0, 0, image.GetWidth(), image.GetHeight()));
    KxROI<From> region;
    AttachPart(region, image, part);

    Object converted;
    ForPixel<FilePixels>(options.type.value_or(image.GetType()), [&]<class To>(std::type_identity<To>) {
        converted = Convert<To>(region, PixelMaker{options.threshold});
    });
    CopyTexts(image, *converted);
    CopyPixelSize(image, *converted);
    return converted;
}

Object LoadPart(const std::string& input, const ConvertOptions& options) {
    const Object image = LoadImage(input);
    if (image->GetFirstSubROI()) Note(input, "its regions are left out");
    Object converted;
    ForPixel<FilePixels>(image->GetType(), [&]<class From>(std::type_identity<From>) {
        converted = ConvertPart(static_cast<KxImage<From>&>(*image), options);
    });
    if (!converted) throw Failure::Of(KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    return converted;
}

// The name of a result in a folder: that of the input with the extension of the format, or with it behind its
// own when another result has that name.
std::string NameIn(const std::string& folder, const std::string& input, const ConvertOptions& options,
                   std::set<std::string>& taken) {
    const std::string extension = options.save.format ? ExtensionOf(*options.save.format) : "";
    const files::path name = files::path(folder) / files::path(input).filename();
    files::path output = name;
    if (!extension.empty()) output.replace_extension(extension);
    if (taken.insert(output.string()).second) return output.string();
    output = name.string() + extension;
    if (!taken.insert(output.string()).second)
        throw Failure{"would replace the result of another file of that name", KX_ERROR_FILE_OPEN};
    return output.string();
}

bool ConvertOne(const std::string& input, const std::string& output, const ConvertOptions& options) {
    Object image;
    const auto load = [&] { image = LoadPart(input, options); };
    const auto save = [&] { SaveImage(*image, output, options.save); };
    return !Attempt(input, load) && !Attempt(output, save);
}

int ConvertAll(const std::vector<std::string>& inputs, const std::string& folder,
               const ConvertOptions& options) {
    std::size_t converted = 0;
    std::set<std::string> outputs;
    for (const std::string& input : inputs) {
        if (isatty(STDERR_FILENO))
            std::cerr << "\r" << converted + 1 << " of " << inputs.size() << std::flush;
        std::string output;
        const auto name = [&] { output = NameIn(folder, input, options, outputs); };
        converted += !Attempt(input, name) && ConvertOne(input, output, options);
    }
    if (isatty(STDERR_FILENO)) std::cerr << '\r';
    std::cerr << "kalvo: " << converted << " converted, " << inputs.size() - converted << " failed\n";
    return converted == inputs.size() ? 0 : 1;
}

void Prepare(const ConvertOptions& options) {
    KxSetJpegQuality(options.quality);
    KxSetTiffThreshold(static_cast<unsigned>(options.threshold));
    KxSetTiffStripSize(options.stripSize);
}

}  // namespace

int RunConvert(const ConvertOptions& options) {
    Prepare(options);
    const std::vector<std::string> inputs(options.files.begin(), options.files.end() - 1);
    const std::string& output = options.files.back();
    const bool isFolder = files::is_directory(output);
    if (inputs.size() == 1 && !isFolder) return ConvertOne(inputs.front(), output, options) ? 0 : 1;
    if (isFolder) return ConvertAll(inputs, output, options);
    return Attempt(output,
                   [] {
                       throw Failure{"is no folder for several files", KX_ERROR_FILE_OPEN};
                   })
               ? 1
               : 0;
}

int RunBatch(const ConvertOptions& options) {
    Prepare(options);
    std::vector<std::string> inputs;
    const auto find = [&] {
        for (const auto& entry : files::directory_iterator(options.files[0]))
            if (entry.is_regular_file() && IsReadable(entry.path().string()))
                inputs.push_back(entry.path().string());
        std::ranges::sort(inputs);
    };
    const auto make = [&] { files::create_directories(options.files[1]); };
    if (Attempt(options.files[0], find) || Attempt(options.files[1], make)) return 1;
    return ConvertAll(inputs, options.files[1], options);
}

}  // namespace App
