#pragma once
// Images and regions as what they are, and parts of images.

#include "kalvo/image/kximage.h"
#include "common/failure.h"
#include "common/pixel_types.h"

namespace App {

// Calls `operation` with the object, which must be an `As<Pixel>`, as that. Throws for other pixel types
// than those of files.
template <template <class> class As, class Operation>
void WithPixels(KxGenericROI& object, const Operation& operation) {
    const bool known = ForPixel<FilePixels>(object.GetType(), [&]<class Pixel>(std::type_identity<Pixel>) {
        operation(static_cast<As<Pixel>&>(object));
    });
    if (!known) throw Failure::Of(KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
}

// Attaches `region` to `parent` at that place. A region that sticks out is clipped by the library; here that
// is hardly what was meant, so it fails.
template <class Pixel>
void AttachPart(KxROI<Pixel>& region, KxROI<Pixel>& parent, const Zelkor::Kalvo::GenericRoiExtent& part) {
    Checked([&] {
        region.Attach(&parent);
        region.SetPlacement(part.m_n32OrgX, part.m_n32OrgY, part.m_n32Width, part.m_n32Height);
    });
    if (region.GetExtent() != part) throw Failure::Of(KX_ERROR_ROI_OUT_OF_PARENT);
}

}  // namespace App
