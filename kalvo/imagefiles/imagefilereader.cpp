// Checks offsets against the size of the file, and keeps the part around the latest small read.

#include "kalvo/imagefiles/imagefilereader.h"

#include <algorithm>

#include "kalvo/base/file.h"
#include "kalvo/frame/kxexception.h"

namespace Zelkor::Kalvo {

ImageFileReader::ImageFileReader(std::FILE* stream) : m_stream(stream) {
    const std::int64_t size = Platform::SizeOf(stream);
    if (size < 0) throw Exception(KX_ERROR_FILE_READ);
    m_size = static_cast<std::uint64_t>(size);
}

void ImageFileReader::Require(std::uint64_t offset, std::uint64_t bytes) const {
    if (offset > m_size || bytes > m_size - offset) throw Exception(KX_ERROR_FILE_READ);
}

void ImageFileReader::Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
    constexpr std::size_t kWindowBytes = 0x10000;
    Require(offset, bytes.size());
    if (bytes.size() >= kWindowBytes) return ReadStream(offset, bytes);
    if (offset < m_windowOffset || offset + bytes.size() > m_windowOffset + m_window.size()) {
        m_window.resize(std::min<std::uint64_t>(kWindowBytes, m_size - offset));
        m_windowOffset = offset;
        ReadStream(offset, m_window);
    }
    std::copy_n(m_window.begin() + (offset - m_windowOffset), bytes.size(), bytes.begin());
}

void ImageFileReader::ReadStream(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
    if (!Platform::Seek(m_stream, static_cast<std::int64_t>(offset)) ||
        Zelkor::Platform::Read(m_stream, bytes.data(), bytes.size()) != bytes.size())
        throw Exception(KX_ERROR_FILE_READ);
}

}  // namespace Zelkor::Kalvo
