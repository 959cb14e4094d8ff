// The table of what loads where.

#include "kalvo/imagefiles/filelayout.h"

#include <array>
#include <iterator>

namespace Zelkor::Kalvo {
namespace {

constexpr KX_ERRORS kOk = KX_OK, kBw1 = KX_ERROR_BW1_EXPECTED, kBw8 = KX_ERROR_BW8_EXPECTED,
                    kBw16 = KX_ERROR_BW16_EXPECTED, kBw32 = KX_ERROR_BW32_EXPECTED,
                    kC15 = KX_ERROR_C15_EXPECTED, kC16 = KX_ERROR_C16_EXPECTED, kC24 = KX_ERROR_C24_EXPECTED,
                    kBits = KX_ERROR_BILEVEL_IMAGE_EXPECTED, kGray = KX_ERROR_GRAY_IMAGE_EXPECTED,
                    kColor = KX_ERROR_COLOR_IMAGE_EXPECTED, kType = KX_ERROR_UNSUPPORTED_IMAGE_TYPE,
                    kNoBmp = KX_ERROR_UNSUPPORTED_BMP, kNoJpeg = KX_ERROR_UNSUPPORTED_JPEG,
                    kJpeg = KX_ERROR_JPEG_READ, kCut = KX_ERROR_FILE_READ, kFault = KX_ERROR_INTERNAL;

struct Layout {
    FileLayout layout;
    KX_IMAGE_TYPES naturalType;
    std::array<KX_ERRORS, 8> refusals;  // by pixel type
};

// Words of 16 bits without masks are 5, 5, 5 bits by the definition of BMP, but there are programs that mean
// 5, 6, 5: the destination decides.
// clang-format off
constexpr Layout kLayouts[] = {
    //                                               BW1     BW8     BW16    BW32    C15      C16      C24     C24A
    {FileLayout::TiffBits,       KX_IMAGE_BW1,  {    kOk,    kOk,  kBw16,  kBw32,  kColor,  kColor,  kColor,  kBw32}},
    {FileLayout::TiffPackedBits, KX_IMAGE_BW8,  {  kType,    kOk,  kBw16,  kBw32,  kColor,  kColor,  kColor,  kBw32}},
    {FileLayout::TiffGray8,      KX_IMAGE_BW8,  {   kBw1,    kOk,  kBw16,  kBw32,  kColor,  kColor,  kColor,  kBw32}},
    {FileLayout::TiffGray16,     KX_IMAGE_BW16, {   kBw1,   kBw8,    kOk,  kBw32,  kColor,  kColor,  kColor,  kBw32}},
    {FileLayout::TiffGray32,     KX_IMAGE_BW32, {   kBw1,   kBw8,  kBw16,    kOk,  kColor,  kColor,  kColor,    kOk}},
    {FileLayout::TiffColor,      KX_IMAGE_C24,  {   kBw1,   kBw8,  kBw16,  kBw32,    kC24,    kC24,     kOk,  kBw32}},
    {FileLayout::BmpBits,        KX_IMAGE_BW1,  {    kOk,  kGray,  kGray,  kGray,  kColor,  kColor,  kColor,  kGray}},
    {FileLayout::BmpGray,        KX_IMAGE_BW8,  {   kBw1,    kOk,  kBw16, kFault,  kColor,  kColor,  kColor, kFault}},
    {FileLayout::BmpWords555,    KX_IMAGE_C15,  {  kBits,  kGray,  kGray,  kGray,     kOk,    kC15,    kC15,   kC15}},
    {FileLayout::BmpWords565,    KX_IMAGE_C16,  {  kBits,  kGray,  kGray,  kGray,    kC16,     kOk,    kC16,   kC16}},
    {FileLayout::BmpWords16,     KX_IMAGE_C15,  {  kBits,  kGray,  kGray,  kGray,     kOk,     kOk,    kC16,   kC16}},
    {FileLayout::BmpColor24,     KX_IMAGE_C24,  {  kBits,  kGray,  kGray,  kGray,    kC24,    kC24,     kOk,   kC24}},
    {FileLayout::BmpWords32,     KX_IMAGE_C24A, { kNoBmp, kNoBmp, kNoBmp,    kOk,  kNoBmp,  kNoBmp,  kNoBmp,    kOk}},
    {FileLayout::JpegGray,       KX_IMAGE_BW8,  {  kBits,    kOk,  kBw16,  kBw32, kNoJpeg, kNoJpeg,  kColor, kNoJpeg}},
    {FileLayout::JpegColor,      KX_IMAGE_C24,  {  kBits,  kGray,  kGray,  kGray, kNoJpeg, kNoJpeg,     kOk,  kGray}},
    {FileLayout::JpegOther,      KX_IMAGE_BW8,  {  kBits, kNoJpeg, kNoJpeg, kNoJpeg, kNoJpeg, kNoJpeg, kNoJpeg, kNoJpeg}},
    {FileLayout::JpegDamaged,    KX_IMAGE_BW8,  {  kBits,  kJpeg,  kJpeg,  kJpeg, kNoJpeg, kNoJpeg,   kJpeg,  kJpeg}},
    {FileLayout::JpegCut,        KX_IMAGE_BW8,  {  kBits,   kCut,   kCut,   kCut, kNoJpeg, kNoJpeg,    kCut,   kCut}},
};
// clang-format on

constexpr bool IsInOrder() {
    for (std::size_t i = 0; i < std::size(kLayouts); ++i)
        if (static_cast<std::size_t>(kLayouts[i].layout) != i) return false;
    return std::size(kLayouts) == static_cast<std::size_t>(FileLayout::JpegCut) + 1;
}
static_assert(IsInOrder(), "the row of a layout is its number");

const Layout& Row(FileLayout layout) { return kLayouts[static_cast<std::size_t>(layout)]; }

}  // namespace

KX_ERRORS RefusalOf(FileLayout layout, KX_IMAGE_TYPES destination) {
    return Row(layout).refusals[static_cast<std::size_t>(destination)];
}

KX_IMAGE_TYPES NaturalTypeOf(FileLayout layout) { return Row(layout).naturalType; }

}  // namespace Zelkor::Kalvo
