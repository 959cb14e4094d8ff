// The buffer of the generic vector, its predefined structures, and the checks before its items are touched.

#include "kalvo/vectors/kxgenericvector.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>

#include "kalvo/frame/boundary.h"

namespace {

using Zelkor::Kalvo::Report;

constexpr std::int64_t kMostBytes = std::numeric_limits<std::int32_t>::max();

struct Structure {
    int groups;
    int groupLength;
    int dataSize;
    int dataType;
    int use;
};

// The predefined structures 1 to 7.
constexpr Structure kStructures[] = {
    {2000, 3, 8, 2, 2}, {1, 256, 8, 1, 1}, {1, 256, 2, 1, 10}, {512, 3, 8, 2, 5},
    {1000, 3, 8, 2, 9}, {50, 4, 8, 2, 3},  {1, 1, 8, 4, 10},
};
constexpr int kLastRecognisedType = 6;

short Outcome() { return static_cast<short>(KxGetError()); }

void ReportAccess(KX_ERRORS error, const char* operation, int dataType, int itemBytes) {
    const char* const kind = dataType == 1 ? "UINT" : dataType == 2 ? "INT" : "FLOAT";
    char traceName[48];
    std::snprintf(traceName, sizeof traceName, "KxVector::%s %s%d", operation, kind, 8 * itemBytes);
    Report(error, traceName);
}

}  // namespace

void KxVector::Free::operator()(unsigned char* pun8Data) const { std::free(pun8Data); }

KxVector::KxVector(int n32Items) { SetItemsAllocatedSize(n32Items); }

KxVector::~KxVector() { KxOk(); }

// What data size says of an item holds for some data types only; the others have a width of their own.
int KxVector::ItemSize() const {
    if (m_n32DataType == 4) return m_n32DataSize == 16 ? 8 : 4;
    const bool isInteger = m_n32DataType == 1 || m_n32DataType == 2;
    return isInteger && (m_n32DataSize == 4 || m_n32DataSize == 8) ? m_n32DataSize / 2 : 1;
}

void KxVector::UpdateNbMaxGroup() {
    const std::int64_t groupBytes = std::int64_t{m_n32GroupLength} * ItemSize();
    m_n32NbMaxGroup = groupBytes > 0 ? static_cast<std::int32_t>(m_n32AllocatedSize / groupBytes) : 0;
}

void KxVector::SetNbMaxGroup() {
    KxOk();
    UpdateNbMaxGroup();
}

// The old buffer goes first, so that both never need memory together. Without a new one, the number of groups
// that fit stays as it was.
short KxVector::Replace(std::int64_t n64Bytes, const char* pszTraceName) {
    KxOk();
    m_pData.reset();
    if (n64Bytes > 0 && n64Bytes <= kMostBytes)
        m_pData.reset(static_cast<unsigned char*>(std::calloc(static_cast<std::size_t>(n64Bytes), 1)));
    m_n32AllocatedSize = m_pData ? static_cast<std::int32_t>(n64Bytes) : 0;
    if (m_pData) UpdateNbMaxGroup();
    if (n64Bytes > 0 && !m_pData) Report(KX_ERROR_ALLOCATION, pszTraceName);
    return Outcome();
}

short KxVector::ReplaceItems(std::int64_t n64Items) {
    const std::int64_t bytes = n64Items > kMostBytes ? n64Items : n64Items * ItemSize();
    return Replace(bytes, "KxVector::SetItemsAllocatedSize");
}

short KxVector::SetAllocatedSize(int n32Bytes) { return Replace(n32Bytes, "KxVector::SetAllocatedSize"); }

short KxVector::SetItemsAllocatedSize(int n32Items) { return ReplaceItems(n32Items); }

