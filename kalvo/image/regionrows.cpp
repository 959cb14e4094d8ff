// Where the rows of a region stand in memory.

#include "kalvo/image/regionrows.h"

namespace Zelkor::Kalvo {
namespace {

template <class Byte, class Region>
BasicRegionRows<Byte> MakeRows(Region& region) {
    auto* first = static_cast<Byte*>(region.GetGenericImagePtr(0, 0));
    if (!first) return {nullptr, 0, 0, region.GetWidth(), region.GetHeight()};
    return {first, static_cast<int>(region.GetBitIndex(0, 0)), region.GetRowPitch(), region.GetWidth(),
            region.GetHeight()};
}

}  // namespace

KX_IMAGE_TYPES TypeOf(const KxGenericROI& region) { return const_cast<KxGenericROI&>(region).GetType(); }

RegionRows RowsOf(KxGenericROI& region) { return MakeRows<std::uint8_t>(region); }

ConstRegionRows RowsOf(const KxGenericROI& region) { return MakeRows<const std::uint8_t>(region); }

}  // namespace Zelkor::Kalvo
