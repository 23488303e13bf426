// SPDX-License-Identifier: Apache-2.0
#include "Program.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "Errors.h"
#include "Output.h"
#include "OutputSchemas.h"
#include "Suggest.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/Host.h"
#include "mav_host/Letters.h"

namespace cli {
namespace {

using Commands = std::vector<Command>;

constexpr const char* DESCRIPTION =
    "Reads and makes platforms of the accelerated-application toolchain.";
Command& begin(Commands& commands, const char* group, const char* name) {
    static bool help = false;
    Command& command = commands.emplace_back(Command{name, "", group});
    command.flag("-h,--help", help, "Print this help message and exit");
    return command;
}

/// The program first, then its commands in the order of the table.
Commands describe(std::span<const Row> table) {
    static bool version = false;
    Commands commands;
    commands.reserve(table.size() + 1);
    Command& program = begin(commands, "", "");
    program.description = DESCRIPTION;
    program.no = "the question was answered with no";
    program.examples = {{"mav help show", "the help of a command"}};
    program.flag("--version", version, "Print the version and exit");
    for (const Row& row : table) row.describe(begin(commands, row.group, row.name));
    std::vector<std::string> names;
    for (const Row& row : table) names.emplace_back(row.name);
    for (Command& command : commands)
        if (command.name == "help") command.arguments.front().oneOf("command", names);
    return commands;
}

std::string joined(const std::vector<std::string>& names) {
    std::string made;
    for (const std::string& name : names) made += (made.empty() ? "" : ",") + name;
    return made;
}

/// The JSON Schema of a command's answer is wanted.
struct SchemaWanted {
    std::string command;
};

void announce(CLI::App& app, const Argument& argument) {
    const std::string names = argument.names.empty() ? argument.value : joined(argument.names);
    if (names == "-h,--help") return;
    if (names == "--schema") {
        app.add_flag_callback(
               names, [&app] { throw SchemaWanted{app.get_name()}; }, argument.description)
            ->trigger_on_parse();
        return;
    }
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
    if (argument.names.empty()) option->option_text(argument.many ? "..." : " ");
    if (argument.names.empty() || argument.value.empty()) return;
    option->type_name(argument.value);
    option->option_text(argument.value + (argument.many ? " ..." : ""));
    if (argument.many) option->allow_extra_args(false);
}

void announce(CLI::App& app, const Command& command) {
    app.footer(command.notes + (command.notes.empty() ? "" : "\n") + command.exitCodes());
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

std::string helpText(const CLI::App& app, const std::string& command) {
    const auto formatter = app.get_formatter();
    if (command.empty()) return formatter->make_help(&app, "mav", CLI::AppFormatMode::Normal);
    return formatter->make_help(app.get_subcommand(command), "mav " + command,
                                CLI::AppFormatMode::Normal);
}

/// The command that the line names, with what it sets.
const Command& parse(CLI::App& app, const Commands& all, int argc, char** argv) {
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        const auto chosen = app.get_subcommands();
        throw HelpWanted{chosen.empty() ? "" : chosen.front()->get_name()};
    } catch (const CLI::CallForVersion&) {
        throw;
    } catch (const CLI::ParseError& error) {
        throw explain(app, all, error);
    }
    const std::string name = app.get_subcommands().front()->get_name();
    const auto chosen =
        std::find_if(all.begin(), all.end(), [&](const Command& one) { return one.name == name; });
    settleChoices(*chosen);
    return *chosen;
}

/// Tells the parser of the commands that the words name; of all when the first word names none or
/// asks for help. Making the options of commands that cannot be meant is a good part of a small
/// call.
void announceNamed(CLI::App& app, const Commands& all, std::span<char*> words) {
    const auto isNamed = [](const Command& command, std::span<char*> where) {
        return std::any_of(where.begin(), where.end(), [&](std::string_view word) {
            return mav_host::equalLetters(command.name, word);
        });
    };
    const auto first = words.first(std::min<std::size_t>(1, words.size()));
    const bool known = std::any_of(all.begin() + 1, all.end(), [&](const Command& command) {
        return command.name != "help" && isNamed(command, first);
    });
    for (auto command = all.begin() + 1; command != all.end(); ++command) {
        const bool named = isNamed(*command, words);
        if (known && !named) continue;
        CLI::App* const one = app.add_subcommand(command->name, command->description);
        one->group(command->group);
        if (named) announce(*one, *command);
    }
}

int run(std::span<const Row> table, int argc, char** argv) {
    const Commands all = describe(table);
    CLI::App app(DESCRIPTION, "mav");
    app.require_subcommand(1);
    announce(app, all.front());
    announceNamed(app, all,
                  std::span(argv, static_cast<std::size_t>(argc)).subspan(argc > 0 ? 1 : 0));
    try {
        return parse(app, all, argc, argv).run(all) ? DONE : NEGATIVE;
    } catch (const HelpWanted& help) {
        writeAnswer(helpText(app, help.command));
    } catch (const SchemaWanted& schema) {
        writeAnswer(outputSchema(schema.command));
    } catch (const CLI::CallForVersion& version) {
        writeAnswer(std::string(version.what()) + "\n");
    }
    return DONE;
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

bool wantsJson(int argc, char** argv) {
    const std::span<char*> words(argv, static_cast<std::size_t>(argc));
    const auto end = std::find(words.begin(), words.end(), std::string_view("--"));
    return std::find(words.begin(), end, std::string_view("--json")) != end;
}

/// How a run ended.
struct End {
    int code = DONE;
    std::string sentence{};  ///< why, when there is something to say
};

End attempt(std::span<const Row> table, int argc, char** argv) {
    try {
        return {run(table, argc, argv)};
    } catch (const NoReader&) {
        lostReader = true;
        return {NO_READER};
    } catch (const Ended& ended) {
        return {ended.code};
    } catch (const Interrupted& interrupted) {
        return {KILLED_BY + interrupted.signal};
    } catch (const UsageError& error) {
        return {WRONG_USE, error.what() + pointer(error.command())};
    } catch (const Negative& error) {
        return {NEGATIVE, error.what()};
    } catch (const Failure& error) {
        return {FAILED, error.what()};
    } catch (const std::bad_alloc&) {
        return {FAILED, "out of memory. Free some memory or raise its limit, then try again."};
    } catch (const std::exception& error) {
        return {FAILED, clause(error.what()) + ". Correct the cause and try again."};
    }
}

/// Tells why the run ended; in JSON on standard output too.
void tell(const End& end, bool json) {
    const std::string answer = json ? errorAnswer(end.code, end.sentence) : "";
    complain(end.sentence);
    try {
        writeData(answer);
    } catch (const NoReader&) {
        lostReader = true;
    } catch (const Failure&) {
        // Standard output takes nothing; the sentence has said what failed first.
    }
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
    const bool json = wantsJson(argc, argv);
    std::optional<KeptReports> reports;
    if (json) reports.emplace();
    const End end = attempt(table, argc, argv);
    if (!end.sentence.empty()) tell(end, json);
    return end.code;
}

}  // namespace cli
