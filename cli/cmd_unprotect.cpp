// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_host/xp.h"

namespace cli {
namespace {

constexpr const char* NOTES =
    "The variable MAV_KEY_FILE names the file with the key. A file that exists at the target is\n"
    "replaced only when the new one is complete.\n";

struct Options {
    std::string source;
    std::string target;  ///< empty for standard output
};

void run(const Options& options) {
    guarded("unprotect", options.source, [&] {
        const mav_host::SecretText content(isl::iostreams::xp::read(options.source));
        if (options.target.empty()) {
            writeData(content.text());
        } else {
            HUTFileUtils::writeWhole(options.target, content.text(), {.ownerOnly = true});
        }
    });
}

}  // namespace

void commands::unprotect(Command& command) {
    command.description = "Decipher a file that was protected";
    command.notes = NOTES;
    command.failed = "the file or the key cannot be read, or the file was changed";
    command.examples = {
        {"MAV_KEY_FILE=key mav unprotect achromatic", "its content on standard output"}};
    auto& options = command.runs(run);
    command.argument("IN", &options.source, "Protected file");
    command.argument("OUT", &options.target, "File to write; without it standard output").required =
        false;
}

}  // namespace cli
