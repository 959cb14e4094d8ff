// Images: buffers, pixel addresses at the root of the tree, copies, physical pixel size.

#include "kalvo/image/kximage.h"

#include <cstring>
#include <limits>
#include <string>
#include <utility>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/kxlibrary.h"
#include "kalvo/image/pixelblock.h"
#include "kalvo/image/regioncopy.h"
#include "kalvo/image/regiontree.h"
#include "kalvo/vectors/vectorcore.h"

using namespace Zelkor::Kalvo;

namespace {

bool FitsInt32(std::int64_t value) { return value <= std::numeric_limits<std::int32_t>::max(); }

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

template <class Pixel>
void SwapImages(KxImage<Pixel>* image, KxImage<Pixel>* other, const std::string& pixelName) {
    AtBoundary(nullptr, [&] {
        KxOk();
        if (image->SameSize(other))
            KxTraceError(("KxSwapImages ( " + pixelName + ")").c_str());
        else
            image->SwapPixels(*other);
    });
}

}  // namespace

template <class Pixel>
KxImage<Pixel>::KxImage(int n32Width, int n32Height) {
    SetSize(n32Width, n32Height);
}

template <class Pixel>
KxImage<Pixel>::KxImage(const KxImage& other) : KxROI<Pixel>() {
    other.CopyTo(this, KxGetRecursiveCopyBehavior());
}

template <class Pixel>
KxImage<Pixel>& KxImage<Pixel>::operator=(const KxImage& other) {
    other.CopyTo(this, KxGetRecursiveCopyBehavior());
    return *this;
}

template <class Pixel>
KxImage<Pixel>::~KxImage() {
    MakeEmpty();
}

template <class Pixel>
void KxImage<Pixel>::MakeEmpty() {
    KxROI<Pixel>::MakeEmpty();
    Resize(0, 0);
}

template <class Pixel>
KxImage<Pixel>* KxImage<Pixel>::CopyTo(KxImage* pDestination, int bRecursive) const {
    KxImage* result = pDestination;
    AtBoundary("KxImage::CopyTo", [&] {
        if (pDestination == this) return;
        Undo undo([&] {
            if (pDestination) pDestination->MakeEmpty();
        });
        auto copy = std::make_unique<KxImage>();
        RegionCopy::Build(*this, *copy, bRecursive, pDestination);
        KxImage& holder = pDestination ? *pDestination : *copy;
        CopyPixels(*this, holder);
        if (!this->m_bMaskOffsets) RebaseRuns(copy->m_MaskRuns, m_pImagePtr, holder.m_pImagePtr);
        if (pDestination) {
            RegionCopy::Replace(*this, *copy, *pDestination);
        } else {
            RegionCopy::Place(*this, *copy);
            result = copy.release();
        }
        undo.Keep();
    });
    return result;
}

template <class Pixel>
void KxImage<Pixel>::CopyPixels(const KxImage& source, KxImage& copy) {
    constexpr int kBits = PixelTraits<Pixel>::kBitsPerPixel;
    if (!source.m_pBuffer) {
        copy.m_pBuffer.reset();
        copy.m_pImagePtr = source.m_pImagePtr;
        copy.m_n32BitsPerRow = source.m_n32BitsPerRow;
    } else {
        const int width = source.m_n32Width, height = source.m_n32Height;
        if (!copy.m_pBuffer || copy.m_n32Width != width || copy.m_n32Height != height) {
            copy.m_pBuffer.reset();
            copy.m_pImagePtr = nullptr;
            copy.TakeBlock(width, height);
        }
        const std::int32_t rowBits = PixelBlock::RowBits(width, height, kBits);
        std::memcpy(copy.m_pImagePtr, source.m_pImagePtr, PixelBlock::Bytes(rowBits, height));
        copy.m_n32BitsPerRow = rowBits;
    }
    copy.m_PixelWidth = source.m_PixelWidth;
    copy.m_PixelHeight = source.m_PixelHeight;
}

template <class Pixel>
KxROI<Pixel>* KxImage<Pixel>::CreateROIClone(int bRecursive) const {
    return CopyTo(nullptr, bRecursive);
}

template <class Pixel>
void KxImage<Pixel>::SetSize(int n32Width, int n32Height) {
    AtBoundary(nullptr, [&] { Resize(n32Width, n32Height); });
}

template <class Pixel>
void KxImage<Pixel>::SetSize(const KxGenericROI* pOther) {
    SetSize(pOther->GetWidth(), pOther->GetHeight());
}

template <class Pixel>
void KxImage<Pixel>::SetSize(KxGenericROI* pOther) {
    SetSize(pOther->GetWidth(), pOther->GetHeight());
}

template <class Pixel>
void KxImage<Pixel>::Resize(int width, int height) {
    if (width == this->m_n32Width && height == this->m_n32Height) return;
    AtTracePoint("KxImage::SetSize", [&] {
        const std::int32_t rowBits = PixelBlock::RowBits(width, height, PixelTraits<Pixel>::kBitsPerPixel);
        VectorCore<KxRun>::SetCapacity(this->m_MaskRuns, 0);
        this->m_n32Width = width;
        this->m_n32Height = height;
        RegionTree::ClipChildren(*this);
        m_n32BitsPerRow = rowBits;
        m_pBuffer.reset();
        m_pImagePtr = nullptr;
        if (width == 0 || height == 0) return;
        Undo undo([&] { this->m_n32Width = this->m_n32Height = 0; });
        TakeBlock(width, height);
        undo.Keep();
    });
}

