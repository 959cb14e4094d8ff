// The typed vector: its buffer, its elements, and what the outside sees of its files.

#include "kalvo/vectors/kxvector.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "kalvo/frame/boundary.h"
#include "kalvo/vectors/vectorcore.h"
#include "kalvo/vectors/vectorfile.h"

namespace {

using namespace Zelkor::Kalvo;

// No block reaches 4 GiB: what asks for more is a slip or a forged file.
template <class T>
constexpr std::uint32_t kMostElements = std::numeric_limits<std::uint32_t>::max() / sizeof(T);

// Elements start as zeros, so that nothing left over in memory ever reaches a file. None make no buffer.
template <class T>
std::unique_ptr<T[]> MakeElements(unsigned count) {
    if (count == 0) return nullptr;
    std::unique_ptr<T[]> elements(count <= kMostElements<T> ? new (std::nothrow) T[count]() : nullptr);
    if (!elements) throw Exception(KX_ERROR_ALLOCATION);
    return elements;
}

// Negative indices become one that no vector has.
unsigned UnsignedIndex(int index) {
    return index < 0 ? std::numeric_limits<unsigned>::max() : static_cast<unsigned>(index);
}

}  // namespace

namespace Zelkor::Kalvo {

template <class T>
void VectorCore<T>::SetCapacity(Vector& vector, unsigned capacity, bool keep) {
    if (capacity == vector.m_un32MaxElements) return;
    AtTracePoint("KxVector::SetMaxElements", [&] {
        std::unique_ptr<T[]> elements = MakeElements<T>(capacity);
        vector.m_un32NumElements = keep ? std::min(vector.m_un32NumElements, capacity) : 0;
        std::copy_n(vector.m_pData, vector.m_un32NumElements, elements.get());
        delete[] std::exchange(vector.m_pData, elements.release());
        vector.m_un32MaxElements = capacity;
    });
}

template <class T>
void VectorCore<T>::SetCount(Vector& vector, unsigned count) {
    if (count > vector.m_un32MaxElements)
        AtTracePoint("KxVector::SetNumElements", [&] { SetCapacity(vector, count); });
    vector.m_un32NumElements = count;
}

template <class T>
void VectorCore<T>::Grow(Vector& vector, const char* traceName) {
    AtTracePoint(traceName, [&] {
        if (vector.m_un32MaxElements == kMostElements<T>) throw Exception(KX_ERROR_ALLOCATION);
        const std::uint64_t doubled =
            vector.m_un32MaxElements ? 2 * std::uint64_t{vector.m_un32MaxElements} : 1;
        SetCapacity(vector, static_cast<unsigned>(std::min<std::uint64_t>(doubled, kMostElements<T>)));
    });
}

template <class T>
void VectorCore<T>::Append(Vector& vector, const T& value) {
    if (vector.m_un32NumElements == vector.m_un32MaxElements) Grow(vector, "KxVector::AddElement");
    vector.m_pData[vector.m_un32NumElements++] = value;
}

template <class T>
void VectorCore<T>::Assign(Vector& vector, const Vector& source) {
    SetCapacity(vector, source.m_un32NumElements, false);
    vector.m_un32NumElements = source.m_un32NumElements;
    std::copy_n(source.m_pData, source.m_un32NumElements, vector.m_pData);
}

template <class T>
void VectorCore<T>::Swap(Vector& a, Vector& b) noexcept {
    std::swap(a.m_un32NumElements, b.m_un32NumElements);
    std::swap(a.m_un32MaxElements, b.m_un32MaxElements);
    std::swap(a.m_pData, b.m_pData);
}

template struct VectorCore<KxBW8>;
template struct VectorCore<KxRun>;

}  // namespace Zelkor::Kalvo

template <class T>
KxVectorTemplate<T>::KxVectorTemplate(unsigned int un32NumElements) {
    AtBoundary(nullptr, [&] {
        m_pData = MakeElements<T>(un32NumElements).release();
        m_un32NumElements = m_un32MaxElements = un32NumElements;
    });
}

template <class T>
KxVectorTemplate<T>::KxVectorTemplate(const KxVectorTemplate& other) {
    other.CopyTo(this);
}

template <class T>
KxVectorTemplate<T>& KxVectorTemplate<T>::operator=(const KxVectorTemplate& other) {
    return *other.CopyTo(this);
}

template <class T>
KxVectorTemplate<T>::~KxVectorTemplate() {
    delete[] m_pData;
}

