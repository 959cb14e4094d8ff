// The command `plot`.

#include "commands.h"
#include "common/image_file.h"
#include "common/plots.h"
#include "common/region.h"

namespace App {
namespace {

template <class Pixel>
void Plot(KxImage<Pixel>& image, const PlotOptions& options) {
    using Extent = Zelkor::Kalvo::GenericRoiExtent;
    KxROI<Pixel> part, line;
    AttachPart(part, image, options.region.value_or(Extent(0, 0, image.GetWidth(), image.GetHeight())));
    if (options.row) AttachPart(line, part, {0, *options.row, part.GetWidth(), 1});
    if (options.column) AttachPart(line, part, {*options.column, 0, 1, part.GetHeight()});
    const Extent box(0, 0, options.size.width, options.size.height);
    SaveDrawing(options.size, options.output, [&](const Paper& paper) {
        if (options.row || options.column)
            DrawProfile(paper, box, line);
        else
            DrawHistogram(paper, box, part);
    });
}

}  // namespace

int RunPlot(const PlotOptions& options) {
    Object image;
    const auto load = [&] { image = LoadImage(options.input); };
    const auto plot = [&] { WithPixels<KxImage>(*image, [&](auto& typed) { Plot(typed, options); }); };
    return Attempt(options.input, load) || Attempt(options.output, plot);
}

}  // namespace App
