#pragma once
// The commands of the program. Each returns the exit code: 0 all done, 1 something failed.

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "kalvo/display/kxpixelvector.h"
#include "kalvo/image/kximagefiletypes.h"
#include "kalvo/image/kxroiextent.h"
#include "kalvo/imagefiles/kxjpeghandler.h"
#include "kalvo/pixels/kxpixel.h"
#include "common/canvas.h"
#include "common/image_file.h"

namespace App {

struct ShowOptions {
    std::vector<std::string> files;
    bool asJson = false;
    bool withStatistics = false;
};

struct PixelOptions {
    std::string input;
    std::vector<std::string> places;
    bool asJson = false;
};

struct CompareOptions {
    std::string first;
    std::string second;
    double tolerance = 0;
    bool asJson = false;
};

struct ConvertOptions {
    std::vector<std::string> files;  // what is read, and at last what is written
    std::optional<KX_IMAGE_TYPES> type;
    SaveOptions save;
    std::optional<Zelkor::Kalvo::GenericRoiExtent> region;
    unsigned quality = 90;
    int threshold = 128;
    unsigned stripSize = 8192;
};

struct FieldsOptions {
    std::string upField;
    std::string downField;
    std::string output;
    KxJpegHandler::ScalingMode scaling = KxJpegHandler::FullSize;
};

enum MaskShape { MaskEllipse, MaskRing, MaskRectangle };

struct DrawOptions {
    std::string input;
    std::string output;
    float zoom = 1;
    std::vector<Zelkor::Kalvo::GenericRoiExtent> regions;
    std::vector<MaskShape> masks;  // of the first regions; without a region, one of the whole image
    bool handles = false;
    std::optional<KxBW8Vector> table;
};

struct PlotOptions {
    std::string input;
    std::string output;
    std::optional<Zelkor::Kalvo::GenericRoiExtent> region;
    std::optional<int> row;
    std::optional<int> column;  // without row and column: a histogram
    PictureSize size;
};

struct ResizeOptions {
    std::string input;
    std::string output;
    std::optional<PictureSize> size;
    std::array<float, 2> scales{1, 1};  // without a size
};

struct ReliefOptions {
    std::string input;
    std::string output;
    std::string heights = {};              // another image; empty: the image itself
    std::array<float, 2> angles{-40, 15};  // in degrees
    std::optional<std::array<float, 3>> scales = {};
    int pointSize = 9;
    std::optional<PictureSize> size = {};
};

struct CubeOptions {
    std::string input;
    std::string output;
    std::string coordinates = {};           // another image; empty: the image itself
    std::array<float, 2> angles{-155, 35};  // in degrees
    PictureSize size{600, 600};
};

struct ErrorOptions {
    std::vector<int> codes;  // all when there is none
};

struct TourOptions {
    std::string picture;
    std::string folder = "kalvo-tour";
};

// Tells what image files and archives hold.
int RunInfo(const ShowOptions& options);
// Prints the tree of objects of archives.
int RunArchive(const ShowOptions& options);
// Prints the components of pixels.
int RunPixel(const PixelOptions& options);
// Compares the pixels of two images.
int RunCompare(const CompareOptions& options);
// Loads images, crops and converts them, and saves them.
int RunConvert(const ConvertOptions& options);
// The same for all image files of a folder, with a summary.
int RunBatch(const ConvertOptions& options);
// Makes one image of the two fields of a video frame, and saves it.
int RunFields(const FieldsOptions& options);
// Draws an image with frames, handles and masks of regions, and saves the picture.
int RunDraw(const DrawOptions& options);
// Plots a row, a column or the histogram of an image, and saves the picture.
int RunPlot(const PlotOptions& options);
// Resamples an image, and saves it.
int RunResize(const ResizeOptions& options);
// Draws an image as a relief, and saves the picture.
int RunRelief(const ReliefOptions& options);
// Draws the colours of an image in the colour cube, and saves the picture.
int RunHistogram3d(const CubeOptions& options);
// Prints the texts of error codes.
int RunError(const ErrorOptions& options);
// Takes a picture through all that the library does, and checks it.
int RunTour(const TourOptions& options);

}  // namespace App
