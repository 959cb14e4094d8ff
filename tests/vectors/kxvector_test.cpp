// The typed vector: capacity rules, access to elements, failures.

#include "tests/support/test.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Integers = KxVectorTemplate<unsigned int>;
using Values = std::vector<unsigned>;

Integers Make(const Values& values) {
    Integers vector;
    for (const unsigned value : values) vector.AddElement(value);
    return vector;
}

Values ValuesOf(const Integers& vector) {
    return {vector.GetDataPtr(), vector.GetDataPtr() + vector.GetNumElements()};
}

template <class T>
class WideVector : public testing::Test {};
using WideTypes = testing::Types<KxBW16, KxC24, unsigned int, KxRun>;
TYPED_TEST_SUITE(WideVector, WideTypes);

TYPED_TEST(WideVector, IsMadeOfZerosAndHasNoBlockOf4GiB) {
    constexpr unsigned kTooMany = UINT32_MAX / sizeof(TypeParam) + 1;
    KxVectorTemplate<TypeParam> vector(2);
    ExpectFailure(KX_ERROR_ALLOCATION, {"KxVector::SetMaxElements", "KxVector::SetNumElements"},
                  [&] { vector.SetNumElements(kTooMany); });
    ExpectFailure(KX_ERROR_ALLOCATION, {},
                  [&] { EXPECT_EQ(KxVectorTemplate<TypeParam>(kTooMany).GetNumElements(), 0u); });
    ASSERT_EQ(vector.GetNumElements(), 2u);
    for (const unsigned i : {0u, 1u}) EXPECT_EQ(vector[i], TypeParam());
}

TEST(Vector, DoublesWhileAppendingAndKeepsItsBufferWhenEmptied) {
    Integers vector = Make({7});
    Values capacities;
    for (int i = 0; i < 4; ++i) {
        vector.AddElementByRef(vector[0]);  // an element of its own, in the buffer that growing releases
        capacities.push_back(vector.GetMaxElements());
    }
    EXPECT_EQ(capacities, (Values{2, 4, 4, 8}));
    EXPECT_EQ(ValuesOf(vector), (Values{7, 7, 7, 7, 7}));
    vector.Empty();
    EXPECT_EQ(vector.GetNumElements(), 0u);
    EXPECT_EQ(vector.GetMaxElements(), 8u);
}

TEST(Vector, ChangesItsCapacity) {
    const std::tuple<unsigned, int, Values> kChanges[] = {
        {2, 1, {1, 2}}, {8, 1, {1, 2, 3, 4, 5}}, {0, 1, {}}, {2, 0, {}},
        {8, 0, {}},     {5, 0, {1, 2, 3, 4, 5}},  // the same: nothing happens
    };
    for (const auto& [capacity, keep, expected] : kChanges) {
        Integers vector(5);
        for (unsigned i = 0; i < 5; ++i) vector[i] = i + 1;
        vector.SetMaxElements(capacity, keep);
        EXPECT_EQ(vector.GetMaxElements(), capacity);
        EXPECT_EQ(ValuesOf(vector), expected) << capacity << ' ' << keep;
    }
}

TEST(Vector, SetsItsCountWithoutRoundingUp) {
    Integers vector = Make({1, 2, 3});
    KxSetError(KX_ERROR_SIZE_MISMATCH);
    vector.SetNumElements(2);
    EXPECT_EQ(KxGetError(), KX_ERROR_SIZE_MISMATCH) << "only growing resets the slot";
    vector.SetNumElements(6);
    EXPECT_EQ(vector.GetMaxElements(), 6u);
    EXPECT_EQ(ValuesOf(vector), (Values{1, 2, 0, 0, 0, 0}));
}

TEST(Vector, RefusesIndicesBeyondItsElements) {
    Integers vector = Make({4, 5, 6, 7});
    vector.RemoveElement(0);
    vector.RemoveElement(2);  // leaves an element in the buffer that is no longer in the vector
    vector.SetElement(0, 9);
    EXPECT_EQ(vector.GetElement(1), 6u);
    for (const int index : {-1, 2, INT_MIN, INT_MAX}) {
        const std::string kIndexing = "KxVector::operator[]", kRemoving = "KxVector::RemoveElement";
        ExpectFailure(KX_ERROR_PARAMETER_1_OUT_OF_RANGE, {kIndexing, kIndexing, kIndexing, kRemoving}, [&] {
            vector.SetElement(index, 1);
            EXPECT_EQ(vector.GetElement(index), 0u) << index;
            vector[static_cast<unsigned>(index)] = 4;
            vector.RemoveElement(static_cast<unsigned>(index));
        });
    }
    EXPECT_EQ(ValuesOf(vector), (Values{9, 6}));
    EXPECT_EQ(vector.GetDataPtr()[2], 7u);
}

TEST(Vector, CopiesIntoExactlyAsMuchCapacity) {
    Integers source = Make({1, 2, 3}), destination = Make({4, 5, 6, 7, 8});
    EXPECT_EQ(source.CopyTo(&destination), &destination);
    EXPECT_EQ(ValuesOf(destination), (Values{1, 2, 3}));
    EXPECT_EQ(destination.GetMaxElements(), 3u);
    const std::unique_ptr<Integers> made(source.CopyTo(nullptr));
    EXPECT_EQ(ValuesOf(*made), (Values{1, 2, 3}));
    EXPECT_EQ(ValuesOf(source = *&source), (Values{1, 2, 3}));
    EXPECT_EQ((source = Integers()).GetDataPtr(), nullptr);
}

TEST(Vector, SiftsDownAHeap) {
    const std::tuple<Values, unsigned, Values> kSifts[] = {
        {{9, 8, 8}, 1, {8, 1, 8}},                    // the left child wins ties
        {{9, 7, 8}, 8, {8, 7, 8}},                    // an equal child stays
        {{9, 7, 8}, 1, {8, 7, 1}},                    // the right child is the better one
        {{9, 8, 4, 7, 6, 3}, 5, {8, 7, 4, 5, 6, 3}},  // down two levels
        {Values{}, 1, {}},
    };
    const auto larger = [](const unsigned& a, const unsigned& b) { return int{a > b}; };
    for (const auto& [heap, value, expected] : kSifts) {
        Integers vector = Make(heap);
        vector.AddElement(20);
        vector.RemoveElement(vector.GetNumElements() - 1);  // what lies beyond the count takes no part
        vector.Sift(value, larger);
        EXPECT_EQ(ValuesOf(vector), expected);
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
