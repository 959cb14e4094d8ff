// A list of pointers that grows by a fixed step.

#include "kalvo/measure/kxutilsvector.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "kalvo/frame/kxexception.h"

namespace Zelkor::Kalvo::Utils {
namespace {

constexpr int kGrowth = 32;
constexpr std::int64_t kMostItems = std::numeric_limits<unsigned>::max() / sizeof(void*);

void CheckIndex(int index, int end) {
    if (index < 0 || index >= end) throw Exception(KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
}

// Null when there is no memory.
void** AllocateItems(std::int64_t count) {
    if (count > kMostItems) return nullptr;
    return static_cast<void**>(Kalvo_Malloc(static_cast<unsigned>(count * sizeof(void*))));
}

}  // namespace

void PointerVector::SetSize(int n32Size) {
    if (n32Size < 0) throw Exception(KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
    decltype(m_ppItems) items(n32Size > 0 ? AllocateItems(n32Size) : nullptr);
    const int kept = std::min(m_n32Count, n32Size);
    if (items || n32Size == 0) {
        std::copy_n(m_ppItems.get(), kept, items.get());
        m_ppItems = std::move(items);
    } else if (n32Size >
               m_n32Capacity) {  // a block too large does no harm, so that shrinking always succeeds
        throw Exception(KX_ERROR_ALLOCATION);
    }
    m_n32Count = kept;
    m_n32Capacity = n32Size;
}

void PointerVector::Insert(void* pItem, int n32Index) {
    CheckIndex(n32Index, m_n32Count + 1);
    if (m_n32Count == m_n32Capacity) SetSize(m_n32Capacity + kGrowth);
    void** const position = m_ppItems.get() + n32Index;
    void** const end = m_ppItems.get() + m_n32Count;
    std::copy_backward(position, end, end + 1);
    *position = pItem;
    ++m_n32Count;
}

void PointerVector::Remove(int n32Index) {
    CheckIndex(n32Index, m_n32Count);
    void** const position = m_ppItems.get() + n32Index;
    std::copy(position + 1, m_ppItems.get() + m_n32Count, position);
    --m_n32Count;
}

int PointerVector::Find(const void* pItem) const {
    void** const begin = m_ppItems.get();
    void** const end = begin + m_n32Count;
    void** const found = std::find(begin, end, pItem);
    return found == end ? -1 : static_cast<int>(found - begin);
}

void* PointerVector::At(int n32Index) const {
    CheckIndex(n32Index, m_n32Count);
    return m_ppItems[n32Index];
}

void PointerVector::Swap(PointerVector& other) noexcept {
    std::swap(m_ppItems, other.m_ppItems);
    std::swap(m_n32Count, other.m_n32Count);
    std::swap(m_n32Capacity, other.m_n32Capacity);
}

}  // namespace Zelkor::Kalvo::Utils
