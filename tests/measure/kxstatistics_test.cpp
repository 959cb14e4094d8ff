// The ring of samples and its statistics, the stopwatch, and the steps of a search.

#include "tests/support/test.h"

namespace Zelkor::Kalvo::Testing {
namespace {

TEST(Statistics, CoverTheLastSamplesOnly) {
    KxStatistics statistics(3);
    EXPECT_EQ(statistics.Average(), 0);
    statistics.NewElement(5);
    EXPECT_EQ(statistics.Deviation(), 0);
    for (const float sample : {1, 2, 3, 4}) statistics.NewElement(sample);
    EXPECT_EQ(statistics.Count(), 3u);
    EXPECT_EQ(statistics.Average(), 3);
    EXPECT_EQ(statistics.Minimum(), 2);
    EXPECT_EQ(statistics.Maximum(), 4);
    EXPECT_FLOAT_EQ(statistics.Deviation(), std::sqrt(2 / 3.0f));
}

TEST(Statistics, SumInTheOrderOfTheRingAndPassOverNan) {
    KxStatistics statistics(3);
    for (const float sample : {0.0f, 1.0f, 1.0f, 0x1p24f}) statistics.NewElement(sample);
    EXPECT_EQ(statistics.Average(), 0x1p24f / 3);  // each 1 is lost in single precision
    statistics.Reset(3);
    for (const float sample : {2.0f, NAN, 1.0f}) statistics.NewElement(sample);
    EXPECT_EQ(statistics.Minimum(), 1);
    EXPECT_EQ(statistics.Maximum(), 2);
}

TEST(Statistics, IgnoreSamplesWithoutRoom) {
    KxStatistics statistics(2);
    ExpectFailure(KX_ERROR_ALLOCATION, {"KxStatistics::Reset"}, [&] {
        const ShortMemory shortage;
        statistics.Reset(7);
    });
    statistics.NewElement(1);
    EXPECT_EQ(statistics.Count() + statistics.Minimum() + statistics.Maximum(), 0);
}

TEST(Stopwatch, ReadsTheTimeOfDayUntilTheCounterIsStarted) {
    OzzoTLSStruct& record = *KxGetTLSPtr();
    GetSystemTime(&record.m_StartTime.m_SystemTime);
    record.m_StartTime.m_SystemTime.wYear = 0;  // years and months do not count
    EXPECT_LE(std::abs(KxStopTiming(1)), 1);
    record.m_StartTime.m_SystemTime.wDay += 2;
    EXPECT_NEAR(KxStopTiming(1), -2 * 86400, 1);
    EXPECT_EQ(KxStopTiming(INT_MAX), INT_MIN);

    KxStartTiming();
    EXPECT_EQ(KxStopTiming(0), 0);
    record.m_StartTime.m_n64Counter -= std::int64_t{1000} * KxTrueTimingResolution();
    const int seconds = KxStopTiming(1);
    EXPECT_TRUE(seconds >= 1000 && seconds < 1010) << seconds;
    EXPECT_EQ(KxStopTiming(INT_MAX), INT_MAX);
}

struct Search {
    unsigned skewSteps = 99, scaleSteps = 99;
    float skewStep = 99, scaleStep = 99;

    Search(int width, int height, float skewRange, float scaleRange, int adjust) {
        KxSkewScaleSteps(width, height, skewRange, skewSteps, skewStep, scaleRange, scaleSteps, scaleStep,
                         adjust);
    }
};

TEST(SearchSteps, MovePointsByAboutOnePixel) {
    KxSetAngleUnit(KX_ANGLE_UNITS_RADIANS);
    const Search free(100, 100, 0.5f, 0.01f, 0), adjusted(100, 100, 0.5f, 0.01f, 1);
    EXPECT_EQ(free.skewSteps, 20u);
    EXPECT_NEAR(free.skewStep, 1 / 38.2598, 1e-7);
    EXPECT_EQ(adjusted.skewStep, 0.5f / 19);
    EXPECT_EQ(adjusted.scaleSteps, 1u);
    EXPECT_EQ(adjusted.scaleStep, free.skewStep);  // one step covers nothing
    EXPECT_NEAR(Search(30, 10, 0, 0, 0).scaleStep, Search(10, 30, 0, 0, 0).scaleStep, 1e-7);
    KxSetAngleUnit(KX_ANGLE_UNITS_DEGREES);
    EXPECT_NEAR(Search(100, 100, 0, 0, 0).skewStep, 180 / (38.2598 * 3.14159265), 1e-5);
}

TEST(SearchSteps, CountNegativeRangesModulo2To32) {
    KxSetAngleUnit(KX_ANGLE_UNITS_RADIANS);
    const Search backwards(100, 100, -0.5f, -0.01f, 1), further(100, 100, -0.5f, -0.04f, 0);
    EXPECT_EQ(backwards.skewSteps, -18u);  // 19.13 steps back, rounded, and one more
    EXPECT_EQ(backwards.skewStep, 0.5f / 19);
    EXPECT_EQ(backwards.scaleSteps, 1u);
    EXPECT_EQ(further.scaleSteps, -1u);
    KxSetAngleUnit(KX_ANGLE_UNITS_DEGREES);
}

TEST(SearchSteps, ClampRangesAndRefuseEmptyPatterns) {
    const Search huge(100, 100, INFINITY, 1e30f, 1), hostile(INT_MAX, 1, NAN, -1e30f, 1);
    EXPECT_EQ(huge.skewSteps & huge.scaleSteps, 0x80000000u);
    EXPECT_EQ(hostile.skewSteps, 1u);
    EXPECT_EQ(hostile.scaleSteps, 0x80000001u);
    const auto expectRefusal = [](int width, int height, KX_ERRORS code) {
        ExpectFailure(code, {"KxSkewScaleSteps"}, [&] {
            const Search refused(width, height, 1, 1, 1);
            EXPECT_EQ(refused.skewStep + refused.scaleStep + refused.skewSteps + refused.scaleSteps, 4 * 99);
        });
    };
    expectRefusal(0, 0, KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
    expectRefusal(1, INT_MIN, KX_ERROR_PARAMETER_2_OUT_OF_RANGE);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
