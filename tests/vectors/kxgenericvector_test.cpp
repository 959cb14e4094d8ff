// The generic vector: structures, buffers, and access in every item type.

#include "tests/support/test.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Numbers = std::vector<int>;

// Vector type, use, data type, data size, groups, group length, bytes, groups that fit.
Numbers StructureOf(const KxVector& vector) {
    return {vector.GetVectType(), vector.GetUse(),         vector.GetDataType(),      vector.GetDataSize(),
            vector.GetNbGroup(),  vector.GetGroupLength(), vector.GetAllocatedSize(), vector.GetNbMaxGroup()};
}

TEST(GenericVector, TakesAndRecognisesPredefinedStructures) {
    const Numbers structures[] = {
        {1, 2, 2, 8, 2000, 3, 24000, 2000}, {2, 1, 1, 8, 1, 256, 1024, 1},      {3, 10, 1, 2, 1, 256, 256, 1},
        {4, 5, 2, 8, 512, 3, 6144, 512},    {5, 9, 2, 8, 1000, 3, 12000, 1000}, {6, 3, 2, 8, 50, 4, 800, 50},
        {7, 10, 4, 8, 1, 1, 4, 1},
    };
    KxVector vector;
    EXPECT_EQ(StructureOf(vector), (Numbers{0, 0, 1, 8, 1, 0, 0, 0}));
    for (const Numbers& structure : structures) {
        EXPECT_EQ(vector.SetType(structure[0], 0, 0), KX_OK);
        EXPECT_EQ(StructureOf(vector), structure);
        vector.SetVectType(0);
        vector.SetUse(0);
        const bool isRecognised = structure[0] != 7;
        EXPECT_EQ(vector.IsSameVectType(structure[0]), isRecognised);
        EXPECT_EQ(vector.GetUse(), isRecognised ? structure[1] : 0);
    }
    EXPECT_EQ(vector.SetType(1, 10, 0), KX_OK);
    EXPECT_EQ(vector.IsSameVectType(5), 1);
    for (const int none : {INT_MIN, 0, 8})
        EXPECT_EQ(vector.SetType(none, 5, 5) + vector.IsSameVectType(none), 0);
    EXPECT_EQ(StructureOf(vector), (Numbers{5, 9, 2, 8, 10, 3, 120, 10}));
    vector.SetStructure(8, 2, 256, 1);
    EXPECT_EQ(vector.IsSameVectType(2), 0);  // it has one group too many
    vector.SetNbGroup(1);
    EXPECT_EQ(vector.IsSameVectType(2), 1);
}

TEST(GenericVector, KnowsTheSizeOfEveryItem) {
    KxVector vector(3);
    EXPECT_EQ(vector.GetAllocatedSize(), 12);
    constexpr int kDataSizes[] = {2, 4, 8, 16, 5};
    const Numbers sizes[] = {{1, 1, 2, 4, 1, 1}, {2, 1, 2, 4, 1, 1}, {4, 4, 4, 4, 8, 4}, {3, 1, 1, 1, 1, 1}};
    for (const Numbers& row : sizes)  // a data type, then the bytes of an item of each data size
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(vector.SetStructure(kDataSizes[i], 2, 3, row[0]), KX_OK);
            EXPECT_EQ(vector.GetAllocatedSize(), 6 * row[i + 1]) << row[0] << ", " << kDataSizes[i];
        }
}

