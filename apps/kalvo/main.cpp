// The program `kalvo`: reads the command line and runs a command.
#include <CLI/CLI.hpp>
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
    TourOptions tour;
    AddShow(program, "info", "Tell what image files and archives hold", info, RunInfo, chosen);
    AddShow(program, "archive", "Print the tree of objects in archives", archive, RunArchive, chosen);
    AddConvert(program, convert, chosen);
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
