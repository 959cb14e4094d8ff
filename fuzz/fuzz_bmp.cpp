// BMP files into every pixel type.

#include "fuzz/imagefile_checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    using namespace Zelkor::Kalvo;
    return Fuzzing::CheckReader(InspectBmp, bytes, count);
}
