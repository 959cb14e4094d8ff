// Where the levels of an array lie in its block, and the pointers between them.

#include "kalvo/measure/kxmultidimarray.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

using Sizes = std::vector<unsigned int>;

struct BadAllocation final : std::bad_alloc {
    const char* what() const noexcept override { return "bad allocation"; }
};

unsigned Checked(std::uint64_t size) {
    if (size > std::numeric_limits<unsigned>::max()) throw BadAllocation();
    return static_cast<unsigned>(size);
}

// The offsets of the levels, and the size of the block behind them. Without dimensions there is nothing.
Sizes LevelOffsets(unsigned entrySize, unsigned elementSize, unsigned elementAlignment, const Sizes& dims) {
    Sizes offsets{0};
    unsigned entries = 1;
    for (std::size_t level = 0; level < dims.size(); ++level) {
        const bool isData = level + 1 == dims.size();
        if (isData)
            offsets.back() = Checked((std::uint64_t{offsets.back()} + elementAlignment - 1) /
                                     elementAlignment * elementAlignment);
        entries = Checked(std::uint64_t{entries} * dims[level]);
        const unsigned size = Checked(std::uint64_t{entries} * (isData ? elementSize : entrySize));
        offsets.push_back(Checked(std::uint64_t{offsets.back()} + size));
    }
    return offsets;
}

unsigned char* AllocateBlock(unsigned size) {
    void* const block = std::malloc(std::max(size, 1u));
    if (!block) throw BadAllocation();
    return static_cast<unsigned char*>(block);
}

// The low bytes of an address come first, and are all that a narrow entry has room for.
void StorePointer(unsigned char* entry, unsigned entrySize, const unsigned char* address) {
    std::memcpy(entry, &address, std::min<std::size_t>(entrySize, sizeof address));
    if (entrySize > sizeof address) std::memset(entry + sizeof address, 0, entrySize - sizeof address);
}

void FillLevel(unsigned char* entries, unsigned count, unsigned entrySize, const unsigned char* target,
               unsigned stride) {
    if (entrySize == 0) return;  // there may be any number of entries
    for (std::size_t k = 0; k < count; ++k)
        StorePointer(entries + k * entrySize, entrySize, target + k * stride);
}

}  // namespace

unsigned char* KxMultidimArray::Init(unsigned int un32EntrySize, unsigned int un32ElementSize,
                                     const std::vector<unsigned int>& dims) {
    const Sizes offsets = LevelOffsets(un32EntrySize, un32ElementSize, 1, dims);
    unsigned char* const block = AllocateBlock(offsets.back());
    InitPointers(un32EntrySize, un32ElementSize, block, offsets, dims);
    return block;
}

void KxMultidimArray::InitPointers(unsigned int un32EntrySize, unsigned int un32ElementSize,
                                   unsigned char* pun8Block, const std::vector<unsigned int>& offsets,
                                   const std::vector<unsigned int>& dims) {
    unsigned entries = 1;
    for (std::size_t level = 0; level + 1 < dims.size(); ++level) {
        entries *= dims[level];
        const bool addressesData = level + 2 == dims.size();
        FillLevel(pun8Block + offsets[level], entries, un32EntrySize, pun8Block + offsets[level + 1],
                  addressesData ? un32ElementSize : un32EntrySize);
    }
}

unsigned char* KxMultidimArray::InitRows(unsigned int un32ElementSize, unsigned int un32ElementAlignment,
                                         const std::vector<unsigned int>& dims,
                                         unsigned int& un32DataOffset) {
    constexpr unsigned kEntrySize = sizeof(void*);
    const Sizes offsets = LevelOffsets(kEntrySize, un32ElementSize, un32ElementAlignment, dims);
    unsigned char* const block = AllocateBlock(offsets.back());
    unsigned entries = 1;
    for (std::size_t level = 0; level + 1 < dims.size(); ++level) {
        entries *= dims[level];
        const unsigned size = level + 2 == dims.size() ? un32ElementSize : kEntrySize;
        FillLevel(block + offsets[level], entries, kEntrySize, block + offsets[level + 1],
                  dims[level + 1] * size);
    }
    un32DataOffset = dims.empty() ? 0 : offsets[dims.size() - 1];
    return block;
}
