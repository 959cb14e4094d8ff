#pragma once
// What images and regions share whatever their pixels: the tree, the placement, the texts, the checks.

#include <cstdint>
#include <cstdio>
#include <memory>
#include <ostream>

#include "kalvo/base/win32types.h"
#include "kalvo/frame/kxerror.h"
#include "kalvo/image/kxframe.h"
#include "kalvo/image/kxroiextent.h"
#include "kalvo/pixels/kxpixel.h"
#include "kalvo/streams/kxserializer.h"

class KxMeasurementUnit;

namespace Zelkor {
struct DrawAdapter;
namespace Kalvo {
struct RegionTree;
class RegionCopy;
class RecordTransfer;

/// How far the layout has come with a region that it moves back into its parent.
struct LayoutState {
    enum Pass : std::uint8_t { kNone, kWidth, kHeight } m_ePass = kNone;
    bool m_bInHeightPass = false;  ///< whether the parent's height was being applied, else its width
};

/// The descriptive texts of an object, each narrow and as UTF-16; null when unset.
struct RegionTexts {
    std::unique_ptr<char[]> m_pszAuthorASCII;
    std::unique_ptr<unsigned short[]> m_pszAuthorUnicode;
    std::unique_ptr<char[]> m_pszCommentASCII;
    std::unique_ptr<unsigned short[]> m_pszCommentUnicode;
    std::unique_ptr<char[]> m_pszDateASCII;
    std::unique_ptr<unsigned short[]> m_pszDateUnicode;
    std::unique_ptr<char[]> m_pszTitleASCII;
    std::unique_ptr<unsigned short[]> m_pszTitleUnicode;
};

}  // namespace Kalvo
}  // namespace Zelkor

/// Abstract base of every image and every region of interest (ROI).
///
/// Images and regions form trees: an image is a root, a region is attached below an image or another region.
/// The tree does not own its nodes, except the children that the library itself makes while it reads an
/// archive; those go with their parent. A tree is used by one thread at a time.
/// @code
/// KxImage<KxBW8> image(640, 480);
/// KxROI<KxBW8> region(&image, 10, 10, 50, 50);
/// const KxGenericROI* root = &image;
/// for (const KxGenericROI* node = root->GetFirstSubROI(); node; node = node->GetNextROI(root))
///     std::printf("%d x %d at (%d, %d)\n", node->GetWidth(), node->GetHeight(), node->GetTotalOrgX(),
///                 node->GetTotalOrgY());
/// @endcode
class KX_API KxGenericROI {
public:
    KxGenericROI(const KxGenericROI&) = delete;
    KxGenericROI& operator=(const KxGenericROI&) = delete;

    // The order of the virtual operations is part of the binary interface.

