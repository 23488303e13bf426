// SPDX-License-Identifier: Apache-2.0
#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "Screen.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/PlatformDifference.h"

namespace cli {
namespace {

using mav_platform::PlatformDifference;
using Change = PlatformDifference::Change;

constexpr const char* NOTES =
    "Compares by meaning: items of a list are matched by their name or id, whatever their place,\n"
    "and where the two platforms lie does not count. What is inside the files that a platform\n"
    "names is not compared, only what its description tells. Lines begin with ~ for a change,\n"
    "+ for what only B has, - for what only A has.\n";

struct Options {
    std::string first;
    std::string second;
    bool json = false;
    std::string color;
};

std::string plain(const PlatformDifference::Changes& changes, bool color) {
    static constexpr const char* SIGNS[] = {"~ ", "+ ", "- "};
    static constexpr const char* COLORS[] = {"\033[33m", "\033[32m", "\033[31m"};
    // The hardware stands deep in the document; the words around it tell a reader nothing.
    static const std::string HEAD = "hardwarePlatforms.";
    std::string text;
    for (const Change& change : changes) {
        std::string line = SIGNS[change.kind];
        line += printable(change.path.rfind(HEAD, 0) == 0 ? change.path.substr(HEAD.size())
                                                          : change.path);
        const std::string from = printable(change.from);
        const std::string to = printable(change.to);
        if (change.kind == Change::CHANGED) line += ": '" + from + "' -> '" + to + "'";
        if (change.kind == Change::ADDED && !to.empty()) line += ": " + to;
        if (change.kind == Change::REMOVED && !from.empty()) line += ": " + from;
        text += color ? COLORS[change.kind] + line + "\033[0m\n" : line + "\n";
    }
    return text;
}

bool run(const Options& options) {
    const bool color = wantsColor(options.color);
    const auto first = loadFile("diff", options.first);
    const auto second = loadFile("diff", options.second);
    const auto changes = PlatformDifference::between(*first->load(), *second->load());
    if (options.json) {
        writeData(PlatformDifference::json(changes));
    } else {
        writeAnswer(plain(changes, color));
    }
    return changes.empty();
}

}  // namespace

void commands::diff(Command& command) {
    command.description = "Tell what differs between two platforms, by meaning";
    command.notes = NOTES;
    command.no = "the platforms differ";
    command.examples = {{"mav diff old.pka new.pka", "what a new delivery changes"}};
    auto& options = command.runs(run);
    command.argument("A", &options.first, "Platform file");
    command.argument("B", &options.second, "Platform file");
    command.typedJson(options.json);
    addColor(command, options.color, "When to colour");
}

}  // namespace cli
