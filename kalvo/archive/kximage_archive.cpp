// Archiving images: the members of each pixel type.

#include "kalvo/archive/imagerecord.h"
#include "kalvo/archive/recordtransfer.h"

using namespace Zelkor::Kalvo;

template <class Pixel>
void KxImage<Pixel>::Serialize(KxSerializer* pSerializer, unsigned int un32Version) {
    RecordTransfer::Run(pSerializer, *this, &ClassOf<KxImage>(), un32Version);
}

template <class Pixel>
void KxImage<Pixel>::PartialSerialize(KxSerializer* pSerializer) {
    TransferPartial(ImageCore::Untyped(*this), pSerializer);
}

template <class Pixel>
void KxImage<Pixel>::VersionLessPartialSerialize(KxSerializer* pSerializer, unsigned int un32Align) {
    TransferPartial(ImageCore::Untyped(*this), pSerializer, un32Align);
}

template <class Pixel>
KxSerializer::ObjectType KxImage<Pixel>::GetSerializationType() {
    return RequireObjectTypeOf<KxImage>();
}

#define KX_INSTANTIATE(Pixel)                                                                      \
    template KX_API void KxImage<Pixel>::Serialize(KxSerializer*, unsigned int);                   \
    template KX_API void KxImage<Pixel>::PartialSerialize(KxSerializer*);                          \
    template KX_API void KxImage<Pixel>::VersionLessPartialSerialize(KxSerializer*, unsigned int); \
    template KX_API KxSerializer::ObjectType KxImage<Pixel>::GetSerializationType();
KX_FOR_EACH_PIXEL(KX_INSTANTIATE)
#undef KX_INSTANTIATE
