// Chooses the kernels for the processor we run on: the list of instruction sets is here and nowhere else.

#include "kalvo/kernels/kernels.h"

#include "kalvo/base/cpu.h"

#include <array>

namespace Zelkor::Kernels {
namespace {

struct InstructionSet {
    const char* name;
    bool (*isSupported)();
    void (*install)(Table& kernels);  // from every file of the set
};

template <auto... kInstall>
void InstallAll(Table& kernels) {
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
    {"vbmi", Platform::HasVbmi, RowsVbmi::Install},
#endif
};

struct SupportedSets {
    std::array<Table, std::size(kInstructionSets)> tables{};
    std::size_t count = 0;

    SupportedSets() {
        Table kernels{};
        for (const InstructionSet& set : kInstructionSets) {
            if (!set.isSupported()) continue;
            kernels.name = set.name;
            set.install(kernels);
            tables[count++] = kernels;
        }
    }
};

}  // namespace

std::span<const Table> Available() {
    static const SupportedSets supported;
    return std::span(supported.tables).first(supported.count);
}

const Table& Active() {
    static const Table& best = Available().back();
    return best;
}

}  // namespace Zelkor::Kernels
