// Archive streams in standard I/O files: one opened by name and owned, one borrowed from the caller.

#include "kalvo/streams/kxserializer.h"

#include <cstdio>
#include <memory>
#include <utility>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/outputfile.h"
#include "kalvo/streams/streamposition.h"

namespace Platform = Zelkor::Platform;
using namespace Zelkor::Kalvo;

namespace {

// Both streams may stand without a file: one after Close, the other when it was given none.

void Transfer(std::FILE* file, bool writing, void* data, std::size_t size) {
    if (!file) throw Exception(KX_ERROR_SERIALIZER_NOT_OPEN);
    if (size == 0) return;
    if (writing) {
        if (std::fwrite(data, 1, size, file) != size) throw Exception(KX_ERROR_FILE_WRITE);
    } else if (Platform::Read(file, data, size) != size) {
        throw Exception(KX_ERROR_FILE_READ);
    }
}

std::int64_t PositionOf(std::FILE* file) { return file ? Platform::Position(file) : -1; }

unsigned int ShortPositionOf(std::FILE* file) {
    return file ? static_cast<unsigned int>(Platform::Position(file)) : 0;
}

bool IsAtEnd(std::FILE* file, std::int64_t size) {
    if (!file) return true;
    if (const auto left = Platform::BytesLeft(file, size)) return *left == 0;
    // A pipe has no size: only its next byte tells.
    const int next = std::getc(file);
    return next == EOF || std::ungetc(next, file) == EOF;
}

void SeekTo(std::FILE* file, std::int64_t position) {
    if (!file || !Platform::Seek(file, position)) throw Exception(KX_ERROR_FILE_ACCESS);
}

const char* OpenModeOf(KxSerializer::FileWriterMode eMode) {
    switch (eMode) {
    case KxSerializer::NoOverwrite:
        return "wbx";  // creates or fails, also for a file that we may not read
    case KxSerializer::Append:
        return "ab";
    default:
        return "wb";
    }
}

}  // namespace

template <class Name>
void KxFileSerializer::Read(const Name& name) {
    Close();
    auto file = std::make_unique<Platform::File>(name.c_str(), "rb");
    if (!*file) throw Exception(KX_ERROR_FILE_OPEN);
    m_n64FileSize = Platform::SizeOf(file->Get());
    m_Positions.clear();
    m_bWriting = 0;
    m_pFile = std::move(file);
}

template <class Name>
void KxFileSerializer::Write(const Name& name, FileWriterMode eMode) {
    if (eMode == NoOverwrite && Platform::File(name.c_str(), "rb"))
        throw Exception(KX_ERROR_OVERWRITE_NOT_ALLOWED);
    Close();
    auto file = std::make_unique<Platform::File>(OpenOutputFile(name.c_str(), OpenModeOf(eMode)));
    // Appending begins at the end, but a file may say 0 until its first write.
    if (eMode == Append) std::fseek(file->Get(), 0, SEEK_END);
    m_Positions.clear();
    m_bWriting = 1;
    m_pFile = std::move(file);
}

template <class Operation>
KxSerializer* KxFileSerializer::Create(const Operation& open) {
    return AtBoundary(nullptr, [&]() -> KxSerializer* {
        std::unique_ptr<KxFileSerializer> stream(new KxFileSerializer);
        open(*stream);
        return stream.release();
    });
}

KxSerializer* KxSerializer::CreateFileReader(const std::string& name) {
    return KxFileSerializer::Create([&](KxFileSerializer& stream) { stream.OpenReader(name); });
}

KxSerializer* KxSerializer::CreateFileReader(const std::basic_string<unsigned short>& name) {
    return KxFileSerializer::Create([&](KxFileSerializer& stream) { stream.OpenReader(name); });
}

KxSerializer* KxSerializer::CreateFileWriter(const std::string& name, FileWriterMode eMode) {
    return KxFileSerializer::Create([&](KxFileSerializer& stream) { stream.OpenWriter(name, eMode); });
}

KxSerializer* KxSerializer::CreateFileWriter(const std::basic_string<unsigned short>& name,
                                             FileWriterMode eMode) {
    return KxFileSerializer::Create([&](KxFileSerializer& stream) { stream.OpenWriter(name, eMode); });
}

KxFileSerializer::KxFileSerializer() = default;

std::FILE* KxFileSerializer::File() const { return m_pFile ? m_pFile->Get() : nullptr; }

KxFileSerializer::~KxFileSerializer() { KxFileSerializer::Close(); }

void KxFileSerializer::OpenReader(const std::string& name) { Read(name); }

void KxFileSerializer::OpenReader(const std::basic_string<unsigned short>& name) { Read(name); }

void KxFileSerializer::OpenWriter(const std::string& name, FileWriterMode eMode) { Write(name, eMode); }

void KxFileSerializer::OpenWriter(const std::basic_string<unsigned short>& name, FileWriterMode eMode) {
    Write(name, eMode);
}

void KxFileSerializer::Close() {
    // What we wrote may still be in the buffer, so this is where a full disk shows.
    const auto file = std::move(m_pFile);
    if (file && !file->Close()) KxSetError(KX_ERROR_FILE_CLOSE);
}

unsigned int KxFileSerializer::GetCurrentPos() { return ShortPositionOf(File()); }

void KxFileSerializer::SerializeBytes(void* pData, unsigned int un32Size, const char*) {
    Transfer(File(), m_bWriting, pData, un32Size);
}

int KxFileSerializer::IsWriting() const { return m_pFile && m_bWriting; }

int KxFileSerializer::IsReading() const { return m_pFile && !m_bWriting; }

int KxFileSerializer::IsEOS() const { return !IsWriting() && IsAtEnd(File(), m_n64FileSize); }

// An object is a part of the file, which ends when the object was saved.
void KxFileSerializer::PushStreamPos() {
    if (m_pFile) m_pFile->BeginPart();
    m_Positions.push_back(PositionOf(File()));
}

void KxFileSerializer::PopAndForgetStreamPos() {
    PopPosition(m_Positions);
    if (m_pFile) m_pFile->EndPart();
}

void KxFileSerializer::PopAndApplyStreamPos() { SeekTo(File(), PopPosition(m_Positions)); }

KxFilePointerSerializer::KxFilePointerSerializer(std::FILE* pFile, int bWriting)
    : m_pFile(pFile), m_bWriting(bWriting), m_n64FileSize(pFile && !bWriting ? Platform::SizeOf(pFile) : 0) {}

int KxFilePointerSerializer::IsFile() const { return 1; }

unsigned int KxFilePointerSerializer::GetCurrentPos() { return ShortPositionOf(m_pFile); }

void KxFilePointerSerializer::SerializeBytes(void* pData, unsigned int un32Size, const char*) {
    Transfer(m_pFile, m_bWriting, pData, un32Size);
}

int KxFilePointerSerializer::IsWriting() const { return m_bWriting != 0; }

int KxFilePointerSerializer::IsEOS() const {
    return !m_pFile || (!m_bWriting && IsAtEnd(m_pFile, m_n64FileSize));
}

void KxFilePointerSerializer::PushStreamPos() { m_Positions.push_back(PositionOf(m_pFile)); }

void KxFilePointerSerializer::PopAndForgetStreamPos() { PopPosition(m_Positions); }

void KxFilePointerSerializer::PopAndApplyStreamPos() { SeekTo(m_pFile, PopPosition(m_Positions)); }
