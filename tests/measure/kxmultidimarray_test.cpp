// Blocks of pointers and data, and the array class on top of them.

#include "tests/support/test.h"

namespace {

using Dims = std::vector<unsigned>;
using Block = std::unique_ptr<unsigned char, decltype(&std::free)>;

struct Layout {
    unsigned entrySize, elementSize;
    Dims dims;
    Dims targets;  // offsets that the entries address, in the order of the block
};
const Layout kLayouts[] = {
    {4, 8, {5}, {}},
    {4, 40, {3, 1}, {12, 52, 92}},
    {8, 40, {3, 1}, {24, 64, 104}},
    {4, 8, {2, 2, 1}, {8, 12, 24, 32, 40, 48}},
    {12, 1, {2, 1}, {24, 25}},
    {8, 4, {0, 3}, {}},
    {8, 4, {}, {}},
};

TEST(MultidimArray, EntriesHoldTheLowBytesOfTheAddressesBelow) {
    for (const auto& [entrySize, elementSize, dims, targets] : kLayouts) {
        const Block block(KxMultidimArray::Init(entrySize, elementSize, dims), &std::free);
        for (std::size_t i = 0; i < targets.size(); ++i) {
            const auto address = reinterpret_cast<std::uintptr_t>(block.get() + targets[i]);
            const std::uint64_t expected[2] = {address, 0};
            EXPECT_EQ(std::memcmp(block.get() + i * entrySize, expected, entrySize), 0) << i;
        }
    }
}

TEST(MultidimArray, RefusesWhatDoesNotFit) {
    for (const Dims& dims : {Dims{0x10000, 0x10000}, Dims{0x40000000}, Dims{0x1FFFFFFF, 3}}) try {
            std::free(KxMultidimArray::Init(8, 4, dims));
            ADD_FAILURE() << dims[0];
        } catch (const std::bad_alloc& exception) {
            EXPECT_EQ(exception.what(), std::string("bad allocation"));
        }
    EXPECT_THROW((KxMultidimArrayOf<int, 3>({1 << 12, 1 << 12, 1 << 12})), std::bad_alloc);
}

TEST(MultidimArrayOf, EveryElementHasItsOwnChain) {
    KxMultidimArrayOf<int, 4> array({2, 3, 4, 5});
    int next = 0;
    for (int i = 0; i < 24; ++i)
        for (int l = 0; l < 5; ++l) {
            int& element = array[i / 12][i / 4 % 3][i % 4][l];
            ASSERT_EQ(element, 0);
            ASSERT_EQ(&element, array.GetDataPtr() + next);
            element = next++;
        }
    EXPECT_EQ(array.GetNumElements(), static_cast<std::size_t>(next));
    const auto moved = std::move(array);
    EXPECT_EQ(moved[1][2][3][4], 119);
    static_assert(std::is_same_v<decltype(moved[0][0][0][0]), const int&>);

    KxMultidimArrayOf<long double, 2> aligned({1, 3});
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(&aligned[0][0]) % alignof(long double), 0u);
    KxMultidimArrayOf<char, 1> flat({3});
    EXPECT_EQ(&flat[2], flat.GetDataPtr() + 2);
    EXPECT_EQ((KxMultidimArrayOf<int, 3>({2, 0, 5}).GetNumElements()), 0u);
}

}  // namespace
