// The command `convert`.

#include "kalvo/frame/kxlibrary.h"
#include "kalvo/measure/kxunit.h"
#include "commands.h"
#include "failure.h"
#include "image_file.h"
#include "pixel_conversion.h"
#include "pixel_types.h"
#include "region.h"

namespace App {
namespace {

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

Object LoadPart(const ConvertOptions& options) {
    const Object image = LoadImage(options.input);
    Object converted;
    ForPixel<FilePixels>(image->GetType(), [&]<class From>(std::type_identity<From>) {
        converted = ConvertPart(static_cast<KxImage<From>&>(*image), options);
    });
    if (!converted) throw Failure::Of(KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    return converted;
}

}  // namespace

int RunConvert(const ConvertOptions& options) {
    KxSetJpegQuality(options.quality);
    KxSetTiffThreshold(static_cast<unsigned>(options.threshold));
    KxSetTiffStripSize(options.stripSize);

    Object image;
    const auto load = [&] { image = LoadPart(options); };
    const auto save = [&] { SaveImage(*image, options.output, options.format); };
    return Attempt(options.input, load) || Attempt(options.output, save);
}

}  // namespace App
