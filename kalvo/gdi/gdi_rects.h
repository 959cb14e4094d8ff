#pragma once
// Arithmetic of rectangles. A rectangle is empty when its right or bottom is not beyond its left or top. Sums
// wrap around at 32 bits. The functions return 0 for a null pointer.

#include "kalvo/base/win32types.h"

namespace Zelkor::Platform {

constexpr LONG WrappedSum(LONG a, LONG b) {
    return static_cast<LONG>(static_cast<DWORD>(a) + static_cast<DWORD>(b));
}

constexpr LONG WrappedDifference(LONG a, LONG b) {
    return static_cast<LONG>(static_cast<DWORD>(a) - static_cast<DWORD>(b));
}

}  // namespace Zelkor::Platform

inline BOOL SetRect(RECT* pRect, int n32Left, int n32Top, int n32Right, int n32Bottom) {
    if (!pRect) return 0;
    *pRect = {n32Left, n32Top, n32Right, n32Bottom};
    return 1;
}
inline BOOL SetRectEmpty(RECT* pRect) { return SetRect(pRect, 0, 0, 0, 0); }
inline BOOL CopyRect(RECT* pDestination, const RECT* pSource) {
    if (!pDestination || !pSource) return 0;
    *pDestination = *pSource;
    return 1;
}
inline BOOL IsRectEmpty(const RECT* pRect) {
    return !pRect || pRect->left >= pRect->right || pRect->top >= pRect->bottom;
}
inline BOOL EqualRect(const RECT* pFirst, const RECT* pSecond) {
    return pFirst && pSecond && pFirst->left == pSecond->left && pFirst->top == pSecond->top &&
           pFirst->right == pSecond->right && pFirst->bottom == pSecond->bottom;
}
/// Moves a rectangle.
inline BOOL OffsetRect(RECT* pRect, int n32X, int n32Y) {
    using Zelkor::Platform::WrappedSum;
    return pRect && SetRect(pRect, WrappedSum(pRect->left, n32X), WrappedSum(pRect->top, n32Y),
                            WrappedSum(pRect->right, n32X), WrappedSum(pRect->bottom, n32Y));
}
/// Grows a rectangle on every side; negative numbers shrink it.
inline BOOL InflateRect(RECT* pRect, int n32X, int n32Y) {
    using Zelkor::Platform::WrappedDifference;
    using Zelkor::Platform::WrappedSum;
    return pRect && SetRect(pRect, WrappedDifference(pRect->left, n32X), WrappedDifference(pRect->top, n32Y),
                            WrappedSum(pRect->right, n32X), WrappedSum(pRect->bottom, n32Y));
}
/// Whether a point is inside; the right and bottom edges are not.
inline BOOL PtInRect(const RECT* pRect, POINT point) {
    return pRect && point.x >= pRect->left && point.x < pRect->right && point.y >= pRect->top &&
           point.y < pRect->bottom;
}
/// What two rectangles have in common. 0, and an empty rectangle of zeros, when that is nothing.
inline BOOL IntersectRect(RECT* pDestination, const RECT* pFirst, const RECT* pSecond) {
    if (!pDestination || !pFirst || !pSecond) return 0;
    const RECT common{pFirst->left > pSecond->left ? pFirst->left : pSecond->left,
                      pFirst->top > pSecond->top ? pFirst->top : pSecond->top,
                      pFirst->right < pSecond->right ? pFirst->right : pSecond->right,
                      pFirst->bottom < pSecond->bottom ? pFirst->bottom : pSecond->bottom};
    const bool isEmpty = IsRectEmpty(pFirst) || IsRectEmpty(pSecond) || IsRectEmpty(&common);
    *pDestination = isEmpty ? RECT{} : common;
    return !isEmpty;
}
/// The smallest rectangle around two; an empty one does not count. 0, and zeros, when both are empty.
inline BOOL UnionRect(RECT* pDestination, const RECT* pFirst, const RECT* pSecond) {
    if (!pDestination || !pFirst || !pSecond) return 0;
    const bool isFirstEmpty = IsRectEmpty(pFirst) != 0, isSecondEmpty = IsRectEmpty(pSecond) != 0;
    if (isFirstEmpty && isSecondEmpty) return !SetRectEmpty(pDestination);
    if (isFirstEmpty || isSecondEmpty) return CopyRect(pDestination, isFirstEmpty ? pSecond : pFirst);
    return SetRect(pDestination, pFirst->left < pSecond->left ? pFirst->left : pSecond->left,
                   pFirst->top < pSecond->top ? pFirst->top : pSecond->top,
                   pFirst->right > pSecond->right ? pFirst->right : pSecond->right,
                   pFirst->bottom > pSecond->bottom ? pFirst->bottom : pSecond->bottom);
}
