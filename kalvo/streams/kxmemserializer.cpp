// The archive stream in memory: bytes go to the end of a vector, or come from a position in it.

#include "kalvo/streams/kxserializer.h"

#include <algorithm>
#include <memory>

#include "kalvo/frame/boundary.h"
#include "kalvo/streams/streamposition.h"

using namespace Zelkor::Kalvo;

KxSerializer* KxSerializer::CreateMemoryWriter() {
    return AtBoundary(nullptr, []() -> KxSerializer* {
        auto stream = std::make_unique<KxMemSerializer>();
        stream->OpenWriter();
        return stream.release();
    });
}

KxSerializer* KxSerializer::CreateMemoryReader(const unsigned char* pData, unsigned int un32Size) {
    return AtBoundary(nullptr, [&]() -> KxSerializer* {
        auto stream = std::make_unique<KxMemSerializer>();
        stream->m_Buffer.assign(pData, pData + un32Size);
        return stream.release();
    });
}

void KxMemSerializer::OpenReader(const std::vector<unsigned char>& data) {
    m_Buffer = data;
    m_ReadPosition = 0;
    m_bWriting = false;
    m_Positions.clear();
}

void KxMemSerializer::OpenWriter() {
    m_Buffer.clear();
    m_ReadPosition = 0;
    m_bWriting = true;
    m_Positions.clear();
}

unsigned int KxMemSerializer::GetData(unsigned char* pDestination, unsigned int un32Capacity) {
    if (m_Buffer.size() > un32Capacity) {
        KxSetError(KX_ERROR_INSUFFICIENT_ALLOCATION);
        return 0;
    }
    std::ranges::copy(m_Buffer, pDestination);
    return static_cast<unsigned int>(m_Buffer.size());
}

unsigned int KxMemSerializer::GetCurrentPos() { return static_cast<unsigned int>(m_Buffer.size()); }

void KxMemSerializer::SerializeBytes(void* pData, unsigned int un32Size, const char*) {
    auto* bytes = static_cast<unsigned char*>(pData);
    if (m_bWriting) {
        m_Buffer.insert(m_Buffer.end(), bytes, bytes + un32Size);
    } else {
        if (un32Size > m_Buffer.size() - m_ReadPosition) throw Exception(KX_ERROR_FILE_READ);
        std::copy_n(m_Buffer.data() + m_ReadPosition, un32Size, bytes);
    }
    m_ReadPosition += un32Size;
}

int KxMemSerializer::IsWriting() const { return m_bWriting; }

int KxMemSerializer::IsEOS() const { return m_ReadPosition == m_Buffer.size(); }

void KxMemSerializer::PushStreamPos() { m_Positions.push_back(m_ReadPosition); }

void KxMemSerializer::PopAndForgetStreamPos() { PopPosition(m_Positions); }

void KxMemSerializer::PopAndApplyStreamPos() {
    m_ReadPosition = PopPosition(m_Positions);
    // Bytes are always written at the end.
    if (m_bWriting) m_Buffer.resize(m_ReadPosition);
}
