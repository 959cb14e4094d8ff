// The texts of this library's own codes, and the search through all tables. The wording is part
// of the interface, so misspellings and double blanks stay as they are.

#include "kalvo/frame/errortable.h"

#include "kalvo/frame/kxerror_codes.h"

namespace Zelkor::Kalvo {

namespace {

constexpr ErrorText kTexts[] = {
    // Success
    {KX_OK, "Success"},

    // Warnings
    {KX_WARNING_TOO_FEW_CHARACTERS, "Too few characters found - Contact Technical Support"},
    {KX_WARNING_TOO_MANY_CHARACTERS, "Too many characters found - Contact Technical Support"},
    {KX_WARNING_WORD_NOT_FOUND, "Word not found - Contact Technical Support"},
    {KX_WARNING_IMAGE_LIMITS_REACHED, "Image limits reached"},
    {KX_WARNING_INVALID_ASCII_PADDING, "Invalid ASCII padding - Contact Technical Support"},

    // Generic: descriptor, operation, data, range, mode
    {KX_ERROR_INVALID_DESCRIPTOR, "Not a valid descriptor - Contact Technical Support"},
    {KX_ERROR_INITIALIZATION, "Initialization error - Contact Technical Support"},
    {KX_ERROR_INVALID_OPERATION, "Invalid operation - See Reference Manual"},
    {KX_ERROR_INVALID_DEPTH, "Invalid depth ( bits per pixel) - Check type compatibility"},
    {KX_ERROR_INVALID_DATA_TYPE, "Invalid data type - Check type compatibility"},
    {KX_ERROR_INVALID_DATA_SIZE, "Inalvid data size - Check type compatibility"},
    {KX_ERROR_PARAMETERS_OUT_OF_RANGE, "Parameters out of range - See Reference Manual"},
    {KX_ERROR_CONSTANT_TOO_LARGE, "Constant value too large - See Reference Manual"},
    {KX_ERROR_INVALID_MODE, "Invalid mode - See Reference Manual"},
    {KX_ERROR_END_SMALLER_THAN_START, "End smaller than start - Adjust indices"},

    // Parameter N out of range, N = code - 1010
    {KX_ERROR_PARAMETER_1_OUT_OF_RANGE, "Parameter 1 out of range - See Reference Manual"},
    {KX_ERROR_PARAMETER_2_OUT_OF_RANGE, "Parameter 2 out of range - See Reference Manual"},
    {KX_ERROR_PARAMETER_3_OUT_OF_RANGE, "Parameter 3 out of range - See Reference Manual"},
    {KX_ERROR_PARAMETER_4_OUT_OF_RANGE, "Parameter 4 out of range - See Reference Manual"},
    {KX_ERROR_PARAMETER_5_OUT_OF_RANGE, "Parameter 5 out of range - See Reference Manual"},
    {KX_ERROR_PARAMETER_6_OUT_OF_RANGE, "Parameter 6 out of range - See Reference Manual"},
    {KX_ERROR_PARAMETER_7_OUT_OF_RANGE, "Parameter 7 out of range - See Reference Manual"},
    {KX_ERROR_PARAMETER_8_OUT_OF_RANGE, "Parameter 8 out of range - See Reference Manual"},
    {KX_ERROR_PARAMETER_9_OUT_OF_RANGE, "Parameter 9 out of range - See Reference Manual"},
    {KX_ERROR_PARAMETER_10_OUT_OF_RANGE, "Parameter 10 out of range - See Reference Manual"},

    // Windows error
    {KX_ERROR_WINDOWS, "Windows error - Contact Technical Support"},

    // Pixel type expected, specialization
    {KX_ERROR_INVALID_PLANES_PER_PIXEL, "Invalid planes per pixel - Check image type or file contents"},
    {KX_ERROR_BW1_EXPECTED, "1 bit black & white ( BW1) image expected - Check image type or file contents"},
    {KX_ERROR_BW8_EXPECTED, "8 bits black & white ( BW8) image expected - Check image type or file contents"},
    {KX_ERROR_BW16_EXPECTED,
     "16 bits black & white ( BW16) image expected - Check image type or file contents"},
    {KX_ERROR_BW32_EXPECTED,
     "32 bits black & white ( BW32) image expected - Check image type or file contents"},
    {KX_ERROR_C15_EXPECTED, "15 bits High Color ( C15) image expected - Check image type or file contents"},
    {KX_ERROR_C16_EXPECTED, "16 bits High Color ( C16) image expected - Check image type or file contents"},
    {KX_ERROR_C24_EXPECTED, "24 bits True Color ( C24) image expected - Check image type or file contents"},
    {KX_ERROR_GRADIENT32_EXPECTED, "GRADIENT32 image expected - Check image type or file contents"},
    {KX_ERROR_NEEDS_SPECIALIZATION, "Template call needs specialization  - Please contact Technical Support"},

    // Mutex and time-out
    {KX_ERROR_CANNOT_CREATE_MUTEX, "Cannot create Mutex"},
    {KX_ERROR_CANNOT_LOCK_MUTEX, "Cannot lock Mutex"},
    {KX_ERROR_CANNOT_UNLOCK_MUTEX, "Cannot unlock Mutex"},
    {KX_ERROR_CANNOT_DELETE_MUTEX, "Cannot delete Mutex"},
    {KX_ERROR_TIMEOUT, "Timeout reached"},

    // Arithmetic and properties
    {KX_ERROR_SINGULAR_MATRIX, "Singular matrix - Check transform parameters"},
    {KX_ERROR_DIVISION_BY_ZERO, "Division by zero - Check parameters"},
    {KX_ERROR_READ_ONLY_PROPERTY, "This property is read-only and may not be accessed."},
    {KX_ERROR_UNDEFINED_PROPERTY, "This is property is undefined and may not be accessed."},

    // Files and archives
    {KX_ERROR_FILE_ACCESS, "File access problems - Check file pathname and device state"},
    {KX_ERROR_FILE_NOT_FOUND, "File not found - Check file pathname"},
    {KX_ERROR_FILE_OPEN, "File could not be opened - Check file pathname, troubleshoot disk device"},
    {KX_ERROR_FILE_READ, "File error while reading - Check file integrity, troubleshoot disk device"},
    {KX_ERROR_FILE_WRITE, "File error while writing - Check free disk space, troubleshoot disk device"},
    {KX_ERROR_BAD_FILE_FORMAT, "Bad file format - Check file source or contents"},
    {KX_ERROR_FILE_CLOSE, "File could not be closed - Check free disk space, troubleshoot disk device"},
    {KX_ERROR_OBSOLETE_FILE_FORMAT, "Obsolete file format - Upgrade to newer release"},
    {KX_ERROR_UNSUPPORTED_FILE_VERSION, "Unsupported file format version - Upgrade to newer release"},
    {KX_ERROR_FILE_EXTENSION, "Missing or unsupported file extension - Check file name/format match"},
    {KX_ERROR_FILE_READ_ONLY, "File is read-only - Set to read-write or save under another name"},
    {KX_ERROR_WRONG_OBJECT_TYPE,
     "The archive does not contain the correct object type - Check your archiving routines please."},
    {KX_ERROR_ARCHIVE_ACCESS, "An unexpected error occured during archive access."},
    {KX_ERROR_NOT_OPEN_FOR_READ, "Attempting to read with a serializer not open for read access."},
    {KX_ERROR_NOT_OPEN_FOR_WRITE, "Attempting to write with a serializer not open for write access."},
    {KX_ERROR_OVERWRITE_NOT_ALLOWED, "Attempting to overwrite an existing file while not allowed to do so."},
    {KX_ERROR_SERIALIZER_NOT_OPEN, "Attempting to use a serializer that is not correctly opened."},

    // Video streams
    {KX_ERROR_AVI_STREAM, "Missing or invalid AVI stream - File must contain video data"},
    {KX_ERROR_AVI_STREAM_TYPE, "Unsupported AVI stream type - Contact Technical Support"},
    {KX_ERROR_AVI_COMPRESSOR_NOT_FOUND, "AVI compressor not found - Check available codecs"},
    {KX_ERROR_AVI_COMPRESSOR_FORMAT,
     "AVI compressor does not support this image format - Check codec documentation"},

    // Image file formats
    {KX_ERROR_LOAD_INTO_ROI, "Unable to load into an ROI - Unsupported feature"},
    {KX_ERROR_SAVE_FROM_ROI, "Unable to save from an ROI - Unsupported feature"},
    {KX_ERROR_UNSUPPORTED_TIFF, "Unsupported TIFF format - Convert TIFF file"},
    {KX_ERROR_UNSUPPORTED_BMP, "Unsupported BMP format - Convert BMP file"},
    {KX_ERROR_DISK_IMAGE_TOO_WIDE, "Disk image too wide for block - Contact Technical Support"},
    {KX_ERROR_TOO_MANY_BITS_PER_PIXEL, "Too many bits per pixel - Check type compatibility"},
    {KX_ERROR_UNSUPPORTED_VISILOG, "Unsupported Visilog format - Obsolete feature"},
    {KX_ERROR_UNSUPPORTED_JPEG, "Unsupported JPEG format - Convert JPEG file"},
    {KX_ERROR_BILEVEL_IMAGE_EXPECTED, "Bilevel image expected - Use BW1"},
    {KX_ERROR_GRAY_IMAGE_EXPECTED, "Gray level image expected - Use BW8"},
    {KX_ERROR_COLOR_IMAGE_EXPECTED, "Color image expected - Use C24"},
    {KX_ERROR_BILEVEL_FORMAT_EXPECTED, "Bilevel format expected - Convert file to black & white"},
    {KX_ERROR_GRAY_FORMAT_EXPECTED, "Gray level format expected - Convert file to gray shades"},
    {KX_ERROR_COLOR_FORMAT_EXPECTED, "Color format expected - Convert file to true color"},
    {KX_ERROR_JPEG_READ, "Cannot read JPEG file - Troubleshoot disk device"},
    {KX_ERROR_JPEG_WRITE, "Cannot write JPEG file - Troubleshoot disk device"},

    // Memory
    {KX_ERROR_TEMPORARY_ALLOCATION,
     "Unable to allocate temporary memory - Fix memory leaks or release memory"},
    {KX_ERROR_INSUFFICIENT_ALLOCATION, "Unsufficient memory allocation - Contact Technical Support"},
    {KX_ERROR_ALLOCATION, "Unable to allocate memory - Fix memory leaks or release memory"},
    {KX_ERROR_REALLOCATION, "Unable to reallocate memory - Fix memory leaks or release memory"},

    // Shared-memory display on an X server
    {KX_ERROR_SHARED_MEMORY_INFO, "Shared memory segment info error"},
    {KX_ERROR_SHARED_MEMORY_ATTACH, "Unable to attach Shared Memory segment to display"},
    {KX_ERROR_SHARED_MEMORY_XIMAGE, "Unable to create Shared Memory XImage"},
    {KX_ERROR_XIMAGE, "Unable to create XImage"},

    // Images and regions of interest
    {KX_ERROR_IMAGE_MEMORY_ACCESS, "Unable to access image memory - Load or size image"},
    {KX_ERROR_ROI_TOO_LARGE, "ROI too large - Fit ROI to image"},
    {KX_ERROR_INVALID_IMAGE, "Not a valid image - Check image contents"},
    {KX_ERROR_SIZE_MISMATCH, "Images not of the same size - Adjust image size( s)"},
    {KX_ERROR_DEPTH_MISMATCH, "Images not of the same depth ( bits per pixel) - Choose compatible types"},
    {KX_ERROR_ORIGIN_IMAGE_TOO_SMALL, "Origin image too small - Use a larger image"},
    {KX_ERROR_CANNOT_MODIFY_ROI, "Unable to modify ROI - Contact Technical Support"},
    {KX_ERROR_CANNOT_MODIFY_PARENT_ORIGIN,
     "Unable to modify parent image origin - Contact Technical Support"},
    {KX_ERROR_CANNOT_MODIFY_PARENT_SIZE, "Unable to modify parent image size - Contact Technical Support"},
    {KX_ERROR_PIXELS_FINITE_SIZE, "Pixels must have finite size - Use nonzero parameters"},
    {KX_ERROR_PIXELS_POSITIVE_SIZE, "Pixels must have positive size"},
    {KX_ERROR_NULL_CONSTANT, "Constant is null - Use nonzero value"},
    {KX_ERROR_NULL_PIXEL, "Null pixel encountered - Avoid division by zero"},
    {KX_ERROR_IMAGES_OVERLAP, "Images may not overlap - Use distinct images"},
    {KX_ERROR_ROI_OUT_OF_PARENT, "ROI out of parent limits - Resize to fit in image"},
    {KX_ERROR_ROI_HAS_PARENT, "ROI already has a parent - Detach ROI first"},
    {KX_ERROR_ROI_HAS_NO_PARENT, "ROI has no parent image - Attach to an image"},
    {KX_ERROR_CANNOT_APPLY_TO_IMAGE, "Cannot apply to an image - Apply to a ROI instead"},
    {KX_ERROR_UNSUPPORTED_IMAGE_TYPE, "Unsupported image type - Check type compatibility"},
    {KX_ERROR_INVALID_IMAGE_TYPE, "Invalid image type - Check type compatibility"},
    {KX_ERROR_X_SERVER_DEPTH, "Unsupported X server depth - Contact Technical Support"},
    {KX_ERROR_CORRUPTED_HIERARCHY,
     "The hierarchy of ROI has been corrupted (inconsistent parent/daughters relationship) - Contact "
     "Technical Support"},
    {KX_ERROR_ORIGIN_IMAGE_TOO_BIG, "Origin image too big - Use a smaller image"},
    {KX_ERROR_ALIGNED_ROI_BIT_INDEX, "First bit index of an aligned ROI must be 0. Use an aligned ROI"},

    // Image sequences
    {KX_ERROR_IMAGE_SEQUENCE_FORMAT, "Unsupported image sequence format - See Reference Manual"},
    {KX_ERROR_IMAGE_SEQUENCE_FILE_FORMAT, "Unsupported image sequence file format - See Reference Manual"},

    // Contours
    {KX_ERROR_PIXEL_OUTSIDE_PERIMETER, "Pixel outside perimeter - Check pixel value"},
    {KX_ERROR_PIXEL_INSIDE_PERIMETER, "Pixel inside perimeter - Check pixel value"},
    {KX_ERROR_ISOLATED_PIXEL, "Isolated pixel - Check pixel value"},
    {KX_ERROR_CONTOUR_FULL, "Maximum pixels in countour reached - Contact Technical Support"},
    {KX_ERROR_INVALID_CONTOUR, "Not a valid contour - Initialize using a contouring function"},

    // Vectors
    {KX_ERROR_VECTOR_MEMORY_ACCESS, "Unable to access vector memory - Check proper vector initialization"},
    {KX_ERROR_INVALID_VECTOR_DESCRIPTOR, "Not a valid vector descriptor - Contact Technical Support"},
    {KX_ERROR_NOT_HISTOGRAM, "Vector type is not histogram - Contact Technical Support"},
    {KX_ERROR_NOT_ENOUGH_GROUPS, "Not enough groups in vector - Contact Technical Support"},
    {KX_ERROR_VECTOR_DATA_SIZE, "Invalid vector data size - Contact Technical Support"},
    {KX_ERROR_VECTOR_DATA_TYPE, "Invalid vector data type - Contact Technical Support"},
    {KX_ERROR_VECTOR_TYPE, "Invalid vector type - Contact Technical Support"},
    {KX_ERROR_VECTOR_RESULT_TOO_BIG, "Result too big to fit in vector - Contact Technical Support"},
    {KX_ERROR_GROUP_OUT_OF_RANGE, "Group out of range - Adjust group index"},
    {KX_ERROR_INVALID_VECTOR_USE, "Invalid vector use - Contact Technical Support"},
    {KX_ERROR_VECTOR_GROUP_LENGTH, "Invalid vector group length - Contact Technical Support"},
    {KX_ERROR_VECTOR_NUMBER_OF_GROUPS, "Invalid vector number of groups - Contact Technical Support"},
    {KX_ERROR_VECTOR_NUMBER_OF_ELEMENTS,
     "Invalid number of vector elements - Check proper vector initialization"},
    {KX_ERROR_UNSUPPORTED_VECTOR_TYPE, "Unsupported vector type - Contact Technical Support"},
    {KX_ERROR_VECTOR_SIZE_MISMATCH, "Vectors not of the same size - Adjust vector sizes"},
    {KX_ERROR_ITEM_NOT_IN_VECTOR, "Item not in the vector"},

    // Kernels
    {KX_ERROR_KERNEL_MEMORY_ACCESS, "Unable to access kernel memory - Check proper kernel initialization"},
    {KX_ERROR_INVALID_KERNEL_DESCRIPTOR, "Not a valid kernel descriptor - Contact Technical Support"},
    {KX_ERROR_INVALID_KERNEL, "Invalid kernel - Contact Technical Support"},
    {KX_ERROR_INVALID_KERNEL_SIZE, "Invalid kernel size - Check proper kernel initialization"},
    {KX_ERROR_KERNEL_NOT_ALLOCATED, "Kernel not allocated - Check proper kernel initialization"},

    // Lists
    {KX_ERROR_LIST_ALREADY_INITIALIZED, "List already initialized - Check initialization"},
    {KX_ERROR_LIST_NOT_INITIALIZED, "List not initialized - Check initialization"},
    {KX_ERROR_BAD_LIST_POSITION, "Bad list position - Restart list traversal"},
    {KX_ERROR_LIST_EMPTY, "List is empty"},
    {KX_ERROR_TOP_OF_LIST, "Top of list - Do not traverse backwards"},
    {KX_ERROR_BOTTOM_OF_LIST, "Bottom of list - Do not traverse forwards"},
    {KX_ERROR_LIST, "List error - Contact Technical Support"},

    // Tracing failure, not implemented, internal
    {KX_ERROR_CANNOT_TRACE, "Cannot trace errors because of a system failure - Contact Technical Support"},
    {KX_ERROR_NOT_YET_IMPLEMENTED, "Feature not yet implemented - Contact Technical Support"},
    {KX_ERROR_INTERNAL, "Internal error - Contact Technical Support"},
};

static_assert(HasRisingCodes(kTexts));

}  // namespace

std::span<const ErrorText> LibraryErrorTexts() noexcept { return kTexts; }

const char* FindErrorText(std::int32_t code) noexcept {
    for (const auto table : {LibraryErrorTexts(), SiblingErrorTexts(), AcquisitionErrorTexts()}) {
        const auto row = std::ranges::lower_bound(table, code, {}, &ErrorText::code);
        if (row != table.end() && row->code == code) return row->text;
    }
    return nullptr;
}

}  // namespace Zelkor::Kalvo
