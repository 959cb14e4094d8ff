// Sizing, wrapping and copying of images, and addresses of their pixels.

#include "kalvo/image/imagecore.h"

#include <cstring>
#include <limits>
#include <utility>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/loadlimits.h"
#include "kalvo/image/pixelblock.h"
#include "kalvo/image/regionclass.h"
#include "kalvo/image/regioncopy.h"
#include "kalvo/image/regiontree.h"
#include "kalvo/vectors/vectorcore.h"

namespace Zelkor::Kalvo {
namespace {

// Moves the addresses of mask runs from the pixels of one image to those of its copy.
void RebaseRuns(KxVectorTemplate<KxRun>& runs, const std::uint8_t* from, const std::uint8_t* to) {
    const std::uintptr_t distance =
        reinterpret_cast<std::uintptr_t>(to) - reinterpret_cast<std::uintptr_t>(from);
    const auto moved = [distance](void* address) {
        return reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(address) + distance);
    };
    for (unsigned i = 0; i < runs.GetNumElements(); ++i) {
        runs[i].pBeg = moved(runs[i].pBeg);
        runs[i].pEnd = moved(runs[i].pEnd);
    }
}

// Undoes what was begun, unless it is told in the end to keep it.
template <class Operation>
class Undo {
public:
    explicit Undo(Operation operation) : m_operation(operation) {}
    Undo(const Undo&) = delete;
    Undo& operator=(const Undo&) = delete;
    ~Undo() {
        if (!m_keeps) m_operation();
    }
    void Keep() { m_keeps = true; }

private:
    Operation m_operation;
    bool m_keeps = false;
};

void LetGo(ImagePixels& pixels) {
    pixels.m_pBuffer.reset();
    pixels.m_pImagePtr = nullptr;
}

void TakeBlock(ImagePixels& pixels, int width, int height) {
    PixelBlock block = PixelBlock::Allocate(width, height, pixels.m_n32BitsPerPixel);
    pixels.m_pBuffer = std::move(block.memory);
    pixels.m_pImagePtr = block.firstPixel;
}

// Rows of a wrapped buffer are padded to 32 bits unless the caller says otherwise.
std::int32_t WrappedRowBits(int width, int bitsPerPixel, int bitsPerRow) {
    if (bitsPerRow) return bitsPerRow;
    const std::int64_t padded = (std::int64_t{width} * bitsPerPixel + 31) / 32 * 32;
    if (padded > std::numeric_limits<std::int32_t>::max()) throw Exception(KX_ERROR_ORIGIN_IMAGE_TOO_BIG);
    return static_cast<std::int32_t>(padded);
}

}  // namespace

ImagePixels::ImagePixels(int n32BitsPerPixel) : m_n32BitsPerPixel(n32BitsPerPixel) {}

ImagePixels::~ImagePixels() = default;

void ImageCore::Resize(RegionBase& image, ImagePixels& pixels, int width, int height) {
    if (width == image.m_n32Width && height == image.m_n32Height) return;
    AtTracePoint("KxImage::SetSize", [&] {
        const std::int32_t rowBits = PixelBlock::RowBits(width, height, pixels.m_n32BitsPerPixel);
        VectorCore<KxRun>::SetCapacity(image.m_MaskRuns, 0);
        image.m_n32Width = width;
        image.m_n32Height = height;
        RegionTree::ClipChildren(image);
        pixels.m_n32BitsPerRow = rowBits;
        LetGo(pixels);
        if (width == 0 || height == 0) return;
        Undo undo([&] { image.m_n32Width = image.m_n32Height = 0; });
        TakeBlock(pixels, width, height);
        undo.Keep();
    });
}

void ImageCore::ResizeByItself(KxGenericROI& image, int width, int height) {
    const std::uint64_t pixels = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    RequireLoadable(pixels * static_cast<unsigned>(image.GetBitsPerPixel()) / 8, pixels);
    ThrowWhatItStores([&] { image.SetSize(width, height); }, KX_ERROR_ROI_OUT_OF_PARENT);
    if (image.GetWidth() != width || image.GetHeight() != height) throw Exception(KX_ERROR_ALLOCATION);
}

