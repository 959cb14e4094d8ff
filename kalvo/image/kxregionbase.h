#pragma once
// What regions of all pixel types share beyond `KxGenericROI`: placing, the mask, the handles of their
// frames.

#include "kalvo/image/kxgenericroi.h"
#include "kalvo/vectors/kxvector.h"

namespace Zelkor::Kalvo {

/// The members of `KxROI` that do not depend on the pixel type. Programs use `KxROI`, which tells what a
/// region is, and `KxImage`.
/// @code
/// KxImage<KxBW8> image(640, 480);
/// KxROI<KxBW8> region(&image, 0, 0, 100, 100);
/// region.SetPlacement(600, 0, 100, 100);  // clipped to 40 x 100 pixels
/// region.SetEllipseMask(0, 0, 0, 0);      // of it the pixels inside an ellipse count
/// const KX_HANDLES handle = region.HitTest(639, 50, 1, 1, 0, 0);  // what the mouse points at
/// region.Drag(handle, 620, 50, 1, 1, 0, 0);                       // and where it moves it
/// @endcode
class KX_API RegionBase : public KxGenericROI {
public:
    ~RegionBase() override;

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
    /// The ellipse inscribed in the region without an inner one of `f32Ratio` times its size. A pending error
    /// stays in the slot.
    void SetRingMask(float f32Ratio);
    /// Accepted and ignored.
    void SetBinarizedMask(unsigned int un32Threshold) override;

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
    void GetPixelDimensions(float& f32Width, float& f32Height,
                            const KxMeasurementUnit*& pUnit) const override;
    void GetResolution(float& f32X, float& f32Y, const KxMeasurementUnit*& pUnit) const override;
    void SetPixelDimensions(float f32Width, float f32Height, KxMeasurementUnit* pUnit) override;
    void SetResolution(float f32X, float f32Y, KxMeasurementUnit* pUnit) override;
    int IsAnROI() override;
    const void* GetGenericImagePtr(int n32X, int n32Y) const override;
    void* GetGenericImagePtr(int n32X, int n32Y) override;
    int GetColPitch() const override;
    int GetRowPitch() const override;
    int GetImgPitch() const override;
    void VersionLessPartialSerialize(KxSerializer* pSerializer, unsigned int un32Align) override;
    void VersionLessPartialSerialize(std::FILE* pFile, int bWriting, unsigned int un32Align) override;
    void PartialSerialize(KxSerializer* pSerializer) override;
    void PartialSerialize(std::FILE* pFile, int bWriting) override;
    void DumpToStream(std::ostream& stream, int n32Indent) const override;
    void DrawMask(HDC hDC, float f32ZoomX, float f32ZoomY, float f32PanX, float f32PanY) override;
    void Draw(Zelkor::DrawAdapter* pSurface, float f32ZoomX, float f32ZoomY, float f32PanX,
              float f32PanY) override;
    void Draw(HDC hDC, float f32ZoomX, float f32ZoomY) override;
    unsigned int GetBitIndex(int n32X, int n32Y) const override;
    void NotVoid() const override;
    int GetSkip() const override;

protected:
    RegionBase();

    /// Leaves the parent, lets go of the children and the mask.
    void MakeEmpty();
    /// Attaches the region to `parent`, or clips it as it is when that is null; see `KxROI::Attach`.
    void AttachTo(RegionBase* parent);
    void DetachFromParent();
    /// The fields that an archive holds after those of every object.
    void SerializeFields(KxSerializer& serializer);

    KxVectorTemplate<KxRun> m_MaskRuns;
    std::uint32_t m_aun32ReservedROI[2] = {};
    std::int32_t m_bMaskOffsets = 0;
    std::int32_t m_n32CursorX = 0;
    std::int32_t m_n32CursorY = 0;

private:
    friend struct ImageCore;
    friend class RegionCopy;
    friend class RegionDump;
    friend class RecordTransfer;
};

}  // namespace Zelkor::Kalvo
