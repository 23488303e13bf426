// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace cli {

/// The pieces in one text.
template <class... Pieces>
std::string text(const Pieces&... pieces) {
    std::string made;
    (made.append(pieces), ...);
    return made;
}

/// What a shell offers for a value; KEYS are those of the platform file that is typed already, DOCS
/// those that are documented.
enum class ValueKind { NONE, FILES, FOLDERS, TYPES, MEMBERS, KEYS, DOCS, CHOICES };

/// An option, or an argument that is told by its place.
struct Argument {
    std::vector<std::string> names;  ///< with their dashes, short ones first; empty: told by place
    std::string value;               ///< name of the value; empty for a flag
    std::string description;         ///< one line
    std::vector<std::string> choices;  ///< for ValueKind::CHOICES
    ValueKind kind = ValueKind::NONE;
    bool required = false;
    bool many = false;
};

struct CommandTable {
    std::string name;  ///< empty for the program itself
    std::string description;
    std::string notes;  ///< what its help ends with; lines that begin with blanks stay as they are
    std::vector<Argument> options;
    std::vector<Argument> arguments;  ///< in their places
};

/// The program first, then its commands in the order of the help. Everything comes from the tables
/// that the command line is parsed with, so that it cannot say anything else.
std::vector<CommandTable> commandTables(const CLI::App& app);

/// The names of the platform file types, in their order.
std::vector<std::string> fileTypeNames();

/// "FILE", "[FILE]", "FILE...": how the argument stands in a line of use.
std::string usage(const Argument& argument);

}  // namespace cli
