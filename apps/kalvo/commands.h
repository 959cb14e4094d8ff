#pragma once
// The commands of the program. Each returns the exit code: 0 all done, 1 something failed.

#include <optional>
#include <string>
#include <vector>

#include "kalvo/image/kximagefiletypes.h"
#include "kalvo/image/kxpixel.h"
#include "kalvo/measure/kxroiextent.h"

namespace App {

struct ShowOptions {
    std::vector<std::string> files;
    bool asJson = false;
};

struct ConvertOptions {
    std::string input;
    std::string output;
    std::optional<KX_IMAGE_TYPES> type;
    IMAGE_FILE_TYPES format = IMAGE_FILE_AUTO;
    std::optional<Zelkor::Kalvo::GenericRoiExtent> region;
    unsigned quality = 50;
    int threshold = 128;
    unsigned stripSize = 8192;
};

struct TourOptions {
    std::string picture;
    std::string folder = "kalvo-tour";
};

/// Tells what image files and archives hold.
int RunInfo(const ShowOptions& options);
/// Prints the tree of objects of archives.
int RunArchive(const ShowOptions& options);
/// Loads an image, crops and converts it, and saves it.
int RunConvert(const ConvertOptions& options);
/// Takes a picture through all that the library does, and checks it.
int RunTour(const TourOptions& options);

}  // namespace App
