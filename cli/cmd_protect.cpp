// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_host/xp.h"

namespace cli {
namespace {

namespace xp = isl::iostreams::xp;

constexpr const char* NOTES =
    "The variable MAV_KEY_FILE names the file with the key. A file that exists at the target is\n"
    "replaced only when the new one is complete.\n";

struct Options {
    std::string source;
    std::string target;
};

constexpr std::uint64_t MAX_SIZE = std::uint64_t{1} << 30;

void run(const Options& options) {
    guarded("protect", options.source, [&] {
        const mav_host::SecretText content(HUTFileUtils::readWhole(options.source, MAX_SIZE));
        if (xp::is_container(content.text()))
            throw Failure("it is protected already. Give the file in the clear.");
        xp::write(options.target, content.text());
    });
}

}  // namespace

void commands::protect(Command& command) {
    command.description = "Encipher a file, such as a support list";
    command.notes = NOTES;
    command.failed = "the file or the key cannot be read, or the result cannot be written";
    command.examples = {
        {"MAV_KEY_FILE=key mav protect list.json achromatic", "a support list for the tools"}};
    auto& options = command.runs(run);
    command.argument("IN", &options.source, "File in the clear");
    command.argument("OUT", &options.target, "Protected file to write");
}

}  // namespace cli
