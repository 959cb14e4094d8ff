// What all archive streams share: forwarding to the stream itself, and peeking at the next object.

#include "kalvo/streams/kxserializer.h"

#include <optional>

#include "kalvo/frame/boundary.h"
#include "kalvo/streams/archiveheader.h"

using namespace Zelkor::Kalvo;

KxSerializer::~KxSerializer() = default;

KxSerializer::ObjectType KxSerializer::GetNextObjectType() { return m_pImplementation->GetNextObjectType(); }

void KxSerializer::Close() { m_pImplementation->Close(); }

int KxSerializer::IsFile() const { return 0; }

unsigned int KxSerializer::GetData(unsigned char*, unsigned int) {
    KxSetError(KX_ERROR_INVALID_OPERATION);
    return 0;
}

unsigned int KxSerializer::GetCurrentPos() {
    KxSetError(KX_ERROR_INVALID_OPERATION);
    return 0;
}

void KxSerializer::SerializeBytes(void* pData, unsigned int un32Size, const char* pszFieldName) {
    m_pImplementation->SerializeBytes(pData, un32Size, pszFieldName);
}

int KxSerializer::IsReading() const { return m_pImplementation->IsReading(); }

int KxSerializer::IsWriting() const { return m_pImplementation->IsWriting(); }

int KxSerializer::IsEOS() const { return m_pImplementation->IsEOS(); }

void KxSerializer::PushStreamPos() { m_pImplementation->PushStreamPos(); }

void KxSerializer::PopAndForgetStreamPos() { m_pImplementation->PopAndForgetStreamPos(); }

void KxSerializer::PopAndApplyStreamPos() { m_pImplementation->PopAndApplyStreamPos(); }

KxSerializer::ObjectType KxOpaqueSerializer::GetNextObjectType() {
    const auto peek = [this] { return std::optional(PeekObjectType(*this)); };
    return AtBoundary(nullptr, peek, KX_ERROR_ARCHIVE_ACCESS).value_or(static_cast<ObjectType>(-1));
}

void KxOpaqueSerializer::Close() {}

int KxOpaqueSerializer::IsReading() const { return !IsWriting(); }