    virtual ~KxGenericROI();
    /// The image at the root of the tree; null, with `KX_ERROR_ROI_HAS_NO_PARENT`, when there is none.
    virtual const KxGenericROI* GetTopParent() const = 0;
    virtual KxGenericROI* GetTopParent() = 0;
    /// The four mask builders; see `KxROI`.
    virtual void ResetMask() = 0;
    virtual void SetRectangleMask(int n32X, int n32Y, int n32Width, int n32Height) = 0;
    virtual void SetEllipseMask(int n32X, int n32Y, int n32Width, int n32Height) = 0;
    virtual void SetBinarizedMask(unsigned int un32Threshold) = 0;
    /// Sets the default colour system of the pixel type.
    virtual void SetColorSystem() = 0;
    /// Physical size of one pixel, and its unit, which belongs to the image. Nothing is stored when the
    /// region has no top image (`KX_ERROR_ROI_HAS_NO_PARENT`); the same holds for the three below.
    virtual void GetPixelDimensions(float& f32Width, float& f32Height,
                                    const KxMeasurementUnit*& pUnit) const = 0;
    /// Pixels per unit, and that unit.
    virtual void GetResolution(float& f32X, float& f32Y, const KxMeasurementUnit*& pUnit) const = 0;
    virtual void SetPixelDimensions(float f32Width, float f32Height, KxMeasurementUnit* pUnit) = 0;
    virtual void SetResolution(float f32X, float f32Y, KxMeasurementUnit* pUnit) = 0;
    /// 1 for a region, 0 for an image.
    virtual int IsAnROI() = 0;
    /// The numbers of the pixel type.
    virtual KX_IMAGE_TYPES GetType() = 0;
    virtual int GetBitsPerPixel() const = 0;
    virtual int GetPlanesPerPixel() const = 0;
    /// Fails with `KX_ERROR_SIZE_MISMATCH`, untraced, when widths or heights differ. Like every check it
    /// stores its code (0 when it passes) and returns it.
    virtual short SameSize(const KxGenericROI* pOther) const;
    /// 1 when pixel (0, 0) has no address, else 0.
    virtual int Void() const = 0;
    /// Takes the size of `pOther`.
    virtual void SetSize(const KxGenericROI* pOther) = 0;
    virtual void SetSize(KxGenericROI* pOther) = 0;
    /// Sizes a region within its parent, or an image with a fresh buffer.
    virtual void SetSize(int n32Width, int n32Height) = 0;
    /// Address of pixel (x, y), which must lie inside; null when there are no pixels.
    virtual const void* GetGenericImagePtr(int n32X, int n32Y) const = 0;
    virtual void* GetGenericImagePtr(int n32X, int n32Y) = 0;
    /// Bytes from one pixel to the next; 0 for bilevel.
    virtual int GetColPitch() const = 0;
    /// Bytes from one row to the next; 0 when there is no top image.
    virtual int GetRowPitch() const = 0;
    /// Row pitch times height.
    virtual int GetImgPitch() const = 0;
    /// Exchanges size and pixels without header and pitch, rows padded to `un32Align` bytes (1 or more).
    /// Exceptions pass through: those of the stream, and `KX_ERROR_SERIALIZER_NOT_OPEN` without one. The FILE
    /// form ends in the error slot. The same holds below.
    virtual void VersionLessPartialSerialize(KxSerializer* pSerializer, unsigned int un32Align) = 0;
    virtual void VersionLessPartialSerialize(std::FILE* pFile, int bWriting, unsigned int un32Align) = 0;
    /// Exchanges the placement of a region, or size, pitch and pixels of an image, without header.
    virtual void PartialSerialize(KxSerializer* pSerializer) = 0;
    virtual void PartialSerialize(std::FILE* pFile, int bWriting) = 0;
    /// Exchanges the record of the object without its header. Exceptions pass through.
    /// @param un32Version  the version of the record, 0 to 4
    virtual void Serialize(KxSerializer* pSerializer, unsigned int un32Version);
    /// The object type in the header of the archived object; throws `KX_ERROR_NEEDS_SPECIALIZATION` for the
    /// float pixel types, which have none.
    virtual KxSerializer::ObjectType GetSerializationType() = 0;
    /// Version of the record that `Save` writes: 4.
    virtual unsigned int GetCurrentVersion() const;
    /// Writes the fields of the object and of its children as text, each line indented by `n32Indent` blanks.
    virtual void DumpToStream(std::ostream& stream, int n32Indent) const;
    /// Draws the runs of the mask with the pen of the device context, the rows of the device between the top
    /// and the bottom edge of each. Unlike that of `Draw` the pan counts in pixels of the image. A vertical
    /// zoom of 0 stands for the horizontal one here and below.
    virtual void DrawMask(HDC hDC, float f32ZoomX, float f32ZoomY, float f32PanX, float f32PanY) = 0;
    /// Hands the region to a surface, opaque, panned by pixels of the surface. Which types make a picture is
    /// up to the surface. An exception of the surface ends in the error slot.
    virtual void Draw(Zelkor::DrawAdapter* pSurface, float f32ZoomX, float f32ZoomY, float f32PanX,
                      float f32PanY);
    /// Draws at (0, 0) of a device context; nothing when the region is void, or its pixels are of a type that
    /// `Zelkor::GDIDrawAdapter` does not draw.
    virtual void Draw(HDC hDC, float f32ZoomX, float f32ZoomY) = 0;
    /// Index, from the most significant bit, of the bit where pixel (x, y) starts in its byte.
    virtual unsigned int GetBitIndex(int n32X, int n32Y) const = 0;
    /// Stores `KX_ERROR_IMAGE_MEMORY_ACCESS` when pixel (0, 0) has no address, else nothing.
    virtual void NotVoid() const = 0;
    /// Bytes between the end of a row of the region and the start of its next row.
    virtual int GetSkip() const = 0;
    /// One bit for the storage width, and one for the data type, of the pixels.
    virtual short GetBitsPerPixelCode() const = 0;
    virtual short GetDataType() = 0;
    /// Checks like `SameSize`, but traced: the data type (`KX_ERROR_INVALID_DATA_TYPE`), ...
    virtual short SameDataType(KxGenericROI* pOther);
    /// ... all five checks in turn, stopping at the first that fails, ...
    virtual short SameSizeDepthType(KxGenericROI* pOther, short n16DepthMask, short n16DataTypeMask);
    /// ... bits per pixel (`KX_ERROR_DEPTH_MISMATCH`), ...
    virtual short SameDepth(KxGenericROI* pOther);
    /// ... the storage width against a set of widths (`KX_ERROR_INVALID_DEPTH`), ...
    virtual short PermittedDepth(short n16Mask);
    /// ... and the data type against a set of types (`KX_ERROR_INVALID_DATA_TYPE`).
    virtual short PermittedDataType(short n16Mask);

