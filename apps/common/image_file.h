#pragma once
// Image files and archives, loaded by their contents and saved by their names. Failures are thrown.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kalvo/image/kximage.h"

namespace App {

using Object = std::unique_ptr<KxGenericROI>;

// What a file holds: one image, or all objects of an archive.
struct FileContents {
    bool isArchive = false;
    bool isPng = false;
    IMAGE_FILE_TYPES format = IMAGE_FILE_RESERVED;  // of an image file that the library reads
    unsigned pages = 1;                             // of an image file, of which the first is read
    std::vector<Object> objects = {};
};

// Loads whatever stands in the file; "-" is the standard input.
FileContents LoadFile(const std::string& path);
// The same, but the image of an image file has no pixels: they are not read.
FileContents DescribeFile(const std::string& path);

// Loads the image of an image file, or the first object of an archive, which must be an image too. Tells the
// user what is left out.
Object LoadImage(const std::string& path);

// The formats that are written. Their order is that of the extensions in messages.
enum class Format { Bmp, Tiff, Jpeg, Png, Archive };

// How to save.
struct SaveOptions {
    std::optional<Format> format = {};          // by the name if not given
    IMAGE_FILE_TYPES layout = IMAGE_FILE_AUTO;  // of the formats that the library writes
};

// The extension of a name in small letters, with its dot.
std::string SmallExtension(const std::string& path);

// The format that a name asks for: its extension in any case. Throws when it asks for none.
Format FormatOf(const std::string& path);

// The extension of the format, with its dot.
const std::string& ExtensionOf(Format format);

// Saves an image, whole or not at all; "-" is the standard output. Tells the user what the format cannot
// hold.
void SaveImage(KxGenericROI& image, const std::string& path, const SaveOptions& options = {});

}  // namespace App
