// Archives objects into a stream of one's own: here one that finds out how long an archive will be, and what
// fields it is made of.

#include <kalvo/kalvo.h>

#include <cstdio>
#include <map>
#include <string>

class Ruler : public KxOpaqueSerializer {
public:
    void SerializeBytes(void*, unsigned int un32Size, const char* pszFieldName) override {
        m_bytes += un32Size;
        m_fields[pszFieldName] += un32Size;
    }
    int IsWriting() const override { return 1; }
    int IsEOS() const override { return 1; }
    // Called before and after each object; a stream that cannot go back may leave them empty.
    void PushStreamPos() override {}
    void PopAndForgetStreamPos() override {}
    void PopAndApplyStreamPos() override {}

    unsigned Bytes() const { return m_bytes; }
    unsigned Bytes(const std::string& field) const {
        const auto found = m_fields.find(field);
        return found == m_fields.end() ? 0 : found->second;
    }

private:
    unsigned m_bytes = 0;
    std::map<std::string, unsigned> m_fields;
};

int main() {
    KxImage<KxC24> image(100, 50);
    image.SetTitle("a title");
    KxROI<KxC24> region(&image, 1, 1, 10, 10);
    Ruler ruler;
    image.Save(&ruler);
    std::printf("%u bytes, of them %u pixels and %u of the title\n", ruler.Bytes(),
                ruler.Bytes("m_pImagePtr"), ruler.Bytes("m_pszTitleASCII"));
    return KxFailure();
}

// Prints:
// 15815 bytes, of them 15600 pixels and 7 of the title
