// Images lent out as memory contexts, and taken back.

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "kalvo/display/dib.h"
#include "kalvo/display/kximagedisplay.h"
#include "kalvo/display/selected_object.h"
#include "kalvo/frame/boundary.h"

using namespace Zelkor::Kalvo;

namespace {

// The bitmap that stands for an image: as wide as its padded rows.
struct ImageBitmap {
    explicit ImageBitmap(const KxGenericROI& image)
        : type(*FindDibType(TypeOf(image))), height(image.GetHeight()) {
        if (!image.GetGenericImagePtr(0, 0)) throw Exception(KX_ERROR_IMAGE_MEMORY_ACCESS);
        // Rows that a caller wrapped may overlap or run upwards.
        const std::int64_t rowBits = std::abs(std::int64_t{image.GetRowPitch()}) * 8;
        width = std::max(static_cast<int>(rowBits / type.bitCount), image.GetWidth());
        DescribeBitmap(type, width, height, info);
        DescribeColors(type, info);
    }

    const DibType& type;
    int width;
    int height;
    KxBitmapInfo info;
};

void Require(bool succeeded) {
    if (!succeeded) throw Exception(KX_ERROR_WINDOWS);
}

HDC OpenImageDC(const KxGenericROI& image) {
    return AtBoundary("KxOpenImageDC", [&] {
        const ImageBitmap bitmap(image);
        void* bits = nullptr;
        OwnedContext context(CreateCompatibleDC(nullptr));
        OwnedBitmap section(
            CreateDIBSection(context.get(), AsBitmapInfo(bitmap.info), DIB_RGB_COLORS, &bits));
        Require(context && section && SelectObject(context.get(), section.get()));
        CopyPixels(RowsOf(image), BitmapRows(bits, bitmap.type, bitmap.width, bitmap.height),
                   bitmap.type.bitCount);
        if (OzzoTLSStruct* record = KxGetTLSPtr()) record->m_hImageDC = context.get();
        static_cast<void>(section.release());  // it goes when the context is closed
        return context.release();
    });
}

// Takes the drawing over from the bitmap that is selected in the context.
void ReadBack(HDC context, HGDIOBJ selected, KxGenericROI& image) {
    ImageBitmap bitmap(image);
    RegionRows rows = BitmapRows(nullptr, bitmap.type, bitmap.width, bitmap.height);
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(rows.pitchBytes * rows.height));
    rows.first = pixels.data();
    Require(GetDIBits(context, static_cast<HBITMAP>(selected), 0, static_cast<UINT>(bitmap.height),
                      pixels.data(), AsBitmapInfo(bitmap.info), DIB_RGB_COLORS) == bitmap.height);
    // Only pixels of the image: between its rows a caller may keep others.
    const RegionRows imageRows = RowsOf(image);
    CopyPixels({rows.first, 0, rows.pitchBytes, imageRows.width, imageRows.height}, imageRows,
               bitmap.type.bitCount);
}

void CloseImageDC(KxGenericROI& image, HDC hdc) {
    AtBoundary("KxCloseImageDC", [&] {
        OzzoTLSStruct* record = KxGetTLSPtr();
        const HDC context = hdc || !record ? hdc : record->m_hImageDC;
        const HGDIOBJ bitmap = GetCurrentObject(context, OBJ_BITMAP);
        ReadBack(context, bitmap, image);
        Require(DeleteDC(context));
        if (record && record->m_hImageDC == context) record->m_hImageDC = nullptr;
        Require(DeleteObject(bitmap));
    });
}

}  // namespace

HDC KxOpenImageDC(KxImage<KxBW8>* pImage) { return OpenImageDC(*pImage); }

HDC KxOpenImageDC(KxImage<KxC24>* pImage) { return OpenImageDC(*pImage); }

void KxCloseImageDC(KxImage<KxBW8>* pImage, HDC hDC) { CloseImageDC(*pImage, hDC); }

void KxCloseImageDC(KxImage<KxC24>* pImage, HDC hDC) { CloseImageDC(*pImage, hDC); }
