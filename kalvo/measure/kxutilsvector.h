#pragma once
// The list of pointers behind listeners and extents.

#include <cstdint>
#include <memory>
#include <type_traits>

#include "kalvo/base/kxexport.h"
#include "kalvo/frame/kxlibrary.h"

namespace Zelkor::Kalvo::Utils {

/// What lists of pointers have in common, whatever they point to. Its memory comes from `Kalvo_Malloc`.
class KX_API PointerVector {
public:
    PointerVector() = default;
    PointerVector(const PointerVector&) = delete;
    PointerVector& operator=(const PointerVector&) = delete;

    /// Number of pointers in the list, and for how many there is room.
    int NbItems() const { return m_n32Count; }
    int Capacity() const { return m_n32Capacity; }

    /// Removes the pointer at `n32Index`; the following ones move down. Beyond the end: throws
    /// `KX_ERROR_PARAMETER_1_OUT_OF_RANGE`, as for every index below; a failure changes nothing.
    void Remove(int n32Index);
    /// Makes room for exactly `n32Size` pointers; more than that are dropped. Negative: throws
    /// `KX_ERROR_PARAMETER_1_OUT_OF_RANGE`. Growing throws `KX_ERROR_ALLOCATION` without memory.
    void SetSize(int n32Size);

protected:
    ~PointerVector() = default;
    void Insert(void* pItem, int n32Index);
    int Find(const void* pItem) const;
    void* At(int n32Index) const;
    void Swap(PointerVector& other) noexcept;

private:
    struct Free {
        void operator()(void** ppItems) const { Kalvo_Free(ppItems); }
    };

    bool Reallocate(std::int64_t count);
    void Grow();
    void MoveToFront();
    void** Begin() const { return m_ppItems.get() + m_n32First; }

    std::unique_ptr<void*[], Free> m_ppItems;
    std::int32_t m_n32First = 0;  // pointers that were removed from the front leave room there
    std::int32_t m_n32Count = 0;
    std::int32_t m_n32Capacity = 0;
    std::int32_t m_n32Room = 0;  // in the block: the capacity or more
};

/// A list of pointers that owns nothing but itself. It grows by 32 at a time; growing throws
/// `KX_ERROR_ALLOCATION` without memory.
template <class T>
class Vector : public PointerVector {
    static_assert(std::is_pointer_v<T>);

public:
    /// Appends a pointer.
    void Add(T pItem) { Insert(pItem, NbItems()); }
    /// Inserts a pointer at `n32Index`, 0 to `NbItems()`; the following ones move up.
    void InsertItem(T pItem, int n32Index) { Insert(pItem, n32Index); }
    /// The pointer at `n32Index`.
    T operator[](int n32Index) const { return static_cast<T>(At(n32Index)); }
    /// The first index of a pointer; -1 when it is not in the list.
    int Find(T pItem) const { return PointerVector::Find(pItem); }
    /// Removes the first occurrence of a pointer, if there is one.
    void RemoveItem(T pItem) {
        if (const int n32Index = Find(pItem); n32Index >= 0) Remove(n32Index);
    }
    /// Exchanges the contents of two lists.
    void Swap(Vector& other) noexcept { PointerVector::Swap(other); }
};

}  // namespace Zelkor::Kalvo::Utils
