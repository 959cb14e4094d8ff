#pragma once
// An image: the root of a tree of regions, with pixels of its own or of the caller.

#include "kalvo/image/kximagepixels.h"
#include "kalvo/image/kxroi.h"

namespace Zelkor::Kalvo {
struct ImageCore;
}

/// An image over pixels of type `Pixel`. It owns a buffer (rows padded to multiples of 24 bytes, the first
/// pixel aligned to 32 bytes), or wraps a buffer of the caller, or is empty.
/// @code
/// KxImage<KxBW8> image(640, 480);             // pixels of its own
/// image.SetPixel(255, 10, 20);
/// KxImage<KxBW8> frame;
/// unsigned char grabbed[100 * 50];
/// frame.SetImagePtr(100, 50, grabbed, 100 * 8);  // or somebody else's, nothing is copied
/// if (image.Save("image.bmp"), KxFailure()) return;
/// @endcode
template <class Pixel>
class KX_API KxImage : public KxROI<Pixel> {
public:
    /// An empty image.
    KxImage() = default;
    /// An image with a buffer of that size; its pixels are not initialised. See `SetSize`.
    KxImage(int n32Width, int n32Height);
    /// Copies as `CopyTo` does; whether with children says `KxSetRecursiveCopyBehavior`.
    KxImage(const KxImage& other);
    KxImage& operator=(const KxImage& other);
    ~KxImage() override;

    /// Makes `pDestination` a copy of this image: a copy of an owned buffer, or another image on the same
    /// buffer of the caller; placement, texts, colour system, mask, pixel size, and with clones of the
    /// children when `bRecursive` is not 0. Null makes a new image, which belongs to the caller. Returns the
    /// destination; without memory it is empty, or null when it was to be made, with `KX_ERROR_ALLOCATION` in
    /// the slot. A destination with a buffer of the same size keeps that buffer.
    KxImage* CopyTo(KxImage* pDestination = nullptr, int bRecursive = 1) const;
    KxROI<Pixel>* CreateROIClone(int bRecursive = 1) const override;

    /// Gives the image a fresh buffer of its own and clips its children to it. Its pixels are not
    /// initialised, the bits behind the last one of each row are 0. Nothing happens when the size is the
    /// same. Fails with `KX_ERROR_PARAMETER_1_OUT_OF_RANGE` (negative size) or
    /// `KX_ERROR_ORIGIN_IMAGE_TOO_BIG` (4 GiB of pixels, or a row of 256 MiB), unchanged, and with
    /// `KX_ERROR_ALLOCATION`, empty.
    void SetSize(int n32Width, int n32Height) override;
    void SetSize(const KxGenericROI* pOther) override;
    void SetSize(KxGenericROI* pOther) override;

    /// Wraps a buffer of the caller, who keeps it alive and frees it. Null makes the image void.
    /// @param n32BitsPerRow  distance between rows in **bits**, eight times their pitch in bytes; 0 for rows
    ///                       padded to 32 bits
    void SetImagePtr(int n32Width, int n32Height, void* pPixels, int n32BitsPerRow = 0);
    /// The same with the current size.
    void SetImagePtr(void* pPixels, int n32BitsPerRow = 0);
    /// Address of pixel (x, y), which must lie inside, also of a `KxYUY2` image; null when there are no
    /// pixels.
    const Pixel* GetImagePtr(int n32X = 0, int n32Y = 0) const {
        return static_cast<const Pixel*>(GetGenericImagePtr(n32X, n32Y));
    }
    Pixel* GetImagePtr(int n32X = 0, int n32Y = 0) {
        return static_cast<Pixel*>(GetGenericImagePtr(n32X, n32Y));
    }
    /// Distance between rows in bits.
    int GetBitsPerRow() const { return m_Pixels.m_n32BitsPerRow; }

    /// Physical size of a pixel. Both 0 fail with `KX_ERROR_PIXELS_FINITE_SIZE`.
    void SetPixelDimensions(float f32Width, float f32Height, KxMeasurementUnit* pUnit) override;
    void GetPixelDimensions(float& f32Width, float& f32Height,
                            const KxMeasurementUnit*& pUnit) const override;
    /// Pixels per unit. A 0 fails with `KX_ERROR_PIXELS_FINITE_SIZE`.
    void SetResolution(float f32X, float f32Y, KxMeasurementUnit* pUnit) override;
    void GetResolution(float& f32X, float& f32Y, const KxMeasurementUnit*& pUnit) const override;

    const KxGenericROI* GetTopParent() const override { return this; }
    KxGenericROI* GetTopParent() override { return this; }
    int IsAnROI() override { return 0; }
    int Void() const override { return m_Pixels.m_pImagePtr == nullptr; }
    const void* GetGenericImagePtr(int n32X, int n32Y) const override;
    void* GetGenericImagePtr(int n32X, int n32Y) override;
    int GetRowPitch() const override { return m_Pixels.m_n32BitsPerRow / 8; }
    unsigned int GetBitIndex(int n32X, int n32Y) const override;
    using KxROI<Pixel>::PartialSerialize;
    using KxROI<Pixel>::VersionLessPartialSerialize;
    void VersionLessPartialSerialize(KxSerializer* pSerializer, unsigned int un32Align) override;
    void PartialSerialize(KxSerializer* pSerializer) override;
    void Serialize(KxSerializer* pSerializer, unsigned int un32Version) override;
    KxSerializer::ObjectType GetSerializationType() override;
    /// Not supported: throws the int 0.
    void DumpToStream(std::ostream& stream, int n32Indent) const override;
    using KxROI<Pixel>::Draw;
    /// Draw an image of `KxBW8` pixels through a table, as the members of `KxROI` do.
    void Draw(HDC hDC, KxBW8Vector* pLut, float f32ZoomX, float f32ZoomY);
    void Draw(HDC hDC, KxC24Vector* pLut, float f32ZoomX, float f32ZoomY);

    /// Exchanges the pixels of two images; see `KxSwapImages`.
    void SwapPixels(KxImage& other) noexcept;

protected:
    /// Lets go of the children, the mask and the pixels.
    void MakeEmpty();

private:
    friend struct Zelkor::Kalvo::ImageCore;

    std::uint32_t m_aun32ReservedImage[2] = {};
    Zelkor::Kalvo::ImagePixels m_Pixels{Zelkor::Kalvo::PixelTraits<Pixel>::kBitsPerPixel};
};

/// Exchange the buffers of two images of the same size, else `KX_ERROR_SIZE_MISMATCH`. Everything but the
/// pixels stays with its image.
KX_API void KxSwapImages(KxImage<KxBW8>* pImage, KxImage<KxBW8>* pOther);
KX_API void KxSwapImages(KxImage<KxBW16>* pImage, KxImage<KxBW16>* pOther);
KX_API void KxSwapImages(KxImage<KxC15>* pImage, KxImage<KxC15>* pOther);
KX_API void KxSwapImages(KxImage<KxC16>* pImage, KxImage<KxC16>* pOther);
KX_API void KxSwapImages(KxImage<KxC24>* pImage, KxImage<KxC24>* pOther);
KX_API void KxSwapImages(KxImage<KxC24A>* pImage, KxImage<KxC24A>* pOther);

#define KX_DECLARE(Pixel) extern template class KxImage<Pixel>;
KX_FOR_EACH_PIXEL(KX_DECLARE)
#undef KX_DECLARE
