// SPDX-License-Identifier: Apache-2.0
#include "Command.h"
#include "KeyHint.h"
#include "Load.h"
#include "Output.h"
#include "mav_platform/HMAVNativeDictService.h"

namespace {

using mav::platform::NativeDictService;

void writeLines(const NativeDictService::Dict& dict) {
    cli::LongAnswer answer;
    for (const auto& [name, value] : dict) {
        answer += cli::printable(name) + (name.empty() ? "" : " = ") + cli::printable(value) + "\n";
    }
    answer.end();
}

}  // namespace

bool cli::runDict(const DictOptions& options) {
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
        complain((options.names.empty() ? "nothing is at '" : "none of the names is below '") +
                 printable(options.path) + "' in '" + printable(options.file) + "'." +
                 keyHint(*loader, options.path) + " 'mav keys' lists the paths of a platform.");
        return false;
    }
    if (options.json) {
        writeAnswer(NativeDictService::getAsJsonStr(dict));
    } else {
        writeLines(dict);
    }
    return true;
}
