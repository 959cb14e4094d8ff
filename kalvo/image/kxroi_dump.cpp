// Text dumps of regions and their trees.

#include <algorithm>
#include <ostream>
#include <string>

#include "kalvo/image/kxregionbase.h"
#include "kalvo/image/regioncopy.h"

namespace Zelkor::Kalvo {

class RegionDump {
public:
    explicit RegionDump(std::ostream& stream) : m_stream(stream) {}

    // The fields that all objects have, with everything below the root. There, regions of a class of the
    // user's own dump themselves.
    void WriteTree(const KxGenericROI& root, int indent) {
        const KxGenericROI* begun = &root;
        const KxGenericROI* next = root.GetFirstSubROI();
        BeginFields(root, indent);
        while (true) {
            if (!next) {
                EndFields(*begun, indent);
                if (begun == &root) return;
                WriteRegionFields(static_cast<const RegionBase&>(*begun), indent);
                next = begun->GetNextSiblingROI();
                begun = begun->GetParent();
                indent -= kIndent;
            } else if (IsPlainRegion(*next)) {
                begun = next;
                next = begun->GetFirstSubROI();
                indent += kIndent;
                BeginFields(*begun, indent);
            } else {
                next->DumpToStream(m_stream, indent + kIndent);
                next = next->GetNextSiblingROI();
            }
        }
    }

    void WriteRegionFields(const RegionBase& region, int indent) {
        m_stream << Blanks(indent) << "( KxROI<Pixel>( " << static_cast<const void*>(&region) << ") : "
                 << "m_bMaskOffsets = " << (region.m_bMaskOffsets ? "TRUE" : "FALSE")
                 << "m_n32CursorX = " << region.m_n32CursorX << "m_n32CursorY = " << region.m_n32CursorY
                 << ")";
    }

private:
    static constexpr int kIndent = 2;

    static std::string Blanks(int count) {
        return std::string(static_cast<std::size_t>(std::max(count, 0)), ' ');
    }

    void WriteText(int indent, const char* name, const char* text) {
        m_stream << Blanks(indent) << name << " = " << (text ? text : "NULL") << std::endl;
    }
    void WriteNumber(int indent, const char* name, int value) {
        m_stream << Blanks(indent) << name << " = " << value << std::endl;
    }
    void WriteAddress(int indent, const char* name, const void* address) {
        m_stream << Blanks(indent) << name << " = " << address << std::endl;
    }

    void BeginFields(const KxGenericROI& region, int indent) {
        m_stream << Blanks(indent) << "Dumping KxGenericROI( " << static_cast<const void*>(&region)
                 << ") : " << std::endl;
        WriteText(indent, "m_pszAuthorASCII", region.GetAuthor());
        WriteText(indent, "m_pszCommentASCII", region.GetComment());
        WriteText(indent, "m_pszDateASCII", region.GetDate());
        WriteText(indent, "m_pszTitleASCII", region.GetTitle());
        WriteAddress(indent, "m_pParent", region.GetParent());
        WriteAddress(indent, "m_pSibling", region.GetNextSiblingROI());
        m_stream << Blanks(indent) << "Dumping children : ";
        if (!region.GetFirstSubROI()) m_stream << " <NO CHILDREN TO DUMP>";
        m_stream << std::endl;
    }

    void EndFields(const KxGenericROI& region, int indent) {
        WriteNumber(indent, "m_n32OrgX", region.GetOrgX());
        WriteNumber(indent, "m_n32OrgY", region.GetOrgY());
        WriteNumber(indent, "m_n32Height", region.GetHeight());
        WriteNumber(indent, "m_n32Width", region.GetWidth());
        WriteText(indent, "m_eColorSystem", ColorSystemName(region.GetColorSystem()));
    }

    std::ostream& m_stream;
};

void RegionBase::DumpToStream(std::ostream& stream, int n32Indent) const {
    KxGenericROI::DumpToStream(stream, n32Indent);
    RegionDump(stream).WriteRegionFields(*this, n32Indent);
}

}  // namespace Zelkor::Kalvo

void KxGenericROI::DumpToStream(std::ostream& stream, int n32Indent) const {
    Zelkor::Kalvo::RegionDump(stream).WriteTree(*this, n32Indent);
}

std::ostream& operator<<(std::ostream& stream, const KxGenericROI& region) {
    stream << "+--------------------------------+" << std::endl
           << "| DUMPING KxGenericROI [subclass] |" << std::endl
           << "+--------------------------------+" << std::endl;
    region.DumpToStream(stream, 0);
    return stream;
}
