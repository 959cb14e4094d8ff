// The command `tour`: one photograph through conversions, image files, regions, masks, archives and pictures.
// Every step prints a line and is checked.

#include <algorithm>
#include <filesystem>
#include <iomanip>
#include <iostream>

#include "kalvo/frame/kxlibrary.h"
#include "kalvo/measure/kxunit.h"
#include "kalvo/streams/kxserializer.h"
#include "commands.h"
#include "common/failure.h"
#include "common/image_file.h"
#include "common/pixel_types.h"
#include "common/plots.h"
#include "common/region.h"
#include "common/trees.h"
#include "comparison.h"
#include "description.h"

namespace App {
namespace {

namespace files = std::filesystem;
using Photo = KxImage<KxC24>;
using Region = KxROI<KxC24>;
using Extent = Zelkor::Kalvo::GenericRoiExtent;

constexpr int kJpegQuality = 90;
constexpr double kTolerableLoss = 4;  // grey values, at that quality
constexpr KxC24 kRed(255, 0, 0);      // as components of an RGB image; the library's KxRed24 is their reverse
constexpr PixelMaker kMaker{.threshold = 128};

class Tour {
public:
    explicit Tour(const TourOptions& options) : m_picture(options.picture), m_folder(options.folder) {}

    int Run();

private:
    void LoadPicture();
    void SaveInAllFormats();
    void BuildRegions();
    void MeasureRegions();
    void Archive();
    void DrawPictures();
    void DragHandle();
    void PaintRegions();

    template <class Pixel>
    void SaveAs(KxImage<Pixel>& image, std::initializer_list<IMAGE_FILE_TYPES> formats);
    template <class Pixel>
    void CheckCopy(const KxROI<Pixel>& original, const KxROI<Pixel>& copy, IMAGE_FILE_TYPES format,
                   const std::string& path);

    std::string File(const std::string& name) const { return (m_folder / name).string(); }
    void Check(bool passed, const std::string& what);
    void ShowPicture(const std::string& name);

