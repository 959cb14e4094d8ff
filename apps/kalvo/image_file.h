#pragma once
// Image files and archives, loaded by their contents and saved by their names. Failures are thrown.

#include <memory>
#include <string>
#include <vector>

#include "kalvo/image/kximage.h"

namespace App {

using Object = std::unique_ptr<KxGenericROI>;

// What a file holds: one image, or all objects of an archive.
struct FileContents {
    bool isArchive = false;
    IMAGE_FILE_TYPES format = IMAGE_FILE_RESERVED;  // of an image file
    unsigned pages = 1;                             // of an image file, of which the first is read
    std::vector<Object> objects = {};
};

// Loads whatever stands in the file.
FileContents LoadFile(const std::string& path);
// The same, but the image of an image file has no pixels: they are not read.
FileContents DescribeFile(const std::string& path);

// Loads the image of an image file, or the first object of an archive, which must be an image too.
Object LoadImage(const std::string& path);

// Saves an image as an image file of that format, or as an archive if the name ends in ".kxa" and the format
// is left to the name (`IMAGE_FILE_AUTO`).
void SaveImage(KxGenericROI& image, const std::string& path, IMAGE_FILE_TYPES format);

}  // namespace App
