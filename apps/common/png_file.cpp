// Libpng comes back from failures by longjmp, so each direction is one function of plain data.

#include "common/png_file.h"

#include <png.h>

#include <bit>
#include <cstdio>
#include <cstring>
#include <vector>

#include "kalvo/measure/kxunit.h"
#include "common/failure.h"
#include "common/pixel_types.h"

namespace App {
namespace {

static_assert(std::endian::native == std::endian::little, "words of 16 bits are exchanged");

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// What libpng says when it gives up.
struct Complaint {
    char text[160] = "";
};

void Complain(png_structp png, png_const_charp text) {
    auto* complaint = static_cast<Complaint*>(png_get_error_ptr(png));
    std::snprintf(complaint->text, sizeof complaint->text, "%s", text);
    png_longjmp(png, 1);
}

void Ignore(png_structp, png_const_charp) {}

struct TextKey {
    const char* key;
    const char* (KxGenericROI::*get)() const;
    void (KxGenericROI::*set)(const char*);
};
constexpr TextKey kTexts[] = {{"Title", &KxGenericROI::GetTitle, &KxGenericROI::SetTitle},
                              {"Author", &KxGenericROI::GetAuthor, &KxGenericROI::SetAuthor},
                              {"Comment", &KxGenericROI::GetComment, &KxGenericROI::SetComment},
                              {"Creation Time", &KxGenericROI::GetDate, &KxGenericROI::SetDate}};

// The type that suits the file after the transformations that are asked of libpng here.
KX_IMAGE_TYPES Prepare(png_structp png, png_infop info) {
    const auto colors = png_get_color_type(png, info);
    const auto depth = png_get_bit_depth(png, info);
    const bool isClear = (colors & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(png, info, PNG_INFO_tRNS) != 0;
    if ((colors & PNG_COLOR_MASK_COLOR) == 0) {
        png_set_strip_alpha(png);
        if (depth == 1) return KX_IMAGE_BW1;
        if (depth < 8) png_set_expand_gray_1_2_4_to_8(png);
        if (depth == 16) png_set_swap(png);
        return depth == 16 ? KX_IMAGE_BW16 : KX_IMAGE_BW8;
    }
    png_set_expand(png);
    png_set_scale_16(png);
    png_set_bgr(png);
    return isClear ? KX_IMAGE_C24A : KX_IMAGE_C24;
}

struct Reader {
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &complaint, Complain, Ignore);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    Complaint complaint;
    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
};

bool ReadHeader(Reader& reader, std::FILE* file, KX_IMAGE_TYPES& type) {
    if (setjmp(png_jmpbuf(reader.png))) return false;
    png_init_io(reader.png, file);
    png_read_info(reader.png, reader.info);
    type = Prepare(reader.png, reader.info);
    png_set_interlace_handling(reader.png);
    png_read_update_info(reader.png, reader.info);
    return true;
}

bool ReadRows(Reader& reader, png_bytepp rows) {
    if (setjmp(png_jmpbuf(reader.png))) return false;
    png_read_image(reader.png, rows);
    png_read_end(reader.png, reader.info);
    return true;
}

void TakeDescription(Reader& reader, KxGenericROI& image) {
    png_textp texts = nullptr;
    const int count = png_get_text(reader.png, reader.info, &texts, nullptr);
    for (int i = 0; i < count; ++i)
        for (const TextKey& text : kTexts)
            if (std::strcmp(texts[i].key, text.key) == 0) (image.*text.set)(texts[i].text);
    const auto x = static_cast<float>(png_get_x_pixels_per_meter(reader.png, reader.info)),
               y = static_cast<float>(png_get_y_pixels_per_meter(reader.png, reader.info));
    KxMeasurementUnit unit = x > 0 && y > 0 ? KxUnit_m : KxUnitNone;
    image.SetResolution(x > 0 && y > 0 ? x : 1, x > 0 && y > 0 ? y : 1, &unit);
}

Object Read(const std::string& path, bool withPixels) {
    const File file(std::fopen(path.c_str(), "rb"));
    if (!file) throw Failure::OfSystem("cannot be opened", KX_ERROR_FILE_OPEN);
    Reader reader;
    if (!reader.info) throw Failure::Of(KX_ERROR_ALLOCATION);
    const auto refuse = [&] {
        throw Failure{std::string("libpng: ") + reader.complaint.text, KX_ERROR_FILE_READ};
    };
    KX_IMAGE_TYPES type = KX_IMAGE_BW8;
    if (!ReadHeader(reader, file.get(), type)) refuse();
    const int width = static_cast<int>(png_get_image_width(reader.png, reader.info)),
              height = static_cast<int>(png_get_image_height(reader.png, reader.info));
    Object image;
    ForPixel<FilePixels>(type, [&]<class Pixel>(std::type_identity<Pixel>) {
        auto typed = std::make_unique<KxImage<Pixel>>();
        Checked(
            [&] { withPixels ? typed->SetSize(width, height) : typed->SetImagePtr(width, height, nullptr); });
        image = std::move(typed);
    });
    if (withPixels) {
        std::vector<png_bytep> rows(static_cast<std::size_t>(height));
        for (int y = 0; y < height; ++y)
            rows[static_cast<std::size_t>(y)] = static_cast<png_bytep>(image->GetGenericImagePtr(0, y));
        if (!ReadRows(reader, rows.data())) refuse();
    }
    TakeDescription(reader, *image);
    return image;
}

struct Writer {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &complaint, Complain, Ignore);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    Complaint complaint;
    ~Writer() { png_destroy_write_struct(&png, &info); }
};

struct Layout {
    int depth, colors;
};

Layout LayoutOf(KX_IMAGE_TYPES type) {
    switch (type) {
    case KX_IMAGE_BW1:
        return {1, PNG_COLOR_TYPE_GRAY};
    case KX_IMAGE_BW8:
        return {8, PNG_COLOR_TYPE_GRAY};
    case KX_IMAGE_BW16:
        return {16, PNG_COLOR_TYPE_GRAY};
    case KX_IMAGE_C24:
    case KX_IMAGE_C24A:
        return {8, PNG_COLOR_TYPE_RGB};
    default:
        throw Failure::Of(KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    }
}

bool Write(Writer& writer, std::FILE* file, KX_IMAGE_TYPES type, const Layout& layout, png_uint_32 width,
           png_uint_32 height, png_uint_32 xPerMetre, png_uint_32 yPerMetre, png_textp texts, int textCount,
           png_bytepp rows) {
    if (setjmp(png_jmpbuf(writer.png))) return false;
    png_init_io(writer.png, file);
    png_set_IHDR(writer.png, writer.info, width, height, layout.depth, layout.colors, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (xPerMetre > 0 && yPerMetre > 0)
        png_set_pHYs(writer.png, writer.info, xPerMetre, yPerMetre, PNG_RESOLUTION_METER);
    png_set_text(writer.png, writer.info, texts, textCount);
    png_write_info(writer.png, writer.info);
    if (layout.depth == 16) png_set_swap(writer.png);
    if (layout.colors == PNG_COLOR_TYPE_RGB) png_set_bgr(writer.png);
    if (type == KX_IMAGE_C24A) png_set_filler(writer.png, 0, PNG_FILLER_AFTER);
    png_write_image(writer.png, rows);
    png_write_end(writer.png, writer.info);
    return true;
}

// Pixels per metre, rounded; 0 when the image does not say.
std::pair<png_uint_32, png_uint_32> Resolution(const KxGenericROI& image) {
    float x, y;
    const KxMeasurementUnit* unit;
    image.GetResolution(x, y, unit);
    const float perMetre = 1 / unit->GetMagnitude();
    const auto rounded = [&](float number) {
        const float scaled = number * perMetre + 0.5f;
        return scaled >= 1 && scaled < 0x1p31f ? static_cast<png_uint_32>(scaled) : 0;
    };
    if (std::strcmp(unit->GetName(), KxUnitNone.GetName()) == 0) return {0, 0};
    return {rounded(x), rounded(y)};
}

}  // namespace

Object LoadPng(const std::string& path) { return Read(path, true); }

Object DescribePng(const std::string& path) { return Read(path, false); }

void SavePng(KxGenericROI& image, const std::string& path) {
    const Layout layout = LayoutOf(image.GetType());
    std::vector<png_text> texts;
    for (const TextKey& text : kTexts)
        if (const char* value = (image.*text.get)()) {
            png_text entry{};
            entry.compression = PNG_TEXT_COMPRESSION_NONE;
            entry.key = const_cast<char*>(text.key);
            entry.text = const_cast<char*>(value);
            texts.push_back(entry);
        }
    std::vector<png_bytep> rows(static_cast<std::size_t>(image.GetHeight()));
    for (int y = 0; y < image.GetHeight(); ++y)
        rows[static_cast<std::size_t>(y)] = static_cast<png_bytep>(image.GetGenericImagePtr(0, y));
    const auto [x, y] = Resolution(image);
    const File file(std::fopen(path.c_str(), "wb"));
    if (!file) throw Failure::OfSystem("cannot be written", KX_ERROR_FILE_OPEN);
    Writer writer;
    if (!writer.info) throw Failure::Of(KX_ERROR_ALLOCATION);
    if (!Write(writer, file.get(), image.GetType(), layout, static_cast<png_uint_32>(image.GetWidth()),
               static_cast<png_uint_32>(image.GetHeight()), x, y, texts.data(),
               static_cast<int>(texts.size()), rows.data()))
        throw Failure{std::string("libpng: ") + writer.complaint.text, KX_ERROR_FILE_WRITE};
    if (std::fflush(file.get()) != 0) throw Failure::OfSystem("cannot be written", KX_ERROR_FILE_WRITE);
}

}  // namespace App
