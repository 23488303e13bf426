// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "Command.h"
#include "Completion.h"
#include "Manual.h"
#include "Output.h"
#include "Suggest.h"

namespace {

void writePage(const std::filesystem::path& file, const std::string& text) {
    std::ofstream out(file, std::ios::binary);
    out << text;
    out.close();
    if (!out)
        throw cli::Failure("cannot write '" + cli::printable(file.string()) +
                           "'. Check the folder's permissions and the room there, then run the "
                           "command again.");
}

}  // namespace

void cli::runCompletion(const CompletionOptions& options, const CLI::App& app) {
    const auto tables = commandTables(app);
    if (options.shell == "bash") return writeAnswer(bashCompletion(tables));
    if (options.shell == "zsh") return writeAnswer(zshCompletion(tables));
    if (options.shell == "fish") return writeAnswer(fishCompletion(tables));
    const std::string meant = nearest(options.shell, {"bash", "zsh", "fish"});
    throw UsageError("unknown shell '" + printable(options.shell) + "': use bash, zsh or fish." +
                         (meant.empty() ? "" : " Did you mean '" + meant + "'?"),
                     "completion");
}

void cli::runManual(const ManualOptions& options, const CLI::App& app) {
    const std::filesystem::path folder = options.directory;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw Failure("cannot make the folder '" + printable(folder.string()) +
                      "': " + error.message() + ". Name another folder.");
    const auto tables = commandTables(app);
    writePage(folder / "mav.1", programPage(tables));
    for (auto table = tables.begin() + 1; table != tables.end(); ++table)
        writePage(folder / ("mav-" + table->name + ".1"), commandPage(*table));
}
