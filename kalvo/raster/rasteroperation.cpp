// Evaluates all 256 operations in one way.

#include "kalvo/raster/rasteroperation.h"

#include <cstring>

namespace Zelkor::Platform {
namespace {

using Word = std::uint64_t;

// Takes bit k from `ones` where bit k of `selector` is 1, else from `zeros`.
constexpr Word Select(Word selector, Word ones, Word zeros) { return zeros ^ (selector & (ones ^ zeros)); }

}  // namespace

void RasterOperation::Apply(const std::uint8_t* pattern, const std::uint8_t* source,
                            std::uint8_t* destination, std::size_t bytes) const {
    constexpr std::size_t kBlock = 8;  // words; the compiler makes vectors of them
    Word everywhere[8];
    for (int i = 0; i < 8; ++i) everywhere[i] = Word{0} - (m_table >> i & 1);
    const auto take = [&](std::size_t taken) {
        Word p[kBlock]{}, s[kBlock]{}, d[kBlock]{};
        std::memcpy(p, pattern, taken);
        std::memcpy(s, source, taken);
        std::memcpy(d, destination, taken);
        for (std::size_t i = 0; i < kBlock; ++i) {
            const auto ofDestination = [&](int k) { return Select(d[i], everywhere[k + 1], everywhere[k]); };
            const auto ofSource = [&](int k) { return Select(s[i], ofDestination(k + 2), ofDestination(k)); };
            d[i] = Select(p[i], ofSource(4), ofSource(0));
        }
        std::memcpy(destination, d, taken);
        pattern += taken;
        source += taken;
        destination += taken;
        bytes -= taken;
    };
    while (bytes >= kBlock * sizeof(Word)) take(kBlock * sizeof(Word));
    if (bytes > 0) take(bytes);
}

}  // namespace Zelkor::Platform
