// Walks through all calls that can fail in what the library does: for every operation and every kind of fault
// the first call fails, then the second, and so on until none is left; once, and from there on. Whatever
// happens, a failure has its code, no success is false, objects are as they were or empty and can be used,
// and nothing is left behind.

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "kalvo/kalvo.h"
#include "fuzz/contents.h"
#include "fuzz/failing_calls.h"

namespace Zelkor::Kalvo::Fuzzing {
namespace {

namespace files = std::filesystem;

// What an operation leaves: its code, and all that can be seen of its object.
struct Outcome {
    int code = KX_OK;
    std::string state;
    bool isEmpty = false;   // or may hold anything after a failure
    bool isSilent = false;  // failures leave no code
};

// Runs the part of a scenario that may fail.
using Guard = std::function<void(const std::function<void()>&)>;
using Scenario = std::function<Outcome(const Guard&)>;

int CodeOf(const Guard& guard, const std::function<void()>& operation) {
    KxOk();
    guard([&] {
        try {
            operation();
        } catch (const Exception& exception) {
            KxSetError(exception.GetError());
        }
    });
    return KxGetError();
}

template <class Pixel>
std::unique_ptr<KxImage<Pixel>> Picture(int width = 160, int height = 100) {
    auto image = std::make_unique<KxImage<Pixel>>(width, height);
    const int rowBytes = width * image->GetBitsPerPixel() / 8;
    for (int y = 0; y < height; ++y) {
        auto* row = static_cast<unsigned char*>(image->GetGenericImagePtr(0, y));
        for (int i = 0; i < rowBytes; ++i) row[i] = static_cast<unsigned char>(i / 3 * 7 + y * y);
    }
    image->SetTitle("a title");
    return image;
}

// A picture with a region in a region, which have texts.
template <class Pixel>
struct Tree {
    std::unique_ptr<KxImage<Pixel>> image = Picture<Pixel>();
    KxROI<Pixel> outer{image.get(), 2, 3, 20, 20}, inner{&outer, 1, 1, 9, 9};

    Tree() {
        outer.SetComment("outer");
        inner.SetAuthor("inner");
    }
};

// Saves over an old file. Written in place, a file that could not be saved may hold anything.
Scenario Saving(const std::string& path, bool isSafe, std::function<void(const std::string&)> save) {
    return [=](const Guard& guard) {
        std::ofstream(path) << "old";
        KxSetSafeWriting(isSafe);
        const int code = CodeOf(guard, [&] { save(path); });
        KxSetSafeWriting(0);
        return Outcome{code, Contents(path), !isSafe};
    };
}

template <class Pixel>
Scenario SavingImage(const std::string& path, IMAGE_FILE_TYPES type, bool isSafe) {
    const std::shared_ptr<KxImage<Pixel>> image = Picture<Pixel>();
    return Saving(path, isSafe, [=](const std::string& name) { image->Save(name.c_str(), type); });
}

// An image takes the size of the file before its pixels.
template <class Pixel>
Scenario LoadingImage(const std::string& path, IMAGE_FILE_TYPES type) {
    Picture<Pixel>()->Save(path.c_str(), type);
    return [=](const Guard& guard) {
        const auto old = Picture<Pixel>(3, 2);
        KxImage<Pixel>& image = *old;
        KxROI<Pixel> region(&image, 1, 1, 2, 1);
        const int code = CodeOf(guard, [&] { image.Load(path.c_str()); });
        return Outcome{code, Archived(image), image.GetWidth() != 3};
    };
}

// Changes an image by an operation.
template <class Pixel>
Scenario Changing(std::function<void(KxImage<Pixel>&)> operation) {
    return [=](const Guard& guard) {
        const auto image = Picture<Pixel>();
        const int code = CodeOf(guard, [&] { operation(*image); });
        return Outcome{code, Archived(*image), image->GetWidth() == 0};
    };
}

// Draws on a bitmap. What cannot be drawn is left out, and nothing tells.
Scenario Drawing(WORD bitsPerPixel, std::function<void(HDC)> draw) {
    return [=](const Guard& guard) {
        struct {
            BITMAPINFOHEADER header;
            RGBQUAD colors[256];
        } info{{sizeof(BITMAPINFOHEADER), 64, 48, 1, bitsPerPixel, BI_RGB, 0, 0, 0, 0, 0}, {}};
        void* bits = nullptr;
        const HDC context = CreateCompatibleDC(nullptr);
        const HBITMAP bitmap = CreateDIBSection(context, reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS,
                                                &bits, nullptr, 0);
        const HGDIOBJ previous = SelectObject(context, bitmap);
        const int code = CodeOf(guard, [&] { draw(context); });
        Outcome outcome{code, std::string(static_cast<char*>(bits), 64 * 48 * bitsPerPixel / 8), true,
                        FailingCalls::HasFailed()};
        SelectObject(context, previous);
        DeleteObject(bitmap);
        DeleteDC(context);
        return outcome;
    };
}

// What the library does, in a folder of its own.
class Scenarios {
public:
    explicit Scenarios(std::string folder) : m_folder(std::move(folder)) {
        AddImageFiles();
        AddArchives<KxBW1>();
        AddArchives<KxBW8>();
        AddArchives<KxBW16>();
        AddArchives<KxBW32>();
        AddArchives<KxC24>();
        AddArchives<KxC15>();
        AddArchives<KxC16>();
        AddArchives<KxC24A>();
        AddArchives<KxYUY2>();
        AddVectors();
        AddFields();
        AddImages();
        AddDrawing();
    }