template <class T>
KxVectorTemplate<T>* KxVectorTemplate<T>::CopyTo(KxVectorTemplate* pDestination) const {
    if (pDestination == this) return pDestination;
    if (!pDestination) pDestination = new (std::nothrow) KxVectorTemplate;
    if (!pDestination) {
        Report(KX_ERROR_ALLOCATION, "KxVector::CopyTo");
        return nullptr;
    }
    AtBoundary(nullptr, [&] { VectorCore<T>::Assign(*pDestination, *this); });
    return pDestination;
}

template <class T>
void KxVectorTemplate<T>::SetMaxElements(unsigned int un32MaxElements, int bKeep) {
    AtBoundary(nullptr, [&] { VectorCore<T>::SetCapacity(*this, un32MaxElements, bKeep); });
}

template <class T>
void KxVectorTemplate<T>::SetNumElements(unsigned int un32NumElements) {
    if (un32NumElements > m_un32MaxElements) KxOk();
    AtBoundary(nullptr, [&] { VectorCore<T>::SetCount(*this, un32NumElements); });
}

template <class T>
void KxVectorTemplate<T>::Grow(const char* traceName) {
    KxOk();
    AtBoundary(nullptr, [&] { VectorCore<T>::Grow(*this, traceName); });
}

template <class T>
void KxVectorTemplate<T>::RemoveElement(unsigned int un32Index) {
    if (un32Index >= m_un32NumElements) {
        Report(KX_ERROR_PARAMETER_1_OUT_OF_RANGE, "KxVector::RemoveElement");
        return;
    }
    T* const removed = m_pData + un32Index;
    std::copy(removed + 1, m_pData + m_un32NumElements, removed);
    --m_un32NumElements;
}

template <class T>
T& KxVectorTemplate<T>::SpareElement() {
    Report(KX_ERROR_PARAMETER_1_OUT_OF_RANGE, "KxVector::operator[]");
    thread_local T spare;
    spare = T();
    return spare;
}

template <class T>
T KxVectorTemplate<T>::GetElement(int n32Index) const {
    return (*this)[UnsignedIndex(n32Index)];
}

template <class T>
void KxVectorTemplate<T>::SetElement(int n32Index, T value) {
    (*this)[UnsignedIndex(n32Index)] = value;
}

template <class T>
void KxVectorTemplate<T>::Sift(const T& value, int (*pfnBetter)(const T&, const T&)) {
    if (m_un32MaxElements == 0) return;
    const T sifted = value;  // it may be an element that moves
    const std::uint64_t count = m_un32NumElements;
    std::uint64_t hole = 0;
    for (;;) {
        std::uint64_t child = 2 * hole + 1;
        if (child + 1 < count && pfnBetter(m_pData[child + 1], m_pData[child])) ++child;
        if (child >= count || !pfnBetter(m_pData[child], sifted)) break;
        m_pData[hole] = m_pData[child];
        hole = child;
    }
    m_pData[hole] = sifted;
}

template <class T>
void KxVectorTemplate<T>::Serialize(std::FILE* pStream, int bWriting, unsigned int un32Version) {
    AtBoundary(nullptr, [&] {
        if (bWriting)
            WriteElements(pStream, *this, un32Version);
        else
            ReadElements(pStream, *this, un32Version);
        if (m_un32NumElements > 0) KxOk();  // it is the elements that reset the slot
    });
}

// Through the member of the object's own class.
template <class T>
void KxVectorTemplate<T>::Exchange(void* vector, std::FILE* pStream, int bWriting, unsigned int un32Version) {
    static_cast<KxVectorTemplate*>(vector)->Serialize(pStream, bWriting, un32Version);
}

template <class T>
void KxVectorTemplate<T>::Save(const char* pszPath) {
    SaveVectorFile(pszPath, "KxVector::Save", HeaderFor(*this), {this, Exchange});
}

template <class T>
void KxVectorTemplate<T>::Save(const unsigned short* pszPath) {
    SaveVectorFile(pszPath, "KxVector::Save ( Unicode)", HeaderFor(*this), {this, Exchange});
}

template <class T>
void KxVectorTemplate<T>::Load(const char* pszPath) {
    LoadVectorFile(pszPath, "KxVector::Load", NewestHeader<T>(), {this, Exchange});
}

template <class T>
void KxVectorTemplate<T>::Load(const unsigned short* pszPath) {
    LoadVectorFile(pszPath, "KxVector::Load ( Unicode)", NewestHeader<T>(), {this, Exchange});
}

template class KxVectorTemplate<KxBW8>;
template class KxVectorTemplate<KxBW16>;
template class KxVectorTemplate<KxBW32>;
template class KxVectorTemplate<KxC24>;
template class KxVectorTemplate<KxINT32>;
template class KxVectorTemplate<unsigned int>;
template class KxVectorTemplate<KxRun>;
