// SPDX-License-Identifier: Apache-2.0
#include "Command.h"

#include <array>
#include <string_view>

namespace cli {
namespace {

struct Named {
    std::string_view value;
    ValueKind kind;
};

/// The name of a value tells what it can be; in a place of its own a file is the usual thing.
ValueKind kindOf(std::string_view value, bool hasPlace) {
    static constexpr std::array<Named, 5> KINDS{{{"DIR", ValueKind::FOLDERS},
                                                 {"TYPE", ValueKind::TYPES},
                                                 {"WHAT", ValueKind::MEMBERS},
                                                 {"PATH", ValueKind::KEYS},
                                                 {"KEY", ValueKind::DOCS}}};
    for (const Named& named : KINDS)
        if (named.value == value) return named.kind;
    return hasPlace ? ValueKind::FILES : ValueKind::NONE;
}

std::vector<std::string> pieces(const std::string& text) {
    std::vector<std::string> found;
    for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
        end = text.find(',', start);
        found.push_back(text.substr(start, end - start));
    }
    return found;
}

}  // namespace

void Argument::oneOf(std::string called, std::vector<std::string> values) {
    kind = ValueKind::CHOICES;
    subject = std::move(called);
    choices = std::move(values);
}

Argument& Command::argument(std::string value, Target target, std::string about) {
    Argument& made =
        arguments.emplace_back(Argument{{}, std::move(value), std::move(about), target});
    made.kind = kindOf(made.value, true);
    made.required = true;
    made.many = std::holds_alternative<std::vector<std::string>*>(target);
    return made;
}

Argument& Command::option(const std::string& names, Target target, std::string value,
                          std::string about) {
    Argument& made =
        options.emplace_back(Argument{pieces(names), std::move(value), std::move(about), target});
    made.kind = kindOf(made.value, false);
    made.many = std::holds_alternative<std::vector<std::string>*>(target);
    return made;
}

Argument& Command::flag(const std::string& names, bool& target, std::string about) {
    return options.emplace_back(Argument{pieces(names), {}, std::move(about), &target});
}

void Command::typedJson(bool& target) {
    static bool schema = false;
    flag("--json", target, "Print JSON");
    flag("--schema", schema, "Print the JSON Schema of what --json prints, and exit");
}

std::string Command::exitCodes() const {
    std::string lines = "Exit codes:\n  0  done\n";
    if (!no.empty()) lines += "  1  " + no + "\n";
    return lines + "  2  wrong use\n  3  " + failed + "\n";
}

}  // namespace cli
