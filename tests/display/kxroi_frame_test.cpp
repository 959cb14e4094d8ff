// Frames and handles of regions: what is drawn, found and dragged.

#include "tests/support/test.h"

#include "tests/support/recording_surface.h"

namespace Zelkor::Kalvo::Testing {
namespace {

using Image = KxImage<KxBW8>;
using Region = KxROI<KxBW8>;
using Calls = std::vector<std::string>;

TEST(Frame, IsFourSidesAndThenEightHandles) {
    Image image(100, 100);
    Region region(&image, 0, 0, 10, 10);
    RecordingSurface surface;
    region.DrawFrame(&surface, KX_FRAME_POSITION_ON_BORDER, 1, 2, 0, 1, 0);
    EXPECT_EQ(surface.calls,
              (Calls{"line 2 0 21 0 current", "line 21 0 21 19 current", "line 21 19 2 19 current",
                     "line 2 19 2 0 current", "rectangle white -2 -4 8 8 current",
                     "rectangle white 7 -4 8 8 current", "rectangle white 17 -4 8 8 current",
                     "rectangle white -2 5 8 8 current", "rectangle white 17 5 8 8 current",
                     "rectangle white -2 15 8 8 current", "rectangle white 7 15 8 8 current",
                     "rectangle white 17 15 8 8 current"}));
}

TEST(Frame, LiesWhereItsPositionSays) {
    Image image(100, 100);
    Region parent(&image, 3, 4, 50, 50), region(&parent, 2, 1, 20, 20);  // device rectangle 5, 5, 25, 25
    const std::tuple<int, int, const char*, const char*> kFrames[] = {
        {KX_FRAME_POSITION_ON_BORDER, 3, "line 5 5 24 5 current", "line 24 24 5 24 current"},
        {KX_FRAME_POSITION_INSIDE, 3, "line 6 6 23 6 current", "line 23 23 6 23 current"},
        {KX_FRAME_POSITION_OUTSIDE, 3, "line 3 3 26 3 current", "line 26 26 3 26 current"},
        {KX_FRAME_POSITION_INSIDE, 4, "line 7 7 23 7 current", "line 23 23 7 23 current"},
        {7, 3, "line 5 5 25 5 current", "line 25 25 5 25 current"},
    };
    for (const auto& [position, penWidth, top, bottom] : kFrames) {
        RecordingSurface surface;
        surface.penWidth = penWidth;
        region.DrawFrame(&surface, static_cast<KX_FRAME_POSITION>(position), 0, 1, 0, 0, 0);
        ASSERT_EQ(surface.calls.size(), 4u);
        EXPECT_EQ(surface.calls[0], top) << position;
        EXPECT_EQ(surface.calls[2], bottom) << position;
    }
}

TEST(HitTest, FindsHandlesBeforeTheInside) {
    Image image(100, 100);
    Region region(&image, 10, 10, 20, 20), small(&image, 10, 10, 4, 4), low(&image, 0, 40, 40, 4);
    const std::tuple<Region*, int, int, KX_HANDLES> kPoints[] = {
        {&region, 20, 12, KX_HANDLE_NORTH},      {&region, 14, 14, KX_HANDLE_NORTH_WEST},
        {&region, 15, 15, KX_HANDLE_INSIDE},     {&region, 30, 30, KX_HANDLE_SOUTH_EAST},
        {&region, 26, 26, KX_HANDLE_SOUTH_EAST}, {&region, 35, 20, KX_HANDLE_NONE},
        {&region, 34, 16, KX_HANDLE_EAST},       {&region, 10, 25, KX_HANDLE_INSIDE},
        {&region, 34, 6, KX_HANDLE_NORTH_EAST},  {&region, 6, 34, KX_HANDLE_SOUTH_WEST},
        {&region, 20, 26, KX_HANDLE_SOUTH},      {&region, 9, 25, KX_HANDLE_NONE},
        {&small, 10, 10, KX_HANDLE_NORTH},       {&small, 14, 13, KX_HANDLE_NORTH},
        {&small, 12, 17, KX_HANDLE_SOUTH},       {&low, 0, 40, KX_HANDLE_WEST},
    };
    for (const auto& [where, x, y, handle] : kPoints)
        EXPECT_EQ(where->HitTest(x, y, 1, 1, 0, 0), handle) << x << ' ' << y;
    EXPECT_EQ(region.HitTest(64, 60, 2, 0, 2, 1), KX_HANDLE_SOUTH_EAST) << "a vertical zoom of 0";
    EXPECT_EQ(region.HitTest(5, 7, 0.25f, 0.25f, 0, 0), KX_HANDLE_NORTH) << "10 x 0.25 rounds to 3";
}

struct DragCase {
    const char* about;
    GenericRoiExtent from;
    int grabX, grabY;  // on the surface, at zoom 2
    KX_HANDLES handle;
    int toX, toY;
    GenericRoiExtent expected;
};
// In a parent at (10, 20) of 60 x 50 pixels. The least position of a dragged near side is the parent's
// origin.
const DragCase kDrags[] = {
    {"inside", {5, 5, 20, 20}, 50, 70, KX_HANDLE_INSIDE, 61, 59, {10, 0, 20, 19}},
    {"nothing", {5, 5, 20, 20}, 50, 70, KX_HANDLE_NONE, 90, 90, {5, 5, 20, 20}},
    {"no handle", {5, 5, 20, 20}, 50, 70, static_cast<KX_HANDLES>(10), 90, 90, {5, 5, 20, 20}},
    {"east", {5, 5, 20, 20}, 0, 0, KX_HANDLE_EAST, 101, 0, {5, 5, 35, 20}},
    {"east beyond west", {5, 5, 20, 20}, 0, 0, KX_HANDLE_EAST, -300, 0, {5, 5, 1, 20}},
    {"east beyond the parent", {5, 5, 20, 20}, 0, 0, KX_HANDLE_EAST, 900, 0, {5, 5, 55, 20}},
    {"west", {5, 5, 20, 20}, 0, 0, KX_HANDLE_WEST, 40, 0, {10, 5, 15, 20}},
    {"west beyond east", {5, 5, 20, 20}, 0, 0, KX_HANDLE_WEST, 900, 0, {24, 5, 1, 20}},
    {"west beyond the parent", {5, 5, 20, 20}, 0, 0, KX_HANDLE_WEST, -900, 0, {0, 5, 25, 20}},
    {"north", {5, 5, 20, 20}, 0, 0, KX_HANDLE_NORTH, 0, 60, {5, 10, 20, 15}},
    {"south", {5, 5, 20, 20}, 0, 0, KX_HANDLE_SOUTH, 0, 80, {5, 5, 20, 15}},
    {"north-west", {5, 5, 20, 20}, 0, 0, KX_HANDLE_NORTH_WEST, 32, 52, {6, 6, 19, 19}},
    {"south-west", {5, 5, 20, 20}, 0, 0, KX_HANDLE_SOUTH_WEST, 32, 92, {6, 5, 19, 21}},
    {"north-east", {5, 5, 20, 20}, 0, 0, KX_HANDLE_NORTH_EAST, 72, 52, {5, 6, 21, 19}},
    {"north-west of no width", {0, 5, 0, 20}, 0, 0, KX_HANDLE_NORTH_WEST, 0, 60, {0, 5, 1, 15}},
    {"south-east", {5, 5, 20, 20}, 0, 0, KX_HANDLE_SOUTH_EAST, 72, 92, {5, 5, 21, 21}},
};

TEST(Drag, MovesTheSidesOfItsHandle) {
    const TraceRecorder quiet;
    for (const DragCase& drag : kDrags) {
        Image image(200, 200);
        Region parent(&image, 10, 20, 60, 50);
        Region region(&parent, drag.from.m_n32OrgX, drag.from.m_n32OrgY, drag.from.m_n32Width,
                      drag.from.m_n32Height);
        region.HitTest(drag.grabX, drag.grabY, 2, 0, 0, 0);
        region.Drag(drag.handle, drag.toX, drag.toY, 2, 0, 0, 0);
        EXPECT_EQ(region.GetExtent(), drag.expected) << drag.about;
    }
}

TEST(Drag, KeepsThePointThatWasGrabbedUnderThePointer) {
    TraceRecorder trace;
    Image image(100, 100);
    Region region(&image, 10, 10, 20, 20);
    EXPECT_EQ(region.HitTest(17, 22, 1, 1, 0, 0), KX_HANDLE_INSIDE);
    for (const auto& [x, y] : {std::pair{30, 40}, {17, 22}, {60, 23}})
        region.Drag(KX_HANDLE_INSIDE, x, y, 1, 1, 0, 0);
    EXPECT_EQ(region.GetExtent(), GenericRoiExtent(29, 11, 20, 20)) << "a move goes at most to the far end";
    region.Drag(KX_HANDLE_INSIDE, -50, 23, 1, 1, 0, 0);  // cut off at the left: the anchor follows
    EXPECT_EQ(region.GetExtent(), GenericRoiExtent(0, 11, 13, 20));
    region.Drag(KX_HANDLE_INSIDE, 10, 23, 1, 1, 0, 0);
    EXPECT_EQ(region.GetOrgX(), 10);
    EXPECT_TRUE(trace.Boxes().empty());
}

TEST(Drag, WorksWithoutAParentAndNotOnImages) {
    TraceRecorder trace;
    Region region;
    region.SetPlacement(10, 10, 20, 20);
    region.Drag(KX_HANDLE_NORTH_WEST, -5, 4, 1, 1, 0, 0);  // a root has no place: it begins at (0, 0)
    EXPECT_EQ(region.GetExtent(), GenericRoiExtent(10, 14, 20, 16));
    Image image(10, 10);
    image.Drag(KX_HANDLE_EAST, 5, 5, 1, 1, 0, 0);
    EXPECT_EQ(image.GetWidth(), 10);
    EXPECT_EQ(trace.Functions(), (Calls{"KxROI::SetWidth"}));
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
