// Lists of points.

#include "tests/support/test.h"

namespace Zelkor::Kalvo {
namespace {

TEST(DrawPointList, GrowsAndRefusesIndicesOutsideAndSizesBeyondMemory) {
    const Testing::TraceRecorder traces;
    for (const int capacity : {INT_MAX, INT_MIN, 1}) {
        DrawPointList points(capacity);
        points.Add(DrawPoint{1.5, -2});
        for (int i = 1; i < 100; ++i) points.Add(points[i - 1]);
        EXPECT_EQ(points[99].y + points.GetCount(), 98);
        for (const int index : {-1, 100, INT_MAX, INT_MIN}) EXPECT_THROW(points[index].x = 0, Exception);
    }
    EXPECT_EQ(traces.Functions(), std::vector<std::string>{"DrawPointList::Add"}) << "the first is too big";
    EXPECT_EQ(KxGetError(), KX_ERROR_ALLOCATION);
    KxOk();
}

}  // namespace
}  // namespace Zelkor::Kalvo
