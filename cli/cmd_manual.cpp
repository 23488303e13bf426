// SPDX-License-Identifier: Apache-2.0
#include <filesystem>
#include <system_error>

#include "Archive.h"
#include "Command.h"
#include "Manual.h"
#include "Output.h"
#include "mav_host/HUTFile.h"

namespace cli {
namespace {

struct Options {
    std::string directory;
};

/// A link in the page's place is replaced, wherever it leads.
void writePage(const std::filesystem::path& file, const std::string& text) {
    guarded("write", file.string(),
            [&] { HUTFileUtils::writeWhole(file.string(), text, {.replacesLinks = true}); });
}

void run(const Options& options, const std::vector<Command>& commands) {
    const std::filesystem::path folder = options.directory;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw Failure("cannot make the folder '" + printable(folder.string()) +
                      "': " + error.message() + ". Name another folder.");
    writePage(folder / "mav.1", programPage(commands));
    for (auto command = commands.begin() + 1; command != commands.end(); ++command)
        writePage(folder / ("mav-" + command->name + ".1"), commandPage(*command));
}

}  // namespace

void commands::manual(Command& command) {
    command.description = "Write the manual pages into a folder";
    command.failed = "the folder or a page cannot be written";
    command.examples = {{"mav manual ~/.local/share/man/man1", "pages for man mav"}};
    auto& options = command.runs(run);
    command.argument("DIR", &options.directory, "Folder to write into");
}

}  // namespace cli
