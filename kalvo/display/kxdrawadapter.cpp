// The named colours, and the list of points.

#include "kalvo/display/kxdrawadapter.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/kxlibrary.h"

namespace Zelkor {
namespace {

constexpr int kGrowth = 32;

int CheckedIndex(int index, int count) {
    if (index < 0 || index >= count) throw Kalvo::Exception(KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
    return index;
}

}  // namespace

// Set before any constructor runs, so that other libraries may use them in theirs.
constinit const RGBColor RGBColor::Current(-1, -1, -1);
constinit const RGBColor RGBColor::Black(0, 0, 0);
constinit const RGBColor RGBColor::White(255, 255, 255);
constinit const RGBColor RGBColor::Gray(127, 127, 127);
constinit const RGBColor RGBColor::Red(255, 0, 0);
constinit const RGBColor RGBColor::Blue(0, 0, 255);

DrawPointList::DrawPointList(int n32Capacity) {
    if (n32Capacity > 0) Reserve(n32Capacity);
}

DrawPointList::~DrawPointList() { Kalvo_Free(m_pPoints); }

// The room for `capacity` points; false, and reported, when it can't be had.
bool DrawPointList::Reserve(int capacity) {
    const std::uint64_t bytes = std::uint64_t{sizeof(DrawPoint)} * static_cast<unsigned>(capacity);
    void* block =
        bytes <= std::numeric_limits<unsigned>::max() ? Kalvo_Malloc(static_cast<unsigned>(bytes)) : nullptr;
    if (!block) {
        Kalvo::Report(KX_ERROR_ALLOCATION, "DrawPointList::Add");
        return false;
    }
    auto* points = static_cast<DrawPoint*>(block);
    std::copy_n(m_pPoints, m_n32Count, points);
    Kalvo_Free(m_pPoints);
    m_pPoints = points;
    m_n32Capacity = capacity;
    return true;
}

void DrawPointList::Add(const DrawPoint& point) {
    const DrawPoint added = point;  // it may lie in the array that growing releases
    if (m_n32Count == m_n32Capacity && !Reserve(m_n32Capacity + kGrowth)) return;
    m_pPoints[m_n32Count++] = added;
}

DrawPoint& DrawPointList::operator[](int n32Index) { return m_pPoints[CheckedIndex(n32Index, m_n32Count)]; }

const DrawPoint& DrawPointList::operator[](int n32Index) const {
    return m_pPoints[CheckedIndex(n32Index, m_n32Count)];
}

}  // namespace Zelkor
