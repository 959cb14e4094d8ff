// The command `draw`.

#include <deque>

#include "commands.h"
#include "common/image_file.h"
#include "common/region.h"
#include "common/trees.h"

namespace App {
namespace {

constexpr float kRingRatio = 0.5f;

template <class Pixel>
void SetMask(KxROI<Pixel>& region, MaskShape shape) {
    switch (shape) {
    case MaskEllipse:
        return region.SetEllipseMask(0, 0, 0, 0);
    case MaskRing:
        return region.SetRingMask(kRingRatio);
    case MaskRectangle:
        return region.SetRectangleMask(0, 0, 0, 0);
    }
}

template <class Pixel>
void Draw(KxImage<Pixel>& image, const DrawOptions& options) {
    std::deque<KxROI<Pixel>> regions;  // they stay where they are
    for (const auto& part : options.regions) AttachPart(regions.emplace_back(), image, part);
    if (regions.empty() && !options.masks.empty())
        AttachPart(regions.emplace_back(), image, {0, 0, image.GetWidth(), image.GetHeight()});
    Checked([&] {
        for (std::size_t i = 0; i < options.masks.size(); ++i) SetMask(regions[i], options.masks[i]);
    });
    const KxBW8Vector* table = options.table ? &*options.table : nullptr;
    SaveTreePicture(image, {.zoom = options.zoom, .handles = options.handles}, table, options.output);
}

}  // namespace

int RunDraw(const DrawOptions& options) {
    Object image;
    const auto load = [&] { image = LoadImage(options.input); };
    const auto draw = [&] { WithPixels<KxImage>(*image, [&](auto& typed) { Draw(typed, options); }); };
    return Attempt(options.input, load) || Attempt(options.output, draw);
}

}  // namespace App
