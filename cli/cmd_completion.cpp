// SPDX-License-Identifier: Apache-2.0
#include "Command.h"
#include "Completion.h"
#include "Output.h"

namespace cli {
namespace {

constexpr const char* NOTES =
    "To have it in one shell:\n"
    "  source <(mav completion bash)\n"
    "  source <(mav completion zsh)     after compinit\n"
    "  mav completion fish | source\n"
    "The packages install it for all three.\n";

struct Options {
    std::string shell;
};

void run(const Options& options, const std::vector<Command>& commands) {
    if (options.shell == "bash") writeAnswer(bashCompletion(commands));
    if (options.shell == "zsh") writeAnswer(zshCompletion(commands));
    if (options.shell == "fish") writeAnswer(fishCompletion(commands));
}

}  // namespace

void commands::completion(Command& command) {
    command.description = "Print the completion of a shell";
    command.notes = NOTES;
    command.failed = "the result cannot be written";
    command.examples = {{"source <(mav completion bash)", "completion in this shell"}};
    auto& options = command.runs(run);
    command.argument("SHELL", &options.shell, "bash, zsh or fish")
        .oneOf("shell", {"bash", "zsh", "fish"});
}

}  // namespace cli
