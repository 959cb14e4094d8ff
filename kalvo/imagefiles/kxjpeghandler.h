#pragma once
// A colour picture kept as one or two JPEG streams: the interlaced fields of a video frame.

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "kalvo/image/kximage.h"
#include "kalvo/streams/kxserializer.h"

struct KxJpegHandler_Impl;

/// Holds the JPEG stream of the first (up) field and of an optional second (down) field, as they are. They
/// move to and from files and archives without being decoded. One thread at a time uses a handler.
///
/// Operations on fields and pixels throw `Zelkor::Kalvo::Exception`, those on archives end in the error slot.
/// Streams that the codec refuses throw 15000 plus its status, which is negative: 14996 no JPEG stream, 14995
/// damaged, 14994 cut off, 14993 a kind of stream that is not supported (12 bits, lossless, arithmetic
/// coding), 14992 neither one nor three channels, 14991 fields of different sizes or a size that no stream
/// can have, 14990 rows that overlap, 14999 no pixels, 14989 no memory for the codec. These codes have no
/// texts.
/// @code
/// KxJpegHandler fields;
/// fields.LoadFJfif("up.jpg");
/// fields.LoadSJfif("down.jpg");
/// KxImage<KxC24> frame;
/// fields.DecompressToImage(frame, KxJpegHandler::FullSize);
/// @endcode
class KX_API KxJpegHandler {
public:
    /// By what `DecompressToImage` divides width and height, rounding up: 1, 2, 4 or 8.
    enum ScalingMode : std::int32_t { FullSize = 0, HalfSize = 1, QuarterSize = 2, EighthSize = 3 };

    /// An empty handler. Throws `std::bad_alloc`.
    KxJpegHandler();
    KxJpegHandler(const KxJpegHandler&) = delete;
    KxJpegHandler& operator=(const KxJpegHandler&) = delete;
    /// Frees the fields that were loaded; those that were lent stay the caller's.
    virtual ~KxJpegHandler();

    /// Replaces both fields by buffers of the caller, who keeps them alive while the handler uses them, and
    /// frees them. Null means that there is no such field. Sets the timestamp to 0.
    void SetBuffers(unsigned char* pUpField, unsigned int un32UpSize, unsigned char* pDownField,
                    unsigned int un32DownSize);
    /// Sets sizes and timestamp after the caller has refilled lent buffers. A loaded field may only shrink:
    /// else `KX_ERROR_INVALID_DATA_SIZE` is thrown and nothing changes. The timestamp is not archived.
    void UpdateSizeAndTimestamp(unsigned int un32UpSize, unsigned int un32DownSize,
                                unsigned int un32Timestamp0, unsigned int un32Timestamp1);

    /// Make a whole file the first field (`LoadFJfif`) or the second (`LoadSJfif`). Throw
    /// `KX_ERROR_FILE_OPEN` (cannot be opened, or empty), `KX_ERROR_FILE_ACCESS` (cannot be read completely,
    /// or 4 GiB and more), `KX_ERROR_ALLOCATION`; the handler is unchanged then.
    void LoadFJfif(const char* pszPath);
    void LoadFJfif(const std::string& path);
    void LoadSJfif(const char* pszPath);
    void LoadSJfif(const std::string& path);
    /// Write the first field (`SaveFJfif`) or the second (`SaveSJfif`) as a whole file. Throw 15104 (no such
    /// field), `KX_ERROR_FILE_OPEN`, `KX_ERROR_FILE_WRITE`.
    void SaveFJfif(const char* pszPath);
    void SaveFJfif(const std::string& path);
    void SaveSJfif(const char* pszPath);
    void SaveSJfif(const std::string& path);

    /// Load an archived handler from an archive file, an open file of the caller, or a stream. A file that
    /// cannot be opened (`KX_ERROR_FILE_OPEN`) leaves the handler unchanged. Other failures are those of
    /// `KxGenericROI::Load`: the stream goes back to the object's start; the handler is unchanged when the
    /// header is wrong, else empty.
    void Load(const char* pszPath);
    void Load(const unsigned short* pwszPath);
    void Load(const std::string& path);
    void Load(const std::basic_string<unsigned short>& path);
    void Load(std::FILE* pFile);
    void Load(KxSerializer* pSerializer);
    /// Save the handler to an archive file, which is created or overwritten, an open file of the caller, or a
    /// stream. Failures are those of `KxGenericROI::Save`, and `KX_ERROR_FILE_CLOSE`.
    void Save(const char* pszPath) const;
    void Save(const unsigned short* pwszPath) const;
    void Save(const std::string& path) const;
    void Save(const std::basic_string<unsigned short>& path) const;
    void Save(std::FILE* pFile) const;
    void Save(KxSerializer* pSerializer) const;

    /// Decodes the fields into `image`, which takes their size; with two fields twice the height, the first
    /// field in the even rows and the second, which must have the same size, in the odd ones. Throws:
    /// - 15104 without a first field, 15103 for a field of less than 8 bytes, 15101 and 15102 for a field
    ///   that does not begin or end like a JPEG stream;
    /// - `KX_ERROR_IMAGES_OVERLAP` when a field lies in the pixels of `image`;
    /// - `KX_ERROR_PARAMETER_2_OUT_OF_RANGE` for another mode;
    /// - what `KxImage::SetSize` reports; `KX_ERROR_IMAGE_MEMORY_ACCESS` for an image of the right size that
    ///   has no pixels, or wraps rows that overlap;
    /// - the codes of the codec for streams that cannot be decoded; the image may have its new size then, and
    ///   any pixels.
    void DecompressToImage(KxImage<KxC24>& image, const ScalingMode& eMode) const;

    /// Encodes pixels of three bytes (red, green, blue) as a JPEG stream in new memory, which the caller
    /// gives to `free`. Throws, with `pJpeg` null and `un32JpegSize` 0: `KX_ERROR_INVALID_DATA_SIZE` (less
    /// than 3 bytes of pixels), `KX_ERROR_ALLOCATION`, the codes of the codec (null `pPixels`, no columns,
    /// more than 65500 columns or rows, rows that overlap).
    /// @param un32RowPitch  distance between rows in bytes
    static void CreateJpegFromRGB24(unsigned char*& pJpeg, unsigned int& un32JpegSize,
                                    const unsigned char* pPixels, unsigned int un32RowPitch,
                                    unsigned int un32Width, unsigned int un32Height, unsigned int);

private:
    std::unique_ptr<KxJpegHandler_Impl> m_pImplementation;
};
