// Everyday jobs, beside what a user would pick instead: OpenCV, Leptonica, the standard library, or copying
// the bytes of the result. Images of 1920 x 1080, one thread. bench/peers_table.py makes a table of the
// results.

#include <allheaders.h>
#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "kalvo/display/kxgdidrawadapter.h"
#include "kalvo/display/kxpixelvector.h"
#include "kalvo/gdi/gdi.h"
#include "kalvo/image/kximage.h"
#include "kalvo/streams/kxserializer.h"
#include "kalvo/transforms/kxresize.h"
#include "canvas.h"

namespace {

// Registers both sides of a job; a row of the table begins with what stands before the slash.
void AddJob(const std::string& name, const std::function<void()>& ours, const std::string& peer,
            const std::function<void()>& theirs) {
    const auto add = [&](const std::string& side, const std::function<void()>& run) {
        benchmark::RegisterBenchmark((name + "/" + side).c_str(), [run](benchmark::State& state) {
            for (auto _ : state) {
                run();
                benchmark::ClobberMemory();
            }
        });
    };
    add("Kalvo", ours);
    add(peer, theirs);
}

// The bytes of a picture with edges, slopes and some noise.
template <class Pixel>
std::shared_ptr<KxImage<Pixel>> MakePicture(int width = kWidth, int height = kHeight) {
    auto picture = std::make_shared<KxImage<Pixel>>(width, height);
    unsigned noise = 1;
    for (int y = 0; y < height; ++y) {
        auto* row = static_cast<unsigned char*>(picture->GetGenericImagePtr(0, y));
        for (int x = 0; x < picture->GetRowPitch(); ++x) {
            noise = noise * 1664525u + 1013904223u;
            row[x] = static_cast<unsigned char>((x / 97 + y / 61) % 2 * 120 + x / 29 + (noise >> 29));
        }
    }
    return picture;
}

// A matrix on the pixels of an image.
template <class Pixel>
cv::Mat Matrix(KxImage<Pixel>& image, int type) {
    return {image.GetHeight(), image.GetWidth(), type, image.GetGenericImagePtr(0, 0),
            static_cast<std::size_t>(image.GetRowPitch())};
}

template <class Pixel>
void AddResizing(const std::string& pixelName, int type) {
    const auto source = MakePicture<Pixel>();
    for (const double factor : {0.37, 0.5, 1.7, 2.0}) {
        const auto result =
            MakePicture<Pixel>(static_cast<int>(kWidth * factor), static_cast<int>(kHeight * factor));
        AddJob(
            "resize " + pixelName + " by " + std::to_string(factor).substr(0, 4),
            [source, result] { KxResize(source.get(), result.get()); }, "OpenCV",
            [from = Matrix(*source, type), to = Matrix(*result, type), source, result]() mutable {
                cv::resize(from, to, to.size(), 0, 0, cv::INTER_NEAREST);
            });
    }
}

template <class Pixel>
void AddFile(const std::string& pixelName, int type, const std::string& extension,
             const std::vector<int>& parameters = {}) {
    const auto image = MakePicture<Pixel>(), loaded = MakePicture<Pixel>();
    const std::filesystem::path folder =
        std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path();
    const std::string path = folder / ("kalvo-bench-" + pixelName + "." + extension);
    const cv::Mat matrix = Matrix(*image, type);
    const auto write = [path, matrix, parameters, image] { cv::imwrite(path, matrix, parameters); };
    if (extension != "jpg")  // where qualities and tables differ
        AddJob(
            "save " + extension + " " + pixelName, [image, path] { image->Save(path.c_str()); }, "OpenCV",
            write);
    AddJob(
        "load " + extension + " " + pixelName,
        [loaded, path, write, isWritten = false]() mutable {
            if (!isWritten) write();
            isWritten = true;
            loaded->Load(path.c_str());
        },
        "OpenCV",
        [path, write, matrix = cv::Mat(), isWritten = false]() mutable {
            if (!isWritten) write();
            isWritten = true;
            matrix = cv::imread(path, cv::IMREAD_UNCHANGED);
        });
}

void AddDisplay() {
    const auto canvas = [](int bitCount) {
        return std::make_shared<Canvas>(Picture(bitCount, Colors::Greys));
    };
    const auto gray = MakePicture<KxBW8>();
    const auto wide = MakePicture<KxBW16>();
    const auto bits = MakePicture<KxBW1>();
    const auto color = MakePicture<KxC24>();
    const cv::Mat grayMatrix = Matrix(*gray, CV_8UC1), colorMatrix = Matrix(*color, CV_8UC3);

    AddJob(
        "draw c24 into 24 bits", [color, to = canvas(24)] { color->Draw(to->hdc, 1, 1); }, "memcpy",
        [color, to = canvas(24)] {
            std::memcpy(to->bits, color->GetGenericImagePtr(0, 0), std::size_t{3} * kWidth * kHeight);
        });
    AddJob(
        "draw bw8 into 24 bits", [gray, to = canvas(24)] { gray->Draw(to->hdc, 1, 1); }, "OpenCV",
        [grayMatrix, to = cv::Mat()]() mutable { cv::cvtColor(grayMatrix, to, cv::COLOR_GRAY2BGR); });
    AddJob(
        "draw bw16 into 24 bits", [wide, to = canvas(24)] { wide->Draw(to->hdc, 1, 1); }, "OpenCV",
        [wide, matrix = Matrix(*wide, CV_16UC1), eight = cv::Mat(), to = cv::Mat()]() mutable {
            matrix.convertTo(eight, CV_8U, 1 / 256.0);
            cv::cvtColor(eight, to, cv::COLOR_GRAY2BGR);
        });
    AddJob(
        "draw c24 at 1.5 into 24 bits", [color, to = canvas(24)] { color->Draw(to->hdc, 1.5f, 1.5f); },
        "OpenCV",
        [part = cv::Mat(colorMatrix, cv::Rect(0, 0, kWidth * 2 / 3, kHeight * 2 / 3)),
         to = cv::Mat()]() mutable {
            cv::resize(part, to, {kWidth, kHeight}, 0, 0, cv::INTER_NEAREST);
        });
    AddJob(
        "draw c24 half transparent over 24 bits",
        [color, to = canvas(24)] {
            Zelkor::GDIDrawAdapter(to->hdc).DrawImage(color.get(), 1, 1, 0, 0, 0.5,
                                                      Zelkor::RGBColor::Current);
        },
        "OpenCV",
        [colorMatrix, to = colorMatrix.clone()]() mutable {
            cv::addWeighted(colorMatrix, 0.5, to, 0.5, 0, to);
        });
    std::array<std::uint8_t, 256> levels;
    const auto table = std::make_shared<KxBW8Vector>();
    for (int i = 0; i < 256; ++i) {
        levels[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(255 - i);
        table->AddElement(static_cast<std::uint8_t>(255 - i));
    }
    const cv::Mat tableMatrix = cv::Mat(1, 256, CV_8UC1, levels.data()).clone();
    AddJob(
        "draw bw8 through a table into 8 bits",
        [gray, table, to = canvas(8)] { gray->Draw(to->hdc, table.get(), 1, 1); }, "OpenCV",
        [grayMatrix, tableMatrix, to = cv::Mat()]() mutable { cv::LUT(grayMatrix, tableMatrix, to); });
    AddJob(
        "draw bw8 through a table into 24 bits",
        [gray, table, to = canvas(24)] { gray->Draw(to->hdc, table.get(), 1, 1); }, "OpenCV",
        [grayMatrix, to = cv::Mat()]() mutable { cv::applyColorMap(grayMatrix, to, cv::COLORMAP_JET); });

    const auto pix = [](l_int32 depth) {
        return std::shared_ptr<PIX>(pixCreate(kWidth, kHeight, depth), [](PIX* p) { pixDestroy(&p); });
    };
    AddJob(
        "draw bw8 into 1 bit", [gray, to = canvas(1)] { gray->Draw(to->hdc, 1, 1); }, "Leptonica",
        [from = pix(8)] {
            PIX* result = pixThresholdToBinary(from.get(), 128);
            pixDestroy(&result);
        });
    AddJob(
        "draw bw1 into 8 bits", [bits, to = canvas(8)] { bits->Draw(to->hdc, 1, 1); }, "Leptonica",
        [from = pix(1), to = pix(8)] { pixConvert1To8(to.get(), from.get(), 0, 255); });
}

void AddShapes() {
    using Zelkor::GDIDrawAdapter;
    using Zelkor::RGBColor;
    const auto to = std::make_shared<Canvas>(Picture(24, Colors::Greys));
    const cv::Mat matrix(kHeight, kWidth, CV_8UC3);
    for (const int length : {16, 64})
        AddJob(
            "line of " + std::to_string(length) + " pixels",
            [to, length] {
                GDIDrawAdapter(to->hdc).DrawLine(200, 200, 200 + length, 200 + length / 3, RGBColor::Red);
            },
            "OpenCV",
            [matrix, length]() mutable {
                cv::line(matrix, {200, 200}, {200 + length, 200 + length / 3}, {0, 0, 255});
            });
    AddJob(
        "filled ellipse of 40 x 40 pixels",
        [to] { GDIDrawAdapter(to->hdc).FillEllipse(200, 200, 40, 40, RGBColor::Red, RGBColor::Red); },
        "OpenCV",
        [matrix]() mutable {
            cv::ellipse(matrix, {220, 220}, {20, 20}, 0, 0, 360, {0, 0, 255}, cv::FILLED);
        });
    const auto region = MakePicture<KxBW8>();
    AddJob(
        "ellipse mask", [region] { region->SetEllipseMask(0, 0, 0, 0); }, "OpenCV",
        [mask = cv::Mat(kHeight, kWidth, CV_8UC1)]() mutable {
            mask.setTo(0);
            cv::ellipse(mask, {kWidth / 2, kHeight / 2}, {kWidth / 2, kHeight / 2}, 0, 0, 360, {255},
                        cv::FILLED);
        });
}

void AddMemory() {
    const auto color = MakePicture<KxC24>(), copy = MakePicture<KxC24>();
    const auto bytes = static_cast<std::size_t>(color->GetImgPitch());
    const auto block = std::make_shared<std::vector<unsigned char>>(bytes);
    const auto copyBytes = [color, block, bytes] {
        std::memcpy(block->data(), color->GetGenericImagePtr(0, 0), bytes);
    };
    AddJob(
        "copy a c24 image", [color, copy] { *copy = *color; }, "memcpy", copyBytes);
    const auto writer = std::make_shared<KxMemSerializer>();
    writer->OpenWriter();
    color->Save(writer.get());
    AddJob(
        "load a c24 image from an archive in memory",
        [writer, copy] {
            KxMemSerializer reader;
            reader.OpenReader(writer->GetBuffer());
            copy->Load(&reader);
        },
        "memcpy", copyBytes);
    constexpr int kElements = 1000000;
    AddJob(
        "append a million bytes",
        [] {
            KxBW8Vector vector;
            for (int i = 0; i < kElements; ++i) vector.AddElement(static_cast<std::uint8_t>(i));
        },
        "std::vector",
        [] {
            std::vector<std::uint8_t> vector;
            for (int i = 0; i < kElements; ++i) {
                vector.push_back(static_cast<std::uint8_t>(i));
                benchmark::DoNotOptimize(vector.data());
            }
        });
}

}  // namespace

int main(int argc, char** argv) {
    cv::setNumThreads(1);
    AddResizing<KxBW8>("bw8", CV_8UC1);
    AddResizing<KxBW16>("bw16", CV_16UC1);
    AddResizing<KxC24>("c24", CV_8UC3);
    AddFile<KxC24>("c24", CV_8UC3, "bmp");
    AddFile<KxBW8>("bw8", CV_8UC1, "tif", {cv::IMWRITE_TIFF_COMPRESSION, 1});
    AddFile<KxC24>("c24", CV_8UC3, "tif", {cv::IMWRITE_TIFF_COMPRESSION, 1});
    AddFile<KxC24>("c24", CV_8UC3, "jpg");
    AddDisplay();
    AddShapes();
    AddMemory();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
