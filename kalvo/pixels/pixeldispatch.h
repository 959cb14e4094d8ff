#pragma once
// From the number of a pixel type to code that is compiled for it.

#include <type_traits>

#include "kalvo/pixels/kxpixellist.h"

namespace Zelkor::Kalvo {

// Calls operation.operator()<Pixel>() for the pixel type with that number and returns its result; a default
// value when there is none.
template <class Operation>
auto WithPixelType(KX_IMAGE_TYPES type, const Operation& operation) {
    std::invoke_result_t<decltype(&Operation::template operator()<KxBW8>), const Operation&> result{};
    const auto tryTypes = [&]<class... Pixels>(std::type_identity<std::tuple<Pixels...>>) {
        static_cast<void>(((PixelTraits<Pixels>::kImageType == type &&
                            (result = operation.template operator()<Pixels>(), true)) ||
                           ...));
    };
    tryTypes(std::type_identity<PixelTypes>());
    return result;
}

}  // namespace Zelkor::Kalvo
