#pragma once
// A rectangular region of interest: a view on the pixels of a parent image or region.

#include "kalvo/image/kximagefiletypes.h"
#include "kalvo/image/kxregionbase.h"
#include "kalvo/pixels/kxpixellist.h"

class KxBW8Vector;
class KxC24Vector;

/// A region over pixels of type `Pixel`. Processing functions take regions, so the same code works on a whole
/// image, which is a region too, and on part of one.
///
/// Pixel (x, y) of a region is pixel (origin + (x, y)) of its parent, up to the top image. While a region has
/// a parent it is kept inside it: sizes are clipped silently, an origin outside the parent is an error
/// (`KX_ERROR_ROI_OUT_OF_PARENT`) that makes the region cover the whole parent.
/// @code
/// KxImage<KxBW8> image(640, 480);
/// KxROI<KxBW8> region(&image, 100, 50, 200, 100);  // at column 100, row 50
/// for (int y = 0; y < region.GetHeight(); ++y)
///     for (int x = 0; x < region.GetWidth(); ++x) region.SetPixel(255 - region.GetPixel(x, y), x, y);
/// @endcode
template <class Pixel>
class KX_API KxROI : public Zelkor::Kalvo::RegionBase {
public:
    using PixelType = Pixel;

    /// A detached region of size 0 in the default colour system of the pixel type.
    KxROI();
    /// A region attached to `pParent`; the origin is taken as it is and must lie inside, the size is clipped.
    KxROI(KxROI* pParent, int n32OrgX, int n32OrgY, int n32Width, int n32Height);
    /// Copies as `CopyTo` does; whether with children says `KxSetRecursiveCopyBehavior`.
    KxROI(const KxROI& other);
    KxROI& operator=(const KxROI& other);
    ~KxROI() override;

    /// Makes `pDestination` a copy of this region: attached to the same parent, with the same placement,
    /// texts, colour system and mask, and with clones of the children when `bRecursive` is not 0. Its own
    /// children are detached. The clones belong to whoever owns the destination. Null makes a new region,
    /// which belongs to the caller. Returns the destination, which without memory is as it was, with
    /// `KX_ERROR_ALLOCATION` in the slot, or null when it could not be made.
    KxROI* CopyTo(KxROI* pDestination = nullptr, int bRecursive = 1) const;
    /// A new region, or image, equal to this one; it belongs to the caller.
    virtual KxROI* CreateROIClone(int bRecursive = 1) const;

    /// Appends the region to the children of `pParent`, takes its colour system, and clips the region to it.
    /// Null clips the children of a region without parent to it, and nothing else.
    /// Fails with `KX_ERROR_ROI_HAS_PARENT`, `KX_ERROR_CANNOT_APPLY_TO_IMAGE`, or
    /// `KX_ERROR_CANNOT_MODIFY_ROI` when `pParent` is the region itself or lies below it.
    virtual void Attach(KxROI* pParent);
    /// Leaves the parent; placement and children stay. Fails with `KX_ERROR_CANNOT_APPLY_TO_IMAGE`.
    virtual void Detach();

    using RegionBase::Draw;
    using RegionBase::SetColorSystem;
    using RegionBase::SetSize;

    /// Address of pixel (x, y), which must lie inside; null when there are no pixels. Pixels of `KxYUY2` have
    /// no address of their own: `KX_ERROR_UNSUPPORTED_IMAGE_TYPE`, null.
    const Pixel* GetImagePtr(int n32X = 0, int n32Y = 0) const;
    Pixel* GetImagePtr(int n32X = 0, int n32Y = 0);
    /// The value of pixel (x, y). The point must lie inside the region, and the region must have pixels: for
    /// speed, neither is checked.
    Pixel GetPixel(int n32X, int n32Y) const;
    /// Stores the value of pixel (x, y), where the same must hold.
    void SetPixel(Pixel value, int n32X, int n32Y);

    /// Loads an image file of the region's size and returns the format found. Failures end in the error slot
    /// and leave the pixels as they were unless reading them failed: `KX_ERROR_FILE_OPEN`,
    /// `KX_ERROR_FILE_READ`, `KX_ERROR_BAD_FILE_FORMAT`, `KX_ERROR_SIZE_MISMATCH`, and one code for each kind
    /// of file that does not fit the pixel type.
    IMAGE_FILE_TYPES Load(const char* pszPath);
    IMAGE_FILE_TYPES Load(const unsigned short* pwszPath);
    using KxGenericROI::Load;
    /// Saves the region's rectangle as an image file. Failures end in the error slot: `KX_ERROR_FILE_OPEN`,
    /// `KX_ERROR_FILE_WRITE`, `KX_ERROR_FILE_EXTENSION`, and one code for each format that does not take the
    /// pixel type.
    void Save(const char* pszPath, IMAGE_FILE_TYPES eFileType = IMAGE_FILE_AUTO) const;
    void Save(const unsigned short* pwszPath, IMAGE_FILE_TYPES eFileType = IMAGE_FILE_AUTO) const;
    using KxGenericROI::Save;

    void SetColorSystem() override;
    KX_IMAGE_TYPES GetType() override;
    int GetBitsPerPixel() const override;
    int GetPlanesPerPixel() const override;
    int Void() const override;
    void Serialize(KxSerializer* pSerializer, unsigned int un32Version) override;
    KxSerializer::ObjectType GetSerializationType() override;
    /// Draw a region of `KxBW8` pixels through a table of 256 greys or colours; nothing when it is void.
    /// Clear the error slot first. Fail with `KX_ERROR_UNSUPPORTED_IMAGE_TYPE` (other pixels), or as
    /// `KxDrawImageInWindow` does.
    void Draw(HDC hDC, KxBW8Vector* pLut, float f32ZoomX, float f32ZoomY);
    void Draw(HDC hDC, KxC24Vector* pLut, float f32ZoomX, float f32ZoomY);
    short GetBitsPerPixelCode() const override;
    short GetDataType() override;
};

namespace Zelkor::Kalvo {

/// 1 when `pPixel` addresses a pixel inside `pROI`, else 0.
KX_API int IsPointerInROI(const KxBW8* pPixel, KxROI<KxBW8>* pROI);

}  // namespace Zelkor::Kalvo

#define KX_DECLARE(Pixel) extern template class KxROI<Pixel>;
KX_FOR_EACH_PIXEL(KX_DECLARE)
#undef KX_DECLARE
