#pragma once
// What images do whatever the type of their pixels. `KxImage` unpacks itself and calls this.

#include <memory>

#include "kalvo/image/kximage.h"

namespace Zelkor::Kalvo {

// A region or image without its pixel type.
struct UntypedRegion {
    RegionBase* region = nullptr;
    ImagePixels* pixels = nullptr;  // of an image; null for a region
};

struct RegionClass;

struct ImageCore {
    template <class Pixel>
    static UntypedRegion Untyped(KxImage<Pixel>& image) {
        return {&image, &image.m_Pixels};
    }
    template <class Pixel>
    static UntypedRegion Untyped(KxROI<Pixel>& region) {
        return {&region, nullptr};
    }

    // Sizes an image as `KxImage::SetSize` does. Throws what that stores, traced under its name.
    static void Resize(RegionBase& image, ImagePixels& pixels, int width, int height);
    template <class Pixel>
    static void Resize(KxImage<Pixel>& image, int width, int height) {
        Resize(image, image.m_Pixels, width, height);
    }
    // Gives an image the size that a file tells, through its own `SetSize`, which the caller's class may have
    // replaced. Throws what that stores, but that regions below it lay beyond the new size is left in the
    // slot; and KX_ERROR_INSUFFICIENT_ALLOCATION where the thread's limits for loading are exceeded.
    static void ResizeByItself(KxGenericROI& image, int width, int height);
    // Wraps a buffer as `KxImage::SetImagePtr` does. Throws KX_ERROR_PARAMETER_1_OUT_OF_RANGE and
    // KX_ERROR_ORIGIN_IMAGE_TOO_BIG.
    static void Wrap(RegionBase& image, ImagePixels& pixels, int width, int height, void* buffer,
                     int bitsPerRow);
    // The placement of an image, which is 0 at (0, 0) afterwards: an archive tells it before the pixels.
    static GenericRoiExtent TakePlacement(RegionBase& image);
    // Lets go of the children, the mask and the pixels.
    static void MakeEmpty(RegionBase& image, ImagePixels& pixels);

    // Gives `copy` the pixels of `source`, or a view on the same buffer of the caller, and the size of a
    // pixel. A buffer of the size of the source is kept. Throws KX_ERROR_ALLOCATION.
    static void CopyPixels(const RegionBase& source, const ImagePixels& pixels, const UntypedRegion& copy);

    // Address of the byte that holds a pixel; null when there are no pixels.
    static std::uint8_t* AddressOf(const ImagePixels& pixels, int x, int y);
    // The bit of that byte, counted from the most significant one, where the pixel starts.
    static unsigned BitOf(const ImagePixels& pixels, int x, int y);

    // The exported members of that name, for an image of that class.
    static RegionBase* CopyTo(const RegionBase& source, const ImagePixels& pixels,
                              const UntypedRegion& destination, bool recursive,
                              const RegionClass& imageClass) noexcept;
    static void SetSize(RegionBase& image, ImagePixels& pixels, int width, int height) noexcept;
    static void SetImagePtr(RegionBase& image, ImagePixels& pixels, int width, int height, void* buffer,
                            int bitsPerRow) noexcept;
    static void SetPixelDimensions(ImagePixels& pixels, float width, float height, KxMeasurementUnit* unit);
    static void SetResolution(ImagePixels& pixels, float x, float y, KxMeasurementUnit* unit);
    static void SwapPixels(ImagePixels& pixels, ImagePixels& other) noexcept;
};

}  // namespace Zelkor::Kalvo
