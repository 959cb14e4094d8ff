// Uses the installed library as an application does: types, globals, files, and classes derived from its own.

#include <kalvo/kalvo.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace {

// Made before main runs, from the library's globals.
struct EarlyUser {
    KxDimensionalValue length{25.4f, &KxUnit_mm};
    KxC24 color = KxRed24;
};
const EarlyUser earlyUser;

// A stream of our own making: it counts the bytes of an archive without keeping them.
class CountingStream : public KxOpaqueSerializer {
public:
    void SerializeBytes(void*, unsigned int un32Size, const char*) override { m_bytes += un32Size; }
    int IsWriting() const override { return 1; }
    int IsEOS() const override { return 1; }
    void PushStreamPos() override {}
    void PopAndForgetStreamPos() override {}
    void PopAndApplyStreamPos() override {}
    unsigned Bytes() const { return m_bytes; }

private:
    unsigned m_bytes = 0;
};

int failures = 0;

void Expect(bool passed, const char* what) {
    if (passed) return;
    std::fprintf(stderr, "consumer: %s\n", what);
    ++failures;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    Expect(
        earlyUser.length.GetValue(&KxUnit_inch) > 0.999f && earlyUser.length.GetValue(&KxUnit_inch) < 1.001f,
        "a static constructor converts units");
    Expect(earlyUser.color == KxRed24 && KxRed24 != KxBlack24, "a static constructor copies a colour");

    KxImage<KxC24> image(64, 48);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x) image.SetPixel(x < 32 ? KxRed24 : KxWhite24, x, y);
    KxROI<KxC24> region(&image, 30, 10, 4, 4);
    Expect(region.GetPixel(1, 0) == KxRed24 && region.GetPixel(2, 0) == KxWhite24,
           "a region shows the image");

    image.Save(argv[1]);
    Expect(KxSuccess(), "an image is saved");
    const std::unique_ptr<KxGenericROI> loaded(KxGenericROI::CreateImageFromFile(argv[1]));
    const auto* copy = dynamic_cast<KxImage<KxC24>*>(loaded.get());
    Expect(copy && copy->GetPixel(31, 47) == KxRed24 && copy->GetPixel(32, 0) == KxWhite24,
           "an image is loaded");
    Expect(!dynamic_cast<KxImage<KxBW8>*>(loaded.get()), "types are told apart at run time");

    CountingStream counter;
    image.Save(&counter);
    const std::unique_ptr<KxSerializer> memory(KxSerializer::CreateMemoryWriter());
    image.Save(memory.get());
    Expect(counter.Bytes() > 0 && counter.Bytes() == memory->GetCurrentPos(),
           "a derived stream takes an archive");

    try {
        KxMemSerializer empty;
        char byte;
        empty.SerializeBytes(&byte, 1, "");
        Expect(false, "an empty stream has nothing to read");
    } catch (const Zelkor::Kalvo::Exception& exception) {
        Expect(exception.GetError() == KX_ERROR_FILE_READ, "exceptions of streams are caught by type");
    }

    image.Load("/nonexistent.bmp");
    Expect(KxGetError() == KX_ERROR_FILE_OPEN && std::strlen(KxGetErrorText()) > 0,
           "failures are in the slot");
    if (failures == 0) std::printf("kalvo %s serves its consumer\n", KxGetVersion());
    return failures;
}