    files::path m_picture;
    files::path m_folder;
    std::unique_ptr<Photo> m_photo;
    Region m_centre, m_upper, m_spot;
    int m_passed = 0;
    int m_failed = 0;
};

void Heading(const std::string& text) { std::cout << '\n' << text << '\n'; }

void Tour::Check(bool passed, const std::string& what) {
    ++(passed ? m_passed : m_failed);
    std::cout << (passed ? "  ok      " : "  FAILED  ") << what << '\n';
}

std::string SizeOnDisk(const std::string& path) { return std::to_string(files::file_size(path)) + " bytes"; }

std::string Decimal(double value) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(1) << value;
    return text.str();
}

bool IsJpeg(IMAGE_FILE_TYPES format) {
    return format == IMAGE_FILE_JPEG_GRAY || format == IMAGE_FILE_JPEG_COLOR;
}
bool IsBilevel(IMAGE_FILE_TYPES format) {
    return format == IMAGE_FILE_TIFF_BILEVEL || format == IMAGE_FILE_TIFF_BILEVEL_PACKBITS;
}
bool IsBmp(IMAGE_FILE_TYPES format) {
    return format >= IMAGE_FILE_BMP_BILEVEL && format <= IMAGE_FILE_BMP_COLOR;
}

void Tour::LoadPicture() {
    Heading("A photograph, loaded by its contents");
    const FileContents contents = LoadFile(m_picture.string());
    std::cout << ToLines(Describe(m_picture.string(), contents));
    ForPixel<FilePixels>(contents.objects.front()->GetType(), [&]<class Pixel>(std::type_identity<Pixel>) {
        m_photo = Convert<KxC24>(static_cast<KxROI<Pixel>&>(*contents.objects.front()), kMaker);
    });
    if (!m_photo) throw Failure::Of(KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
}

// Formats that keep less than the pixels hold are compared with what they keep.
template <class Pixel>
void Tour::CheckCopy(const KxROI<Pixel>& original, const KxROI<Pixel>& copy, IMAGE_FILE_TYPES format,
                     const std::string& path) {
    const std::string name = files::path(path).filename().string() + ", " + SizeOnDisk(path);
    if (IsJpeg(format)) {
        const double loss = MeanDifference(original, copy);
        Check(loss < kTolerableLoss, name + ": read back, mean difference " + Decimal(loss) + " of 255");
    } else if (IsBilevel(format)) {
        const auto bilevel = Convert<KxBW1>(original, kMaker);
        Check(SamePixels(*Convert<Pixel>(*bilevel, kMaker), copy), name + ": read back, black and white");
    } else {
        Check(SamePixels(original, copy), name + ": read back, all pixels equal");
    }
}

template <class Pixel>
void Tour::SaveAs(KxImage<Pixel>& image, std::initializer_list<IMAGE_FILE_TYPES> formats) {
    for (const IMAGE_FILE_TYPES format : formats) {
        const char* extension = IsJpeg(format) ? ".jpg" : IsBmp(format) ? ".bmp" : ".tif";
        const std::string path =
            File(std::string(PixelTypeName(image.GetType())) + "-" + FileTypeName(format) + extension);
        SaveImage(image, path, {.layout = format});
        KxImage<Pixel> copy;
        const IMAGE_FILE_TYPES found = Checked([&] { return copy.Load(path.c_str()); });
        if (found != format) Check(false, path + ": found to be " + FileTypeName(found));
        CheckCopy(image, copy, format, path);
    }
}

void Tour::SaveInAllFormats() {
    Heading("Eight pixel types, and every file format that takes them");
    KxSetJpegQuality(kJpegQuality);
    SaveAs(*Convert<KxBW1>(*m_photo, kMaker), {IMAGE_FILE_TIFF_BILEVEL, IMAGE_FILE_BMP_BILEVEL});
    SaveAs(*Convert<KxBW8>(*m_photo, kMaker),
           {IMAGE_FILE_TIFF_BILEVEL, IMAGE_FILE_TIFF_BILEVEL_PACKBITS, IMAGE_FILE_TIFF_GRAY,
            IMAGE_FILE_TIFF_GRAY_PACKBITS, IMAGE_FILE_BMP_GRAY, IMAGE_FILE_JPEG_GRAY});
    SaveAs(*Convert<KxBW16>(*m_photo, kMaker), {IMAGE_FILE_TIFF_GRAY});
    SaveAs(*Convert<KxBW32>(*m_photo, kMaker), {IMAGE_FILE_TIFF_GRAY});
    SaveAs(*Convert<KxC15>(*m_photo, kMaker), {IMAGE_FILE_BMP_COLOR});
    SaveAs(*Convert<KxC16>(*m_photo, kMaker), {IMAGE_FILE_BMP_COLOR});
    SaveAs(*Convert<KxC24>(*m_photo, kMaker),
           {IMAGE_FILE_TIFF_COLOR, IMAGE_FILE_BMP_COLOR, IMAGE_FILE_JPEG_COLOR});
    SaveAs(*Convert<KxC24A>(*m_photo, kMaker), {IMAGE_FILE_TIFF_GRAY, IMAGE_FILE_BMP_COLOR});
}

void Tour::BuildRegions() {
    Heading("A tree of regions on the photograph");
    const int width = m_photo->GetWidth(), height = m_photo->GetHeight();
    // "Prüfbild 検査", in UTF-16: narrow and wide texts are kept side by side.
    const unsigned short comment[] = {'P', 'r', 0xFC, 'f', 'b', 'i', 'l', 'd', ' ', 0x691C, 0x67FB, 0};
    Checked([&] {
        m_photo->SetTitle("Tour");
        m_photo->SetComment(comment);
        m_photo->SetPixelDimensions(0.05f, 0.05f, &KxUnit_mm);
        m_centre.Attach(m_photo.get());
        m_centre.SetPlacement(width / 4, height / 8, width / 2, height * 3 / 4);
        m_centre.SetTitle("centre");
        m_upper.Attach(&m_centre);
        m_upper.SetPlacement(0, 0, m_centre.GetWidth(), m_centre.GetHeight() / 2);
        m_upper.SetTitle("upper half of the centre");
        m_spot.Attach(m_photo.get());
        m_spot.SetPlacement(0, 0, width / 4, height / 4);
        m_spot.SetTitle("spot, with an elliptic mask");
        m_spot.SetEllipseMask(0, 0, 0, 0);
    });
    std::cout << ToTree(Describe(*m_photo), 2);
}

// Visits the pixels that count: those in the runs of the mask, or all when there is no mask.
template <class Visitor>
void ForEachPixel(const Region& region, const Visitor& visit) {
    const KxVectorTemplate<KxRun>& runs = region.GetMaskRuns();
    for (unsigned i = 0; i < runs.GetNumElements(); ++i)
        for (auto* pixel = static_cast<KxC24*>(runs[i].pBeg); pixel != runs[i].pEnd; ++pixel) visit(*pixel);
    if (runs.GetNumElements() > 0) return;
    for (int y = 0; y < region.GetHeight(); ++y)
        for (int x = 0; x < region.GetWidth(); ++x) visit(region.GetPixel(x, y));
}

void Tour::MeasureRegions() {
    Heading("Brightness of each region");
    for (const Region* region : {static_cast<Region*>(m_photo.get()), &m_centre, &m_upper, &m_spot}) {
        double sum = 0;
        std::size_t pixels = 0;
        ForEachPixel(*region, [&](KxC24 pixel) {
            sum += Brightness(ToLight(pixel)) * (255.0 / 0xFFFFFFFF);
            ++pixels;
        });
        std::cout << "  " << region->GetTitle() << ": mean " << Decimal(sum / static_cast<double>(pixels))
                  << " of " << pixels << " pixels\n";
    }
    const std::string path = File("centre.bmp");
    Checked([&] { m_centre.Save(path.c_str()); });
    Photo copy;
    Checked([&] { return copy.Load(path.c_str()); });
    CheckCopy<KxC24>(m_centre, copy, IMAGE_FILE_BMP_COLOR, path);
}

void Tour::Archive() {
    Heading("The whole tree in an archive");
    const std::string path = File("tour.kxa");
    SaveImage(*m_photo, path);
    Photo copy;
    const std::unique_ptr<KxSerializer> reader(Checked([&] { return KxSerializer::CreateFileReader(path); }));
    Checked([&] { copy.Load(reader.get()); });
    const std::string name = "tour.kxa, " + SizeOnDisk(path) + ": read back, ";
    Check(SameTrees(*m_photo, copy), name + "regions, placements and texts equal");
    Check(SamePixels<KxC24>(*m_photo, copy), name + "all pixels equal");
    Check(SamePixelSize(*m_photo, copy), name + "pixel size equal");

    const std::unique_ptr<KxSerializer> memory(Checked([] { return KxSerializer::CreateMemoryWriter(); }));
    Checked([&] { copy.Save(memory.get()); });
    Check(memory->GetCurrentPos() == files::file_size(path),
          "the copy, archived in memory, has the same length");
}

void Tour::ShowPicture(const std::string& name) {
    std::cout << "  " << name << ", " << SizeOnDisk(File(name)) << ": have a look\n";
}

void Tour::DrawPictures() {
    Heading(
        "Pictures: the regions with handles and masks, a histogram, a profile, a relief, a cube of colours");
    Checked([&] { m_upper.SetRingMask(0.6f); });
    SaveTreePicture(*m_photo, {.handles = true}, nullptr, File("regions.png"));
    ShowPicture("regions.png");
    const PictureSize size;
    const Extent box(0, 0, size.width, size.height);
    SaveDrawing(size, File("histogram.png"),
                [&](const Paper& paper) { DrawHistogram(paper, box, *m_photo); });
    ShowPicture("histogram.png");
    Region row;
    AttachPart(row, *m_photo, {0, m_photo->GetHeight() / 3, m_photo->GetWidth(), 1});
    SaveDrawing(size, File("profile.png"), [&](const Paper& paper) { DrawProfile(paper, box, row); });
    ShowPicture("profile.png");
    Check(RunRelief({.input = m_picture.string(), .output = File("relief.png")}) == 0, "relief.png drawn");
    ShowPicture("relief.png");
    Check(RunHistogram3d({.input = m_picture.string(), .output = File("cube.png")}) == 0, "cube.png drawn");
    ShowPicture("cube.png");
}

void Tour::DragHandle() {
    Heading("A handle dragged on a magnified display");
    constexpr int kZoom = 20;
    const Extent placed = m_centre.GetExtent();
    const int right = kZoom * (placed.m_n32OrgX + placed.m_n32Width);
    const int bottom = kZoom * (placed.m_n32OrgY + placed.m_n32Height);
    const KX_HANDLES handle = m_centre.HitTest(right + 2, bottom - 3, kZoom, kZoom, 0, 0);
    Check(handle == KX_HANDLE_SOUTH_EAST, "the pointer finds the south-east handle");

    const int columns = m_photo->GetWidth() / 8, rows = m_photo->GetHeight() / 8;
    const auto drag = [&](int x, int y) {
        Checked([&] { m_centre.Drag(handle, x, y, kZoom, kZoom, 0, 0); });
    };
    drag(right + kZoom * columns, bottom + kZoom * rows);
    Check(m_centre.GetWidth() == placed.m_n32Width + columns &&
              m_centre.GetHeight() == placed.m_n32Height + rows,
          "the corner follows it");
    drag(right, bottom);
    Check(m_centre.GetExtent() == placed, "and comes back");
}

void Tour::PaintRegions() {
    Heading("A picture with the regions painted on it");
    // Regions are views: what is drawn in one shows in the image.
    constexpr int kThickness = 3;
    for (Region* region : {&m_centre, &m_upper, &m_spot}) {
        const int right = region->GetWidth() - 1, bottom = region->GetHeight() - 1;
        for (int y = 0; y <= bottom; ++y)
            for (int x = 0; x <= right; ++x)
                if (std::min({x, y, right - x, bottom - y}) < kThickness) region->SetPixel(kRed, x, y);
    }
    const int x = m_spot.GetTotalOrgX(), y = m_spot.GetTotalOrgY();
    Check(m_photo->GetPixel(x, y) == kRed, "a pixel set in a region shows in the photograph");
    SaveImage(*m_photo, File("regions.jpg"));
    ShowPicture("regions.jpg");
}

int Tour::Run() {
    const auto steps = [this] {
        std::error_code error;
        files::create_directories(m_folder, error);
        if (error) throw Failure{error.message(), error.value()};
        SaveInAllFormats();
        BuildRegions();
        MeasureRegions();
        Archive();
        DrawPictures();
        DragHandle();
        PaintRegions();
    };
    if (Attempt(m_picture.string(), [this] { LoadPicture(); }) || Attempt(m_folder.string(), steps)) return 1;
    std::cout << '\n'
              << m_passed << " checks passed, " << m_failed << " failed; files in " << m_folder.string()
              << '\n';
    return m_failed ? 1 : 0;
}

}  // namespace

int RunTour(const TourOptions& options) { return Tour(options).Run(); }

}  // namespace App
