#pragma once
// A rectangular region of interest: a view on the pixels of a parent image or region.

#include "kalvo/image/kxgenericroi.h"
#include "kalvo/image/kximagefiletypes.h"
#include "kalvo/pixels/kxpixellist.h"
#include "kalvo/vectors/kxvector.h"

class KxBW8Vector;
class KxC24Vector;

/// A region over pixels of type `Pixel`. Processing functions take regions, so the same code works on a whole
/// image, which is a region too, and on part of one.
///
/// Pixel (x, y) of a region is pixel (origin + (x, y)) of its parent, up to the top image. While a region has
/// a parent it is kept inside it: sizes are clipped silently, an origin outside the parent is an error
/// (`KX_ERROR_ROI_OUT_OF_PARENT`) that makes the region cover the whole parent.
template <class Pixel>
class KX_API KxROI : public KxGenericROI {
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
    /// which belongs to the caller. Returns the destination.
    KxROI* CopyTo(KxROI* pDestination = nullptr, int bRecursive = 1) const;
    /// A new region, or image, equal to this one; it belongs to the caller.
    virtual KxROI* CreateROIClone(int bRecursive = 1) const;

    /// Appends the region to the children of `pParent`, takes its colour system, and clips the region to it.
    /// Fails with `KX_ERROR_ROI_HAS_PARENT`, `KX_ERROR_CANNOT_APPLY_TO_IMAGE`, or
    /// `KX_ERROR_CANNOT_MODIFY_ROI` when `pParent` is the region itself or lies below it.
    virtual void Attach(KxROI* pParent);
    /// Leaves the parent; placement and children stay. Fails with `KX_ERROR_CANNOT_APPLY_TO_IMAGE`.
    virtual void Detach();

    /// Place and size the region, in pixels of the parent. What lies left of or above the parent is cut off.
    /// Fail with `KX_ERROR_CANNOT_APPLY_TO_IMAGE`, `KX_ERROR_PARAMETER_1_OUT_OF_RANGE` (negative size),
    /// `KX_ERROR_ROI_OUT_OF_PARENT`.
    void SetOrgX(int n32OrgX);
    void SetOrgY(int n32OrgY);
    void SetWidth(int n32Width);
    void SetHeight(int n32Height);
    void SetPlacement(int n32OrgX, int n32OrgY, int n32Width, int n32Height);
    void SetSize(const KxGenericROI* pOther) override;
    void SetSize(KxGenericROI* pOther) override;
    void SetSize(int n32Width, int n32Height) override;

    /// Address of pixel (x, y), which must lie inside; null when there are no pixels. Pixels of `KxYUY2` have
    /// no address of their own: `KX_ERROR_UNSUPPORTED_IMAGE_TYPE`, null.
    const Pixel* GetImagePtr(int n32X = 0, int n32Y = 0) const;
    Pixel* GetImagePtr(int n32X = 0, int n32Y = 0);
    /// The value of pixel (x, y). The point must lie inside the region, and the region must have pixels: for
    /// speed, neither is checked.
    Pixel GetPixel(int n32X, int n32Y) const;
    /// Stores the value of pixel (x, y), where the same must hold.
    void SetPixel(Pixel value, int n32X, int n32Y);

    /// The mask: horizontal runs, row by row from the top, of the pixels that count. Empty: all count. It
    /// does not follow when the region moves or shrinks, or when its image gets another buffer: runs then lie
    /// outside the region, or point into memory that is gone. Offsets never do the latter, and move with the
    /// region: call `SetMaskOffsets(1)` first, and build the mask anew after a change of size or of the row
    /// pitch.
    const KxVectorTemplate<KxRun>& GetMaskRuns() const { return m_MaskRuns; }
    /// Whether runs are built as byte offsets from pixel (0, 0) (not 0) or as addresses (0, the default). Set
    /// it before building the mask.
    int GetMaskOffsets() const { return m_bMaskOffsets; }
    void SetMaskOffsets(int bMaskOffsets) { m_bMaskOffsets = bMaskOffsets; }
    /// Removes the mask.
    void ResetMask() override;
    /// A rectangle, clipped to the region; the size of the region when width or height is below 1.
    void SetRectangleMask(int n32X, int n32Y, int n32Width, int n32Height) override;
    /// The ellipse inscribed in a box inside the region; the whole region when width or height is below 1.
    void SetEllipseMask(int n32X, int n32Y, int n32Width, int n32Height) override;
    /// The ellipse inscribed in the region without an inner one of `f32Ratio` times its size.
    void SetRingMask(float f32Ratio);
    /// Accepted and ignored.
    void SetBinarizedMask(unsigned int un32Threshold) override;

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

