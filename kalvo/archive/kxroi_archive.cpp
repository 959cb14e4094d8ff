// Archiving regions: header and record of every object, and the records of regions.

#include <algorithm>
#include <memory>
#include <string>

#include "kalvo/archive/recordtransfer.h"
#include "kalvo/image/regiontree.h"

using namespace Zelkor::Kalvo;

namespace {

// Text is read in pieces, so that a forged count on a stream of unknown length cannot take more memory than
// the stream delivers.
constexpr std::size_t kTextPiece = 65536;

template <class Character>
void WriteText(KxSerializer& stream, const Character* text, const char* countName, const char* textName) {
    std::uint32_t count = 0;
    if (text) count = static_cast<std::uint32_t>(std::char_traits<Character>::length(text));
    TransferValue(stream, count, countName);
    TransferBlock(stream, const_cast<Character*>(text), count * std::uint64_t{sizeof(Character)}, textName);
}

template <class Character>
std::unique_ptr<Character[]> ReadText(KxSerializer& stream, const char* countName, const char* textName) {
    std::int32_t count = 0;
    TransferValue(stream, count, countName);
    if (count < 0) throw Exception(KX_ERROR_BAD_FILE_FORMAT);
    if (count == 0) return nullptr;
    RequireBytes(stream, static_cast<std::uint64_t>(count) * sizeof(Character));
    std::basic_string<Character> text;
    for (auto left = static_cast<std::size_t>(count); left > 0;) {
        const std::size_t piece = std::min(left, kTextPiece);
        text.resize(text.size() + piece);
        TransferBlock(stream, text.data() + text.size() - piece, piece * sizeof(Character), textName);
        left -= piece;
    }
    auto buffer = std::make_unique<Character[]>(text.size() + 1);
    std::copy(text.begin(), text.end(), buffer.get());
    return buffer;
}

template <class Character>
void TransferText(KxSerializer& stream, std::unique_ptr<Character[]>& text, const char* countName,
                  const char* textName) {
    if (stream.IsReading())
        text = ReadText<Character>(stream, countName, textName);
    else
        WriteText(stream, text.get(), countName, textName);
}

// Runs a transfer on an open file of the caller. Failures end in the error slot, untraced.
template <class Operation>
void WithOpenFile(std::FILE* file, int writing, const Operation& operation) {
    const auto run = [&] {
        KxFilePointerSerializer stream(file, writing);
        operation(stream);
    };
    AtBoundary(nullptr, run, KX_ERROR_ARCHIVE_ACCESS);
}

const char* TraceName(const KxGenericROI& object, const char* ofRegion, const char* ofImage) {
    return const_cast<KxGenericROI&>(object).IsAnROI() ? ofRegion : ofImage;
}

}  // namespace

void KxGenericROI::Save(KxSerializer* pSerializer) const {
    auto& object = const_cast<KxGenericROI&>(*this);  // one routine serves both directions
    SaveObject(pSerializer, object, TraceName(*this, "KxROI::Save", "KxImage::Save"));
}

void KxGenericROI::Load(KxSerializer* pSerializer) {
    LoadObject(pSerializer, *this, TraceName(*this, "KxROI::Load", "KxImage::Load"));
}

void KxGenericROI::Save(std::FILE* pFile) const {
    KxFilePointerSerializer stream(pFile, 1);
    Save(&stream);
}

void KxGenericROI::Load(std::FILE* pFile) {
    KxFilePointerSerializer stream(pFile, 0);
    Load(&stream);
}

void KxGenericROI::Serialize(KxSerializer* pSerializer, unsigned int un32Version) {
    RecordTransfer::Run(pSerializer, *this, nullptr, un32Version);
}

