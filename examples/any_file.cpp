// Opens an image file of any kind: first asks what it is, then loads it into an image of the type that it
// needs.

#include <kalvo/kalvo.h>

#include <cstdio>
#include <memory>

void Show(const char* path) {
    short fileType = 0;
    unsigned pages = 0;
    const std::unique_ptr<KxGenericROI> described(KxDescribeImage(path, fileType, pages));
    if (!described) {
        std::printf("%s: %s\n", path, KxGetErrorText());
        return;
    }
    std::printf("%s: type %d, %d x %d, %d bits\n", path, fileType, described->GetWidth(),
                described->GetHeight(), described->GetBitsPerPixel());
    const std::unique_ptr<KxGenericROI> loaded(KxGenericROI::CreateImageFromFile(path));
    if (const auto* grey = dynamic_cast<KxImage<KxBW8>*>(loaded.get()))
        std::printf("  a grey one that begins with %d\n", static_cast<int>(grey->GetPixel(0, 0)));
    if (const auto* color = dynamic_cast<KxImage<KxC24>*>(loaded.get()))
        std::printf("  one in colour that begins with %d, %d, %d\n", color->GetPixel(0, 0).m_un8C0,
                    color->GetPixel(0, 0).m_un8C1, color->GetPixel(0, 0).m_un8C2);
}

int main() {
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    KxImage<KxBW8> grey(30, 20);
    KxImage<KxC24> color(30, 20);
    for (int i = 0; i < 600; ++i) {
        grey.SetPixel(77, i % 30, i / 30);
        color.SetPixel(KxC24(1, 2, 3), i % 30, i / 30);
    }
    grey.Save("grey.tif", IMAGE_FILE_TIFF_GRAY_PACKBITS);
    color.Save("color.bmp");
    for (const char* path : {"grey.tif", "color.bmp", "missing.jpg"}) Show(path);
}

// Prints:
// grey.tif: type 4, 30 x 20, 8 bits
//   a grey one that begins with 77
// color.bmp: type 8, 30 x 20, 24 bits
//   one in colour that begins with 1, 2, 3
// missing.jpg: File could not be opened - Check file pathname, troubleshoot disk device
