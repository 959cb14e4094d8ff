// Takes the high byte of wide grey pixels.

#include "kalvo/display/grayreduction.h"

#include "kalvo/image/imagecore.h"
#include "kalvo/image/regionrows.h"
#include "kalvo/kernels/kernels.h"

namespace Zelkor::Kalvo {

void ReduceToGray(const KxGenericROI& region, KxImage<KxBW8>& gray) {
    ImageCore::Resize(gray, region.GetWidth(), region.GetHeight());
    const ConstRegionRows from = RowsOf(region);
    const RegionRows to = RowsOf(gray);
    for (int y = 0; y < to.height; ++y)
        Kernels::Active().lastBytes(from.Row(y), region.GetBitsPerPixel() / 8, to.Row(y),
                                    static_cast<std::size_t>(to.width));
}

}  // namespace Zelkor::Kalvo
