// The outside of the field handler: every form of name, file and stream.

#include "kalvo/imagefiles/kxjpeghandler.h"

#include "kalvo/archive/archivedobject.h"
#include "kalvo/frame/boundary.h"
#include "kalvo/imagefiles/jpeghandler_impl.h"

using namespace Zelkor::Kalvo;

namespace {

template <class Character>
void LoadFrom(const std::basic_string<Character>& path, KxJpegHandler& handler) {
    const std::unique_ptr<KxSerializer> stream(KxSerializer::CreateFileReader(path));
    if (stream) handler.Load(stream.get());
}

template <class Character>
void SaveTo(const std::basic_string<Character>& path, const KxJpegHandler& handler) {
    const std::unique_ptr<KxSerializer> stream(KxSerializer::CreateFileWriter(path));
    if (!stream) return;
    handler.Save(stream.get());
    stream->Close();
}

// Calls `exchange(name, handler)`; there may be no memory for the name.
template <class Character, class Handler>
void WithName(const Character* path, void (*exchange)(const std::basic_string<Character>&, Handler&),
              Handler& handler) {
    AtBoundary(nullptr, [&] { exchange(path ? path : std::basic_string<Character>(), handler); });
}

}  // namespace

KxJpegHandler::KxJpegHandler() : m_pImplementation(std::make_unique<KxJpegHandler_Impl>()) {}

KxJpegHandler::~KxJpegHandler() = default;

void KxJpegHandler::SetBuffers(unsigned char* pUpField, unsigned int un32UpSize, unsigned char* pDownField,
                               unsigned int un32DownSize) {
    *m_pImplementation = {.upField = {pUpField, un32UpSize}, .downField = {pDownField, un32DownSize}};
}

void KxJpegHandler::UpdateSizeAndTimestamp(unsigned int un32UpSize, unsigned int un32DownSize,
                                           unsigned int un32Timestamp0, unsigned int un32Timestamp1) {
    KxJpegHandler_Impl& held = *m_pImplementation;
    if (!held.upField.MayTakeSize(un32UpSize) || !held.downField.MayTakeSize(un32DownSize))
        throw Exception(KX_ERROR_INVALID_DATA_SIZE);
    held.upField.SetSize(un32UpSize);
    held.downField.SetSize(un32DownSize);
    held.timestamp = {un32Timestamp0, un32Timestamp1};
}

void KxJpegHandler::LoadFJfif(const char* pszPath) { m_pImplementation->upField = LoadFieldFile(pszPath); }

void KxJpegHandler::LoadFJfif(const std::string& path) { LoadFJfif(path.c_str()); }

void KxJpegHandler::LoadSJfif(const char* pszPath) { m_pImplementation->downField = LoadFieldFile(pszPath); }

void KxJpegHandler::LoadSJfif(const std::string& path) { LoadSJfif(path.c_str()); }

void KxJpegHandler::SaveFJfif(const char* pszPath) { SaveFieldFile(m_pImplementation->upField, pszPath); }

void KxJpegHandler::SaveFJfif(const std::string& path) { SaveFJfif(path.c_str()); }

void KxJpegHandler::SaveSJfif(const char* pszPath) { SaveFieldFile(m_pImplementation->downField, pszPath); }

void KxJpegHandler::SaveSJfif(const std::string& path) { SaveSJfif(path.c_str()); }

void KxJpegHandler::Load(const char* pszPath) { WithName(pszPath, LoadFrom, *this); }

void KxJpegHandler::Load(const unsigned short* pwszPath) { WithName(pwszPath, LoadFrom, *this); }

void KxJpegHandler::Load(const std::string& path) { LoadFrom(path, *this); }

void KxJpegHandler::Load(const std::basic_string<unsigned short>& path) { LoadFrom(path, *this); }

void KxJpegHandler::Load(std::FILE* pFile) {
    KxFilePointerSerializer stream(pFile, 0);
    Load(&stream);
}

void KxJpegHandler::Load(KxSerializer* pSerializer) {
    LoadObject(pSerializer, *m_pImplementation, "KxJpegHandler::Load");
}

void KxJpegHandler::Save(const char* pszPath) const { WithName(pszPath, SaveTo, *this); }

void KxJpegHandler::Save(const unsigned short* pwszPath) const { WithName(pwszPath, SaveTo, *this); }

void KxJpegHandler::Save(const std::string& path) const { SaveTo(path, *this); }

void KxJpegHandler::Save(const std::basic_string<unsigned short>& path) const { SaveTo(path, *this); }

void KxJpegHandler::Save(std::FILE* pFile) const {
    KxFilePointerSerializer stream(pFile, 1);
    Save(&stream);
}

void KxJpegHandler::Save(KxSerializer* pSerializer) const {
    SaveObject(pSerializer, *m_pImplementation, "KxJpegHandler::Save");
}

void KxJpegHandler::DecompressToImage(KxImage<KxC24>& image, const ScalingMode& eMode) const {
    DecodeFields(m_pImplementation->upField.Bytes(), m_pImplementation->downField.Bytes(), image, eMode);
}

void KxJpegHandler::CreateJpegFromRGB24(unsigned char*& pJpeg, unsigned int& un32JpegSize,
                                        const unsigned char* pPixels, unsigned int un32RowPitch,
                                        unsigned int un32Width, unsigned int un32Height, unsigned int) {
    pJpeg = nullptr;
    un32JpegSize = 0;
    EncodedField encoded = EncodeRgb24(pPixels, un32RowPitch, un32Width, un32Height);
    un32JpegSize = encoded.size;
    pJpeg = encoded.block.Release();
}
