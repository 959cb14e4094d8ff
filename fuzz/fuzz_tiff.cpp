// TIFF files into every pixel type; one that is refused changes nothing.

#include "fuzz/imagefile_checks.h"

namespace {

using namespace Zelkor::Kalvo;

void CheckRefusal(std::FILE* stream) {
    constexpr int kWidth = 5, kHeight = 3;
    const auto untouched = Fuzzing::MakeGuard<KxBW8>(kWidth, kHeight);
    const auto image = Fuzzing::MakeGuard<KxBW8>(kWidth, kHeight);
    if (Fuzzing::Loads(InspectTiff, stream, *image)) return;
    Fuzzing::Require(image->GetWidth() == kWidth && image->GetHeight() == kHeight && !image->GetTitle(),
                     "a refused file leaves size and texts");
    const RegionRows rows = RowsOf(*image);
    Fuzzing::Require(std::memcmp(rows.first, RowsOf(*untouched).first, rows.pitchBytes * kHeight) == 0,
                     "a refused file leaves the pixels");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    Fuzzing::CheckReader(InspectTiff, bytes, count);
    if (count == 0) return 0;
    std::FILE* stream = fmemopen(const_cast<std::uint8_t*>(bytes), count, "rb");
    CheckRefusal(stream);
    std::fclose(stream);
    return 0;
}
