#pragma once
// What archives hold of an image beyond its fields as a region, and its partial records.

#include <cstdio>

#include "kalvo/image/imagecore.h"
#include "kalvo/streams/kxserializer.h"

namespace Zelkor::Kalvo {

// Pixels and the size of a pixel, as they end the full record. What is read is as `KxGenericROI::Load` says
// when this throws.
void TransferImageFields(const UntypedRegion& image, KxSerializer& stream, unsigned version);

// The records of `KxImage::PartialSerialize` and `KxImage::VersionLessPartialSerialize`.
void TransferPartial(const UntypedRegion& image, KxSerializer* stream);
void TransferPartial(const UntypedRegion& image, KxSerializer* stream, unsigned alignment);

}  // namespace Zelkor::Kalvo
