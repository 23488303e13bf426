// SPDX-License-Identifier: Apache-2.0
#include "Command.h"
#include "KeyHint.h"
#include "Load.h"
#include "Output.h"
#include "mav_platform/HMAVNativeDictService.h"

namespace cli {
namespace {

using mav::platform::NativeDictService;

constexpr const char* NOTES =
    "PATH is made of member names joined by '.', with the index of an element in brackets, as in\n"
    "hardwarePlatforms.hardwarePlatform.systemClocks[0].name. '[*]' and '..' stand for every\n"
    "element. A path that begins with hardwarePlatform finds the hardware platform wherever the\n"
    "description holds it.\n";

struct Options {
    std::string file;
    std::string path;
    std::vector<std::string> names;  ///< empty: all
    bool json = false;
};

void writeLines(const NativeDictService::Dict& dict) {
    LongAnswer answer;
    for (const auto& [name, value] : dict) {
        answer += printable(name) + (name.empty() ? "" : " = ") + printable(value) + "\n";
    }
    answer.end();
}

void run(const Options& options) {
    const NativeDictService service;
    const auto loader = loadFile("dict", options.file);
    bool found = false;
    NativeDictService::Dict dict;
    if (options.names.empty()) {
        dict = service.getAsDict(loader.get(), options.path, found);
    } else {
        dict = service.getFilteredDict(loader.get(), options.path,
                                       {options.names.begin(), options.names.end()});
        found = !dict.empty();
    }
    if (!found) {
        throw Negative(
            (options.names.empty() ? "nothing is at '" : "none of the names is below '") +
            printable(options.path) + "' in '" + printable(options.file) + "'." +
            keyHint(*loader, options.path) + " 'mav keys' lists the paths of a platform.");
    }
    if (options.json) {
        writeData(NativeDictService::getAsJsonStr(dict));
    } else {
        writeLines(dict);
    }
}

}  // namespace

void commands::dict(Command& command) {
    command.description = "Print a part of the description as lines NAME = VALUE";
    command.notes = NOTES;
    command.no = "nothing is there";
    command.examples = {{"mav dict card.pka 'hardwarePlatform.systemClocks[0]'", "one clock"}};
    auto& options = command.runs(run);
    command.argument("FILE", &options.file, "Platform file");
    command.argument("PATH", &options.path, "Path into the description");
    command.option("--name", &options.names, "NAME", "Only this name; may be repeated");
    command.flag("--json", options.json, "Print JSON");
}

}  // namespace cli
