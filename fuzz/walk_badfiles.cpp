// Attacks good files at every byte: counts, sizes and offsets become the numbers that break readers, point to
// themselves or to the end, and files end early. Whatever is read, its code is known, neither time nor memory
// is out of proportion, and the object can be used. Prints how often each code came; what came last time is
// in badfiles.txt.

#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "kalvo/kalvo.h"
#include "fuzz/contents.h"
#include "fuzz/failing_calls.h"

namespace Zelkor::Kalvo::Fuzzing {
namespace {

namespace files = std::filesystem;
using Bytes = std::string;

constexpr double kMostSeconds = 0.1;
constexpr long kMebibyte = 1 << 20;

// A kind of file: a good one, and what the object that loads it shows then.
struct Format {
    std::string name;
    Bytes good;
    std::function<std::string(const std::string& path)> load;  // leaves its code in the slot
    long fixedBytes = kMebibyte;                               // besides those in proportion to the file
};

double ThreadSeconds() {
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <class Pixel>
KxImage<Pixel> Picture() {
    KxImage<Pixel> image(9, 7);
    for (int y = 0; y < 7; ++y) {
        auto* row = static_cast<unsigned char*>(image.GetGenericImagePtr(0, y));
        for (int i = 0; i < image.GetRowPitch(); ++i) row[i] = static_cast<unsigned char>(i / 4 * 50 + y);
    }
    return image;
}

template <class Pixel>
Format ImageFile(const std::string& name, const std::string& path, IMAGE_FILE_TYPES type) {
    Picture<Pixel>().Save(path.c_str(), type);
    Format format{name, Contents(path), [](const std::string& from) {
                      KxImage<Pixel> image(3, 3);
                      image.Load(from.c_str());
                      return KxFailure() ? std::string() : Archived(image);
                  }};
    if (name.starts_with("jpeg")) format.fixedBytes = 64 * kMebibyte;
    return format;
}

template <class Pixel>
Format Archive(const std::string& name) {
    KxImage<Pixel> image = Picture<Pixel>();
    image.SetTitle("title");
    KxROI<Pixel> outer(&image, 1, 1, 5, 5), inner(&outer, 1, 1, 2, 2);
    outer.SetEllipseMask(0, 0, 0, 0);
    inner.SetComment("comment");
    return {name, Archived(image), [](const std::string& from) {
                KxImage<Pixel> loaded(3, 3);
                const std::unique_ptr<KxSerializer> reader(KxSerializer::CreateFileReader(from));
                if (reader) loaded.Load(reader.get());
                return KxFailure() ? std::string() : Archived(loaded);
            }};
}

std::vector<Format> Formats(const std::string& folder) {
    const std::string path = folder + "/good";
    KxSetTiffStripSize(30);
    std::vector<Format> formats = {
        ImageFile<KxBW1>("bmp bilevel", path, IMAGE_FILE_BMP_BILEVEL),
        ImageFile<KxBW8>("bmp grey", path, IMAGE_FILE_BMP_GRAY),
        ImageFile<KxC24>("bmp colour", path, IMAGE_FILE_BMP_COLOR),
        ImageFile<KxBW1>("tiff bilevel", path, IMAGE_FILE_TIFF_BILEVEL),
        ImageFile<KxBW8>("tiff grey", path, IMAGE_FILE_TIFF_GRAY),
        ImageFile<KxBW8>("tiff grey packed", path, IMAGE_FILE_TIFF_GRAY_PACKBITS),
        ImageFile<KxC24>("tiff colour", path, IMAGE_FILE_TIFF_COLOR),
        ImageFile<KxBW8>("jpeg grey", path, IMAGE_FILE_JPEG_GRAY),
        ImageFile<KxC24>("jpeg colour", path, IMAGE_FILE_JPEG_COLOR),
        Archive<KxBW8>("archive of bw8"),
        Archive<KxC24>("archive of c24"),
    };
    KxBW16Vector vector;
    for (int i = 0; i < 20; ++i) vector.AddElement(i);
    vector.Save(path.c_str());
    formats.push_back({"vector file", Contents(path), [](const std::string& from) {
                           KxBW16Vector loaded;
                           loaded.Load(from.c_str());
                           std::string values;
                           for (unsigned i = 0; i < loaded.GetNumElements() && !KxFailure(); ++i)
                               values += std::to_string(loaded[i]) + ' ';
                           return values;
                       }});
    return formats;
}

// Calls attack(bytes) for every damaged copy of a file.
template <class Attack>
void ForEachAttack(const Bytes& good, const Attack& attack) {
    const auto size = static_cast<std::uint32_t>(good.size());
    for (std::uint32_t at = 0; at < size; ++at) {
        attack(Bytes(good.begin(), good.begin() + at));
        const auto overwrite = [&](std::uint32_t number, std::uint32_t width) {
            Bytes bad = good;
            for (std::uint32_t i = 0; i < std::min(width, size - at); ++i)
                bad[at + i] = static_cast<char>(number >> 8 * i);
            attack(bad);
        };
        for (const std::uint32_t number : {0u, 0x80u, 0xFFu}) overwrite(number, 1);
        overwrite(0xFFFF, 2);
        for (const std::uint32_t number : {at, size - 1, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu, 0x7FC00000u})
            overwrite(number, 4);
    }
}

class Walk {
public:
    explicit Walk(const std::string& folder) : m_folder(folder) {}

    void Attack(const Format& format) {
        const std::string expected = Load(format, format.good);
        Require(!KxFailure() && !expected.empty(), format, format.good, "the good file is refused");
        std::map<int, int> codes;
        ForEachAttack(format.good, [&](const Bytes& bad) {
            StartCountingBytes();
            const double start = ThreadSeconds();
            const std::string shown = Load(format, bad);
            const double seconds = ThreadSeconds() - start;
            const long bytes = MostBytes();
            const int code = KxGetError();
            ++codes[code];
            m_slowest = std::max(m_slowest, seconds);
            m_largest = std::max(m_largest, bytes);
            Require(seconds <= kMostSeconds, format, bad, "takes too long");
            Require(bytes <= format.fixedBytes + 16 * static_cast<long>(bad.size() + shown.size()), format,
                    bad, "takes too much memory");
            if (code != KX_OK)
                Require(Load(format, format.good) == expected && !KxFailure(), format, bad, "lasts");
        });
        if (format.name.starts_with("jpeg")) return;  // what libjpeg makes of damage is its own business
        m_codes << format.name << ':';
        for (const auto& [code, count] : codes) m_codes << ' ' << code << " x " << count;
        m_codes << '\n';
    }

    std::string Codes() const { return m_codes.str(); }

    bool IsDone() const {
        std::fprintf(stderr, "slowest %.1f ms, largest %ld KiB\n", 1000 * m_slowest, m_largest / 1024);
        return m_kept == 0;
    }

private:
    // From a file in memory: a disk would take most of the time.
    std::string Load(const Format& format, const Bytes& bytes) const {
        if (ftruncate(m_file, 0) != 0 ||
            pwrite(m_file, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
            std::abort();
        KxOk();
        return format.load("/proc/self/fd/" + std::to_string(m_file));
    }

    void Require(bool condition, const Format& format, const Bytes& bytes, const char* what) {
        if (condition) return;
        const std::string kept = m_folder + "/bad-" + std::to_string(m_kept++);
        std::ofstream(kept, std::ios::binary) << bytes;
        std::fprintf(stderr, "%s: %s: %s\n", format.name.c_str(), what, kept.c_str());
    }

    std::string m_folder;
    std::ostringstream m_codes;
    int m_file = memfd_create("bad", 0);
    double m_slowest = 0;
    long m_largest = 0;
    int m_kept = 0;
};

int Run(const char* expectedCodes) {
    std::string folder = files::temp_directory_path() / "bad-files-XXXXXX";
    if (!mkdtemp(folder.data())) return 1;
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    Walk walk(folder);
    for (const Format& format : Formats(folder)) walk.Attack(format);
    std::cout << walk.Codes();
    if (!walk.IsDone()) return 1;
    files::remove_all(folder);
    if (!expectedCodes) return 0;
    if (walk.Codes() == Contents(expectedCodes)) return 0;
    std::fprintf(stderr, "other codes than in %s\n", expectedCodes);
    return 1;
}

}  // namespace
}  // namespace Zelkor::Kalvo::Fuzzing

int main(int argc, char** argv) { return Zelkor::Kalvo::Fuzzing::Run(argc > 1 ? argv[1] : nullptr); }
