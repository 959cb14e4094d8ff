// Archives of field handlers, whose fields are decoded in every size.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "kalvo/frame/kxtrace.h"
#include "kalvo/image/regionrows.h"
#include "kalvo/imagefiles/kxjpeghandler.h"
#include "fuzz/require.h"

namespace {

using namespace Zelkor::Kalvo;
using Fuzzing::Require;
using Bytes = std::vector<unsigned char>;
using Image = KxImage<KxC24>;

bool Decodes(const KxJpegHandler& handler, int mode, Image& image) {
    try {
        handler.DecompressToImage(image, static_cast<KxJpegHandler::ScalingMode>(mode));
        return true;
    } catch (const Exception& exception) {
        Require(exception.GetError() >= 1000, "a failure has a code");
        return false;
    }
}

// Rows of a caller's buffer get the same pixels, and the gaps between them stay.
void CheckGaps(const KxJpegHandler& handler, int mode, const Image& image) {
    constexpr unsigned char kGuard = 0xA5;
    const ConstRegionRows rows = RowsOf(image);
    const std::size_t rowBytes = std::size_t{3} * rows.width, pitch = rowBytes + 5;
    Bytes buffer(pitch * rows.height, kGuard);
    Image wrapping;
    wrapping.SetImagePtr(rows.width, rows.height, buffer.data(), static_cast<int>(8 * pitch));
    Require(Decodes(handler, mode, wrapping), "what decodes once decodes again");
    for (int y = 0; y < rows.height; ++y) {
        const unsigned char* row = buffer.data() + pitch * y;
        Require(std::memcmp(row, rows.Row(y), rowBytes) == 0, "it gives the same pixels");
        for (std::size_t i = rowBytes; i < pitch; ++i) Require(row[i] == kGuard, "gaps are left alone");
    }
}

// What was decoded can be encoded, unless it is larger than a stream can be.
void CheckEncoding(const Image& image) {
    const ConstRegionRows rows = RowsOf(image);
    unsigned char* jpeg = nullptr;
    unsigned size = 0;
    if (rows.height > 65500) return;
    KxJpegHandler::CreateJpegFromRGB24(jpeg, size, rows.first, static_cast<unsigned>(rows.pitchBytes),
                                       static_cast<unsigned>(rows.width), static_cast<unsigned>(rows.height),
                                       0);
    KxJpegHandler handler;
    handler.SetBuffers(jpeg, size, nullptr, 0);
    Image again;
    Require(Decodes(handler, KxJpegHandler::FullSize, again), "what was encoded can be decoded");
    Require(again.GetExtent() == image.GetExtent(), "encoding keeps the size");
    std::free(jpeg);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t count) {
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    KxMemSerializer reader, writer;
    reader.OpenReader(Bytes(data, data + count));
    KxJpegHandler handler;
    KxOk();
    handler.Load(&reader);
    if (KxFailure()) return 0;
    writer.OpenWriter();
    handler.Save(&writer);
    const Bytes& archive = writer.GetBuffer();
    Require(archive.size() <= count, "an archive is no longer than what it was read from");
    // Older versions of the record hold the same, so only the header may differ.
    Require(std::equal(archive.begin() + 4, archive.end(), data + 4), "loading loses nothing");
    for (int mode = KxJpegHandler::FullSize; mode <= KxJpegHandler::EighthSize; ++mode) {
        Image image;
        if (!Decodes(handler, mode, image)) continue;
        CheckGaps(handler, mode, image);
        CheckEncoding(image);
    }
    return 0;
}
