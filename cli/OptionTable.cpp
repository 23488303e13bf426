// SPDX-License-Identifier: Apache-2.0
#include "OptionTable.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>

#include "Command.h"
#include "mav_platform/HMAVPfmFileTypes.h"
#include "mav_platform/PlatformCheck.h"

namespace {

using cli::Argument;
using cli::ValueKind;

struct Named {
    std::string_view value;
    ValueKind kind;
};

constexpr std::array<Named, 7> KINDS{{{"DIR", ValueKind::FOLDERS},
                                      {"TYPE", ValueKind::TYPES},
                                      {"WHAT", ValueKind::MEMBERS},
                                      {"PATH", ValueKind::KEYS},
                                      {"KEY", ValueKind::DOCS},
                                      {"OBJECT", ValueKind::KEYS},
                                      {"NAME", ValueKind::NONE}}};

/// "a|b|c" as its pieces.
std::vector<std::string> pieces(const std::string& text) {
    std::vector<std::string> found;
    for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
        end = text.find('|', start);
        found.push_back(text.substr(start, end - start));
    }
    return found;
}

/// The name of a value tells what it can be; in a place of its own a file is the usual thing.
void classify(Argument& argument) {
    if (argument.value.empty()) return;
    if (argument.value == "SECTION") argument.choices = cli::sectionNames();
    if (argument.value == "RULE") {
        for (const auto& rule : mav_platform::PlatformCheck::rules())
            argument.choices.push_back(rule.name);
    }
    if (argument.value == "SHELL") argument.choices = {"bash", "zsh", "fish"};
    if (argument.value.find('|') != std::string::npos) argument.choices = pieces(argument.value);
    if (!argument.choices.empty()) {
        argument.kind = ValueKind::CHOICES;
    } else if (argument.names.empty()) {
        argument.kind = ValueKind::FILES;
    }
    for (const Named& named : KINDS)
        if (named.value == argument.value) argument.kind = named.kind;
}

Argument describe(const CLI::Option& option) {
    Argument made;
    for (const std::string& name : option.get_snames()) made.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) made.names.push_back("--" + name);
    made.description = option.get_description();
    made.required = option.get_required();
    made.many = option.get_items_expected_max() > 1;
    if (option.get_items_expected_max() > 0)
        made.value = made.names.empty() ? option.get_name(true) : option.get_type_name();
    classify(made);
    return made;
}

cli::CommandTable describe(const CLI::App& app, std::string name) {
    cli::CommandTable table{std::move(name), app.get_description(), app.get_footer(), {}, {}};
    for (const CLI::Option* option : app.get_options()) {
        Argument made = describe(*option);
        (made.names.empty() ? table.arguments : table.options).push_back(std::move(made));
    }
    return table;
}

}  // namespace

std::vector<cli::CommandTable> cli::commandTables(const CLI::App& app) {
    std::vector<CommandTable> tables{::describe(app, "")};
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        tables.push_back(::describe(*command, command->get_name()));
    return tables;
}

std::vector<std::string> cli::fileTypeNames() {
    std::vector<std::string> names;
    names.reserve(HMAVPfmFileTypes::FILE_TYPE_COUNT);
    for (int type = 0; type < HMAVPfmFileTypes::FILE_TYPE_COUNT; ++type)
        names.push_back(HMAVPfmFileTypes::toString(static_cast<HMAVPfmFileTypes::FileType>(type)));
    return names;
}

std::string cli::usage(const Argument& argument) {
    const std::string text = argument.value + (argument.many ? "..." : "");
    return argument.required ? text : "[" + text + "]";
}
