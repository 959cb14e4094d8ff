// The one place that prints failures, and what can be said about codes.

#include "common/failure.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <new>

#include "kalvo/frame/kxexception.h"

namespace App {
namespace {

constexpr struct {
    int code;
    const char* words;  // instead of the library's; null keeps them
    const char* hint;
} kWords[] = {
    {KX_ERROR_GRAY_FORMAT_EXPECTED, "the format takes no greys of this depth", "try --type bw8"},
    {KX_ERROR_COLOR_FORMAT_EXPECTED, "the format is for greys, and the image has colours", "try --type bw8"},
    {KX_ERROR_BILEVEL_FORMAT_EXPECTED, "the format is for other pixels than bilevel ones", "try --type bw8"},
    {KX_ERROR_UNSUPPORTED_TIFF, nullptr, "a file to write may need --type bw8 or c24"},
    {KX_ERROR_UNSUPPORTED_BMP, nullptr, "a file to write may need --type bw8 or c24"},
    {KX_ERROR_UNSUPPORTED_JPEG, nullptr, "a file to write needs --type bw8 or c24"},
    {KX_ERROR_FILE_EXTENSION, "the name has no extension that tells a format",
     "use .bmp, .tif, .jpg, .png or .kxa, or --format"},
    {KX_ERROR_FILE_READ, "ends before all that it should hold, or cannot be read", nullptr},
    {KX_ERROR_ROI_OUT_OF_PARENT, "the part reaches beyond the image", nullptr},
    {KX_ERROR_WRONG_OBJECT_TYPE, "the first object of the archive is no image", "see kalvo archive"},
    {14999, "the JPEG codec got no pixels", nullptr},
    {14996, "is no JPEG stream", nullptr},
    {14995, "is a damaged JPEG stream", nullptr},
    {14994, "is a JPEG stream that was cut off", nullptr},
    {14993, "is a kind of JPEG stream that is not supported", nullptr},
    {14992, "is a JPEG stream of neither one nor three channels", nullptr},
    {14991, "the two fields differ in size", nullptr},
    {14990, "the rows of the image overlap", nullptr},
    {14989, "the JPEG codec found no memory", nullptr},
};

Failure CurrentFailure() {
    try {
        throw;
    } catch (const Failure& failure) {
        return failure;
    } catch (const Zelkor::Kalvo::Exception& exception) {
        return Failure::Of(exception.GetError());
    } catch (const std::bad_alloc&) {
        return Failure::Of(KX_ERROR_ALLOCATION);
    } catch (const std::exception& exception) {
        return {exception.what(), KX_ERROR_INTERNAL};
    }
}

void PrintNote(const std::string& file, const std::string& note) {
    std::cerr << program_invocation_short_name << ": " << Escaped(file) << ": " << note << '\n';
}

auto* noteHandler = PrintNote;

}  // namespace

Failure Failure::Of(int code) {
    for (const auto& entry : kWords) {
        if (entry.code != code) continue;
        const std::string words = entry.words ? entry.words : KxGetErrorText(static_cast<KX_ERRORS>(code));
        return {entry.hint ? words + "; " + entry.hint : words, code};
    }
    // The codec adds its own numbers to 15000.
    if (code > 14900 && code < 16000) return {"the JPEG codec fails", code};
    return {KxGetErrorText(static_cast<KX_ERRORS>(code)), code};
}

Failure Failure::OfSystem(const std::string& what, KX_ERRORS code) {
    return {what + ": " + std::strerror(errno), code};
}

std::string Escaped(const std::string& text) {
    std::string line;
    for (const char byte : text) {
        const auto number = static_cast<unsigned char>(byte);
        char escape[8] = {byte};
        if (number < 0x20 || number == 0x7F) std::snprintf(escape, sizeof escape, "\\x%02x", number);
        line += escape;
    }
    return line;
}

Failure ReportCurrentFailure(const std::string& file) {
    const Failure failure = CurrentFailure();
    std::cerr << program_invocation_short_name << ": " << Escaped(file) << ": " << failure.reason << " ("
              << failure.code << ")\n";
    return failure;
}

void Note(const std::string& file, const std::string& note) { noteHandler(file, note); }

void SetNoteHandler(void (*handler)(const std::string& file, const std::string& note)) {
    noteHandler = handler;
}

}  // namespace App
