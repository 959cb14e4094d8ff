#pragma once
// The vector whose item type is chosen at run time.

#include <cstdint>
#include <memory>
#include <type_traits>

#include "kalvo/frame/kxerror.h"

/// Groups of equally many items in one buffer, the items being integers or floats of a width chosen at run
/// time. Item k of group g is item g * group length + k of the buffer.
///
/// Every operation first resets the error slot, so that afterwards it tells of that operation alone; those of
/// type short return the code as well. Failures are traced under "KxVector::" and the operation. A vector is
/// used by one thread at a time.
/// @code
/// KxVector points;
/// points.SetStructure(32, 0, 2, 2);  // groups of two signed numbers of 32 bits
/// points.SetNbGroup(10);
/// points.SetItemsAllocatedSize(20);
/// points.SetData(4, 1, 77);  // the second number of the fifth
/// @endcode
class KX_API KxVector {
public:
    /// One group, of no items yet, of the type unsigned int; a buffer of zeros with room for `n32Items` of
    /// them. Fails as `SetItemsAllocatedSize` does.
    explicit KxVector(int n32Items = 0);
    KxVector(const KxVector&) = delete;
    KxVector& operator=(const KxVector&) = delete;
    virtual ~KxVector();

    /// The buffer, null when there is none, and its size in bytes. It belongs to the vector.
    void* GetDataPtr() const { return Got(m_pData.get()); }
    int GetAllocatedSize() const { return Got(m_n32AllocatedSize); }
    /// 1 unsigned integer, 2 signed integer, 4 floating point.
    int GetDataType() const { return Got(m_n32DataType); }
    /// Twice the number of bytes of an item: 2, 4, 8 or 16.
    int GetDataSize() const { return Got(m_n32DataSize); }
    /// 1 to 7 for a predefined structure, else 0; and its code of use.
    int GetVectType() const { return Got(m_n32VectType); }
    int GetUse() const { return Got(m_n32Use); }
    /// Groups in use, groups that fit in the buffer (or fitted in the last one, when it is gone), items in a
    /// group.
    int GetNbGroup() const { return Got(m_n32NbGroup); }
    int GetNbMaxGroup() const { return Got(m_n32NbMaxGroup); }
    int GetGroupLength() const { return Got(m_n32GroupLength); }

    /// Store the number and leave the buffer as it is.
    void SetDataType(int n32DataType) { Set(m_n32DataType, n32DataType); }
    void SetDataSize(int n32DataSize) { Set(m_n32DataSize, n32DataSize); }
    void SetVectType(int n32VectType) { Set(m_n32VectType, n32VectType); }
    void SetNbGroup(int n32NbGroup) { Set(m_n32NbGroup, n32NbGroup); }
    void SetGroupLength(int n32GroupLength) { Set(m_n32GroupLength, n32GroupLength); }
    void SetUse(int n32Use) { Set(m_n32Use, n32Use); }
    /// Computes how many groups fit in the buffer; 0 when they have no items.
    void SetNbMaxGroup();

    /// Replaces the buffer by one of so many zero bytes; none for 0 and below. Without memory, and from 2 GiB
    /// on: `KX_ERROR_ALLOCATION`, and no buffer.
    short SetAllocatedSize(int n32Bytes);
    /// The same for so many items of the current type.
    short SetItemsAllocatedSize(int n32Items);
    /// Resizes the buffer and keeps its bytes; new ones hold anything. 0 releases it. Without memory, and for
    /// a negative size: `KX_ERROR_ALLOCATION`, the buffer is kept.
    short Reallocate(int n32Bytes);
    /// Sets the four numbers, makes the vector one of no predefined type, and replaces the buffer.
    short SetStructure(int n32DataSize, int n32NbGroup, int n32GroupLength, int n32DataType);
    /// Takes a predefined structure, 1 to 7, and replaces the buffer; anything else changes nothing. 0 groups
    /// and 0 items in a group stand for the numbers of that structure.
    short SetType(int n32VectType, int n32NbGroup, int n32GroupLength);
    /// 1 when the vector is built like predefined structure 1 to 6, which it then becomes; else 0.
    int IsSameVectType(int n32VectType);

#define KX_FOR_EACH_VECTOR_ITEM(X) \
    X(unsigned char)               \
    X(unsigned short)              \
    X(unsigned int)                \
    X(signed char)                 \
    X(short)                       \
    X(int)                         \
    X(float)                       \
    X(double)