    const std::vector<std::pair<std::string, Scenario>>& All() const { return m_all; }

private:
    void Add(const std::string& name, Scenario scenario) { m_all.emplace_back(name, std::move(scenario)); }
    std::string Path(const std::string& name) const { return m_folder + "/" + name; }

    template <class Pixel>
    void AddFormat(const std::string& name, IMAGE_FILE_TYPES type);
    void AddImageFiles();
    template <class Pixel>
    void AddArchives();
    void AddVectors();
    void AddFields();
    void AddImages();
    void AddDrawing();

    std::string m_folder;
    std::vector<std::pair<std::string, Scenario>> m_all;
};

template <class Pixel>
void Scenarios::AddFormat(const std::string& name, IMAGE_FILE_TYPES type) {
    for (const bool isSafe : {false, true})
        Add("save " + name + (isSafe ? ", safely" : ""), SavingImage<Pixel>(Path("out"), type, isSafe));
    Add("load " + name, LoadingImage<Pixel>(Path(name), type));
    Add("create from " + name, [file = Path(name)](const Guard& guard) {
        std::unique_ptr<KxGenericROI> image;
        const int code = CodeOf(guard, [&] { image.reset(KxGenericROI::CreateImageFromFile(file.c_str())); });
        return Outcome{code, image ? Archived(*image) : "", !image};
    });
    Add("describe " + name, [file = Path(name)](const Guard& guard) {
        std::unique_ptr<KxGenericROI> image;
        short fileType = 0;
        unsigned pages = 0;
        const int code = CodeOf(guard, [&] { image.reset(KxDescribeImage(file.c_str(), fileType, pages)); });
        return Outcome{code, std::to_string(pages), !image};
    });
}

void Scenarios::AddImageFiles() {
    KxSetTiffStripSize(80);
    AddFormat<KxBW1>("bilevel.bmp", IMAGE_FILE_BMP_BILEVEL);
    AddFormat<KxBW8>("gray.bmp", IMAGE_FILE_BMP_GRAY);
    AddFormat<KxC24>("color.bmp", IMAGE_FILE_BMP_COLOR);
    AddFormat<KxBW1>("bilevel.tif", IMAGE_FILE_TIFF_BILEVEL);
    AddFormat<KxBW8>("gray.tif", IMAGE_FILE_TIFF_GRAY);
    AddFormat<KxBW8>("packed.tif", IMAGE_FILE_TIFF_GRAY_PACKBITS);
    AddFormat<KxBW16>("deep.tif", IMAGE_FILE_TIFF_GRAY);
    AddFormat<KxC24>("color.tif", IMAGE_FILE_TIFF_COLOR);
    AddFormat<KxBW8>("gray.jpg", IMAGE_FILE_JPEG_GRAY);
    AddFormat<KxC24>("color.jpg", IMAGE_FILE_JPEG_COLOR);
}

template <class Pixel>
void Scenarios::AddArchives() {
    const std::string of = " of type " + std::to_string(KxImage<Pixel>().GetType()),
                      archive = Path("tree.kxa" + of);
    const auto tree = std::make_shared<Tree<Pixel>>();
    for (const bool isSafe : {false, true})
        Add((isSafe ? "save an archive, safely" : "save an archive") + of,
            Saving(Path("out"), isSafe, [=](const std::string& name) {
                const std::unique_ptr<KxSerializer> writer(KxSerializer::CreateFileWriter(name));
                if (!writer) return;
                tree->image->Save(writer.get());
                writer->Close();
            }));
    {
        const std::unique_ptr<KxSerializer> writer(KxSerializer::CreateFileWriter(archive));
        tree->image->Save(writer.get());
    }
    Add("load an archive" + of, [=](const Guard& guard) {
        const auto old = Picture<Pixel>(3, 3);
        KxImage<Pixel>& image = *old;
        const int code = CodeOf(guard, [&] {
            const std::unique_ptr<KxSerializer> reader(KxSerializer::CreateFileReader(archive));
            if (reader) image.Load(reader.get());
        });
        return Outcome{code, Archived(image), image.GetWidth() == 0};
    });
    Add("archive in memory" + of, [=](const Guard& guard) {
        KxMemSerializer writer;
        const int code = CodeOf(guard, [&] {
            writer.OpenWriter();
            tree->image->Save(&writer);
        });
        return Outcome{code, std::string(writer.GetBuffer().begin(), writer.GetBuffer().end())};
    });
}

void Scenarios::AddVectors() {
    for (const bool isSafe : {false, true})
        Add(isSafe ? "save a vector, safely" : "save a vector",
            Saving(Path("out"), isSafe, [](const std::string& name) {
                KxC24Vector vector;
                for (int i = 0; i < 1000 && !KxFailure(); ++i) vector.AddElement(KxC24(i, 2 * i, 3 * i));
                if (!KxFailure()) vector.Save(name.c_str());
            }));
    {
        KxBW16Vector vector;
        for (int i = 0; i < 3000; ++i) vector.AddElement(i);
        vector.Save(Path("vector").c_str());
    }
    Add("load a vector", [name = Path("vector")](const Guard& guard) {
        KxBW16Vector vector;
        vector.AddElement(1);
        const int code = CodeOf(guard, [&] { vector.Load(name.c_str()); });
        std::string state = std::to_string(vector.GetNumElements());
        for (unsigned i = 0; i < vector.GetNumElements(); ++i) state += ' ' + std::to_string(vector[i]);
        return Outcome{code, state, code != KX_OK};
    });
    Add("grow and copy a vector", [](const Guard& guard) {
        KxBW32Vector vector, copy;
        const int code = CodeOf(guard, [&] {
            for (int i = 0; i < 500 && !KxFailure(); ++i) vector.AddElement(i);
            if (!KxFailure()) copy = vector;
        });
        return Outcome{code, std::to_string(copy.GetNumElements()), copy.GetNumElements() == 0};
    });
}

void Scenarios::AddFields() {
    const std::string field = Path("field.jpg"), fields = Path("fields.kxa");
    Picture<KxC24>()->Save(field.c_str(), IMAGE_FILE_JPEG_COLOR);
    Add("decode fields", [=](const Guard& guard) {
        const auto old = Picture<KxC24>(2, 2);
        KxImage<KxC24>& image = *old;
        KxJpegHandler handler;
        const int code = CodeOf(guard, [&] {
            handler.LoadFJfif(field);
            handler.LoadSJfif(field);
            handler.DecompressToImage(image, KxJpegHandler::FullSize);
        });
        return Outcome{code, Archived(image), code != KX_OK};
    });
    const auto handler = std::make_shared<KxJpegHandler>();
    for (const bool isSafe : {false, true})
        Add(isSafe ? "archive fields, safely" : "archive fields",
            Saving(Path("out"), isSafe, [=](const std::string& name) {
                handler->LoadFJfif(field);
                handler->Save(name);
            }));
    Add("load fields", [=](const Guard& guard) {
        KxJpegHandler loaded;
        loaded.LoadFJfif(field);
        loaded.Save(fields.c_str());
        const int code = CodeOf(guard, [&] { loaded.Load(fields.c_str()); });
        KxMemSerializer writer;
        writer.OpenWriter();
        loaded.Save(&writer);
        return Outcome{code, std::string(writer.GetBuffer().begin(), writer.GetBuffer().end()),
                       code != KX_OK};
    });
    Add("encode", [](const Guard& guard) {
        const auto image = Picture<KxC24>();
        unsigned char* jpeg = nullptr;
        unsigned size = 0;
        const int code = CodeOf(guard, [&] {
            KxJpegHandler::CreateJpegFromRGB24(jpeg, size,
                                               static_cast<unsigned char*>(image->GetGenericImagePtr(0, 0)),
                                               static_cast<unsigned>(image->GetRowPitch()), 160, 100, 0);
        });
        Outcome outcome{code, std::string(reinterpret_cast<char*>(jpeg), size), !jpeg};
        Kalvo_Free(jpeg);
        return outcome;
    });
}

void Scenarios::AddImages() {
    const auto tree = std::make_shared<Tree<KxBW8>>();
    Add("copy a tree", [=](const Guard& guard) {
        KxImage<KxBW8> copy;
        const int code = CodeOf(guard, [&] { copy = *tree->image; });
        Outcome outcome{code, Archived(copy), copy.GetWidth() == 0};
        // The copies of regions are ours, children before parents.
        while (KxGenericROI* node = copy.GetFirstSubROI()) {
            while (node->GetFirstSubROI()) node = node->GetFirstSubROI();
            delete node;
        }
        return outcome;
    });
    Add("set a size", [](const Guard& guard) {
        const auto image = Picture<KxC24>();
        const int code = CodeOf(guard, [&] { image->SetSize(100, 70); });
        return Outcome{code, std::to_string(image->GetWidth()), image->GetWidth() == 0};
    });
    Add("set a text", Changing<KxC24>([](auto& image) { image.SetComment("a comment"); }));
    Add("resize", Changing<KxC24>([](auto& image) { ImgRescale(&image, 2, 1.5f); }));
    Add("resize bits", Changing<KxBW8>([](auto& image) {
            KxROI<KxBW8> left(&image, 0, 0, 20, 30), right(&image, 20, 0, 7, 30);
            if (!KxFailure()) KxResize(&left, &right);
        }));
    const auto addMask = [&](const char* name, void (*mask)(KxROI<KxBW8>&)) {
        Add(name, [=](const Guard& guard) {
            Tree<KxBW8> own;
            const int code = CodeOf(guard, [&] { mask(own.outer); });
            // A ring keeps the runs that it has got.
            return Outcome{code, std::to_string(own.outer.GetMaskRuns().GetNumElements()), code != KX_OK};
        });
    };
    addMask("rectangle mask", [](auto& region) { region.SetRectangleMask(1, 1, 5, 5); });
    addMask("ellipse mask", [](auto& region) { region.SetEllipseMask(0, 0, 0, 0); });
    addMask("ring mask", [](auto& region) { region.SetRingMask(0.5f); });
    Add("relief", [](const Guard& guard) {
        const auto image = Picture<KxBW8>();
        KxImage<KxBW8> target(60, 60);
        const int code = CodeOf(guard, [&] { KxRender3D(image.get(), &target, 0.5f, 0.5f, 1, 1, 0.1f, 4); });
        return Outcome{code, Archived(target), true};
    });
    Add("colour cube", Changing<KxC24>([](auto& image) {
            KxImage<KxC24> colors(9, 9);
            if (!KxFailure()) KxRenderColorHistogram(&colors, &image, 30, 30, 1, 1, 1);
        }));
}

void Scenarios::AddDrawing() {
    const auto tree = std::make_shared<Tree<KxBW8>>();
    for (const WORD bits : {1, 8, 16, 24, 32}) {
        const std::string on = " on " + std::to_string(bits) + " bits";
        Add("draw" + on, Drawing(bits, [=](HDC context) { tree->image->Draw(context, 1.5f, 1.5f); }));
        Add("draw colours" + on, Drawing(bits, [picture = std::shared_ptr(Picture<KxC24>())](HDC context) {
                picture->Draw(context, 1, 1);
            }));
        Add("draw with alpha" + on, Drawing(bits, [=](HDC context) {
                GDIDrawAdapter surface(context);
                surface.DrawImage(tree->image.get(), 1.2f, 1.2f, 0, 0, 0.5f, RGBColor::Red);
            }));
        Add("frame and mask" + on, Drawing(bits, [=](HDC context) {
                tree->outer.DrawFrame(context, KX_FRAME_POSITION_INSIDE, 1, 1, 1, 0, 0);
                tree->outer.DrawMask(context, 1, 1, 0, 0);
            }));
        Add("plot" + on, Drawing(bits, [=](HDC context) {
                KxBW8Vector profile;
                for (int i = 0; i < 64 && !KxFailure(); ++i) profile.AddElement(i);
                if (!KxFailure()) profile.Draw(context, 64, 48, 0, 0);
            }));
        Add("text" + on, Drawing(bits, [](HDC context) { TextOutA(context, 2, 2, "Value", 5); }));
    }
    Add("start a thread", [](const Guard& guard) {
        int code = KX_OK;
        std::thread([&] {
            guard([&] {
                KxSetError(KX_ERROR_FILE_OPEN);
                code = KxGetError() == KX_ERROR_FILE_OPEN ? KX_OK : KxGetError();
            });
            CloseThreadLocalStorage();
        }).join();
        return Outcome{code, "", true};
    });
}

long OpenFiles() { return std::distance(files::directory_iterator("/proc/self/fd"), {}); }

const char* Name(Fault fault) {
    constexpr const char* kNames[] = {"no memory", "broken disk", "full disk", "short write", "interruption"};
    return kNames[static_cast<int>(fault)];
}

class Walk {
public:
    explicit Walk(std::string folder) : m_folder(std::move(folder)) {}

