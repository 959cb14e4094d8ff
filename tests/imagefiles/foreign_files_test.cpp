// Files that others write and read: libtiff, libjpeg and ImageMagick's `convert`.

#include "tests/support/test.h"

#include <tiffio.h>

#include "tests/support/jpeg_builder.h"

namespace Zelkor::Kalvo::Testing {
namespace {

constexpr int kWidth = 37, kHeight = 23;

// Images keep the bytes of a colour from blue to red, files from red to blue.
Bytes WithRedAndBlueExchanged(Bytes pixels) {
    for (std::size_t i = 0; i + 2 < pixels.size(); i += 3) std::swap(pixels[i], pixels[i + 2]);
    return pixels;
}

std::unique_ptr<KxGenericROI> MakeImage(KX_IMAGE_TYPES type) {
    if (type == KX_IMAGE_BW1) return std::make_unique<KxImage<KxBW1>>(kWidth, kHeight);
    if (type == KX_IMAGE_BW8) return std::make_unique<KxImage<KxBW8>>(kWidth, kHeight);
    if (type == KX_IMAGE_BW16) return std::make_unique<KxImage<KxBW16>>(kWidth, kHeight);
    return std::make_unique<KxImage<KxC24>>(kWidth, kHeight);
}

// The pixels as they stand in files.
Bytes FileBytes(const KxGenericROI& image) {
    return image.GetBitsPerPixel() == 24 ? WithRedAndBlueExchanged(PixelBytes(image)) : PixelBytes(image);
}

struct TiffLayout {
    KX_IMAGE_TYPES type;
    int bits, samples, compression;
    IMAGE_FILE_TYPES savedAs;  // that is how we write it
};
constexpr TiffLayout kTiffLayouts[] = {
    {KX_IMAGE_BW1, 1, 1, COMPRESSION_NONE, IMAGE_FILE_TIFF_BILEVEL},
    {KX_IMAGE_BW1, 1, 1, COMPRESSION_PACKBITS, IMAGE_FILE_RESERVED},  // packed bits load as bytes
    {KX_IMAGE_BW8, 8, 1, COMPRESSION_NONE, IMAGE_FILE_TIFF_GRAY},
    {KX_IMAGE_BW8, 8, 1, COMPRESSION_PACKBITS, IMAGE_FILE_TIFF_GRAY_PACKBITS},
    {KX_IMAGE_BW16, 16, 1, COMPRESSION_NONE, IMAGE_FILE_TIFF_GRAY},
    {KX_IMAGE_C24, 8, 3, COMPRESSION_NONE, IMAGE_FILE_TIFF_COLOR},
};

// Writes a file by libtiff and returns what loads from it.
std::unique_ptr<KxGenericROI> Exchanged(const TiffLayout& layout, const char* mode, int rowsPerStrip,
                                        Bytes pixels) {
    const TemporaryFolder folder;
    TIFF* file = TIFFOpen(folder.File("a.tif").c_str(), mode);
    for (const auto& [tag, value] : {std::pair<int, int>(TIFFTAG_IMAGEWIDTH, kWidth),
                                     {TIFFTAG_IMAGELENGTH, kHeight},
                                     {TIFFTAG_BITSPERSAMPLE, layout.bits},
                                     {TIFFTAG_SAMPLESPERPIXEL, layout.samples},
                                     {TIFFTAG_PHOTOMETRIC, layout.samples == 3 ? 2 : 1},
                                     {TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG},
                                     {TIFFTAG_COMPRESSION, layout.compression},
                                     {TIFFTAG_ROWSPERSTRIP, rowsPerStrip}})
        TIFFSetField(file, static_cast<std::uint32_t>(tag), value);
    TIFFSetField(file, TIFFTAG_ARTIST, "somebody");
    for (int y = 0; y < kHeight; ++y) TIFFWriteScanline(file, &pixels[pixels.size() / kHeight * y], y, 0);
    TIFFClose(file);
    return std::unique_ptr<KxGenericROI>(KxGenericROI::CreateImageFromFile(folder.File("a.tif").c_str()));
}

TEST(ForeignTiff, IsReadWhateverItsByteOrderStripsAndCompression) {
    for (const TiffLayout& layout : kTiffLayouts)
        for (const char* mode : {"wl", "wb"})
            for (const int rowsPerStrip : {1, 5, kHeight}) {
                const auto image = MakeImage(layout.type);
                FillPattern(*image, 7);
                const auto found = Exchanged(layout, mode, rowsPerStrip, FileBytes(*image));
                ASSERT_TRUE(found) << layout.bits << mode << rowsPerStrip << ' ' << KxGetErrorText();
                EXPECT_STREQ(found->GetAuthor(), "somebody");
                if (layout.savedAs != IMAGE_FILE_RESERVED) {
                    EXPECT_TRUE(SamePixels(*found, *image)) << layout.bits << mode << rowsPerStrip;
                    continue;
                }
                const auto& bits = static_cast<KxImage<KxBW1>&>(*image);
                const auto& bytes = dynamic_cast<KxImage<KxBW8>&>(*found);
                for (int i = 0; i < kWidth * kHeight; ++i)
                    EXPECT_EQ(bytes.GetPixel(i % kWidth, i / kWidth),
                              bits.GetPixel(i % kWidth, i / kWidth) ? 255 : 0);
            }
}

template <class Pixel>
void Save(KxGenericROI& image, const std::string& path, IMAGE_FILE_TYPES type) {
    static_cast<KxImage<Pixel>&>(image).Save(path.c_str(), type);
}

void SaveAs(KxGenericROI& image, const std::string& path, IMAGE_FILE_TYPES type) {
    switch (image.GetType()) {
    case KX_IMAGE_BW1:
        return Save<KxBW1>(image, path, type);
    case KX_IMAGE_BW8:
        return Save<KxBW8>(image, path, type);
    case KX_IMAGE_BW16:
        return Save<KxBW16>(image, path, type);
    default:
        return Save<KxC24>(image, path, type);
    }
}

TEST(OurTiff, IsReadByLibtiff) {
    const TemporaryFolder folder;
    for (const TiffLayout& layout : kTiffLayouts) {
        if (layout.savedAs == IMAGE_FILE_RESERVED) continue;
        const auto image = MakeImage(layout.type);
        FillPattern(*image, 9);
        SaveAs(*image, folder.File("a.tif"), layout.savedAs);
        TIFF* file = TIFFOpen(folder.File("a.tif").c_str(), "r");
        ASSERT_TRUE(file) << layout.savedAs;
        std::uint16_t bits = 0, compression = 0;
        TIFFGetField(file, TIFFTAG_BITSPERSAMPLE, &bits);
        TIFFGetField(file, TIFFTAG_COMPRESSION, &compression);
        EXPECT_EQ(std::tuple(bits, compression), std::tuple(layout.bits, layout.compression));
        Bytes pixels(TIFFScanlineSize(file) * kHeight);
        for (int y = 0; y < kHeight; ++y) TIFFReadScanline(file, &pixels[pixels.size() / kHeight * y], y, 0);
        TIFFClose(file);
        EXPECT_EQ(pixels, FileBytes(*image)) << layout.savedAs;
    }
}

// What `convert` makes of raw pixels, in files of the layouts that both sides know, and back.
const struct {
    const char* file;
    KX_IMAGE_TYPES type;
    const char* options;
    IMAGE_FILE_TYPES savedAs;
    int tolerance;
} kConverted[] = {
    {"BMP3:a.bmp", KX_IMAGE_C24, "-type TrueColor", IMAGE_FILE_BMP_COLOR, 0},
    {"BMP2:a.bmp", KX_IMAGE_C24, "-type TrueColor", IMAGE_FILE_BMP_COLOR, 0},
    {"TIFF:a.tif", KX_IMAGE_C24, "-compress None -type TrueColor", IMAGE_FILE_TIFF_COLOR, 0},
    {"TIFF:a.tif", KX_IMAGE_C24, "-compress None -endian MSB -type TrueColor", IMAGE_FILE_TIFF_COLOR, 0},
    {"TIFF:a.tif", KX_IMAGE_BW8, "-compress None", IMAGE_FILE_TIFF_GRAY, 0},
    {"TIFF:a.tif", KX_IMAGE_BW8, "-compress RLE -define tiff:rows-per-strip=3", IMAGE_FILE_TIFF_GRAY_PACKBITS,
     0},
    {"JPEG:a.jpg", KX_IMAGE_C24, "-quality 100 -sampling-factor 4:4:4 -type TrueColor", IMAGE_FILE_JPEG_COLOR,
     4},
    {"JPEG:a.jpg", KX_IMAGE_BW8, "-quality 100", IMAGE_FILE_JPEG_GRAY, 2},
};

bool AreNear(const Bytes& a, const Bytes& b, int tolerance) {
    return std::ranges::equal(a, b, [&](int x, int y) { return std::abs(x - y) <= tolerance; });
}

TEST(ImageMagick, ReadsOurFilesAndWritesOursToRead) {
    const TemporaryFolder folder;
    const auto convert = [&](const std::string& arguments) {
        return std::system(("cd '" + folder.File("") + "' && convert -depth 8 " + arguments).c_str());
    };
    KxSetJpegQuality(100);
    for (const auto& [file, type, options, savedAs, tolerance] : kConverted) {
        SCOPED_TRACE(std::string(file) + ' ' + options);
        const std::string name = std::string(file).substr(5);
        const std::string raw = std::string(type == KX_IMAGE_BW8 ? "gray" : "rgb") + ":pixels.raw";
        const auto image = MakeImage(type);
        FillPattern(*image, 11);
        folder.Write("pixels.raw", FileBytes(*image));
        ASSERT_EQ(convert("-size 37x23 " + raw + ' ' + options + ' ' + file), 0);
        const std::unique_ptr<KxGenericROI> found(
            KxGenericROI::CreateImageFromFile(folder.File(name).c_str()));
        ASSERT_TRUE(found) << KxGetErrorText();
        EXPECT_EQ(found->GetType(), type);
        EXPECT_TRUE(AreNear(PixelBytes(*found), PixelBytes(*image), tolerance));

        SaveAs(*image, folder.File(name), savedAs);
        ASSERT_EQ(convert(name + ' ' + raw), 0);
        const std::unique_ptr<KxGenericROI> own(KxGenericROI::CreateImageFromFile(folder.File(name).c_str()));
        EXPECT_TRUE(AreNear(folder.Read("pixels.raw"), FileBytes(*own), tolerance));
    }
    KxSetJpegQuality(50);
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