    /// Read or write one item, or all items of consecutive groups, in each of the eight item types. The
    /// vector must be of that type, else `KX_ERROR_INVALID_DATA_TYPE` or `KX_ERROR_INVALID_DATA_SIZE`, and
    /// all items must lie in the buffer, else `KX_ERROR_PARAMETERS_OUT_OF_RANGE`; a failure changes nothing.
#define KX_DECLARE_ACCESS(T)                                                                     \
    short GetData(int n32Group, int n32Index, T& value) {                                        \
        return Read("GetData", kType<T>, ItemAt(n32Group, n32Index), 1, &value);                 \
    }                                                                                            \
    short SetData(int n32Group, int n32Index, T value) {                                         \
        return Write("SetData", kType<T>, ItemAt(n32Group, n32Index), 1, &value);                \
    }                                                                                            \
    short GetGroups(int n32FirstGroup, int n32NbGroup, T* pValues) {                             \
        return Read("GetGroups", kType<T>, ItemAt(n32FirstGroup), ItemAt(n32NbGroup), pValues);  \
    }                                                                                            \
    short SetGroups(int n32FirstGroup, int n32NbGroup, const T* pValues) {                       \
        return Write("SetGroups", kType<T>, ItemAt(n32FirstGroup), ItemAt(n32NbGroup), pValues); \
    }
    KX_FOR_EACH_VECTOR_ITEM(KX_DECLARE_ACCESS)
#undef KX_DECLARE_ACCESS
#undef KX_FOR_EACH_VECTOR_ITEM

private:
    struct Free {
        void operator()(unsigned char* pun8Data) const;
    };
    struct ItemType {
        int n32DataType;
        int n32Bytes;
    };
    template <class T>
    static constexpr ItemType kType{std::is_floating_point_v<T> ? 4
                                    : std::is_signed_v<T>       ? 2
                                                                : 1,
                                    sizeof(T)};

    template <class T>
    static T Got(T value) {
        KxOk();
        return value;
    }
    static void Set(std::int32_t& n32Field, int n32Value) {
        KxOk();
        n32Field = n32Value;
    }
    std::int64_t ItemAt(int n32Group, int n32Index = 0) const {
        return std::int64_t{n32Group} * m_n32GroupLength + n32Index;
    }
    int ItemSize() const;
    void UpdateNbMaxGroup();
    short Replace(std::int64_t n64Bytes, const char* pszTraceName);
    short ReplaceItems(std::int64_t n64Items);
    short Read(const char* pszOperation, ItemType type, std::int64_t n64First, std::int64_t n64Count,
               void* pValues) const;
    short Write(const char* pszOperation, ItemType type, std::int64_t n64First, std::int64_t n64Count,
                const void* pValues);
    unsigned char* FindItems(const char* pszOperation, ItemType type, std::int64_t n64First,
                             std::int64_t n64Count) const;

    std::int32_t m_n32AllocatedSize = 0;
    std::int32_t m_n32DataType = 1;
    std::int32_t m_n32NbGroup = 1;
    std::int32_t m_n32GroupLength = 0;
    std::int32_t m_n32NbMaxGroup = 0;
    std::int32_t m_n32DataSize = 8;
    std::int32_t m_n32VectType = 0;
    std::int32_t m_n32Use = 0;
    std::unique_ptr<unsigned char, Free> m_pData;
};