    void Through(const std::string& name, const Scenario& scenario) {
        m_name = name;
        m_before = scenario([](const auto&) {});
        RunWell(scenario);  // fills what stays for the next time
        m_reference = RunWell(scenario);
        Require(m_reference.code == KX_OK, "it works", m_reference.code);
        for (const Fault fault :
             {Fault::NoMemory, Fault::BrokenDisk, Fault::FullDisk, Fault::ShortWrite, Fault::Interrupted}) {
            const bool isHarmless = fault == Fault::ShortWrite || fault == Fault::Interrupted;
            for (int stays = 0; stays <= !isHarmless; ++stays)
                for (long first = 0; Fails(scenario, fault, first, stays); ++first) ++m_points[fault];
        }
    }

    // Whether all was well.
    bool Report() const {
        for (const auto& [fault, count] : m_points) std::printf("%s: %ld points\n", Name(fault), count);
        for (const auto& [what, count] : m_codes)
            std::printf("%s: code %d, %ld times\n", Name(what.first), what.second, count);
        return m_broken == 0;
    }

private:
    // One point; false when no call was left to fail.
    bool Fails(const Scenario& scenario, Fault fault, long first, bool stays) {
        m_point =
            std::string(Name(fault)) + " at call " + std::to_string(first) + (stays ? " and after" : "");
        const long before = LiveBlocks(), opened = OpenFiles();
        int code = 0;
        const bool hasFailed = Run(scenario, fault, first, stays, code);
        // What fails for the first time may leave something for the next time, but not again.
        if (const long once = LiveBlocks(); once > before) {
            Run(scenario, fault, first, stays, code);
            Require(LiveBlocks() <= once, "no memory leaks", static_cast<int>(LiveBlocks() - once));
        }
        Require(OpenFiles() == opened, "no file stays open", 0);
        for (const auto& entry : files::directory_iterator(m_folder))
            Require(!entry.path().filename().string().starts_with("."), "no file is left", 0);
        if (code != KX_OK) ++m_codes[{fault, code}];
        return hasFailed;
    }

