// Pixel vectors: construction, lookup tables, moments. Their plots are tested with the other drawing code.

#include "tests/support/test.h"

namespace Zelkor::Kalvo::Testing {
namespace {

template <class Vector, class... Value>
Vector Make(Value... values) {
    Vector vector;
    (vector.AddElement(values), ...);
    return vector;
}

TEST(PixelVector, StartsEmptyWithRoom) {
    KxBW8Vector gray(10), wrapped(0, 0);
    EXPECT_EQ(gray.GetNumElements(), 0u);
    EXPECT_EQ(gray.GetMaxElements(), 10u);
    EXPECT_EQ(gray.GetUnsigned(), 1);
    EXPECT_EQ(wrapped.GetUnsigned(), 0);
    EXPECT_EQ(KxC24Vector(7).GetMaxElements(), 7u);
    EXPECT_EQ(KxINT32Vector(7).GetNumElements(), 0u);
    EXPECT_EQ(KxBW32Vector().GetDataPtr(), nullptr);
}

TEST(PixelVector, IsSavedAsTheVectorOfItsElements) {
    const TemporaryFolder folder;
    auto vector = Make<KxBW8Vector>(10, 20);
    vector.Save(folder.File("vector").c_str());
    EXPECT_EQ(folder.Read("vector"), (Bytes{0x4B, 1, 1, 0x4B, 2, 0, 0, 0, 10, 20}));
}

TEST(LookupTable, HasTwoLevelsAroundAThreshold) {
    KxBW8Vector table;
    for (const int threshold : {0, 128, 255}) {
        KxSetError(KX_ERROR_FILE_READ);
        table.SetupThreshold(static_cast<std::uint8_t>(threshold), 7, 200);
        ASSERT_EQ(table.GetNumElements(), 256u);
        EXPECT_EQ(KxGetError(), KX_OK);
        for (int i = 0; i < 256; ++i) ASSERT_EQ(table.GetElement(i), i < threshold ? 7 : 200) << threshold;
    }
}

TEST(LookupTable, AppliesGainOffsetAndGamma) {
    constexpr float kNan = NAN, kMost = 3e38f;
    using Levels = std::map<int, int>;
    const std::tuple<float, float, float, Levels> kTables[] = {
        {1, 0, 1, {{0, 0}, {100, 100}, {255, 255}}},
        {2, -10, 1, {{3, 0}, {10, 10}, {132, 254}, {133, 255}, {255, 255}}},
        {-1, 255, 1, {{0, 255}, {1, 254}, {255, 0}}},
        {0.7f, 0, 1, {{10, 6}, {11, 7}}},  // 0.7f is less than 0.7
        {1, 0, 0.5f, {{0, 0}, {64, 127}, {255, 255}}},
        {0.5f, 20, 0.5f, {{0, 20}, {64, 83}, {255, 147}}},
        {-1, 100, 0.5f, {{0, 100}, {255, 0}}},
        {1, 0, 2, {{0, 0}, {128, 64}, {255, 255}}},
        {2, -10, 2, {{5, 0}, {64, 54}, {200, 255}}},
        {1, -300, 2, {{0, 0}, {255, 0}}},
        {1, 0, 0, {{0, 255}, {255, 255}}},
        {1, 0, -1, {{0, 255}, {128, 255}}},  // infinite at 0
        {kMost, -kMost, 1, {{0, 0}, {2, 255}}},
        {kNan, kNan, 1, {{9, 0}}},
        {kMost, 0, 300, {{0, 0}, {1, 255}}},
    };
    for (const auto& [gain, offset, gamma, levels] : kTables) {
        KxBW8Vector table;
        table.SetupGainOffset(gain, offset, gamma);
        for (const auto& [index, level] : levels)
            EXPECT_EQ(table.GetElement(index), level)
                << gain << ' ' << offset << ' ' << gamma << ' ' << index;
    }
}

TEST(WeightedMoment, IsTheMeanIndex) {
    const auto vector = Make<KxBW8Vector>(0, 1, 0, 3);
    constexpr unsigned kEnd = 0xFFFFFFFF;
    EXPECT_EQ(vector.WeightedMoment(0, kEnd), 2.5f);
    EXPECT_EQ(vector.WeighedMoment(2, 3), 3.0f);
    EXPECT_EQ(vector.WeightedMoment(0, 0), 0.0f);
    EXPECT_EQ(Make<KxBW16Vector>(0, 0xFFFF, 0xFFFF).WeightedMoment(0, kEnd), 1.5f);
    // Weights of 2^32 - 1 and 2 add up to 1; twice the former is 2^32 - 2.
    EXPECT_EQ(Make<KxBW32Vector>(0u, 2u, 0xFFFFFFFFu).WeightedMoment(0, kEnd), 4294967296.0f);
}

TEST(WeightedMoment, RefusesRangesThatTheVectorHasNot) {
    const auto bytes = Make<KxBW8Vector>(0, 1, 0, 3);
    const auto words = Make<KxBW16Vector>(1, 2);
    const KxBW32Vector empty;
    const auto expectFailure = [](const auto& vector, unsigned first, unsigned last, KX_ERRORS code,
                                  const std::string& name) {
        TraceRecorder trace;
        KxOk();
        EXPECT_EQ(vector.WeightedMoment(first, last), 0.0f);
        EXPECT_EQ(KxGetError(), code) << first << ' ' << last;
        EXPECT_EQ(trace.Functions(), Names{name + "::WeightedMoment"});
    };
    expectFailure(bytes, 2, 1, KX_ERROR_PARAMETERS_OUT_OF_RANGE, "KxBW8Vector");
    expectFailure(bytes, 4, 5, KX_ERROR_PARAMETER_1_OUT_OF_RANGE, "KxBW8Vector");
    expectFailure(bytes, 1, 4, KX_ERROR_PARAMETER_2_OUT_OF_RANGE, "KxBW8Vector");
    expectFailure(words, 0, 0xFFFFFFFE, KX_ERROR_PARAMETER_2_OUT_OF_RANGE, "KxBW16Vector");
    expectFailure(empty, 0, 0, KX_ERROR_VECTOR_NUMBER_OF_ELEMENTS, "KxBW32Vector");
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
