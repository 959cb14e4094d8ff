// Compares what images have besides their pixels.

#include "comparison.h"

#include <string_view>

#include "kalvo/measure/kxunit.h"

namespace App {
namespace {

template <class Character>
bool SameText(const Character* first, const Character* second) {
    if (!first || !second) return first == second;
    while (*first && *first == *second) ++first, ++second;
    return *first == *second;
}

}  // namespace

bool SameTexts(const KxGenericROI& first, const KxGenericROI& second) {
    return SameText(first.GetTitle(), second.GetTitle()) && SameText(first.GetAuthor(), second.GetAuthor()) &&
           SameText(first.GetDate(), second.GetDate()) && SameText(first.GetComment(), second.GetComment()) &&
           SameText(first.GetTitleUnicode(), second.GetTitleUnicode()) &&
           SameText(first.GetAuthorUnicode(), second.GetAuthorUnicode()) &&
           SameText(first.GetDateUnicode(), second.GetDateUnicode()) &&
           SameText(first.GetCommentUnicode(), second.GetCommentUnicode());
}

bool SameTrees(KxGenericROI& first, KxGenericROI& second) {
    if (first.IsAnROI() != second.IsAnROI() || first.GetType() != second.GetType() ||
        first.GetExtent() != second.GetExtent() || first.GetColorSystem() != second.GetColorSystem() ||
        !SameTexts(first, second))
        return false;
    KxGenericROI* child = first.GetFirstSubROI();
    KxGenericROI* other = second.GetFirstSubROI();
    while (child && other && SameTrees(*child, *other)) {
        child = child->GetNextSiblingROI();
        other = other->GetNextSiblingROI();
    }
    return !child && !other;
}

bool SamePixelSize(const KxGenericROI& first, const KxGenericROI& second) {
    struct PixelSize {
        float width, height;
        const KxMeasurementUnit* unit;
        explicit PixelSize(const KxGenericROI& image) { image.GetPixelDimensions(width, height, unit); }
    };
    const PixelSize size(first), other(second);
    return size.width == other.width && size.height == other.height &&
           std::string_view(size.unit->GetName()) == other.unit->GetName();
}

}  // namespace App