void ImageCore::Wrap(RegionBase& image, ImagePixels& pixels, int width, int height, void* buffer,
                     int bitsPerRow) {
    if (width < 0 || height < 0) throw Exception(KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
    const std::int32_t rowBits = WrappedRowBits(width, pixels.m_n32BitsPerPixel, bitsPerRow);
    image.m_n32Width = width;
    image.m_n32Height = height;
    RegionTree::ClipChildren(image);
    LetGo(pixels);
    pixels.m_pImagePtr = static_cast<std::uint8_t*>(buffer);
    pixels.m_n32BitsPerRow = rowBits;
}

GenericRoiExtent ImageCore::TakePlacement(RegionBase& image) {
    const GenericRoiExtent placement = image.GetExtent();
    image.m_n32OrgX = image.m_n32OrgY = image.m_n32Width = image.m_n32Height = 0;
    return placement;
}

void ImageCore::MakeEmpty(RegionBase& image, ImagePixels& pixels) {
    image.MakeEmpty();
    Resize(image, pixels, 0, 0);
}

void ImageCore::CopyPixels(const RegionBase& source, const ImagePixels& pixels, const UntypedRegion& copy) {
    ImagePixels& copied = *copy.pixels;
    if (!pixels.m_pBuffer) {
        LetGo(copied);
        copied.m_pImagePtr = pixels.m_pImagePtr;
        copied.m_n32BitsPerRow = pixels.m_n32BitsPerRow;
    } else {
        const int width = source.m_n32Width, height = source.m_n32Height;
        const bool hasSize = copy.region->m_n32Width == width && copy.region->m_n32Height == height;
        if (!copied.m_pBuffer || !hasSize) {
            LetGo(copied);
            TakeBlock(copied, width, height);
        }
        const std::int32_t rowBits = PixelBlock::RowBits(width, height, pixels.m_n32BitsPerPixel);
        std::memcpy(copied.m_pImagePtr, pixels.m_pImagePtr, PixelBlock::Bytes(rowBits, height));
        copied.m_n32BitsPerRow = rowBits;
    }
    copied.m_PixelWidth = pixels.m_PixelWidth;
    copied.m_PixelHeight = pixels.m_PixelHeight;
}

RegionBase* ImageCore::CopyTo(const RegionBase& source, const ImagePixels& pixels,
                              const UntypedRegion& destination, bool recursive,
                              const RegionClass& imageClass) noexcept {
    if (destination.region == &source) return destination.region;
    RegionBase* result = destination.region;
    AtBoundary("KxImage::CopyTo", [&] {
        Undo undo([&] {
            if (destination.region) MakeEmpty(*destination.region, *destination.pixels);
        });
        const UntypedRegion made = imageClass.make();
        std::unique_ptr<RegionBase> copy(made.region);
        RegionCopy::Build(source, *copy, recursive, destination.region);
        const UntypedRegion& holder = destination.region ? destination : made;
        CopyPixels(source, pixels, holder);
        if (!source.m_bMaskOffsets)
            RebaseRuns(copy->m_MaskRuns, pixels.m_pImagePtr, holder.pixels->m_pImagePtr);
        undo.Keep();
        if (destination.region) return RegionCopy::Replace(source, *copy, *destination.region);
        RegionCopy::Place(source, *copy);
        result = copy.release();
    });
    return result;
}

void ImageCore::SetSize(RegionBase& image, ImagePixels& pixels, int width, int height) noexcept {
    AtBoundary(nullptr, [&] { Resize(image, pixels, width, height); });
}

void ImageCore::SetImagePtr(RegionBase& image, ImagePixels& pixels, int width, int height, void* buffer,
                            int bitsPerRow) noexcept {
    AtBoundary("KxImage::SetImagePtr", [&] { Wrap(image, pixels, width, height, buffer, bitsPerRow); });
}

std::uint8_t* ImageCore::AddressOf(const ImagePixels& pixels, int x, int y) {
    if (!pixels.m_pImagePtr) return nullptr;
    const std::int64_t column = std::int64_t{x} * pixels.m_n32BitsPerPixel / 8;
    return pixels.m_pImagePtr + column + std::int64_t{y} * (pixels.m_n32BitsPerRow / 8);
}

unsigned ImageCore::BitOf(const ImagePixels& pixels, int x, int y) {
    const std::int64_t firstBit =
        std::int64_t{x} * pixels.m_n32BitsPerPixel + std::int64_t{y} * pixels.m_n32BitsPerRow;
    return static_cast<unsigned>(firstBit & 7);
}

void ImageCore::SetPixelDimensions(ImagePixels& pixels, float width, float height, KxMeasurementUnit* unit) {
    if (width == 0 && height == 0) return Report(KX_ERROR_PIXELS_FINITE_SIZE, "KxImage::SetPixelDimensions");
    pixels.m_PixelWidth.SetValue(width, unit);
    pixels.m_PixelHeight.SetValue(height, unit);
}

void ImageCore::SetResolution(ImagePixels& pixels, float x, float y, KxMeasurementUnit* unit) {
    if (x == 0 || y == 0) return Report(KX_ERROR_PIXELS_FINITE_SIZE, "KxGenericImage::SetResolution");
    pixels.m_PixelWidth.SetValue(1 / x, unit);
    pixels.m_PixelHeight.SetValue(1 / y, unit);
}

void ImageCore::SwapPixels(ImagePixels& pixels, ImagePixels& other) noexcept {
    std::swap(pixels.m_pBuffer, other.m_pBuffer);
    std::swap(pixels.m_pImagePtr, other.m_pImagePtr);
}

}  // namespace Zelkor::Kalvo
