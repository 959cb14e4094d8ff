// The program `kalvo`: reads the command line and runs a command.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <iostream>

#include "kalvo/frame/kxtrace.h"
#include "commands.h"
#include "pixel_types.h"

namespace App {
namespace {

constexpr int kWrongUsage = 2;

// "x,y,width,height" with a size of at least 1 x 1.
Zelkor::Kalvo::GenericRoiExtent ToRegion(const std::vector<int>& numbers) {
    if (numbers[0] < 0 || numbers[1] < 0)
        throw CLI::ValidationError("--roi", "the origin must not be negative");
    if (numbers[2] < 1 || numbers[3] < 1)
        throw CLI::ValidationError("--roi", "the size must be at least 1,1");
    return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

// Whether a text was read to its end.
bool IsAll(const std::string& text, int length) { return static_cast<std::size_t>(length) == text.size(); }

// The same from a text.
Zelkor::Kalvo::GenericRoiExtent ToRegion(const std::string& text) {
    std::vector<int> numbers(4);
    int length = 0;
    if (std::sscanf(text.c_str(), "%9d,%9d,%9d,%9d%n", &numbers[0], &numbers[1], &numbers[2], &numbers[3],
                    &length) != 4 ||
        !IsAll(text, length))
        throw CLI::ValidationError("--roi", text + " is not X,Y,WIDTH,HEIGHT");
    return ToRegion(numbers);
}

// "WIDTHxHEIGHT" of a picture.
PictureSize ToSize(const std::string& text) {
    PictureSize size;
    int length = 0;
    if (std::sscanf(text.c_str(), "%5dx%5d%n", &size.width, &size.height, &length) != 2 ||
        !IsAll(text, length) || size.width < 1 || size.height < 1)
        throw CLI::ValidationError("--size", text + " is not WIDTHxHEIGHT");
    return size;
}

// "threshold:LEVEL" or "gain:GAIN,OFFSET,GAMMA" as a lookup table.
KxBW8Vector ToTable(const std::string& text) {
    KxBW8Vector table;
    int level = 0, length = 0;
    float gain = 1, offset = 0, gamma = 1;
    if (std::sscanf(text.c_str(), "threshold:%3d%n", &level, &length) == 1 && IsAll(text, length) &&
        level >= 0 && level <= 255)
        table.SetupThreshold(static_cast<std::uint8_t>(level), 0, 255);
    else if (std::sscanf(text.c_str(), "gain:%f,%f,%f%n", &gain, &offset, &gamma, &length) == 3 &&
             IsAll(text, length))
        table.SetupGainOffset(gain, offset, gamma);
    else
        throw CLI::ValidationError("--lut", text + " is neither threshold:LEVEL nor gain:GAIN,OFFSET,GAMMA");
    return table;
}

// Takes one of the names, in any case, or the number that a name stands for.
template <class Value>
CLI::Validator OneOf(const std::map<std::string, Value>& names) {
    std::string list;
    for (const auto& [name, value] : names) list += (list.empty() ? "" : ", ") + name;
    const auto toNumber = [names, list](std::string& text) -> std::string {
        for (const auto& [name, value] : names) {
            const std::string number = std::to_string(value);
            if (CLI::detail::to_lower(text) != name && text != number) continue;
            text = number;
            return {};
        }
        return text + " is none of " + list;
    };
    return CLI::Validator(toNumber, list);
}

// What remains to be done when the command line has been read.
using Command = std::function<int()>;

void AddShow(CLI::App& program, const char* name, const char* about, ShowOptions& options,
             int (*run)(const ShowOptions&), Command& chosen) {
    CLI::App* command = program.add_subcommand(name, about);
    command->add_option("FILE", options.files, "Files to look at")->required();
    command->add_flag("--json", options.asJson, "Print JSON");
    command->callback([&options, &chosen, run] { chosen = [&options, run] { return run(options); }; });
}

void AddConvert(CLI::App& program, ConvertOptions& options, Command& chosen) {
    CLI::App* command = program.add_subcommand("convert", "Load an image, crop and convert it, and save it");
    command->add_option("IN", options.input, "Image file, or archive that begins with an image")->required();
    command
        ->add_option("OUT", options.output,
                     "File to write; the extension bmp, tif or jpg tells its format, kxa makes an archive")
        ->required();
    command->add_option("--type", options.type, "Pixel type of the result; as loaded if not given")
        ->type_name("NAME")
        ->transform(OneOf(ConvertibleTypes()));
    command->add_option("--file-type", options.format, "Format of the result, by name or number")
        ->type_name("NAME")
        ->transform(OneOf(WritableFileTypes()));
    command
        ->add_option_function<std::vector<int>>(
            "--roi", [&options](const std::vector<int>& numbers) { options.region = ToRegion(numbers); },
            "Part of the image to take in pixels")
        ->type_name("X,Y,WIDTH,HEIGHT")
        ->delimiter(',')
        ->expected(4);
    command->add_option("--quality", options.quality, "Quality of a JPEG file, 0 to 100")
        ->check(CLI::Range(0, 100))
        ->capture_default_str();
    command
        ->add_option("--threshold", options.threshold, "Brightness from which a bilevel pixel is 1, 0 to 255")
        ->check(CLI::Range(0, 255))
        ->capture_default_str();
    command
        ->add_option("--strip-size", options.stripSize, "Bytes in a strip of a TIFF file; 0 makes one strip")
        ->capture_default_str();
    command->callback([&options, &chosen] { chosen = [&options] { return RunConvert(options); }; });
}

void AddFields(CLI::App& program, FieldsOptions& options, Command& chosen) {
    const std::map<std::string, KxJpegHandler::ScalingMode> scalings = {
        {"full", KxJpegHandler::FullSize},
        {"half", KxJpegHandler::HalfSize},
        {"quarter", KxJpegHandler::QuarterSize},
        {"eighth", KxJpegHandler::EighthSize},
    };
    CLI::App* command = program.add_subcommand("fields", "Make one image of the two fields of a video frame");
    command->add_option("UP", options.upField, "JPEG file of the even rows")->required();
    command->add_option("DOWN", options.downField, "JPEG file of the odd rows, of the same size")->required();
    command->add_option("OUT", options.output, "File to write, as for convert")->required();
    command->add_option("--scale", options.scaling, "Size of the result; full if not given")
        ->type_name("NAME")
        ->transform(OneOf(scalings));
    command->callback([&options, &chosen] { chosen = [&options] { return RunFields(options); }; });
}

void AddDraw(CLI::App& program, DrawOptions& options, Command& chosen) {
    const std::map<std::string, MaskShape> shapes = {
        {"ellipse", MaskEllipse}, {"ring", MaskRing}, {"rect", MaskRectangle}};
    CLI::App* command =
        program.add_subcommand("draw", "Draw an image with its regions, and save the picture");
    command->add_option("IN", options.input, "Image file, or archive that begins with an image")->required();
    command->add_option("OUT", options.output, "PNG file to write")->required();
    command->add_option("--zoom", options.zoom, "Pixels of the picture for one of the image")
        ->check(CLI::Range(0.001f, 1000.0f))
        ->capture_default_str();
    command
        ->add_option_function<std::vector<std::string>>(
            "--roi",
            [&options](const std::vector<std::string>& texts) {
                for (const std::string& text : texts) options.regions.push_back(ToRegion(text));
            },
            "A region to frame, besides those of an archive; may be given several times")
        ->type_name("X,Y,WIDTH,HEIGHT")
        ->allow_extra_args(false);
    command
        ->add_option("--mask", options.masks,
                     "The mask of the first region, of the second, ...; without regions, of the image")
        ->type_name("NAME")
        ->transform(OneOf(shapes))
        ->allow_extra_args(false);
    command->add_flag("--handles", options.handles, "Draw the handles of the frames too");
    command
        ->add_option_function<std::string>(
            "--lut", [&options](const std::string& text) { options.table = ToTable(text); },
            "What the grey values of a bw8 image are shown as")
        ->type_name("threshold:LEVEL|gain:GAIN,OFFSET,GAMMA");
    command->callback([&options, &chosen] {
        if (options.masks.size() > std::max<std::size_t>(options.regions.size(), 1))
            throw CLI::ValidationError("--mask", "there are more masks than regions");
        chosen = [&options] { return RunDraw(options); };
    });
}

void AddPlot(CLI::App& program, PlotOptions& options, Command& chosen) {
    CLI::App* command = program.add_subcommand("plot", "Plot grey values or colours, and save the picture");
    command->add_option("IN", options.input, "Image file, or archive that begins with an image")->required();
    command->add_option("OUT", options.output, "PNG file to write")->required();
    auto* kind = command->add_option_group("kind", "What to plot; the histogram if not given");
    kind->add_option("--row", options.row, "The pixels of a row");
    kind->add_option("--column", options.column, "The pixels of a column");
    kind->add_flag("--histogram")->description("How many pixels have which level");
    kind->require_option(0, 1);
    command
        ->add_option_function<std::string>(
            "--roi", [&options](const std::string& text) { options.region = ToRegion(text); },
            "Part of the image to take, and to count rows and columns in")
        ->type_name("X,Y,WIDTH,HEIGHT");
    command
        ->add_option_function<std::string>(
            "--size", [&options](const std::string& text) { options.size = ToSize(text); },
            "Size of the picture; 800x400 if not given")
        ->type_name("WIDTHxHEIGHT");
    command->callback([&options, &chosen] { chosen = [&options] { return RunPlot(options); }; });
}

// Numbers with commas between them.
template <std::size_t kCount>
std::array<float, kCount> ToNumbers(const std::vector<float>& numbers) {
    std::array<float, kCount> array;
    std::ranges::copy(numbers, array.begin());
    return array;
}

CLI::Option* AddAngles(CLI::App& command, std::array<float, 2>& angles) {
    return command
        .add_option_function<std::vector<float>>(
            "--angles", [&angles](const std::vector<float>& numbers) { angles = ToNumbers<2>(numbers); },
            "Turns around the horizontal and the vertical axis of the picture in degrees")
        ->type_name("A,B")
        ->delimiter(',')
        ->expected(2);
}

// For a size that must be given, or for one that need not.
template <class Size>
CLI::Option* AddSize(CLI::App& command, Size& size, const char* about) {
    return command
        .add_option_function<std::string>(
            "--size", [&size](const std::string& text) { size = ToSize(text); }, about)
        ->type_name("WIDTHxHEIGHT");
}

void AddInputAndOutput(CLI::App& command, std::string& input, std::string& output) {
    command.add_option("IN", input, "Image file, or archive that begins with an image")->required();
    command.add_option("OUT", output, "File to write, as for convert")->required();
}

void AddResize(CLI::App& program, ResizeOptions& options, Command& chosen) {
    CLI::App* command =
        program.add_subcommand("resize", "Enlarge or shrink an image by repeating or leaving out pixels");
    AddInputAndOutput(*command, options.input, options.output);
    auto* kind = command->add_option_group("result");
    AddSize(*kind, options.size, "Size of the result");
    kind->add_option_function<std::vector<float>>(
            "--scale",
            [&options](const std::vector<float>& numbers) {
                options.scales = {numbers.front(), numbers.back()};
            },
            "Size of the result by that of the image, for both sides or for width and height")
        ->type_name("SX[,SY]")
        ->check(CLI::Range(0.001f, 1000.0f))
        ->delimiter(',')
        ->expected(1, 2);
    kind->require_option(1);
    command->callback([&options, &chosen] { chosen = [&options] { return RunResize(options); }; });
}

void AddRelief(CLI::App& program, ReliefOptions& options, Command& chosen) {
    CLI::App* command =
        program.add_subcommand("relief", "Draw an image as a relief: the brighter, the higher");
    AddInputAndOutput(*command, options.input, options.output);
    command->add_option("--heights", options.heights, "Image that tells the heights, at least as large")
        ->type_name("FILE");
    AddAngles(*command, options.angles)->default_str("-40,15");
    command
        ->add_option_function<std::vector<float>>(
            "--scale",
            [&options](const std::vector<float>& numbers) { options.scales = ToNumbers<3>(numbers); },
            "Pixels of the picture for a column, a row and a grey level; whatever fits if not given")
        ->type_name("X,Y,Z")
        ->delimiter(',')
        ->expected(3);
    command->add_option("--point", options.pointSize, "Pixels of the picture for a point")
        ->check(CLI::IsMember({1, 4, 5, 9}))
        ->capture_default_str();
    AddSize(*command, options.size, "Size of the picture; what the relief needs if not given");
    command->callback([&options, &chosen] { chosen = [&options] { return RunRelief(options); }; });
}

void AddHistogram3d(CLI::App& program, CubeOptions& options, Command& chosen) {
    CLI::App* command =
        program.add_subcommand("histogram3d", "Draw the colours of an image in the colour cube");
    AddInputAndOutput(*command, options.input, options.output);
    command
        ->add_option("--coordinates", options.coordinates,
                     "Image that tells where the colours go, at least as large; its own if not given")
        ->type_name("FILE");
    AddAngles(*command, options.angles)->default_str("-155,35");
    AddSize(*command, options.size, "Size of the picture")->default_str("600x600");
    command->callback([&options, &chosen] { chosen = [&options] { return RunHistogram3d(options); }; });
}

void AddTour(CLI::App& program, TourOptions& options, Command& chosen) {
    CLI::App* command =
        program.add_subcommand("tour", "Take a picture through all the library does, and check it");
    command->add_option("PICTURE", options.picture, "A photograph: JPEG, TIFF or BMP")->required();
    command->add_option("--output", options.folder, "Folder for the files that are written")
        ->capture_default_str();
    command->callback([&options, &chosen] { chosen = [&options] { return RunTour(options); }; });
}

int Run(int argc, char** argv) {
    KxSetTraceMode(KX_TRACE_MODE_SILENT);

    CLI::App program("Looks at, converts and checks image files and archives.", "kalvo");
    program.set_version_flag("--version", "kalvo " KALVO_PROGRAM_VERSION);
    program.require_subcommand(1);

    Command chosen;
    ShowOptions info, archive;
    ConvertOptions convert;
    FieldsOptions fields;
    DrawOptions draw;
    PlotOptions plot;
    ResizeOptions resize;
    ReliefOptions relief;
    CubeOptions cube;
    TourOptions tour;
    AddShow(program, "info", "Tell what image files and archives hold", info, RunInfo, chosen);
    AddShow(program, "archive", "Print the tree of objects in archives", archive, RunArchive, chosen);
    AddConvert(program, convert, chosen);
    AddFields(program, fields, chosen);
    AddDraw(program, draw, chosen);
    AddPlot(program, plot, chosen);
    AddResize(program, resize, chosen);
    AddRelief(program, relief, chosen);
    AddHistogram3d(program, cube, chosen);
    AddTour(program, tour, chosen);

    try {
        program.parse(argc, argv);
    } catch (const CLI::Success& helpOrVersion) {
        return program.exit(helpOrVersion);
    } catch (const CLI::Error& error) {
        std::cerr << "kalvo: " << error.what() << "\nRun kalvo --help for more information.\n";
        return kWrongUsage;
    }
    const int exitCode = chosen();
    if (!std::cout.flush()) {
        std::cerr << "kalvo: the output could not be written\n";
        return 1;
    }
    return exitCode;
}

}  // namespace
}  // namespace App

int main(int argc, char** argv) { return App::Run(argc, argv); }