    bool Run(const Scenario& scenario, Fault fault, long first, bool stays, int& code) {
        bool hasFailed = false;
        code = Check(scenario([&](const auto& operation) {
            const FailingCalls failing(fault, first, stays);
            operation();
            hasFailed = FailingCalls::HasFailed();
        }));
        Require(hasFailed || code == KX_OK, "it works without a fault", code);
        if (fault == Fault::ShortWrite || fault == Fault::Interrupted)
            Require(code == KX_OK, "it goes on", code);
        Require(Check(RunWell(scenario)) == KX_OK, "it works again", 0);
        return hasFailed;
    }

    static Outcome RunWell(const Scenario& scenario) {
        return scenario([](const auto& operation) {
            const FailingCalls none(Fault::NoMemory, std::numeric_limits<long>::max(), false);
            operation();
        });
    }

    int Check(const Outcome& outcome) {
        const bool isWhole = outcome.state == m_reference.state;
        if (outcome.code == KX_OK)
            Require(isWhole || outcome.isSilent, "no success is false", 0);
        else
            Require(isWhole || outcome.isEmpty || outcome.state == m_before.state, "nothing is half changed",
                    outcome.code);
        return outcome.code;
    }

    void Require(bool holds, const char* what, int number) {
        if (holds) return;
        ++m_broken;
        std::fprintf(stderr, "%s, %s: broken: %s (%d)\n", m_name.c_str(), m_point.c_str(), what, number);
    }

    std::string m_folder, m_name, m_point;
    Outcome m_before, m_reference;
    std::map<Fault, long> m_points;
    std::map<std::pair<Fault, int>, long> m_codes;
    long m_broken = 0;
};

}  // namespace
}  // namespace Zelkor::Kalvo::Fuzzing

int main(int argc, char** argv) {
    using namespace Zelkor::Kalvo::Fuzzing;
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    std::string folder = (files::temp_directory_path() / "walk-XXXXXX").string();
    if (!mkdtemp(folder.data())) return 1;
    Walk walk(folder);
    const Scenarios scenarios(folder);
    for (const auto& [name, scenario] : scenarios.All())
        if (argc < 2 || name == argv[1]) walk.Through(name, scenario);
    files::remove_all(folder);
    return walk.Report() ? 0 : 1;
}
