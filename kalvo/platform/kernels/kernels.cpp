// Chooses the kernels for the processor we run on: the list of instruction sets is here and nowhere else.
#include "kalvo/platform/kernels/kernels.h"

#include "kalvo/platform/cpu.h"

#include <array>

namespace Zelkor::Kalvo {
namespace {

struct InstructionSet {
    const char* name;
    bool (*isSupported)();
    void (*install)(Kernels& kernels);  // from every file of the set
};

template <auto... kInstall>
void InstallAll(Kernels& kernels) {
    (kInstall(kernels), ...);
}

// Each set replaces entries of the supported ones above it.
constexpr InstructionSet kInstructionSets[] = {
    {"portable", [] { return true; },
     InstallAll<RowsPortable::Install, PixelsPortable::Install, GatherPortable::Install,
                Sha1Portable::Install>},
#if defined(__x86_64__)
    {"sha", Platform::HasSha, Sha1ShaNi::Install},
    {"avx2", Platform::HasAvx2, InstallAll<RowsAvx2::Install, PixelsAvx2::Install, GatherAvx2::Install>},
#endif
};

struct SupportedSets {
    std::array<Kernels, std::size(kInstructionSets)> tables{};
    std::size_t count = 0;

    SupportedSets() {
        Kernels kernels{};
        for (const InstructionSet& set : kInstructionSets) {
            if (!set.isSupported()) continue;
            kernels.name = set.name;
            set.install(kernels);
            tables[count++] = kernels;
        }
    }
};

}  // namespace

std::span<const Kernels> AvailableKernels() {
    static const SupportedSets supported;
    return std::span(supported.tables).first(supported.count);
}

const Kernels& ActiveKernels() {
    static const Kernels& best = AvailableKernels().back();
    return best;
}

}  // namespace Zelkor::Kalvo
