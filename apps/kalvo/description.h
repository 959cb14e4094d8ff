#pragma once
// What the program tells about files and objects: as JSON, and as text made from that JSON.

#include <nlohmann/json.hpp>
#include <string>

#include "common/image_file.h"

namespace App {

using Json = nlohmann::ordered_json;

// The object and, under "regions", its children.
Json Describe(KxGenericROI& object);
// The file's format and, under "objects", what it holds.
Json Describe(const std::string& path, const FileContents& contents);

// JSON text whatever bytes the strings hold: those that are not UTF-8 become U+FFFD.
std::string ToText(const Json& json, int indent = -1);
// A file's description as a block of lines, without its regions.
std::string ToLines(const Json& file);
// An object and its regions as a tree, one line each.
std::string ToTree(const Json& object, int indent);

// Least, greatest and mean value of each component of an image.
Json DescribeLevels(const KxGenericROI& image);

}  // namespace App