    /// The part of the frame at pixel (x, y) of the surface, by the mapping of `DrawFrame`. Handles reach 4
    /// pixels around their points; where they overlap, north and south win, then west and east. Remembers the
    /// point as the one that `Drag` moves the region by.
    KX_HANDLES HitTest(int n32X, int n32Y, float f32ZoomX, float f32ZoomY, float f32PanX, float f32PanY);
    /// Moves what `HitTest` found to pixel (x, y) of the surface. The opposite sides stay where they are, and
    /// at least one pixel of the region remains; it is placed by the rules of `SetOrgX` and its siblings.
    void Drag(KX_HANDLES eHandle, int n32X, int n32Y, float f32ZoomX, float f32ZoomY, float f32PanX,
              float f32PanY);

    const KxGenericROI* GetTopParent() const override;
    KxGenericROI* GetTopParent() override;
    void SetColorSystem() override;
    using KxGenericROI::SetColorSystem;
    void GetPixelDimensions(float& f32Width, float& f32Height,
                            const KxMeasurementUnit*& pUnit) const override;
    void GetResolution(float& f32X, float& f32Y, const KxMeasurementUnit*& pUnit) const override;
    void SetPixelDimensions(float f32Width, float f32Height, KxMeasurementUnit* pUnit) override;
    void SetResolution(float f32X, float f32Y, KxMeasurementUnit* pUnit) override;
    int IsAnROI() override;
    KX_IMAGE_TYPES GetType() override;
    int GetBitsPerPixel() const override;
    int GetPlanesPerPixel() const override;
    int Void() const override;
    const void* GetGenericImagePtr(int n32X, int n32Y) const override;
    void* GetGenericImagePtr(int n32X, int n32Y) override;
    int GetColPitch() const override;
    int GetRowPitch() const override;
    int GetImgPitch() const override;
    void VersionLessPartialSerialize(KxSerializer* pSerializer, unsigned int un32Align) override;
    void VersionLessPartialSerialize(std::FILE* pFile, int bWriting, unsigned int un32Align) override;
    void PartialSerialize(KxSerializer* pSerializer) override;
    void PartialSerialize(std::FILE* pFile, int bWriting) override;
    void Serialize(KxSerializer* pSerializer, unsigned int un32Version) override;
    KxSerializer::ObjectType GetSerializationType() override;
    void DumpToStream(std::ostream& stream, int n32Indent) const override;
    void DrawMask(HDC hDC, float f32ZoomX, float f32ZoomY, float f32PanX, float f32PanY) override;
    void Draw(Zelkor::DrawAdapter* pSurface, float f32ZoomX, float f32ZoomY, float f32PanX,
              float f32PanY) override;
    void Draw(HDC hDC, float f32ZoomX, float f32ZoomY) override;
    /// Draw a region of `KxBW8` pixels through a table of 256 greys or colours; nothing when it is void.
    /// Clear the error slot first. Fail with `KX_ERROR_UNSUPPORTED_IMAGE_TYPE` (other pixels), or as
    /// `KxDrawImageInWindow` does.
    void Draw(HDC hDC, KxBW8Vector* pLut, float f32ZoomX, float f32ZoomY);
    void Draw(HDC hDC, KxC24Vector* pLut, float f32ZoomX, float f32ZoomY);
    unsigned int GetBitIndex(int n32X, int n32Y) const override;
    void NotVoid() const override;
    int GetSkip() const override;
    short GetBitsPerPixelCode() const override;
    short GetDataType() override;

protected:
    /// Leaves the parent, lets go of the children and the mask.
    void MakeEmpty();
    /// Copies everything but the pixels of an image.
    void CopyRegionTo(KxROI& destination, bool recursive) const;

private:
    friend class Zelkor::Kalvo::RecordTransfer;
    template <class>
    friend class KxImage;

    /// The fields that an archive holds after those of every object.
    void SerializeFields(KxSerializer& serializer, unsigned version);

    KxVectorTemplate<KxRun> m_MaskRuns;
    std::uint32_t m_aun32ReservedROI[2] = {};
    std::int32_t m_bMaskOffsets = 0;
    std::int32_t m_n32CursorX = 0;
    std::int32_t m_n32CursorY = 0;
};

namespace Zelkor::Kalvo {

/// 1 when `pPixel` addresses a pixel inside `pROI`, else 0.
KX_API int IsPointerInROI(const KxBW8* pPixel, KxROI<KxBW8>* pROI);

}  // namespace Zelkor::Kalvo

#define KX_DECLARE(Pixel) extern template class KxROI<Pixel>;
KX_FOR_EACH_PIXEL(KX_DECLARE)
#undef KX_DECLARE
