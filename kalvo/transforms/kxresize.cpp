// Nearest neighbour: where the rows and columns of the destination come from, and how they get there.

#include "kalvo/transforms/kxresize.h"

#include <cstring>
#include <functional>
#include <utility>
#include <vector>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/checkedsize.h"
#include "kalvo/image/imagecore.h"
#include "kalvo/image/regionrows.h"
#include "kalvo/kernels/gatherplan.h"
#include "kalvo/kernels/kernels.h"
#include "kalvo/raster/blitaxis.h"

using namespace Zelkor::Kalvo;
namespace Kernels = Zelkor::Kernels;

namespace {

// The whole of a destination that takes the whole of a source, along one axis.
Zelkor::Platform::VisibleAxis WholeAxis(int sourceSize, int destinationSize) {
    return {{0, destinationSize, 0, sourceSize, false}, {0, destinationSize}, sourceSize};
}

// Copies whole pixels, so only their size matters.
void ResampleNearest(const ConstRegionRows& source, const RegionRows& destination,
                     std::size_t bytesPerPixel) {
    const std::size_t rowBytes = bytesPerPixel * destination.width;
    const bool sameWidth = source.width == destination.width;
    Kernels::GatherPlan plan{};
    if (!sameWidth)
        plan = Kernels::MakeGatherPlan(WholeAxis(source.width, destination.width).Sources(), source.width,
                                       bytesPerPixel);

    const std::vector<int> rows = WholeAxis(source.height, destination.height).Sources();
    const std::uint8_t* previous = nullptr;
    for (int y = 0; y < destination.height; ++y) {
        const std::uint8_t* from = source.Row(rows[static_cast<std::size_t>(y)]);
        std::uint8_t* to = destination.Row(y);
        if (from == previous)
            std::memmove(to, destination.Row(y - 1), rowBytes);  // rows of a foreign buffer may overlap
        else if (sameWidth)
            std::memcpy(to, from, rowBytes);
        else
            Kernels::Active().gatherRow(plan, from, to);
        previous = from;
    }
}

// Addresses from the lowest to the highest row; for rows of overlapping regions, whatever lies between them.
struct Span {
    const std::uint8_t* begin;
    const std::uint8_t* end;

    Span(const ConstRegionRows& rows, std::size_t rowBytes)
        : begin(rows.Row(0)), end(rows.Row(rows.height - 1)) {
        if (std::less<>()(end, begin)) std::swap(begin, end);
        end += rowBytes;
    }
    bool Overlaps(const Span& other) const {
        return std::less<>()(begin, other.end) && std::less<>()(other.begin, end);
    }
};

ConstRegionRows AsConst(const RegionRows& rows) {
    return {rows.first, rows.firstBit, rows.pitchBytes, rows.width, rows.height};
}

ConstRegionRows CopyRows(const ConstRegionRows& rows, std::size_t rowBytes, std::vector<std::uint8_t>& copy) {
    copy.resize(CheckedSize(rowBytes, rows.height, KX_ERROR_ALLOCATION));
    for (int y = 0; y < rows.height; ++y) std::memcpy(copy.data() + rowBytes * y, rows.Row(y), rowBytes);
    return {copy.data(), 0, static_cast<std::ptrdiff_t>(rowBytes), rows.width, rows.height};
}

bool IsEmpty(const auto& rows) { return rows.width == 0 || rows.height == 0; }

template <class Pixel>
void ResizeRegion(const KxROI<Pixel>& source, KxROI<Pixel>& destination) {
    ConstRegionRows from = RowsOf(source);
    const RegionRows to = RowsOf(destination);
    if (!from.first || !to.first) throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);
    if (IsEmpty(to)) return;
    if (IsEmpty(from)) throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);

    std::vector<std::uint8_t> copy;
    const std::size_t fromBytes = sizeof(Pixel) * from.width, toBytes = sizeof(Pixel) * to.width;
    if (Span(from, fromBytes).Overlaps(Span(AsConst(to), toBytes))) from = CopyRows(from, fromBytes, copy);
    ResampleNearest(from, to, sizeof(Pixel));
}

template <class Pixel>
void Resize(KxROI<Pixel>* source, KxROI<Pixel>* destination) {
    KxOk();
    AtBoundary("KxResize", [&] { ResizeRegion(*source, *destination); });
}

// A size that no image has, 0, stands for what is negative or not a number.
int ScaledSize(int size, float scale) {
    const float scaled = static_cast<float>(size) * scale;
    if (!(scaled > 0)) return 0;
    const float rounded = scaled + 0.5f;
    if (rounded >= 0x1p31f) throw Exception(KX_ERROR_ORIGIN_IMAGE_TOO_BIG);
    return static_cast<int>(rounded);
}

template <class Pixel>
void Rescale(KxImage<Pixel>* source, KxImage<Pixel>* destination, float scaleX, float scaleY) {
    AtBoundary("ImgRescale", [&] {
        if (source->Void()) throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);
        KxImage<Pixel> scaled;
        const int width = ScaledSize(source->GetWidth(), scaleX),
                  height = ScaledSize(source->GetHeight(), scaleY);
        ImageCore::Resize(scaled, width, height);
        KxOk();
        AtTracePoint("KxResize", [&] { ResizeRegion(*source, scaled); });

        // The destination only gets the shape: a buffer of its own would be allocated to be thrown away, and
        // might not be had. A mask of offsets fits any pixels of the same shape.
        KxImage<Pixel>& target = destination ? *destination : *source;
        const bool hasShape = target.GetWidth() == width && target.GetHeight() == height;
        if (!hasShape || !target.GetMaskOffsets()) target.ResetMask();
        target.SetImagePtr(width, height, nullptr, scaled.GetBitsPerRow());
        target.SwapPixels(scaled);
        KxOk();
    });
}

}  // namespace

#define KX_DEFINE(Pixel)                                                                                \
    void KxResize(KxROI<Pixel>* pSource, KxROI<Pixel>* pDestination) { Resize(pSource, pDestination); } \
    void ImgRescale(KxImage<Pixel>* pSource, KxImage<Pixel>* pDestination, float f32ScaleX,             \
                    float f32ScaleY) {                                                                  \
        Rescale(pSource, pDestination, f32ScaleX, f32ScaleY);                                           \
    }                                                                                                   \
    void ImgRescale(KxImage<Pixel>* pImage, float f32ScaleX, float f32ScaleY) {                         \
        Rescale<Pixel>(pImage, nullptr, f32ScaleX, f32ScaleY);                                          \
    }
KX_FOR_EACH_RESIZABLE_PIXEL(KX_DEFINE)
#undef KX_DEFINE
