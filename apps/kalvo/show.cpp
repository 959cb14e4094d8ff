// The commands `info` and `archive`.

#include <functional>
#include <iostream>

#include "commands.h"
#include "common/failure.h"
#include "description.h"

namespace App {
namespace {

// Describes every file; one that fails leaves its error instead, and the exit code 1.
int Show(const ShowOptions& options, const std::function<FileContents(const std::string&)>& load,
         const std::function<std::string(const Json&)>& toText) {
    Json files = Json::array();
    int exitCode = 0;
    for (const std::string& path : options.files) {
        Json file;
        const auto describe = [&] {
            const FileContents contents = load(path);
            file = Describe(path, contents);
            if (options.withStatistics) file["statistics"] = DescribeLevels(*contents.objects.front());
        };
        if (const auto failure = Attempt(path, describe)) {
            file = {{"file", path}, {"error", {{"code", failure->code}, {"text", failure->reason}}}};
            exitCode = 1;
        } else if (!options.asJson) {
            std::cout << toText(file);
        }
        if (options.asJson) files.push_back(std::move(file));
    }
    if (options.asJson) std::cout << ToText(files, 2) << '\n';
    return exitCode;
}

FileContents LoadArchiveFile(const std::string& path) {
    FileContents contents = LoadFile(path);
    if (!contents.isArchive) throw Failure::Of(KX_ERROR_BAD_FILE_FORMAT);
    return contents;
}

std::string ToTrees(const Json& file) {
    std::string text = file["file"].get<std::string>() + '\n';
    for (const Json& object : file["objects"]) text += ToTree(object, 2);
    return text;
}

}  // namespace

int RunInfo(const ShowOptions& options) {
    return Show(options, options.withStatistics ? LoadFile : DescribeFile, ToLines);
}

int RunArchive(const ShowOptions& options) { return Show(options, LoadArchiveFile, ToTrees); }

}  // namespace App
