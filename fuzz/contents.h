#pragma once
// What files and images hold, as strings to compare.

#include <fstream>
#include <iterator>
#include <string>

#include "kalvo/image/kxgenericroi.h"
#include "kalvo/streams/kxserializer.h"

namespace Zelkor::Kalvo::Fuzzing {

inline std::string Contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline std::string Archived(const KxGenericROI& image) {
    KxMemSerializer writer;
    writer.OpenWriter();
    image.Save(&writer);
    const auto& bytes = writer.GetBuffer();
    return {bytes.begin(), bytes.end()};
}

}  // namespace Zelkor::Kalvo::Fuzzing
