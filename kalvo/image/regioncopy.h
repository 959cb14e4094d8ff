#pragma once
// Copies of regions with everything below them. They are built apart from every tree, and put in place in a
// step that cannot fail.

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "kalvo/frame/kxexception.h"
#include "kalvo/image/kxregionbase.h"

namespace Zelkor::Kalvo {

struct RegionClass;

// Works on what regions of all pixel types share; pixels are copied by the class of the image.
class RegionCopy {
public:
    // What `KxROI::CopyTo` does for a region of that class.
    static RegionBase* CopyTo(const RegionBase& source, RegionBase* destination, bool recursive,
                              const RegionClass& sourceClass) noexcept;
    // Copies the fields of `source` to `copy`, a fresh object, and with `recursive` its descendants, except
    // `excluded` and those below it. Until `Place` the copies belong to `copy`. Throws KX_ERROR_ALLOCATION.
    static void Build(const RegionBase& source, RegionBase& copy, bool recursive,
                      const KxGenericROI* excluded = nullptr);
    // Puts a built copy below the parent of `source`.
    static void Place(const RegionBase& source, RegionBase& copy) noexcept;
    // Lets `destination` take what a built copy has, below the parent of `source`. Children of its own are
    // detached.
    static void Replace(const RegionBase& source, RegionBase& copy, RegionBase& destination) noexcept;

    // Sets a text of a region. Throws KX_ERROR_ALLOCATION; the text is null then.
    template <class Character>
    static void SetText(KxGenericROI& region, std::unique_ptr<Character[]> RegionTexts::*field,
                        const Character* text);

private:
    static void CopyFields(const RegionBase& source, RegionBase& copy);
    static void CopyPlainFields(const RegionBase& source, RegionBase& copy) noexcept;
    static void CopyDescendants(const RegionBase& source, RegionBase& copy, const KxGenericROI* excluded);
    static std::unique_ptr<RegionBase> CloneOf(const KxGenericROI& node);
};

// A copy of a text that ends with 0; null of null. Throws KX_ERROR_ALLOCATION.
template <class Character>
std::unique_ptr<Character[]> CopyOfText(const Character* text) {
    if (!text) return nullptr;
    const std::size_t characters = std::char_traits<Character>::length(text) + 1;
    std::unique_ptr<Character[]> copy(new (std::nothrow) Character[characters]);
    if (!copy) throw Exception(KX_ERROR_ALLOCATION);
    std::copy_n(text, characters, copy.get());
    return copy;
}

template <class Character>
void RegionCopy::SetText(KxGenericROI& region, std::unique_ptr<Character[]> RegionTexts::*field,
                         const Character* text) {
    std::unique_ptr<Character[]>& own = region.m_Texts.*field;
    if (text == own.get()) return;
    const std::unique_ptr<Character[]> previous = std::move(own);  // which the new text may be part of
    own = CopyOfText(text);
}

// Whether `region` is of a class of the library's own that has no pixels.
bool IsPlainRegion(const KxGenericROI& region);

}  // namespace Zelkor::Kalvo
