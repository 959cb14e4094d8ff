// Packing and unpacking of runs; the search for them is a kernel's.

#include "kalvo/imagefiles/packbits.h"

#include <algorithm>
#include <cstring>

#include "kalvo/kernels/kernels.h"

namespace Zelkor::Kalvo {
namespace {

constexpr std::size_t kLongest = 128;       // bytes that one count byte stands for
constexpr std::size_t kShortestRun = 3;     // two equal bytes gain nothing as a run
constexpr std::uint8_t kNoOperation = 128;  // -128 as an unsigned byte

}  // namespace

void AppendPackBits(std::vector<std::uint8_t>& packed, std::span<const std::uint8_t> bytes) {
    const Kernels::Table& kernels = Kernels::Active();
    while (!bytes.empty()) {
        // The kernels look no further than one count byte reaches, else long runs would cost quadratic time.
        std::size_t length = kernels.runLength(bytes.data(), std::min(bytes.size(), kLongest));
        if (length >= kShortestRun) {
            packed.push_back(static_cast<std::uint8_t>(1 - static_cast<int>(length)));
            packed.push_back(bytes.front());
        } else {
            const std::size_t window = std::min(bytes.size(), kLongest + kShortestRun - 1);
            length = std::min(kernels.literalLength(bytes.data(), window), kLongest);
            packed.push_back(static_cast<std::uint8_t>(length - 1));
            packed.insert(packed.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
        }
        bytes = bytes.subspan(length);
    }
}

std::size_t PackBitsDecoder::Decode(std::span<const std::uint8_t>& packed, std::uint8_t* bytes,
                                    std::size_t count) {
    const auto takeByte = [&packed] {
        const std::uint8_t byte = packed.front();
        packed = packed.subspan(1);
        return byte;
    };

    std::size_t produced = 0;
    while (produced < count) {
        if (m_state == State::Run && m_left != 0) {
            const std::size_t length = std::min(m_left, count - produced);
            if (bytes) std::memset(bytes + produced, m_value, length);
            produced += length;
            m_left -= length;
            continue;
        }
        if (packed.empty()) break;
        if (m_left == 0) {
            const std::uint8_t header = takeByte();
            m_state = header < kNoOperation ? State::Literal : State::RunWithoutValue;
            if (header < kNoOperation) m_left = header + std::size_t{1};
            if (header > kNoOperation) m_left = std::size_t{257} - header;
        } else if (m_state == State::RunWithoutValue) {
            m_value = takeByte();
            m_state = State::Run;
        } else {
            const std::size_t length = std::min({m_left, count - produced, packed.size()});
            if (bytes) std::memcpy(bytes + produced, packed.data(), length);
            packed = packed.subspan(length);
            produced += length;
            m_left -= length;
        }
    }
    return produced;
}

}  // namespace Zelkor::Kalvo