    /// Position of the top-left pixel in the parent, and size, in pixels.
    int GetOrgX() const { return m_n32OrgX; }
    int GetOrgY() const { return m_n32OrgY; }
    int GetWidth() const { return m_n32Width; }
    int GetHeight() const { return m_n32Height; }
    Zelkor::Kalvo::GenericRoiExtent GetExtent() const { return *this; }

    /// Position in the top image; the origin of the root does not count.
    int GetTotalOrgX() const;
    int GetTotalOrgY() const;
    /// Size of the top image; 0 with `KX_ERROR_ROI_HAS_NO_PARENT` when there is none.
    int GetTotalWidth() const;
    int GetTotalHeight() const;

    /// What the components of the pixels mean.
    void SetColorSystem(KX_COLOR_SYSTEM eColorSystem) { m_eColorSystem = eColorSystem; }
    KX_COLOR_SYSTEM GetColorSystem() const { return m_eColorSystem; }

    /// The neighbours in the tree; null when there is none.
    const KxGenericROI* GetParent() const { return m_pParent; }
    KxGenericROI* GetParent() { return m_pParent; }
    const KxGenericROI* GetNextSiblingROI() const { return m_pSibling; }
    KxGenericROI* GetNextSiblingROI() { return m_pSibling; }
    const KxGenericROI* GetFirstSubROI() const { return m_pFirstSubROI; }
    KxGenericROI* GetFirstSubROI() { return m_pFirstSubROI; }

    /// The next object depth-first, parents before children. Started at the first child of a root with
    /// `pStop` = that root, repeated calls visit every descendant once and then return null.
    const KxGenericROI* GetNextROI(const KxGenericROI* pStop) const;
    KxGenericROI* GetNextROI(KxGenericROI* pStop);

    /// Descriptive texts, narrow and UTF-16, kept apart and never converted. They belong to the object; null
    /// when unset. Setting copies the text, null clears it; `KX_ERROR_ALLOCATION` leaves it null.
    const char* GetAuthor() const { return m_Texts.m_pszAuthorASCII.get(); }
    const unsigned short* GetAuthorUnicode() const { return m_Texts.m_pszAuthorUnicode.get(); }
    void SetAuthor(const char* pszText);
    void SetAuthor(const unsigned short* pwszText);
    const char* GetComment() const { return m_Texts.m_pszCommentASCII.get(); }
    const unsigned short* GetCommentUnicode() const { return m_Texts.m_pszCommentUnicode.get(); }
    void SetComment(const char* pszText);
    void SetComment(const unsigned short* pwszText);
    const char* GetDate() const { return m_Texts.m_pszDateASCII.get(); }
    const unsigned short* GetDateUnicode() const { return m_Texts.m_pszDateUnicode.get(); }
    void SetDate(const char* pszText);
    void SetDate(const unsigned short* pwszText);
    const char* GetTitle() const { return m_Texts.m_pszTitleASCII.get(); }
    const unsigned short* GetTitleUnicode() const { return m_Texts.m_pszTitleUnicode.get(); }
    void SetTitle(const char* pszText);
    void SetTitle(const unsigned short* pwszText);

    /// Draws the outline of the region in the current pen, and eight handles filled with white when
    /// `bHandles` is not 0. Pixel (x, y) of the image lies at ((x + panX) x zoomX, (y + panY) x zoomY).
    /// @param f32ZoomY  0 for the same as `f32ZoomX`
    void DrawFrame(Zelkor::DrawAdapter* pSurface, KX_FRAME_POSITION ePosition, int bHandles, float f32ZoomX,
                   float f32ZoomY, float f32PanX, float f32PanY);
    void DrawFrame(HDC hDC, KX_FRAME_POSITION ePosition, int bHandles, float f32ZoomX, float f32ZoomY,
                   float f32PanX, float f32PanY);