void KxGenericROI::SerializeTexts(KxSerializer& serializer) {
    TransferText(serializer, m_Texts.m_pszAuthorASCII, "authorASCIINumChars", "m_pszAuthorASCII");
    TransferText(serializer, m_Texts.m_pszAuthorUnicode, "authorUnicodeNumUnichars", "m_pszAuthorUnicode");
    TransferText(serializer, m_Texts.m_pszCommentASCII, "commentASCIINumChars", "m_pszCommentASCII");
    TransferText(serializer, m_Texts.m_pszCommentUnicode, "commentUnicodeNumUnichars", "m_pszCommentUnicode");
    TransferText(serializer, m_Texts.m_pszDateASCII, "dateASCIINumChars", "m_pszDateASCII");
    TransferText(serializer, m_Texts.m_pszDateUnicode, "dateUnicodeNumUnichars", "m_pszDateUnicode");
    TransferText(serializer, m_Texts.m_pszTitleASCII, "titleASCIINumChars", "m_pszTitleASCII");
    TransferText(serializer, m_Texts.m_pszTitleUnicode, "titleUnicodeNumUnichars", "m_pszTitleUnicode");
}

void KxGenericROI::SerializePlacement(KxSerializer& serializer) {
    std::int32_t orgX = m_n32OrgX, orgY = m_n32OrgY, width = m_n32Width, height = m_n32Height;
    std::int32_t colorSystem = m_eColorSystem;
    TransferValue(serializer, orgX, "m_n32OrgX");
    TransferValue(serializer, orgY, "m_n32OrgY");
    TransferValue(serializer, width, "m_n32Width");
    TransferValue(serializer, height, "m_n32Height");
    TransferValue(serializer, colorSystem, "m_eColorSystem");
    if (!serializer.IsReading()) return;
    // Placements are not clipped when they are read, so one before its parent would address foreign memory.
    if (orgX < 0 || orgY < 0 || width < 0 || height < 0) throw Exception(KX_ERROR_BAD_FILE_FORMAT);
    m_n32OrgX = orgX;
    m_n32OrgY = orgY;
    m_n32Width = width;
    m_n32Height = height;
    m_eColorSystem = static_cast<KX_COLOR_SYSTEM>(colorSystem);
}

void RegionBase::SerializeFields(KxSerializer& serializer) {
    TransferValue(serializer, m_bMaskOffsets, "m_bMaskOffsets");
    TransferValue(serializer, m_n32CursorX, "m_n32CursorX");
    TransferValue(serializer, m_n32CursorY, "m_n32CursorY");
}

void RegionBase::PartialSerialize(KxSerializer* pSerializer) {
    KxSerializer& stream = RequireStream(pSerializer);
    std::int32_t orgX = GetOrgX(), orgY = GetOrgY(), width = GetWidth(), height = GetHeight();
    TransferValue(stream, orgX, "n32OrgX");
    TransferValue(stream, orgY, "n32OrgY");
    TransferValue(stream, width, "n32Width");
    TransferValue(stream, height, "n32Height");
    if (!stream.IsReading()) return;
    KxOk();
    SetPlacement(orgX, orgY, width, height);
}

void RegionBase::PartialSerialize(std::FILE* pFile, int bWriting) {
    WithOpenFile(pFile, bWriting, [&](KxSerializer& stream) { PartialSerialize(&stream); });
}

void RegionBase::VersionLessPartialSerialize(KxSerializer* pSerializer, unsigned int) {
    PartialSerialize(pSerializer);
}

void RegionBase::VersionLessPartialSerialize(std::FILE* pFile, int bWriting, unsigned int un32Align) {
    WithOpenFile(pFile, bWriting,
                 [&](KxSerializer& stream) { VersionLessPartialSerialize(&stream, un32Align); });
}

template <class Pixel>
void KxROI<Pixel>::Serialize(KxSerializer* pSerializer, unsigned int un32Version) {
    RecordTransfer::Run(pSerializer, *this, &ClassOf<KxROI>(), un32Version);
}

template <class Pixel>
KxSerializer::ObjectType KxROI<Pixel>::GetSerializationType() {
    return RequireObjectTypeOf<KxROI>();
}

#define KX_INSTANTIATE(Pixel)                                                  \
    template KX_API void KxROI<Pixel>::Serialize(KxSerializer*, unsigned int); \
    template KX_API KxSerializer::ObjectType KxROI<Pixel>::GetSerializationType();
KX_FOR_EACH_PIXEL(KX_INSTANTIATE)
#undef KX_INSTANTIATE
