// Fields from and into files and archives, as they are.

#include "kalvo/imagefiles/jpeghandler_impl.h"

#include <algorithm>
#include <limits>

#include "kalvo/frame/loadlimits.h"
#include "kalvo/frame/outputfile.h"
#include "kalvo/streams/streambytes.h"

namespace Zelkor::Kalvo {
namespace {

constexpr std::uint64_t kLargestField = std::numeric_limits<std::uint32_t>::max();
// A stream need not know how much it holds. Memory grows with what it delivers, so that a forged size costs
// no more than twice that.
constexpr std::uint64_t kFirstPiece = 1 << 20;

JpegField ReadField(KxSerializer& stream, std::uint32_t size, const char* fieldName) {
    RequireBytes(stream, size);
    RequireLoadable(size);
    HeapBlock block;
    for (std::uint64_t held = 0; held < size;) {
        const std::uint64_t wanted = std::min<std::uint64_t>(size, std::max(kFirstPiece, 2 * held));
        block.Resize(wanted);
        TransferBlock(stream, block.Bytes() + held, wanted - held, fieldName);
        held = wanted;
    }
    return {std::move(block), size};
}

void TransferField(KxSerializer& stream, JpegField& field, const char* sizeName, const char* bytesName) {
    const FieldBytes bytes = field.Bytes();
    auto size = static_cast<std::uint32_t>(bytes.size());
    TransferValue(stream, size, sizeName);
    if (size == 0) return;
    if (stream.IsReading())
        field = ReadField(stream, size, bytesName);
    else
        TransferBlock(stream, const_cast<std::uint8_t*>(bytes.data()), size, bytesName);
}

}  // namespace

JpegField LoadFieldFile(const char* path) {
    const Platform::File file(path, "rb");
    const std::int64_t fileSize = file ? Platform::SizeOf(file.Get()) : 0;
    if (fileSize <= 0) throw Exception(KX_ERROR_FILE_OPEN);
    const auto size = static_cast<std::uint64_t>(fileSize);
    if (size > kLargestField) throw Exception(KX_ERROR_FILE_ACCESS);
    RequireLoadable(size);
    HeapBlock block;
    block.Resize(size);
    if (Platform::Read(file.Get(), block.Bytes(), size) != size) throw Exception(KX_ERROR_FILE_ACCESS);
    return {std::move(block), static_cast<std::uint32_t>(size)};
}

void SaveFieldFile(const JpegField& field, const char* path) {
    const FieldBytes bytes = field.Bytes();
    if (!bytes.data()) throw Exception(kErrorFieldAbsent);
    Platform::File file = OpenOutputFile(path, "wb");
    const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), file.Get()) == bytes.size();
    if (!file.Close() || !isWritten) throw Exception(KX_ERROR_FILE_WRITE);
}

}  // namespace Zelkor::Kalvo

void KxJpegHandler_Impl::Serialize(KxSerializer* stream, unsigned /*version*/) {
    if (!stream->IsReading()) return TransferFields(*stream);
    *this = {};
    KxJpegHandler_Impl read;
    read.TransferFields(*stream);
    *this = std::move(read);
}

void KxJpegHandler_Impl::TransferFields(KxSerializer& stream) {
    using Zelkor::Kalvo::TransferField;
    TransferField(stream, upField, "_upFieldSize", "_upField");
    TransferField(stream, downField, "_downFieldSize", "_downField");
}
