#pragma once
// What operations of images are inside the library: they throw.

#include "kalvo/image/kximage.h"

namespace Zelkor::Kalvo {

struct ImageCore {
    // Sizes an image as `KxImage::SetSize` does. Throws what that stores, traced under its name.
    template <class Pixel>
    static void Resize(KxImage<Pixel>& image, int width, int height) {
        image.Resize(width, height);
    }
};

}  // namespace Zelkor::Kalvo