template <class Pixel>
void KxImage<Pixel>::TakeBlock(int width, int height) {
    PixelBlock block = PixelBlock::Allocate(width, height, PixelTraits<Pixel>::kBitsPerPixel);
    m_pBuffer = std::move(block.memory);
    m_pImagePtr = block.firstPixel;
}

template <class Pixel>
void KxImage<Pixel>::SetImagePtr(int n32Width, int n32Height, void* pPixels, int n32BitsPerRow) {
    constexpr const char* kTraceName = "KxImage::SetImagePtr";
    if (n32Width < 0 || n32Height < 0) return Report(KX_ERROR_PARAMETER_1_OUT_OF_RANGE, kTraceName);
    const std::int64_t bitsPerRow =
        n32BitsPerRow ? n32BitsPerRow
                      : (std::int64_t{n32Width} * PixelTraits<Pixel>::kBitsPerPixel + 31) / 32 * 32;
    if (!FitsInt32(bitsPerRow)) return Report(KX_ERROR_ORIGIN_IMAGE_TOO_BIG, kTraceName);
    this->m_n32Width = n32Width;
    this->m_n32Height = n32Height;
    RegionTree::ClipChildren(*this);
    m_pBuffer.reset();
    m_pImagePtr = static_cast<std::uint8_t*>(pPixels);
    m_n32BitsPerRow = static_cast<std::int32_t>(bitsPerRow);
}

template <class Pixel>
void KxImage<Pixel>::SetImagePtr(void* pPixels, int n32BitsPerRow) {
    SetImagePtr(this->m_n32Width, this->m_n32Height, pPixels, n32BitsPerRow);
}

template <class Pixel>
const void* KxImage<Pixel>::GetGenericImagePtr(int n32X, int n32Y) const {
    if (!m_pImagePtr) return nullptr;
    const std::int64_t column = std::int64_t{n32X} * PixelTraits<Pixel>::kBitsPerPixel / 8;
    return m_pImagePtr + column + std::int64_t{n32Y} * (m_n32BitsPerRow / 8);
}

template <class Pixel>
void* KxImage<Pixel>::GetGenericImagePtr(int n32X, int n32Y) {
    return const_cast<void*>(static_cast<const KxImage&>(*this).GetGenericImagePtr(n32X, n32Y));
}

template <class Pixel>
unsigned int KxImage<Pixel>::GetBitIndex(int n32X, int n32Y) const {
    const std::int64_t firstBit =
        std::int64_t{n32X} * PixelTraits<Pixel>::kBitsPerPixel + std::int64_t{n32Y} * m_n32BitsPerRow;
    return static_cast<unsigned>(firstBit & 7);
}

template <class Pixel>
void KxImage<Pixel>::SetResolution(float f32X, float f32Y, KxMeasurementUnit* pUnit) {
    if (f32X == 0 || f32Y == 0) return Report(KX_ERROR_PIXELS_FINITE_SIZE, "KxGenericImage::SetResolution");
    m_PixelWidth.SetValue(1 / f32X, pUnit);
    m_PixelHeight.SetValue(1 / f32Y, pUnit);
}

template <class Pixel>
void KxImage<Pixel>::GetResolution(float& f32X, float& f32Y, const KxMeasurementUnit*& pUnit) const {
    f32X = 1 / m_PixelWidth.GetValue();
    f32Y = 1 / m_PixelHeight.GetValue();
    pUnit = m_PixelWidth.GetUnit();
}

template <class Pixel>
void KxImage<Pixel>::SetPixelDimensions(float f32Width, float f32Height, KxMeasurementUnit* pUnit) {
    if (f32Width == 0 && f32Height == 0)
        return Report(KX_ERROR_PIXELS_FINITE_SIZE, "KxImage::SetPixelDimensions");
    m_PixelWidth.SetValue(f32Width, pUnit);
    m_PixelHeight.SetValue(f32Height, pUnit);
}

template <class Pixel>
void KxImage<Pixel>::GetPixelDimensions(float& f32Width, float& f32Height,
                                        const KxMeasurementUnit*& pUnit) const {
    f32Width = m_PixelWidth.GetValue();
    f32Height = m_PixelHeight.GetValue();
    pUnit = m_PixelWidth.GetUnit();
}

template <class Pixel>
void KxImage<Pixel>::DumpToStream(std::ostream&, int) const {
    throw 0;
}

template <class Pixel>
void KxImage<Pixel>::SwapPixels(KxImage& other) noexcept {
    std::swap(m_pBuffer, other.m_pBuffer);
    std::swap(m_pImagePtr, other.m_pImagePtr);
}

#define KX_INSTANTIATE(Pixel) template class KxImage<Pixel>;
KX_FOR_EACH_PIXEL(KX_INSTANTIATE)
#undef KX_INSTANTIATE

// The trace names the pixel type by what stands after its prefix.
#define KX_DEFINE(Pixel)                                                \
    void KxSwapImages(KxImage<Pixel>* pImage, KxImage<Pixel>* pOther) { \
        SwapImages(pImage, pOther, &#Pixel[2]);                         \
    }
KX_FOR_EACH_SWAPPABLE_PIXEL(KX_DEFINE)
#undef KX_DEFINE
