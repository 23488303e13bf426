// SPDX-License-Identifier: Apache-2.0
#include "Manual.h"

#include <algorithm>

#include "Output.h"
#include "mav_host/Letters.h"

namespace {

using cli::Argument;
using cli::Command;
using cli::Example;
using cli::text;

/// Text as it stands: no requests, no escapes, hyphens that can be copied.
std::string roff(const std::string& plain) {
    std::string made;
    if (!plain.empty() && (plain.front() == '.' || plain.front() == '\'')) made = "\\&";
    for (const char c : plain) {
        if (c == '\\') {
            made += "\\e";
        } else if (c == '-') {
            made += "\\-";
        } else if (c == '\'') {
            made += "\\(aq";
        } else {
            made += c;
        }
    }
    return made;
}

std::string bold(const std::string& plain) {
    return text("\\fB", roff(plain), "\\fR");
}
std::string italic(const std::string& plain) {
    return text("\\fI", roff(plain), "\\fR");
}

std::string header(const std::string& name, const std::string& description) {
    std::string first = description;
    if (!first.empty()) first.front() = mav_host::lowerLetter(first.front());
    if (!first.empty() && first.back() == '.') first.pop_back();
    return text(".\\\" SPDX-License-Identifier: Apache-2.0\n.TH ", roff(name),
                " 1 \"\" \"mav " MAV_VERSION "\" \"User commands\"\n.SH NAME\n", roff(name),
                " \\- ", roff(first), "\n");
}

/// Lines that begin with blanks keep their shape, the others are filled.
std::string paragraphs(const std::string& notes) {
    std::string made;
    bool shaped = false;
    for (std::size_t start = 0; start < notes.size();) {
        const std::size_t end = std::min(notes.find('\n', start), notes.size());
        const std::string line = notes.substr(start, end - start);
        start = end + 1;
        if (line.empty()) {
            if (!made.empty()) made += ".PP\n";
            continue;
        }
        const bool blank = line.front() == ' ';
        if (blank != shaped) made += blank ? ".nf\n" : ".fi\n";
        shaped = blank;
        made += roff(line) + "\n";
    }
    return made + (shaped ? ".fi\n" : "");
}

std::string entry(const Argument& argument) {
    std::string line;
    for (const std::string& name : argument.names)
        line += text(line.empty() ? "" : ", ", bold(name));
    if (!argument.value.empty()) line += text(line.empty() ? "" : " ", italic(argument.value));
    std::string made = text(".TP\n", line, "\n", roff(argument.description), "\n");
    if (argument.kind == cli::ValueKind::CHOICES && argument.value.find('|') == std::string::npos) {
        made += "(";
        for (const std::string& choice : argument.choices)
            made += text(&choice == &argument.choices.front() ? "" : ", ", roff(choice));
        made += ")\n";
    }
    return made;
}

std::string entries(const char* title, const std::vector<Argument>& arguments) {
    if (arguments.empty()) return {};
    std::string made = std::string(".SH ") + title + "\n";
    for (const Argument& argument : arguments) made += entry(argument);
    return made;
}

std::string exitStatus(const Command& command) {
    const std::string codes = command.exitCodes();
    return ".SH EXIT STATUS\n" + paragraphs(codes.substr(codes.find('\n') + 1));
}

std::string examples(const Command& command) {
    std::string made = ".SH EXAMPLES\n";
    for (const Example& example : command.examples)
        made += text(".TP\n", bold(example.call), "\n", roff(example.about), "\n");
    return made;
}

constexpr const char* ENVIRONMENT =
    ".SH ENVIRONMENT\n"
    ".TP\n\\fBMAV_APP_ROOT\\fR\nRoots of the installation joined by a colon; without it the "
    "installation's own share folder.\n"
    ".TP\n\\fBMAV_TOOL_RELEASE\\fR\nRelease of the tool that platforms are judged for, such as "
    "2026.1.\n"
    ".TP\n\\fBMAV_KEY_FILE\\fR\nFile with the key of archive digests and protected files.\n"
    ".TP\n\\fBNO_COLOR\\fR\nWhen set and not empty, nothing is coloured.\n";

/// "FILE", "[FILE]", "FILE...": how the argument stands in a line of use.
std::string usage(const Argument& argument) {
    const std::string text = argument.value + (argument.many ? "..." : "");
    return argument.required ? text : "[" + text + "]";
}

}  // namespace

std::string cli::programPage(const std::vector<Command>& tables) {
    const Command& program = tables.front();
    std::string page = header("mav", program.description) + ".SH SYNOPSIS\n" + bold("mav") + " " +
                       italic("COMMAND") + " [" + italic("OPTION") + "]... [" + italic("ARGUMENT") +
                       "]...\n.SH COMMANDS\n";
    std::string also;
    for (auto command = tables.begin() + 1; command != tables.end(); ++command) {
        if (command->group != (command - 1)->group)
            page += text(".SS ", roff(command->group), "\n");
        page += text(".TP\n", bold(command->name), "\n", roff(command->description), "\n");
        also += text(also.empty() ? "" : ",\n", ".BR ", roff("mav-" + command->name), " (1)");
    }
    return page + entries("OPTIONS", program.options) + exitStatus(program) + examples(program) +
           ENVIRONMENT + ".SH SEE ALSO\n" + also + "\n";
}

std::string cli::commandPage(const Command& command) {
    std::string page = header("mav-" + command.name, command.description) + ".SH SYNOPSIS\n" +
                       bold("mav " + command.name) + " [" + italic("OPTION") + "]...";
    for (const Argument& argument : command.arguments) page += text(" ", italic(usage(argument)));
    page += text("\n.SH DESCRIPTION\n", roff(command.description), ".\n");
    if (!command.notes.empty()) page += text(".PP\n", paragraphs(command.notes));
    return page + entries("ARGUMENTS", command.arguments) + entries("OPTIONS", command.options) +
           exitStatus(command) + examples(command) + ".SH SEE ALSO\n.BR mav (1)\n";
}