TEST(GenericVector, ReplacesAndResizesItsBuffer) {
    KxVector vector;
    vector.SetGroupLength(3);
    EXPECT_EQ(vector.SetAllocatedSize(100), KX_OK);
    EXPECT_EQ(vector.GetNbMaxGroup(), 8);
    EXPECT_EQ(vector.SetData(8, 0, 5u), KX_OK);
    EXPECT_EQ(vector.Reallocate(1000), KX_OK);
    EXPECT_EQ(vector.GetNbMaxGroup(), 83);
    ExpectFailure(KX_ERROR_ALLOCATION, {"KxVector::Reallocate"}, [&] { return vector.Reallocate(-1); });
    EXPECT_EQ(static_cast<unsigned*>(vector.GetDataPtr())[24], 5u);
    EXPECT_EQ(vector.Reallocate(0), KX_OK);
    EXPECT_EQ(vector.GetDataPtr(), nullptr);
    EXPECT_EQ(vector.GetNbMaxGroup(), 83);  // only a new buffer changes it, and who asks for it
    vector.SetNbMaxGroup();
    EXPECT_EQ(vector.GetNbMaxGroup(), 0);
    vector.SetGroupLength(-1);
    EXPECT_EQ(vector.SetAllocatedSize(-1) + vector.SetAllocatedSize(8), 2 * KX_OK);
    const std::string items = "KxVector::SetItemsAllocatedSize";
    ExpectFailure(KX_ERROR_ALLOCATION, {items}, [&] { return vector.SetItemsAllocatedSize(INT_MAX); });
    EXPECT_EQ(vector.GetAllocatedSize(), 0);
    ExpectFailure(KX_ERROR_ALLOCATION, {items, "KxVector::SetStructure"},
                  [&] { return vector.SetStructure(2, INT_MIN, INT_MIN, 1); });
    ExpectFailure(KX_ERROR_ALLOCATION, {items, "KxVector::SetType"},
                  [&] { return vector.SetType(1, INT_MAX, 1); });
    EXPECT_EQ(vector.GetUse(), 2);
    EXPECT_EQ(KxGetError(), KX_OK);  // the getter has reset it
}

template <class T>
void CheckAccess(int dataType, const std::string& word) {
    KxVector vector;
    ASSERT_EQ(vector.SetStructure(2 * sizeof(T), 3, 2, dataType), KX_OK);
    const T values[] = {1, 2, 3, static_cast<T>(-4)};
    T group[4] = {}, value = 0;
    EXPECT_EQ(vector.SetGroups(1, 2, values), KX_OK);
    EXPECT_EQ(vector.SetData(2, 0, T{9}), KX_OK);
    EXPECT_EQ(vector.GetGroups(1, 2, group), KX_OK);
    EXPECT_EQ(std::vector<T>(group, group + 4), (std::vector<T>{1, 2, 9, static_cast<T>(-4)}));
    EXPECT_EQ(vector.GetData(1, 1, value), KX_OK);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(vector.SetGroups(0, 2, static_cast<T*>(vector.GetDataPtr()) + 2), KX_OK);  // overlapping
    EXPECT_EQ(static_cast<T*>(vector.GetDataPtr())[1], 2);
    const auto expectAll = [&](KX_ERRORS code, int g, int i, int groups) {
        ExpectFailure(code, {"KxVector::GetData " + word}, [&] { return vector.GetData(g, i, value); });
        ExpectFailure(code, {"KxVector::SetData " + word}, [&] { return vector.SetData(g, i, T{7}); });
        ExpectFailure(code, {"KxVector::GetGroups " + word},
                      [&] { return vector.GetGroups(g, groups, group); });
        ExpectFailure(code, {"KxVector::SetGroups " + word},
                      [&] { return vector.SetGroups(g, groups, values); });
    };
    for (const int hostile : {-1, INT_MIN, INT_MAX})
        expectAll(KX_ERROR_PARAMETERS_OUT_OF_RANGE, hostile, hostile, hostile);
    expectAll(KX_ERROR_PARAMETERS_OUT_OF_RANGE, 2, 2, 2);
    EXPECT_EQ(vector.GetGroups(3, 0, group), KX_OK);
    EXPECT_EQ(value, 2);
    vector.SetDataSize(32);
    expectAll(KX_ERROR_INVALID_DATA_SIZE, 0, 0, 1);
    vector.SetDataType(8);
    expectAll(KX_ERROR_INVALID_DATA_TYPE, 0, 0, 1);
}

TEST(GenericVector, ReadsAndWritesItemsOfItsOwnTypeInsideItsBuffer) {
    CheckAccess<unsigned char>(1, "UINT8"), CheckAccess<signed char>(2, "INT8");
    CheckAccess<unsigned short>(1, "UINT16"), CheckAccess<short>(2, "INT16");
    CheckAccess<unsigned int>(1, "UINT32"), CheckAccess<int>(2, "INT32");
    CheckAccess<float>(4, "FLOAT32"), CheckAccess<double>(4, "FLOAT64");
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
