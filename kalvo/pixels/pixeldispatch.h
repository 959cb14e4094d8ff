#pragma once
// From the number of a pixel type to code that is compiled for it, and positions in lists of types.

#include <cstddef>
#include <type_traits>

#include "kalvo/pixels/kxpixellist.h"

namespace Zelkor::Kalvo {

// The position of a pixel type in a list; the number of its types when it is none of them.
template <class Pixel, class... Pixels>
constexpr std::size_t IndexOfPixel(std::type_identity<std::tuple<Pixels...>>) {
    std::size_t index = 0;
    static_cast<void>(((std::is_same_v<Pixel, Pixels> || (++index, false)) || ...));
    return index;
}

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
