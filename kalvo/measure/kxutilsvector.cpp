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

// Moves the first pointers into a block for so many; false, and nothing changes, when there is no memory.
bool PointerVector::Reallocate(std::int64_t count) {
    decltype(m_ppItems) items(count > 0 ? AllocateItems(count) : nullptr);
    if (!items && count > 0) return false;
    m_n32Count = static_cast<std::int32_t>(std::min<std::int64_t>(m_n32Count, count));
    std::copy_n(Begin(), m_n32Count, items.get());
    m_ppItems = std::move(items);
    m_n32First = 0;
    m_n32Room = static_cast<std::int32_t>(count);
    return true;
}

void PointerVector::SetSize(int n32Size) {
    if (n32Size < 0) throw Exception(KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
    if (!Reallocate(n32Size)) {
        if (n32Size > m_n32Capacity) throw Exception(KX_ERROR_ALLOCATION);
        m_n32Count = std::min(m_n32Count, n32Size);  // a block too large does no harm: shrinking succeeds
    }
    m_n32Capacity = n32Size;
}

// The capacity that the outside sees grows by a fixed step, the block behind it by half, so that long lists
// take linear time.
void PointerVector::Grow() {
    const std::int64_t least = std::int64_t{m_n32Capacity} + kGrowth;
    if (least > m_n32Room && !Reallocate(std::max(least, m_n32Room * std::int64_t{3} / 2)) &&
        !Reallocate(least))
        throw Exception(KX_ERROR_ALLOCATION);
    m_n32Capacity += kGrowth;
}

void PointerVector::MoveToFront() {
    std::copy_n(Begin(), m_n32Count, m_ppItems.get());
    m_n32First = 0;
}

void PointerVector::Insert(void* pItem, int n32Index) {
    CheckIndex(n32Index, m_n32Count + 1);
    if (m_n32Count == m_n32Capacity) Grow();
    if (m_n32First + m_n32Count == m_n32Room) MoveToFront();
    void** const position = Begin() + n32Index;
    void** const end = Begin() + m_n32Count;
    std::copy_backward(position, end, end + 1);
    *position = pItem;
    ++m_n32Count;
}

// Moves what stands on the shorter side, so that both ends are removed without moving anything.
void PointerVector::Remove(int n32Index) {
    CheckIndex(n32Index, m_n32Count);
    void** const position = Begin() + n32Index;
    if (n32Index < m_n32Count / 2) {
        std::copy_backward(Begin(), position, position + 1);
        ++m_n32First;
    } else {
        std::copy(position + 1, Begin() + m_n32Count, position);
    }
    --m_n32Count;
}

int PointerVector::Find(const void* pItem) const {
    void** const end = Begin() + m_n32Count;
    void** const found = std::find(Begin(), end, pItem);
    return found == end ? -1 : static_cast<int>(found - Begin());
}

void* PointerVector::At(int n32Index) const {
    CheckIndex(n32Index, m_n32Count);
    return Begin()[n32Index];
}

void PointerVector::Swap(PointerVector& other) noexcept {
    std::swap(m_ppItems, other.m_ppItems);
    std::swap(m_n32First, other.m_n32First);
    std::swap(m_n32Count, other.m_n32Count);
    std::swap(m_n32Capacity, other.m_n32Capacity);
    std::swap(m_n32Room, other.m_n32Room);
}

}  // namespace Zelkor::Kalvo::Utils
