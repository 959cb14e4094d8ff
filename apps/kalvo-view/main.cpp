// The program `kalvo-view`: reads the command line, and shows images or runs a script.

#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>
#include <sstream>

#include "kalvo/frame/kxtrace.h"
#include "common/failure.h"
#include "common/help.h"
#include "common/output_file.h"
#include "script.h"
#include "window.h"

namespace View {
namespace {

constexpr int kFailed = 1, kWrongUsage = 2;

struct Options {
    std::vector<std::string> files;
    std::string script, screenshot;
    bool printsRegions = false;
    std::string size = "1280x800";
};

std::string ListOf(const std::vector<std::pair<std::string, std::string>>& lines) {
    std::string text;
    for (const auto& [name, help] : lines)
        text += "  " + name + std::string(name.size() < 25 ? 26 - name.size() : 1, ' ') + help + "\n";
    return text;
}

void Run(const Options& options) {
    Viewer viewer(options.files);
    Scene scene;
    int width = 0, height = 0;
    char more;
    if (std::sscanf(options.size.c_str(), "%5dx%5d%c", &width, &height, &more) != 2 || width < 1 ||
        height < 1)
        throw App::Failure{options.size + " is no size; write WIDTHxHEIGHT",
                           KX_ERROR_PARAMETERS_OUT_OF_RANGE};
    viewer.Resize(width, height);
    const bool hasScript = !options.script.empty();
    if (hasScript) {
        std::ifstream script(options.script);
        if (!script) throw App::Failure::OfSystem(options.script, KX_ERROR_FILE_OPEN);
        RunScript(script, viewer, scene);
    }
    if (!options.screenshot.empty()) App::SavePicture(scene.Paint(viewer), options.screenshot);
    if (!hasScript && options.screenshot.empty()) RunWindow(viewer, scene);
    if (options.printsRegions) std::cout << viewer.PrintRegions();
}

}  // namespace
}  // namespace View

int main(int argc, char** argv) {
    View::Options options;
    CLI::App program("Looks at images, and places regions of interest on them");
    program.set_version_flag("-V,--version", "kalvo-view " KALVO_PROGRAM_VERSION);
    program.add_option("FILES", options.files, "Image files, or archives that begin with an image")
        ->required();
    program.add_option("--script", options.script, "Do what stands in a file instead of opening a window")
        ->type_name("FILE");
    program.add_option("--screenshot", options.screenshot, "Save the picture instead of opening a window")
        ->type_name("FILE");
    program.add_flag("--print-roi", options.printsRegions, "Print the regions at the end");
    program.add_option("--size", options.size, "Size of the window")
        ->type_name("WIDTHxHEIGHT")
        ->capture_default_str();
    program.footer("Keys:\n" + View::ListOf(View::Viewer::Help()) + "\nLines of a script:\n" +
                   View::ListOf(View::ScriptHelp()));
    program.get_formatter()->column_width(App::kDescriptionColumn);
    try {
        program.parse(argc, argv);
    } catch (const CLI::Success& helpOrVersion) {
        std::ostringstream text;
        program.exit(helpOrVersion, text, text);
        App::PrintHelp(text.str());
        return 0;
    } catch (const CLI::Error& error) {
        std::cerr << "kalvo-view: " << error.what() << "\nRun kalvo-view --help for more information.\n";
        return View::kWrongUsage;
    }
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    App::RemoveUnfinishedFilesWhenInterrupted();
    return App::Attempt(options.files.front(), [&] { View::Run(options); }) ? View::kFailed : 0;
}
