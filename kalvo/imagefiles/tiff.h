#pragma once
// The numbers of the TIFF format that its reader and its writer share.

#include <cstddef>
#include <cstdint>

#include "kalvo/image/kxgenericroi.h"

namespace Zelkor::Kalvo {

enum class TiffTag : std::uint16_t {
    NewSubfileType = 254,
    ImageWidth = 256,
    ImageLength = 257,
    BitsPerSample = 258,
    Compression = 259,
    PhotometricInterpretation = 262,
    FillOrder = 266,
    DocumentName = 269,
    ImageDescription = 270,
    StripOffsets = 273,
    SamplesPerPixel = 277,
    RowsPerStrip = 278,
    StripByteCounts = 279,
    XResolution = 282,
    YResolution = 283,
    PlanarConfiguration = 284,
    ResolutionUnit = 296,
    DateTime = 306,
    Artist = 315,
};

enum class TiffType : std::uint16_t { Byte = 1, Ascii = 2, Short = 3, Long = 4, Rational = 5 };

inline constexpr std::uint16_t kTiffMagic = 42;
inline constexpr std::size_t kTiffHeaderBytes = 8;
inline constexpr std::size_t kTiffEntryBytes = 12;
inline constexpr std::size_t kTiffInlineBytes = 4;  // values up to this size stand in the entry itself

inline constexpr std::uint16_t kTiffUncompressed = 1;
inline constexpr std::uint16_t kTiffPackBits = 32773;
inline constexpr std::uint16_t kTiffBlackIsZero = 1;
inline constexpr std::uint16_t kTiffRgb = 2;
inline constexpr std::uint16_t kTiffNoUnit = 1;
inline constexpr std::uint16_t kTiffInch = 2;
inline constexpr std::uint16_t kTiffCentimetre = 3;

// A text of a region and the tag that holds it in a file.
struct TiffText {
    TiffTag tag;
    const char* (KxGenericROI::*get)() const;
    std::unique_ptr<char[]> RegionTexts::*field;
};

inline constexpr TiffText kTiffTexts[] = {
    {TiffTag::DocumentName, &KxGenericROI::GetTitle, &RegionTexts::m_pszTitleASCII},
    {TiffTag::ImageDescription, &KxGenericROI::GetComment, &RegionTexts::m_pszCommentASCII},
    {TiffTag::DateTime, &KxGenericROI::GetDate, &RegionTexts::m_pszDateASCII},
    {TiffTag::Artist, &KxGenericROI::GetAuthor, &RegionTexts::m_pszAuthorASCII},
};

}  // namespace Zelkor::Kalvo
