#pragma once
// Arrays of any number of dimensions in one block of memory, indexed as a[i][j][k].

#include <array>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

#include "kalvo/base/kxexport.h"

/// Lays out an array in a block: first a level of pointers for every dimension but the last, then the data,
/// without gaps. A level has as many entries as the product of the extents up to its own.
///
/// Sizes are in bytes. A block of 4 GiB or more, or one for which there is no memory, throws a
/// `std::bad_alloc` that says "bad allocation". Blocks come from `malloc`, uninitialised; free them.
class KX_API KxMultidimArray {
public:
    /// Makes a block and fills its pointers in as `InitPointers` does.
    /// @param un32EntrySize    of a pointer; the low bytes of an address are stored in it. 8 holds a whole
    /// one
    /// @param un32ElementSize  of an element of the data
    /// @param dims             the extents, the last one that of the data
    static unsigned char* Init(unsigned int un32EntrySize, unsigned int un32ElementSize,
                               const std::vector<unsigned int>& dims);

    /// Fills in the pointers. Entry k of a level addresses entry k of the next one, so every element has its
    /// chain only if each level has one entry for each of the one before: two dimensions of which the last is
    /// 1, an element being a row.
    /// @param offsets  of the levels in the block, the size of the block behind them
    static void InitPointers(unsigned int un32EntrySize, unsigned int un32ElementSize,
                             unsigned char* pun8Block, const std::vector<unsigned int>& offsets,
                             const std::vector<unsigned int>& dims);

    /// Makes a block of whole pointers in which every element has its chain: entry k of a level addresses the
    /// first entry of row k of the next one.
    /// @param un32ElementAlignment  a power of two up to `alignof(std::max_align_t)`: the data starts at a
    ///                              multiple of it, even if that leaves a gap
    /// @param un32DataOffset        becomes the offset of the data in the block
    static unsigned char* InitRows(unsigned int un32ElementSize, unsigned int un32ElementAlignment,
                                   const std::vector<unsigned int>& dims, unsigned int& un32DataOffset);
};

/// An array of `kDimensions` dimensions, indexed as a[i][j][k]: one block, one allocation. Indices are not
/// checked. Elements start as T().
/// @code
/// KxMultidimArrayOf<float, 3> cube({4, 5, 6});
/// cube[3][4][5] = 1;
/// @endcode
template <class T, std::size_t kDimensions>
class KxMultidimArrayOf {
    static_assert(kDimensions > 0);
    static_assert(std::is_trivially_destructible_v<T> && alignof(T) <= alignof(std::max_align_t));

    template <class Element, std::size_t kRemaining>
    struct Level {
        using Entry = typename Level<Element, kRemaining - 1>::Entry* const;
    };
    template <class Element>
    struct Level<Element, 1> {
        using Entry = Element;
    };
    template <class Element>
    using FirstEntry = typename Level<Element, kDimensions>::Entry;

public:
    /// Throws `std::bad_alloc` for a block of 4 GiB or more, or without memory.
    explicit KxMultidimArrayOf(const std::array<unsigned int, kDimensions>& dims) : m_Dims(dims) {
        unsigned int un32DataOffset = 0;
        m_pBlock.reset(
            KxMultidimArray::InitRows(sizeof(T), alignof(T), {dims.begin(), dims.end()}, un32DataOffset));
        m_pData = reinterpret_cast<T*>(m_pBlock.get() + un32DataOffset);
        std::uninitialized_value_construct_n(m_pData, GetNumElements());
    }

    /// The element, or the row that the next index applies to.
    FirstEntry<T>& operator[](std::size_t index) {
        return reinterpret_cast<FirstEntry<T>*>(m_pBlock.get())[index];
    }
    FirstEntry<const T>& operator[](std::size_t index) const {
        return reinterpret_cast<FirstEntry<const T>*>(m_pBlock.get())[index];
    }

    /// The elements one after the other, the last index running fastest. They belong to the array.
    T* GetDataPtr() { return m_pData; }
    const T* GetDataPtr() const { return m_pData; }
    /// The extent of a dimension, and the product of all of them.
    unsigned int GetExtent(std::size_t dimension) const { return m_Dims[dimension]; }
    std::size_t GetNumElements() const {
        std::size_t product = 1;
        for (const unsigned int un32Extent : m_Dims) product *= un32Extent;
        return product;
    }

private:
    struct Free {
        void operator()(unsigned char* pun8Block) const { std::free(pun8Block); }
    };

    std::array<unsigned int, kDimensions> m_Dims;
    std::unique_ptr<unsigned char, Free> m_pBlock;
    T* m_pData = nullptr;
};
