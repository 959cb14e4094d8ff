// Rows gathered in plain C++, pixel by pixel, and the plan for the sets that take blocks.

#include "kalvo/kernels/gatherplan.h"
#include "kalvo/kernels/kernels.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Zelkor::Kernels {
namespace {

constexpr std::size_t kBlockBytes = sizeof(GatherBlock::lanes);

// A block that begins with destination pixel `pixel`, and the pixel after its last one. The source bytes are
// taken from further left where they would end beyond the row.
std::size_t FillBlock(const GatherPlan& plan, std::size_t pixel, std::size_t sourceBytes,
                      GatherBlock& block) {
    const std::size_t bytes = plan.bytesPerPixel;
    const auto firstByte = [&](std::size_t i) { return bytes * static_cast<std::size_t>(plan.columns[i]); };
    std::size_t low = firstByte(pixel), high = low, end = pixel + 1;
    for (const std::size_t most = std::min(plan.columns.size(), pixel + kBlockBytes / bytes); end < most;
         ++end) {
        const std::size_t lower = std::min(low, firstByte(end)), higher = std::max(high, firstByte(end));
        if (higher + bytes - lower > kBlockBytes) break;
        low = lower, high = higher;
    }
    block.from = std::min(low, sourceBytes - kBlockBytes);
    block.to = bytes * pixel;
    for (std::uint8_t* lane = block.lanes; pixel < end; ++pixel)
        for (std::size_t i = 0; i < bytes; ++i)
            *lane++ = static_cast<std::uint8_t>(firstByte(pixel) - block.from + i);
    return end;
}

template <int kBytesPerPixel>
void GatherPixels(const GatherPlan& plan, const std::uint8_t* source, std::uint8_t* destination) {
    for (const std::int32_t column : plan.columns) {
        std::memcpy(destination, source + std::ptrdiff_t{kBytesPerPixel} * column, kBytesPerPixel);
        destination += kBytesPerPixel;
    }
}

}  // namespace

GatherPlan MakeGatherPlan(std::vector<std::int32_t> columns, int sourceWidth, std::size_t bytesPerPixel) {
    GatherPlan plan{bytesPerPixel, std::move(columns), {}};
    const std::size_t sourceBytes = bytesPerPixel * static_cast<std::size_t>(sourceWidth);
    if (sourceBytes < kBlockBytes) return plan;
    for (std::size_t pixel = 0; pixel < plan.columns.size();)
        pixel = FillBlock(plan, pixel, sourceBytes, plan.blocks.emplace_back());
    return plan;
}

namespace GatherPortable {
namespace {

void GatherRow(const GatherPlan& plan, const std::uint8_t* source, std::uint8_t* destination) {
    switch (plan.bytesPerPixel) {
    case 1:
        return GatherPixels<1>(plan, source, destination);
    case 2:
        return GatherPixels<2>(plan, source, destination);
    case 3:
        return GatherPixels<3>(plan, source, destination);
    case 4:
        return GatherPixels<4>(plan, source, destination);
    }
}

}  // namespace

void Install(Table& kernels) { kernels.gatherRow = GatherRow; }

}  // namespace GatherPortable
}  // namespace Zelkor::Kernels
