// The typed vector: capacity rules, access to elements, failures.
#include "kalvo/vectors/kxvector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "kalvo/frame/kxerror.h"
#include "tests/support/trace_recorder.h"

namespace {
bool memoryIsShort = false;
}

// The buffers of vectors come from here.
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    try {
        return memoryIsShort ? nullptr : ::operator new[](bytes);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

namespace Zelkor::Kalvo {
namespace {

using Integers = KxVectorTemplate<unsigned int>;
using Values = std::vector<unsigned>;
using Names = std::vector<std::string>;

Integers Make(const Values& values) {
    Integers vector;
    for (const unsigned value : values) vector.AddElement(value);
    return vector;
}

Values ValuesOf(const Integers& vector) {
    return {vector.GetDataPtr(), vector.GetDataPtr() + vector.GetNumElements()};
}

template <class Operation>
void ExpectFailure(KX_ERRORS code, const Names& functions, Operation operation) {
    Testing::TraceRecorder traces;
    KxOk();
    operation();
    EXPECT_EQ(KxGetError(), code);
    EXPECT_EQ(traces.Functions(), functions);
    KxOk();
}

class ShortMemory {
public:
    ShortMemory() { memoryIsShort = true; }
    ~ShortMemory() { memoryIsShort = false; }
};

template <class T>
class EveryVector : public testing::Test {};
using ElementTypes = testing::Types<KxBW8, KxBW16, KxBW32, KxC24, KxINT32, unsigned int, KxRun>;
TYPED_TEST_SUITE(EveryVector, ElementTypes);

TYPED_TEST(EveryVector, IsMadeOfZeros) {
    const KxVectorTemplate<TypeParam> vector(3);
    EXPECT_EQ(vector.GetMaxElements(), 3u);
    ASSERT_EQ(vector.GetNumElements(), 3u);
    EXPECT_TRUE(std::all_of(vector.GetDataPtr(), vector.GetDataPtr() + 3,
                            [](const TypeParam& element) { return element == TypeParam(); }));
    EXPECT_EQ(KxVectorTemplate<TypeParam>(0).GetDataPtr(), nullptr);
}

template <class T>
class WideVector : public testing::Test {};
using WideTypes = testing::Types<KxBW16, KxC24, unsigned int, KxRun>;
TYPED_TEST_SUITE(WideVector, WideTypes);

TYPED_TEST(WideVector, HasNoBlockOf4GiB) {
    constexpr unsigned kTooMany = UINT32_MAX / sizeof(TypeParam) + 1;
    KxVectorTemplate<TypeParam> vector(2);
    ExpectFailure(KX_ERROR_ALLOCATION, {"KxVector::SetMaxElements"},
                  [&] { vector.SetMaxElements(kTooMany, 0); });
    ExpectFailure(KX_ERROR_ALLOCATION, {"KxVector::SetMaxElements", "KxVector::SetNumElements"},
                  [&] { vector.SetNumElements(kTooMany); });
    EXPECT_EQ(vector.GetNumElements(), 2u);
    EXPECT_EQ(vector.GetMaxElements(), 2u);
    ExpectFailure(KX_ERROR_ALLOCATION, {}, [&] {
        const KxVectorTemplate<TypeParam> hopeless(kTooMany);
        EXPECT_EQ(hopeless.GetNumElements(), 0u);
        EXPECT_EQ(hopeless.GetMaxElements(), 0u);
    });
}

TEST(Vector, DoublesWhileAppendingAndKeepsItsBufferWhenEmptied) {
    Integers vector;
    Values capacities;
    for (unsigned i = 0; i < 5; ++i) {
        capacities.push_back(vector.GetMaxElements());
        i % 2 ? vector.AddElementByRef(i) : vector.AddElement(i);
    }
    EXPECT_EQ(capacities, (Values{0, 1, 2, 4, 4}));
    EXPECT_EQ(ValuesOf(vector), (Values{0, 1, 2, 3, 4}));
    const unsigned* buffer = vector.GetDataPtr();
    vector.Empty();
    EXPECT_EQ(vector.GetNumElements(), 0u);
    EXPECT_EQ(vector.GetMaxElements(), 8u);
    EXPECT_EQ(vector.GetDataPtr(), buffer);
}

TEST(Vector, AppendsAnElementOfItsOwnWhileGrowing) {
    Integers vector = Make({7});
    for (int i = 0; i < 4; ++i) vector.AddElementByRef(vector[0]);
    EXPECT_EQ(ValuesOf(vector), (Values{7, 7, 7, 7, 7}));
}

TEST(Vector, ChangesItsCapacity) {
    const struct {
        unsigned capacity;
        int keep;
        Values expected;
    } kChanges[] = {
        {2, 1, {1, 2}}, {8, 1, {1, 2, 3, 4, 5}}, {2, 0, {}},
        {8, 0, {}},     {5, 0, {1, 2, 3, 4, 5}},  // the same: nothing happens
        {0, 1, {}},
    };
    for (const auto& change : kChanges) {
        Integers vector;
        vector.SetMaxElements(5, 0);
        for (unsigned i = 1; i <= 5; ++i) vector.AddElement(i);
        vector.SetMaxElements(change.capacity, change.keep);
        EXPECT_EQ(vector.GetMaxElements(), change.capacity);
        EXPECT_EQ(ValuesOf(vector), change.expected) << change.capacity << ' ' << change.keep;
        EXPECT_EQ(vector.GetDataPtr() == nullptr, change.capacity == 0);
    }
}

TEST(Vector, SetsItsCountWithoutRoundingUp) {
    Integers vector = Make({1, 2, 3});
    KxSetError(KX_ERROR_SIZE_MISMATCH);
    vector.SetNumElements(2);
    EXPECT_EQ(KxGetError(), KX_ERROR_SIZE_MISMATCH) << "only growing resets the slot";
    vector.SetNumElements(6);
    EXPECT_EQ(KxGetError(), KX_OK);
    EXPECT_EQ(vector.GetMaxElements(), 6u);
    EXPECT_EQ(ValuesOf(vector), (Values{1, 2, 0, 0, 0, 0}));
}

TEST(Vector, RemovesElements) {
    Integers vector = Make({1, 2, 3});
    vector.RemoveElement(0);
    EXPECT_EQ(ValuesOf(vector), (Values{2, 3}));
    ExpectFailure(KX_ERROR_PARAMETER_1_OUT_OF_RANGE, {"KxVector::RemoveElement"},
                  [&] { vector.RemoveElement(2); });
    vector.RemoveElement(1);
    EXPECT_EQ(ValuesOf(vector), (Values{2}));
}

TEST(Vector, ChecksIndices) {
    Integers vector = Make({5, 6, 7});
    vector.RemoveElement(2);  // leaves an element in the buffer that is no longer in the vector
    vector[1] = 8;
    vector.SetElement(0, 9);
    EXPECT_EQ(vector.GetElement(0), 9u);
    EXPECT_EQ(vector.GetElement(1), 8u);
    for (const int index : {-1, 2, 3, INT_MIN, INT_MAX}) {
        const Names kFunction = {"KxVector::operator[]"};
        ExpectFailure(KX_ERROR_PARAMETER_1_OUT_OF_RANGE, kFunction, [&] { vector.SetElement(index, 1); });
        ExpectFailure(KX_ERROR_PARAMETER_1_OUT_OF_RANGE, kFunction,
                      [&] { EXPECT_EQ(vector.GetElement(index), 0u) << index; });
        ExpectFailure(KX_ERROR_PARAMETER_1_OUT_OF_RANGE, kFunction,
                      [&] { vector[static_cast<unsigned>(index)] = 4; });
    }
    EXPECT_EQ(ValuesOf(vector), (Values{9, 8}));
    EXPECT_EQ(vector.GetDataPtr()[2], 7u);
}

TEST(Vector, CopiesIntoExactlyAsMuchCapacity) {
    Integers source = Make({1, 2, 3});
    Integers destination = Make({4, 5, 6, 7, 8});
    EXPECT_EQ(source.CopyTo(&destination), &destination);
    EXPECT_EQ(ValuesOf(destination), (Values{1, 2, 3}));
    EXPECT_EQ(destination.GetMaxElements(), 3u);

    const std::unique_ptr<Integers> made(source.CopyTo(nullptr));
    EXPECT_EQ(ValuesOf(*made), (Values{1, 2, 3}));
    EXPECT_EQ(ValuesOf(Integers(source)), (Values{1, 2, 3}));
    EXPECT_EQ(&(source = *&source), &source);
    EXPECT_EQ(source.GetMaxElements(), 4u);
    EXPECT_EQ(ValuesOf(source = Integers()), Values{});
    EXPECT_EQ(source.GetDataPtr(), nullptr);
}

TEST(Vector, KeepsItsContentWhenMemoryIsShort) {
    Integers vector = Make({1, 2});
    const Integers source = Make({3, 4, 5});
    const ShortMemory shortage;
    const std::string kInner = "KxVector::SetMaxElements";
    unsigned value = 9;
    ExpectFailure(KX_ERROR_ALLOCATION, {kInner, "KxVector::AddElement"}, [&] { vector.AddElement(value); });
    ExpectFailure(KX_ERROR_ALLOCATION, {kInner, "KxVector::AddElementByRef"},
                  [&] { vector.AddElementByRef(value); });
    ExpectFailure(KX_ERROR_ALLOCATION, {kInner, "KxVector::SetNumElements"},
                  [&] { vector.SetNumElements(3); });
    ExpectFailure(KX_ERROR_ALLOCATION, {kInner}, [&] { vector = source; });
    EXPECT_EQ(ValuesOf(vector), (Values{1, 2}));
    EXPECT_EQ(vector.GetMaxElements(), 2u);
}

TEST(Vector, SiftsDownAHeap) {
    const struct {
        Values heap;
        unsigned value;
        Values expected;
    } kSifts[] = {
        {{9, 7, 8}, 1, {8, 7, 1}},
        {{9, 8, 8}, 1, {8, 1, 8}},                    // the left child wins ties
        {{9, 7, 8}, 8, {8, 7, 8}},                    // an equal child stays
        {{9, 8, 4, 7, 6, 3}, 5, {8, 7, 4, 5, 6, 3}},  // down two levels
        {{9, 8, 4, 7, 6, 3}, 0, {8, 7, 4, 0, 6, 3}},
        {{9}, 2, {2}},
    };
    const auto larger = [](const unsigned& a, const unsigned& b) { return int{a > b}; };
    for (const auto& sift : kSifts) {
        Integers vector = Make(sift.heap);
        vector.Sift(sift.value, larger);
        EXPECT_EQ(ValuesOf(vector), sift.expected);
    }
    Integers ownElement = Make({1, 7, 8});
    ownElement.Sift(ownElement[0], larger);
    EXPECT_EQ(ValuesOf(ownElement), (Values{8, 7, 1}));
    Integers shrunk = Make({9, 8, 20});
    shrunk.RemoveElement(2);
    shrunk.Sift(1, larger);
    EXPECT_EQ(ValuesOf(shrunk), (Values{8, 1})) << "what lies beyond the count takes no part";
    Integers empty;
    empty.Sift(1, larger);
    EXPECT_EQ(empty.GetNumElements(), 0u);
}

}  // namespace
}  // namespace Zelkor::Kalvo
