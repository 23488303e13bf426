// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace cli {

/// What the process answers with.
enum ExitCode {
    DONE = 0,
    NEGATIVE = 1,    ///< the question was answered with no
    WRONG_USE = 2,   ///< the command line is wrong
    FAILED = 3,      ///< the platform cannot be loaded, or the result cannot be written
    NO_READER = 141  ///< nobody reads standard output any more; the shells' code for that
};

/// A mistake in the command line: `what()` is the sentence for the user, `command` the one whose
/// help is worth a look (empty: that of the program).
class UsageError : public std::runtime_error {
  public:
    UsageError(const std::string& text, std::string command)
        : std::runtime_error(text), command_(std::move(command)) {}
    const std::string& command() const { return command_; }

  private:
    std::string command_;
};

/// Work that could not be done: `what()` is the sentence with what to try next, empty when that has
/// been told.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The question was answered with no, and nothing else is to be printed: `what()` is the sentence
/// with what to try next.
class Negative : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The command ends with the code; all is said.
struct Ended {
    int code;
};

/// The help is wanted, that of the program or of a command.
struct HelpWanted {
    std::string command;
};

/// What a shell offers for a value; KEYS are those of the platform file that is typed already, DOCS
/// those that are documented.
enum class ValueKind { NONE, FILES, FOLDERS, TYPES, MEMBERS, KEYS, DOCS, CHOICES };

/// What the command line sets; a list takes every value that is given.
using Target = std::variant<bool*, std::string*, std::vector<std::string>*>;

/// An option, or an argument that is told by its place.
struct Argument {
    std::vector<std::string> names;  ///< with their dashes, short ones first; empty: told by place
    std::string value;               ///< name of the value; empty for a flag
    std::string description;         ///< one line
    Target target;
    ValueKind kind = ValueKind::NONE;
    bool required = false;
    bool many = false;
    std::string excludes{};              ///< name of an option that does not go with this one
    std::string subject{};               ///< of ValueKind::CHOICES: what a value is called
    std::vector<std::string> choices{};  ///< the values, in any letter case; none for other kinds

    /// Only the values of a list can be given; an empty one is as none. `called` names them in the
    /// sentence about another.
    void oneOf(std::string called, std::vector<std::string> values);
};

/// A call of a command and what it is for.
struct Example {
    std::string call;
    std::string about;
};

/// A subcommand as its own file describes it; the parser of the command line, the help, the manual
/// and the completions are made from this alone.
struct Command {
    std::string name;  ///< empty for the program itself
    std::string description;
    std::string group;    ///< heading that it stands under
    std::string notes{};  ///< lines that begin with blanks stay as they are
    std::string no{};     ///< what exit code 1 says; empty when it never says no
    std::string failed = "the platform cannot be loaded, or the result cannot be written";
    std::vector<Example> examples{};
    std::vector<Argument> options{};
    std::vector<Argument> arguments{};  ///< in their places
    /// Does the work; false when the question is answered with no. All commands are handed in, the
    /// program first. Throws UsageError, Failure.
    std::function<bool(const std::vector<Command>&)> run{};

    /// Appends an argument that is required, an option with a value, a flag. The reference holds
    /// until the next one is appended; `names` are joined by ",".
    Argument& argument(std::string value, Target target, std::string about);
    Argument& option(const std::string& names, Target target, std::string value, std::string about);
    Argument& flag(const std::string& names, bool& target, std::string about);
    /// The option --json with a JSON Schema of the answer, which --schema prints.
    void typedJson(bool& target);
    /// The lines of the exit codes.
    std::string exitCodes() const;

    /// Lets `work` do the work: a function of the options, which this command keeps, and of all
    /// commands if it wants. One without an answer never says no.
    template <class Options, class Answer, class... All>
    Options& runs(Answer (*work)(const Options&, All...)) {
        auto kept = std::make_shared<Options>();
        run = [kept, work](const std::vector<Command>& commands) {
            const auto call = [&] {
                if constexpr (sizeof...(All) == 0) return work(*kept);
                if constexpr (sizeof...(All) == 1) return work(*kept, commands);
            };
            if constexpr (!std::is_void_v<Answer>) return call();
            call();
            return true;
        };
        return *kept;
    }
};

/// One line of the program's table: the file cmd_NAME.cpp describes the command.
struct Row {
    const char* group;
    const char* name;
    void (*describe)(Command& command);
};

namespace commands {

using Describe = void(Command&);
Describe add, check, completion, dict, diff, dirs, doc, extract, files, get, help, info, json, keys,
    list, manual, pack, protect, show, transform, unprotect, validate, verify;

}  // namespace commands
}  // namespace cli
