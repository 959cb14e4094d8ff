// The program `kalvo`: reads the command line and runs a command.

#include <algorithm>
#include <functional>
#include <iostream>
#include <sstream>

#include "kalvo/frame/kxtrace.h"
#include "arguments.h"
#include "commands.h"
#include "common/help.h"
#include "common/output_file.h"
#include "common/pixel_types.h"

namespace App {
namespace {

constexpr int kWrongUsage = 2;

// What remains to be done when the command line has been read.
using Command = std::function<int()>;

// What a command ends with: examples that can be run.
void AddExamples(CLI::App& command, const char* examples) {
    command.footer(std::string("Examples:\n") + examples);
}

void AddShow(CLI::App& program, const char* name, const char* about, ShowOptions& options,
             int (*run)(const ShowOptions&), Command& chosen) {
    CLI::App* command = program.add_subcommand(name, about);
    command->add_option("FILE", options.files, "Files to look at")->required();
    command->add_flag("--json", options.asJson, "Print JSON");
    AddExamples(*command, run == RunInfo ? "  kalvo info photo.jpg\n" : "  kalvo archive tree.kxa\n");
    if (run == RunInfo)
        command->add_flag("--stats", options.withStatistics, "Read the pixels too, and tell their range");
    command->callback([&options, &chosen, run] { chosen = [&options, run] { return run(options); }; });
}

const std::map<std::string, Format> kFormats = {{"bmp", Format::Bmp},
                                                {"tiff", Format::Tiff},
                                                {"jpeg", Format::Jpeg},
                                                {"png", Format::Png},
                                                {"kxa", Format::Archive}};

void AddConvertOptions(CLI::App& command, ConvertOptions& options) {
    command.add_option("--format", options.save.format, "Format of the result; else its extension tells it")
        ->type_name("NAME")
        ->transform(OneOf(kFormats));
    command.add_option("--type", options.type, "Pixel type of the result; as loaded if not given")
        ->type_name("NAME")
        ->transform(OneOf(ConvertibleTypes()));
    command
        .add_option("--file-type", options.save.layout,
                    "Layout of a BMP, TIFF or JPEG file, by name or number")
        ->type_name("NAME")
        ->transform(OneOf(WritableFileTypes()));
    command
        .add_option_function<std::vector<int>>(
            "--roi", [&options](const std::vector<int>& numbers) { options.region = ToRegion(numbers); },
            "Part of the image to take in pixels")
        ->type_name("X,Y,WIDTH,HEIGHT")
        ->delimiter(',')
        ->expected(4);
    command.add_option("--quality", options.quality, "Quality of a JPEG file, 0 to 100")
        ->check(CLI::Range(0, 100))
        ->capture_default_str();
    command
        .add_option("--threshold", options.threshold, "Brightness from which a bilevel pixel is 1, 0 to 255")
        ->check(CLI::Range(0, 255))
        ->capture_default_str();
    command
        .add_option("--strip-size", options.stripSize, "Bytes in a strip of a TIFF file; 0 makes one strip")
        ->capture_default_str();
}

void AddConvert(CLI::App& program, ConvertOptions& options, Command& chosen) {
    CLI::App* command = program.add_subcommand("convert", "Load an image, crop and convert it, and save it");
    command
        ->add_option(
            "IN OUT", options.files,
            "Image file, or archive that begins with an image, or -; and the file to write: .bmp, .tif, "
            ".jpg and .png are image files, .kxa makes an archive. Several inputs go into a folder.")
        ->required()
        ->expected(2, -1);
    AddConvertOptions(*command, options);
    AddExamples(*command,
                "  kalvo convert photo.jpg photo.png\n"
                "  kalvo convert photo.jpg label.bmp --roi 10,20,40,30 --type bw8\n"
                "  kalvo convert photo.jpg label.bmp . --format tiff\n");
    command->callback([&options, &chosen] { chosen = [&options] { return RunConvert(options); }; });
}

void AddBatch(CLI::App& program, ConvertOptions& options, Command& chosen) {
    CLI::App* command =
        program.add_subcommand("batch", "Convert all image files of a folder into another one");
    command->add_option("FOLDERS", options.files, "The folder to read and the one to write, which is made")
        ->required()
        ->expected(2);
    AddConvertOptions(*command, options);
    AddExamples(*command, "  kalvo batch . converted --format png --type bw8\n");
    command->callback([&options, &chosen] { chosen = [&options] { return RunBatch(options); }; });
}

void AddPixel(CLI::App& program, PixelOptions& options, Command& chosen) {
    CLI::App* command = program.add_subcommand("pixel", "Print the raw values of pixels");
    command->add_option("IN", options.input, "Image file, or archive that begins with an image, or -")
        ->required();
    command->add_option("PLACES", options.places, "Columns and rows of pixels")->type_name("X,Y")->required();
    command->add_flag("--json", options.asJson, "Print JSON");
    AddExamples(*command, "  kalvo pixel photo.jpg 0,0 10,20\n");
    command->callback([&options, &chosen] { chosen = [&options] { return RunPixel(options); }; });
}

void AddCompare(CLI::App& program, CompareOptions& options, Command& chosen) {
    CLI::App* command =
        program.add_subcommand("compare", "Tell whether two images are the same: 0 when they are, else 1");
    command->add_option("FIRST", options.first, "Image file, or archive that begins with an image, or -")
        ->required();
    command->add_option("SECOND", options.second, "The same")->required();
    command
        ->add_option("--tolerance", options.tolerance,
                     "Greatest difference of a component that does not count")
        ->capture_default_str();
    command->add_flag("--json", options.asJson, "Print JSON");
    AddExamples(*command, "  kalvo compare photo.jpg photo.jpg\n");
    command->callback([&options, &chosen] { chosen = [&options] { return RunCompare(options); }; });
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
    AddExamples(*command, "  kalvo fields photo.jpg photo.jpg frame.png\n");
    command->callback([&options, &chosen] { chosen = [&options] { return RunFields(options); }; });
}

void AddInputAndOutput(CLI::App& command, std::string& input, std::string& output) {
    command.add_option("IN", input, "Image file, or archive that begins with an image")->required();
    command.add_option("OUT", output, "File to write, as for convert")->required();
}

void AddInputAndDrawing(CLI::App& command, std::string& input, std::string& output) {
    command.add_option("IN", input, "Image file, or archive that begins with an image")->required();
    command.add_option("OUT", output, "File to write, as for convert, or .svg")->required();
}

void AddDraw(CLI::App& program, DrawOptions& options, Command& chosen) {
    const std::map<std::string, MaskShape> shapes = {
        {"ellipse", MaskEllipse}, {"ring", MaskRing}, {"rect", MaskRectangle}};
    CLI::App* command =
        program.add_subcommand("draw", "Draw an image with its regions, and save the picture");
    AddInputAndDrawing(*command, options.input, options.output);
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
    AddExamples(*command,
                "  kalvo draw photo.jpg framed.png --roi 8,8,40,30 --mask ellipse\n"
                "  kalvo draw photo.jpg report.svg --zoom 2 --handles --roi 8,8,40,30\n");
    command->callback([&options, &chosen] {
        if (options.masks.size() > std::max<std::size_t>(options.regions.size(), 1))
            throw CLI::ValidationError("--mask", "there are more masks than regions");
        chosen = [&options] { return RunDraw(options); };
    });
}

void AddPlot(CLI::App& program, PlotOptions& options, Command& chosen) {
    CLI::App* command = program.add_subcommand("plot", "Plot grey values or colours, and save the picture");
    AddInputAndDrawing(*command, options.input, options.output);
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
    AddExamples(*command,
                "  kalvo plot photo.jpg histogram.png\n"
                "  kalvo plot photo.jpg report.svg --row 20\n");
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
    AddExamples(*command, "  kalvo resize photo.jpg small.png --scale 0.5\n");
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
    AddExamples(*command, "  kalvo relief photo.jpg relief.png --angles -30,20\n");
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
    AddExamples(*command, "  kalvo histogram3d photo.jpg cube.png\n");
    command->callback([&options, &chosen] { chosen = [&options] { return RunHistogram3d(options); }; });
}

void AddError(CLI::App& program, ErrorOptions& options, Command& chosen) {
    CLI::App* command = program.add_subcommand("error", "Tell what error codes mean, and what to do");
    command->add_option("CODE", options.codes, "Numbers of codes; all in a table if not given");
    AddExamples(*command, "  kalvo error 1414\n  kalvo error\n");
    command->callback([&options, &chosen] { chosen = [&options] { return RunError(options); }; });
}

void AddTour(CLI::App& program, TourOptions& options, Command& chosen) {
    CLI::App* command =
        program.add_subcommand("tour", "Take a picture through all the library does, and check it");
    command->add_option("PICTURE", options.picture, "A photograph: JPEG, TIFF or BMP")->required();
    command->add_option("--output", options.folder, "Folder for the files that are written")
        ->capture_default_str();
    AddExamples(*command, "  kalvo tour photo.jpg --output tour\n");
    command->callback([&options, &chosen] { chosen = [&options] { return RunTour(options); }; });
}

int Run(int argc, char** argv) {
    KxSetTraceMode(KX_TRACE_MODE_SILENT);

    CLI::App program("Looks at, converts and checks image files and archives.", "kalvo");
    program.set_version_flag("-V,--version", "kalvo " KALVO_PROGRAM_VERSION);
    program.require_subcommand(1);
    program.fallthrough();
    program.get_formatter()->column_width(kDescriptionColumn);
    program.add_flag_callback("--no-clobber", ForbidReplacing, "Never replace a file that exists");
    AddExamples(program, "  kalvo info photo.jpg\n  kalvo help convert\n");

    Command chosen;
    ShowOptions info, archive;
    ConvertOptions convert, batch;
    PixelOptions pixel;
    CompareOptions compare;
    FieldsOptions fields;
    DrawOptions draw;
    PlotOptions plot;
    ResizeOptions resize;
    ReliefOptions relief;
    CubeOptions cube;
    ErrorOptions errors;
    TourOptions tour;
    AddShow(program, "info", "Tell what image files and archives hold", info, RunInfo, chosen);
    AddShow(program, "archive", "Print the tree of objects in archives", archive, RunArchive, chosen);
    AddPixel(program, pixel, chosen);
    AddCompare(program, compare, chosen);
    AddConvert(program, convert, chosen);
    AddBatch(program, batch, chosen);
    AddFields(program, fields, chosen);
    AddDraw(program, draw, chosen);
    AddPlot(program, plot, chosen);
    AddResize(program, resize, chosen);
    AddRelief(program, relief, chosen);
    AddHistogram3d(program, cube, chosen);
    AddError(program, errors, chosen);
    AddTour(program, tour, chosen);

    RemoveUnfinishedFilesWhenInterrupted();
    // "help VERB" is what many try first.
    std::vector<std::string> arguments(argv + 1, argv + argc);
    if (!arguments.empty() && arguments.front() == "help") {
        arguments.erase(arguments.begin());
        arguments.push_back("--help");
    }
    std::ranges::reverse(arguments);  // as the parser takes them
    try {
        program.parse(std::move(arguments));
    } catch (const CLI::Success& helpOrVersion) {
        std::ostringstream text;
        program.exit(helpOrVersion, text, text);
        PrintHelp(text.str());
        return 0;
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
