#pragma once
// The classes of regions and images, for code that knows no pixel type.

#include <typeinfo>

#include "kalvo/image/imagecore.h"

namespace Zelkor::Kalvo {

// `KxROI<Pixel>` or `KxImage<Pixel>`. Objects of classes derived from it count as its own, unless it says
// otherwise.
struct RegionClass {
    const std::type_info& type;
    // A new object, which belongs to the caller. Throws std::bad_alloc.
    UntypedRegion (*make)();
    UntypedRegion (*untyped)(KxGenericROI& object);
    // A copy of an object, without children, by its own `CreateROIClone`; null when it is of another class.
    // Throws KX_ERROR_ALLOCATION.
    RegionBase* (*clone)(const KxGenericROI& object);
};

template <class Object>
const RegionClass& ClassOf();

// The classes of a pixel type; null for a number that none has.
const RegionClass* FindRegionClass(KX_IMAGE_TYPES pixelType);
const RegionClass* FindImageClass(KX_IMAGE_TYPES pixelType);

}  // namespace Zelkor::Kalvo
