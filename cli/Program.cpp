// SPDX-License-Identifier: Apache-2.0
#include "Program.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iostream>

#include "Output.h"
#include "Suggest.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/Host.h"
#include "mav_host/Letters.h"

namespace cli {
namespace {

using Commands = std::vector<Command>;

constexpr const char* DESCRIPTION =
    "Reads and makes platforms of the accelerated-application toolchain.";
constexpr const char* EXIT_CODES =
    "Exit codes:\n"
    "  0  done\n"
    "  1  the question was answered with no\n"
    "  2  wrong use\n"
    "  3  the platform cannot be loaded, or the result cannot be written\n";

Command& begin(Commands& commands, const char* name) {
    static bool help = false;
    Command& command = commands.emplace_back(Command{name, "", EXIT_CODES});
    command.flag("-h,--help", help, "Print this help message and exit");
    return command;
}

/// The program first, then its commands in the order of the table.
Commands describe(std::span<const Row> table) {
    static bool version = false;
    Commands commands;
    commands.reserve(table.size() + 1);
    Command& program = begin(commands, "");
    program.description = DESCRIPTION;
    program.flag("--version", version, "Print the version and exit");
    for (const Row& row : table) row.describe(begin(commands, row.name));
    return commands;
}

std::string joined(const std::vector<std::string>& names) {
    std::string made;
    for (const std::string& name : names) made += (made.empty() ? "" : ",") + name;
    return made;
}

void announce(CLI::App& app, const Argument& argument) {
    const std::string names = argument.names.empty() ? argument.value : joined(argument.names);
    if (names == "-h,--help") return;
    if (names == "--version") {
        app.set_version_flag(names, "mav " MAV_VERSION, argument.description);
        return;
    }
    CLI::Option* const option = std::visit(
        [&](auto* target) {
            if constexpr (std::is_same_v<decltype(target), bool*>)
                return app.add_flag(names, *target, argument.description);
            else
                return app.add_option(names, *target, argument.description);
        },
        argument.target);
    option->required(argument.required);
    if (!argument.excludes.empty()) option->excludes(app.get_option(argument.excludes));
    if (argument.names.empty() || argument.value.empty()) return;
    option->type_name(argument.value);
    if (argument.many) option->allow_extra_args(false);
}

void announce(CLI::App& app, const Command& command) {
    app.footer(command.notes);
    for (const Argument& argument : command.arguments) announce(app, argument);
    for (const Argument& option : command.options) announce(app, option);
}

/// Names of the commands and options that could have been meant behind `command`.
std::vector<std::string> candidates(const Commands& all, const Command& command) {
    std::vector<std::string> names;
    if (&command == &all.front()) {
        for (auto one = all.begin() + 1; one != all.end(); ++one) names.push_back(one->name);
    }
    for (const Argument& option : command.options) names.push_back(option.names.back());
    return names;
}

/// The sentence about the first argument that nobody took.
UsageError strayArgument(const Commands& all, const Command& command, std::string word) {
    const bool option = word.size() > 1 && word.front() == '-';
    if (option) word.resize(std::min(word.find('='), word.size()));
    const char* kind = option                 ? "unknown option"
                       : command.name.empty() ? "unknown command"
                                              : "unexpected argument";
    return UsageError(refusal(kind, word, candidates(all, command)), command.name);
}

UsageError explain(const CLI::App& app, const Commands& all, const CLI::ParseError& error) {
    const auto chosen = app.get_subcommands();
    if (const auto stray = app.remaining(); !stray.empty())
        return strayArgument(all, all.front(), stray.front());
    if (chosen.empty()) return UsageError("a command is missing.", "");
    const std::string name = chosen.front()->get_name();
    const auto command =
        std::find_if(all.begin(), all.end(), [&](const Command& one) { return one.name == name; });
    if (const auto stray = chosen.front()->remaining(); !stray.empty())
        return strayArgument(all, *command, stray.front());
    return UsageError(clause(error.what()) + ".", name);
}

/// Puts the known spelling in the place of a choice, in whatever letter case it was given.
void settle(const Argument& argument, const std::string& command, std::string& word) {
    if (word.empty() && !argument.required) return;
    for (const std::string& choice : argument.choices) {
        if (!mav_host::equalLetters(choice, word)) continue;
        word = choice;
        return;
    }
    throw UsageError(refusal("unknown " + argument.subject, word, argument.choices, true), command);
}

void settleChoices(const Command& command) {
    for (const auto* list : {&command.options, &command.arguments}) {
        for (const Argument& argument : *list) {
            if (argument.kind != ValueKind::CHOICES) continue;
            if (auto* const* word = std::get_if<std::string*>(&argument.target))
                settle(argument, command.name, **word);
            if (auto* const* words = std::get_if<std::vector<std::string>*>(&argument.target))
                for (std::string& word : **words) settle(argument, command.name, word);
        }
    }
}

int run(std::span<const Row> table, int argc, char** argv) {
    const Commands all = describe(table);
    CLI::App app(DESCRIPTION, "mav");
    app.require_subcommand(1);
    announce(app, all.front());
    for (auto command = all.begin() + 1; command != all.end(); ++command)
        announce(*app.add_subcommand(command->name, command->description), *command);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        writeAnswer(app.help());
        return DONE;
    } catch (const CLI::CallForVersion& version) {
        writeAnswer(std::string(version.what()) + "\n");
        return DONE;
    } catch (const CLI::ParseError& error) {
        throw explain(app, all, error);
    }
    const std::string name = app.get_subcommands().front()->get_name();
    const auto chosen =
        std::find_if(all.begin(), all.end(), [&](const Command& one) { return one.name == name; });
    settleChoices(*chosen);
    return chosen->run(all) ? DONE : NEGATIVE;
}

std::string pointer(const std::string& command) {
    return " Try 'mav " + (command.empty() ? "" : command + " ") + "--help'.";
}

bool pipeKills = false;
bool lostReader = false;

/// Runs behind all that cleans up, and gives the shell the end that it expects of a pipe's writer.
void endByPipe() {
    if (!pipeKills || !lostReader) return;
    std::signal(SIGPIPE, SIG_DFL);
    std::raise(SIGPIPE);
}

}  // namespace

int runProgram(std::span<const Row> table, int argc, char** argv) {
    holdStandardStreams();
    // The write fails instead, so that what was made on the way is removed.
    std::signal(SIGXFSZ, SIG_IGN);
    pipeKills = std::signal(SIGPIPE, SIG_IGN) == SIG_DFL;
    std::atexit(endByPipe);
    HUTEnv::pinTimeZone();
    mav_host::setConsole(&mav_host::printableErrors());
    try {
        return run(table, argc, argv);
    } catch (const NoReader&) {
        lostReader = true;
        return NO_READER;
    } catch (const Interrupted& interrupted) {
        return KILLED_BY + interrupted.signal;
    } catch (const UsageError& error) {
        complain(error.what() + pointer(error.command()));
        return WRONG_USE;
    } catch (const Failure& error) {
        if (*error.what() != '\0') complain(error.what());
    } catch (const std::bad_alloc&) {
        complain("out of memory. Free some memory or raise its limit, then try again.");
    } catch (const std::exception& error) {
        complain(clause(error.what()) + ". Correct the cause and try again.");
    }
    return FAILED;
}

}  // namespace cli