short KxVector::Reallocate(int n32Bytes) {
    if (n32Bytes == 0) return Replace(0, nullptr);
    KxOk();
    void* const moved =
        n32Bytes > 0 ? std::realloc(m_pData.get(), static_cast<std::size_t>(n32Bytes)) : nullptr;
    if (moved) {
        static_cast<void>(m_pData.release());
        m_pData.reset(static_cast<unsigned char*>(moved));
        m_n32AllocatedSize = n32Bytes;
        UpdateNbMaxGroup();
    } else {
        Report(KX_ERROR_ALLOCATION, "KxVector::Reallocate");
    }
    return Outcome();
}

short KxVector::SetStructure(int n32DataSize, int n32NbGroup, int n32GroupLength, int n32DataType) {
    m_n32DataSize = n32DataSize;
    m_n32NbGroup = n32NbGroup;
    m_n32GroupLength = n32GroupLength;
    m_n32DataType = n32DataType;
    m_n32VectType = 0;
    if (ReplaceItems(ItemAt(n32NbGroup)) != KX_OK) KxTraceError("KxVector::SetStructure");
    return Outcome();
}

short KxVector::SetType(int n32VectType, int n32NbGroup, int n32GroupLength) {
    KxOk();
    if (n32VectType < 1 || n32VectType > static_cast<int>(std::size(kStructures))) return KX_OK;
    const Structure& structure = kStructures[n32VectType - 1];
    m_n32DataSize = structure.dataSize;
    m_n32NbGroup = n32NbGroup == 0 ? structure.groups : n32NbGroup;
    m_n32GroupLength = n32GroupLength == 0 ? structure.groupLength : n32GroupLength;
    m_n32DataType = structure.dataType;
    m_n32VectType = n32VectType;
    m_n32Use = structure.use;
    if (ReplaceItems(ItemAt(m_n32NbGroup)) != KX_OK) KxTraceError("KxVector::SetType");
    return Outcome();
}

// Where a structure has many groups, any number of them will do.
int KxVector::IsSameVectType(int n32VectType) {
    KxOk();
    if (n32VectType < 1 || n32VectType > kLastRecognisedType) return 0;
    const Structure& structure = kStructures[n32VectType - 1];
    const bool isSame = m_n32DataSize == structure.dataSize && m_n32DataType == structure.dataType &&
                        m_n32GroupLength == structure.groupLength &&
                        (structure.groups > 1 || m_n32NbGroup == 1);
    if (!isSame) return 0;
    m_n32VectType = n32VectType;
    m_n32Use = structure.use;
    return 1;
}

// Null after a failure, and for no items in no buffer.
unsigned char* KxVector::FindItems(const char* pszOperation, ItemType type, std::int64_t n64First,
                                   std::int64_t n64Count) const {
    KxOk();
    const std::int64_t available = m_n32AllocatedSize / type.n32Bytes;
    KX_ERRORS error = KX_OK;
    if (m_n32DataType != type.n32DataType)
        error = KX_ERROR_INVALID_DATA_TYPE;
    else if (m_n32DataSize != 2 * type.n32Bytes)
        error = KX_ERROR_INVALID_DATA_SIZE;
    else if (n64Count < 0 || n64First < 0 || n64First > available || n64Count > available - n64First)
        error = KX_ERROR_PARAMETERS_OUT_OF_RANGE;
    if (error == KX_OK) return m_pData.get() + n64First * type.n32Bytes;
    ReportAccess(error, pszOperation, type.n32DataType, type.n32Bytes);
    return nullptr;
}

// The bytes are moved, not copied: the caller's values may stand in this buffer.

short KxVector::Read(const char* pszOperation, ItemType type, std::int64_t n64First, std::int64_t n64Count,
                     void* pValues) const {
    const void* const items = FindItems(pszOperation, type, n64First, n64Count);
    if (items && n64Count > 0) std::memmove(pValues, items, n64Count * type.n32Bytes);
    return Outcome();
}

short KxVector::Write(const char* pszOperation, ItemType type, std::int64_t n64First, std::int64_t n64Count,
                      const void* pValues) {
    void* const items = FindItems(pszOperation, type, n64First, n64Count);
    if (items && n64Count > 0) std::memmove(items, pValues, n64Count * type.n32Bytes);
    return Outcome();
}
