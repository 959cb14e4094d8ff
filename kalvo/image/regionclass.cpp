// One row per class.

#include "kalvo/image/regionclass.h"

#include "kalvo/pixels/pixeldispatch.h"

namespace Zelkor::Kalvo {

template <class Object>
const RegionClass& ClassOf() {
    static const RegionClass kClass = {
        .type = typeid(Object),
        .make = [] { return ImageCore::Untyped(*new Object); },
        .untyped = [](KxGenericROI& object) { return ImageCore::Untyped(static_cast<Object&>(object)); },
        .clone = [](const KxGenericROI& object) -> RegionBase* {
            const auto* original = dynamic_cast<const Object*>(&object);
            if (!original) return nullptr;
            if (RegionBase* clone = original->CreateROIClone(0)) return clone;
            throw Exception(KX_ERROR_ALLOCATION);
        },
    };
    return kClass;
}

#define KX_INSTANTIATE(Pixel)                            \
    template const RegionClass& ClassOf<KxROI<Pixel>>(); \
    template const RegionClass& ClassOf<KxImage<Pixel>>();
KX_FOR_EACH_PIXEL(KX_INSTANTIATE)
#undef KX_INSTANTIATE

const RegionClass* FindRegionClass(KX_IMAGE_TYPES pixelType) {
    return WithPixelType(pixelType, []<class Pixel>() { return &ClassOf<KxROI<Pixel>>(); });
}

const RegionClass* FindImageClass(KX_IMAGE_TYPES pixelType) {
    return WithPixelType(pixelType, []<class Pixel>() { return &ClassOf<KxImage<Pixel>>(); });
}

}  // namespace Zelkor::Kalvo
