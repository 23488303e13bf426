// SPDX-License-Identifier: Apache-2.0
#include "Command.h"

namespace cli {
namespace {

struct Options {
    std::string command;
};

void run(const Options& options) {
    throw HelpWanted{options.command};
}

}  // namespace

void commands::help(Command& command) {
    command.description = "Print the help of mav or of a command";
    command.failed = "the result cannot be written";
    command.examples = {{"mav help check", "the same as mav check --help"}};
    auto& options = command.runs(run);
    command.argument("COMMAND", &options.command, "Command to explain; without it all are named")
        .required = false;
}

}  // namespace cli