    /// Hands a heap object over to its parent, which destroys it when it is emptied or destroyed itself.
    void SetAllocated() { m_bAllocated = 1; }

    /// Writes header and record to an archive. Failures end in the error slot, and the stream returns to
    /// where it was: `KX_ERROR_SERIALIZER_NOT_OPEN` (null), `KX_ERROR_NOT_OPEN_FOR_WRITE`,
    /// `KX_ERROR_FILE_WRITE` (also for more than 1000 levels of children), `KX_ERROR_NEEDS_SPECIALIZATION`
    /// (float pixels), `KX_ERROR_IMAGE_MEMORY_ACCESS` (an image without pixels, or with rows that overlap).
    void Save(KxSerializer* pSerializer) const;
    /// The same to an open file, which stays open after the object.
    void Save(std::FILE* pFile) const;
    /// Replaces the object by the next one of an archive, children included; a region leaves its parent.
    /// Failures end in the error slot, the stream returns to the header, and the object is left as it was
    /// (no header of this type there) or empty: `KX_ERROR_SERIALIZER_NOT_OPEN` (null),
    /// `KX_ERROR_NOT_OPEN_FOR_READ`, `KX_ERROR_BAD_FILE_FORMAT`, `KX_ERROR_WRONG_OBJECT_TYPE` (also when
    /// fewer children follow than declared), `KX_ERROR_UNSUPPORTED_FILE_VERSION`, `KX_ERROR_FILE_READ`,
    /// `KX_ERROR_ALLOCATION`. A child that cannot be read ends the list of children of a region, which then
    /// reads its own fields from wrong bytes, and fails an image; either way its code is left. A region
    /// placed beyond its parent covers it instead and leaves `KX_ERROR_ROI_OUT_OF_PARENT`.
    void Load(KxSerializer* pSerializer);
    /// The same from an open file, which stays open after the object.
    void Load(std::FILE* pFile);

    /// Loads an image file into the first of `KxBW1`, `KxBW8`, `KxBW16`, `KxBW32`, `KxC24`, `KxC15`, `KxC16`
    /// that takes it. The image belongs to the caller; null when no type takes the file, with the code of the
    /// last attempt in the slot, or when memory runs out (`KX_ERROR_ALLOCATION`). Nothing is traced.
    static KxGenericROI* CreateImageFromFile(const char* pszPath);

    /// 1 when `pChild` is in the child list of `pParent`, else 0. A list with a wrong parent link or a child
    /// that occurs twice is reported as `KX_ERROR_CORRUPTED_HIERARCHY` and ends the process.
    static int DoesContainChild(const KxGenericROI* pParent, const KxGenericROI* pChild);
    /// Checks the links of `pObject` with its parent and of its whole subtree, ending the process as above.
    static void CheckParentChildrenConsistency(const KxGenericROI* pObject);

protected:
    KxGenericROI();

    /// Frees the texts; links and placement stay.
    void MakeEmpty();

private:
    friend struct Zelkor::Kalvo::RegionTree;
    friend class Zelkor::Kalvo::RegionCopy;
    friend class Zelkor::Kalvo::RecordTransfer;

    /// The fields before and after the children in the record of every object.
    void SerializeTexts(KxSerializer& serializer);
    void SerializePlacement(KxSerializer& serializer);

    Zelkor::Kalvo::RegionTexts m_Texts;
    KxGenericROI* m_pPreviousSibling = nullptr;  // for the first child the last one
    Zelkor::Kalvo::LayoutState m_LayoutState;

protected:
    KxGenericROI* m_pParent = nullptr;
    KxGenericROI* m_pSibling = nullptr;
    KxGenericROI* m_pFirstSubROI = nullptr;
    std::int32_t m_n32OrgX = 0;
    std::int32_t m_n32OrgY = 0;
    std::int32_t m_n32Width = 0;
    std::int32_t m_n32Height = 0;
    KX_COLOR_SYSTEM m_eColorSystem = KX_COLOR_SYSTEM_NONE;
    std::int32_t m_bAllocated = 0;
};

/// Writes a banner and the dump of `region`.
KX_API std::ostream& operator<<(std::ostream& stream, const KxGenericROI& region);
