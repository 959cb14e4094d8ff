#pragma once
// What the operations of typed vectors are inside the library: they throw, and leave the error slot alone
// until then.

#include "kalvo/vectors/kxvector.h"

namespace Zelkor::Kalvo {

// Each throws KX_ERROR_ALLOCATION, traced as the exported operation traces it; the vector is then unchanged.
template <class T>
struct VectorCore {
    using Vector = KxVectorTemplate<T>;

    static void SetCapacity(Vector& vector, unsigned capacity, bool keep = true);
    static void SetCount(Vector& vector, unsigned count);
    // Doubles the capacity.
    static void Grow(Vector& vector, const char* traceName);
    static void Append(Vector& vector, const T& value);
    static void Assign(Vector& vector, const Vector& source);
    static void Swap(Vector& a, Vector& b) noexcept;
};

}  // namespace Zelkor::Kalvo
