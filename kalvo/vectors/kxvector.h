#pragma once
// The growable typed array behind profiles, histograms, lookup tables and run lists.

#include <cstdint>
#include <cstdio>

#include "kalvo/base/kxexport.h"
#include "kalvo/pixels/kxpixel.h"

namespace Zelkor::Kalvo {
template <class T>
struct VectorCore;
}

/// A growable array of plain elements, with a small binary file format of its own. It exists for `KxBW8`,
/// `KxBW16`, `KxBW32`, `KxC24`, `KxINT32`, `unsigned int` and `KxRun`.
///
/// Failures end in the error slot, traced under "KxVector::" and the operation; no operation throws. Pointers
/// and references to elements hold until the capacity changes. A vector is used by one thread at a time.
/// @code
/// KxVectorTemplate<KxBW8> greys;
/// for (int grey = 0; grey < 256; grey += 16) greys.AddElement(grey);
/// greys[3] = 50;
/// greys.Save("greys.vec");
/// if (KxFailure()) return;
/// @endcode
template <class T>
class KX_API KxVectorTemplate {
public:
    /// An empty vector without a buffer.
    KxVectorTemplate() = default;
    /// `un32NumElements` zero elements. Without memory: `KX_ERROR_ALLOCATION`, and an empty vector.
    explicit KxVectorTemplate(unsigned int un32NumElements);
    /// Copies as `CopyTo` does.
    KxVectorTemplate(const KxVectorTemplate& other);
    KxVectorTemplate& operator=(const KxVectorTemplate& other);
    virtual ~KxVectorTemplate();

    /// Exchanges count and elements with an open stream: writes them when `bWriting` is not 0, else reads.
    /// The outcome is stored but not traced: `KX_OK` (stored only when there are elements),
    /// `KX_ERROR_FILE_READ` (a file that ends early keeps its count, missing elements are zero),
    /// `KX_ERROR_FILE_WRITE`, `KX_ERROR_ALLOCATION` (also for a count that the file cannot hold by far),
    /// `KX_ERROR_UNSUPPORTED_FILE_VERSION` (an address too wide for the version).
    /// @param un32Version  format version of the elements, 1; a `KxRun` is 12 bytes in version 1 (32-bit
    ///                     addresses) and 20 bytes in version 2 (64-bit addresses)
    virtual void Serialize(std::FILE* pStream, int bWriting, unsigned int un32Version = 1);

    /// Copies the elements into `pDestination`, whose capacity becomes exactly their number, and returns it.
    /// Null makes a new vector, which belongs to the caller. Without memory for the buffer:
    /// `KX_ERROR_ALLOCATION`, the destination is unchanged; without memory for the new vector null is
    /// returned.
    KxVectorTemplate* CopyTo(KxVectorTemplate* pDestination = nullptr) const;

    /// Number of elements in use.
    unsigned int GetNumElements() const { return m_un32NumElements; }
    /// Number of elements the buffer holds.
    unsigned int GetMaxElements() const { return m_un32MaxElements; }
    /// The buffer; null when the capacity is 0. It belongs to the vector.
    T* GetDataPtr() const { return m_pData; }

    /// Forgets the elements and keeps the buffer.
    void Empty() { m_un32NumElements = 0; }
    /// Changes the capacity; elements that fit are kept when `bKeep` is not 0, else all are dropped. Nothing
    /// happens when the capacity is the same. Without memory, and for blocks of 4 GiB or more:
    /// `KX_ERROR_ALLOCATION`, the vector is unchanged.
    void SetMaxElements(unsigned int un32MaxElements, int bKeep = 1);
    /// Changes the count, growing the capacity to exactly that when needed. New elements hold what the buffer
    /// holds: zeros where it grew. Without memory: `KX_ERROR_ALLOCATION`, the count is unchanged.
    void SetNumElements(unsigned int un32NumElements);

    /// Appends an element; a full buffer doubles. Without memory: `KX_ERROR_ALLOCATION`, nothing is appended.
    void AddElement(T value) { Append(value, "KxVector::AddElement"); }
    void AddElementByRef(T& value) { Append(value, "KxVector::AddElementByRef"); }
    /// Removes element `un32Index`; the following ones move down. Beyond the end:
    /// `KX_ERROR_PARAMETER_1_OUT_OF_RANGE`.
    void RemoveElement(unsigned int un32Index);

    /// Element `un32Index`. Beyond the end: `KX_ERROR_PARAMETER_1_OUT_OF_RANGE`, and a spare element.
    T& operator[](unsigned int un32Index) const {
        return un32Index < m_un32NumElements ? m_pData[un32Index] : SpareElement();
    }
    /// A copy of element `n32Index`. Out of range: `KX_ERROR_PARAMETER_1_OUT_OF_RANGE`, and a zero element.
    T GetElement(int n32Index) const;
    /// Stores element `n32Index`. Out of range: `KX_ERROR_PARAMETER_1_OUT_OF_RANGE`, nothing is stored.
    void SetElement(int n32Index, T value);

    /// Replaces the root of the binary heap that the elements form (children of i at 2i+1 and 2i+2) by
    /// `value` and sifts it down. At least one element is needed.
    /// @param pfnBetter  non-zero when its first argument belongs above its second
    void Sift(const T& value, int (*pfnBetter)(const T&, const T&));

    /// Writes the vector file: a 4-byte header, the count, the elements. Runs are written in version 2 when
    /// an address needs it. Failures: `KX_ERROR_FILE_OPEN`, `KX_ERROR_FILE_WRITE`, `KX_ERROR_FILE_CLOSE`.
    void Save(const char* pszPath);
    /// The same with a UTF-16 path.
    void Save(const unsigned short* pszPath);
    /// Reads a vector file. Failures: `KX_ERROR_FILE_OPEN`, `KX_ERROR_BAD_FILE_FORMAT` (not a file of this
    /// element type) and those of `Serialize`; a failure in the header leaves the vector as it was.
    void Load(const char* pszPath);
    /// The same with a UTF-16 path.
    void Load(const unsigned short* pszPath);

private:
    friend struct Zelkor::Kalvo::VectorCore<T>;

    static T& SpareElement();
    // Takes a copy: the element may lie in the buffer that growing releases.
    void Append(T value, const char* traceName) {
        if (m_un32NumElements == m_un32MaxElements) Grow(traceName);
        if (m_un32NumElements < m_un32MaxElements) m_pData[m_un32NumElements++] = value;
    }
    void Grow(const char* traceName);
    static void Exchange(void* vector, std::FILE* pStream, int bWriting, unsigned int un32Version);

    std::uint32_t m_un32NumElements = 0;
    std::uint32_t m_un32MaxElements = 0;
    T* m_pData = nullptr;
};

extern template class KxVectorTemplate<KxBW8>;
extern template class KxVectorTemplate<KxBW16>;
extern template class KxVectorTemplate<KxBW32>;
extern template class KxVectorTemplate<KxC24>;
extern template class KxVectorTemplate<KxINT32>;
extern template class KxVectorTemplate<unsigned int>;
extern template class KxVectorTemplate<KxRun>;
