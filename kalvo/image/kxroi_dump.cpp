// Text dumps of regions and their trees.

#include <ostream>
#include <string>

#include "kalvo/image/kxroi.h"

void KxGenericROI::DumpToStream(std::ostream& stream, int n32Indent) const {
    const std::string indent(static_cast<std::size_t>(n32Indent > 0 ? n32Indent : 0), ' ');
    const auto dumpText = [&](const char* name, const char* text) {
        stream << indent << name << " = " << (text ? text : "NULL") << std::endl;
    };
    const auto dumpNumber = [&](const char* name, int value) {
        stream << indent << name << " = " << value << std::endl;
    };

    stream << indent << "Dumping KxGenericROI( " << static_cast<const void*>(this) << ") : " << std::endl;
    dumpText("m_pszAuthorASCII", m_pszAuthorASCII.get());
    dumpText("m_pszCommentASCII", m_pszCommentASCII.get());
    dumpText("m_pszDateASCII", m_pszDateASCII.get());
    dumpText("m_pszTitleASCII", m_pszTitleASCII.get());
    stream << indent << "m_pParent = " << static_cast<const void*>(m_pParent) << std::endl;
    stream << indent << "m_pSibling = " << static_cast<const void*>(m_pSibling) << std::endl;
    stream << indent << "Dumping children : ";
    if (!m_pFirstSubROI) stream << " <NO CHILDREN TO DUMP>";
    stream << std::endl;
    for (const KxGenericROI* child = m_pFirstSubROI; child; child = child->m_pSibling)
        child->DumpToStream(stream, n32Indent + 2);
    dumpNumber("m_n32OrgX", m_n32OrgX);
    dumpNumber("m_n32OrgY", m_n32OrgY);
    dumpNumber("m_n32Height", m_n32Height);
    dumpNumber("m_n32Width", m_n32Width);
    stream << indent << "m_eColorSystem = " << Zelkor::Kalvo::ColorSystemName(m_eColorSystem) << std::endl;
}

std::ostream& operator<<(std::ostream& stream, const KxGenericROI& region) {
    stream << "+--------------------------------+" << std::endl
           << "| DUMPING KxGenericROI [subclass] |" << std::endl
           << "+--------------------------------+" << std::endl;
    region.DumpToStream(stream, 0);
    return stream;
}

template <class Pixel>
void KxROI<Pixel>::DumpToStream(std::ostream& stream, int n32Indent) const {
    KxGenericROI::DumpToStream(stream, n32Indent);
    stream << std::string(static_cast<std::size_t>(n32Indent > 0 ? n32Indent : 0), ' ') << "( KxROI<Pixel>( "
           << static_cast<const void*>(this) << ") : "
           << "m_bMaskOffsets = " << (m_bMaskOffsets ? "TRUE" : "FALSE") << "m_n32CursorX = " << m_n32CursorX
           << "m_n32CursorY = " << m_n32CursorY << ")";
}

#define KX_INSTANTIATE(Pixel) template KX_API void KxROI<Pixel>::DumpToStream(std::ostream&, int) const;
KX_FOR_EACH_PIXEL(KX_INSTANTIATE)
#undef KX_INSTANTIATE
