// The commands `resize`, `relief` and `histogram3d`.

#include <algorithm>
#include <array>
#include <cmath>
#include <tuple>

#include "kalvo/measure/kxangle.h"
#include "kalvo/measure/kxunit.h"
#include "kalvo/transforms/kxcolorhistogram.h"
#include "kalvo/transforms/kxrelief.h"
#include "kalvo/transforms/kxresize.h"
#include "commands.h"
#include "common/image_file.h"
#include "common/pixel_conversion.h"
#include "common/pixel_types.h"
#include "common/region.h"
#include "common/space.h"

namespace App {
namespace {

using ResizablePixels = std::tuple<KxBW8, KxBW16, KxC15, KxC16, KxC24, KxC24A>;
using GrayPixels = std::tuple<KxBW1, KxBW8, KxBW16, KxBW32>;

constexpr PixelMaker kMaker{.threshold = 128};
constexpr PictureSize kLargestRelief{1200, 1200};  // when no size is given
constexpr int kLargestPicture = 32000;

// The image as one of another pixel type.
template <class Pixel>
std::unique_ptr<KxImage<Pixel>> As(KxGenericROI& image) {
    std::unique_ptr<KxImage<Pixel>> converted;
    WithPixels<KxImage>(image, [&](const auto& typed) { converted = Convert<Pixel>(typed, kMaker); });
    return converted;
}

// Loads an image and, if there is one, a second; makes a picture of them; and saves it.
template <class Make>
int Transform(const std::string& input, const std::string& second, const std::string& output,
              const Make& make) {
    Object image, other, picture;
    const auto load = [&] { image = LoadImage(input); };
    const auto loadSecond = [&] { other = second.empty() ? nullptr : LoadImage(second); };
    const auto transform = [&] { picture = make(*image, other.get()); };
    const auto save = [&] { SaveImage(*picture, output); };
    return Attempt(input, load) || Attempt(second, loadSecond) || Attempt(input, transform) ||
           Attempt(output, save);
}

template <class Pixel>
std::unique_ptr<KxImage<Pixel>> NewImage(PictureSize size) {
    return Checked([&] { return std::make_unique<KxImage<Pixel>>(size.width, size.height); });
}

// What the picture shows stays as large as it was.
void KeepPhysicalSize(const KxGenericROI& from, KxGenericROI& to) {
    float width, height;
    const KxMeasurementUnit* unit;
    from.GetPixelDimensions(width, height, unit);
    KxMeasurementUnit copy(*unit);
    to.SetPixelDimensions(width * static_cast<float>(from.GetWidth()) / static_cast<float>(to.GetWidth()),
                          height * static_cast<float>(from.GetHeight()) / static_cast<float>(to.GetHeight()),
                          &copy);
}

template <class Pixel>
Object Resize(KxImage<Pixel>& image, const ResizeOptions& options) {
    auto result = std::make_unique<KxImage<Pixel>>();
    Checked([&] { image.CopyTo(result.get(), 0); });  // for its texts
    if (options.size) {
        Checked([&] { result->SetSize(options.size->width, options.size->height); });
        Checked([&] { KxResize(&image, result.get()); });
    } else {
        Checked([&] { ImgRescale(&image, result.get(), options.scales[0], options.scales[1]); });
    }
    KeepPhysicalSize(image, *result);
    return result;
}

// The picture that the box fills, but for a margin.
PictureSize FittingSize(const Box& box) {
    const auto side = [](float length) {
        return static_cast<int>(std::clamp(length / kFilledPart, 1.0f, static_cast<float>(kLargestPicture)));
    };
    return {side(box.width), side(box.height)};
}

struct ReliefLayout {
    std::array<float, 3> scales;
    PictureSize size;
};

// Fits picture and relief together as far as they are not given.
ReliefLayout LayOut(const KxGenericROI& image, const ReliefOptions& options) {
    const Box box = ReliefBox(image);
    const auto boxOf = [&](const std::array<float, 3>& scales) {
        return Turned({scales[0] * box.width, scales[1] * box.height, scales[2] * kLevels}, options.angles);
    };
    std::array<float, 3> scales{1, 1, box.depth / kLevels};
    if (options.scales) {
        scales = *options.scales;
    } else {
        const float fitting = FittingScale(boxOf(scales), options.size.value_or(kLargestRelief));
        for (float& scale : scales) scale *= options.size ? fitting : std::min(fitting, 1.0f);
    }
    return {scales, options.size ? *options.size : FittingSize(boxOf(scales))};
}

Object GrayRelief(KxGenericROI& image, const ReliefOptions& options) {
    const auto source = As<KxBW8>(image);
    const auto [scales, size] = LayOut(image, options);
    auto picture = NewImage<KxBW8>(size);
    Checked([&] {
        KxRender3D(source.get(), picture.get(), options.angles[0], options.angles[1], scales[0], scales[1],
                   scales[2], options.pointSize);
    });
    return picture;
}

// This one takes radians.
Object ColorRelief(KxGenericROI& image, KxGenericROI& heightImage, const ReliefOptions& options) {
    const auto colors = As<KxC24>(image);
    const auto heights = As<KxBW8>(heightImage);
    const auto [scales, size] = LayOut(image, options);
    auto picture = NewImage<KxC24>(size);
    Checked([&] {
        KxRender3D(colors.get(), heights.get(), picture.get(), KxToRadians(options.angles[0]),
                   KxToRadians(options.angles[1]), scales[0], scales[1], scales[2], options.pointSize);
    });
    return picture;
}

Object Relief(KxGenericROI& image, KxGenericROI* heights, const ReliefOptions& options) {
    const bool isGray = ForPixel<GrayPixels>(image.GetType(), [](auto) {});
    return isGray && !heights ? GrayRelief(image, options)
                              : ColorRelief(image, heights ? *heights : image, options);
}

Object ColorCube(KxGenericROI& image, KxGenericROI* pointImage, const CubeOptions& options) {
    const auto colors = As<KxC24>(image);
    const auto points = pointImage ? As<KxC24>(*pointImage) : nullptr;
    auto picture = NewImage<KxC24>(options.size);
    const auto& [a, b] = options.angles;
    const float scale = FittingScale(Turned({kLevels, kLevels, kLevels}, options.angles), options.size);
    Checked([&] {
        if (points)
            KxRenderColorHistogram(colors.get(), points.get(), picture.get(), a, b, scale, scale, scale);
        else
            KxRenderColorHistogram(colors.get(), picture.get(), a, b, scale, scale, scale);
    });
    return picture;
}

}  // namespace

int RunResize(const ResizeOptions& options) {
    return Transform(options.input, "", options.output, [&](KxGenericROI& image, KxGenericROI*) {
        Object result;
        const bool known =
            ForPixel<ResizablePixels>(image.GetType(), [&]<class Pixel>(std::type_identity<Pixel>) {
                result = Resize(static_cast<KxImage<Pixel>&>(image), options);
            });
        if (!known)
            throw Failure{
                std::string("Images of type ") + PixelTypeName(image.GetType()) + " cannot be resized",
                KX_ERROR_UNSUPPORTED_IMAGE_TYPE};
        return result;
    });
}

int RunRelief(const ReliefOptions& options) {
    return Transform(
        options.input, options.heights, options.output,
        [&](KxGenericROI& image, KxGenericROI* heights) { return Relief(image, heights, options); });
}

int RunHistogram3d(const CubeOptions& options) {
    return Transform(
        options.input, options.coordinates, options.output,
        [&](KxGenericROI& image, KxGenericROI* points) { return ColorCube(image, points, options); });
}

}  // namespace App
